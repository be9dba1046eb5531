#pragma once

#include "eventkit/EKCalendar.h"

#include <QString>
#include <QStringList>

#include <vector>

/// By what tasks and settings name calendars.
///
/// A calendar is its identifier; its reference is what stands for that in the store, where people and other
/// devices can read it: the title of a writable calendar. A calendar that may only be read when it is first
/// seen, or whose title is or was a reference of another one, has its title, "[<±>]" and its identifier. Who
/// has the title alone keeps it so when it may not be written for a while; who has the identifier too loses
/// that once it may be written. A reference stays that of its calendar, whatever that is called meanwhile,
/// until `follow`, and is understood still after that.
namespace calendarreferences {

/// Between title and identifier.
inline const QString identifierMark = QStringLiteral("[<±>]");

/// A calendar that was renamed.
struct Renamed
{
    QString former;
    QString present;
};

/// Gives calendars that are seen for the first time their references.
void take(const std::vector<EKCalendar> &calendars);
/// Of a calendar that was not taken, the one that it would get.
QString of(const EKCalendar &calendar);
/// What a reference says to another device, where the same calendar can have another identifier: the title,
/// if there is one.
QString nameElsewhere(const QString &reference);
/// The identifier of the calendar that has or had a reference; empty if there is none.
QString identifierOf(const QString &reference);
/// References that were a calendar's; no other one gets them while it is there.
QStringList formerOf(const QString &identifier);
/// Gives the renamed ones the references of their present titles.
std::vector<Renamed> follow(const std::vector<EKCalendar> &calendars);
/// Gives a calendar all names of one that has gone, before its own.
void handOver(const QString &identifierOfGone, const QString &identifier);
/// Of all calendars that have gone for good.
/// \param identifiers of those that have not.
void forgetOthersThan(const QStringList &identifiers);

} // namespace calendarreferences
