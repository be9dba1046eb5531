#pragma once

#include "eventkit/IcalComponent.h"

#include <QByteArray>
#include <QString>

#include <vector>

class QIODevice;

/// The components of an iCalendar file (RFC 5545) that stand for records, found without trust in the rest of
/// the file: one that is damaged takes no other with it.
class CalendarFile
{
public:
    /// What belongs together by its UID: a task, event, project or note, then the occurrences of a series
    /// that were edited alone.
    struct Object
    {
        QString uid;
        /// The number of the line that it begins in, from 1 on.
        qint64 line = 0;
        /// Of one VCALENDAR, with the time zones of the file.
        IcalComponent calendar;
    };
    /// Why a component could not be read.
    enum class Fault { CutOff, TooLarge, Unreadable };
    struct Problem
    {
        Fault fault;
        qint64 line;
    };

    /// More than this is no task.
    static constexpr qsizetype mostBytes = 2 * 1024 * 1024;
    /// So many are read from one file; what follows is left out, and `isTooLong` says so.
    static constexpr std::size_t mostComponents = 200'000;

    /// Reads all of a device that is open for reading.
    static CalendarFile read(QIODevice &device);

    const std::vector<Object> &objects() const { return found; }
    const std::vector<Problem> &problems() const { return faults; }
    bool isTooLong() const { return hasMore; }
    /// Whether there is anything of an iCalendar file.
    bool isCalendar() const { return hasBegun; }

private:
    struct Piece
    {
        qint64 line;
        QByteArray text;
    };
    void join(const std::vector<Piece> &pieces);

    QByteArray zones;
    std::vector<Object> found;
    std::vector<Problem> faults;
    bool hasMore = false;
    bool hasBegun = false;
};
