#include "CalendarTest.h"

#include <gmock/gmock.h>

namespace {

using testing::IsEmpty;
using testing::SizeIs;

/// What happens to a series when its occurrences are done, moved and deleted here and elsewhere.
class SeriesStories : public CalendarTest
{
protected:
    SeriesStories()
    {
        UserDefaults::standard().setObject(settings::frequencyCalendarPeriod, 2);
        writeStandup(u"COUNT=6"_qs);
    }
    void writeStandup(const QString &end, const QString &more = {}) const
    {
        write(u"Home"_qs, u"standup"_qs,
              u"SUMMARY:Standup\nDTSTART;TZID=Europe/Berlin:20261120T090000\nDTEND;TZID=Europe/"
              u"Berlin:20261120T091500\nRRULE:FREQ=DAILY;%1\n%2"_qs.arg(end, more));
    }
    static QString override(const QString &day, const QString &lines)
    {
        return u"END:VEVENT\nBEGIN:VEVENT\nUID:standup\nDTSTAMP:20260101T000000Z\nRECURRENCE-ID;TZID=Europe/"
               u"Berlin:%1T090000\n%2"_qs.arg(day, lines);
    }
    /// The occurrences as other programs see them, "11-24 09:00 Title".
    static QStringList calendar()
    {
        QStringList lines;
        const auto events = CalendarEvent::eventsForCalendars(CalendarEvent::getAllCalendars());
        for (const EKEvent &event : *events)
            lines.append(wallClock(*event.startDate).mid(5, 11) + u' ' + event.title);
        lines.sort();
        return lines;
    }
    static void finish(const TaskPtr &row, Span span)
    {
        editSeries(row, span, [](MVTask &task) { task.changeStatusType(TaskStatus::Done, false); });
    }
    static QList<int> statuses()
    {
        QList<int> found;
        for (const TaskPtr &row : rows())
            found.append(numberOf(row->status()).value_or(-1));
        return found;
    }
};

TEST_F(SeriesStories, OneOccurrenceIsDone)
{
    pass();
    ASSERT_THAT(rows(), SizeIs(6));
    finish(rows().at(2), Span::ThisTask);
    EXPECT_EQ(statuses(), QList({0, 0, 3, 0, 0, 0}));
    EXPECT_THAT(calendar(), SizeIs(5));
    EXPECT_TRUE(rows().at(2)->calendarID().isEmpty());
    EXPECT_TRUE(rows().at(2)->repeat().isEmpty());
    EXPECT_TRUE(rows().at(2)->expirationDate().has_value());
    pass();
    EXPECT_EQ(statuses(), QList({0, 0, 3, 0, 0, 0}));
    expectSettled();
    // Opened again it gets an event of its own.
    MVTask again(rows().at(2));
    again.changeStatusType(TaskStatus::Open, true);
    pass();
    EXPECT_EQ(statuses(), QList({0, 0, 0, 0, 0, 0}));
    EXPECT_THAT(calendar(), SizeIs(6));
    EXPECT_THAT(files(u"Home"_qs), SizeIs(2));
    expectSettled();
}

TEST_F(SeriesStories, TheRestIsDone)
{
    pass();
    const TaskPtr done = rows().at(2);
    finish(done, Span::FutureTasks);
    EXPECT_EQ(statuses(), QList({0, 0, 3, 3, 3, 3}));
    EXPECT_EQ(calendar(), QStringList({u"11-20 09:00 Standup"_qs, u"11-21 09:00 Standup"_qs}));
    for (const TaskPtr &row : rows()) {
        const bool isDone = row->status() == TaskStatus::Done;
        EXPECT_EQ(row->expirationDate().has_value(), isDone);
        EXPECT_EQ(row->endRepeat(),
                  isDone ? OptionalDate() : OptionalDate(localDate(2026, 11, 22, 23, 59, 59)));
        EXPECT_EQ(row->calendarID(), u"standup"_qs);
    }
    pass();
    EXPECT_EQ(statuses(), QList({0, 0, 3, 3, 3, 3}));
    expectSettled();
}

TEST_F(SeriesStories, OccurrencesMovedElsewhereAreFollowed)
{
    pass();
    rows().at(2)->setPriority(Priority::High);
    writeStandup(u"COUNT=6"_qs,
                 override(u"20261122"_qs, u"SUMMARY:Standup\nDTSTART;TZID=Europe/Berlin:20261122T110000\n"
                                          u"DTEND;TZID=Europe/Berlin:20261122T111500\n"_qs) +
                     override(u"20261123"_qs, u"SUMMARY:Retro\nDTSTART;TZID=Europe/Berlin:20261123T090000\n"
                                              u"DTEND;TZID=Europe/Berlin:20261123T091500\n"_qs));
    pass();
    EXPECT_EQ(table(),
              QStringList({u"11-20 09:15 Standup"_qs, u"11-21 09:15 Standup"_qs, u"11-22 11:15 Standup"_qs,
                           u"11-23 09:15 Retro"_qs, u"11-24 09:15 Standup"_qs, u"11-25 09:15 Standup"_qs}));
    EXPECT_EQ(rows().at(2)->priority(), Priority::None) << "a moved occurrence is a new row";
    expectSettled();
    writeStandup(u"COUNT=6"_qs, u"EXDATE;TZID=Europe/Berlin:20261122T090000,20261124T090000\n"_qs);
    pass();
    EXPECT_THAT(rows(), SizeIs(4));
    expectSettled();
}

TEST_F(SeriesStories, OccurrencesMovedHereStayInTheirSeries)
{
    pass();
    const MVTask moved = editSeries(rows().at(2), Span::ThisTask, [](MVTask &task) {
        task.startDate = *task.startDate + Seconds(7200);
        task.dueDate = *task.dueDate + Seconds(7200);
    });
    EXPECT_TRUE(moved.task()->repeat().isEmpty()) << "edited alone it leaves its series";
    EXPECT_TRUE(calendar().contains(u"11-22 11:00 Standup"_qs));
    EXPECT_THAT(calendar(), SizeIs(6));
    EXPECT_THAT(files(u"Home"_qs), SizeIs(1));
    pass();
    EXPECT_THAT(rows(), SizeIs(6));
    expectSettled();
    const MVTask back =
        editSeries(rows().at(2), Span::FutureTasks, [](MVTask &task) { task.title = u"Later"_qs; });
    pass();
    EXPECT_EQ(table().filter(u"Later"_qs).size(), 4);
    EXPECT_THAT(rows(), SizeIs(6)) << "six times in all, as before";
    expectSettled();
}

TEST_F(SeriesStories, OccurrencesThatWereEditedAloneAreEditedAndDeletedAlone)
{
    pass();
    const TaskPtr row = rows().at(2);
    editSeries(row, Span::ThisTask, [](MVTask &task) { task.title = u"Alone"_qs; });
    MVTask again(row);
    again.title = u"Still alone"_qs;
    ASSERT_TRUE(TaskManager::saveTaskTemp(again, true));
    EXPECT_EQ(calendar().filter(u"Standup"_qs).size(), 5);
    EXPECT_TRUE(calendar().contains(u"11-22 09:00 Still alone"_qs));
    const ScriptedAlerts alerts({Alert::firstButton});
    TaskManager::deleteTasks({row}, {});
    EXPECT_EQ(calendar().size(), 5);
    pass();
    EXPECT_THAT(rows(), SizeIs(5));
    expectSettled();
}

TEST_F(SeriesStories, AnEndAfterSomeTimesOutlivesEditsOfTheRest)
{
    pass();
    editSeries(rows().at(3), Span::FutureTasks, [](MVTask &task) {
        task.title = u"Later"_qs;
        task.startDate = *task.startDate + Seconds(3600);
        task.dueDate = *task.dueDate + Seconds(3600);
    });
    EXPECT_EQ(calendar(),
              QStringList({u"11-20 09:00 Standup"_qs, u"11-21 09:00 Standup"_qs, u"11-22 09:00 Standup"_qs,
                           u"11-23 10:00 Later"_qs, u"11-24 10:00 Later"_qs, u"11-25 10:00 Later"_qs}));
    EXPECT_TRUE(files(u"Home"_qs).values().join(u' ').contains(u"COUNT=3"_qs));
    pass();
    EXPECT_THAT(rows(), SizeIs(6));
    expectSettled();
    // A rule that the user has chosen counts as it is.
    editSeries(rows().at(4), Span::FutureTasks, [](MVTask &task) {
        task.repeat = u"RRULE:FREQ=DAILY;INTERVAL=1"_qs;
        task.endRepeat = localDate(2026, 11, 27);
    });
    EXPECT_THAT(calendar(), SizeIs(8));
    pass();
    expectSettled();
}

TEST_F(SeriesStories, DeletingTheOneInSightSparesThoseOutOfSight)
{
    QFile::remove(folderOf(u"Home"_qs) + u"/standup.ics"_qs);
    write(u"Home"_qs, u"birthday"_qs,
          u"SUMMARY:Birthday\nDTSTART;VALUE=DATE:20251201\nRRULE:FREQ=MONTHLY;INTERVAL=2\n"_qs);
    pass();
    ASSERT_THAT(rows(), SizeIs(2));
    {
        const ScriptedAlerts alerts({Alert::firstButton});
        TaskManager::deleteTasks({rows().at(0)}, {});
    }
    EXPECT_TRUE(files(u"Home"_qs).first().contains(u"RRULE:FREQ=MONTHLY;INTERVAL=2"_qs));
    pass();
    EXPECT_THAT(rows(), SizeIs(1));
    // A series of one is none.
    writeStandup(u"COUNT=2"_qs);
    pass();
    ASSERT_THAT(rows(), SizeIs(3));
    {
        const ScriptedAlerts alerts({Alert::firstButton});
        TaskManager::deleteTasks({rows().at(1)}, {});
    }
    EXPECT_FALSE(files(u"Home"_qs).value(u"standup.ics"_qs).contains(u"RRULE"_qs));
    pass();
    ASSERT_THAT(rows(), SizeIs(2));
    EXPECT_TRUE(rows().at(0)->repeat().isEmpty());
    expectSettled();
}

TEST_F(SeriesStories, DeletingTheRestOrAllOfIt)
{
    pass();
    {
        const ScriptedAlerts alerts({Alert::secondButton});
        TaskManager::deleteTasks({rows().at(1)}, {});
    }
    ASSERT_THAT(rows(), SizeIs(1));
    pass();
    EXPECT_EQ(calendar(), QStringList(u"11-20 09:00 Standup"_qs));
    expectSettled();
    const ScriptedAlerts alerts({Alert::firstButton});
    TaskManager::deleteTasks({rows().at(0)}, {});
    EXPECT_THAT(files(u"Home"_qs), IsEmpty());
    EXPECT_THAT(rows(), IsEmpty());
}

TEST_F(SeriesStories, DeletingTheRestFromTwoOfItEndsItBeforeTheEarlier)
{
    pass();
    const TaskPtr first = rows().at(0);
    {
        const ScriptedAlerts alerts({Alert::secondButton});
        TaskManager::deleteTasks({rows().at(1), rows().at(3)}, {});
    }
    ASSERT_THAT(rows(), SizeIs(1));
    EXPECT_LT(first->endRepeat(), localDate(2026, 11, 22));
    EXPECT_EQ(calendar(), QStringList(u"11-20 09:00 Standup"_qs));
    expectSettled();
}

TEST_F(SeriesStories, OneOccurrenceGoesToAnotherCalendarAlone)
{
    pass();
    editSeries(rows().at(2), Span::ThisTask, [](MVTask &task) { task.typeCalendarID = u"Work"_qs; });
    EXPECT_TRUE(
        files(u"Home"_qs).value(u"standup.ics"_qs).contains(u"EXDATE;TZID=Europe/Berlin:20261122T0900"_qs));
    ASSERT_THAT(files(u"Work"_qs), SizeIs(1));
    EXPECT_FALSE(files(u"Work"_qs).first().contains(u"RRULE:FREQ=DAILY"_qs));
    EXPECT_THAT(calendar(), SizeIs(6));
    pass();
    EXPECT_THAT(rows(), SizeIs(6));
    EXPECT_EQ(rows().at(2)->typeCalendarID(), u"Work"_qs);
    EXPECT_EQ(rows().at(3)->typeCalendarID(), u"Home"_qs);
    expectSettled();
    // With all later ones it takes them along.
    editSeries(rows().at(3), Span::FutureTasks, [](MVTask &task) { task.typeCalendarID = u"Work"_qs; });
    pass();
    EXPECT_THAT(calendar(), SizeIs(6));
    expectSettled();
}

TEST_F(SeriesStories, CopiesInTwoCalendarsAreEditedEachOnItsOwn)
{
    write(u"Work"_qs, u"standup"_qs,
          u"SUMMARY:Standup\nDTSTART;TZID=Europe/Berlin:20261120T090000\nDTEND;TZID=Europe/"
          u"Berlin:20261120T091500\nRRULE:FREQ=DAILY;COUNT=2\n"_qs);
    pass();
    ASSERT_THAT(rows(), SizeIs(8));
    const auto home = files(u"Home"_qs);
    for (const TaskPtr &row : rows()) {
        if (row->typeCalendarID() != u"Work"_qs)
            continue;
        editSeries(row, Span::ThisTask, [](MVTask &task) { task.details = u"Mine"_qs; });
        break;
    }
    EXPECT_EQ(files(u"Home"_qs), home);
    EXPECT_TRUE(files(u"Work"_qs).first().contains(u"DESCRIPTION:Mine"_qs));
    pass();
    expectSettled();
}

TEST_F(SeriesStories, ASeriesThatBeginsBeyondTheWindowComesWithIt)
{
    QFile::remove(folderOf(u"Home"_qs) + u"/standup.ics"_qs);
    MVTask copy;
    copy.title = u"Far"_qs;
    copy.type = TaskType::Appointment;
    copy.status = TaskStatus::Open;
    copy.startDate = localDate(2027, 9, 1, 9);
    copy.dueDate = localDate(2027, 9, 1, 10);
    copy.repeat = u"RRULE:FREQ=DAILY;INTERVAL=1"_qs;
    copy.endRepeat = localDate(2027, 9, 3);
    copy.typeCalendarID = u"Home"_qs;
    ASSERT_TRUE(TaskManager::saveTaskTemp(copy, true));
    EXPECT_THAT(rows(), IsEmpty()) << "the calendar has it";
    EXPECT_THAT(files(u"Home"_qs), SizeIs(1));
    const FrozenClock later(localDate(2027, 8, 1, 12));
    pass();
    EXPECT_THAT(rows(), SizeIs(3));
}

TEST_F(SeriesStories, TheRestFromTheSecondOfADaySparesTheFirst)
{
    for (const bool isDeletion : {false, true}) {
        write(u"Home"_qs, u"standup"_qs,
              u"SUMMARY:Standup\nDTSTART;TZID=Europe/Berlin:20261122T080000\nDURATION:PT15M\n"
              u"RRULE:FREQ=DAILY;BYHOUR=8,20;COUNT=6\n"_qs);
        pass();
        ASSERT_THAT(rows(), SizeIs(6));
        const TaskPtr first = rows().at(2);
        ASSERT_EQ(wallClock(*first->startDate()).mid(5, 11), u"11-23 08:00"_qs);
        if (isDeletion) {
            const ScriptedAlerts alerts({Alert::secondButton});
            TaskManager::deleteTasks({rows().at(3)}, {});
        } else {
            editSeries(rows().at(3), Span::FutureTasks, [](MVTask &task) { task.title = u"Later"_qs; });
        }
        EXPECT_EQ(
            calendar().filter(u"Standup"_qs),
            QStringList({u"11-22 08:00 Standup"_qs, u"11-22 20:00 Standup"_qs, u"11-23 08:00 Standup"_qs}));
        EXPECT_EQ(calendar().filter(u"Later"_qs).size(), isDeletion ? 0 : 3);
        EXPECT_THAT(rows(), SizeIs(isDeletion ? 3 : 6));
        EXPECT_TRUE(first->context()) << "its row is the same";
        pass();
        expectSettled();
        ASSERT_FALSE(context().undo());
    }
}

/// The stand-up, which another program has moved to eleven from its third time on.
class MovedForGood : public SeriesStories
{
protected:
    MovedForGood()
    {
        writeStandup(u"COUNT=6"_qs,
                     override(u"20261122"_qs, u"SUMMARY:Late\nDTSTART;TZID=Europe/Berlin:20261122T110000\n"
                                              u"DTEND;TZID=Europe/Berlin:20261122T113000\n"_qs)
                         .replace(u"RECURRENCE-ID;"_qs, u"RECURRENCE-ID;RANGE=THISANDFUTURE;"_qs));
        pass();
    }
    /// What a pass, and so the calendar, and the rows agree on: "11-22 11:00 Late".
    void expect(QStringList events, int done = 0)
    {
        EXPECT_EQ(calendar(), events);
        QStringList shown;
        for (const TaskPtr &row : rows()) {
            if (row->status() != TaskStatus::Done)
                shown.append(wallClock(*row->startDate()).mid(5, 11) + u' ' + row->title());
        }
        EXPECT_EQ(shown, events);
        EXPECT_EQ(statuses().count(3), done);
    }
    static QStringList all()
    {
        return {u"11-20 09:00 Standup"_qs, u"11-21 09:00 Standup"_qs, u"11-22 11:00 Late"_qs,
                u"11-23 11:00 Late"_qs,    u"11-24 11:00 Late"_qs,    u"11-25 11:00 Late"_qs};
    }
    void expectHere(const QStringList &events, int done = 0)
    {
        expect(events, done);
        pass();
        expect(events, done);
        expectSettled();
    }
};

TEST_F(MovedForGood, EachOfThemIsTickedEditedAndDeletedAlone)
{
    expectHere(all());
    // The one with which the change begins takes nothing from the others.
    finish(rows().at(2), Span::ThisTask);
    QStringList left = all();
    left.removeAt(2);
    expectHere(left, 1);
    editSeries(rows().at(4), Span::ThisTask, [](MVTask &task) {
        task.title = u"Mine"_qs;
        task.startDate = *task.startDate + Seconds(3600);
        task.dueDate = *task.dueDate + Seconds(3600);
    });
    left[3] = u"11-24 12:00 Mine"_qs;
    expectHere(left, 1);
    {
        const ScriptedAlerts alerts({Alert::firstButton});
        TaskManager::deleteTasks({rows().at(3)}, {});
    }
    left.removeAt(2);
    expectHere(left, 1);
    EXPECT_THAT(files(u"Home"_qs), SizeIs(1)) << "the series is still one";
    for (int step = 0; step < 3; ++step)
        ASSERT_FALSE(context().undo());
    expectHere(all());
}

TEST_F(MovedForGood, TheRestOfThemIsEditedAndTicked)
{
    editSeries(rows().at(4), Span::FutureTasks, [](MVTask &task) {
        task.title = u"Later"_qs;
        task.startDate = *task.startDate + Seconds(3600);
        task.dueDate = *task.dueDate + Seconds(3600);
    });
    QStringList left = all();
    left[4] = u"11-24 12:00 Later"_qs;
    left[5] = u"11-25 12:00 Later"_qs;
    expectHere(left);
    // The whole of it: only what the user has changed, and what others moved stays where it is.
    editSeries(rows().at(0), Span::FutureTasks, [](MVTask &task) { task.title = u"Early"_qs; });
    left[0] = u"11-20 09:00 Early"_qs;
    left[1] = u"11-21 09:00 Early"_qs;
    expectHere(left);
    finish(rows().at(3), Span::FutureTasks);
    left.removeAt(3);
    expectHere(left, 1);
    for (int step = 0; step < 3; ++step)
        ASSERT_FALSE(context().undo());
    pass();
    expectHere(all());
}

/// An occurrence that another program moves far away, near, or onto another one's day is edited, ticked off
/// and deleted, and no other one is.
class OccurrencesMovedElsewhere : public SeriesStories
{
protected:
    struct Move
    {
        const char *original;
        const char *start;
    };
    static QString times(const QString &start)
    {
        return u"DTSTART;TZID=Europe/Berlin:%1\nDURATION:PT15M\nSUMMARY:Standup\n"_qs.arg(start);
    }
    void writeMoved(const QString &rule, const QList<Move> &moves, const QString &excluded = {}) const
    {
        QString lines = u"RRULE:%1\n"_qs.arg(rule);
        if (!excluded.isEmpty())
            lines += u"EXDATE;TZID=Europe/Berlin:%1T090000\n"_qs.arg(excluded);
        for (const Move &move : moves)
            lines += override(QLatin1String(move.original), times(QLatin1String(move.start)));
        write(u"Home"_qs, u"standup"_qs, times(u"20261120T090000"_qs) + lines);
    }
    /// "2026-11-23 Title 2031-01-01 14:00": which occurrence it is, and when.
    QStringList held() const
    {
        EKEventStore elsewhere(std::make_shared<FolderBackend>(root.path()));
        const auto events = elsewhere.eventsMatchingPredicate(
            elsewhere.predicateForEventsWithStartDate(localDate(2026, 1, 1), localDate(2035, 1, 1)));
        QStringList lines;
        for (const EKEvent &event : events.value())
            lines.append(wallClock(*event.occurrenceDate).left(11) + event.title + u' ' +
                         wallClock(*event.startDate).left(16));
        lines.sort();
        return lines;
    }
    static TaskPtr rowAt(Date start)
    {
        for (const TaskPtr &row : rows()) {
            if (row->startDate() == start)
                return row;
        }
        return nullptr;
    }
    /// Each command on a row that was made of the file before, or of that after, concerns the occurrence
    /// alone; none if the row's has gone.
    void expectConcernsOnly(const std::function<void()> &before, const std::function<void()> &after,
                            Date start, const QString &occurrence)
    {
        for (const int command : {0, 1, 2}) {
            SCOPED_TRACE(command);
            before();
            pass();
            after();
            QStringList wanted = held();
            const TaskPtr row = rowAt(start);
            ASSERT_TRUE(row);
            const auto own = std::find_if(wanted.begin(), wanted.end(), [&occurrence](const QString &line) {
                return !occurrence.isEmpty() && line.startsWith(occurrence);
            });
            if (command == 0) {
                editSeries(row, Span::ThisTask, [](MVTask &task) { task.title = u"Mine"_qs; });
                if (own != wanted.end())
                    own->replace(u"Standup"_qs, u"Mine"_qs);
            } else if (command == 1) {
                finish(row, Span::ThisTask);
            } else {
                const ScriptedAlerts alerts({Alert::firstButton});
                TaskManager::deleteTasks({row}, {});
            }
            if (command != 0 && own != wanted.end())
                wanted.erase(own);
            EXPECT_EQ(held(), wanted);
            pass();
            EXPECT_EQ(held(), wanted);
            expectSettled();
            // Anew.
            QFile::remove(folderOf(u"Home"_qs) + u"/standup.ics"_qs);
            pass();
            for (const TaskPtr &left : rows())
                context().deleteObject(left);
            ASSERT_FALSE(DBWorker::saveContext());
        }
    }
};

TEST_F(OccurrencesMovedElsewhere, AreTheOnesThatARowMeans)
{
    const QString daily = u"FREQ=DAILY;COUNT=6"_qs;
    const auto untouched = [&] { writeMoved(daily, {}); };
    // Out of the window, before a pass could tell.
    expectConcernsOnly(
        untouched,
        [&] {
            writeMoved(daily, {{"20261123", "20310101T140000"}});
        },
        localDate(2026, 11, 23, 9), u"2026-11-23"_qs);
    // The same, and another one has come to the day.
    expectConcernsOnly(
        untouched,
        [&] {
            writeMoved(daily, {{"20261123", "20310101T140000"}, {"20261125", "20261123T140000"}});
        },
        localDate(2026, 11, 23, 9), u"2026-11-23"_qs);
    // From outside of the window into it.
    expectConcernsOnly(
        [&] {
            writeMoved(u"FREQ=YEARLY;COUNT=4"_qs, {{"20281120", "20261123T140000"}});
        },
        [] {}, localDate(2026, 11, 23, 14), u"2028-11-20"_qs);
    // And further on the same day.
    expectConcernsOnly(
        [&] {
            writeMoved(u"FREQ=YEARLY;COUNT=4"_qs, {{"20281120", "20261123T140000"}});
        },
        [&] {
            writeMoved(u"FREQ=YEARLY;COUNT=4"_qs, {{"20281120", "20261123T160000"}});
        },
        localDate(2026, 11, 23, 14), u"2028-11-20"_qs);
    // It has gone: that which is on its day is the event of another row.
    expectConcernsOnly(
        [&] {
            writeMoved(daily, {{"20261125", "20261123T140000"}});
        },
        [&] {
            writeMoved(daily, {{"20261125", "20261123T140000"}}, u"20261123"_qs);
        },
        localDate(2026, 11, 23, 9), QString());
}

/// A choir on Mondays at nine, and what is left of its rule after "all future" edits.
class TurnedSeries : public SeriesStories
{
protected:
    TurnedSeries() { QFile::remove(folderOf(u"Home"_qs) + u"/standup.ics"_qs); }

