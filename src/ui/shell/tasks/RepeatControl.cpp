#include "shell/tasks/RepeatControl.h"

#include "records/TaskFormState.h"
#include "shell/tasks/RepeatWindow.h"
#include "widgets/PopUpButton.h"

#include <QTimer>

constexpr int customIndex = RepeatPicker::EveryWeekday + 2;
constexpr int sentenceIndex = customIndex + 1;

RepeatControl::RepeatControl(TaskFormState &usedForm, PopUpButton &usedPopUp)
    : QObject(&usedPopUp)
    , form(usedForm)
    , popUp(usedPopUp)
{
    connect(&popUp, &QComboBox::activated, this, &RepeatControl::choose);
    connect(&popUp, &PopUpButton::deletePressed, this, [this] { form.setRepeatPreset(RepeatPicker::Never); });
}

/// A rule of the user's own stands as a sentence below the presets.
void RepeatControl::showValue()
{
    const RepeatPicker picker = form.repeatPicker();
    popUp.clear();
    if (!picker.occurrenceDate)
        return;
    popUp.addItems(picker.presetTitles());
    popUp.insertSeparator(popUp.count());
    popUp.addItem(picker.customTitle());
    const RepeatPicker::Preset preset = picker.presetOf(picker.occurrenceDate);
    if (preset == RepeatPicker::Custom)
        popUp.addItem(picker.recurrenceRuleToTextForUser());
    popUp.setCurrentIndex(preset == RepeatPicker::Custom ? sentenceIndex : preset);
    popUp.setToolTip(preset == RepeatPicker::Custom ? popUp.currentText() : QString());
}

void RepeatControl::choose(int index)
{
    if (index < customIndex)
        return form.setRepeatPreset(index);
    showValue();
    // The list of the pop-up closes first.
    QTimer::singleShot(0, this, &RepeatControl::openCustom);
}

void RepeatControl::openCustom()
{
    if (window)
        return;
    window = new RepeatWindow(form.customRepeat(), &popUp);
    window->setAttribute(Qt::WA_DeleteOnClose);
    connect(window, &RepeatWindow::customRepeatChanged, this, [this](const QString &rule) {
        form.setRepeat(rule);
        popUp.setFocus();
    });
    connect(window, &RepeatWindow::customRepeatCancel, &popUp, qOverload<>(&QWidget::setFocus));
    window->showBeside(popUp);
}
