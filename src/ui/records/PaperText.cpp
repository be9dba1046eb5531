#include "records/PaperText.h"

#include "foundation/DateFormatter.h"
#include "foundation/Localization.h"
#include "records/Categories.h"
#include "records/FormItems.h"
#include "records/FormModel.h"
#include "records/ProjectManager.h"
#include "records/RecordListModel.h"
#include "records/TaskRowContent.h"
#include "widgets/Theme.h"

#include <QPrinter>
#include <QTextDocument>

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr qreal pointSizeOnPaper = 10;

QString cell(const QString &text)
{
    return u"<td>%1</td>"_s.arg(text.toHtmlEscaped());
}

QString shortDate(OptionalDate date)
{
    return date ? DateFormatter::string(*date, DateFormatter::Style::Medium, DateFormatter::Style::None)
                : QString();
}

QString cellsOfTask(const EntityTask &task, ListType list)
{
    const TaskRowContent content = TaskRowContent::of(task, list);
    const CategoryPtr category = task.category();
    const ProjectPtr project = task.project();
    return u"<td width=\"4%\">%1</td><td width=\"42%\">%2</td>"_s.arg(content.isChecked ? u"☑"_s : u"☐"_s,
                                                                      content.title.toHtmlEscaped()) +
           cell(content.dateLabel) + cell(category ? Categories::shownTitle(category) : QString()) +
           cell(project ? ProjectManager::shownTitle(*project) : QString());
}

QString cellsOfPerson(const EntityContacts &person)
{
    QStringList reached;
    for (const auto &phone : person.phone())
        reached.append(phone->number());
    for (const auto &email : person.email())
        reached.append(email->mail());
    return cell(person.fullName()) + cell(person.company() ? person.company()->title() : QString()) +
           cell(reached.join(u", "_s));
}

QString cellsOfCompany(const EntityCompany &company)
{
    QStringList reached;
    for (const auto &phone : company.phone())
        reached.append(phone->number());
    for (const auto &email : company.email())
        reached.append(email->mail());
    return cell(company.title()) + cell(reached.join(u", "_s));
}

QString cellsOf(const ObjectPtr &record, const QString &shown, ListType list)
{
    if (const auto task = std::dynamic_pointer_cast<EntityTask>(record))
        return cellsOfTask(*task, list);
    if (const auto person = std::dynamic_pointer_cast<EntityContacts>(record))
        return cellsOfPerson(*person);
    if (const auto company = std::dynamic_pointer_cast<EntityCompany>(record))
        return cellsOfCompany(*company);
    if (const auto project = std::dynamic_pointer_cast<EntityProject>(record))
        return cell(ProjectManager::shownTitle(*project)) + cell(shortDate(project->startDate())) +
               cell(shortDate(project->dueDate()));
    if (const auto note = std::dynamic_pointer_cast<EntityNote>(record))
        return cell(note->title()) + cell(note->detail());
    return cell(shown);
}

QString linesOf(const FormItems &items)
{
    QStringList lines;
    for (int item = 0; item < items.count(); ++item) {
        const QString words = items.words(item);
        const QString type = items.types().value(items.type(item));
        if (!words.isEmpty())
            lines.append(type.isEmpty() ? words : u"%1 (%2)"_s.arg(words, type));
    }
    return lines.join(u'\n');
}

QString valueOf(FormModel &record, const FormRow &row)
{
    if (row.editor == FormRow::Editor::Items) {
        const FormItems *items = record.items(row.id);
        return items ? linesOf(*items) : QString();
    }
    if (row.editor == FormRow::Editor::Links) {
        QStringList lines;
        for (const FormLink &link : record.links(row.id))
            lines.append(link.text);
        return lines.join(u'\n');
    }
    return record.text(row.id);
}

} // namespace

QString PaperText::ofList(const QString &title, const RecordListModel &rows, std::optional<ListType> list)
{
    QString html = u"<h2>%1</h2><table width=\"100%\" cellpadding=\"3\">"_s.arg(title.toHtmlEscaped());
    for (int row = 0; row < rows.rowCount(); ++row) {
        const QString shown = rows.index(row).data().toString();
        switch (rows.kindOf(row)) {
        case RowKind::Separator:
            break;
        case RowKind::Header:
            html += u"<tr><td colspan=\"5\"><b>%1</b></td></tr>"_s.arg(shown.toHtmlEscaped());
            break;
        case RowKind::Item:
            html +=
                u"<tr>%1</tr>"_s.arg(cellsOf(rows.recordAt(row), shown, list.value_or(ListType::NotDone)));
            break;
        }
    }
    return html + u"</table>"_s;
}

QString PaperText::ofLines(const QString &title, const std::vector<Line> &lines)
{
    QString html = u"<h2>%1</h2><table width=\"100%\" cellpadding=\"3\">"_s.arg(title.toHtmlEscaped());
    for (const Line &line : lines) {
        if (line.isHeading) {
            html += u"<tr><td colspan=\"3\"><b>%1</b></td></tr>"_s.arg(line.text.toHtmlEscaped());
            continue;
        }
        const QString box = line.isTicked ? *line.isTicked ? u"☑"_s : u"☐"_s : QString();
        html += u"<tr><td width=\"4%\">%1</td><td width=\"56%\">%2</td>%3</tr>"_s.arg(
            box, line.text.toHtmlEscaped(), cell(line.detail));
    }
    return html + u"</table>"_s;
}

QString PaperText::ofRecord(FormModel &record)
{
    QString html =
        u"<h2>%1</h2><table width=\"100%\" cellpadding=\"4\">"_s.arg(record.title().toHtmlEscaped());
    for (const FormRow &row : record.rows()) {
        const bool isName = row.editor == FormRow::Editor::Title || row.editor == FormRow::Editor::Picture ||
                            row.editor == FormRow::Editor::Separator;
        if (isName || !record.isShown(row.id))
            continue;
        const QString value = valueOf(record, row);
        if (!value.isEmpty())
            html +=
                u"<tr><td width=\"28%\"><b>%1</b></td><td style=\"white-space: pre-wrap\">%2</td></tr>"_s.arg(
                    record.label(row.id).toHtmlEscaped(), value.toHtmlEscaped());
    }
    return html + u"</table>"_s;
}

void PaperText::print(const QString &html, QPrinter &printer)
{
    QTextDocument document;
    QFont font = Theme::applicationFont();
    font.setPointSizeF(pointSizeOnPaper);
    document.setDefaultFont(font);
    document.setHtml(html);
    document.print(&printer);
}
