#pragma once

#include "recurrence/RecurrencePickerTexts.h"
#include "recurrence/RecurrenceRule.h"

#include <QString>
#include <QStringList>

#include <optional>
#include <vector>

/// A rule of the user's own while it is put together: how often, and on which weekdays, days or months.
class CustomRepeat
{
public:
    /// Begins with a rule, or with every week if there is none. `occurrenceDate` is the date of the task, by
    /// which the series goes; without one that is now.
    CustomRepeat(const std::optional<RecurrenceRule> &rule, OptionalDate occurrenceDate,
                 OptionalDate endRepeat, RecurrencePickerLanguage language);

    /// The rule as it is stored and put on an event: one that fits the date of the task.
    const RecurrenceRule &rule() const { return edited; }
    /// Whether anything was chosen that differs from the rule that it began with. That is so where there was
    /// none. That the rule was fitted to the date alone is no choice of the user's.
    bool isChanged() const { return !initial || edited.pattern() != *initial; }

    /// "Daily" to "Yearly", and which of them it is.
    QStringList frequencyTitles() const;
    int frequencyIndex() const;
    /// False for a rule by hours or less, which the window can only replace.
    bool isFrequencyKnown() const;
    /// Another frequency; what was selected in the grid of the former one is given up.
    void frequencyChange(int index);
    /// Below 1 it counts as 1, above the limit as the limit.
    void setInterval(int interval);
    /// The limit of the interval: 999, or what the rule began with.
    int mostInterval() const { return most; }
    /// What is counted by the interval: "week (s)".
    QString unitLabel() const;

    // The grid: weekdays from the user's first one on, days of the month, or months; empty for days.
    std::vector<int> items() const;
    /// The short text of a cell, and the one that is read aloud.
    QString titleOf(int item) const;
    QString nameOf(int item) const;
    bool isSelected(int item) const;
    /// A single day or month that is not that of the task's date moves there, and with it the selection.
    void setSelected(int item, bool selected);

    // What comes of it.
    QString sentence() const;
    /// The next dates of the series from today on, as many as asked for or as there are. The task's own date
    /// is one of them, on a day of the rule or not.
    std::vector<Date> nextDates(std::size_t count) const;
    /// What the user may not expect: that the task's own date is no day of the rule, months or years that are
    /// left out, or that the rule gives no date at all. A line for each; empty if there is nothing to say.
    QString warning() const;
    /// Texts of the window by their keys.
    QString text(const QString &key) const { return texts.text(key); }

private:
    std::vector<int> selectedItems() const;
    std::vector<Date> nextMatches(std::size_t count) const;
    bool isStartExtra() const;
    bool lacksDay(int day) const;
    QString skippedDates() const;
    void fit();

    RecurrenceRule edited;
    /// What it began with.
    std::optional<RecurrencePattern> initial;
    int most;
    Date start;
    OptionalDate end;
    /// The last choice has moved to the date of the task.
    bool hasMoved = false;
    RecurrencePickerLanguage language;
    RecurrencePickerTexts texts;
};
