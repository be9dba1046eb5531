#include "records/exchange/TableImporter.h"

#include "calendarsync/SeriesRows.h"
#include "eventkit/EKRecurrenceRule.h"
#include "eventkit/RecurrenceExpander.h"
#include "foundation/Calendar.h"
#include "foundation/Localization.h"
#include "records/Functional.h"
#include "records/exchange/ImportFields.h"
#include "records/exchange/PersonName.h"
#include "records/exchange/ProjectName.h"
#include "records/exchange/TableWriter.h"
#include "store/entities/MainContext.h"
#include "store/queries/DBWorker.h"

#include <algorithm>
#include <cmath>
#include <set>

using namespace Qt::Literals::StringLiterals;

namespace {

OptionalDate baseOf(const ImportedTask &task)
{
    return task.type == TaskType::EmailCall || !task.start ? task.due : task.start;
}

/// The store has fractions of seconds, a table has none.
bool isLater(OptionalDate one, Date other)
{
    return one && std::floor(one->referenceSeconds()) > std::floor(other.referenceSeconds());
}

/// Whether an occurrence is what its series gives for its day.
bool isLikeSeries(const ImportedTask &row, const ImportedTask &given)
{
    const auto isSameMoment = [](OptionalDate one, OptionalDate other) {
        return one.has_value() == other.has_value() && (!one || Functional::sameMinute(*one, *other));
    };
    return row.title == given.title && row.details == given.details && row.type == given.type &&
           row.place == given.place && isSameMoment(row.start, given.start) &&
           isSameMoment(row.due, given.due);
}

/// The days that the rule of a task gives from its first one to a last one, without the first.
std::vector<Date> daysOf(const ImportedTask &task, Date last)
{
    const Calendar calendar = Calendar::current();
    auto rule = EKRecurrenceRule::recurrenceRuleFromString(task.rule);
    if (task.ruleEnd)
        rule->setRecurrenceEnd(EKRecurrenceEnd::recurrenceEndWithEndDate(*task.ruleEnd));
    const Date start = *baseOf(task);
    std::vector<Date> days;
    for (const RecurrenceInstance &instance :
         RecurrenceExpander(rule->pattern(), start, calendar)
             .instances({.from = start, .to = calendar.startOfNextDay(last)}))
        if (!calendar.isSameDay(instance.date, start))
            days.push_back(instance.date);
    return days;
}

/// Adds the other rows of a series to its first one, in the order of their dates. A day of the rule that has
/// no row is left out; a row on another day stands for one of those. What is left over stands alone.
std::vector<const ImportedTask *> joinOccurrences(ImportedTask &task,
                                                  const std::vector<const ImportedTask *> &others)
{
    const Calendar calendar = Calendar::current();
    std::map<int, const ImportedTask *> rows;
    std::vector<const ImportedTask *> beside;
    for (const ImportedTask *other : others) {
        const bool isOfFirstDay = calendar.isSameDay(*baseOf(*other), *baseOf(task));
        if (isOfFirstDay || !rows.emplace(calendar.dayNumber(*baseOf(*other)), other).second)
            beside.push_back(other);
    }
    for (const Date date : daysOf(task, others.empty() ? *baseOf(task) : *baseOf(*others.back()))) {
        const auto row = rows.find(calendar.dayNumber(date));
        if (row == rows.end()) {
            task.excluded.push_back(date);
            continue;
        }
        if (!isLikeSeries(*row->second, task.movedTo(date)))
            task.edits.push_back({date, *row->second});
        rows.erase(row);
    }
    for (const auto &[day, row] : rows)
        beside.push_back(row);
    while (!beside.empty() && !task.excluded.empty()) {
        task.edits.push_back({task.excluded.back(), *beside.back()});
        task.excluded.pop_back();
        beside.pop_back();
    }
    return beside;
}

/// The rows of the series of a task, itself among them, by the days on which they stand.
std::map<int, TaskPtr> rowsByDay(const TaskPtr &task)
{
    const Calendar calendar = Calendar::current();
    std::map<int, TaskPtr> rows;
    std::vector<TaskPtr> all = series::otherRows(*task);
    all.push_back(task);
    for (const TaskPtr &row : all)
        if (const OptionalDate base = importfields::baseDateOf(*row))
            rows.emplace(calendar.dayNumber(*base), row);
    return rows;
}

/// Names as the store has them, so that they can be compared.
void normalise(ImportedRow &row)
{
    const auto nameOf = [](const QString &said) {
        const ContactPtr person = personname::found(said);
        return person ? person->identifier() : said;
    };
    row.task.person = nameOf(row.task.person);
    for (QString &person : row.people)
        person = nameOf(person);
    if (const CategoryPtr category = importfields::categoryNamed(row.task.category))
        row.task.category = category->title();
}

template <typename Entity>
std::shared_ptr<Entity> recordOf(const QString &uid)
{
    return std::static_pointer_cast<Entity>(
        mainContext().object(Entity::entityName, TaskImport::identifierOf(uid)));
}

} // namespace

