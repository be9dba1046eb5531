#pragma once

#include "store/entities/Entities.h"

#include <QMenu>

#include <vector>

/// The context menu of task rows: category, status and priority, with what all chosen tasks have in common
/// ticked.
class TaskPopupMenu : public QMenu
{
    Q_OBJECT
public:
    explicit TaskPopupMenu(QWidget *parent = nullptr);

    /// The tasks that the menu is about.
    void setTasks(const std::vector<TaskPtr> &tasks);

Q_SIGNALS:
    void categoryChosen(const CategoryPtr &category);
    void statusChosen(TaskStatus status);
    void priorityChosen(Priority priority);
    void deleteChosen();
    void whyChosen();

private:
    void addStatuses();
    void addPriorities();
    void rebuildCategories();

    QAction *deleteAction = nullptr;
    QAction *whyAction = nullptr;
    QMenu *categoryMenu;
    QMenu *statusMenu;
    QMenu *priorityMenu;
};
