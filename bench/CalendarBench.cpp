#include "BenchHome.h"
#include "Ratio.h"
#include "calendarsync/CalendarEvent.h"
#include "eventkit/FolderBackend.h"
#include "foundation/Clock.h"
#include "foundation/UserDefaults.h"
#include "records/dates/MTDates.h"
#include "store/queries/DBWorker.h"
#include "store/state/SettingsKeys.h"
#include "workspace/PlatformConfiguration.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <libical/ical.h>

namespace {

/// A calendar of so many events around now, one in ten of them a series, in files.
class CalendarFolder
{
public:
    explicit CalendarFolder(int count)
    {
        QDir().mkpath(folder.filePath(QStringLiteral("Local/Bench")));
        for (int number = 0; number < count; ++number)
            write(number);
        PlatformConfiguration::setAuthorization(QStringLiteral("events"), 3);
        UserDefaults::standard().setObject(settings::savedChooseCalendars, QStringLiteral("Bench"));
        EKEventStore::setSharedBackend(std::make_shared<FolderBackend>(folder.path()));
        CalendarEvent::resetEventStore();
    }
    ~CalendarFolder()
    {
        EKEventStore::setSharedBackend(nullptr);
        CalendarEvent::resetEventStore();
        PlatformConfiguration::setAuthorization(QStringLiteral("events"), 0);
    }
    QStringList files() const { return QDir(path()).entryList({QStringLiteral("*.ics")}, QDir::Files); }
    QString path() const { return folder.filePath(QStringLiteral("Local/Bench")); }

private:
    void write(int number) const
    {
        const Date day = Clock::now() + Seconds((number % 120 - 30) * 86400.0);
        const QString date = QStringLiteral("%1%2%3")
                                 .arg(MTDates::year(day), 4, 10, QLatin1Char('0'))
                                 .arg(MTDates::monthOfYear(day), 2, 10, QLatin1Char('0'))
                                 .arg(MTDates::dayOfMonth(day), 2, 10, QLatin1Char('0'));
        const QString rule = number % 10 == 0 ? QStringLiteral("RRULE:FREQ=WEEKLY;COUNT=8\r\n") : QString();
        QFile file(path() + QStringLiteral("/event%1.ics").arg(number));
        if (!file.open(QIODevice::WriteOnly))
            return;
        file.write(
            QStringLiteral("BEGIN:VCALENDAR\r\nVERSION:2.0\r\nPRODID:-//bench//EN\r\nBEGIN:VEVENT\r\n"
                           "UID:event%1\r\nDTSTAMP:20260101T000000Z\r\nSUMMARY:Event number %1\r\n"
                           "DTSTART:%2T%3%4500Z\r\nDTEND:%2T%3%5900Z\r\n%6DESCRIPTION:What it is about\r\n"
                           "END:VEVENT\r\nEND:VCALENDAR\r\n")
                .arg(number)
                .arg(date)
                .arg(8 + number % 9, 2, 10, QLatin1Char('0'))
                .arg(number % 3)
                .arg(3 + number % 3)
                .arg(rule)
                .toUtf8());
    }

    QTemporaryDir folder;
};

int bareParse(const CalendarFolder &calendar)
{
    int found = 0;
    for (const QString &name : calendar.files()) {
        QFile file(calendar.path() + u'/' + name);
        if (!file.open(QIODevice::ReadOnly))
            continue;
        icalcomponent *component = icalparser_parse_string(file.readAll().constData());
        found += icalcomponent_count_components(component, ICAL_VEVENT_COMPONENT);
        icalcomponent_free(component);
    }
    return found;
}

/// A pass that finds nothing changed, against reading and parsing the same files.
void passWithoutChange(benchmark::State &state)
{
    ManagedObjectContext &context = BenchHome::shared().context();
    const CalendarFolder calendar(static_cast<int>(state.range(0)));
    CalendarEvent::syncCalendarToAppWithTask(nullptr);
    DBWorker::saveContext();
    compare(
        state, [] { CalendarEvent::syncCalendarToAppWithTask(nullptr); },
        [&calendar] { benchmark::DoNotOptimize(bareParse(calendar)); });
    if (context.hasChanges())
        state.SkipWithError("The pass changed something");
}
BENCHMARK(passWithoutChange)
    ->ArgName("events")
    ->Arg(5000)
    ->Arg(20000)
    ->Unit(benchmark::kMillisecond)
    ->Iterations(5);

/// The first pass, which makes all rows.
void firstPass(benchmark::State &state)
{
    BenchHome::shared();
    for (auto _ : state) {
        state.PauseTiming();
        {
            const CalendarFolder calendar(static_cast<int>(state.range(0)));
            state.ResumeTiming();
            CalendarEvent::syncCalendarToAppWithTask(nullptr);
            DBWorker::saveContext();
            state.PauseTiming();
        }
        DBWorker::setNilForCalendarIDTasks();
        state.ResumeTiming();
    }
}
BENCHMARK(firstPass)->ArgName("events")->Arg(5000)->Unit(benchmark::kMillisecond)->Iterations(1);

} // namespace
