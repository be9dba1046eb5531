#include "EdsFixture.h"

#include <QElapsedTimer>

#include <chrono>
#include <csignal>
#include <thread>

using EdsFailuresTest = EdsFixture;
using Part = DesktopDaemon::Part;
using namespace std::chrono_literals;

TEST_F(EdsFailuresTest, ADaemonThatDiedIsStartedAgain)
{
    put(backend, calendar, {{}, {}, plainEvent("one")});
    const auto former = objects(backend, calendar);
    backend.setChangedCallback([this] { ++changes; });

    DesktopDaemon::kill(Part::Calendars);
    EXPECT_EQ(objects(backend, calendar).value(u"one"_qs).etag, former.value(u"one"_qs).etag);
    const CalendarObject second = put(backend, calendar, {{}, {}, plainEvent("two")});
    EXPECT_TRUE(DesktopDaemon::process(Part::Calendars));
    EXPECT_EQ(objects(other, calendar).size(), 2);

    // In the middle: nothing was asked since it died.
    DesktopDaemon::kill(Part::Calendars);
    CalendarObject edited = second;
    edited.text.replace("Plain", "Edited");
    put(backend, calendar, edited);

    DesktopDaemon::kill(Part::Calendars);
    letNewsArrive();
    ASSERT_TRUE(waitUntil([] { return DesktopDaemon::process(Part::Calendars).has_value(); }));
    letNewsArrive();
    EXPECT_EQ(changes, 0);
    put(other, calendar, {{}, {}, plainEvent("three")});
    EXPECT_TRUE(waitUntil([this] { return changes > 0; }));
    EXPECT_EQ(objects(backend, calendar).size(), 3);
}

TEST_F(EdsFailuresTest, TheListOfCalendarsOutlivesItsDaemon)
{
    DesktopDaemon::kill(Part::Sources);
    EXPECT_TRUE(calendarOf(backend, calendar));
    EXPECT_TRUE(DesktopDaemon::process(Part::Sources));
    put(backend, calendar, {{}, {}, plainEvent("one")});
    EKCalendar renamed = *calendarOf(backend, calendar);
    renamed.title = u"Renamed"_qs;
    EXPECT_TRUE(waitUntil([&] { return !backend.updateCalendar(renamed); }));
    EXPECT_EQ(calendarOf(other, calendar)->title, u"Renamed"_qs);
}

TEST_F(EdsFailuresTest, ADaemonThatHangsIsNotWaitedFor)
{
    // A tenth of a second, and what a busy machine adds; far less than a call is waited for.
    constexpr int atOnce = 2'500;
    put(backend, calendar, {{}, {}, plainEvent("one")});
    EdsBackend late;
    ASSERT_TRUE(late.sources());
    // One that was alive a moment ago is believed to be.
    std::this_thread::sleep_for(150ms);
    DesktopDaemon::signal(Part::Calendars, SIGSTOP);
    QElapsedTimer clock;
    clock.start();
    EXPECT_EQ(errorOf(late.objects(calendar)), CalendarError::Storage);
    EXPECT_LT(clock.restart(), atOnce);
    // Also by a program that has just heard from it.
    EXPECT_EQ(errorOf(backend.objects(calendar)), CalendarError::Storage);
    EXPECT_LT(clock.restart(), atOnce);
    EXPECT_EQ(errorOf(late.objects(calendar)), CalendarError::Storage);
    const auto written = late.put(calendar, {{}, {}, plainEvent("two")}, {});
    ASSERT_FALSE(written);
    EXPECT_EQ(written.error().code, CalendarError::Storage);
    EXPECT_LT(clock.elapsed(), atOnce);
    DesktopDaemon::signal(Part::Calendars, SIGCONT);
    EXPECT_TRUE(waitUntil([&] { return late.objects(calendar).hasValue(); })) << "it is asked again soon";
    EXPECT_EQ(objects(late, calendar).size(), 1);

    EdsBackend later;
    std::this_thread::sleep_for(150ms);
    DesktopDaemon::signal(Part::Sources, SIGSTOP);
    clock.restart();
    EXPECT_FALSE(later.sources());
    EXPECT_LT(clock.restart(), atOnce);
    EXPECT_FALSE(later.calendars());
    EXPECT_EQ(errorOf(later.objects(calendar)), CalendarError::Storage);
    EXPECT_LT(clock.elapsed(), atOnce);
    DesktopDaemon::signal(Part::Sources, SIGCONT);
}

TEST_F(EdsFailuresTest, AWaitForTheDaemonIsToldWhileItLasts)
{
    put(backend, calendar, {{}, {}, plainEvent("one")});
    bool isTold = false;
    other.setWaitListener([&isTold](auto waited) {
        isTold = waited > 300ms;
        if (isTold)
            DesktopDaemon::signal(Part::Calendars, SIGCONT);
    });
    // It hangs just after it has answered; a busy machine may be too late for that.
    bool isFound = false;
    for (int attempt = 0; attempt < 10 && !(isTold && isFound); ++attempt) {
        ASSERT_TRUE(waitUntil([this] { return other.object(calendar, u"none"_qs).hasValue(); }));
        isTold = false;
        DesktopDaemon::signal(Part::Calendars, SIGSTOP);
        isFound = other.object(calendar, u"one"_qs).hasValue();
        DesktopDaemon::signal(Part::Calendars, SIGCONT);
    }
    other.setWaitListener({});
    EXPECT_TRUE(isTold && isFound);
}

TEST_F(EdsFailuresTest, BirthdaysAreOnlyRead)
{
    const auto birthdays = calendarOf(backend, u"birthdays"_qs);
    ASSERT_TRUE(birthdays);
    EXPECT_EQ(birthdays->type, EKCalendarType::Birthday);
    EXPECT_FALSE(birthdays->allowsContentModifications);
    const auto written = backend.put(u"birthdays"_qs, {{}, {}, plainEvent("one")}, {});
    ASSERT_FALSE(written);
    EXPECT_EQ(written.error().code, CalendarError::ReadOnly);
    EXPECT_TRUE(CalendarError::is(backend.removeCalendar(u"birthdays"_qs), CalendarError::ReadOnly));
    EXPECT_TRUE(CalendarError::is(backend.removeCalendar(u"system-calendar"_qs), CalendarError::ReadOnly));
    EXPECT_FALSE(backend.removeCalendar(u"unknown"_qs));
    EXPECT_EQ(backend.defaultCalendar(EKEntityType::Event), u"system-calendar"_qs);
    EXPECT_EQ(backend.defaultCalendar(EKEntityType::Reminder), u"system-task-list"_qs);
}
