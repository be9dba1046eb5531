#include "EventStoreContract.h"

#include "eventkit/CalendarError.h"
#include "foundation/Region.h"

TEST_P(EventStoreContract, ASavedEventIsReadAsItWasWritten)
{
    EKEvent event = newEvent(u"Meeting, with; all \\ of\nit – ü 😀"_qs);
    event.notes = QString(300, u'x') + u"\n\nend"_qs;
    event.location = u"Room 1"_qs;
    event.structuredLocation = EKStructuredLocation::locationWithTitle(u"Room 1"_qs);
    event.structuredLocation->geoLocation = GeoLocation{52.520008, -13.404954};
    event.alarms = {EKAlarm::alarmWithRelativeOffset(-3600), EKAlarm::alarmWithRelativeOffset(-900)};
    event.availability = EKEventAvailability::Free;
    save(event);

    const EKEvent read = eventAt(localDate(2024, 3, 4, 9));
    EXPECT_EQ(read.title, u"Meeting, with; all \\ of\nit – ü 😀"_qs);
    EXPECT_EQ(read.notes, event.notes);
    EXPECT_EQ(read.location, u"Room 1"_qs);
    ASSERT_TRUE(read.structuredLocation && read.structuredLocation->geoLocation);
    EXPECT_NEAR(read.structuredLocation->geoLocation->latitude, 52.520008, 1e-6);
    EXPECT_NEAR(read.structuredLocation->geoLocation->longitude, -13.404954, 1e-6);
    EXPECT_EQ(read.alarms,
              (std::vector{EKAlarm::alarmWithRelativeOffset(-3600), EKAlarm::alarmWithRelativeOffset(-900)}));
    EXPECT_EQ(read.availability, EKEventAvailability::Free);
    EXPECT_EQ(read.endDate, localDate(2024, 3, 4, 10));
    EXPECT_EQ(read.timeZone, "Europe/Berlin");
    EXPECT_EQ(read.calendar, calendar);
    EXPECT_FALSE(read.allDay);
    EXPECT_TRUE(read.recurrenceRules.empty());
    EXPECT_FALSE(read.calendarItemExternalIdentifier.isEmpty());
    EXPECT_EQ(read.calendarItemExternalIdentifier, event.calendarItemExternalIdentifier);
    EXPECT_EQ(read.creationDate, localDate(2024, 3, 1, 12));
    EXPECT_TRUE(read.lastModifiedDate.has_value());
}

TEST_P(EventStoreContract, MomentsAndWholeDays)
{
    EKEvent moment = newEvent(u"Call"_qs, localDate(2024, 3, 5, 9, 30), localDate(2024, 3, 5, 9, 30));
    save(moment);
    EKEvent days = newEvent(u"Trip"_qs, localDate(2024, 3, 29, 15), localDate(2024, 4, 2, 8));
    days.allDay = true;
    save(days);
    EKEvent day = newEvent(u"Day"_qs, localDate(2024, 3, 31), localDate(2024, 3, 31));
    day.allDay = true;
    save(day);
    EXPECT_EQ(list(3), (QStringList{u"Call 03-05 09:30-09:30"_qs, u"Trip 03-29 00:00-04-02 23:59"_qs,
                                    u"Day 03-31 00:00-23:59"_qs}));
    EXPECT_EQ(eventAt(localDate(2024, 3, 31)).endDate, localDate(2024, 4, 1) - Seconds(1));

    // The days stay what they are wherever one looks from.
    Region::setZone("America/New_York");
    EXPECT_EQ(list(3), (QStringList{u"Call 03-05 03:30-03:30"_qs, u"Trip 03-29 00:00-04-02 23:59"_qs,
                                    u"Day 03-31 00:00-23:59"_qs}));
}

