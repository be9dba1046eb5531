#pragma once

#include <QObject>
#include <QPointer>

class PopUpButton;
class RepeatWindow;
class TaskFormState;

/// Leads the repeat pop-up of a task's form: the presets, the rule of the user's own, and its window.
class RepeatControl : public QObject
{
    Q_OBJECT
public:
    RepeatControl(TaskFormState &form, PopUpButton &popUp);

    void showValue();

private:
    void choose(int index);
    void openCustom();

    TaskFormState &form;
    PopUpButton &popUp;
    QPointer<RepeatWindow> window;
};
