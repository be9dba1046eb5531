#pragma once

#include "eventkit/IcalComponent.h"
#include "records/exchange/RecordWriter.h"
#include "records/exchange/TaskComponents.h"
#include "store/entities/Entities.h"

#include <QSet>

#include <memory>

/// Writes an iCalendar file (RFC 5545): appointments as VEVENT, other tasks and projects as VTODO, notes as
/// VJOURNAL. A series is written once, as the calendar has it, whichever of its occurrences comes first. A
/// project brings its tasks, which name it in RELATED-TO.
class CalendarWriter : public RecordWriter
{
public:
    CalendarWriter();
    ~CalendarWriter() override;

    QByteArray head() override;
    QByteArray text(const ManagedObject &record) override;
    QByteArray end() override;

private:
    QByteArray textOf(const EntityTask &task, const QString &project);
    QByteArray textOf(const EntityProject &project);
    static QByteArray textOf(const EntityNote &note);
    QByteArray zonesOf(const TaskObject &object);

    /// The calendars are read once for all tasks.
    std::shared_ptr<void> held;
    QSet<QString> writtenObjects;
    QSet<QByteArray> writtenZones;
};
