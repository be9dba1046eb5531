#pragma once

#include "eventkit/EKEventStore.h"

/// Whether the calendar store may be used, and that store.
class EventStoreAccess
{
public:
    EventStoreAccess() = delete;

    /// The store that everything here works on, made on first use.
    static EKEventStore &eventStore();
    /// Forgets the store and what is known of its calendars; the next use makes it anew.
    static void resetEventStore();
    /// Whether the last activation allowed the calendars and the system still does.
    static bool hasAccesToCalendar();
    /// Whether the system allows them; may ask the user.
    static bool hasAccesToAppleCalendar();
    /// Looks for accounts that came or went, and forgets the calendars that were known.
    static void refreshSourcesIfNecessary();

    // Whether repeating tasks may be edited.
    /// Compares what can be reached; from now on they may or not.
    static void tryCreateMessageForBanEditingRepeatTask();
    /// They may.
    static void resetMessageForBanChangeRepeat();
    /// The argument has no effect.
    static bool isAccessChangeRepeatTaskWithMessage(bool showsMessage);
    /// Why they may not, in English; empty if they may.
    static QString messageForBanChangeRepeat();
};
