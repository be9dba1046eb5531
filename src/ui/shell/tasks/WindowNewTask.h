#pragma once

#include "records/DraftKeeper.h"
#include "records/LeaveGate.h"
#include "records/TaskFormState.h"

#include <QTimer>
#include <QWidget>

class QPushButton;
class TaskFormView;

/// The window for a new task.
class WindowNewTask : public QWidget, public EditedPlace
{
    Q_OBJECT
public:
    explicit WindowNewTask(const NewTaskRequest &request, QWidget *parent = nullptr);
    /// Begins with what an earlier form was left with.
    explicit WindowNewTask(const Drafts::Found &found, QWidget *parent = nullptr);

    /// Shows the window, or brings it to the front as it is.
    void showWindow();
    TaskFormState *taskForm() { return &form; }

    void clickButtonSave();
    /// Asks what to do with what was typed, then closes or stays.
    void clickButtonClose();

    bool hasChanges() override { return !isClosingAgreed && form.isTouched(); }
    bool saveEdit() override;
    void dropEdit() override;

protected:
    void closeEvent(QCloseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    void growToForm();
    QWidget *makeButtons();
    void setUp();

    TaskFormState form;
    DraftKeeper keeper{form};
    TaskFormView *view = nullptr;
    QPushButton *buttonSave = nullptr;
    QTimer growth;
    bool isClosingAgreed = false;
};
