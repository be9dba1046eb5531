#include "BenchEvents.h"

#include "calendarsync/CalendarEvent.h"
#include "eventkit/EKEventStore.h"
#include "foundation/Clock.h"
#include "foundation/UserDefaults.h"
#include "records/dates/MTDates.h"
#include "store/entities/EntityTask.h"
#include "store/queries/DBWorker.h"
#include "store/state/SettingsKeys.h"
#include "workspace/PlatformConfiguration.h"

#include <cstdlib>

QByteArray BenchEvents::eventText(int number)
{
    const Date day = Clock::now() + Seconds((number % 120 - 30) * 86400.0);
    const QString date = QStringLiteral("%1%2%3")
                             .arg(MTDates::year(day), 4, 10, QLatin1Char('0'))
                             .arg(MTDates::monthOfYear(day), 2, 10, QLatin1Char('0'))
                             .arg(MTDates::dayOfMonth(day), 2, 10, QLatin1Char('0'));
    const QString rule = number % 10 == 0 ? QStringLiteral("RRULE:FREQ=WEEKLY;COUNT=8\r\n") : QString();
    return QStringLiteral("BEGIN:VEVENT\r\nUID:event%1\r\nDTSTAMP:20260101T000000Z\r\n"
                          "SUMMARY:Event number %1\r\nDTSTART:%2T%3%4500Z\r\nDTEND:%2T%3%5900Z\r\n%6"
                          "DESCRIPTION:What it is about\r\nEND:VEVENT\r\n")
        .arg(number)
        .arg(date)
        .arg(8 + number % 9, 2, 10, QLatin1Char('0'))
        .arg(number % 3)
        .arg(3 + number % 3)
        .arg(rule)
        .toUtf8();
}

QByteArray BenchEvents::calendarText(int number)
{
    return "BEGIN:VCALENDAR\r\nVERSION:2.0\r\nPRODID:-//bench//EN\r\n" + eventText(number) +
           "END:VCALENDAR\r\n";
}

void BenchEvents::useCalendars(std::shared_ptr<CalendarBackend> backend)
{
    PlatformConfiguration::setAuthorization(QStringLiteral("events"), backend ? 3 : 0);
    UserDefaults::standard().setObject(settings::savedChooseCalendars, QStringLiteral("Bench"));
    if (!backend)
        DBWorker::setNilForCalendarIDTasks();
    EKEventStore::setSharedBackend(std::move(backend));
    CalendarEvent::resetEventStore();
}

TaskPtr BenchEvents::plainLinkedTask()
{
    for (const TaskPtr &task : DBWorker::getAllTasksWithCalendarTitle(QStringLiteral("Bench")))
        if (!task->calendarID().isEmpty() && task->repeat().isEmpty())
            return task;
    std::abort();
}

void BenchEvents::writeToEvent(EntityTask &task)
{
    static int round = 0;
    task.setTitle(QStringLiteral("Changed for the %1th time").arg(++round));
    CalendarEvent::initEventCalendarFromTask(task, Span::ThisTask, task.startDate(), false);
}
