#include "BenchEvents.h"
#include "BenchHome.h"
#include "Ratio.h"
#include "calendarsync/CalendarEvent.h"
#include "eventkit/FolderBackend.h"
#include "foundation/AtomicFile.h"
#include "store/queries/DBWorker.h"

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
        BenchEvents::useCalendars(std::make_shared<FolderBackend>(folder.path()));
    }
    ~CalendarFolder() { BenchEvents::useCalendars(nullptr); }
    QStringList files() const { return QDir(path()).entryList({QStringLiteral("*.ics")}, QDir::Files); }
    QString path() const { return folder.filePath(QStringLiteral("Local/Bench")); }

private:
    void write(int number) const
    {
        QFile file(path() + QStringLiteral("/event%1.ics").arg(number));
        if (file.open(QIODevice::WriteOnly))
            file.write(BenchEvents::calendarText(number));
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
    DBWorker::saveOrTell();
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
            DBWorker::saveOrTell();
            state.PauseTiming();
        }
        DBWorker::setNilForCalendarIDTasks();
        state.ResumeTiming();
    }
}
BENCHMARK(firstPass)->ArgName("events")->Arg(5000)->Unit(benchmark::kMillisecond)->Iterations(1);

/// A task with a new title, written to its event, against writing a file of that size whole.
void taskToEvent(benchmark::State &state)
{
    BenchHome::shared();
    const CalendarFolder calendar(static_cast<int>(state.range(0)));
    CalendarEvent::syncCalendarToAppWithTask(nullptr);
    DBWorker::saveOrTell();
    const TaskPtr task = BenchEvents::plainLinkedTask();
    const QString bareFile = calendar.path() + QStringLiteral("/../bare.ics");
    const QByteArray text = BenchEvents::calendarText(1);
    compare(
        state, [&task] { BenchEvents::writeToEvent(*task); },
        [&] { benchmark::DoNotOptimize(writeFileAtomically(bareFile, text)); });
}
BENCHMARK(taskToEvent)->ArgName("events")->Arg(5000)->Unit(benchmark::kMillisecond)->Iterations(40);

} // namespace
