#pragma once

#include "records/RecordPane.h"

class LinkedTasksView;

/// The pane about one project: its form, and its tasks below.
class ProjectDetailViewController : public RecordPane
{
    Q_OBJECT
public:
    /// What it is called among the widgets.
    static inline const QString name = QStringLiteral("ProjectDetailViewController");

    ProjectDetailViewController(std::unique_ptr<FormModel> form, FormView *view, QWidget *parent = nullptr);

    LinkedTasksView *tasksView() const { return tasks; }

private:
    void addCurrentTasks();

    LinkedTasksView *tasks;
};
