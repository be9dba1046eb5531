#include "shell/tasks/TaskFormView.h"

#include "shell/tasks/LocationPopup.h"
#include "shell/tasks/RepeatControl.h"
#include "widgets/PopUpButton.h"

static QWidget *makeRepeat(TaskFormState &state, const QString &name, std::function<void()> &sync)
{
    auto *popUp = new PopUpButton(name);
    auto *control = new RepeatControl(state, *popUp);
    sync = [control] { control->showValue(); };
    return popUp;
}

static QWidget *makeLocation(TaskFormState &state, std::function<void()> &sync)
{
    auto *popup = new LocationPopup;
    QObject::connect(popup, &LocationPopup::labelLocationClickButtonDone, popup,
                     [&state](const LocationPtr &location) { state.setLocation(location); });
    sync = [&state, popup] { popup->setLocation(state.currentTask().location); };
    return popup;
}

TaskFormView::TaskFormView(TaskFormState &state, QWidget *parent)
    : FormView(
          state,
          [&state](FormModel &, const FormRow &row, std::function<void()> &sync) {
              return row.id == static_cast<int>(TaskFormRow::Repeat)
                         ? makeRepeat(state, row.controlName, sync)
                         : makeLocation(state, sync);
          },
          parent)
{}