    /// The lines that say when it repeats, of all parts of the series.
    QStringList rules() const
    {
        QStringList lines;
        for (const QString &text : files(u"Home"_qs)) {
            const QString event = text.mid(text.indexOf(u"BEGIN:VEVENT"_qs));
            for (const QString &line : event.split(u"\r\n"_qs)) {
                if (line.startsWith(u"RRULE:"_qs))
                    lines.append(line.mid(6));
            }
        }
        lines.sort();
        return lines;
    }
    QStringList choir() const
    {
        return calendar().filter(u"Choir"_qs).replaceInStrings(u" Choir"_qs, QString());
    }
    void write(const QString &rule, const QString &more = {}) const
    {
        CalendarTest::write(u"Home"_qs, u"choir"_qs,
                            u"SUMMARY:Choir\nDTSTART;TZID=Europe/Berlin:20261123T090000\n"
                            u"DTEND;TZID=Europe/Berlin:20261123T100000\nRRULE:%1\n%2"_qs.arg(rule, more));
    }
    void shift(size_t place, Seconds byStart, Seconds byEnd)
    {
        pass();
        editSeries(rows().at(place), Span::FutureTasks, [&](MVTask &task) {
            task.startDate = *task.startDate + byStart;
            task.dueDate = *task.dueDate + byEnd;
        });
        pass();
        QStringList shown;
        for (const TaskPtr &row : SeriesStories::rows())
            shown.append(wallClock(*row->startDate()).mid(5, 11));
        EXPECT_EQ(shown, choir());
        expectSettled();
    }
    static constexpr Seconds aDay{86400};
    static constexpr Seconds anHour{3600};
};

TEST_F(TurnedSeries, TurnsItsWeekdaysAndKeepsItsEnd)
{
    // Until Wednesday the 9th of December.
    write(
        u"FREQ=WEEKLY;UNTIL=20261209T080000Z;BYDAY=MO,WE"_qs,
        u"END:VEVENT\nBEGIN:VEVENT\nUID:choir\nDTSTAMP:20260101T000000Z\nSUMMARY:Choir\n"
        u"RECURRENCE-ID;TZID=Europe/Berlin:20261202T090000\nDTSTART;TZID=Europe/Berlin:20261202T150000\nDURATION:PT1H\n"_qs);
    shift(0, aDay, aDay);
    EXPECT_EQ(rules(), QStringList(u"FREQ=WEEKLY;UNTIL=20261209T080000Z;BYDAY=TU,TH"_qs));
    EXPECT_EQ(choir(), QStringList({u"11-24 09:00"_qs, u"11-26 09:00"_qs, u"12-01 09:00"_qs,
                                    u"12-02 15:00"_qs, u"12-08 09:00"_qs}))
        << "what was edited alone stays where it is";
    // From the midst of it, and back to another hour: the last day counts still, at whatever hour.
    shift(2, aDay + anHour, aDay + anHour);
    EXPECT_EQ(choir(), QStringList({u"11-24 09:00"_qs, u"11-26 09:00"_qs, u"12-02 10:00"_qs,
                                    u"12-02 15:00"_qs, u"12-09 10:00"_qs}));
    EXPECT_EQ(rules().last(), u"FREQ=WEEKLY;UNTIL=20261209T090000Z;BYDAY=WE,FR"_qs);
    for (const TaskPtr &row : rows()) {
        if (*row->startDate() > localDate(2026, 11, 27)) {
            EXPECT_EQ(wallClock(*row->endRepeat()).left(10), u"2026-12-09"_qs);
        }
    }
    // When it ends does not concern its rule.
    shift(0, Seconds(0), anHour);
    shift(2, Seconds(0), anHour);
    EXPECT_EQ(rules().last(), u"FREQ=WEEKLY;UNTIL=20261209T090000Z;BYDAY=WE,FR"_qs);
    EXPECT_EQ(rows().at(4)->dueDate(), localDate(2026, 12, 9, 12));
}

TEST_F(TurnedSeries, KeepsARuleOfOneDayInItsWords)
{
    write(u"FREQ=WEEKLY;UNTIL=20261214T080000Z;WKST=SU;BYDAY=MO"_qs);
    shift(1, Seconds(0), anHour);
    EXPECT_EQ(rules().last(), u"FREQ=WEEKLY;UNTIL=20261214T080000Z;WKST=SU;BYDAY=MO"_qs);
    EXPECT_EQ(choir(),
              QStringList({u"11-23 09:00"_qs, u"11-30 09:00"_qs, u"12-07 09:00"_qs, u"12-14 09:00"_qs}));
    shift(2, -aDay, -aDay);
    EXPECT_EQ(choir(),
              QStringList({u"11-23 09:00"_qs, u"11-30 09:00"_qs, u"12-06 09:00"_qs, u"12-13 09:00"_qs}));
    // Beyond its end one is left.
    shift(3, aDay * 3, aDay * 3);
    EXPECT_EQ(choir(),
              QStringList({u"11-23 09:00"_qs, u"11-30 09:00"_qs, u"12-06 09:00"_qs, u"12-16 09:00"_qs}));
}

} // namespace
