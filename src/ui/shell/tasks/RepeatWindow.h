#pragma once

#include "recurrence/CustomRepeat.h"
#include "widgets/Popover.h"

class PopUpButton;
class QLabel;
class QSpinBox;
class RepeatCalendar;

/// The bubble in which a repetition of the user's own is put together, with the sentence and the next dates
/// of it as they change.
class RepeatWindow : public Popover
{
    Q_OBJECT
public:
    explicit RepeatWindow(CustomRepeat repeat, QWidget *parent = nullptr);

    void okClick();
    void cancelClick();
    void frequencyChange(int index);

Q_SIGNALS:
    /// "OK" after a choice: the text of the rule.
    void customRepeatChanged(const QString &rule);
    void customRepeatCancel();

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void closeEvent(QCloseEvent *event) override;

private:
    QWidget *makeFrequency();
    QWidget *makeInterval();
    QWidget *makeOutcome();
    QWidget *makeButtons();
    QLabel *makeLabel(const QString &key, QWidget *buddy);
    void rebuildGrid();
    void showOutcome();

    CustomRepeat repeat;
    bool isAccepted = false;
    PopUpButton *popUpFrequency = nullptr;
    QSpinBox *fieldInterval = nullptr;
    QLabel *labelUnit = nullptr;
    RepeatCalendar *grid = nullptr;
    QLabel *labelSentence = nullptr;
    QLabel *labelDates = nullptr;
    QLabel *labelWarning = nullptr;
};
