#pragma once

#include <QString>
#include <QStringList>

/// How far ahead tasks and events are kept in step.
enum class CalendarSyncPeriod { ThreeMonths = 0, SixMonths = 1, TwelveMonths = 2 };
/// How many of the occurrences of a repeating task to come are shown.
enum class CalendarFrequencyDay { One = 0, Three = 1, Seven = 2 };
enum class ContactsDisplayOrder { FirstLast = 0, LastFirst = 1 };

/// The choices of the settings panel with their texts. The first two travel between devices.
namespace SyncSettings {

CalendarSyncPeriod syncPeriod();
void setSyncPeriod(CalendarSyncPeriod period);
CalendarFrequencyDay syncFrequency();
void setSyncFrequency(CalendarFrequencyDay frequency);
/// What the user has chosen, which in some languages is not what is shown.
ContactsDisplayOrder displayOrder();
/// Tells the lists of contacts, too.
void setDisplayOrder(ContactsDisplayOrder order);

/// The titles of the choices, in the order of their numbers.
QStringList syncPeriodTitles();
QStringList syncFrequencyTitles();
QStringList displayOrderTitles();
/// A sentence that says what the choice means.
QString syncPeriodDescription(CalendarSyncPeriod period);
QString syncFrequencyDescription(CalendarFrequencyDay frequency);

/// Brings the tasks in line with the choices.
void finish();

} // namespace SyncSettings