TableImporter::TableImporter(RecordImporter &importer, const RecordTable &source)
    : records(importer)
    , table(source)
    , isOwn(source.has(u"Identifier"_s))
{
    if (table.kind() != RecordTable::Kind::Tasks || !table.has(u"Series"_s))
        return;
    for (const RecordTable::Row &row : table.rows()) {
        const auto cells = table.cells(row);
        const QString seriesOfRow = cells.value(u"Series"_s);
        if (!seriesOfRow.isEmpty() && read(cells).task.status != TaskStatus::Done)
            series[seriesOfRow].push_back(&row);
    }
    const auto isNone = [](const auto &rows) { return rows->size() < 2; };
    for (auto one = series.begin(); one != series.end();)
        one = isNone(one) ? series.erase(one) : std::next(one);
}

ImportedRow TableImporter::read(const QHash<QString, QString> &cells) const
{
    switch (table.kind()) {
    case RecordTable::Kind::Projects:
        return tablecells::projectOf(cells);
    case RecordTable::Kind::Notes:
        return tablecells::noteOf(cells);
    default:
        return tablecells::taskOf(cells, isOwn || !table.has(u"Tags"_s));
    }
}

TableImporter::Line TableImporter::lineOf(const RecordTable::Row &row) const
{
    Line line{row.line, table.cells(row), {}};
    line.content = read(line.cells);
    return line;
}

/// The same words make the same identifier, so that a table without any can be read twice.
QString TableImporter::uidOf(const Line &line) const
{
    const QString identifier = line.cells.value(u"Identifier"_s).trimmed();
    if (!identifier.isEmpty())
        return identifier;
    QStringList words;
    for (auto cell = line.cells.begin(); cell != line.cells.end(); ++cell)
        if (!cell.value().isEmpty())
            words.append(cell.key() + u'\n' + cell.value());
    words.sort();
    return QString::fromUtf8(table.entity().data(), qsizetype(table.entity().size())) + u'\n' +
           words.join(u'\n');
}

void TableImporter::tellUnread(const Line &line)
{
    for (const QString &words : line.content.unread)
        records.account.unread.append(localized(u"\"%1\" in line %2"_s).arg(words).arg(line.number));
}

void TableImporter::take(const RecordTable::Row &row)
{
    const Line line = lineOf(row);
    const QString name = line.cells.value(u"Series"_s);
    const auto group = series.constFind(name);
    if (group != series.constEnd() && line.content.task.status != TaskStatus::Done) {
        if (group->front() == &row)
            takeSeries(name);
        return;
    }
    tellUnread(line);
    switch (table.kind()) {
    case RecordTable::Kind::Projects:
        return takeProject(line);
    case RecordTable::Kind::Notes:
        return takeNote(line);
    default:
        return takeTask(line);
    }
}

ImportedRow TableImporter::laidOver(const ManagedObject &record, const Line &line) const
{
    QHash<QString, QString> cells = recordcolumns::cells(record);
    cells.insert(line.cells);
    return read(cells);
}

bool TableImporter::isSame(const ManagedObject &record, const Line &line, const ImportedRow &said) const
{
    ImportedRow here = read(recordcolumns::cells(record));
    ImportedRow there = said;
    normalise(here);
    normalise(there);
    // A moment that the table does not tell is none that it denies.
    if (!line.content.task.delegatedSince)
        there.task.delegatedSince = here.task.delegatedSince;
    return tablecells::isSame(here, there);
}

void TableImporter::takeTask(const Line &line)
{
    const QString uid = uidOf(line);
    if (const auto row = recordOf<EntityTask>(uid))
        follow(row, line);
    else
        records.add(uid, line.content.task);
}

/// A row that was not changed here since the table was written takes over what was changed in the table.
void TableImporter::follow(const TaskPtr &row, const Line &line)
{
    const ImportedRow said = laidOver(*row, line);
    const OptionalDate revised = line.content.task.revised;
    if (isSame(*row, line, said))
        ++records.account.same;
    else if (!revised || isLater(row->lastModificationDate(), *revised))
        records.account.newerHere.append(row->title());
    else
        records.follow(row, said.task);
}

void TableImporter::takeProject(const Line &line)
{
    const QString uid = uidOf(line);
    ProjectPtr project = recordOf<EntityProject>(uid);
    if (!project) {
        project = records.addProject(TaskImport::identifierOf(uid), line.content.task, line.content.people);
    } else if (isSame(*project, line, laidOver(*project, line))) {
        ++records.account.same;
        if (projectname::isCompletedBy(line.content.task.created, *project))
            RecordImporter::fill(*project, line.content.task, line.content.people);
    } else if (projectname::isBare(*project)) {
        const ImportedRow said = laidOver(*project, line);
        RecordImporter::fill(*project, said.task, said.people);
        records.account.changed.append(said.task.title);
    } else {
        records.account.newerHere.append(project->title());
    }
    namedTasks.insert(project, line.content.titlesOfTasks);
}

