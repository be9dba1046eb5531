#pragma once

#include "eventkit/EKEvent.h"
#include "store/entities/Entities.h"

#include <QSet>
#include <QString>
#include <QStringList>

#include <unordered_map>
#include <unordered_set>
#include <vector>

/// The rows that a pass can pair with events, read once and kept up to date by it. It answers what the
/// queries of the same rules would.
class PassRows
{
public:
    /// All rows that name a calendar item, and the open ones that have the title of an event.
    explicit PassRows(const std::vector<EKEvent> &events);

    /// How many visible rows named a calendar item at the start, and which of them no event has claimed.
    size_t linkedCount() const { return linkedRows.size(); }
    std::vector<TaskPtr> unclaimed() const;
    /// The unclaimed row at the times of an event, by title or identifier; null if there is none.
    TaskPtr rowOf(const EKEvent &event) const;
    /// The first visible unclaimed row of the event's identifier by start, done ones included; null if there
    /// is none.
    TaskPtr firstOf(const EKEvent &event) const;
    /// The unclaimed row of an occurrence that lay outside of the window and has come back: it shows none of
    /// the item's any more. Null if there is none.
    TaskPtr strayOf(const EKEvent &event) const;
    /// A row is the event's: in this pass it is no other's.
    void claim(const TaskPtr &row);
    /// The same of all rows that name one of these items.
    void claimItems(const QSet<QString> &identifiers);
    /// The first visible open row of a title by start; null if there is none.
    TaskPtr firstOfTitle(const QString &title) const;
    /// A row that is new, or has another title or identifier now.
    void note(const TaskPtr &row);

private:
    using Rows = std::vector<TaskPtr>;

    std::vector<TaskPtr> linkedRows;
    std::unordered_map<QString, Rows> byTitle;
    std::unordered_map<QString, Rows> byItem;
    QStringList visibleCalendars;
    std::unordered_set<const EntityTask *> claimed;
    bool isFree(const TaskPtr &row) const;
    bool isVisible(const EntityTask &row) const;
};
