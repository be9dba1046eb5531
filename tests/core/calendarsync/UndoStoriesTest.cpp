// What the user takes back, on both sides: the rows and the calendars, also after passes and restarts.

#include "CalendarTest.h"

#include "records/TaskBatch.h"
#include "store/queries/EventDates.h"

#include <gmock/gmock.h>

#include <QRegularExpression>

#include <random>

namespace {

class UndoStories : public CalendarTest
{
protected:
    UndoStories() { UserDefaults::standard().setObject(settings::frequencyCalendarPeriod, 2); }

    static MVTask draft(const QString &title, int day, TaskType type = TaskType::Appointment)
    {
        MVTask task;
        task.title = title;
        task.type = type;
        task.status = TaskStatus::Open;
        const Date midnight = localDate(2026, 11, day);
        task.startDate = type == TaskType::ToDo ? midnight : midnight + Seconds(9 * 3600);
        task.dueDate = midnight + Seconds(type == TaskType::ToDo ? 86340 : 10 * 3600);
        if (type == TaskType::EmailCall)
            task.startDate = std::nullopt;
        task.typeCalendarID = u"Home"_qs;
        return task;
    }
    static TaskPtr make(MVTask task)
    {
        EXPECT_TRUE(TaskManager::saveTaskTemp(task, true));
        return task.task();
    }
    static TaskPtr make(const QString &title, int day) { return make(draft(title, day)); }
    static void edit(const TaskPtr &row, const std::function<void(MVTask &)> &change)
    {
        MVTask copy(row);
        change(copy);
        EXPECT_TRUE(TaskManager::saveTaskTemp(copy, true));
    }
    static void tickOff(const TaskPtr &row) { MVTask(row).changeStatusType(TaskStatus::Done, true); }
    void undo() { ASSERT_FALSE(context().undo()); }
    void redo() { ASSERT_FALSE(context().redo()); }
    /// The program comes to the front: what is left is carried out, and a pass runs.
    void activate() { delegate->applicationDidBecomeActive(); }
    void restart()
    {
        quit();
        CalendarEvent::resetEventStore();
        launch();
    }

    /// "title type start due done", a line for each row, or for each event as its row would be.
    static QString lineOf(const QString &title, TaskType type, OptionalDate start, Date due, bool isDone)
    {
        return u"%1 (%2) %3 %4%5"_qs.arg(title).arg(int(type)).arg(
            start ? wallClock(*start) : u"-"_qs, wallClock(due).left(16), isDone ? u" done"_qs : QString());
    }
    static QStringList shown()
    {
        QStringList lines;
        for (const TaskPtr &row : rows())
            lines.append(lineOf(row->title(), row->type().value_or(TaskType::ToDo), row->startDate(),
                                *row->dueDate(), row->status() == TaskStatus::Done));
        lines.sort();
        return lines;
    }
    /// As another program sees them, which knows of the files alone.
    QStringList held() const
    {
        EKEventStore elsewhere(std::make_shared<FolderBackend>(root.path()));
        const DateInterval seen = CalendarEvent::window();
        QStringList lines;
        const auto events = elsewhere.eventsMatchingPredicate(
            elsewhere.predicateForEventsWithStartDate(seen.start, seen.end));
        for (const EKEvent &event : events.value()) {
            const auto dates = eventdates::of(event);
            lines.append(lineOf(event.title, dates->type, dates->start, dates->due, false));
        }
        lines.sort();
        return lines;
    }
    static QStringList open(QStringList lines)
    {
        lines.removeIf([](const QString &line) { return line.endsWith(u" done"_qs); });
        return lines;
    }
    void expectBothSides(const QStringList &rowsWanted, const QStringList &eventsWanted, const char *when)
    {
        EXPECT_EQ(shown(), rowsWanted) << when;
        EXPECT_EQ(held(), eventsWanted) << when;
    }

