#pragma once

#include "records/RecordWindow.h"
#include "records/TaskFormState.h"

/// The window for a new task.
class WindowNewTask : public RecordWindow
{
    Q_OBJECT
public:
    explicit WindowNewTask(const NewTaskRequest &request, QWidget *parent = nullptr);
    /// Begins with what an earlier form was left with.
    explicit WindowNewTask(const Drafts::Found &found, QWidget *parent = nullptr);

    TaskFormState *taskForm() { return &form; }

protected:
    void tick(bool done) override { form.setDone(done); }

private:
    WindowNewTask(TaskFormState *newForm, QWidget *parent);

    TaskFormState &form;
};
