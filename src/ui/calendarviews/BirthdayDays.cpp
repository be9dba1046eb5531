#include "calendarviews/BirthdayDays.h"

#include "foundation/Calendar.h"
#include "foundation/Localization.h"
#include "foundation/NotificationCenter.h"
#include "foundation/UserDefaults.h"
#include "store/state/NotificationNames.h"
#include "store/state/SettingsKeys.h"
#include "widgets/TextLabel.h"

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

void BirthdayDays::show(Date first, int count)
{
    const Calendar calendar = Calendar::current();
    first = calendar.startOfDay(first);
    const auto wanted = static_cast<std::size_t>(count);
    if (!isOld && first == start && lists.size() == wanted)
        return;
    isOld = false;
    start = first;
    lists.assign(wanted, {});
    if (!areWanted())
        return;
    const int firstNumber = calendar.dayNumber(first);
    const Date last = calendar.dateByAdding(CalendarUnit::Day, count - 1, first);
    for (Birthdays::Birthday &one : Birthdays::between(first, last)) {
        const int place = calendar.dayNumber(one.day) - firstNumber;
        if (place >= 0 && place < count)
            lists[static_cast<std::size_t>(place)].push_back(std::move(one));
    }
}

bool BirthdayDays::isEmpty() const
{
    return std::ranges::all_of(lists, &List::empty);
}

static QString namesOfBirthdays(const BirthdayDays::List &birthdays, bool areAgesTold)
{
    QStringList names;
    for (Birthdays::Birthday one : birthdays) {
        if (!areAgesTold)
            one.age.reset();
        names << firstPart(Birthdays::inWords(one));
    }
    return names.join(u" · "_s);
}

QString BirthdayDays::sentenceOf(const List &birthdays)
{
    if (birthdays.empty())
        return {};
    const QString sentence =
        birthdays.size() == 1 ? localized(u"Birthday of %1"_s) : localized(u"Birthdays of %1"_s);
    return sentence.arg(namesOfBirthdays(birthdays, true));
}

QString BirthdayDays::wordsFor(const List &birthdays, const std::function<bool(const QString &words)> &fits)
{
    const QString names = namesOfBirthdays(birthdays, false);
    for (const QString &words : {sentenceOf(birthdays), namesOfBirthdays(birthdays, true), names})
        if (fits(words))
            return words;
    if (birthdays.size() < 2)
        return names;
    const QString count = localizedCount(u"%1 birthdays"_s, birthdays.size());
    return fits(count) ? count : QString::number(birthdays.size());
}

bool BirthdayDays::areWanted()
{
    return !UserDefaults::standard().boolean(settings::calendarHidesBirthdays);
}

void BirthdayDays::setWanted(bool wanted)
{
    UserDefaults::standard().setObject(settings::calendarHidesBirthdays, !wanted);
    NotificationCenter::defaultCenter().post(notifications::calendarBirthdays);
}
