#pragma once

#include "records/people/Birthdays.h"

#include <functional>
#include <vector>

/// Who has birthday on the days that a calendar shows. The store is asked once for a stretch of days, until
/// `forget`. None where the user does not want birthdays in the calendars.
class BirthdayDays
{
public:
    using List = std::vector<Birthdays::Birthday>;

    /// From a day on, so many days.
    void show(Date first, int days);
    /// People may have changed, or what the user wants.
    void forget() { isOld = true; }

    /// The birthdays of each day.
    const std::vector<List> &days() const { return lists; }
    bool isEmpty() const;

    /// "Birthday of Ada Lovelace, 36", or "Birthdays of" several; empty for an empty list.
    static QString sentenceOf(const List &birthdays);
    /// The most of the sentence that fits: the names with ages, without them, or how many there are of
    /// several. Of one the name, also where nothing fits.
    static QString wordsFor(const List &birthdays, const std::function<bool(const QString &words)> &fits);

    /// Whether the calendars show birthdays.
    static bool areWanted();
    /// The calendars follow at once.
    static void setWanted(bool wanted);

private:
    Date start;
    std::vector<List> lists;
    bool isOld = true;
};
