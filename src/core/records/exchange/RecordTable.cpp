#include "records/exchange/RecordTable.h"

#include "records/exchange/TableCells.h"
#include "records/exchange/TableWords.h"
#include "records/exchange/TableWriter.h"
#include "records/people/ContactTable.h"
#include "store/entities/EntityProject.h"
#include "store/entities/EntityTask.h"
#include "store/entities/SmallEntities.h"

#include <algorithm>
#include <numeric>
#include <optional>

using namespace Qt::Literals::StringLiterals;
using tablewords::keyOf;

namespace {

struct OtherTitles
{
    const char16_t *column;
    std::vector<const char16_t *> titles;
};

/// What other programs call the columns.
const std::vector<OtherTitles> &otherTitles()
{
    static const std::vector<OtherTitles> titles = {
        {u"Title", {u"Task", u"Task Name", u"Subject", u"Summary", u"Name"}},
        {u"Start", {u"Start Date", u"Begin"}},
        {u"Due", {u"Due Date", u"Deadline", u"End", u"End Date"}},
        {u"Done on", {u"Done", u"Completed", u"Completed On", u"Date Completed"}},
        {u"Delegated", {u"Assignee", u"Assigned To"}},
        {u"Location", {u"Place"}},
        {u"Tags", {u"Tag", u"Labels", u"Keywords"}},
        {u"Alert", {u"Reminder"}},
        {u"Repeat", {u"Recurrence"}},
        {u"Created", {u"Created On", u"Date Created"}},
        {u"Last changed", {u"Modified", u"Last Modified"}},
        {u"Notes", {u"Note", u"Description", u"Details", u"Comment", u"Comments"}},
    };
    return titles;
}

/// The columns of an entity by the keys of all their titles.
QHash<QString, QString> knownColumns(std::string_view entity, const tablewords::Wording &inLanguage)
{
    QHash<QString, QString> known;
    const QStringList own = recordcolumns::titles(entity);
    for (const OtherTitles &other : otherTitles()) {
        const QString column = QString::fromUtf16(other.column);
        if (!own.contains(column))
            continue;
        for (const char16_t *title : other.titles) {
            known.insert(keyOf(QString::fromUtf16(title)), column);
            known.insert(keyOf(inLanguage(QString::fromUtf16(title))), column);
        }
    }
    for (const QString &title : own)
        known.insert(keyOf(inLanguage(title)), title);
    // The English ones are the same everywhere, whatever a word means in another language.
    for (const QString &title : own)
        known.insert(keyOf(title), title);
    return known;
}

using Sort = ContactTable::Column::Sort;

/// What the columns are in a table of people. The first ones say what it is of, however many there are.
std::vector<Sort> sortsOf(const QStringList &titles)
{
    constexpr qsizetype most = 40;
    std::vector<Sort> sorts;
    for (const ContactTable::Column &column : ContactTable::columnsOf(titles.mid(0, most)))
        sorts.push_back(column.sort);
    return sorts;
}

bool hasBothNames(const std::vector<Sort> &sorts)
{
    return std::ranges::count(sorts, Sort::FirstName) > 0 && std::ranges::count(sorts, Sort::LastName) > 0;
}

} // namespace

/// Spreadsheets may say the separator in a line before them.
std::optional<CsvReader::Record> RecordTable::titlesIn(CsvReader &reader)
{
    auto titles = reader.next();
    if (titles && titles->fields.front().startsWith(u"sep="_s))
        titles = reader.next();
    return titles;
}

std::string_view RecordTable::entityOf(Kind kind)
{
    return kind == Kind::Projects ? EntityProject::entityName
           : kind == Kind::Notes  ? EntityNote::entityName
                                  : EntityTask::entityName;
}

/// The first of several columns of one kind is meant. The language that explains most of them is theirs.
QStringList RecordTable::columnsOf(Kind kind, const QStringList &titles)
{
    QStringList best;
    qsizetype mostKnown = -1;
    for (const tablewords::Wording &wording : tablewords::wordings()) {
        const QHash<QString, QString> known = knownColumns(entityOf(kind), wording);
        QStringList all;
        for (const QString &title : titles) {
            const QString column = known.value(keyOf(title));
            all.append(all.contains(column) ? QString() : column);
        }
        if (const qsizetype count = all.size() - all.count(QString()); count > mostKnown) {
            mostKnown = count;
            best = all;
        }
        if (mostKnown == titles.size())
            break;
    }
    return best;
}

