#pragma once

#include "eventkit/CalendarBackend.h"
#include "eventkit/EKEventStore.h"
#include "support/TestSupport.h"

#include <gtest/gtest.h>

#include <memory>

/// A place where calendars are kept, fresh for each test.
class BackendUnderTest
{
public:
    virtual ~BackendUnderTest() = default;

    /// Another way to the same calendars, as a second program would have it.
    virtual std::shared_ptr<CalendarBackend> open() = 0;
    /// The source in which tests make their calendars.
    virtual EKSource source() = 0;
    /// Lets a calendar be read only from now on, for stores that are opened later too.
    virtual void makeReadOnly(const EKCalendar &calendar) = 0;
    /// How many generated series a run has the time for.
    virtual int generatedSeries() const { return 120; }
};

using BackendFactory = std::unique_ptr<BackendUnderTest> (*)();

/// What the calendar store does on any backend. In Berlin, unless a test says otherwise; the clock stands at
/// noon of the 1st of March 2024.
class EventStoreContract : public testing::TestWithParam<BackendFactory>
{
protected:
    EventStoreContract();

    EKCalendar makeCalendar(const QString &title);
    /// An event from the 4th of March 2024, 9:00 to 10:00, in the calendar of the test; not saved.
    EKEvent newEvent(const QString &title) const;
    EKEvent newEvent(const QString &title, Date start, Date end) const;
    void save(EKEvent &event, EKSpan span = EKSpan::ThisEvent);
    /// Saves a series by a rule such as "FREQ=DAILY;COUNT=5".
    EKEvent addSeries(const QString &title, const QString &rule);

    /// What a store that was opened just now finds.
    std::vector<EKEvent> events(Date from, Date to) const;
    /// The whole of a month of 2024.
    std::vector<EKEvent> eventsOf(int month) const;
    /// "Title 03-04 09:00-10:00" for each of the events of a month.
    QStringList list(int month) const;
    /// The event that starts at a moment.
    EKEvent eventAt(Date start) const;

    /// Puts an object there as another program would.
    void putForeign(const QByteArray &components, const QString &uid);
    QByteArray textOf(const QString &uid) const;
    int objectCount() const;

    static QString described(const EKEvent &event);
    static void expectNoError(const OptionalError &error);

    FrozenClock clock{localDate(2024, 3, 1, 12)};
    std::unique_ptr<BackendUnderTest> place;
    std::shared_ptr<CalendarBackend> backend;
    EKEventStore store;
    EKCalendar calendar;
};
