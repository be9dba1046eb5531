#pragma once

#include "records/RecordPane.h"
#include "records/TaskFormState.h"

class DetailStack;

/// The pane about one stored task.
class TaskDetailViewController : public RecordPane
{
    Q_OBJECT
public:
    explicit TaskDetailViewController(const TaskPtr &task, QWidget *parent = nullptr);

    /// Shows a task over a screen or another pane. One that is open already comes to the top.
    /// False if what is typed in another pane keeps the user there.
    static bool showTask(const TaskPtr &task, QWidget &controller, DetailStack &stack);

    TaskFormState *taskForm() { return &form; }
    /// Goes on with an edit that an earlier run of the program was left with.
    void resume(const Drafts::Found &found);
    void clickButtonSendEmail();

protected:
    bool mayEdit() override;
    void editRefused() override;
    void tick(bool done) override;
    void modeChanged() override { findInvitationSoon(); }
    void wasReadAnew() override { form.findInvitation(); }
    void resizeEvent(QResizeEvent *event) override;

private:
    TaskDetailViewController(TaskFormState *newForm, QWidget *parent);
    void findInvitationSoon();

    TaskFormState &form;
    QToolButton *buttonSendEmail;
    QTimer invitationTimer;
};
