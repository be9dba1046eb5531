#pragma once

#include "records/CurrentTasks.h"

#include <QWidget>

class MarkedRowsView;

/// The window in which tasks that exist are linked to a project, a contact or a company: their titles under
/// letters, with a mark at those that are linked.
class AddCurrentTasksWindow : public QWidget
{
    Q_OBJECT
public:
    /// \param object what the tasks are linked to.
    AddCurrentTasksWindow(ObjectPtr object, QWidget *parent);

    void showWindow();
    void clickButtonDone();

protected:
    void keyPressEvent(QKeyEvent *event) override;

private:
    CurrentTasks tasks;
    MarkedRowsView *view;
};
