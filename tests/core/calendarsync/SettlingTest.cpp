#include "CalendarTest.h"

#include <gmock/gmock.h>

namespace {

using testing::SizeIs;

/// A second pass has nothing to do, whatever the calendars hold.
class SettledPasses : public CalendarTest
{};

TEST_F(SettledPasses, LeaveARowOverMidnightAlone)
{
    UserDefaults::standard().setObject(settings::frequencyCalendarPeriod, 1);
    write(u"Home"_qs, u"night"_qs,
          u"SUMMARY:Night shift\nDTSTART;TZID=Europe/Berlin:20261120T230000\nDTEND;TZID=Europe/"
          u"Berlin:20261121T010000\nRRULE:FREQ=DAILY\n"_qs);
    pass();
    ASSERT_THAT(rows(), SizeIs(5));
    rows().at(2)->setPriority(Priority::High);
    pass();
    EXPECT_EQ(rows().at(2)->priority(), Priority::High) << "the row is still the same";
    expectSettled();
}

TEST_F(SettledPasses, LeaveRowsAloneWhoseTitleHasBlanksAroundItElsewhere)
{
    const auto backend = connectMoodyStore();
    backend->readOnlyTitles = QStringList(u"Work"_qs);
    choose({u"Home"_qs, CalendarEvent::identifierOfCalendar(CalendarEvent::getAllCalendars().at(1))});
    write(u"Work"_qs, u"one"_qs, u"SUMMARY: Feast \nDTSTART:20261124T080000Z\nDTEND:20261124T090000Z\n"_qs);
    pass();
    ASSERT_THAT(rows(), SizeIs(1));
    EXPECT_EQ(rows().at(0)->title(), u"Feast"_qs);
    EXPECT_FALSE(*rows().at(0)->allowsContentModifications());
    expectSettled();
}

TEST_F(SettledPasses, FindTheSameRowsForEveryKindOfEvent)
{
    UserDefaults::standard().setObject(settings::frequencyCalendarPeriod, 2);
    const QString hour = u"DTSTART:20261124T080000Z\nDTEND:20261124T090000Z\n"_qs;
    write(u"Home"_qs, u"twin1"_qs, u"SUMMARY:Twins\n"_qs + hour);
    write(u"Work"_qs, u"twin2"_qs, u"SUMMARY:Twins\n"_qs + hour);
    write(u"Home"_qs, u"copy"_qs, u"SUMMARY:Copy\nLOCATION:Here\nGEO:48.13715432;11.57612499\n"_qs + hour);
    write(u"Work"_qs, u"copy"_qs, u"SUMMARY:Copied\nLOCATION:Here\nGEO:48.1371549;11.5761249\n"_qs + hour);
    write(u"Home"_qs, u"moment"_qs,
          u"SUMMARY:Call\nDTSTART:20261124T080000Z\nDTEND:20261124T080000Z\n"
          u"BEGIN:VALARM\nACTION:DISPLAY\nTRIGGER:-PT15M\nDESCRIPTION:x\nEND:VALARM\n"_qs);
    write(u"Home"_qs, u"floating"_qs, u"SUMMARY:Floating\nDTSTART:20261124T080030\nDURATION:PT90M\n"_qs);
    write(u"Home"_qs, u"trip"_qs,
          u"SUMMARY:Trip\nDTSTART;VALUE=DATE:20261123\nDTEND;VALUE=DATE:20261127\n"_qs);
    write(u"Home"_qs, u"days"_qs,
          u"SUMMARY:Days\nDTSTART;VALUE=DATE:20261122\nRRULE:FREQ=DAILY;UNTIL=20261126\n"_qs);
    write(u"Home"_qs, u"untitled"_qs, hour);
    write(u"Work"_qs, u"moved"_qs,
          u"SUMMARY:Standup\nDTSTART:20261121T060000Z\nDTEND:20261121T061500Z\nRRULE:FREQ=DAILY;COUNT=5\n"
          u"EXDATE:20261123T060000Z\nEND:VEVENT\nBEGIN:VEVENT\nUID:moved\nDTSTAMP:20260101T000000Z\n"
          u"RECURRENCE-ID:20261124T060000Z\nSUMMARY:Late standup\nDTSTART:20261124T130000Z\n"
          u"DTEND:20261124T131500Z\n"_qs);
    pass();
    EXPECT_EQ(table().filter(u"tandup"_qs),
              QStringList({u"11-21 07:15 Standup"_qs, u"11-22 07:15 Standup"_qs,
                           u"11-24 14:15 Late standup"_qs, u"11-25 07:15 Standup"_qs}));
    EXPECT_THAT(table().filter(u"Days"_qs), SizeIs(5));
    expectSettled();
}

TEST_F(SettledPasses, JoinPlacesAlikeToSixDecimalsAndKeepTheirTasks)
{
    const auto place = [](double latitude) {
        const auto made = mainContext().insert<EntityLocation>();
        made->setTitle(u"Office"_qs);
        made->setLatitude(latitude);
        made->setLongitude(11.5);
        return made;
    };
    const auto first = place(48.125);
    const auto second = place(48.125);
    const auto other = place(48.125001);
    const TaskPtr inbox = add(u"Inbox"_qs);
    inbox->setLocation(second);
    write(u"Home"_qs, u"one"_qs,
          u"SUMMARY:One\nDTSTART:20261124T080000Z\nDTEND:20261124T090000Z\nLOCATION:Office\n"
          u"GEO:48.1250009;11.5000001\n"_qs);
    pass();
    const auto all = mainContext().fetch<EntityLocation>(EntityLocation::fetchRequest());
    EXPECT_THAT(all, SizeIs(2)) << "the seventh decimal tells nothing apart, the sixth does";
    EXPECT_EQ(rows().at(1)->location(), inbox->location());
    EXPECT_NE(inbox->location(), nullptr);
    EXPECT_FALSE(other->isDeleted());
    expectSettled();
}

TEST_F(SettledPasses, TakeAnEndOffASeriesThatHasNoneAnyMore)
{
    const QString daily =
        u"SUMMARY:Daily\nDTSTART:20261121T060000Z\nDTEND:20261121T061500Z\nRRULE:FREQ=DAILY"_qs;
    write(u"Home"_qs, u"daily"_qs, daily + u";UNTIL=20261126T060000Z\n"_qs);
    pass();
    EXPECT_EQ(rows().at(0)->endRepeat(), utcDate(2026, 11, 26, 6));
    write(u"Home"_qs, u"daily"_qs, daily + u"\n"_qs);
    pass();
    EXPECT_EQ(rows().at(0)->endRepeat(), std::nullopt);
    expectSettled();
}

} // namespace
