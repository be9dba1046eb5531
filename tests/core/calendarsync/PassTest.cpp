#include "CalendarTest.h"
#include "calendarsync/PassProgress.h"

#include <gmock/gmock.h>

#include <QCoreApplication>

namespace {

using testing::IsEmpty;
using testing::SizeIs;

class CalendarPasses : public CalendarTest
{};

TEST_F(CalendarPasses, MakeRowsOfAllKindsOfEvents)
{
    write(u"Home"_qs, u"day"_qs,
          u"SUMMARY: Holiday \nDTSTART;VALUE=DATE:20261123\nDTEND;VALUE=DATE:20261124\n"_qs);
    write(u"Home"_qs, u"moment"_qs,
          u"SUMMARY:Call\nDTSTART:20261124T080000Z\nDTEND:20261124T080000Z\nDESCRIPTION:about it\n"_qs);
    write(u"Work"_qs, u"meeting"_qs,
          u"SUMMARY:Meeting\nDTSTART;TZID=Europe/Berlin:20261125T090000\nDTEND;TZID=Europe/"
          u"Berlin:20261125T100000\n"
          u"BEGIN:VALARM\nACTION:DISPLAY\nTRIGGER:-PT15M\nDESCRIPTION:x\nEND:VALARM\n"_qs);
    write(
        u"Work"_qs, u"night"_qs,
        u"SUMMARY:Night\nDTSTART;TZID=Europe/Berlin:20261126T230000\nDTEND;TZID=Europe/Berlin:20261127T010000\n"_qs);
    pass();
    const auto all = rows();
    ASSERT_THAT(all, SizeIs(4));
    EXPECT_EQ(all[0]->title(), u"Holiday"_qs);
    EXPECT_EQ(all[0]->type(), TaskType::ToDo);
    EXPECT_EQ(all[0]->startDate(), localDate(2026, 11, 23));
    EXPECT_EQ(all[0]->dueDate(), localDate(2026, 11, 23, 23, 59, 59));
    EXPECT_EQ(all[1]->type(), TaskType::EmailCall);
    EXPECT_EQ(all[1]->startDate(), std::nullopt);
    EXPECT_EQ(all[1]->dueDate(), localDate(2026, 11, 24, 9));
    EXPECT_EQ(all[1]->details(), u"about it"_qs);
    EXPECT_EQ(all[2]->type(), TaskType::Appointment);
    EXPECT_EQ(all[2]->alert(), localDate(2026, 11, 25, 8, 45));
    EXPECT_EQ(all[2]->typeCalendarID(), u"Work"_qs);
    EXPECT_EQ(all[2]->calendarID(), u"meeting"_qs);
    EXPECT_EQ(all[2]->priority(), Priority::None);
    EXPECT_EQ(all[3]->type(), TaskType::ToDo) << "over midnight it is a bar of two days";
    EXPECT_EQ(all[3]->startDate(), localDate(2026, 11, 26));
    EXPECT_EQ(all[3]->dueDate(), localDate(2026, 11, 27, 1));

    // Nothing changed, nothing is written.
    const auto before = files(u"Work"_qs);
    CalendarEvent::syncCalendarToAppWithTask(nullptr);
    EXPECT_FALSE(context().hasChanges());
    EXPECT_EQ(files(u"Work"_qs), before);
}

TEST_F(CalendarPasses, FollowChangesAndKeepWhatOnlyTheProgramKnows)
{
    write(u"Home"_qs, u"one"_qs, u"SUMMARY:Before\nDTSTART:20261124T080000Z\nDTEND:20261124T090000Z\n"_qs);
    pass();
    const TaskPtr row = rows().at(0);
    row->setPriority(Priority::High);
    write(u"Home"_qs, u"one"_qs, u"SUMMARY:After\nDTSTART:20261125T080000Z\nDTEND:20261125T093000Z\n"_qs);
    pass();
    ASSERT_THAT(rows(), SizeIs(1));
    EXPECT_EQ(row->title(), u"After"_qs);
    EXPECT_EQ(row->dueDate(), utcDate(2026, 11, 25, 9, 30));
    EXPECT_EQ(row->priority(), Priority::High);
    write(u"Work"_qs, u"two"_qs, u"SUMMARY:Two\nDTSTART:20261124T080000Z\nDTEND:20261124T090000Z\n"_qs);
    QFile::remove(folderOf(u"Home"_qs) + u"/one.ics"_qs);
    pass();
    ASSERT_THAT(rows(), SizeIs(1));
    EXPECT_EQ(rows().at(0)->title(), u"Two"_qs);
    QFile::remove(folderOf(u"Work"_qs) + u"/two.ics"_qs);
    pass();
    EXPECT_THAT(rows(), IsEmpty()) << "one event is deleted by hand";
}

TEST_F(CalendarPasses, LimitTheFutureOfASeries)
{
    UserDefaults::standard().setObject(settings::frequencyCalendarPeriod, 1);
    write(u"Home"_qs, u"daily"_qs,
          u"SUMMARY:Daily\nDTSTART;TZID=Europe/Berlin:20261119T090000\nDTEND;TZID=Europe/"
          u"Berlin:20261119T093000\n"
          u"RRULE:FREQ=DAILY;COUNT=100\n"_qs);
    pass();
    const auto all = rows();
    ASSERT_THAT(all, SizeIs(6)) << "three days until today and three after it";
    EXPECT_EQ(all.back()->dueDate(), localDate(2026, 11, 24, 9, 30));
    EXPECT_TRUE(all.back()->repeat().contains(u"FREQ=DAILY"_qs));
    EXPECT_EQ(all.back()->calendarID(), u"daily"_qs);
    // A day later the series has moved on, and the past days stay.
    const FrozenClock tomorrow(localDate(2026, 11, 22, 9, 15));
    pass();
    EXPECT_THAT(rows(), SizeIs(7));
    UserDefaults::standard().setObject(settings::frequencyCalendarPeriod, 0);
    pass();
    EXPECT_THAT(rows(), SizeIs(5));
}

TEST_F(CalendarPasses, LeaveRowsOfHiddenCalendarsAndOfAStoreThatCannotBeReached)
{
    write(u"Home"_qs, u"one"_qs, u"SUMMARY:One\nDTSTART:20261124T080000Z\nDTEND:20261124T090000Z\n"_qs);
    pass();
    choose({u"Work"_qs});
    pass();
    EXPECT_THAT(rows(), SizeIs(1)) << "a hidden calendar takes nothing away";
    choose({u"Home"_qs, u"Work"_qs});
    PlatformConfiguration::setAuthorization(u"events"_qs, 2);
    QFile::remove(folderOf(u"Home"_qs) + u"/one.ics"_qs);
    pass();
    EXPECT_THAT(rows(), SizeIs(1));
}

TEST_F(CalendarPasses, AskBeforeTheyTakeAwayMuch)
{
    const auto add = [this](int number) {
        write(u"Home"_qs, u"e%1"_qs.arg(number),
              u"SUMMARY:Event %1\nDTSTART:20261124T080000Z\nDTEND:20261124T090000Z\n"_qs.arg(number));
    };
    for (int number = 0; number < 40; ++number)
        add(number);
    pass();
    ASSERT_THAT(rows(), SizeIs(40));
    for (int number = 0; number < 30; ++number)
        QFile::remove(folderOf(u"Home"_qs) + u"/e%1.ics"_qs.arg(number));
    const ScriptedAlerts alerts({Alert::secondButton, Alert::firstButton});
    pass();
    connectStore();
    pass();
    ASSERT_EQ(alerts.asked().size(), 1u) << "the user is asked once, also where the program starts anew";
    EXPECT_EQ(alerts.asked()[0].buttons, QStringList({u"Remove them"_qs, u"Keep them"_qs}));
    EXPECT_THAT(rows(), SizeIs(40));
    add(40);
    pass();
    EXPECT_THAT(rows(), SizeIs(11));
}

/// The screen that shows how far a pass is lets other things happen meanwhile.
TEST_F(CalendarPasses, TellHowFarTheyAreAndComeAgainForWhatChangedMeanwhile)
{
    const QString event = u"SUMMARY:%1\nDTSTART:20261124T080000Z\nDTEND:20261124T090000Z\n"_qs;
    for (const QString &title : {u"one"_qs, u"two"_qs, u"three"_qs})
        write(u"Home"_qs, title, event.arg(title));
    std::vector<size_t> begun;
    int steps = 0;
    passprogress::setBegin([&](size_t count) -> StepBlock {
        begun.push_back(count);
        return [&] {
            // Once in the first pass, and once in the one that follows it.
            if (++steps == 1 || steps == 5) {
                const QString title = u"late %1"_qs.arg(steps);
                write(u"Home"_qs, title, event.arg(title));
                EXPECT_TRUE(CalendarEvent::isPassing());
                delegate->applicationDidBecomeActive();
                EXPECT_TRUE(context().hasChanges()) << "half a pass is not saved";
            }
            return false;
        };
    });
    pass();
    while (begun.size() < 3)
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    passprogress::setBegin({});
    EXPECT_THAT(begun, testing::ElementsAre(3, 4, 5));
    EXPECT_EQ(steps, 12) << "nothing stops a pass";
    EXPECT_THAT(rows(), testing::SizeIs(5));
}

} // namespace
