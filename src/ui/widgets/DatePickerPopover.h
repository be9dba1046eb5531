#pragma once

#include "records/DatePickerState.h"
#include "widgets/Popover.h"

class MonthGrid;
class QCheckBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QTimeEdit;
struct TypedDate;

/// The bubble of a date picker: a field for a date in words, the days that are chosen most, a month, on
/// request a time of day and a check box, and the two buttons.
class DatePickerPopover : public Popover
{
    Q_OBJECT
public:
    explicit DatePickerPopover(const DatePickerState &state, QWidget *parent = nullptr);

    /// Shows another date, as the rules may ask for after the check box changed.
    void setDate(Date date);
    /// The chosen day and time, within the limits.
    Date chosenDate() const;

Q_SIGNALS:
    void doneClicked(Date date);
    void checkToggled(bool isChecked);

protected:
    /// Letters and digits begin a date in words.
    void keyPressEvent(QKeyEvent *event) override;

private:
    QWidget *makeTyping(const DatePickerState &state);
    QWidget *makeQuickDays();
    QWidget *makeClock();
    QWidget *makeButtons();
    /// Shows what the words in the field mean, or why they cannot be taken.
    void typed();
    Date formerOf(Date day) const;
    /// Takes a day, at the time that is shown, and is done.
    void take(Date day);
    /// Ticks the box that says so, and is done.
    void takeSomeday();
    void leaveSomeday();
    /// Takes what was typed or is marked.
    void takeShown();
    /// A day without a time is, if any of its moments is.
    bool isWithinLimits(const TypedDate &date) const;
    void accept();

    OptionalDate minimum;
    OptionalDate maximum;
    MonthGrid *grid;
    QLineEdit *words = nullptr;
    QLabel *meaning = nullptr;
    /// Days that are chosen here have been.
    bool liesBack = false;
    QPushButton *done = nullptr;
    QTimeEdit *clock = nullptr;
    QCheckBox *check = nullptr;
    /// Whether the check box is the one of some day.
    bool canBeSomeday;
    bool isSomedayTyped = false;
};
