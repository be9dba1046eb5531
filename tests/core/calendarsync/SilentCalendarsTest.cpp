// Calendars that do not answer, or not at once: what the user does meanwhile is neither lost nor there twice.

#include "MoodyCalendarTest.h"

#include "calendarsync/CalendarOutbox.h"

#include <gmock/gmock.h>

#include <QElapsedTimer>

namespace {

using testing::SizeIs;

using SilentCalendars = MoodyCalendarTest;

TEST_F(SilentCalendars, AnEventThatCannotBeReadIsNotTakenForNone)
{
    for (const QByteArray &damage : {QByteArray("BEGIN:VCAL"), QByteArray()}) {
        for (const QString &title : {u"Edited"_qs, u"Finished"_qs, u"Deleted"_qs})
            make(draft(title));
        activate();
        std::map<QString, QByteArray> whole;
        for (const QString &title : {u"Edited"_qs, u"Finished"_qs, u"Deleted"_qs})
            whole[pathOf(title)] = read(pathOf(title));
        for (const auto &[path, text] : whole)
            put(path, damage);
        // A program that starts now never saw what was in them.
        restart();
        rename(rowOf(u"Edited"_qs), u"Anew"_qs);
        tickOff(rowOf(u"Finished"_qs));
        deleteRow(rowOf(u"Deleted"_qs));
        activate();
        EXPECT_EQ(tasks(), QStringList({u"24 Anew"_qs, u"24 Finished (done)"_qs}));
        EXPECT_EQ(files(u"Home"_qs).size(), 3) << "no event was made beside those that are damaged";
        for (const auto &[path, text] : whole)
            put(path, text);
        activate();
        expectArrived({u"24 Anew"_qs, u"24 Finished (done)"_qs}, {u"24 Anew"_qs});
        for (const TaskPtr &row : rows())
            deleteRow(row);
        ASSERT_EQ(events(), QStringList());
    }
}

TEST_F(SilentCalendars, OneThatIsSilentAloneHoldsBackOnlyItsOwn)
{
    make(draft(u"Here"_qs, 24, u"Home"_qs));
    make(draft(u"There"_qs, 25, u"Work"_qs));
    activate();
    backend->silentTitles = {u"Work"_qs};
    rename(rowOf(u"Here"_qs), u"Here now"_qs);
    rename(rowOf(u"There"_qs), u"There now"_qs);
    EXPECT_EQ(events(), QStringList({u"24 Here now"_qs, u"25 There"_qs}));
    activate();
    EXPECT_EQ(tasks(), QStringList({u"24 Here now"_qs, u"25 There now"_qs}));
    backend->silentTitles.clear();
    activate();
    expectArrived({u"24 Here now"_qs, u"25 There now"_qs}, {u"24 Here now"_qs, u"25 There now"_qs});
}

TEST_F(SilentCalendars, WhatIsDoneAfterTheyFellSilentReachesThem)
{
    // Before the command, before or after what it reads, or for good with the answer which calendars there
    // are.
    for (int answers = 0; answers < 8; ++answers) {
        SCOPED_TRACE(answers);
        for (const QString &title : {u"Edited"_qs, u"Finished"_qs, u"Deleted"_qs})
            make(draft(title));
        activate();
        const auto silently = [&](const std::function<void()> &command) {
            backend->answersLeft = answers;
            command();
            backend->answersLeft = 1000000;
        };
        backend->refusesCalendars = answers == 0;
        silently([] { rename(rowOf(u"Edited"_qs), u"Anew"_qs); });
        silently([] { tickOff(rowOf(u"Finished"_qs)); });
        silently([] { deleteRow(rowOf(u"Deleted"_qs)); });
        silently([] { make(draft(u"New"_qs, 26)); });
        EXPECT_EQ(tasks(), QStringList({u"24 Anew"_qs, u"24 Finished (done)"_qs, u"26 New"_qs}));
        backend->refusesCalendars = false;
        activate();
        expectArrived({u"24 Anew"_qs, u"24 Finished (done)"_qs, u"26 New"_qs}, {u"24 Anew"_qs, u"26 New"_qs});
        for (const TaskPtr &row : rows())
            deleteRow(row);
        ASSERT_EQ(events(), QStringList());
    }
}

TEST_F(SilentCalendars, WhatIsKeptForLaterWaitsForACalendarThatIsGivenUpMeanwhile)
{
    make(draft(u"Edited"_qs, 24, u"Work"_qs));
    make(draft(u"Deleted"_qs, 24, u"Work"_qs));
    activate();
    backend->setSilent(true);
    rename(rowOf(u"Edited"_qs), u"Anew"_qs);
    deleteRow(rowOf(u"Deleted"_qs));
    backend->setSilent(false);
    choose({u"Home"_qs});
    activate();
    EXPECT_EQ(events(), QStringList({u"24 Deleted"_qs, u"24 Edited"_qs}));
    choose({u"Home"_qs, u"Work"_qs});
    activate();
    expectArrived({u"24 Anew"_qs}, {u"24 Anew"_qs});
}

TEST_F(SilentCalendars, OnesThatAnswerAgainSoonGetItWithoutAnActivation)
{
    for (const QString &title : {u"Edited"_qs, u"Deleted"_qs})
        make(draft(title));
    activate();
    backend->refusesCalendars = true;
    backend->answersLeft = 0;
    rename(rowOf(u"Edited"_qs), u"Anew"_qs);
    deleteRow(rowOf(u"Deleted"_qs));
    make(draft(u"New"_qs, 26));
    backend->refusesCalendars = false;
    backend->answersLeft = 1000000;
    const QStringList wanted = {u"24 Anew"_qs, u"26 New"_qs};
    QElapsedTimer waited;
    for (waited.start(); events() != wanted && waited.elapsed() < 10'000;)
        QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents, 100);
    expectArrived(wanted, wanted);
}

TEST_F(SilentCalendars, AtAStartTheirTasksAreShown)
{
    make(draft(u"On a calendar"_qs, 21));
    activate();
    backend->setSilent(true);
    restart();
    EXPECT_EQ(DBWorker::allTodayTasks().size(), 1);
    activate();
    EXPECT_EQ(DBWorker::allTodayTasks().size(), 1);
    // It answers again, but has not loaded its calendars yet.
    backend->setSilent(false);
    backend->lostTitles = {u"Home"_qs, u"Work"_qs};
    restart();
    activate();
    EXPECT_EQ(DBWorker::allTodayTasks().size(), 1);
    backend->lostTitles.clear();
    activate();
    expectArrived({u"21 On a calendar"_qs}, {u"21 On a calendar"_qs});
}

TEST_F(SilentCalendars, APassBeforeTheyAreWrittenLeavesThem)
{
    make(draft(u"Edited"_qs));
    make(draft(u"Deleted"_qs));
    activate();
    backend->setSilent(true);
    rename(rowOf(u"Edited"_qs), u"Anew"_qs);
    deleteRow(rowOf(u"Deleted"_qs));
    backend->setSilent(false);
    pass();
    EXPECT_EQ(tasks(), QStringList(u"24 Anew"_qs));
    EXPECT_EQ(events(), QStringList({u"24 Deleted"_qs, u"24 Edited"_qs}));
    activate();
    expectArrived({u"24 Anew"_qs}, {u"24 Anew"_qs});
}

TEST_F(SilentCalendars, ANewTaskWithoutAChosenCalendarGetsItsEventOnceOneIs)
{
    choose({});
    MVTask task = draft(u"New"_qs);
    task.typeCalendarID = QString();
    make(task);
    activate();
    EXPECT_EQ(events(), QStringList());
    choose({u"Home"_qs, u"Work"_qs});
    activate();
    expectArrived({u"24 New"_qs}, {u"24 New"_qs});
}

TEST_F(SilentCalendars, AChangeThatStillFailsIsKept)
{
    make(draft(u"Edited"_qs, 24, u"Home"_qs));
    make(draft(u"Deleted"_qs, 24, u"Work"_qs));
    activate();
    backend->setSilent(true);
    rename(rowOf(u"Edited"_qs), u"Anew"_qs);
    deleteRow(rowOf(u"Deleted"_qs));
    // They tell which calendars there are, but not what is in them.
    backend->refusesCalendars = false;
    activate();
    EXPECT_THAT(context().pendingOutbox(), SizeIs(2));
    restart();
    activate();
    EXPECT_THAT(context().pendingOutbox(), SizeIs(2));
    backend->setSilent(false);
    activate();
    expectArrived({u"24 Anew"_qs}, {u"24 Anew"_qs});
}

TEST_F(SilentCalendars, EachCommandIsTakenBackAfterItWasWrittenLater)
{
    const QStringList untouched = {u"24 Dentist"_qs, u"25 Other"_qs};
    make(draft(u"Dentist"_qs));
    make(draft(u"Other"_qs, 25));
    activate();
    struct Step
    {
        std::function<void(const TaskPtr &)> command;
        QStringList tasks, events;
    };
    const std::vector<Step> steps = {
        {[](const TaskPtr &row) { rename(row, u"Doctor"_qs); },
         {u"24 Doctor"_qs, u"25 Other"_qs},
         {u"24 Doctor"_qs, u"25 Other"_qs}},
        {[](const TaskPtr &row) {
             edit(row, [](MVTask &task) {
                 task.startDate = localDate(2026, 11, 27, 14);
                 task.dueDate = localDate(2026, 11, 27, 15);
             });
         },
         {u"25 Other"_qs, u"27 Dentist"_qs},
         {u"25 Other"_qs, u"27 Dentist"_qs}},
        {[](const TaskPtr &row) { tickOff(row); },
         {u"24 Dentist (done)"_qs, u"25 Other"_qs},
         {u"25 Other"_qs}},
        {[](const TaskPtr &row) { deleteRow(row); }, {u"25 Other"_qs}, {u"25 Other"_qs}},
    };
    for (size_t number = 0; number < steps.size(); ++number) {
        for (const bool isBackBeforeUndo : {true, false}) {
            SCOPED_TRACE(testing::Message() << number << ' ' << isBackBeforeUndo);
            const Step &step = steps[number];
            const QString identity = rowOf(u"Dentist"_qs)->identifier();
            backend->setSilent(true);
            step.command(rowOf(u"Dentist"_qs));
            const auto comeBack = [this] {
                backend->setSilent(false);
                activate();
            };
            if (isBackBeforeUndo) {
                comeBack();
                expectArrived(step.tasks, step.events);
            }
            undo();
            if (isBackBeforeUndo) {
                EXPECT_EQ(events(), untouched) << "at once";
            }
            // A pass for something else takes nothing back.
            pass();
            EXPECT_EQ(tasks(), untouched);
            comeBack();
            expectArrived(untouched, untouched);
            EXPECT_EQ(rowOf(u"Dentist"_qs)->identifier(), identity);
            redo();
            restart();
            activate();
            expectArrived(step.tasks, step.events);
            undo();
            activate();
            expectArrived(untouched, untouched);
        }
    }
}

TEST_F(SilentCalendars, WhatWasDoneBeforeCanStillBeTakenBackAfterwards)
{
    make(draft(u"Dentist"_qs));
    rename(rowOf(u"Dentist"_qs), u"Doctor"_qs);
    activate();
    backend->setSilent(true);
    tickOff(rowOf(u"Doctor"_qs));
    backend->setSilent(false);
    activate();
    expectArrived({u"24 Doctor (done)"_qs}, {});
    undo();
    activate();
    expectArrived({u"24 Doctor"_qs}, {u"24 Doctor"_qs});
    undo();
    activate();
    expectArrived({u"24 Dentist"_qs}, {u"24 Dentist"_qs});
}

TEST_F(SilentCalendars, EditsOfASeriesReachItLater)
{
    const QStringList all = {u"23 Run"_qs, u"24 Run"_qs, u"25 Run"_qs, u"26 Run"_qs};
    const QString lines =
        u"SUMMARY:Run\nDTSTART:20261123T090000Z\nDTEND:20261123T100000Z\nRRULE:FREQ=DAILY;COUNT=4\n"_qs;
    const auto deleteFrom = [](int place, int button) {
        const ScriptedAlerts alerts({button});
        TaskManager::deleteTasks({rows().at(size_t(place))}, {});
    };
    const auto retitle = [](MVTask &task) { task.title = u"Swim"_qs; };
    const auto finish = [](MVTask &task) { task.changeStatusType(TaskStatus::Done, false); };
    struct Step
    {
        std::function<void()> command;
        QStringList tasks, events;
    };
    const std::vector<Step> steps = {
        {[&] { editSeries(rows().at(1), Span::ThisTask, retitle); },
         {u"23 Run"_qs, u"24 Swim"_qs, u"25 Run"_qs, u"26 Run"_qs},
         {u"23 Run"_qs, u"24 Swim"_qs, u"25 Run"_qs, u"26 Run"_qs}},
        {[&] {
             editSeries(rows().at(1), Span::ThisTask, [](MVTask &task) {
                 task.startDate = localDate(2026, 11, 28, 9);
                 task.dueDate = localDate(2026, 11, 28, 10);
             });
         },
         {u"23 Run"_qs, u"25 Run"_qs, u"26 Run"_qs, u"28 Run"_qs},
         {u"23 Run"_qs, u"25 Run"_qs, u"26 Run"_qs, u"28 Run"_qs}},
        {[&] { editSeries(rows().at(2), Span::FutureTasks, retitle); },
         {u"23 Run"_qs, u"24 Run"_qs, u"25 Swim"_qs, u"26 Swim"_qs},
         {u"23 Run"_qs, u"24 Run"_qs, u"25 Swim"_qs, u"26 Swim"_qs}},
        {[&] { editSeries(rows().at(1), Span::ThisTask, finish); },
         {u"23 Run"_qs, u"24 Run (done)"_qs, u"25 Run"_qs, u"26 Run"_qs},
         {u"23 Run"_qs, u"25 Run"_qs, u"26 Run"_qs}},
        {[&] { deleteFrom(1, Alert::firstButton); },
         {u"23 Run"_qs, u"25 Run"_qs, u"26 Run"_qs},
         {u"23 Run"_qs, u"25 Run"_qs, u"26 Run"_qs}},
        {[&] { deleteFrom(2, Alert::secondButton); },
         {u"23 Run"_qs, u"24 Run"_qs},
         {u"23 Run"_qs, u"24 Run"_qs}},
    };
    for (size_t number = 0; number < steps.size(); ++number) {
        SCOPED_TRACE(number);
        write(u"Home"_qs, u"run"_qs, lines);
        activate();
        ASSERT_EQ(tasks(), all);
        backend->setSilent(true);
        steps[number].command();
        activate();
        backend->setSilent(false);
        pass();
        EXPECT_EQ(events(), all);
        activate();
        expectArrived(steps[number].tasks, steps[number].events);
        for (const QString &name : files(u"Home"_qs).keys())
            QFile::remove(folderOf(u"Home"_qs) + u'/' + name);
        const ScriptedAlerts alerts({Alert::firstButton});
        activate();
        for (const TaskPtr &row : rows())
            mainContext().deleteObject(row);
        ASSERT_FALSE(DBWorker::saveContext());
        UserDefaults::standard().removeObject(settings::eventsAtLastPass);
    }
}

TEST_F(SilentCalendars, ATaskThatIsGivenARepetitionMeanwhileRepeatsLater)
{
    make(draft(u"Run"_qs));
    activate();
    backend->setSilent(true);
    edit(rowOf(u"Run"_qs), [](MVTask &task) {
        task.repeat = u"RRULE:FREQ=DAILY;INTERVAL=1"_qs;
        task.endRepeat = localDate(2026, 11, 26, 23, 59);
    });
    backend->setSilent(false);
    activate();
    const QStringList all = {u"24 Run"_qs, u"25 Run"_qs, u"26 Run"_qs};
    expectArrived(all, all);
}

} // namespace
