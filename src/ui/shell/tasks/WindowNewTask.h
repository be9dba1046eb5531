#pragma once

#include "records/TaskFormState.h"

#include <QTimer>
#include <QWidget>

class QPushButton;
class TaskFormView;

/// The window for a new task.
class WindowNewTask : public QWidget
{
    Q_OBJECT
public:
    explicit WindowNewTask(const NewTaskRequest &request, QWidget *parent = nullptr);

    /// Shows the window, or brings it to the front as it is.
    void showWindow();
    TaskFormState *taskForm() { return &form; }

    void clickButtonSave();
    /// Asks what to do with what was typed, then closes or stays.
    void clickButtonClose();

protected:
    void closeEvent(QCloseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    void growToForm();
    QWidget *makeButtons();
    bool mayClose();

    TaskFormState form;
    TaskFormView *view = nullptr;
    QPushButton *buttonSave = nullptr;
    QTimer growth;
    bool isClosingAgreed = false;
};
