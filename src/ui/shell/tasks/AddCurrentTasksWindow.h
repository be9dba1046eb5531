#pragma once

#include "records/CurrentTasks.h"
#include "records/MarkedRowsWindow.h"

/// The window in which tasks that exist are linked to a project, a contact or a company: their titles under
/// letters, with a mark at those that are linked.
class AddCurrentTasksWindow : public MarkedRowsWindow
{
    Q_OBJECT
public:
    /// \param object what the tasks are linked to.
    AddCurrentTasksWindow(ObjectPtr object, QWidget *parent);

protected:
    bool save() override { return tasks.save(); }

private:
    CurrentTasks tasks;
};
