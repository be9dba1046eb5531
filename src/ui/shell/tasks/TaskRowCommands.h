#pragma once

#include "records/dates/QuickDays.h"
#include "store/entities/Entities.h"

#include <QApplication>

#include <functional>
#include <vector>

class TaskPopupMenu;

/// What can be done with tasks in their rows, wherever they are listed: ticking, the context menu, and which
/// of them may be deleted.
class TaskRowCommands : public QObject
{
    Q_OBJECT
public:
    using Tasks = std::vector<TaskPtr>;
    /// Runs a change of tasks in the list, which shows it.
    using ChangeInRows = std::function<void(const std::vector<ObjectPtr> &, const std::function<void()> &)>;

    /// \param list what the menu belongs to, and these commands with it.
    /// \param selected the tasks that are selected at the moment of a call.
    TaskRowCommands(QWidget &list, std::function<Tasks()> selected, ChangeInRows changeInRows);
    ~TaskRowCommands() override;
    /// Those of all lists that there are, in any window.
    static const std::vector<TaskRowCommands *> &ofAllLists();

    /// Ticks tasks, or clears them if all of them are ticked. The user is told where none can be changed.
    void toggleDone(const Tasks &tasks);
    /// Whether there is anything selected to do something with.
    bool hasTasks() const { return !selectedTasks().empty(); }
    /// Whether the list is the one that has the keys.
    bool hasKeys() const { return menuParent.isAncestorOf(QApplication::focusWidget()); }
    /// Whether the list is a part of a widget.
    bool isOn(const QWidget &widget) const
    {
        return &widget == &menuParent || widget.isAncestorOf(&menuParent);
    }
    /// Plans the selected tasks.
    void plan(QuickDay day);
    /// Asks for a day beside the list, and plans the selected tasks for it.
    void planOnOtherDay();
    /// Makes copies of the selected tasks.
    void duplicate();
    // What is dropped on something that stands for a value.
    void plan(const Tasks &tasks, QuickDay day);
    void planOn(const Tasks &tasks, Date day);
    /// Puts a command of this list alone at the top of the menu. It runs on the selected tasks, and only as
    /// long as they are those that the menu was opened for.
    void addOwn(const QString &title, const QString &name, std::function<void()> command);
    /// Shows the menu about the selected tasks; none without any. The selection can move while the menu is
    /// open: what is chosen changes only those tasks for which it was opened.
    void showMenu(const QPoint &globalPosition);
    /// Whether any of some tasks can be changed. The user is told where none can because of its calendar.
    static bool canChange(const Tasks &tasks);
    /// Those of some tasks that may be deleted. The user is told where that is none because of its calendar.
    static std::vector<ObjectPtr> removable(const std::vector<ObjectPtr> &tasks);

Q_SIGNALS:
    /// Tasks were made that the list may show.
    void tasksMade(const std::vector<TaskPtr> &tasks);
    // The selected tasks are those that the menu was opened for.
    void whyChosen();
    void deleteChosen();

private:
    TaskPopupMenu *menu();
    /// Those for which the menu was opened, without those that were deleted since.
    Tasks tasksOfMenu() const;
    bool isMenuAboutSelection() const;
    void planOnOtherDay(const Tasks &tasks);
    void duplicate(const Tasks &tasks);
    template <typename Change, typename... Value>
    void changeTasks(const Tasks &tasks, Change change, const Value &...value);

    QWidget &menuParent;
    std::function<Tasks()> selectedTasks;
    ChangeInRows inRows;
    TaskPopupMenu *taskPopupMenu = nullptr;
    Tasks menuTasks;
};