TEST_P(EventStoreContract, FieldsAreChangedAndCleared)
{
    EKEvent event = newEvent(u"One"_qs);
    event.notes = event.location = u"there"_qs;
    event.alarms = {EKAlarm::alarmWithAbsoluteDate(utcDate(2024, 3, 3, 8)),
                    EKAlarm::alarmWithRelativeOffset(0), EKAlarm::alarmWithRelativeOffset(600)};
    save(event);
    EXPECT_EQ(eventAt(*event.startDate).alarms, event.alarms);

    event.title.clear();
    event.notes.clear();
    event.location.clear();
    event.structuredLocation.reset();
    event.removeAlarm(EKAlarm::alarmWithRelativeOffset(0));
    event.startDate = localDate(2024, 3, 6, 20);
    event.endDate = localDate(2024, 3, 7, 2);
    save(event);
    const EKEvent read = eventAt(localDate(2024, 3, 6, 20));
    EXPECT_EQ(described(read), u" 03-06 20:00-03-07 02:00"_qs);
    EXPECT_TRUE(read.notes.isEmpty() && read.location.isEmpty() && !read.structuredLocation);
    EXPECT_EQ(read.alarms, (std::vector{EKAlarm::alarmWithAbsoluteDate(utcDate(2024, 3, 3, 8)),
                                        EKAlarm::alarmWithRelativeOffset(600)}));
    EXPECT_EQ(objectCount(), 1);

    event.allDay = true;
    save(event);
    EXPECT_EQ(list(3), (QStringList{u" 03-06 00:00-03-07 23:59"_qs}));
    event.allDay = false;
    event.startDate = event.endDate = localDate(2024, 3, 8, 7);
    save(event);
    EXPECT_EQ(list(3), (QStringList{u" 03-08 07:00-07:00"_qs}));
}

TEST_P(EventStoreContract, AnEventKeepsTheZoneThatItHas)
{
    putForeign("BEGIN:VEVENT\nUID:tokyo\nDTSTAMP:20240101T000000Z\nSUMMARY:Tokyo\n"
               "DTSTART;TZID=Asia/Tokyo:20240304T170000\nDTEND;TZID=Asia/Tokyo:20240304T180000\n"
               "RRULE:FREQ=DAILY;COUNT=60\nEND:VEVENT\n",
               u"tokyo"_qs);
    EKEvent event = eventAt(localDate(2024, 3, 4, 9));
    EXPECT_EQ(event.timeZone, "Asia/Tokyo");
    event.startDate = localDate(2024, 3, 4, 10);
    event.endDate = localDate(2024, 3, 4, 11);
    save(event, EKSpan::FutureEvents);
    // Noon of Tokyo plus six, before and after the clocks change in Berlin.
    EXPECT_EQ(described(eventAt(localDate(2024, 3, 30, 10))), u"Tokyo 03-30 10:00-11:00"_qs);
    EXPECT_EQ(described(eventAt(localDate(2024, 3, 31, 11))), u"Tokyo 03-31 11:00-12:00"_qs);
}

TEST_P(EventStoreContract, RemovedEventsAreGone)
{
    EKEvent one = newEvent(u"One"_qs);
    EKEvent other = newEvent(u"Other"_qs);
    save(one);
    save(other);
    expectNoError(store.removeEvent(one, EKSpan::FutureEvents, true));
    EXPECT_EQ(list(3), (QStringList{u"Other 03-04 09:00-10:00"_qs}));
    EXPECT_TRUE(CalendarError::is(store.removeEvent(one, EKSpan::ThisEvent, true), CalendarError::NotFound));
    one.title = u"Back"_qs;
    EXPECT_TRUE(CalendarError::is(store.saveEvent(one, EKSpan::ThisEvent, true), CalendarError::NotFound));
}

TEST_P(EventStoreContract, WhatMakesNoSenseIsNotSaved)
{
    const auto code = [&](EKEvent event) {
        const auto error = store.saveEvent(event, EKSpan::ThisEvent, true);
        return error ? error->code : 0;
    };
    EKEvent event = newEvent(u"One"_qs);
    event.endDate = *event.startDate - Seconds(1);
    EXPECT_EQ(code(event), CalendarError::Invalid);
    event.endDate.reset();
    EXPECT_EQ(code(event), CalendarError::Invalid);
    event = newEvent(u"One"_qs);
    event.calendar.reset();
    EXPECT_EQ(code(event), CalendarError::Invalid);
    event.calendar = calendar;
    event.calendar->calendarIdentifier = u"nowhere/at-all"_qs;
    EXPECT_EQ(code(event), CalendarError::NotFound);
    EXPECT_EQ(store.removeEvent(event, EKSpan::ThisEvent, true)->code, CalendarError::Invalid);
    EXPECT_EQ(objectCount(), 0);
}