RecordTable::Kind RecordTable::kindOf(const QStringList &titles)
{
    const std::vector<Sort> sorts = sortsOf(titles);
    if (hasBothNames(sorts))
        return Kind::People;
    const QStringList project = columnsOf(Kind::Projects, titles);
    if (project.contains(u"Title"_s) && (project.contains(u"People"_s) || project.contains(u"Tasks"_s)))
        return Kind::Projects;
    const QStringList task = columnsOf(Kind::Tasks, titles);
    const auto has = [&task](const QString &column) { return task.contains(column); };
    const bool isOfTasks =
        std::ranges::any_of(QStringList{u"Start"_s, u"Due"_s, u"Status"_s, u"Priority"_s, u"Someday"_s,
                                        u"Project"_s, u"Delegated"_s, u"Alert"_s, u"Repeat"_s, u"Done on"_s},
                            has);
    if (has(u"Title"_s) && isOfTasks)
        return Kind::Tasks;
    if (has(u"Title"_s) && columnsOf(Kind::Notes, titles).contains(u"Contact"_s))
        return Kind::Notes;
    // Much of what people have, others have, too.
    const bool hasTitle = has(u"Title"_s) && std::ranges::count(sorts, Sort::FullName) == 0;
    const bool hasPeople = std::ranges::any_of(sorts, [hasTitle](Sort sort) {
        if (sort == Sort::Address || sort == Sort::Url || sort == Sort::Projects || sort == Sort::Groups)
            return !hasTitle;
        return sort != Sort::Note && sort != Sort::Identifier && sort != Sort::Other;
    });
    return hasPeople ? Kind::People : has(u"Title"_s) ? Kind::Tasks : Kind::Other;
}

RecordTable::Kind RecordTable::kindOf(QIODevice &device)
{
    CsvReader reader(device);
    const auto titles = titlesIn(reader);
    return titles ? kindOf(titles->fields) : Kind::Other;
}

RecordTable RecordTable::read(QIODevice &device)
{
    RecordTable table;
    CsvReader reader(device);
    const auto titles = titlesIn(reader);
    if (!titles)
        return table;
    // A text of another character set, which nothing in it tells.
    if (titles->fields.join(QString()).contains(QChar()))
        return table;
    table.titlesOfFile = titles->fields;
    table.tableKind = kindOf(titles->fields);
    if (table.tableKind == Kind::Other || table.tableKind == Kind::People)
        return table;
    table.columns = columnsOf(table.tableKind, titles->fields);
    table.isFilled.resize(static_cast<std::size_t>(table.columns.size()));
    while (auto record = reader.next()) {
        const auto size =
            std::accumulate(record->fields.begin(), record->fields.end(), qsizetype(0),
                            [](qsizetype sum, const QString &field) { return sum + field.size(); });
        if (!record->isWhole) {
            table.faults.push_back({Fault::CutOff, record->line});
        } else if (!record->isBearable || size > mostCharacters) {
            table.faults.push_back({Fault::TooLarge, record->line});
        } else if (table.found.size() >= mostRows) {
            table.hasMore = true;
            break;
        } else if (size > 0) {
            const auto count =
                std::min(table.isFilled.size(), static_cast<std::size_t>(record->fields.size()));
            for (std::size_t place = 0; place < count; ++place)
                if (!record->fields[static_cast<qsizetype>(place)].isEmpty())
                    table.isFilled[place] = true;
            for (qsizetype place = record->fields.size(); place > table.mostFields; --place)
                if (!record->fields[place - 1].isEmpty())
                    table.mostFields = place;
            table.found.push_back({std::move(record->fields), record->line});
        }
    }
    return table;
}

QHash<QString, QString> RecordTable::cells(const Row &row) const
{
    QHash<QString, QString> cells;
    QStringList unknown;
    for (qsizetype place = 0; place < std::max(columns.size(), row.fields.size()); ++place) {
        const QString text = row.fields.value(place);
        if (const QString column = columns.value(place); !column.isEmpty())
            cells.insert(column, text);
        else if (!text.trimmed().isEmpty())
            unknown.append(titleAt(place) + u": "_s + text.trimmed());
    }
    if (!unknown.isEmpty())
        cells.insert(tablecells::wordsOfUnknown, unknown.join(u'\n'));
    return cells;
}

/// A column without a title is called by its number.
QString RecordTable::titleAt(qsizetype place) const
{
    const QString title = titlesOfFile.value(place).simplified();
    return title.isEmpty() ? u'#' + QString::number(place + 1) : title;
}

QStringList RecordTable::unknownTitles() const
{
    QStringList titles;
    for (qsizetype place = 0; place < columns.size(); ++place)
        if (columns[place].isEmpty() && isFilled[static_cast<std::size_t>(place)])
            titles.append(titleAt(place));
    if (mostFields > columns.size())
        titles.append(u'#' + QString::number(mostFields));
    return titles;
}
