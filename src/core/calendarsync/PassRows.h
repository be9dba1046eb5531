#pragma once

#include "eventkit/EKEvent.h"
#include "store/entities/Entities.h"

#include <QString>

#include <unordered_map>
#include <vector>

/// The rows that a pass can pair with events, read once and kept up to date by it. It answers what the
/// queries of the same rules would.
class PassRows
{
public:
    /// All rows that name a calendar item, and the open ones that have the title of an event.
    explicit PassRows(const std::vector<EKEvent> &events);

    /// Every visible row that named a calendar item at the start.
    const std::vector<TaskPtr> &linked() const { return linkedRows; }
    /// The row at the times of an event, by title or identifier; null if there is none.
    TaskPtr rowOf(const EKEvent &event) const;
    /// The first visible row of an identifier by start, done ones included; null if there is none.
    TaskPtr firstOfCalendarItem(const QString &identifier) const;
    /// The first visible open row of a title by start; null if there is none.
    TaskPtr firstOfTitle(const QString &title) const;
    /// A row that is new, or has another title or identifier now.
    void note(const TaskPtr &row);

private:
    using Rows = std::vector<TaskPtr>;

    std::vector<TaskPtr> linkedRows;
    std::unordered_map<QString, Rows> byTitle;
    std::unordered_map<QString, Rows> byItem;
    std::vector<QString> visibleCalendars;
    bool isVisible(const EntityTask &row) const;
};
