// Passes over the calendars of the real daemon, which dies in the middle of them.

#include "CoreTest.h"

#include "DesktopDaemon.h"
#include "calendarsync/AlertSchedule.h"
#include "calendarsync/CalendarEvent.h"
#include "eventkit/eds/EdsBackend.h"
#include "records/TaskManager.h"
#include "store/entities/MainContext.h"
#include "store/state/SettingsKeys.h"
#include "usernotifications/UserNotificationCenter.h"
#include "workspace/PlatformConfiguration.h"

#include <QCoreApplication>
#include <QDBusConnection>

#include <csignal>

namespace {

/// The daemon's calendars; something happens to the daemon before each question about objects.
class InterruptedBackend : public EdsBackend
{
public:
    Result<std::vector<CalendarObject>> objects(const QString &calendarIdentifier) override
    {
        if (interruption && questionsBefore-- == 0)
            std::exchange(interruption, {})();
        return EdsBackend::objects(calendarIdentifier);
    }

    int questionsBefore = 0;
    std::function<void()> interruption;
};

class EdsPassTest : public CoreTest
{
protected:
    EdsPassTest()
        : backend(std::make_shared<InterruptedBackend>())
    {
        PlatformConfiguration::setAuthorization(u"events"_qs, 3);
        QStringList references;
        for (const QString &title : {u"First"_qs, u"Second"_qs, u"Third"_qs}) {
            EKCalendar wanted;
            wanted.title = title;
            wanted.source.sourceIdentifier = u"local-stub"_qs;
            const auto made = backend->createCalendar(wanted);
            EXPECT_TRUE(made) << (made ? "" : qPrintable(made.error().message));
            identifiers.append(made ? made.value().calendarIdentifier : QString());
            references.append(title);
            for (int number = 0; number < 12; ++number)
                put(identifiers.last(), u"%1-%2"_qs.arg(title).arg(number));
        }
        UserDefaults::standard().setObject(settings::savedChooseCalendars, references.join(u"Ω"_qs));
        CalendarEvent::resetEventStore();
        EKEventStore::setSharedBackend(backend);
        pass();
    }
    ~EdsPassTest() override
    {
        CalendarEvent::resetEventStore();
        EKEventStore::setSharedBackend(nullptr);
        PlatformConfiguration::setAuthorization(u"events"_qs, 0);
        for (const QString &key : {settings::savedChooseCalendars, settings::calendarReferences})
            UserDefaults::standard().removeObject(key);
        for (const QString &identifier : identifiers)
            EXPECT_FALSE(EdsBackend().removeCalendar(identifier));
    }

    void put(const QString &calendar, const QString &uid)
    {
        const QByteArray text =
            u"BEGIN:VCALENDAR\r\nVERSION:2.0\r\nPRODID:-//other//EN\r\nBEGIN:VEVENT\r\nUID:%1\r\n"
            "DTSTAMP:20260101T000000Z\r\nSUMMARY:%1\r\nDTSTART:20261122T090000Z\r\n"
            "DTEND:20261122T100000Z\r\nEND:VEVENT\r\nEND:VCALENDAR\r\n"_qs.arg(uid)
                .toUtf8();
        const auto written = backend->put(calendar, {{}, {}, text}, uid);
        EXPECT_TRUE(written) << (written ? "" : qPrintable(written.error().message));
    }
    static void pass()
    {
        CalendarEvent::syncCalendarToAppWithTask(nullptr);
        EXPECT_FALSE(DBWorker::saveContext());
    }
    static int linkedRows()
    {
        return mainContext().count(EntityTask::fetchRequest().where(Predicate::format("calendarID != nil")));
    }
    /// A program that is started anew knows nothing yet.
    void connectAnew()
    {
        backend = std::make_shared<InterruptedBackend>();
        CalendarEvent::resetEventStore();
        EKEventStore::setSharedBackend(backend);
        // The library needs a while to see that its former user has left.
        for (int attempt = 0; attempt < 100 && !backend->calendars(); ++attempt)
            QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
        ASSERT_TRUE(backend->calendars());
    }
    void interruptNextPass(int questionsBefore, std::function<void()> what)
    {
        backend->questionsBefore = questionsBefore;
        backend->interruption = std::move(what);
    }

