#pragma once

#include "store/entities/Entities.h"

#include <QObject>

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

    /// Ticks tasks, or clears them if all of them are ticked. The user is told where none can be changed.
    void toggleDone(const Tasks &tasks);
    /// Shows the menu about the selected tasks.
    void showMenu(const QPoint &globalPosition);
    /// Those of some tasks that may be deleted. The user is told where that is none because of its calendar.
    static std::vector<ObjectPtr> removable(const std::vector<ObjectPtr> &tasks);

Q_SIGNALS:
    void whyChosen();
    void deleteChosen();

private:
    void setUpMenu();
    template <typename Change, typename... Value>
    void changeTasks(const Tasks &tasks, Change change, const Value &...value);

    QWidget &menuParent;
    std::function<Tasks()> selectedTasks;
    ChangeInRows inRows;
    TaskPopupMenu *taskPopupMenu = nullptr;
};
