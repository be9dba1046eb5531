#pragma once

#include "store/queries/DBWorker.h"
#include "store/queries/ListOrder.h"

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

Definition inbox();
Definition today();
Definition scheduled();
Definition someday();
Definition notDone();
Definition done();

/// Passes the tasks whose calendar the user can see: all of them in the sample store, and where no task lies
/// on another.
Predicate visibleTasks();

/// A definition with a filter and the condition of visibility, ready to be fetched.
FetchRequest request(const Definition &definition, const std::vector<Predicate> &filter = {});

/// A task's row with what its group is decided by; `group` is empty unless a column was asked for.
struct PlacedRow
{
    RowId row = 0;
    QString group;
};

/// The rows of a list in its order; with the texts of one more column on request.
std::vector<PlacedRow> placedRows(const Definition &definition, const std::vector<Predicate> &filter,
                                  const std::string &groupColumn = {});

/// The list of rows that were placed.
TaskList list(std::vector<RowId> rows);

} // namespace tasklists
