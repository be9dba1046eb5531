#pragma once

#include "records/dates/QuickDays.h"
#include "store/entities/Entities.h"

#include <QMenu>

#include <vector>

/// The keys of the commands that tasks have in their rows, in portable form.
namespace taskkeys {

inline constexpr std::array plan = {u"Alt+1", u"Alt+2", u"Alt+3", u"Alt+4", u"Alt+5"};
inline constexpr auto planOnOther = u"Alt+6";
inline constexpr auto duplicate = u"Ctrl+D";

} // namespace taskkeys

/// The context menu of task rows: category, status, priority and when, with what all chosen tasks have in
/// common ticked.
class TaskPopupMenu : public QMenu
{
    Q_OBJECT
public:
    explicit TaskPopupMenu(QWidget *parent = nullptr);

    /// The tasks that the menu is about.
    void setTasks(const std::vector<TaskPtr> &tasks);

Q_SIGNALS:
    void dayChosen(QuickDay day);
    /// A day that is none of these.
    void otherDayWanted();
    void duplicateChosen();
    void categoryChosen(const CategoryPtr &category);
    void statusChosen(TaskStatus status);
    void priorityChosen(Priority priority);
    void deleteChosen();
    void whyChosen();

private:
    void addDays();
    void addStatuses();
    void addPriorities();
    void rebuildCategories();

    QAction *deleteAction = nullptr;
    QAction *whyAction = nullptr;
    QAction *duplicateAction = nullptr;
    QMenu *categoryMenu;
    QMenu *statusMenu;
    QMenu *priorityMenu;
    QMenu *dayMenu;
};
