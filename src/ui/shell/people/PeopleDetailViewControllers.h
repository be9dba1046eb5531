#pragma once

#include "shell/tasks/LinkedTasksPane.h"

/// The pane about one contact: its form, and the tasks that are delegated to them below.
class DetailContactViewController : public LinkedTasksPane
{
    Q_OBJECT
public:
    /// What it is called among the widgets.
    static inline const QString name = QStringLiteral("DetailContactViewController");

    DetailContactViewController(std::unique_ptr<FormModel> form, FormView *view, QWidget *parent = nullptr);
};

/// The same about one company.
class CompanyDetailViewController : public LinkedTasksPane
{
    Q_OBJECT
public:
    static inline const QString name = QStringLiteral("CompanyDetailViewController");

    CompanyDetailViewController(std::unique_ptr<FormModel> form, FormView *view, QWidget *parent = nullptr);
};
