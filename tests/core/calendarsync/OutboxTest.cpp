// Changes on their way from the commit to the calendars: what becomes of those that are not taken.

#include "MoodyCalendarTest.h"

#include "calendarsync/CalendarOutbox.h"
#include "foundation/Alert.h"
#include "objectstore/Transaction.h"

#include <gmock/gmock.h>

#include <QThread>

namespace {

using testing::IsEmpty;
using testing::SizeIs;

using Outbox = MoodyCalendarTest;

TEST_F(Outbox, WhatMayPassIsKeptAndWhatIsRefusedIsNot)
{
    make(draft(u"Task"_qs));
    activate();
    int number = 0;
    for (const CalendarError::Code code : {CalendarError::Storage, CalendarError::NotFound,
                                           CalendarError::Unreadable, CalendarError::Conflict}) {
        SCOPED_TRACE(int(code));
        const QString title = u"Title %1"_qs.arg(++number);
        backend->answerToWrites = code;
        rename(rows().front(), title);
        EXPECT_THAT(context().pendingOutbox(), SizeIs(1));
        activate();
        EXPECT_EQ(tasks(), QStringList(u"24 "_qs + title));
        backend->answerToWrites.reset();
        activate();
        expectArrived({u"24 "_qs + title}, {u"24 "_qs + title});
    }
    const QStringList before = events();
    for (const CalendarError::Code code : {CalendarError::ReadOnly, CalendarError::Invalid}) {
        SCOPED_TRACE(int(code));
        const ScriptedAlerts alerts({Alert::firstButton});
        backend->answerToWrites = code;
        rename(rows().front(), u"Refused"_qs);
        rename(rows().front(), u"Refused again"_qs);
        EXPECT_THAT(context().pendingOutbox(), IsEmpty());
        EXPECT_THAT(alerts.asked(), IsEmpty()) << "not within the command";
        goOn();
        ASSERT_THAT(alerts.asked(), SizeIs(1)) << "told once";
        EXPECT_TRUE(alerts.asked().front().informativeText.contains(u"Refused again"_qs));
        backend->answerToWrites.reset();
        expectArrived(before, before);
    }
}

TEST_F(Outbox, ARowWhoseEventWasNotMadeStays)
{
    write(u"Home"_qs, u"run"_qs,
          u"SUMMARY:Run\nDTSTART:20261123T090000Z\nDTEND:20261123T100000Z\nRRULE:FREQ=DAILY;COUNT=3\n"_qs);
    activate();
    for (const TaskPtr &row : rows())
        row->setPriority(Priority::High);
    backend->answerToWrites = CalendarError::ReadOnly;
    make(draft(u"New"_qs, 27));
    // A series that could not be divided is whole, and so are its rows.
    editSeries(rows().at(1), Span::FutureTasks, [](MVTask &task) { task.title = u"Swim"_qs; });
    {
        const ScriptedAlerts alerts({Alert::firstButton});
        goOn();
        EXPECT_THAT(alerts.asked(), SizeIs(1)) << "both are told at once";
    }
    backend->answerToWrites.reset();
    EXPECT_EQ(tasks(), QStringList({u"23 Run"_qs, u"24 Run"_qs, u"25 Run"_qs, u"27 New"_qs}));
    EXPECT_EQ(events(), QStringList({u"23 Run"_qs, u"24 Run"_qs, u"25 Run"_qs}));
    EXPECT_TRUE(rowOf(u"New"_qs)->calendarID().isEmpty());
    for (const TaskPtr &row : rows())
        EXPECT_EQ(row->priority() == Priority::High, row->title() == u"Run"_qs);
    expectSettled();
}

/// While it asks, the program goes on.
class BusyAsker : public AlertPresenter
{
public:
    std::function<void()> meanwhile = [] {};
    QStringList asked;
    int standing = 0;
    int mostStanding = 0;

