#include "shell/tasks/TabTaskViewController.h"

#include "filters/TaskGrouping.h"
#include "filters/TasksTabTopView.h"
#include "foundation/Clock.h"
#include "foundation/Localization.h"
#include "records/ShellAlerts.h"
#include "records/TaskBatch.h"
#include "records/TaskManager.h"
#include "records/TaskPlacement.h"
#include "shell/tasks/TaskDetailViewController.h"
#include "shell/tasks/TaskPopupMenu.h"
#include "shell/tasks/TaskTableCell.h"
#include "widgets/LongWork.h"
#include "widgets/MVSegmentView.h"

using namespace Qt::Literals::StringLiterals;

static RecordListDescription listDescriptionOf(const TaskListDescription &description)
{
    return {.title = description.title,
            .icon = description.icon,
            .entity = EntityTask::entityName,
            .tableName = u"tableViewTasks"_s,
            .addType = description.addType,
            .emptySentence = description.emptySentence,
            .filteredSentence = localized(u"No task passes the filter."_s),
            .deletingSentence = localized(u"Deleting the selected tasks"_s),
            .detailPlace = description.detailPlace};
}

TabTaskViewController::TabTaskViewController(const TaskListDescription &listDescription, QWidget *parent)
    : TabTaskViewController(listDescription, new TaskListModel(listDescription.type), parent)
{}

TabTaskViewController::TabTaskViewController(const TaskListDescription &listDescription,
                                             TaskListModel *taskModel, QWidget *parent)
    : RecordListScreen(listDescriptionOf(listDescription), taskModel, new TaskTableCell, parent)
    , description(listDescription)
    , model(taskModel)
{
    model->setQuery([this] { return query(grouping()); });
    if (TasksFilter::isFilterable(static_cast<int>(type()))) {
        setUpFilter(std::make_shared<TasksFilter>(static_cast<int>(type())));
        setUpGrouping();
    }
    addButton(ToolBarButton::Calendars);
    connect(table(), &TableViewExtended::checkToggled, this, &TabTaskViewController::toggleDone);
}

// Grouping

void TabTaskViewController::setUpGrouping()
{
    if (description.groupedType < 0)
        return;
    tasksGroupedView =
        new MVSegmentView({localized(u"Category"_s), localized(u"Project"_s), localized(u"Priority"_s)});
    tasksGroupedView->setObjectName(u"tasksGroupedView"_s);
    tasksGroupedView->setAccessibleName(localized(u"Group by"_s));
    tasksGroupedView->setHaveNotSelect(true);
    tasksGroupedView->setSelectedIndex(TaskGrouping(description.groupedType).selectedIndex());
    connect(tasksGroupedView, &MVSegmentView::selectedIndexChanged, this,
            &TabTaskViewController::saveGrouping);
    filterStrip()->setGrouping(tasksGroupedView);
}

void TabTaskViewController::saveGrouping(int index)
{
    TaskGrouping(description.groupedType).setSelectedIndex(index);
    reload(SelectionMemory::Otherwise::Nothing);
}

int TabTaskViewController::groupingIndex() const
{
    return tasksGroupedView ? tasksGroupedView->selectedIndex() : -1;
}

// What a task is to the window

NewTaskRequest TabTaskViewController::newTaskRequest() const
{
    return NewTaskRequest::ofList(type(), Clock::now());
}

TaskPtr TabTaskViewController::selectedTask() const
{
    return std::static_pointer_cast<EntityTask>(selectedRecord());
}

QString TabTaskViewController::explanationOf(const TaskPtr &task) const
{
    return TaskPlacement(task).explanation(type(), filter());
}

QRect TabTaskViewController::placeOf(const TaskPtr &task) const
{
    return placeOfRecord(task);
}

DetailViewController *TabTaskViewController::makePane(const ObjectPtr &record)
{
    return new TaskDetailViewController(std::static_pointer_cast<EntityTask>(record));
}

void TabTaskViewController::severalOpened()
{
    ShellAlerts::alertSelectOneTask();
}

std::vector<TaskPtr> TabTaskViewController::tasksAt(const std::set<int> &rows) const
{
    std::vector<TaskPtr> tasks;
    for (const ObjectPtr &record : recordsAt(rows))
        tasks.push_back(std::static_pointer_cast<EntityTask>(record));
    return tasks;
}

// Deleting

static bool isReadOnly(const EntityTask &task)
{
    return !task.allowsContentModifications().value_or(true);
}

std::vector<ObjectPtr> TabTaskViewController::removable(const std::vector<ObjectPtr> &records)
{
    std::vector<ObjectPtr> going;
    TaskPtr barred;
    for (const ObjectPtr &record : records) {
        const auto task = std::static_pointer_cast<EntityTask>(record);
        if (isReadOnly(*task))
            barred = task;
        else
            going.push_back(task);
    }
    if (going.empty() && barred)
        ShellAlerts::alertEditingEvent(localized(barred->calendarTitle()));
    return going;
}

void TabTaskViewController::remove(const std::vector<ObjectPtr> &records,
                                   const std::function<void()> &removed, const Step &step)
{
    TaskManager::deleteTasks(records, removed, step);
}

// Changing tasks in their rows

/// Many take their time, which is shown.
template <typename Change, typename... Value>
void TabTaskViewController::changeTasks(const std::vector<TaskPtr> &tasks, Change change,
                                        const Value &...value)
{
    LongWork work(tasks.size(), localized(u"Changing the selected tasks"_s));
    changeInRows({tasks.begin(), tasks.end()},
                 [&] { change(tasks, value..., [&work] { return work.step(); }); });
}

void TabTaskViewController::toggleDone(const std::set<int> &rows)
{
    const std::vector<TaskPtr> tasks = tasksAt(rows);
    const auto isBarred = [](const TaskPtr &task) { return isReadOnly(*task); };
    if (!tasks.empty() && std::ranges::all_of(tasks, isBarred))
        return ShellAlerts::alertEditingEvent(localized(tasks.front()->calendarTitle()));
    changeTasks(tasks, &TaskBatch::toggleDone);
}

void TabTaskViewController::setUpMenu()
{
    taskPopupMenu = new TaskPopupMenu(this);
    const auto selected = [this] { return tasksAt(table()->selectedRows()); };
    connect(taskPopupMenu, &TaskPopupMenu::statusChosen, this,
            [=, this](TaskStatus status) { changeTasks(selected(), &TaskBatch::setStatus, status); });
    connect(taskPopupMenu, &TaskPopupMenu::priorityChosen, this,
            [=, this](Priority priority) { changeTasks(selected(), &TaskBatch::setPriority, priority); });
    connect(taskPopupMenu, &TaskPopupMenu::categoryChosen, this, [=, this](const CategoryPtr &category) {
        changeTasks(selected(), &TaskBatch::setCategory, category);
    });
    connect(taskPopupMenu, &TaskPopupMenu::whyChosen, this, &TabTaskViewController::whyRequested);
    connect(taskPopupMenu, &TaskPopupMenu::deleteChosen, this, &TabTaskViewController::removeSelection);
}

void TabTaskViewController::showMenu(const QPoint &globalPosition)
{
    if (!taskPopupMenu)
        setUpMenu();
    taskPopupMenu->setTasks(tasksAt(table()->selectedRows()));
    taskPopupMenu->popup(globalPosition);
}
