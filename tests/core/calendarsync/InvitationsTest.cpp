#include "CalendarTest.h"

#include <gmock/gmock.h>

namespace {

using testing::IsEmpty;
using testing::SizeIs;

/// Meetings with others, and calendars that may only be read.
class Invitations : public CalendarTest
{
protected:
    std::shared_ptr<MoodyBackend> backend = connectMoodyStore();

    void meet(const QString &uid, const QString &organizer) const
    {
        write(u"Work"_qs, uid,
              u"SUMMARY:%1\nDTSTART:20261124T080000Z\nDTEND:20261124T090000Z\n"
              u"ORGANIZER;CN=\"Boss, The\";SENT-BY=\"mailto:desk@example.org\":mailto:%2\n"
              u"ATTENDEE;CN=Me;PARTSTAT=NEEDS-ACTION;RSVP=TRUE:mailto:me@example.org\n"
              u"ATTENDEE;CUTYPE=ROOM;PARTSTAT=ACCEPTED:mailto:room@example.org\n"_qs.arg(uid, organizer));
    }
};

TEST_F(Invitations, OfOthersMayOnlyBeRead)
{
    backend->ownerAddresses = QStringList(u"ME@example.org"_qs);
    meet(u"Own"_qs, u"me@example.org"_qs);
    meet(u"Theirs"_qs, u"boss@example.org"_qs);
    pass();
    ASSERT_THAT(rows(), SizeIs(2));
    EXPECT_TRUE(*rows().at(0)->allowsContentModifications());
    EXPECT_FALSE(*rows().at(1)->allowsContentModifications());
    MVTask own(rows().at(0));
    own.title = u"Owned"_qs;
    ASSERT_TRUE(TaskManager::saveTaskTemp(own, true));
    const QString text = files(u"Work"_qs).value(u"Own.ics"_qs);
    for (const QString &kept :
         {u"ORGANIZER;CN=\"Boss, The\";SENT-BY=\"mailto:desk@example.org\":mailto:me@"_qs,
          u"ATTENDEE;CN=Me;PARTSTAT=NEEDS-ACTION;RSVP=TRUE:mailto:me@example.org"_qs,
          u"ATTENDEE;CUTYPE=ROOM;PARTSTAT=ACCEPTED:mailto:room@example.org"_qs})
        EXPECT_TRUE(text.contains(kept)) << text.toStdString();
    expectSettled();
}

TEST_F(Invitations, WithAnotherTitleAreAnotherRow)
{
    meet(u"Theirs"_qs, u"boss@example.org"_qs);
    pass();
    const TaskPtr former = rows().at(0);
    write(u"Work"_qs, u"Theirs"_qs,
          u"SUMMARY:Other\nDTSTART:20261124T080000Z\nDTEND:20261124T090000Z\n"
          u"ATTENDEE:mailto:me@example.org\n"_qs);
    pass();
    ASSERT_THAT(rows(), SizeIs(1));
    EXPECT_NE(rows().at(0), former);
    EXPECT_EQ(rows().at(0)->title(), u"Other"_qs);
    expectSettled();
}

TEST_F(Invitations, GoOutsideOfTheWindowWhereOwnTasksStay)
{
    meet(u"Theirs"_qs, u"boss@example.org"_qs);
    write(u"Home"_qs, u"own"_qs, u"SUMMARY:Own\nDTSTART:20261124T080000Z\nDTEND:20261124T090000Z\n"_qs);
    pass();
    ASSERT_THAT(rows(), SizeIs(2));
    for (const TaskPtr &row : rows())
        EXPECT_EQ(row->alert(), std::nullopt);
    {
        const ScriptedAlerts alerts({Alert::firstButton});
        const FrozenClock later(localDate(2027, 3, 1, 12));
        pass();
        ASSERT_THAT(rows(), SizeIs(1));
        EXPECT_EQ(rows().at(0)->title(), u"Own"_qs);
    }
    pass();
    EXPECT_THAT(rows(), SizeIs(2)) << "it comes back with the window";
}

TEST_F(Invitations, OfReadOnlyCalendarsAreNeitherWrittenNorLost)
{
    backend->readOnlyTitles = QStringList(u"Work"_qs);
    const QString reference = CalendarEvent::identifierOfCalendar(CalendarEvent::getAllCalendars().at(1));
    ASSERT_TRUE(reference.startsWith(u"Work[<±>]"_qs));
    choose({u"Home"_qs, reference});
    write(u"Work"_qs, u"fixed"_qs, u"SUMMARY:Fixed\nDTSTART:20261124T080000Z\nDTEND:20261124T090000Z\n"_qs);
    pass();
    ASSERT_THAT(rows(), SizeIs(1));
    EXPECT_EQ(rows().at(0)->typeCalendarID(), reference);
    EXPECT_EQ(rows().at(0)->category(), nullptr) << "only own events get the custom category";
    const auto before = files(u"Work"_qs);
    MVTask copy(rows().at(0));
    copy.title = u"Changed"_qs;
    TaskManager::saveTaskTemp(copy, true);
    EXPECT_EQ(files(u"Work"_qs), before);
    pass();
    ASSERT_THAT(rows(), SizeIs(1));
    EXPECT_EQ(rows().at(0)->title(), u"Fixed"_qs);
    expectSettled();
    choose({u"Home"_qs});
    QFile::remove(folderOf(u"Work"_qs) + u"/fixed.ics"_qs);
    pass();
    EXPECT_THAT(rows(), SizeIs(1)) << "a hidden calendar takes nothing away";
    choose({u"Home"_qs, reference});
    write(u"Home"_qs, u"other"_qs, u"SUMMARY:Other\nDTSTART:20261124T080000Z\nDTEND:20261124T090000Z\n"_qs);
    pass();
    EXPECT_EQ(table(), QStringList(u"11-24 10:00 Other"_qs));
}

} // namespace
