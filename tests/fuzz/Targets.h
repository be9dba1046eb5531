#pragma once

#include <QByteArray>
#include <QString>

#include <array>

// What the fuzzers and the test of the corpus try out. Each function takes any bytes and answers what
// contradicts itself; empty if nothing does.

/// Reads a text as a rule in all the ways there are, writes what was understood, reads that again and expands
/// it over a year (a day, for rules by hours and less).
QString contradictionInRecurrence(const QByteArray &bytes);

/// Reads an iCalendar object, expands it over a year, edits and removes one of its occurrences. What comes
/// out is understood, and everything that the edit is not about is still there.
QString contradictionInCalendar(const QByteArray &bytes);

/// Takes a file for that of the settings: every value can be asked for in every way, one is changed, and all
/// others are in the file as they were. What is no settings file is put aside.
QString contradictionInSettings(const QByteArray &bytes);

/// Parses a format string. If it is a predicate of books, SQL finds what it passes in memory.
QString contradictionInPredicate(const QByteArray &bytes);

/// Puts bytes into the undo journal of a store and takes the step back, or makes it again. Either that is
/// refused and all rows stay, or the store is whole. Of the first byte the lowest bit says whether the
/// changeset is replaced or what goes with it outside of the store, the next one which way the step goes.
QString contradictionInJournal(const QByteArray &bytes);

/// Takes a file for the one of the scheduled messages. What was understood is read again as it was written.
QString contradictionInNotifications(const QByteArray &bytes);

/// Reads the draft of a task. What was understood is written the same again.
QString contradictionInDraft(const QByteArray &bytes);

/// Reads vCards, and writes what was understood of each in both versions. It is read again the same.
QString contradictionInContacts(const QByteArray &bytes);

/// Reads a table of tasks, projects or notes, and writes its cells. They are read again the same.
QString contradictionInTable(const QByteArray &bytes);

/// Takes bytes for what a save of another device says, and takes it in. Either it is refused and all rows
/// stay, or the store is whole.
QString contradictionInSave(const QByteArray &bytes);

struct FuzzTarget
{
    /// Also that of its folder in the corpus.
    const char *name;
    QString (*contradictionIn)(const QByteArray &bytes);
};

inline constexpr std::array<FuzzTarget, 10> fuzzTargets = {{{"recurrence", contradictionInRecurrence},
                                                            {"calendar", contradictionInCalendar},
                                                            {"settings", contradictionInSettings},
                                                            {"predicate", contradictionInPredicate},
                                                            {"journal", contradictionInJournal},
                                                            {"notifications", contradictionInNotifications},
                                                            {"draft", contradictionInDraft},
                                                            {"contacts", contradictionInContacts},
                                                            {"table", contradictionInTable},
                                                            {"save", contradictionInSave}}};
