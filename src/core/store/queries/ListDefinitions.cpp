#include "store/queries/ListDefinitions.h"

#include "calendarsync/CalendarEvent.h"
#include "records/MVTask.h"
#include "records/dates/MVDate.h"
#include "store/AppDelegate.h"
#include "store/entities/Model.h"

namespace tasklists {

namespace {

constexpr int toDo = static_cast<int>(TaskType::ToDo);
constexpr int appointment = static_cast<int>(TaskType::Appointment);
constexpr int emailCall = static_cast<int>(TaskType::EmailCall);
constexpr int statusDone = static_cast<int>(TaskStatus::Done);

/// The calendars that tasks name, each once. An index gives the next greater one, so that this takes a step for each calendar
/// and none for each task.
std::vector<QString> namedCalendars()
{
    std::vector<QString> references;
    const auto nextAfter = [&references](const QString &last) {
        const FetchRequest next = EntityTask::fetchRequest()
                                      .where(Predicate::format("typeCalendarID != nil and typeCalendarID > %@", last))
                                      .sortedBy({ascending("typeCalendarID")})
                                      .limitedTo(1);
        const size_t known = references.size();
        context().visit(next, {"typeCalendarID"}, [&references](const RowReader &row) { references.push_back(row.text(0)); });
        return references.size() > known;
    };
    while (nextAfter(references.empty() ? QStringLiteral("") : references.back())) {
    }
    return references;
}

Date endOfToday()
{
    return MVDate::getEndOfDay(MVDate::date());
}

} // namespace

ManagedObjectContext &context()
{
    return AppDelegate::shared()->managedObjectContext();
}

Definition inbox()
{
    return {Predicate::format("status != %d and dueSomeDay != true and startDate ==  nil and type == %d", statusDone, toDo),
            {ascending("position")},
            Order::Fetched};
}

Definition today()
{
    const Date end = endOfToday();
    return {Predicate::format("((type = %d and dueDate <= %@) or ( (type = %d or type = %d) and startDate <> nil and "
                              "startDate <= %@)) and (status <> %d) and (dueSomeDay = %@)",
                              emailCall, end, toDo, appointment, end, statusDone, 0),
            {descending("dueDate"), ascending("title")},
            Order::ByDue};
}

Definition scheduled()
{
    const Date end = endOfToday();
    return {Predicate::format(
                "(((type = %d or type = %d) and startDate <> nil and dueDate <> nil and startDate > %@) or (type = %d "
                "and dueDate <> nil and dueDate > %@)) and (status <> %d) and (dueSomeDay = %@)",
                toDo, appointment, end, emailCall, end, statusDone, false),
            {ascending("startDate"), ascending("title")},
            Order::ByStart};
}

Definition someday()
{
    return {Predicate::format("(type = %d or type = %d) and (status <> %d) and (dueSomeDay = %@)", toDo, emailCall,
                              statusDone, true),
            {ascending("title")},
            Order::Fetched};
}

Definition notDone()
{
    return {Predicate::format("status != %d", statusDone), {descending("dueDate"), ascending("title")}, Order::ByDue};
}

Definition done()
{
    return {Predicate::format("status = %d", statusDone), {ascending("title")}, Order::Fetched};
}

Predicate visibleTasks()
{
    if (DBWorker::isSample())
        return Predicate();
    std::vector<QString> visible{QStringLiteral("")};
    for (const EKCalendar &calendar : CalendarEvent::getAllAccessCalendars())
        visible.push_back(CalendarEvent::identifierOfCalendar(calendar));
    const std::vector<QString> named = namedCalendars();
    const bool hidesNone = std::all_of(named.begin(), named.end(), [&visible](const QString &reference) {
        return std::find(visible.begin(), visible.end(), reference) != visible.end();
    });
    if (hidesNone)
        return Predicate();
    return Predicate::format("typeCalendarID == nil or typeCalendarID in %@", visible);
}

FetchRequest request(const Definition &definition, const std::vector<Predicate> &filter)
{
    std::vector<Predicate> all{definition.base};
    all.insert(all.end(), filter.begin(), filter.end());
    all.push_back(visibleTasks());
    return EntityTask::fetchRequest().where(Predicate::allOf(all)).sortedBy(definition.sorting);
}

namespace {

struct KeyedRow
{
    listorder::Key key;
    QString group;
};

/// What the order needs of each row; a column that only groups comes last.
std::vector<std::string> columnsFor(Order order, const std::string &groupColumn)
{
    std::vector<std::string> columns;
    if (order == Order::ByDue)
        columns = {"type", "dueDate", "dueSomeDay"};
    else if (order == Order::ByStart)
        columns = {"type", "startDate", "dueDate"};
    if (!groupColumn.empty())
        columns.push_back(groupColumn);
    return columns;
}

std::optional<int> optionalInteger(const RowReader &row, int column)
{
    return row.isNull(column) ? std::nullopt : std::optional(static_cast<int>(row.integer(column)));
}

listorder::Key keyOf(Order order, const RowReader &row, listorder::EffectiveDates &dates)
{
    switch (order) {
    case Order::ByDue:
        return {row.rowId(), dates.due(optionalInteger(row, 0), row.date(1)), row.integer(2) != 0};
    case Order::ByStart:
        return {row.rowId(), dates.start(optionalInteger(row, 0), row.date(1), row.date(2)), false};
    default:
        return {row.rowId(), {}, false};
    }
}

} // namespace

std::vector<PlacedRow> placedRows(const Definition &definition, const std::vector<Predicate> &filter,
                                  const std::string &groupColumn)
{
    const std::vector<std::string> columns = columnsFor(definition.order, groupColumn);
    const int groupPlace = groupColumn.empty() ? -1 : static_cast<int>(columns.size()) - 1;
    std::vector<KeyedRow> rows;
    listorder::EffectiveDates dates;
    context().visit(request(definition, filter), columns, [&](const RowReader &row) {
        rows.push_back({keyOf(definition.order, row, dates), groupPlace < 0 ? QString() : row.text(groupPlace)});
    });
    if (definition.order != Order::Fetched) {
        const auto isAfter = definition.order == Order::ByDue ? listorder::isAfterByDue : listorder::isAfterByStart;
        listorder::sortOneSided(rows, [isAfter](const KeyedRow &first, const KeyedRow &second) {
            return isAfter(first.key, second.key);
        });
    }
    std::vector<PlacedRow> placed;
    placed.reserve(rows.size());
    for (KeyedRow &row : rows)
        placed.push_back({row.key.row, std::move(row.group)});
    return placed;
}

TaskList list(std::vector<RowId> rows)
{
    static const EntityDescription &entity = organiserModel().requireEntity(EntityTask::entityName);
    return TaskList(context(), entity, std::move(rows));
}

} // namespace tasklists