TEST_P(EventStoreContract, WhatOthersChangedMeanwhileStays)
{
    EKEvent mine = newEvent(u"One"_qs);
    save(mine);
    EKEvent theirs = eventAt(*mine.startDate);
    theirs.notes = u"Theirs"_qs;
    theirs.title = u"Their title"_qs;
    EKEventStore other(place->open());
    expectNoError(other.saveEvent(theirs, EKSpan::ThisEvent, true));

    mine.title = u"My title"_qs;
    save(mine);
    EXPECT_EQ(mine.notes, u"Theirs"_qs);
    const EKEvent read = eventAt(*mine.startDate);
    EXPECT_EQ(read.notes, u"Theirs"_qs);
    EXPECT_EQ(read.title, u"My title"_qs);
}

TEST_P(EventStoreContract, PeopleAreReadAndStay)
{
    putForeign(
        "BEGIN:VEVENT\nUID:people\nDTSTAMP:20240101T000000Z\nDTSTART:20240304T080000Z\nSTATUS:TENTATIVE\n"
        "ORGANIZER;CN=\"Ada, L.\":mailto:ada@example.org\n"
        "ATTENDEE;ROLE=OPT-PARTICIPANT;PARTSTAT=DECLINED;CN=Bob:MAILTO:bob@example.org\n"
        "ATTENDEE:mailto:eve@example.org\nEND:VEVENT\n",
        u"people"_qs);
    EKEvent event = eventAt(localDate(2024, 3, 4, 9));
    event.title = u"Changed"_qs;
    save(event);
    event = eventAt(localDate(2024, 3, 4, 9));
    EXPECT_EQ(event.status, EKEventStatus::Tentative);
    ASSERT_TRUE(event.organizer);
    EXPECT_EQ(event.organizer->name, u"Ada, L."_qs);
    EXPECT_FALSE(event.organizer->isCurrentUser);
    ASSERT_EQ(event.attendees.size(), 2U);
    EXPECT_EQ(event.attendees[0].name, u"Bob"_qs);
    EXPECT_EQ(event.attendees[0].participantRole, EKParticipantRole::Optional);
    EXPECT_EQ(event.attendees[0].participantStatus, EKParticipantStatus::Declined);
    EXPECT_EQ(event.attendees[1].participantStatus, EKParticipantStatus::Pending);
}

/// A look-up by identifier does not read the whole calendar again, and still misses nothing.
TEST_P(EventStoreContract, ALookUpSeesWhatOthersAddedChangedAndRemoved)
{
    const auto titleOf = [this](const QString &uid) {
        const auto found = store.calendarItemsWithExternalIdentifier(uid);
        EXPECT_TRUE(found);
        return found && !found.value().empty() ? found.value().front().title : QString();
    };
    const auto text = [](const QByteArray &uid, const QByteArray &title) {
        return "BEGIN:VEVENT\nUID:" + uid +
               "\nDTSTAMP:20240101T000000Z\nDTSTART:20240304T080000Z\nSUMMARY:" + title + "\nEND:VEVENT\n";
    };
    EKEvent own = newEvent(u"Own"_qs);
    save(own);
    EXPECT_EQ(titleOf(own.calendarItemExternalIdentifier), u"Own"_qs);
    EXPECT_EQ(titleOf(u"later"_qs), QString());
    putForeign(text("later", "Added"), u"later"_qs);
    EXPECT_EQ(titleOf(u"later"_qs), u"Added"_qs);
    EXPECT_EQ(titleOf(own.calendarItemExternalIdentifier), u"Own"_qs);

    EKEventStore other(place->open());
    const auto theirs = other.calendarItemsWithExternalIdentifier(u"later"_qs);
    ASSERT_TRUE(theirs && theirs.value().size() == 1);
    EKEvent changed = theirs.value().front();
    changed.title = u"Changed"_qs;
    expectNoError(other.saveEvent(changed, EKSpan::ThisEvent, true));
    EXPECT_EQ(titleOf(u"later"_qs), u"Changed"_qs);
    expectNoError(other.removeEvent(changed, EKSpan::ThisEvent, true));
    EXPECT_EQ(titleOf(u"later"_qs), QString());
    putForeign(text("later", "Again"), u"later"_qs);
    EXPECT_EQ(titleOf(u"later"_qs), u"Again"_qs);
}
