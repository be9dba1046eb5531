#pragma once

#include "store/state/DataConteiner.h"

#include <QSet>
#include <QStringList>

#include <functional>

class ManagedObject;
class ManagedObjectContext;

/// What the rules and queries need of the running program: the root of the program fills one in, a test
/// another. The one that was made last is in use until it goes. Main thread only.
///
/// What is not filled in is what an empty program has: no store, no calendars.
class CoreContext
{
public:
    CoreContext();
    ~CoreContext();
    CoreContext(const CoreContext &) = delete;
    CoreContext &operator=(const CoreContext &) = delete;

    /// The one in use; an empty one if there is none.
    static const CoreContext &current();

    /// The program's version, for example "1.0.0".
    static QString version();

    /// Gives the store in use, opened at first need; null if there is none.
    std::function<ManagedObjectContext *()> store = [] { return nullptr; };
    /// The same, but null also for one that was not opened yet.
    std::function<ManagedObjectContext *()> openedStore = [] { return nullptr; };
    /// Gives how tasks name the calendars that the user has chosen.
    std::function<QStringList()> visibleCalendars = [] { return QStringList(); };
    /// Tells whether the calendars can be used now.
    std::function<bool()> hasAccessToCalendars = [] { return false; };
    /// Tells whether another device has named the event of a row, by the identifier, and it has not come to
    /// the calendars of this one yet.
    std::function<bool(const ManagedObject &, const QString &)> awaitsCalendarItem =
        [](const ManagedObject &, const QString &) { return false; };
    /// The same, where that device can write the event: it is for it to do so.
    std::function<bool(const ManagedObject &, const QString &)> isCalendarItemElsewhere =
        [](const ManagedObject &, const QString &) { return false; };
    /// Hears which events are in the calendars of this device.
    std::function<void(const QSet<QString> &)> sawCalendarItems = [](const QSet<QString> &) {};
    /// Tells whether another device of the user may have a calendar of one of these names.
    std::function<bool(const QStringList &)> isCalendarElsewhere = [](const QStringList &) { return false; };
    /// Hears which calendars have gone whose tasks the next commit removes: to the other devices that is no
    /// wish of the user that the events go, too.
    std::function<void(const QStringList &)> answerForCalendars = [](const QStringList &) {};
    /// Whether the store in use is that of the examples.
    bool isSample = false;
    /// Whether the program is in front of all others.
    bool isInFront = false;
    DataConteiner dataConteiner;
};
