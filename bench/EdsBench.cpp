#include "BenchEvents.h"
#include "BenchHome.h"
#include "Ratio.h"
#include "calendarsync/CalendarEvent.h"
#include "eventkit/eds/EdsBackend.h"
#include "eventkit/eds/EdsGlib.h"
#include "store/queries/DBWorker.h"

#include <QCoreApplication>
#include <QElapsedTimer>

#include <cstdio>
#include <cstdlib>

namespace {

/// A calendar of so many events at the daemon, and the library's own way to it.
class DaemonCalendar
{
public:
    explicit DaemonCalendar(int count)
    {
        // The daemon gets the folders of this run when it is started.
        BenchHome::shared();
        auto backend = std::make_shared<EdsBackend>();
        EKCalendar wanted;
        wanted.title = QStringLiteral("Bench");
        wanted.source.sourceIdentifier = QStringLiteral("local-stub");
        const auto made = backend->createCalendar(wanted);
        if (!made)
            fail(qPrintable(made.error().message));
        identifier = made.value().calendarIdentifier;
        connect();
        fill(count);
        BenchEvents::useCalendars(backend);
        settle();
    }
    ~DaemonCalendar()
    {
        BenchEvents::useCalendars(nullptr);
        EdsBackend().removeCalendar(identifier);
    }

    int bareFetch() const
    {
        GSList *objects = nullptr;
        if (!e_cal_client_get_object_list_sync(client.get(), "#t", &objects, nullptr, nullptr))
            fail("cannot fetch");
        const auto count = static_cast<int>(g_slist_length(objects));
        e_util_free_nullable_object_slist(objects);
        return count;
    }

    void bareModification(int round) const
    {
        GSList *objects = nullptr;
        e_cal_client_get_objects_for_uid_sync(client.get(), "event2", &objects, nullptr, nullptr);
        if (!objects)
            fail("cannot find");
        auto *component = static_cast<ECalComponent *>(objects->data);
        ICalComponent *event = e_cal_component_get_icalcomponent(component);
        i_cal_component_set_summary(event, qPrintable(QStringLiteral("Bare %1").arg(round)));
        if (!e_cal_client_modify_object_sync(client.get(), event, E_CAL_OBJ_MOD_ALL,
                                             E_CAL_OPERATION_FLAG_NONE, nullptr, nullptr))
            fail("cannot modify");
        e_util_free_nullable_object_slist(objects);
    }

    /// Lets the news of former changes arrive.
    static void settle()
    {
        QElapsedTimer timer;
        timer.start();
        while (timer.elapsed() < 1500)
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents | QEventLoop::AllEvents, 50);
    }

private:
    [[noreturn]] static void fail(const char *what)
    {
        std::fprintf(stderr, "%s\n", what);
        std::exit(EXIT_FAILURE);
    }
    void connect()
    {
        const GlibObject<ESourceRegistry> registry(e_source_registry_new_sync(nullptr, nullptr));
        const GlibObject<ESource> source(
            e_source_registry_ref_source(registry.get(), identifier.toUtf8().constData()));
        client.reset(reinterpret_cast<ECalClient *>(e_cal_client_connect_sync(
            source.get(), E_CAL_CLIENT_SOURCE_TYPE_EVENTS, guint32(-1), nullptr, nullptr)));
        if (!client)
            fail("cannot connect");
    }
    void fill(int count) const
    {
        GSList *events = nullptr;
        for (int number = 0; number < count; ++number)
            events = g_slist_prepend(
                events, i_cal_component_new_from_string(BenchEvents::eventText(number).constData()));
        GSList *uids = nullptr;
        if (!e_cal_client_create_objects_sync(client.get(), events, E_CAL_OPERATION_FLAG_NONE, &uids, nullptr,
                                              nullptr))
            fail("cannot fill the calendar");
        g_slist_free_full(uids, g_free);
        g_slist_free_full(events, g_object_unref);
    }

    QString identifier;
    GlibObject<ECalClient> client;
};

/// A pass that finds nothing changed, against fetching all objects. The first of each is not counted.
void passWithoutChangeAtDaemon(benchmark::State &state)
{
    const DaemonCalendar calendar(static_cast<int>(state.range(0)));
    CalendarEvent::syncCalendarToAppWithTask(nullptr);
    DBWorker::saveOrTell();
    benchmark::DoNotOptimize(calendar.bareFetch());
    compare(
        state, [] { CalendarEvent::syncCalendarToAppWithTask(nullptr); },
        [&calendar] { benchmark::DoNotOptimize(calendar.bareFetch()); });
    if (BenchHome::shared().context().hasChanges())
        state.SkipWithError("The pass changed something");
}
BENCHMARK(passWithoutChangeAtDaemon)
    ->ArgName("events")
    ->Arg(5000)
    ->Arg(20000)
    ->Unit(benchmark::kMillisecond)
    ->Iterations(5);

/// A task with a new title, written to its event, against reading and modifying one object.
void taskToEventAtDaemon(benchmark::State &state)
{
    const DaemonCalendar calendar(static_cast<int>(state.range(0)));
    CalendarEvent::syncCalendarToAppWithTask(nullptr);
    DBWorker::saveOrTell();
    const TaskPtr task = BenchEvents::plainLinkedTask();
    int round = 0;
    compare(
        state, [&task] { BenchEvents::writeToEvent(*task); }, [&] { calendar.bareModification(++round); });
}
BENCHMARK(taskToEventAtDaemon)
    ->ArgName("events")
    ->Arg(500)
    ->Arg(5000)
    ->Unit(benchmark::kMillisecond)
    ->Iterations(15);

} // namespace
