#include "EventStoreContract.h"

#include "foundation/Calendar.h"

EventStoreContract::EventStoreContract()
    : place(GetParam()())
    , backend(place->open())
    , store(backend)
    , calendar(makeCalendar(QStringLiteral("Work")))
{}

EKCalendar EventStoreContract::makeCalendar(const QString &title)
{
    EKCalendar made = EKCalendar::calendarForEntityType(EKEntityType::Event, store);
    made.title = title;
    made.source = place->source();
    expectNoError(store.saveCalendar(made, true));
    return made;
}

EKEvent EventStoreContract::newEvent(const QString &title) const
{
    return newEvent(title, localDate(2024, 3, 4, 9), localDate(2024, 3, 4, 10));
}

EKEvent EventStoreContract::newEvent(const QString &title, Date start, Date end) const
{
    EKEvent event = EKEvent::eventWithEventStore(store);
    event.calendar = calendar;
    event.title = title;
    event.startDate = start;
    event.endDate = end;
    return event;
}

void EventStoreContract::save(EKEvent &event, EKSpan span)
{
    expectNoError(store.saveEvent(event, span, true));
}

EKEvent EventStoreContract::addSeries(const QString &title, const QString &rule)
{
    EKEvent event = newEvent(title);
    event.recurrenceRules = {*EKRecurrenceRule::recurrenceRuleFromString(rule)};
    save(event, EKSpan::FutureEvents);
    return event;
}

std::vector<EKEvent> EventStoreContract::events(Date from, Date to) const
{
    const EKEventStore fresh(place->open());
    auto found = fresh.eventsMatchingPredicate(fresh.predicateForEventsWithStartDate(from, to));
    EXPECT_TRUE(found) << (found ? "" : qPrintable(found.error().message));
    return found ? *found : std::vector<EKEvent>();
}

std::vector<EKEvent> EventStoreContract::eventsOf(int month) const
{
    return events(localDate(2024, month, 1), localDate(2024, month + 1, 1));
}

QStringList EventStoreContract::list(int month) const
{
    QStringList found;
    for (const EKEvent &event : eventsOf(month))
        found.append(described(event));
    return found;
}

EKEvent EventStoreContract::eventAt(Date start) const
{
    for (const EKEvent &event : events(start - Seconds(1), start + Seconds(1)))
        if (event.startDate == start)
            return event;
    ADD_FAILURE() << "Nothing starts at " << qPrintable(wallClock(start));
    return {};
}

void EventStoreContract::putForeign(const QByteArray &components, const QString &uid)
{
    const QByteArray text =
        QByteArray("BEGIN:VCALENDAR\nVERSION:2.0\nPRODID:-//Other//EN\n" + components + "END:VCALENDAR\n")
            .replace("\n", "\r\n");
    const auto written = place->open()->put(calendar.calendarIdentifier, {{}, {}, text}, uid);
    EXPECT_TRUE(written) << (written ? "" : qPrintable(written.error().message));
}

QByteArray EventStoreContract::textOf(const QString &uid) const
{
    const auto objects = place->open()->objects(calendar.calendarIdentifier);
    for (const CalendarObject &object : objects.value())
        if (object.text.contains("UID:" + uid.toUtf8()))
            return object.text;
    return {};
}

int EventStoreContract::objectCount() const
{
    return static_cast<int>(place->open()->objects(calendar.calendarIdentifier).value().size());
}

QString EventStoreContract::described(const EKEvent &event)
{
    const QString start = wallClock(*event.startDate);
    const QString end = wallClock(*event.endDate);
    const QString endText = start.left(10) == end.left(10) ? end.mid(11, 5) : end.mid(5, 11);
    return event.title + u' ' + start.mid(5, 11) + u'-' + endText;
}

void EventStoreContract::expectNoError(const OptionalError &error)
{
    EXPECT_FALSE(error) << qPrintable(error->message);
}
