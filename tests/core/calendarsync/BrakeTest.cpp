#include "CalendarTest.h"
#include "calendarsync/PassBrake.h"

#include <gmock/gmock.h>

namespace {

using testing::IsEmpty;
using testing::SizeIs;

/// What goes missing by accident does not take rows with it.
class BrakedPasses : public CalendarTest
{
protected:
    void fill(const QString &calendar, int count) const
    {
        for (int number = 0; number < count; ++number)
            write(calendar, calendar + QString::number(number),
                  u"SUMMARY:Event %1\nDTSTART:20261124T080000Z\nDTEND:20261124T090000Z\n"_qs.arg(number) +
                      u"LOCATION:%1\n"_qs.arg(calendar));
    }
    void clear(const QString &calendar) const
    {
        for (const QString &name : files(calendar).keys())
            QFile::remove(folderOf(calendar) + u'/' + name);
    }
};

TEST_F(BrakedPasses, AskAgainAboutTheNextLoss)
{
    const ScriptedAlerts alerts({Alert::firstButton, Alert::secondButton});
    fill(u"Home"_qs, 30);
    pass();
    clear(u"Home"_qs);
    write(u"Home"_qs, u"stays"_qs, u"SUMMARY:Stays\nDTSTART:20261124T080000Z\nDTEND:20261124T090000Z\n"_qs);
    pass();
    EXPECT_THAT(rows(), SizeIs(1)) << "the user removed them";
    fill(u"Home"_qs, 30);
    pass();
    EXPECT_THAT(rows(), SizeIs(31));
    clear(u"Home"_qs);
    pass();
    EXPECT_THAT(rows(), SizeIs(31)) << "and decided about those alone";
    EXPECT_THAT(alerts.asked(), SizeIs(2));
}

TEST_F(BrakedPasses, CountMoreThanTwentyFiveAndMoreThanAThird)
{
    const QString home = u"Local/Home"_qs;
    const auto kept = [&](int going, size_t linked) {
        return passbrake::keptCalendars({{home, going}}, linked, {{home, 1}});
    };
    EXPECT_THAT(kept(25, 26), IsEmpty());
    EXPECT_THAT(kept(26, 78), IsEmpty());
    const ScriptedAlerts alerts({Alert::secondButton});
    EXPECT_TRUE(kept(26, 77).contains(home));
    EXPECT_TRUE(kept(26, 77).contains(home)) << "asked once";
    EXPECT_TRUE(kept(25, 77).contains(home)) << "those that are kept do not go when they are fewer";
    ASSERT_THAT(alerts.asked(), SizeIs(1));
    EXPECT_EQ(alerts.asked()[0].message, u"26 tasks are no longer found in your calendars."_qs);
}

TEST_F(BrakedPasses, AskWhenACalendarOfManyEventsIsEmptyAndNotAboutAFew)
{
    const ScriptedAlerts alerts({Alert::secondButton, Alert::firstButton});
    fill(u"Home"_qs, 5);
    fill(u"Work"_qs, 6);
    pass();
    clear(u"Home"_qs);
    pass();
    EXPECT_THAT(rows(), SizeIs(6));
    EXPECT_THAT(alerts.asked(), IsEmpty()) << "five are deleted by hand";
    clear(u"Work"_qs);
    pass();
    EXPECT_THAT(rows(), SizeIs(6)) << "although another calendar was empty before";
    pass();
    ASSERT_THAT(alerts.asked(), SizeIs(1)) << "asked once";
    EXPECT_EQ(alerts.asked()[0].message, u"6 tasks are no longer found in your calendars."_qs);
    fill(u"Work"_qs, 6);
    pass();
    // A calendar that nobody follows any more is not an empty one.
    choose({u"Home"_qs});
    pass();
    EXPECT_THAT(alerts.asked(), SizeIs(1));
}

TEST_F(BrakedPasses, HoldAnAnswerUntilTheCalendarHasSomethingAgain)
{
    const QString event = u"SUMMARY:New\nDTSTART:20261124T080000Z\nDTEND:20261124T090000Z\n"_qs;
    fill(u"Home"_qs, 8);
    fill(u"Work"_qs, 3);
    pass();
    clear(u"Home"_qs);
    const ScriptedAlerts alerts({Alert::secondButton, Alert::firstButton});
    for (int start = 0; start < 3; ++start) {
        connectStore();
        pass();
        pass();
    }
    EXPECT_THAT(rows(), SizeIs(11));
    EXPECT_THAT(alerts.asked(), SizeIs(1));
    clear(u"Work"_qs);
    pass();
    EXPECT_THAT(rows(), SizeIs(8)) << "the answer was about the other calendar";
    write(u"Home"_qs, u"new"_qs, event);
    pass();
    EXPECT_THAT(alerts.asked(), SizeIs(2)) << "what was kept does not go unasked";
    EXPECT_THAT(rows(), SizeIs(1));
}

TEST_F(BrakedPasses, SpareTheTasksOfAFullCalendarThatIsMissing)
{
    fill(u"Work"_qs, 30);
    CalendarEvent::handleChangedCalendars();
    pass();
    ASSERT_TRUE(QDir().rename(folderOf(u"Work"_qs), root.filePath(u".away"_qs)));
    connectStore();
    {
        const ScriptedAlerts alerts({Alert::secondButton});
        for (int activation = 0; activation < 2; ++activation) {
            CalendarEvent::handleChangedCalendars();
            pass();
        }
        EXPECT_THAT(alerts.asked(), SizeIs(1));
    }
    EXPECT_THAT(rows(), SizeIs(30));
    ASSERT_TRUE(QDir().rename(root.filePath(u".away"_qs), folderOf(u"Work"_qs)));
    connectStore();
    CalendarEvent::handleChangedCalendars();
    pass();
    EXPECT_THAT(rows(), SizeIs(30));
    EXPECT_TRUE(CalendarEvent::calendarAccessOfTitle(u"Work"_qs)) << "it is still chosen";
    QDir(folderOf(u"Work"_qs)).removeRecursively();
    connectStore();
    const ScriptedAlerts alerts({Alert::firstButton});
    CalendarEvent::handleChangedCalendars();
    EXPECT_THAT(rows(), IsEmpty());
}

TEST_F(BrakedPasses, TakeNothingFromAStoreThatRefuses)
{
    fill(u"Home"_qs, 3);
    pass();
    const auto backend = connectMoodyStore();
    clear(u"Home"_qs);
    backend->refusesReading = true;
    CalendarEvent::handleChangedCalendars();
    pass();
    EXPECT_THAT(rows(), SizeIs(3));
}

TEST_F(BrakedPasses, KeepTheRowOfADamagedFile)
{
    const QString hour = u"SUMMARY:One\nDTSTART:20261124T080000Z\nDTEND:20261124T090000Z\n"_qs;
    write(u"Home"_qs, u"one"_qs, hour);
    write(u"Home"_qs, u"two"_qs, hour);
    pass();
    const TaskPtr row = rows().at(0)->calendarID() == u"one"_qs ? rows().at(0) : rows().at(1);
    row->setPriority(Priority::High);
    QFile::remove(folderOf(u"Home"_qs) + u"/two.ics"_qs);
    // Damaged, and what another program sees to have been written so far.
    for (const QString &contents :
         {files(u"Home"_qs).value(u"one.ics"_qs).replace(u"END:VEVENT"_qs, u"BEGIN:VALARM"_qs),
          u"BEGIN:VCAL"_qs, QString()}) {
        QFile file(folderOf(u"Home"_qs) + u"/one.ics"_qs);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(contents.toUtf8());
        file.close();
        // A program that starts now never saw what was in it.
        connectStore();
        {
            const ScriptedAlerts alerts({Alert::firstButton});
            pass();
        }
        ASSERT_EQ(rows(), std::vector<TaskPtr>{row}) << "what is gone goes, what cannot be read stays";
        EXPECT_EQ(files(u"Home"_qs).value(u"one.ics"_qs), contents);
        write(u"Home"_qs, u"one"_qs, hour);
        pass();
        ASSERT_EQ(rows(), std::vector<TaskPtr>{row});
        EXPECT_EQ(row->priority(), Priority::High);
    }
    expectSettled();
}

TEST_F(BrakedPasses, ARefusedEditOfASeriesKeepsItsRows)
{
    UserDefaults::standard().setObject(settings::frequencyCalendarPeriod, 2);
    write(u"Home"_qs, u"daily"_qs,
          u"SUMMARY:Daily\nDTSTART:20261121T060000Z\nDTEND:20261121T061500Z\nRRULE:FREQ=DAILY;COUNT=6\n"_qs);
    pass();
    ASSERT_THAT(rows(), SizeIs(6));
    const auto backend = connectMoodyStore();
    for (const TaskPtr &row : rows())
        row->setPriority(Priority::High);
    const auto rename = [](MVTask &task) { task.title = u"Renamed"_qs; };
    backend->refusesWriting = true;
    editSeries(rows().at(2), Span::FutureTasks, rename);
    EXPECT_THAT(rows(), SizeIs(6));
    // It can also fall silent after it has written.
    backend->refusesWriting = false;
    for (int answers = 0; answers < 12; ++answers) {
        backend->answersLeft = answers;
        editSeries(rows().at(2), Span::FutureTasks, rename);
        backend->answersLeft = 1000000;
        EXPECT_GE(rows().size(), 6u) << answers;
    }
    for (const TaskPtr &row : rows())
        EXPECT_EQ(row->priority(), Priority::High);
}

} // namespace