    std::shared_ptr<InterruptedBackend> backend;
    QStringList identifiers;
    int late = 0;
};

TEST_F(EdsPassTest, ADaemonThatIsKilledInAPassCostsNoRow)
{
    const int before = linkedRows();
    EXPECT_EQ(before, 36);
    for (const int questions : {0, 1, 2}) {
        put(identifiers.at(2), u"late-%1"_qs.arg(++late));
        connectAnew();
        interruptNextPass(questions, [] { DesktopDaemon::kill(DesktopDaemon::Part::Calendars); });
        pass();
        EXPECT_GE(linkedRows(), before) << questions;
        connectAnew();
        interruptNextPass(questions, [] { DesktopDaemon::killAll(); });
        pass();
        EXPECT_GE(linkedRows(), before) << questions;
    }
    pass();
    EXPECT_EQ(linkedRows(), before + late) << "started again, it has lost nothing either";
}

TEST_F(EdsPassTest, AlertsRingHereWhileTheDesktopsAlarmServiceDoesNotRun)
{
    UserNotificationCenter &center = UserNotificationCenter::defaultUserNotificationCenter();
    const TaskPtr task = mainContext().fetch<EntityTask>(EntityTask::fetchRequest()).first();
    ASSERT_FALSE(task->calendarID().isEmpty());
    task->setAlert(localDate(2026, 11, 22, 8));
    EXPECT_FALSE(DBWorker::saveContext());
    EXPECT_EQ(center.scheduledNotifications().size(), 1u) << "nobody else would";

    const QString service = u"org.gnome.Evolution-alarm-notify"_qs;
    QDBusConnection desktop = QDBusConnection::connectToBus(QDBusConnection::SessionBus, u"desktop"_qs);
    ASSERT_TRUE(desktop.registerService(service));
    AlertSchedule::rebuild();
    EXPECT_TRUE(center.scheduledNotifications().empty()) << "it would ring twice";
    ASSERT_TRUE(desktop.unregisterService(service));
    QDBusConnection::disconnectFromBus(u"desktop"_qs);
    AlertSchedule::rebuild();
    EXPECT_EQ(center.scheduledNotifications().size(), 1u);
}

TEST_F(EdsPassTest, ADaemonThatHangsInAPassIsNoAccess)
{
    const int before = linkedRows();
    put(identifiers.at(0), u"late"_qs);
    connectAnew();
    interruptNextPass(1, [] { DesktopDaemon::signal(DesktopDaemon::Part::Calendars, SIGSTOP); });
    pass();
    EXPECT_EQ(linkedRows(), before);
    DesktopDaemon::signal(DesktopDaemon::Part::Calendars, SIGCONT);
    connectAnew();
    pass();
    EXPECT_EQ(linkedRows(), before + 1) << "a new start finds all";
}

TEST_F(EdsPassTest, ARepeatingTaskThatWasMadeBeforeTheStartGoesWhole)
{
    const auto titled = [] {
        int found = 0;
        for (const TaskPtr &row : mainContext().fetch<EntityTask>(
                 EntityTask::fetchRequest().where(Predicate::format("title == %@", u"Daily"_qs))))
            found += row != nullptr;
        return found;
    };
    // As another program finds them.
    const auto held = [this] {
        EKEventStore elsewhere(std::make_shared<EdsBackend>());
        const auto events = elsewhere.eventsMatchingPredicate(
            elsewhere.predicateForEventsWithStartDate(localDate(2026, 11, 1), localDate(2027, 1, 1)));
        EXPECT_TRUE(events);
        int found = 0;
        if (events) {
            for (const EKEvent &event : events.value())
                found += event.title == u"Daily"_qs;
        }
        return found;
    };
    const auto restart = [&] {
        quit();
        connectAnew();
        launch();
        delegate->applicationDidBecomeActive();
    };
    UserDefaults::standard().setObject(settings::frequencyCalendarPeriod, 2);
    delegate->applicationDidBecomeActive();
    MVTask daily;
    daily.title = u"Daily"_qs;
    daily.type = TaskType::Appointment;
    daily.status = TaskStatus::Open;
    daily.startDate = localDate(2026, 11, 24, 9);
    daily.dueDate = localDate(2026, 11, 24, 10);
    daily.typeCalendarID = u"First"_qs;
    daily.repeat = u"RRULE:FREQ=DAILY;INTERVAL=1"_qs;
    daily.endRepeat = localDate(2026, 11, 28);
    ASSERT_TRUE(TaskManager::saveTaskTemp(daily, true));
    EXPECT_EQ(titled(), 5);
    EXPECT_EQ(held(), 5);
    for (int round = 0; round < 2; ++round) {
        restart();
        ASSERT_FALSE(context().undo());
        EXPECT_EQ(titled(), 0);
        delegate->applicationDidBecomeActive();
        EXPECT_EQ(titled(), 0);
        EXPECT_EQ(held(), 0);
        restart();
        ASSERT_FALSE(context().redo());
        EXPECT_EQ(titled(), 5);
        delegate->applicationDidBecomeActive();
        EXPECT_EQ(titled(), 5);
        EXPECT_EQ(held(), 5);
    }
    EXPECT_EQ(linkedRows(), 36 + 5);
}

} // namespace