    int present(const AlertQuestion &question) override
    {
        mostStanding = std::max(mostStanding, ++standing);
        asked.append(question.message);
        meanwhile();
        --standing;
        return Alert::firstButton;
    }
};

TEST_F(Outbox, ARefusalIsNotToldWhileAQuestionStands)
{
    make(draft(u"Task"_qs));
    activate();
    const auto asker = std::make_shared<BusyAsker>();
    Alert::setPresenter(asker);
    asker->meanwhile = [&] {
        backend->answerToWrites = CalendarError::ReadOnly;
        rename(rowOf(u"Task"_qs), u"Refused"_qs);
        goOn();
        backend->answerToWrites.reset();
        asker->meanwhile = [] {};
    };
    Alert::run({{}, u"Asked by somebody else"_qs, {}, {u"OK"_qs}});
    EXPECT_THAT(asker->asked, SizeIs(1));
    for (int tenths = 0; tenths < 30 && asker->asked.size() < 2; ++tenths) {
        QThread::msleep(100);
        goOn();
    }
    EXPECT_THAT(asker->asked, SizeIs(2));
    EXPECT_EQ(asker->mostStanding, 1);
    Alert::setPresenter(nullptr);
    expectArrived({u"24 Task"_qs}, {u"24 Task"_qs});
}

TEST_F(Outbox, ACalendarThatIsMissingForAWhileGetsItsEventsAfterwards)
{
    make(draft(u"Moved"_qs));
    activate();
    backend->answerToWrites = CalendarError::NotFound;
    edit(rowOf(u"Moved"_qs), [](MVTask &task) { task.typeCalendarID = u"Work"_qs; });
    EXPECT_THAT(context().pendingOutbox(), SizeIs(2)) << "it leaves the one calendar only for the other";
    backend->answerToWrites.reset();
    backend->lostTitles = {u"Work"_qs};
    CalendarOutbox::carryOut(context());
    EXPECT_EQ(files(u"Home"_qs).size(), 1);
    backend->lostTitles.clear();
    activate();
    EXPECT_EQ(files(u"Home"_qs).size(), 0);
    EXPECT_EQ(files(u"Work"_qs).size(), 1);
    expectArrived({u"24 Moved"_qs}, {u"24 Moved"_qs});
}

TEST_F(Outbox, ACalendarThatIsLetGoTakesNothingAlong)
{
    make(draft(u"Moved"_qs));
    rowOf(u"Moved"_qs)->setPriority(Priority::High);
    make(draft(u"Made there"_qs, 25, u"Work"_qs));
    activate();
    backend->refusesWriting = true;
    edit(rowOf(u"Moved"_qs), [](MVTask &task) { task.typeCalendarID = u"Work"_qs; });
    backend->refusesWriting = false;
    backend->lostTitles = {u"Work"_qs};
    activate();
    EXPECT_THAT(context().pendingOutbox(), IsEmpty());
    EXPECT_EQ(tasks(), QStringList(u"24 Moved"_qs));
    EXPECT_EQ(rowOf(u"Moved"_qs)->typeCalendarID(), u"Home"_qs);
    EXPECT_EQ(rowOf(u"Moved"_qs)->priority(), Priority::High);
    EXPECT_EQ(files(u"Home"_qs).size(), 1);
}

TEST_F(Outbox, WhatWasCarriedOutIsNotCarriedOutASecondTime)
{
    for (const QString &title : {u"First"_qs, u"Second"_qs, u"Third"_qs})
        make(draft(title));
    activate();
    QList<size_t> left;
    backend->onWrite = [this, &left] { left.append(context().pendingOutbox().size()); };
    {
        const ScriptedAlerts alerts({Alert::firstButton});
        TaskManager::deleteTasks({rowOf(u"First"_qs), rowOf(u"Second"_qs), rowOf(u"Third"_qs)}, {});
    }
    backend->onWrite = [] {};
    // Before and after each write.
    EXPECT_EQ(left, QList<size_t>({3, 3, 2, 2, 1, 1}));
}

TEST_F(Outbox, AFailureHoldsBackWhatComesAfterItOfTheSameEvent)
{
    make(draft(u"Task"_qs));
    make(draft(u"Other"_qs, 25));
    activate();
    backend->refusesWriting = true;
    rename(rowOf(u"Task"_qs), u"One"_qs);
    rename(rowOf(u"One"_qs), u"Two"_qs);
    rename(rowOf(u"Other"_qs), u"Another"_qs);
    backend->refusesWriting = false;
    backend->answerToWrites = CalendarError::Unreadable;
    backend->writesAnswered = 1;
    CalendarOutbox::carryOut(context());
    EXPECT_EQ(events(), QStringList({u"24 Task"_qs, u"25 Another"_qs}));
    CalendarOutbox::carryOut(context());
    expectArrived({u"24 Two"_qs, u"25 Another"_qs}, {u"24 Two"_qs, u"25 Another"_qs});
}

TEST_F(Outbox, ASilentCalendarIsAskedOnceInARound)
{
    for (int day = 23; day < 27; ++day)
        make(draft(u"Home"_qs, day));
    make(draft(u"Work"_qs, 27, u"Work"_qs));
    activate();
    backend->refusesWriting = true;
    for (const TaskPtr &row : rows())
        rename(row, row->title() + u" anew"_qs);
    backend->writesTried = 0;
    CalendarOutbox::carryOut(context());
    EXPECT_EQ(backend->writesTried, 2) << "once for each calendar";
}

TEST_F(Outbox, ManyAreCarriedOutInPortions)
{
    constexpr int many = 40;
    std::vector<ObjectPtr> all;
    for (int number = 0; number < many; ++number)
        all.push_back(make(draft(u"Task"_qs, 23 + number % 5)));
    activate();
    backend->onWrite = [] { QThread::msleep(5); };
    {
        const ScriptedAlerts alerts({Alert::firstButton});
        TaskManager::deleteTasks(all, {});
    }
    const auto left = files(u"Home"_qs).size();
    EXPECT_GT(left, 0) << "the user does not wait for all of them";
    EXPECT_LT(left, many);
    QCoreApplication::processEvents();
    EXPECT_GT(files(u"Home"_qs).size(), 0) << "nor for all the rest";
    for (int turn = 0; turn < many; ++turn)
        QCoreApplication::processEvents();
    EXPECT_EQ(files(u"Home"_qs).size(), 0);
    backend->onWrite = [] {};
    expectArrived({}, {});
}

TEST_F(Outbox, OnlyWhatTheUserChangesWaitsForTheCalendars)
{
    make(draft(u"Task"_qs));
    activate();
    backend->setSilent(true);
    CalendarEvent::refreshSourcesIfNecessary();
    {
        Transaction transaction(context(), ChangeAuthor::Program);
        rowOf(u"Task"_qs)->setTitle(u"Program"_qs);
        ASSERT_FALSE(transaction.commit());
    }
    EXPECT_THAT(context().pendingOutbox(), IsEmpty());
    rename(rowOf(u"Program"_qs), u"User"_qs);
    EXPECT_THAT(context().pendingOutbox(), SizeIs(1));
}

TEST_F(Outbox, ADeletionMeanwhileConcernsOnlyTheEventThatTheRowWas)
{
    make(draft(u"Moved"_qs));
    make(draft(u"Repeated"_qs, 25));
    activate();
    backend->setSilent(true);
    deleteRow(rowOf(u"Moved"_qs));
    deleteRow(rowOf(u"Repeated"_qs));
    // Another program moves the one to another calendar, and repeats the other.
    const QString moved = pathOf(u"Moved"_qs);
    ASSERT_TRUE(QFile::rename(moved, folderOf(u"Work"_qs) + u'/' + QFileInfo(moved).fileName()));
    const QString repeated = pathOf(u"Repeated"_qs);
    put(repeated, read(repeated).replace("END:VEVENT", "RRULE:FREQ=DAILY;COUNT=3\r\nEND:VEVENT"));
    backend->setSilent(false);
    activate();
    const QStringList left = {u"24 Moved"_qs, u"26 Repeated"_qs, u"27 Repeated"_qs};
    expectArrived(left, left);
}

TEST_F(Outbox, ACalendarStaysIfWhatWasToBeWrittenBeforeCouldNot)
{
    write(u"Home"_qs, u"one"_qs, u"SUMMARY:One\nDTSTART:20261124T090000Z\nDURATION:PT1H\n"_qs);
    EKEventStore store(backend);
    EKEvent event = store.calendarItemsWithExternalIdentifier(u"one"_qs).value().at(0);
    event.title = u"Other"_qs;
    ASSERT_FALSE(store.saveEvent(event, EKSpan::ThisEvent, false));
    ASSERT_FALSE(store.removeCalendar(*event.calendar, false));
    backend->refusesWriting = true;
    EXPECT_TRUE(store.commit());
    EXPECT_EQ(files(u"Home"_qs).size(), 1);
}

TEST_F(Outbox, ContentsAreMovedOnlyWhereNothingOfTheSameNameIs)
{
    for (const QString &calendar : {u"Home"_qs, u"Work"_qs})
        write(calendar, u"one"_qs, u"SUMMARY:%1\nDTSTART:20261124T090000Z\nDURATION:PT1H\n"_qs.arg(calendar));
    write(u"Home"_qs, u"two"_qs, u"SUMMARY:Two\nDTSTART:20261124T090000Z\nDURATION:PT1H\n"_qs);
    EKEventStore store(backend);
    const auto before = QList{files(u"Home"_qs), files(u"Work"_qs)};
    const auto calendars = store.calendarsForEntityType(EKEntityType::Event);
    const auto error = store.moveContents(calendars.value().at(0), calendars.value().at(1), true);
    EXPECT_TRUE(CalendarError::is(error, CalendarError::Invalid));
    EXPECT_EQ(QList({files(u"Home"_qs), files(u"Work"_qs)}), before);
}

} // namespace
