#include "calendarsync/SyncSettings.h"

#include "calendarsync/CalendarPass.h"
#include "foundation/Localization.h"
#include "foundation/NotificationCenter.h"
#include "foundation/UserDefaults.h"
#include "store/queries/DBWorker.h"
#include "store/state/CloudUserDefaults.h"
#include "store/state/NotificationNames.h"
#include "store/state/SettingsKeys.h"

namespace {

constexpr qint64 lastChoice = 2;

/// A number that another version has written may mean nothing here.
qint64 choiceUnder(const QString &key)
{
    const qint64 stored = CloudUserDefaults::integerForKey(key);
    return stored >= 0 && stored <= lastChoice ? stored : 0;
}

void choose(const QString &key, qint64 choice)
{
    CloudUserDefaults::setInteger(choice, key);
    CloudUserDefaults::synchronize();
}

} // namespace

CalendarSyncPeriod SyncSettings::syncPeriod()
{
    return static_cast<CalendarSyncPeriod>(choiceUnder(settings::syncPeriodType));
}

void SyncSettings::setSyncPeriod(CalendarSyncPeriod period)
{
    choose(settings::syncPeriodType, static_cast<qint64>(period));
}

CalendarFrequencyDay SyncSettings::syncFrequency()
{
    return static_cast<CalendarFrequencyDay>(choiceUnder(settings::frequencyCalendarPeriod));
}

void SyncSettings::setSyncFrequency(CalendarFrequencyDay frequency)
{
    choose(settings::frequencyCalendarPeriod, static_cast<qint64>(frequency));
}

ContactsDisplayOrder SyncSettings::displayOrder()
{
    return UserDefaults::standard().integer(settings::contactDisplayOrder) == 0
               ? ContactsDisplayOrder::FirstLast
               : ContactsDisplayOrder::LastFirst;
}

void SyncSettings::setDisplayOrder(ContactsDisplayOrder order)
{
    const auto number = static_cast<int>(order);
    UserDefaults &defaults = UserDefaults::standard();
    defaults.setObject(settings::contactDisplayOrder, number);
    defaults.setObject(settings::displayOrderDescription, displayOrderTitles().at(number));
    defaults.synchronize();
}

QStringList SyncSettings::syncPeriodTitles()
{
    return {localized(QStringLiteral("3 months")), localized(QStringLiteral("6 months")),
            localized(QStringLiteral("12 months"))};
}

QStringList SyncSettings::syncFrequencyTitles()
{
    return {QStringLiteral("1"), QStringLiteral("3"), QStringLiteral("7")};
}

QStringList SyncSettings::displayOrderTitles()
{
    return {localized(QStringLiteral("First, Last")), localized(QStringLiteral("Last, First"))};
}

QString SyncSettings::syncPeriodDescription(CalendarSyncPeriod period)
{
    switch (period) {
    case CalendarSyncPeriod::ThreeMonths:
        return localized(QStringLiteral("Morvane will sync tasks in the period 3 months to ''Today'' and 3 "
                                        "months after ''Today''."));
    case CalendarSyncPeriod::SixMonths:
        return localized(QStringLiteral("Morvane will sync tasks in the period 6 months to ''Today'' and 6 "
                                        "months after ''Today''."));
    case CalendarSyncPeriod::TwelveMonths:
        return localized(QStringLiteral("Morvane will sync tasks in the period 12 months to ''Today'' and 12 "
                                        "months after ''Today''."));
    }
    return {};
}

QString SyncSettings::syncFrequencyDescription(CalendarFrequencyDay frequency)
{
    switch (frequency) {
    case CalendarFrequencyDay::One:
        return localized(QStringLiteral("Morvane will show all overdue repeated tasks to ''Today'' and not "
                                        "more than 1 task after ''Today'' within the period."));
    case CalendarFrequencyDay::Three:
        return localized(QStringLiteral("Morvane will show all overdue repeated tasks to ''Today'' and not "
                                        "more than 3 tasks after ''Today'' within the period."));
    case CalendarFrequencyDay::Seven:
        return localized(QStringLiteral("Morvane will show all overdue repeated tasks to ''Today'' and not "
                                        "more than 7 tasks after ''Today'' within the period."));
    }
    return {};
}

void SyncSettings::finish()
{
    CalendarPass::syncCalendarToAppWithTask(nullptr);
    DBWorker::saveOrTell();
}
