#pragma once

#include "store/queries/DBWorker.h"
#include "store/queries/ListOrder.h"
#include "store/queries/ListType.h"

#include <span>
#include <unordered_map>
#include <vector>

/// What the task lists are made of: their conditions, their sort keys and the order after the fetch.
namespace tasklists {

enum class Order {
    /// As fetched.
    Fetched,
    /// By effective due date, undated ones last.
    ByDue,
    /// By effective start.
    ByStart,
};

struct Definition
{
    Predicate base;
    SortDescriptors sorting;
    Order order;
    /// What the log says before the error of a fetch that fails.
    QString failureText = QStringLiteral("Cannot fetch");
};

/// One thing that a list asks of a task.
enum class Condition {
    NotDone,
    Done,
    /// The day on which it was done is known.
    HasDoneDate,
    NotSomeday,
    Someday,
    IsToDo,
    /// What can wait for some day: anything but an Appointment.
    IsToDoOrEmailCall,
    HasNoStart,
    /// It starts, or as an Email/Call is due, by the end of today.
    ByToday,
    /// It starts after today and is due, or as an Email/Call is due after today.
    AfterToday,
    HasCategory,
    /// Its calendar can be seen.
    IsVisible,
};

struct Requirement
{
    Condition condition;
    Predicate predicate;
};

/// All that a list asks of a task: it shows the tasks that meet every one of them, less what its filter
/// leaves out. Visibility comes last. Nothing but visibility for `Home` and `ProjectDetail`, which are no
/// lists of one rule.
std::vector<Requirement> requirements(ListType list);

Definition inbox();
Definition today();
Definition scheduled();
Definition someday();
Definition notDone();
Definition done();
/// Those of which it is known when they were done.
Definition doneByDay();
/// Those without a category, done ones included.
Definition withoutCategory();

/// Passes the tasks whose calendar the user can see: all of them in the sample store, and where no task lies
/// on another.
Predicate visibleTasks();

/// A definition with a filter and the condition of visibility, ready to be fetched.
FetchRequest request(const Definition &definition, const std::vector<Predicate> &filter = {});

/// What is read of the rows of a list beside their order.
struct Reading
{
    std::vector<Predicate> filter = {};
    /// The column that groups; empty for none.
    std::string groupColumn = {};
    /// Whether the day of that column is the group, rather than its text.
    bool isGroupedByDay = false;
    /// Whether an index begins with that column, so that the groups of all tasks are read along it rather
    /// than from each row of the list.
    bool isGroupIndexed = false;
    /// The only rows that are looked at; absent for all.
    std::optional<std::vector<RowId>> among = {};
};

/// A task's row with what its group is decided by: nothing unless a column was asked for.
struct PlacedRow
{
    RowId row = 0;
    GroupKey group;
};

/// The rows of a list in its order.
std::vector<PlacedRow> placedRows(const Definition &definition, const Reading &reading = {});

/// All that the place of a row in its list depends on.
struct OrderKey
{
    listorder::Key key;
    /// Only where the order falls back on it.
    QString title;
    /// The values of the columns that the list is fetched by.
    std::vector<Value> fetched;
};
using OrderKeys = std::unordered_map<RowId, OrderKey>;

/// The keys of some rows, whether they are on the list or not.
OrderKeys orderKeys(const Definition &definition, std::vector<RowId> rows);
/// Whether one row comes before another in the order that `placedRows` gives; false for two that the list
/// does not order.
bool isBefore(const Definition &definition, const OrderKey &one, const OrderKey &other);

/// The list of rows that were placed.
TaskList list(std::vector<RowId> rows);

} // namespace tasklists
