#pragma once

#include "shell/tasks/LinkedTasksPane.h"

/// The pane about one project: its form, and its tasks below.
class ProjectDetailViewController : public LinkedTasksPane
{
    Q_OBJECT
public:
    /// What it is called among the widgets.
    static inline const QString name = QStringLiteral("ProjectDetailViewController");

    ProjectDetailViewController(std::unique_ptr<FormModel> form, FormView *view, QWidget *parent = nullptr);
};
