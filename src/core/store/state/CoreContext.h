#pragma once

#include "store/state/DataConteiner.h"

#include <QStringList>

#include <functional>

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
    /// Whether the store in use is that of the examples.
    bool isSample = false;
    /// Whether the program is in front of all others.
    bool isInFront = false;
    DataConteiner dataConteiner;
};
