#pragma once

#include "CalendarTest.h"

#include <gmock/gmock.h>

/// What happens to a series when its occurrences are done, moved and deleted here and elsewhere.
class SeriesStories : public CalendarTest
{
protected:
    SeriesStories()
    {
        UserDefaults::standard().setObject(settings::frequencyCalendarPeriod, 2);
        writeStandup(u"COUNT=6"_qs);
    }
    void writeStandup(const QString &end, const QString &more = {}) const
    {
        write(u"Home"_qs, u"standup"_qs,
              u"SUMMARY:Standup\nDTSTART;TZID=Europe/Berlin:20261120T090000\nDTEND;TZID=Europe/"
              u"Berlin:20261120T091500\nRRULE:FREQ=DAILY;%1\n%2"_qs.arg(end, more));
    }
    static QString override(const QString &day, const QString &lines)
    {
        return u"END:VEVENT\nBEGIN:VEVENT\nUID:standup\nDTSTAMP:20260101T000000Z\nRECURRENCE-ID;TZID=Europe/"
               u"Berlin:%1T090000\n%2"_qs.arg(day, lines);
    }
    /// The occurrences as other programs see them, "11-24 09:00 Title".
    static QStringList calendar()
    {
        QStringList lines;
        const auto events = CalendarEvent::eventsForCalendars(CalendarEvent::getAllCalendars());
        for (const EKEvent &event : *events)
            lines.append(wallClock(*event.startDate).mid(5, 11) + u' ' + event.title);
        lines.sort();
        return lines;
    }
    static void finish(const TaskPtr &row, Span span)
    {
        editSeries(row, span, [](MVTask &task) { task.changeStatusType(TaskStatus::Done, false); });
    }
    static QList<int> statuses()
    {
        QList<int> found;
        for (const TaskPtr &row : rows())
            found.append(numberOf(row->status()).value_or(-1));
        return found;
    }
};
