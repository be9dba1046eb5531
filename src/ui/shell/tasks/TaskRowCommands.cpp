#include "shell/tasks/TaskRowCommands.h"

#include "foundation/Clock.h"
#include "foundation/Localization.h"
#include "records/DatePickerState.h"
#include "records/ShellAlerts.h"
#include "records/TaskBatch.h"
#include "shell/tasks/TaskPopupMenu.h"
#include "widgets/DatePickerPopover.h"
#include "widgets/LongWork.h"
#include "widgets/TableViewExtended.h"

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

static bool isReadOnly(const EntityTask &task)
{
    return !task.allowsContentModifications().value_or(true);
}

/// The focus moves while widgets go, when none may be asked for its children.
static std::vector<TaskRowCommands *> &living()
{
    static std::vector<TaskRowCommands *> all;
    return all;
}

TaskRowCommands::TaskRowCommands(QWidget &list, std::function<Tasks()> selected, ChangeInRows changeInRows)
    : QObject(&list)
    , menuParent(list)
    , selectedTasks(std::move(selected))
    , inRows(std::move(changeInRows))
{
    living().push_back(this);
}

TaskRowCommands::~TaskRowCommands()
{
    std::erase(living(), this);
}

const std::vector<TaskRowCommands *> &TaskRowCommands::ofAllLists()
{
    return living();
}

std::vector<ObjectPtr> TaskRowCommands::removable(const std::vector<ObjectPtr> &tasks)
{
    std::vector<ObjectPtr> going;
    TaskPtr barred;
    for (const ObjectPtr &record : tasks) {
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

/// Many take their time, which is shown.
template <typename Change, typename... Value>
void TaskRowCommands::changeTasks(const Tasks &tasks, Change change, const Value &...value)
{
    LongWork work(tasks.size(), localized(u"Changing the selected tasks"_s));
    inRows({tasks.begin(), tasks.end()}, [&] { change(tasks, value..., [&work] { return work.step(); }); });
}

bool TaskRowCommands::canChange(const Tasks &tasks)
{
    const auto isBarred = [](const TaskPtr &task) { return isReadOnly(*task); };
    if (tasks.empty() || !std::ranges::all_of(tasks, isBarred))
        return !tasks.empty();
    ShellAlerts::alertEditingEvent(localized(tasks.front()->calendarTitle()));
    return false;
}

void TaskRowCommands::toggleDone(const Tasks &tasks)
{
    if (canChange(tasks))
        changeTasks(tasks, &TaskBatch::toggleDone);
}

// When

void TaskRowCommands::plan(const Tasks &tasks, QuickDay day)
{
    if (canChange(tasks))
        changeTasks(tasks, &TaskBatch::plan, day);
}

void TaskRowCommands::planOn(const Tasks &tasks, Date day)
{
    if (canChange(tasks))
        changeTasks(tasks, &TaskBatch::planOn, day);
}

void TaskRowCommands::plan(QuickDay day)
{
    plan(selectedTasks(), day);
}

/// Where the selection is seen.
static QRect placeOfSelection(const QWidget &list)
{
    const auto *table = list.findChild<TableViewExtended *>();
    const int row = table ? table->firstSelectedRow() : -1;
    if (row < 0)
        return {list.rect().center(), QSize(1, 1)};
    const QRect seen =
        table->visualRect(table->tableModel()->index(row)).intersected(table->viewport()->rect());
    return {table->viewport()->mapTo(&list, seen.topLeft() + QPoint(Theme::contentMargin, 0)), seen.size()};
}

void TaskRowCommands::planOnOtherDay()
{
    planOnOtherDay(selectedTasks());
}

void TaskRowCommands::planOnOtherDay(const Tasks &tasks)
{
    if (tasks.empty() || !canChange(tasks))
        return;
    DatePickerState state(DatePickerState::Type::DueDate);
    state.titlePopover = localized(u"Plan for a Day"_s);
    state.showClock = false;
    state.dateValue = tasks.front()->dueDate().value_or(Clock::now());
    auto *popover = new DatePickerPopover(state, &menuParent);
    popover->setAttribute(Qt::WA_DeleteOnClose);
    connect(popover, &DatePickerPopover::doneClicked, this, [this, tasks](Date day) { planOn(tasks, day); });
    popover->showBeside(menuParent, placeOfSelection(menuParent));
}

void TaskRowCommands::duplicate()
{
    duplicate(selectedTasks());
}

void TaskRowCommands::duplicate(const Tasks &tasks)
{
    LongWork work(tasks.size(), localized(u"Changing the selected tasks"_s));
    Q_EMIT tasksMade(TaskBatch::duplicate(tasks, [&work] { return work.step(); }));
}

// The menu

TaskRowCommands::Tasks TaskRowCommands::tasksOfMenu() const
{
    Tasks present;
    std::ranges::copy_if(menuTasks, std::back_inserter(present),
                         [](const TaskPtr &task) { return !task->isDeleted() && task->context(); });
    return present;
}

bool TaskRowCommands::isMenuAboutSelection() const
{
    const Tasks present = tasksOfMenu();
    const Tasks selected = selectedTasks();
    return !present.empty() && std::ranges::is_permutation(present, selected);
}

TaskPopupMenu *TaskRowCommands::menu()
{
    if (taskPopupMenu)
        return taskPopupMenu;
    taskPopupMenu = new TaskPopupMenu(&menuParent);
    const auto act = [this](auto signal, auto command) {
        connect(taskPopupMenu, signal, this, [this, command](const auto &...value) {
            if (const Tasks tasks = tasksOfMenu(); !tasks.empty())
                command(tasks, value...);
        });
    };
    act(&TaskPopupMenu::dayChosen, [this](const Tasks &tasks, QuickDay day) { plan(tasks, day); });
    act(&TaskPopupMenu::otherDayWanted, [this](const Tasks &tasks) { planOnOtherDay(tasks); });
    act(&TaskPopupMenu::duplicateChosen, [this](const Tasks &tasks) { duplicate(tasks); });
    act(&TaskPopupMenu::statusChosen,
        [this](const Tasks &tasks, TaskStatus status) { changeTasks(tasks, &TaskBatch::setStatus, status); });
    act(&TaskPopupMenu::priorityChosen, [this](const Tasks &tasks, Priority priority) {
        changeTasks(tasks, &TaskBatch::setPriority, priority);
    });
    act(&TaskPopupMenu::categoryChosen, [this](const Tasks &tasks, const CategoryPtr &category) {
        changeTasks(tasks, &TaskBatch::setCategory, category);
    });
    connect(taskPopupMenu, &TaskPopupMenu::whyChosen, this, [this] {
        if (isMenuAboutSelection())
            Q_EMIT whyChosen();
    });
    connect(taskPopupMenu, &TaskPopupMenu::deleteChosen, this, [this] {
        if (isMenuAboutSelection())
            Q_EMIT deleteChosen();
    });
    return taskPopupMenu;
}

void TaskRowCommands::addOwn(const QString &title, const QString &name, std::function<void()> command)
{
    QAction *const first = menu()->actions().value(0);
    auto *const own = new QAction(title, menu());
    own->setObjectName(name);
    connect(own, &QAction::triggered, this, [this, command = std::move(command)] {
        if (isMenuAboutSelection())
            command();
    });
    menu()->insertAction(first, own);
    menu()->insertSeparator(first);
}

void TaskRowCommands::showMenu(const QPoint &globalPosition)
{
    menuTasks = selectedTasks();
    if (menuTasks.empty())
        return;
    menu()->setTasks(menuTasks);
    menu()->popup(globalPosition);
}
