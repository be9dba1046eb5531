#include "shell/tasks/TaskScreens.h"

#include "foundation/Localization.h"
#include "store/queries/DBWorker.h"
#include "widgets/BusyCursor.h"

using namespace Qt::Literals::StringLiterals;

// Inbox

InboxViewController::InboxViewController(QWidget *parent)
    : TabTaskViewController(
          {.type = ListType::Inbox,
           .title = localized(u"Inbox"_s),
           .icon = u"inbox"_s,
           .emptySentence = localized(u"Your inbox is empty. New ideas land here first."_s)},
          parent)
{
    tableViewTasks()->setRowsMovable(true);
    connect(tableViewTasks(), &TableViewExtended::rowsDropped, this,
            [this](const std::set<int> &rows, int target) { moveRows(rows, target); });
    connect(tableViewTasks(), &TableViewExtended::moveRequested, this, &InboxViewController::moveByKey);
}

TaskListQuery InboxViewController::query(Grouping) const
{
    return {tasklists::inbox(), DBWorker::predicateTasks(filter()), GroupedBy::Nothing, ListEnd::GapAlways};
}

void InboxViewController::moveRows(const std::set<int> &rows, int target)
{
    const BusyCursor busy;
    DBWorker::newPositionInboxTask(rows, target, tasksModel().rows().tasks());
    reloadData();
    if (const int current = tableViewTasks()->currentRow(); current >= 0)
        tableViewTasks()->scrollToRow(current);
}

/// Rows fall above a target, so a row goes down by the one below it going up.
void InboxViewController::moveByKey(int direction)
{
    const std::set<int> rows = tableViewTasks()->selectedRows();
    if (rows.empty())
        return;
    const int first = *rows.begin();
    const int below = *rows.rbegin() + 1;
    if (direction < 0 && tasksModel().isItem(first - 1))
        moveRows(rows, first - 1);
    else if (direction > 0 && tasksModel().isItem(below))
        moveRows({below}, first);
}

// Lists with a grouping

TodayViewController::TodayViewController(QWidget *parent)
    : TabTaskViewController({.type = ListType::Today,
                             .title = localized(u"Today"_s),
                             .icon = u"today"_s,
                             .emptySentence = localized(u"Nothing is waiting for you today."_s),
                             .groupedType = 0},
                            parent)
{}

TaskListQuery TodayViewController::query(Grouping grouping) const
{
    return TaskListQuery::of(tasklists::today(), grouping, filter());
}

ScheduledViewController::ScheduledViewController(QWidget *parent)
    : TabTaskViewController({.type = ListType::Scheduled,
                             .title = localized(u"Scheduled"_s),
                             .icon = u"scheduled"_s,
                             .emptySentence = localized(u"Nothing is planned for the days to come."_s),
                             .groupedType = 1},
                            parent)
{}

TaskListQuery ScheduledViewController::query(Grouping grouping) const
{
    return TaskListQuery::of(tasklists::scheduled(), grouping, filter());
}

SomedayViewController::SomedayViewController(QWidget *parent)
    : TabTaskViewController({.type = ListType::Someday,
                             .title = localized(u"Someday"_s),
                             .icon = u"someday"_s,
                             .emptySentence = localized(u"Plans without a date find their place here."_s),
                             .groupedType = 2},
                            parent)
{}

TaskListQuery SomedayViewController::query(Grouping grouping) const
{
    return TaskListQuery::of(tasklists::someday(), grouping, filter());
}

NotDoneViewController::NotDoneViewController(QWidget *parent)
    : TabTaskViewController({.type = ListType::NotDone,
                             .title = localized(u"Not Done"_s),
                             .icon = u"notdone"_s,
                             .emptySentence = localized(u"Everything is done."_s),
                             .groupedType = 3},
                            parent)
{}

TaskListQuery NotDoneViewController::query(Grouping grouping) const
{
    return TaskListQuery::of(tasklists::notDone(), grouping, filter());
}

// Lists that come grouped

/// These two begin with a header, beside which a detail begins.
constexpr int lowInset = 10;

UserDelegateViewController::UserDelegateViewController(QWidget *parent)
    : TabTaskViewController({.type = ListType::Delegated,
                             .title = localized(u"Delegated"_s),
                             .icon = u"delegated"_s,
                             .emptySentence = localized(u"No task is in other hands."_s),
                             .detailPlace = {.topInset = lowInset}},
                            parent)
{}

TaskListQuery UserDelegateViewController::query(Grouping) const
{
    return TaskListQuery::delegated();
}

DoneViewController::DoneViewController(QWidget *parent)
    : TabTaskViewController({.type = ListType::Done,
                             .title = localized(u"Done"_s),
                             .icon = u"done"_s,
                             .emptySentence = localized(u"What you finish is kept here, day by day."_s),
                             .detailPlace = {.topInset = lowInset}},
                            parent)
{}

TaskListQuery DoneViewController::query(Grouping) const
{
    return TaskListQuery::doneByDay();
}