    /// A command, and both sides before and after it: undone, redone and undone again, each time with a look
    /// at both sides after a pass and after a restart.
    void expectUndoable(const std::function<void()> &command)
    {
        activate();
        const QStringList rowsBefore = shown();
        const QStringList eventsBefore = held();
        command();
        activate();
        const QStringList rowsAfter = shown();
        const QStringList eventsAfter = held();
        EXPECT_NE(rowsAfter, rowsBefore);
        for (int round = 0; round < 2; ++round) {
            undo();
            expectBothSides(rowsBefore, eventsBefore, "undone");
            activate();
            expectBothSides(rowsBefore, eventsBefore, "undone and activated");
            if (round == 1)
                restart();
            redo();
            activate();
            expectBothSides(rowsAfter, eventsAfter, "redone and activated");
        }
        undo();
        restart();
        activate();
        expectBothSides(rowsBefore, eventsBefore, "undone, restarted and activated");
        expectSettled();
    }
    void writeSeries()
    {
        write(
            u"Home"_qs, u"run"_qs,
            u"SUMMARY:Run\nDTSTART:20261123T090000Z\nDTEND:20261123T100000Z\nRRULE:FREQ=DAILY;COUNT=5\n"_qs);
        activate();
    }
    static TaskPtr rowOf(const QString &title, int place = 0)
    {
        for (const TaskPtr &row : rows()) {
            if (row->title() == title && place-- == 0)
                return row;
        }
        return nullptr;
    }
};

TEST_F(UndoStories, ATaskThatWasTickedOffComesBackWithItsEvent)
{
    for (const TaskType type : {TaskType::ToDo, TaskType::Appointment, TaskType::EmailCall}) {
        make(draft(u"Task"_qs, 25, type));
        const QString identity = rowOf(u"Task"_qs)->identifier();
        expectUndoable([] { tickOff(rowOf(u"Task"_qs)); });
        EXPECT_EQ(rowOf(u"Task"_qs)->identifier(), identity);
        const ScriptedAlerts alerts({Alert::firstButton});
        TaskManager::deleteTasks({rowOf(u"Task"_qs)}, {});
    }
}

TEST_F(UndoStories, EachKindOfCommandIsTakenBackOnBothSides)
{
    make(u"Dentist"_qs, 25);
    make(draft(u"Paint"_qs, 26, TaskType::ToDo));
    expectUndoable([] { make(u"New"_qs, 27); });
    expectUndoable([] { edit(rowOf(u"Dentist"_qs), [](MVTask &task) { task.title = u"Doctor"_qs; }); });
    expectUndoable([] {
        edit(rowOf(u"Dentist"_qs), [](MVTask &task) {
            task.startDate = localDate(2026, 11, 28, 14);
            task.dueDate = localDate(2026, 11, 28, 15);
        });
    });
    expectUndoable([] {
        edit(rowOf(u"Paint"_qs), [](MVTask &task) {
            task.startDate = std::nullopt;
            task.title = u"Paint, some time"_qs;
        });
    });
    expectUndoable([] {
        const ScriptedAlerts alerts({Alert::firstButton});
        TaskManager::deleteTasks({rowOf(u"Dentist"_qs), rowOf(u"Paint"_qs)}, {});
    });
    expectUndoable([] { TaskBatch::toggleDone({rowOf(u"Dentist"_qs), rowOf(u"Paint"_qs)}); });
    ASSERT_EQ(files(u"Home"_qs).size(), 2);
    edit(rowOf(u"Dentist"_qs), [](MVTask &task) { task.typeCalendarID = u"Work"_qs; });
    EXPECT_EQ(files(u"Work"_qs).size(), 1);
    undo();
    activate();
    EXPECT_EQ(files(u"Work"_qs).size(), 0);
    EXPECT_EQ(files(u"Home"_qs).size(), 2);
    EXPECT_EQ(rowOf(u"Dentist"_qs)->typeCalendarID(), u"Home"_qs);
}

TEST_F(UndoStories, EditsOfASeriesAreTakenBackOnBothSides)
{
    writeSeries();
    const auto rename = [](MVTask &task) { task.title = u"Swim"_qs; };
    expectUndoable([&] { editSeries(rowOf(u"Run"_qs, 1), Span::ThisTask, rename); });
    expectUndoable([&] { editSeries(rowOf(u"Run"_qs, 2), Span::FutureTasks, rename); });
    expectUndoable([&] { editSeries(rowOf(u"Run"_qs, 0), Span::FutureTasks, rename); });
    for (const int button : {Alert::firstButton, Alert::secondButton}) {
        expectUndoable([&] {
            const ScriptedAlerts alerts({button});
            TaskManager::deleteTasks({rowOf(u"Run"_qs, 1)}, {});
        });
    }
    expectUndoable([] {
        editSeries(rowOf(u"Run"_qs, 1), Span::ThisTask,
                   [](MVTask &task) { task.changeStatusType(TaskStatus::Done, false); });
    });
}

TEST_F(UndoStories, WhatAnotherProgramChangedMeanwhileStays)
{
    const TaskPtr row = make(u"Dentist"_qs, 25);
    activate();
    edit(row, [](MVTask &task) { task.title = u"Doctor"_qs; });
    // Another program moves the event by an hour and takes a note.
    const QString name = files(u"Home"_qs).firstKey();
    QString text = files(u"Home"_qs).first();
    static const QRegularExpression start(u"(DTSTART[^\r]*T)09"_qs);
    static const QRegularExpression end(u"(DTEND[^\r]*T)10"_qs);
    text.replace(start, u"\\111"_qs).replace(end, u"\\112"_qs);
    text.replace(u"END:VEVENT"_qs, u"X-NOTE:theirs\r\nEND:VEVENT"_qs);
    QFile file(folderOf(u"Home"_qs) + u'/' + name);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(text.toUtf8());
    file.close();
    undo();
    activate();
    EXPECT_EQ(row->title(), u"Dentist"_qs);
    EXPECT_EQ(row->startDate(), localDate(2026, 11, 25, 11));
    EXPECT_TRUE(files(u"Home"_qs).first().contains(u"X-NOTE:theirs"_qs));
    EXPECT_TRUE(files(u"Home"_qs).first().contains(u"SUMMARY:Dentist"_qs));
    expectSettled();
}

TEST_F(UndoStories, AnEditOfTheTitleNeverTakesBackAnothersNewTime)
{
    const TaskPtr row = make(u"Dentist"_qs, 25);
    activate();
    const QString name = files(u"Home"_qs).firstKey();
    QString text = files(u"Home"_qs).first();
    static const QRegularExpression hours(u"T(09|10)0000"_qs);
    text.replace(u"T090000"_qs, u"T130000"_qs).replace(u"T100000"_qs, u"T140000"_qs);
    QFile file(folderOf(u"Home"_qs) + u'/' + name);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(text.toUtf8());
    file.close();
    edit(row, [](MVTask &task) { task.title = u"Doctor"_qs; });
    activate();
    EXPECT_EQ(row->title(), u"Doctor"_qs);
    EXPECT_EQ(row->startDate(), localDate(2026, 11, 25, 13));
    EXPECT_EQ(held().size(), 1);
    expectSettled();
}

TEST_F(UndoStories, ReachTheCalendarsWhenTheyAnswerAgain)
{
    const auto backend = connectMoodyStore();
    const TaskPtr row = make(u"Dentist"_qs, 25);
    activate();
    const QStringList before = held();
    backend->refusesWriting = true;
    tickOff(row);
    EXPECT_EQ(held(), before) << "it could not be written";
    activate();
    EXPECT_EQ(open(shown()), QStringList()) << "the pass sees it as gone, since it will be";
    undo();
    activate();
    EXPECT_EQ(shown(), before);
    edit(rowOf(u"Dentist"_qs), [](MVTask &task) { task.title = u"Doctor"_qs; });
    make(u"New"_qs, 26);
    activate();
    EXPECT_EQ(shown().size(), 2) << "rows wait for their events";
    restart();
    activate();
    EXPECT_EQ(shown().size(), 2);
    backend->refusesWriting = false;
    activate();
    EXPECT_EQ(held(), shown());
    EXPECT_EQ(held().filter(u"Doctor"_qs).size(), 1);
    EXPECT_TRUE(context().pendingOutbox().empty());
    expectSettled();
}

TEST_F(UndoStories, GeneratedOnesAlwaysComeBackToWhereTheyWere)
{
    constexpr int sequences = 10;
    constexpr int stepsOfEach = 24;
    for (int sequence = 0; sequence < sequences && !HasFailure(); ++sequence) {
        SCOPED_TRACE(sequence);
        std::mt19937 random(testSeed() + unsigned(sequence));
        const auto upTo = [&](int most) { return std::uniform_int_distribution<int>(0, most)(random); };
        startAnew();
        UserDefaults::standard().setObject(settings::frequencyCalendarPeriod, 2);
        UserDefaults::standard().removeObject(settings::eventsAtLastPass);
        for (const QString &name : files(u"Home"_qs).keys())
            QFile::remove(folderOf(u"Home"_qs) + u'/' + name);
        connectStore();
        write(u"Work"_qs, u"anchor"_qs, u"SUMMARY:Anchor\nDTSTART:20261230T080000Z\nDURATION:PT1H\n"_qs);
        writeSeries();
        QStringList steps;
        int titles = 0;
        /// Both sides after each step that can be undone; what is before `place` is done.
        std::vector<QStringList> history = {shown() + held()};
        size_t place = 0;
        const auto anyRow = [&]() -> TaskPtr {
            std::vector<TaskPtr> all = rows();
            std::erase_if(all, [](const TaskPtr &row) {
                return row->status() == TaskStatus::Done || row->title() == u"Anchor"_qs;
            });
            return all.empty() ? nullptr : all[size_t(upTo(int(all.size()) - 1))];
        };
        const auto command = [&](const TaskPtr &row) {
            const int kind = row ? upTo(4) : 0;
            const int button = upTo(1) ? Alert::firstButton : Alert::secondButton;
            const ScriptedAlerts alerts({row && !row->repeat().isEmpty() ? button : Alert::firstButton});
            steps.append(u"%1 of %2 with %3"_qs.arg(kind).arg(row ? row->title() : QString()).arg(button));
            if (kind == 0) {
                make(u"Task %1"_qs.arg(++titles), 23 + upTo(5));
            } else if (kind == 1) {
                edit(row, [&](MVTask &task) { task.title = u"Title %1"_qs.arg(++titles); });
            } else if (kind == 2) {
                edit(row, [](MVTask &task) {
                    task.startDate = *task.startDate + Seconds(3600);
                    task.dueDate = *task.dueDate + Seconds(3600);
                });
            } else if (kind == 3) {
                tickOff(row);
            } else {
                TaskManager::deleteTasks({row}, {});
            }
        };
        for (int number = 0; number < stepsOfEach && !HasFailure(); ++number) {
            const int kind = upTo(7);
            if (kind < 3) {
                command(anyRow());
                activate();
                history.resize(place + 1);
                history.push_back(shown() + held());
                ++place;
            } else if (kind < 5 && place > 0) {
                steps.append(u"undo"_qs);
                undo();
                --place;
            } else if (kind == 5 && place + 1 < history.size()) {
                steps.append(u"redo"_qs);
                redo();
                ++place;
            } else if (kind == 6) {
                steps.append(u"restart"_qs);
                restart();
            } else {
                // Another program works on something else.
                write(u"Work"_qs, u"anchor"_qs,
                      u"SUMMARY:Anchor\nDESCRIPTION:%1\nDTSTART:20261230T080000Z\nDURATION:PT1H\n"_qs.arg(
                          number));
            }
            if (upTo(1))
                activate();
            ASSERT_EQ(shown() + held(), history[place]) << steps.join(u'\n').toStdString();
        }
        activate();
        ASSERT_EQ(shown() + held(), history[place]) << steps.join(u'\n').toStdString();
        while (place > 0) {
            undo();
            --place;
        }
        activate();
        EXPECT_EQ(shown() + held(), history.front()) << steps.join(u'\n').toStdString();
        expectSettled();
    }
}

} // namespace