void TableImporter::takeNote(const Line &line)
{
    const QString uid = uidOf(line);
    const auto note = recordOf<EntityNote>(uid);
    if (!note) {
        records.addNote(TaskImport::identifierOf(uid), line.content.task);
    } else if (isSame(*note, line, laidOver(*note, line))) {
        ++records.account.same;
    } else {
        records.account.newerHere.append(note->title());
    }
}

void TableImporter::finish()
{
    for (auto named = namedTasks.begin(); named != namedTasks.end(); ++named) {
        QStringList missing = named.value();
        for (const TaskPtr &task : named.key()->task())
            missing.removeOne(task->title());
        records.account.missingTasks.append(missing);
    }
}

// Series

/// A row of the store that belongs to the series of such lines; null for none.
TaskPtr TableImporter::rowOfSeries(const QString &name, const std::vector<Line> &lines) const
{
    for (const Line &line : lines)
        if (const auto row = recordOf<EntityTask>(uidOf(line)))
            return row;
    return mainContext().fetchFirst<EntityTask>(EntityTask::fetchRequest().where(
        Predicate::format("calendarID = %@ and status != %d", name, int(TaskStatus::Done))));
}

void TableImporter::takeSeries(const QString &name)
{
    std::vector<Line> lines;
    for (const RecordTable::Row *row : series.value(name)) {
        lines.push_back(lineOf(*row));
        tellUnread(lines.back());
    }
    if (const TaskPtr anchor = rowOfSeries(name, lines))
        compareSeries(anchor, lines);
    else
        addSeries(std::move(lines));
}

/// The dates of a series move on here, so that it is only compared.
void TableImporter::compareSeries(const TaskPtr &anchor, const std::vector<Line> &lines)
{
    const Calendar calendar = Calendar::current();
    const std::map<int, TaskPtr> rows = rowsByDay(anchor);
    for (const Line &line : lines) {
        TaskPtr row = recordOf<EntityTask>(uidOf(line));
        const OptionalDate base = baseOf(line.content.task);
        const auto ofDay = base ? rows.find(calendar.dayNumber(*base)) : rows.end();
        if (!row && ofDay != rows.end())
            row = ofDay->second;
        if (row && isSame(*row, line, laidOver(*row, line)))
            ++records.account.same;
        else
            records.account.newerHere.append(line.content.task.title);
    }
}

/// The first row with the rule stands for the series.
void TableImporter::addSeries(std::vector<Line> lines)
{
    const auto standsAlone = [](const Line &line) { return !baseOf(line.content.task); };
    for (const Line &line : lines)
        if (standsAlone(line))
            takeTask(line);
    std::erase_if(lines, standsAlone);
    std::ranges::sort(lines, {},
                      [](const Line &line) { return baseOf(line.content.task)->referenceSeconds(); });
    const auto first =
        std::ranges::find_if(lines, [](const Line &line) { return !line.content.task.rule.isEmpty(); });
    if (first == lines.end()) {
        for (const Line &line : lines)
            takeTask(line);
        return;
    }
    ImportedTask task = first->content.task;
    std::vector<const ImportedTask *> others;
    for (const Line &line : lines)
        if (&line != &*first)
            others.push_back(&line.content.task);
    const auto beside = joinOccurrences(task, others);
    const auto isBeside = [&beside](const Line &line) {
        return std::ranges::count(beside, &line.content.task) > 0;
    };
    for (const Line &line : lines) {
        ImportedTask single = line.content.task;
        single.rule.clear();
        if (isBeside(line))
            records.add(uidOf(line), single);
    }
    const int addedBefore = records.account.added;
    const TaskPtr anchor = records.add(uidOf(*first), task);
    if (!anchor)
        return;
    records.transaction.settle();
    std::erase_if(lines, isBeside);
    const int found = takeTags(anchor, lines);
    records.account.added = addedBefore + found;
    // Without calendars, and outside of the time that they are looked at, a series is one row.
    if (found < int(lines.size()) && !records.account.partial.contains(task.title))
        records.account.partial.append(task.title);
}

/// Each occurrence has tags of its own, of which no calendar knows. How many of them there are.
int TableImporter::takeTags(const TaskPtr &anchor, const std::vector<Line> &lines)
{
    const Calendar calendar = Calendar::current();
    const std::map<int, TaskPtr> rows = rowsByDay(anchor);
    int found = 0;
    for (const Line &line : lines) {
        const auto row = rows.find(calendar.dayNumber(*baseOf(line.content.task)));
        if (row == rows.end())
            continue;
        ++found;
        MVTask copy(row->second);
        importfields::fillCategoryAndTags(copy, line.content.task);
        if (!copy.tags.empty() || !row->second->tags().empty())
            row->second->setTags(copy.tags);
    }
    return found;
}
