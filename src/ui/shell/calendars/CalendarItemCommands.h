#pragma once

#include "store/entities/Entities.h"

#include <QObject>

#include <vector>

class CalendarPage;
class TabsViewController;
class TaskRowCommands;

/// What can be done with the items of a calendar that a screen shows: they are opened, ticked, deleted, and
/// have the menu of tasks.
class CalendarItemCommands : public QObject
{
    Q_OBJECT
public:
    explicit CalendarItemCommands(TabsViewController &shownOn);

    void serve(CalendarPage &page);
    /// Deletes the task that is selected on a page, after asking.
    void removeSelected(CalendarPage &page);

private:
    void removeTasks(const std::vector<TaskPtr> &tasks);

    TabsViewController &screen;
    TaskRowCommands *commands;
};
