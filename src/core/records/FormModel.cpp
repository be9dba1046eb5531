#include "records/FormModel.h"

#include "foundation/DateFormatter.h"
#include "foundation/Localization.h"
#include "store/entities/MainContext.h"
#include "store/entities/Model.h"
#include "store/queries/DBWorker.h"

using namespace Qt::Literals::StringLiterals;

// What most rows of most records answer.

FormMark FormModel::mark(int) const
{
    return {};
}

bool FormModel::isShown(int) const
{
    return true;
}

bool FormModel::isGiven(int) const
{
    return false;
}

bool FormModel::isEnabled(int) const
{
    return true;
}

QString FormModel::error(int) const
{
    return {};
}

void FormModel::setText(int, const QString &) {}

std::vector<FormChoice> FormModel::choices(int)
{
    return {};
}

int FormModel::chosen(int) const
{
    return -1;
}

void FormModel::choose(int, int) {}

ObjectPtr FormModel::chosenRecord(int) const
{
    return nullptr;
}

std::string_view FormModel::entityOfChoices(int) const
{
    return {};
}

std::vector<FormLink> FormModel::links(int) const
{
    return {};
}

void FormModel::unlink(int, const ObjectPtr &) {}

FormItems *FormModel::items(int)
{
    return nullptr;
}

FormPicture *FormModel::picture()
{
    return nullptr;
}

FormDate FormModel::date(int) const
{
    return {};
}

DatePickerState FormModel::openPicker(int)
{
    return DatePickerState(DatePickerState::Type::StartDate);
}

void FormModel::acceptDate(int, DatePickerState &, Date) {}

void FormModel::toggleCheck(int, DatePickerState &, bool) {}

void FormModel::clear(int) {}

FormModel::EditEnd FormModel::finishEdit()
{
    if (isGone())
        return EditEnd::Gone;
    followRow();
    if (!isChanged())
        return EditEnd::Unchanged;
    if (!save())
        return EditEnd::Refused;
    return isGone() ? EditEnd::Removed : EditEnd::Saved;
}

/// Another process may have deleted the row, of which the object does not know.
bool FormModel::isGone() const
{
    const ObjectPtr stored = record();
    if (!stored || stored->isDeleted() || !stored->context())
        return true;
    FetchRequest itself(entity());
    itself.candidates = std::vector{stored->rowId()};
    return mainContext().count(itself) == 0;
}

QString FormModel::reasonNotToSave() const
{
    return localized(QStringLiteral("A title is missing"));
}

static bool isText(const FormRow &row)
{
    using Editor = FormRow::Editor;
    return row.editor == Editor::Title || row.editor == Editor::Line || row.editor == Editor::Name ||
           row.editor == Editor::Text;
}

QString FormModel::kept(int number) const
{
    const std::vector<FormRow> all = rows();
    const auto row = std::ranges::find(all, number, &FormRow::id);
    return row != all.end() && isText(*row) ? text(number) : formerlyKept(number);
}

QByteArray FormModel::encodedDraft() const
{
    RecordDraft draft;
    bool isEdited = false;
    for (const FormRow &row : rows()) {
        const QString value = kept(row.id);
        const QString former = formerlyKept(row.id);
        isEdited |= value != former;
        if (value.isEmpty() && former.isEmpty())
            continue;
        draft.values.insert(row.name, value);
        draft.formerValues.insert(row.name, former);
    }
    if (!isEdited)
        return {};
    draft.entity = QString::fromUtf8(entity().data(), static_cast<qsizetype>(entity().size()));
    draft.record = DBWorker::getIdFromObject(record());
    draft.isOfSample = DBWorker::isSample();
    draft.values.insert(noted);
    addToDraft(draft);
    return draft.encoded();
}

/// As a draft calls it, apart from the rows.
static QString nameInDraft(std::string_view relationship)
{
    return u"Belonging "_s +
           QString::fromUtf8(relationship.data(), static_cast<qsizetype>(relationship.size()));
}

void FormModel::noteBelongings()
{
    if (isGone())
        return;
    noted.clear();
    for (const std::string_view relationship : belongings()) {
        QStringList uris;
        for (const ObjectPtr &one : record()->relatedObjects(relationship))
            uris.append(DBWorker::getIdFromObject(one));
        if (!uris.isEmpty())
            noted.insert(nameInDraft(relationship), uris.join(u' '));
    }
}

std::vector<ObjectPtr> FormModel::belongingsLeft(std::string_view relationship) const
{
    const EntityDescription &own = organiserModel().requireEntity(entity());
    const std::string inverse(own.relationship(relationship)->inverse);
    std::vector<ObjectPtr> left;
    for (const QString &uri : noted.value(nameInDraft(relationship)).split(u' ', Qt::SkipEmptyParts)) {
        const ObjectPtr one = DBWorker::getObjectFromId(uri);
        const int column = one ? one->entity().columnOf(inverse) : -1;
        if (one && (column < 0 || !one->related(column)))
            left.push_back(one);
    }
    return left;
}

void FormModel::giveBelongings(ManagedObject &record) const
{
    for (const std::string_view relationship : belongings()) {
        for (const ObjectPtr &one : belongingsLeft(relationship))
            record.addRelated(relationship, one);
    }
}

void FormModel::resume(const RecordDraft &draft)
{
    const bool isThere = record() && !isGone();
    for (const FormRow &row : rows()) {
        if (!draft.values.contains(row.name) || (isThere && !draft.isEdited(row.name)))
            continue;
        const QString value = draft.values.value(row.name);
        if (draft.formerValues.contains(row.name))
            resumeRowSince(row.id, value, draft.formerValues.value(row.name));
        else
            resumeRow(row.id, value);
    }
    for (const std::string_view relationship : isThere ? std::vector<std::string_view>() : belongings()) {
        const QString name = nameInDraft(relationship);
        if (draft.values.contains(name))
            noted.insert(name, draft.values.value(name));
    }
    takeFromDraft(draft);
}

QString FormModel::mergedUris(const QString &mine, const QString &former, const QString &present)
{
    const auto setOf = [](const QString &uris) { return uris.split(u' ', Qt::SkipEmptyParts); };
    const QStringList before = setOf(former);
    const QStringList now = setOf(present);
    QStringList all = setOf(mine);
    all.removeIf([&](const QString &uri) { return before.contains(uri) && !now.contains(uri); });
    for (const QString &uri : now) {
        if (!before.contains(uri) && !all.contains(uri))
            all.append(uri);
    }
    return all.join(u' ');
}

void FormModel::resumeRowSince(int row, const QString &value, const QString &)
{
    resumeRow(row, value);
}

QString FormModel::createdOn(OptionalDate date)
{
    using Style = DateFormatter::Style;
    return date ? localized(QStringLiteral("Created on")) + QLatin1Char(' ') +
                      DateFormatter::string(*date, Style::Medium, Style::Short)
                : QString();
}
