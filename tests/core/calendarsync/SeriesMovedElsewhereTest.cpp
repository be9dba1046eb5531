// A series of which another program has moved one occurrence, or all from one on.

#include "SeriesStories.h"

namespace {

using testing::IsEmpty;
using testing::SizeIs;

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

TEST_F(OccurrencesMovedElsewhere, OutOfTheWindowKeepTheirRowsAndWhatTheOrganiserAloneKnows)
{
    const QString daily = u"FREQ=DAILY;COUNT=3"_qs;
    writeMoved(daily, {});
    write(u"Home"_qs, u"once"_qs, times(u"20261124T090000"_qs));
    pass();
    ASSERT_THAT(rows(), SizeIs(4));
    const QList<TaskPtr> moved = {rowAt(localDate(2026, 11, 21, 9)), rowAt(localDate(2026, 11, 24, 9))};
    for (const TaskPtr &row : moved)
        row->setPriority(Priority::High);
    const auto expectAt = [&](Date start) {
        for (int activation = 0; activation < 2; ++activation) {
            pass();
            ASSERT_THAT(rows(), SizeIs(4));
            for (const TaskPtr &row : moved) {
                EXPECT_EQ(row->startDate(), start);
                EXPECT_EQ(row->priority(), Priority::High);
            }
        }
    };
    writeMoved(daily, {{"20261121", "20310101T140000"}});
    write(u"Home"_qs, u"once"_qs, times(u"20310101T140000"_qs));
    expectAt(localDate(2031, 1, 1, 14));
    // And back again.
    writeMoved(daily, {{"20261121", "20261125T140000"}});
    write(u"Home"_qs, u"once"_qs, times(u"20261125T140000"_qs));
    expectAt(localDate(2026, 11, 25, 14));
}

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

} // namespace
