#pragma once

#include "recurrence/RRule.h"
#include "recurrence/RecurrencePickerLanguage.h"

#include <QString>
#include <QStringList>

#include <optional>
#include <vector>

/// Leads the repetition of a task in an editor: between the presets of a pop-up, a rule and its text, and in
/// the window where a rule of one's own is put together.
class RepeatPicker
{
public:
    /// The places of the presets in the pop-up.
    enum Preset { Never, EveryDay, EveryWeek, EveryTwoWeeks, EveryMonth, EveryYear, EveryWeekday, Custom };

    /// In the user's language.
    RepeatPicker();

    /// The rule that is edited; absent for no repetition.
    std::optional<RecurrenceRule> rule;
    RecurrencePickerLanguage language;
    /// The date that the rule is meant for: the start of the task, else its due date.
    OptionalDate occurrenceDate;

    // Between the pop-up, the rule and its text.
    /// Takes the rule of a preset; none for `Never`. The date is not looked at: the rule starts now.
    void updateRecurrenceRuleWithIndex(int index, OptionalDate occurrenceDate);
    /// The rule as a task stores it; empty without one.
    QString stringRule() const;
    /// Reads a stored text; one that cannot be read leaves no rule.
    void setRepeatStringWithStr(const QString &str);
    /// Which preset the rule is on a task of that date.
    Preset presetOf(OptionalDate date) const;
    /// The words of the presets before the separator, and the one that opens the window.
    QStringList presetTitles() const;
    QString customTitle() const;
    /// The sentence of a rule; empty without one.
    QString recurrenceRuleToTextForUser() const;

    // What the rule is. Lists that hold just what the date shows count as empty.
    bool isDailyRecurrence() const;
    bool isWeekdayRecurrence() const;
    bool isWeeklyRecurrenceWithOccurrenceDate(OptionalDate date) const;
    bool isBiWeeklyRecurrenceWithOccurrenceDate(OptionalDate date) const;
    bool isMonthlyRecurrenceWithOccurrenceDate(OptionalDate date) const;
    bool isYearlyRecurrenceWithOccurrenceDate(OptionalDate date) const;
    bool isCustomRecurrenceWithOccurrenceDate(OptionalDate date) const;

private:
    bool isEvery(RecurrenceFrequency frequency, int interval) const;
    bool isOnWeekdayOf(OptionalDate date) const;
};
