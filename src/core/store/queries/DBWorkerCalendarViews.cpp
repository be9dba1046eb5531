#include "foundation/TextFolding.h"
#include "records/dates/MVDate.h"
#include "store/entities/MainContext.h"
#include "store/queries/DBWorker.h"
#include "store/queries/ListDefinitions.h"

// What the day, the week and the month show. Each query runs along one range of an index, and several days
// are told apart in memory.

namespace {

struct DatedRow
{
    RowId row = 0;
    std::optional<TaskType> type;
    OptionalDate start, due;
    QByteArray titleKey;
};

enum class Title { Read, Left };

/// What rows have to pass, and the index of few rows that holds all of them, if there is one.
struct Condition
{
    Predicate predicate;
    std::string_view index = {};
};

/// The tasks without hours that start up to the end of a span and are due from its begin on. Most are due
/// soon after their start: a range of due dates finds them, however much is planned for the years to come.
/// The rest are in an index of their own.
std::vector<Condition> todosOf(const DaySpan &span)
{
    const Date nearby = span.last + Seconds(2'678'400); // as the index has it
    return {{Predicate::format("type = %d and dueDate >= %@ and dueDate < %@ and startDate <= %@",
                               TaskType::ToDo, span.first, nearby, span.last)},
            {Predicate::format("type = %d and dueDate >= %@ and startDate <= %@", TaskType::ToDo,
                               std::max(span.first, nearby), span.last),
             "EntityTask_long"}};
}

/// The rows that pass one of several conditions of which no row passes two, in the order in which they were
/// inserted.
std::vector<DatedRow> datedRows(const std::vector<Condition> &conditions, Title title = Title::Left)
{
    std::vector<std::string> columns{"type", "startDate", "dueDate"};
    if (title == Title::Read)
        columns.emplace_back("title");
    const Predicate visible = tasklists::visibleTasks();
    std::vector<DatedRow> rows;
    for (const Condition &condition : conditions) {
        mainContext().visit(
            EntityTask::fetchRequest().where(condition.predicate && visible).along(condition.index), columns,
            [&](const RowReader &row) {
                rows.push_back({row.rowId(), static_cast<TaskType>(row.integer(0)), row.date(1), row.date(2),
                                title == Title::Read ? collationSortKey(row.text(3)) : QByteArray()});
            });
    }
    std::sort(rows.begin(), rows.end(),
              [](const DatedRow &one, const DatedRow &other) { return one.row < other.row; });
    return rows;
}

TaskList listOfDated(const std::vector<DatedRow> &rows)
{
    std::vector<RowId> ids;
    ids.reserve(rows.size());
    for (const DatedRow &row : rows)
        ids.push_back(row.row);
    return tasklists::list(std::move(ids));
}

TaskList listOfThose(const std::vector<DatedRow> &rows, const std::function<bool(const DatedRow &)> &belongs)
{
    std::vector<DatedRow> chosen;
    std::copy_if(rows.begin(), rows.end(), std::back_inserter(chosen), belongs);
    return listOfDated(chosen);
}

/// In which a task of moments stands on a day, be it of 23, 24 or 25 hours.
DaySpan hoursOfDay(Date day)
{
    return {MVDate::getStartOfDay(day), MVDate::getEndOfDay(day)};
}

bool isWithin(const DaySpan &span, OptionalDate date)
{
    return date && *date >= span.first && *date <= span.last;
}

/// All tasks that one of the days inside of a span can show, each by exactly one of the conditions.
///
/// An Appointment inside of it is due there, too, unless it is due before it starts.
std::vector<Condition> conditionsOfMonth(const DaySpan &span)
{
    const Predicate open = Predicate::format("status != %d and dueSomeDay != true", TaskStatus::Done);
    std::vector<Condition> conditions = todosOf(span);
    for (Condition &condition : conditions)
        condition.predicate = condition.predicate && open;
    const std::vector<Predicate> others = {
        Predicate::format("type = %d and dueDate >= %@ and dueDate <= %@ and startDate >= %@",
                          TaskType::Appointment, span.first, span.last, span.first) &&
            open,
        Predicate::format("type = %d and dueDate < startDate and startDate >= %@ and dueDate < %@",
                          TaskType::Appointment, span.first, span.first) &&
            open,
        Predicate::format("type = %d and dueDate >= %@ and dueDate <= %@", TaskType::EmailCall, span.first,
                          span.last)};
    for (const Predicate &other : others)
        conditions.push_back({other});
    return conditions;
}

/// Whether a task that fulfils those conditions is shown by days of the span.
bool isShownIn(const DaySpan &days, const DatedRow &row)
{
    switch (row.type.value_or(TaskType::ToDo)) {
    case TaskType::ToDo:
        return *row.start <= days.last && *row.due >= days.first;
    case TaskType::Appointment:
        return *row.start >= days.first && *row.due <= days.last;
    case TaskType::EmailCall:
        return isWithin(days, row.due);
    }
    return false;
}

/// The longest first, those without a start last.
bool isLonger(const DatedRow &one, const DatedRow &other)
{
    const auto length = [](const DatedRow &row) {
        return row.start && row.due ? std::abs((*row.due - *row.start).count()) : -1.0;
    };
    return length(one) > length(other);
}

} // namespace

