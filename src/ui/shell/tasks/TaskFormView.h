#pragma once

#include "records/FormView.h"
#include "records/TaskFormState.h"

/// The form of a task, with its repetition and its place.
class TaskFormView : public FormView
{
    Q_OBJECT
public:
    /// `state` has to outlive the view, which takes over its callbacks.
    explicit TaskFormView(TaskFormState &state, QWidget *parent = nullptr);
};
