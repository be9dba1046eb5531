#include "store/queries/ListDefinitions.h"

#include "records/dates/MVDate.h"
#include "store/entities/MainContext.h"
#include "store/entities/Model.h"
#include "store/state/CoreContext.h"

#include <map>
#include <unordered_map>

namespace tasklists {

namespace {

/// The calendars that tasks name, each once. An index gives the next greater one, so that this takes a step
/// for each calendar and none for each task.
std::vector<QString> namedCalendars()
{
    std::vector<QString> references;
    const auto nextAfter = [&references](const QString &last) {
        const FetchRequest next =
            EntityTask::fetchRequest()
                .where(Predicate::format("typeCalendarID != nil and typeCalendarID > %@", last))
                .sortedBy({ascending("typeCalendarID")})
                .limitedTo(1);
        const size_t known = references.size();
        mainContext().visit(next, {"typeCalendarID"},
                            [&references](const RowReader &row) { references.push_back(row.text(0)); });
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

namespace {

Predicate byToday(Date end)
{
    return Predicate::format("(type = %d and dueDate <= %@) or ( (type = %d or type = %d) and startDate <> "
                             "nil and startDate <= %@)",
                             TaskType::EmailCall, end, TaskType::ToDo, TaskType::Appointment, end);
}

Predicate afterToday(Date end)
{
    return Predicate::format(
        "((type = %d or type = %d) and startDate <> nil and dueDate <> nil and startDate > %@) or (type = %d "
        "and dueDate <> nil and dueDate > %@)",
        TaskType::ToDo, TaskType::Appointment, end, TaskType::EmailCall, end);
}

Predicate predicateOf(Condition condition)
{
    switch (condition) {
    case Condition::NotDone:
        return Predicate::format("status != %d", TaskStatus::Done);
    case Condition::Done:
        return Predicate::format("status = %d", TaskStatus::Done);
    case Condition::HasDoneDate:
        return Predicate::format("expirationDate != nil");
    case Condition::NotSomeday:
        return Predicate::format("dueSomeDay = %@", false);
    case Condition::Someday:
        return Predicate::format("dueSomeDay = %@", true);
    case Condition::IsToDo:
        return Predicate::format("type == %d", TaskType::ToDo);
    case Condition::IsToDoOrEmailCall:
        return Predicate::format("type = %d or type = %d", TaskType::ToDo, TaskType::EmailCall);
    case Condition::HasNoStart:
        return Predicate::format("startDate == nil");
    case Condition::ByToday:
        return byToday(endOfToday());
    case Condition::AfterToday:
        return afterToday(endOfToday());
    case Condition::HasCategory:
        return Predicate::format("category != nil");
    case Condition::IsVisible:
        return visibleTasks();
    }
    return Predicate();
}

std::vector<Condition> conditionsOf(ListType list)
{
    using enum Condition;
    switch (list) {
    case ListType::Inbox:
        return {NotDone, NotSomeday, IsToDo, HasNoStart};
    case ListType::Today:
        return {NotDone, NotSomeday, ByToday};
    case ListType::Scheduled:
        return {NotDone, NotSomeday, AfterToday};
    case ListType::Someday:
        return {NotDone, Someday, IsToDoOrEmailCall};
    case ListType::Categories:
        return {NotDone, HasCategory};
    case ListType::Delegated:
    case ListType::NotDone:
        return {NotDone};
    case ListType::Done:
        return {Done, HasDoneDate};
    case ListType::Home:
    case ListType::ProjectDetail:
        break;
    }
    return {};
}

/// What the Inbox asks here is that the day is not known to be left open.
Predicate predicateOf(Condition condition, ListType list)
{
    if (list == ListType::Inbox && condition == Condition::NotSomeday)
        return Predicate::format("dueSomeDay != true");
    return predicateOf(condition);
}

Predicate baseOf(ListType list)
{
    std::vector<Predicate> all;
    for (const Condition condition : conditionsOf(list))
        all.push_back(predicateOf(condition, list));
    return Predicate::allOf(all);
}

} // namespace

std::vector<Requirement> requirements(ListType list)
{
    std::vector<Requirement> all;
    for (const Condition condition : conditionsOf(list))
        all.push_back({condition, predicateOf(condition, list)});
    all.push_back({Condition::IsVisible, visibleTasks()});
    return all;
}

Definition inbox()
{
    return {baseOf(ListType::Inbox), {ascending("position")}, Order::Fetched};
}

Definition today()
{
    return {baseOf(ListType::Today), {descending("dueDate"), ascending("title")}, Order::ByDue};
}

Definition scheduled()
{
    return {baseOf(ListType::Scheduled), {ascending("startDate"), ascending("title")}, Order::ByStart};
}

Definition someday()
{
    return {baseOf(ListType::Someday), {ascending("title")}, Order::Fetched};
}

Definition notDone()
{
    return {baseOf(ListType::NotDone), {descending("dueDate"), ascending("title")}, Order::ByDue};
}

Definition done()
{
    return {predicateOf(Condition::Done), {ascending("title")}, Order::Fetched};
}

Definition doneByDay()
{
    return {baseOf(ListType::Done), {ascending("expirationDate")}, Order::Fetched};
}

Definition withoutCategory()
{
    return {Predicate::format("category == nil"),
            {ascending("startDate")},
            Order::Fetched,
            QStringLiteral("Can't get task")};
}

Predicate visibleTasks()
{
    if (DBWorker::isSample())
        return Predicate();
    std::vector<QString> visible{QStringLiteral("")};
    for (const QString &reference : CoreContext::current().visibleCalendars())
        visible.push_back(reference);
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
    return EntityTask::fetchRequest()
        .where(Predicate::allOf(all))
        .sortedBy(definition.sorting)
        .reportedAs(definition.failureText);
}

namespace {

struct KeyedRow
{
    listorder::Key key;
    /// Only where the order falls back on it.
    QString title;
    /// A place in `Groups`.
    int group = 0;
};

/// What the order needs of each row.
std::vector<std::string> columnsFor(Order order)
{
    switch (order) {
    case Order::ByDue:
        return {"type", "dueDate", "dueSomeDay"};
    case Order::ByStart:
        return {"type", "startDate", "dueDate", "title"};
    case Order::Fetched:
        return {};
    }
    return {};
}

std::optional<TaskType> typeIn(const RowReader &row, int column)
{
    return row.isNull(column) ? std::nullopt : std::optional(static_cast<TaskType>(row.integer(column)));
}

KeyedRow keyedRow(Order order, const RowReader &row, listorder::EffectiveDates &dates)
{
    switch (order) {
    case Order::ByDue:
        return {{row.rowId(), dates.due(typeIn(row, 0), row.date(1)), row.integer(2) != 0}, {}};
    case Order::ByStart:
        return {{row.rowId(), dates.start(typeIn(row, 0), row.date(1), row.date(2)), false}, row.text(3)};
    case Order::Fetched:
        break;
    }
    return {{row.rowId(), {}, false}, {}};
}

bool isTitleBefore(const QString &one, const QString &other)
{
    if (one.isNull() || other.isNull())
        return one.isNull() && !other.isNull();
    return std::is_lt(compareValues(Value(one), Value(other)));
}

/// By start, rows of one moment stand by title, however they were fetched.
template <typename Row>
bool isBeforeByStart(const Row &one, const Row &other)
{
    if (one.key.date != other.key.date)
        return one.key.date < other.key.date;
    return isTitleBefore(one.title, other.title);
}

/// The order after the fetch.
void sortRows(Order order, std::vector<KeyedRow> &rows)
{
    if (order == Order::ByDue) {
        listorder::sortOneSided(rows, [](const KeyedRow &first, const KeyedRow &second) {
            return listorder::isAfterByDue(first.key, second.key);
        });
    } else if (order == Order::ByStart) {
        std::stable_sort(rows.begin(), rows.end(), isBeforeByStart<KeyedRow>);
    }
}

/// Reads the days of moments; they come in order, so that nearly always it is the day of the last one.
class Days
{
public:
    Date dayOf(Date moment)
    {
        if (!start || moment < *start || moment > end) {
            start = MVDate::getStartOfDay(moment);
            end = MVDate::getEndOfDay(moment);
        }
        return *start;
    }

private:
    OptionalDate start;
    Date end;
};

/// The groups of a list that is being read. Many rows share few of them, so that each is made once.
class Groups
{
public:
    explicit Groups(const Reading &groupedList)
        : reading(groupedList)
        , keys(1)
    {
        if (isReadAhead())
            readAhead();
    }

    /// The column that a row is asked for; empty for none.
    std::string column() const { return isReadAhead() ? std::string() : reading.groupColumn; }
    /// The place of a row's group among the keys; 0 if it has none.
    int placeOf(const RowReader &row, int column)
    {
        if (isReadAhead()) {
            const auto known = byRow.find(row.rowId());
            return known == byRow.end() ? 0 : known->second;
        }
        if (reading.isGroupedByDay)
            return placeOfDay(days.dayOf(row.date(column).value_or(Date())));
        return reading.groupColumn.empty() ? 0 : placeOfText(row, column);
    }
    const GroupKey &keyAt(int place) const { return keys[static_cast<size_t>(place)]; }

private:
    bool isReadAhead() const { return reading.isGroupIndexed && !reading.among; }
    void readAhead()
    {
        const FetchRequest grouped = EntityTask::fetchRequest()
                                         .where(Predicate::format(reading.groupColumn + " != nil"))
                                         .sortedBy({ascending(reading.groupColumn)});
        std::string last;
        mainContext().visit(grouped, {reading.groupColumn}, [&](const RowReader &row) {
            if (const std::string_view bytes = row.utf8(0); keys.size() == 1 || bytes != last) {
                keys.emplace_back(row.text(0));
                last = bytes;
            }
            byRow.emplace(row.rowId(), lastPlace());
        });
    }
    int placeOfDay(Date day)
    {
        if (keys.back() != GroupKey(day))
            keys.emplace_back(day);
        return lastPlace();
    }
    int placeOfText(const RowReader &row, int column)
    {
        const std::string_view bytes = row.utf8(column);
        if (const auto known = places.find(bytes); known != places.end())
            return known->second;
        keys.emplace_back(row.text(column));
        places.emplace(bytes, lastPlace());
        return lastPlace();
    }
    int lastPlace() const { return static_cast<int>(keys.size()) - 1; }

    const Reading &reading;
    std::vector<GroupKey> keys;
    std::unordered_map<RowId, int> byRow;
    std::map<std::string, int, std::less<>> places;
    Days days;
};

} // namespace

std::vector<PlacedRow> placedRows(const Definition &definition, const Reading &reading)
{
    std::vector<std::string> columns = columnsFor(definition.order);
    const int groupPlace = static_cast<int>(columns.size());
    Groups groups(reading);
    if (const std::string column = groups.column(); !column.empty())
        columns.push_back(column);
    FetchRequest wanted = request(definition, reading.filter);
    wanted.candidates = reading.among;
    std::vector<KeyedRow> rows;
    listorder::EffectiveDates dates;
    mainContext().visit(wanted, columns, [&](const RowReader &row) {
        rows.push_back(keyedRow(definition.order, row, dates));
        rows.back().group = groups.placeOf(row, groupPlace);
    });
    sortRows(definition.order, rows);
    std::vector<PlacedRow> placed;
    placed.reserve(rows.size());
    for (const KeyedRow &row : rows)
        placed.push_back({row.key.row, groups.keyAt(row.group)});
    return placed;
}

namespace {

const EntityDescription &taskEntity()
{
    static const EntityDescription &entity = organiserModel().requireEntity(EntityTask::entityName);
    return entity;
}

Value valueIn(const RowReader &row, int place, AttributeType type)
{
    if (row.isNull(place))
        return {};
    return type == AttributeType::String ? Value(row.text(place)) : Value(row.number(place));
}

/// As SQLite orders two values: what is absent is less than anything.
std::weak_ordering inFetch(const Value &one, const Value &other)
{
    if (isAbsent(one) || isAbsent(other))
        return isAbsent(other) <=> isAbsent(one);
    const std::partial_ordering order = compareValues(one, other);
    return std::is_lt(order)   ? std::weak_ordering::less
           : std::is_gt(order) ? std::weak_ordering::greater
                               : std::weak_ordering::equivalent;
}

/// By due date, undated rows stand last; among them those of some day first.
std::weak_ordering byDue(const listorder::Key &one, const listorder::Key &other)
{
    if (one.date.has_value() != other.date.has_value())
        return other.date.has_value() <=> one.date.has_value();
    if (listorder::isAfterByDue(other, one))
        return std::weak_ordering::less;
    return listorder::isAfterByDue(one, other) ? std::weak_ordering::greater : std::weak_ordering::equivalent;
}

std::weak_ordering byStart(const OrderKey &one, const OrderKey &other)
{
    if (isBeforeByStart(one, other))
        return std::weak_ordering::less;
    return isBeforeByStart(other, one) ? std::weak_ordering::greater : std::weak_ordering::equivalent;
}

} // namespace

OrderKeys orderKeys(const Definition &definition, std::vector<RowId> rows)
{
    std::vector<std::string> columns = columnsFor(definition.order);
    const int firstFetched = static_cast<int>(columns.size());
    std::vector<AttributeType> types;
    for (const SortDescriptor &descriptor : definition.sorting) {
        columns.push_back(descriptor.key);
        types.push_back(taskEntity().columnType(taskEntity().columnOf(descriptor.key)));
    }
    OrderKeys keys;
    listorder::EffectiveDates dates;
    mainContext().visit(
        EntityTask::fetchRequest().among(std::move(rows)), columns, [&](const RowReader &row) {
            KeyedRow keyed = keyedRow(definition.order, row, dates);
            OrderKey key{keyed.key, std::move(keyed.title), {}};
            for (int place = firstFetched; place < static_cast<int>(columns.size()); ++place)
                key.fetched.push_back(valueIn(row, place, types[static_cast<size_t>(place - firstFetched)]));
            keys.emplace(row.rowId(), std::move(key));
        });
    return keys;
}

bool isBefore(const Definition &definition, const OrderKey &one, const OrderKey &other)
{
    std::weak_ordering order = std::weak_ordering::equivalent;
    if (definition.order == Order::ByDue)
        order = byDue(one.key, other.key);
    else if (definition.order == Order::ByStart)
        order = byStart(one, other);
    for (size_t place = 0; std::is_eq(order) && place < definition.sorting.size(); ++place) {
        order = inFetch(one.fetched[place], other.fetched[place]);
        if (!definition.sorting[place].isAscending)
            order = 0 <=> order;
    }
    return std::is_lt(order);
}

TaskList list(std::vector<RowId> rows)
{
    return TaskList(mainContext(), taskEntity(), std::move(rows));
}

} // namespace tasklists