TaskList DBWorker::calendarDayAllDayTasks(Date date)
{
    return calendarAllDayTasks(date, 1);
}

TaskList DBWorker::calendarAllDayTasks(Date firstDay, int days)
{
    const Date start = MVDate::getStartOfDay(firstDay);
    const Date next = MVDate::getStartOfDay(MVDate::addDay(days, firstDay));
    std::vector<DatedRow> rows = datedRows(todosOf({start, next}), Title::Read);
    std::erase_if(rows, [next](const DatedRow &row) {
        if (*row.start >= next)
            return true;
        const bool endsOnADayBefore = *row.due < *row.start && *row.due < MVDate::getStartOfDay(*row.start);
        return endsOnADayBefore;
    });
    std::stable_sort(rows.begin(), rows.end(), [](const DatedRow &one, const DatedRow &other) {
        return one.titleKey > other.titleKey;
    });
    return listOfDated(rows);
}

TaskList DBWorker::calendarDayOtherTasks(Date date)
{
    return calendarOtherTasks(date, 1).front();
}

std::vector<TaskList> DBWorker::calendarOtherTasks(Date firstDay, int days)
{
    if (days < 1)
        return {};
    std::vector<DaySpan> hours;
    hours.reserve(static_cast<size_t>(days));
    for (int day = 0; day < days; ++day)
        hours.push_back(hoursOfDay(MVDate::addDay(day, firstDay)));
    const std::vector<Value> types{static_cast<qint64>(TaskType::Appointment),
                                   static_cast<qint64>(TaskType::EmailCall)};
    const std::vector<DatedRow> rows = datedRows({{Predicate::format(
        "type in %@ and dueDate >= %@ and dueDate <= %@", types, hours.front().first, hours.back().last)}});
    std::vector<TaskList> lists;
    lists.reserve(hours.size());
    for (const DaySpan &day : hours)
        lists.push_back(listOfThose(rows, [&day](const DatedRow &row) { return isWithin(day, row.due); }));
    return lists;
}

TaskList DBWorker::getTimeItemsForDate(Date date)
{
    return calendarDayOtherTasks(date);
}

TaskList DBWorker::calendarMonthTasks(Date startDate, Date endDate)
{
    return calendarMonthTasks({{startDate, endDate}}).front();
}

std::vector<TaskList> DBWorker::calendarMonthTasks(const std::vector<DaySpan> &spans)
{
    std::vector<DaySpan> whole;
    whole.reserve(spans.size());
    for (const DaySpan &span : spans)
        whole.push_back({MVDate::getStartOfDay(span.first), MVDate::getEndOfDay(span.last)});
    if (whole.empty())
        return {};
    DaySpan all = whole.front();
    for (const DaySpan &span : whole)
        all = {std::min(all.first, span.first), std::max(all.last, span.last)};
    std::vector<DatedRow> rows = datedRows(conditionsOfMonth(all));
    std::stable_sort(rows.begin(), rows.end(), isLonger);
    std::vector<TaskList> lists;
    lists.reserve(whole.size());
    for (const DaySpan &span : whole)
        lists.push_back(listOfThose(rows, [&span](const DatedRow &row) { return isShownIn(span, row); }));
    return lists;
}
