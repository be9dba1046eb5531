#include "EdsFixture.h"

using EdsChangesTest = EdsFixture;

TEST_F(EdsChangesTest, WhatAnotherProgramWritesIsSeenAtOnceAndToldOnce)
{
    CalendarObject own = put(backend, calendar, {{}, {}, plainEvent("own")});
    ASSERT_EQ(objects(backend, calendar).size(), 1);
    backend.setChangedCallback([this] { ++changes; });

    put(other, calendar, {{}, {}, plainEvent("foreign")});
    const auto seen = objects(backend, calendar);
    EXPECT_EQ(seen.keys(), (QStringList{u"foreign"_qs, u"own"_qs}));
    EXPECT_TRUE(waitUntil([this] { return changes > 0; }));
    letNewsArrive();
    EXPECT_EQ(changes, 1);

    // Nobody has asked for the objects since: told all the same.
    CalendarObject edited = seen.value(u"own"_qs);
    edited.text.replace("Plain", "Edited");
    put(other, calendar, edited);
    EXPECT_TRUE(waitUntil([this] { return changes > 1; }));
    EXPECT_TRUE(objects(backend, calendar).value(u"own"_qs).text.contains("Edited"));
    EXPECT_FALSE(other.remove(calendar, u"foreign"_qs, seen.value(u"foreign"_qs).etag));
    EXPECT_TRUE(waitUntil([this] { return changes > 2; }));
    EXPECT_EQ(objects(backend, calendar).size(), 1);

    const auto written = backend.put(calendar, own, {});
    ASSERT_FALSE(written);
    EXPECT_EQ(written.error().code, CalendarError::Conflict);
}

TEST_F(EdsChangesTest, ALookAtWhatWasNeverReadIsNoNews)
{
    put(other, calendar, {{}, {}, plainEvent("foreign")});
    backend.setChangedCallback([this] { ++changes; });
    letNewsArrive();
    changes = 0;
    const auto found = backend.object(calendar, u"foreign"_qs);
    ASSERT_TRUE(found && found.value());
    EXPECT_FALSE(backend.object(calendar, u"nobody"_qs).value());
    letNewsArrive();
    EXPECT_EQ(changes, 0);
    ASSERT_EQ(objects(backend, calendar).size(), 1);
    EXPECT_FALSE(other.remove(calendar, u"foreign"_qs, found.value()->etag));
    EXPECT_TRUE(waitUntil([this] { return changes > 0; }));
    EXPECT_FALSE(backend.object(calendar, u"foreign"_qs).value());
    EXPECT_FALSE(backend.object(calendar, u"foreign"_qs).value());
    letNewsArrive();
    EXPECT_EQ(changes, 1);
}

TEST_F(EdsChangesTest, OwnChangesAreNoNews)
{
    put(backend, calendar, {{}, {}, plainEvent("other")});
    ASSERT_EQ(objects(backend, calendar).size(), 1);
    backend.setChangedCallback([this] { ++changes; });

    const QByteArray series =
        eventText("series", "SUMMARY:Daily\nDTSTART;TZID=Europe/Berlin:20240304T090000\n"
                            "DURATION:PT1H\nRRULE:FREQ=DAILY;COUNT=5\n");
    CalendarObject object = put(backend, calendar, {{}, {}, series});
    const QByteArray plain = object.text;
    object.text.replace("END:VCALENDAR", "BEGIN:VEVENT\r\nUID:series\r\nSUMMARY:Once\r\n"
                                         "RECURRENCE-ID;TZID=Europe/Berlin:20240305T090000\r\n"
                                         "DTSTART;TZID=Europe/Berlin:20240305T110000\r\nDURATION:PT1H\r\n"
                                         "END:VEVENT\r\nEND:VCALENDAR");
    object = put(backend, calendar, object);
    EXPECT_TRUE(object.text.contains("SUMMARY:Once"));
    object.text = plain;
    object = put(backend, calendar, object);
    EXPECT_FALSE(object.text.contains("RECURRENCE-ID"));
    EXPECT_TRUE(object.text.contains("RRULE"));
    EXPECT_EQ(objects(other, calendar).value(u"series"_qs).etag, object.etag);
    EXPECT_FALSE(backend.remove(calendar, object.name, object.etag));

    EKCalendar made;
    made.title = u"Second"_qs;
    made.source.sourceIdentifier = u"local-stub"_qs;
    made = backend.createCalendar(made).value();
    made.title = u"Renamed"_qs;
    EXPECT_FALSE(backend.updateCalendar(made));
    EXPECT_FALSE(backend.removeCalendar(made.calendarIdentifier));
    letNewsArrive();
    EXPECT_EQ(changes, 0);
    EXPECT_EQ(objects(backend, calendar).size(), 1);
}

TEST_F(EdsChangesTest, ACalendarThatAnotherProgramRemovesIsWrittenToNoMore)
{
    const CalendarObject object = put(backend, calendar, {{}, {}, plainEvent("one")});
    backend.setChangedCallback([this] { ++changes; });
    DesktopDaemon::removeSource(calendar);

    const auto written = backend.put(calendar, {{}, {}, plainEvent("two")}, {});
    ASSERT_FALSE(written);
    EXPECT_EQ(written.error().code, CalendarError::NotFound);
    EXPECT_FALSE(backend.remove(calendar, object.name, object.etag));
    EXPECT_FALSE(calendarOf(backend, calendar));
    EXPECT_TRUE(waitUntil([this] { return changes > 0; }));
    EXPECT_EQ(errorOf(backend.objects(calendar)), CalendarError::NotFound);
}

TEST_F(EdsChangesTest, ACalendarThatAnotherProgramMakesAppears)
{
    backend.setChangedCallback([this] { ++changes; });
    const QString made = u"made-elsewhere"_qs;
    DesktopDaemon::createSource(made, u"[Data Source]\nDisplayName=Elsewhere\nEnabled=true\n"
                                      "Parent=local-stub\n\n[Task List]\nBackendName=local\n"
                                      "Color=rgb(255,0,51)\n"_qs);
    ASSERT_TRUE(waitUntil([this] { return changes > 0; }));
    const auto found = calendarOf(backend, made);
    ASSERT_TRUE(found);
    EXPECT_EQ(found->title, u"Elsewhere"_qs);
    EXPECT_EQ(found->color, (EKColor{1, 0, 0.2, 1}));
    EXPECT_EQ(found->allowedEntityTypes, (std::set{EKEntityType::Reminder}));
    EXPECT_EQ(found->source.sourceType, EKSourceType::Local);
    EXPECT_TRUE(found->allowsContentModifications);
    const QByteArray todo = calendarText("BEGIN:VTODO\nUID:t\nDTSTAMP:20240101T000000Z\nSUMMARY:Do\n"
                                         "DUE;VALUE=DATE:20240304\nEND:VTODO\n");
    EXPECT_TRUE(put(backend, made, {{}, {}, todo}).text.contains("DUE;VALUE=DATE:20240304"));
    EXPECT_TRUE(objects(other, made).contains(u"t"_qs));
}
