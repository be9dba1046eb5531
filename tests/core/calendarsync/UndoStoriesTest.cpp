// What the user takes back, on both sides: the rows and the calendars, also after passes and restarts.

#include "CalendarTest.h"

#include "records/TaskBatch.h"
#include "store/queries/EventDates.h"

#include <gmock/gmock.h>

#include <QCoreApplication>
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
    /// The other turns of the main loop.
    static void goOn()
    {
        for (int turn = 0; turn < 5; ++turn)
            QCoreApplication::processEvents();
    }
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

TEST_F(UndoStories, ARepeatingTaskThatWasMadeBeforeTheStartGoesWhole)
{
    make(u"Other"_qs, 27);
    for (const TaskType type : {TaskType::ToDo, TaskType::Appointment, TaskType::EmailCall}) {
        for (const bool activates : {false, true}) {
            SCOPED_TRACE(int(type) * 2 + activates);
            activate();
            const QStringList rowsBefore = shown();
            const QStringList eventsBefore = held();
            const auto filesBefore = files(u"Home"_qs);
            MVTask daily = draft(u"Daily"_qs, 24, type);
            daily.repeat = u"RRULE:FREQ=DAILY;INTERVAL=1"_qs;
            if (activates)
                daily.endRepeat = localDate(2026, 11, 28);
            make(daily);
            const QStringList rowsAfter = shown();
            const QStringList eventsAfter = held();
            EXPECT_GE(rowsAfter.size(), rowsBefore.size() + 2);
            const auto next = [&] {
                restart();
                if (activates)
                    activate();
            };
            for (int round = 0; round < 2; ++round) {
                next();
                undo();
                expectBothSides(rowsBefore, eventsBefore, "undone");
                EXPECT_EQ(files(u"Home"_qs), filesBefore);
                activate();
                expectBothSides(rowsBefore, eventsBefore, "undone and activated");
                next();
                redo();
                expectBothSides(rowsAfter, eventsAfter, "redone");
                activate();
                expectBothSides(rowsAfter, eventsAfter, "redone and activated");
            }
            next();
            undo();
            activate();
            expectBothSides(rowsBefore, eventsBefore, "undone at last");
            expectSettled();
        }
    }
}

TEST_F(UndoStories, ARepeatingTaskThatWasMadeDaysAgoGoesWhole)
{
    make(u"Other"_qs, 27);
    const QStringList rowsBefore = shown();
    const QStringList eventsBefore = held();
    MVTask daily = draft(u"Daily"_qs, 24);
    daily.repeat = u"RRULE:FREQ=DAILY;INTERVAL=1"_qs;
    make(daily);
    restart();
    activate();
    // The passes of the days between have made rows for days that were too far away then.
    for (const int day : {24, 27}) {
        const FrozenClock later(localDate(2026, 11, day, 12));
        restart();
        activate();
        const QStringList rowsAfter = shown();
        EXPECT_GT(rowsAfter.size(), rowsBefore.size() + 2);
        undo();
        goOn();
        expectBothSides(rowsBefore, eventsBefore, "undone");
        activate();
        expectBothSides(rowsBefore, eventsBefore, "undone and activated");
        restart();
        redo();
        activate();
        EXPECT_EQ(shown(), rowsAfter);
        EXPECT_GT(held().size(), eventsBefore.size() + 2);
        expectSettled();
    }
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

TEST_F(UndoStories, AMoveIsTakenBackWithWhatAnotherProgramChangedThere)
{
    const TaskPtr row = make(u"Dentist"_qs, 25);
    activate();
    const QStringList before = held();
    const auto takeNote = [this](const QString &calendar, const QString &note) {
        const QString name = files(calendar).firstKey();
        QString text = files(calendar).first();
        text.replace(u"END:VEVENT"_qs, u"X-NOTE:"_qs + note + u"\r\nEND:VEVENT"_qs);
        QFile file(folderOf(calendar) + u'/' + name);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(text.toUtf8());
    };
    const auto expectAt = [&](const QString &calendar, const QString &other, const QStringList &notes) {
        EXPECT_EQ(files(other).size(), 0);
        ASSERT_EQ(files(calendar).size(), 1);
        for (const QString &note : notes)
            EXPECT_TRUE(files(calendar).first().contains(u"X-NOTE:"_qs + note)) << note.toStdString();
        EXPECT_EQ(row->typeCalendarID(), calendar);
        expectBothSides(before, before, "once on each side");
        expectSettled();
    };
    edit(row, [](MVTask &task) { task.typeCalendarID = u"Work"_qs; });
    takeNote(u"Work"_qs, u"there"_qs);
    undo();
    activate();
    expectAt(u"Home"_qs, u"Work"_qs, {u"there"_qs});
    takeNote(u"Home"_qs, u"here"_qs);
    redo();
    activate();
    expectAt(u"Work"_qs, u"Home"_qs, {u"there"_qs, u"here"_qs});
    // Removed elsewhere, it does not come back.
    QFile::remove(folderOf(u"Work"_qs) + u'/' + files(u"Work"_qs).firstKey());
    undo();
    const ScriptedAlerts alerts({Alert::firstButton});
    activate();
    EXPECT_EQ(held(), QStringList());
    EXPECT_EQ(shown(), QStringList());
}

TEST_F(UndoStories, ADividedSeriesOfWhichAnotherProgramEditsAPartStaysDivided)
{
    // What another program does to the file of a part, told by its title.
    struct Foreign
    {
        QString part, from, to;
    };
    const QString end = u"END:VEVENT"_qs;
    const std::vector<Foreign> cases = {
        {u"Swim"_qs, end, u"X-NOTE:theirs\r\nDESCRIPTION:theirs\r\n"_qs + end},
        {u"Run"_qs, u"RRULE:"_qs, u"X-NOTE:theirs\r\nRRULE:WKST=SU;INTERVAL=2;"_qs},
    };
    for (const Foreign &foreign : cases) {
        SCOPED_TRACE(foreign.part.toStdString());
        for (const QString &name : files(u"Home"_qs).keys())
            QFile::remove(folderOf(u"Home"_qs) + u'/' + name);
        startAnew();
        UserDefaults::standard().setObject(settings::frequencyCalendarPeriod, 2);
        UserDefaults::standard().removeObject(settings::eventsAtLastPass);
        writeSeries();
        editSeries(rowOf(u"Run"_qs, 2), Span::FutureTasks, [](MVTask &task) { task.title = u"Swim"_qs; });
        activate();
        const auto texts = files(u"Home"_qs);
        for (auto text = texts.begin(); text != texts.end(); ++text) {
            if (!text.value().contains(u"SUMMARY:"_qs + foreign.part))
                continue;
            QFile file(folderOf(u"Home"_qs) + u'/' + text.key());
            ASSERT_TRUE(file.open(QIODevice::WriteOnly));
            file.write(QString(text.value()).replace(foreign.from, foreign.to).toUtf8());
        }
        activate();
        const QStringList divided = held();
        for (int round = 0; round < 2; ++round) {
            undo();
            activate();
            expectBothSides(divided, divided, "undone");
            redo();
            activate();
            expectBothSides(divided, divided, "redone");
        }
        EXPECT_TRUE(files(u"Home"_qs).values().join(QString()).contains(u"X-NOTE:theirs"_qs));
        expectSettled();
    }
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

TEST_F(UndoStories, GeneratedOnesLeaveNothingTwiceWhereAnotherProgramEditsTheSameEvents)
{
    constexpr int sequences = 12;
    constexpr int stepsOfEach = 20;
    for (int sequence = 0; sequence < sequences && !HasFailure(); ++sequence) {
        SCOPED_TRACE(sequence);
        std::mt19937 random(testSeed() + 1000 + unsigned(sequence));
        const auto upTo = [&](int most) { return std::uniform_int_distribution<int>(0, most)(random); };
        startAnew();
        UserDefaults::standard().setObject(settings::frequencyCalendarPeriod, 2);
        UserDefaults::standard().removeObject(settings::eventsAtLastPass);
        for (const QString &calendar : {u"Home"_qs, u"Work"_qs}) {
            for (const QString &name : files(calendar).keys())
                QFile::remove(folderOf(calendar) + u'/' + name);
        }
        connectStore();
        writeSeries();
        for (int number = 0; number < 3; ++number) {
            MVTask task = draft(u"Task"_qs, 24);
            task.startDate = localDate(2026, 11, 24, 12 + number);
            task.dueDate = localDate(2026, 11, 24, 13 + number);
            make(task);
        }
        QStringList steps;
        const auto command = [&] {
            const std::vector<TaskPtr> all = rows();
            const TaskPtr &row = all[size_t(upTo(int(all.size()) - 1))];
            const int kind = upTo(2);
            const int button = upTo(1) ? Alert::firstButton : Alert::secondButton;
            const ScriptedAlerts alerts({row->repeat().isEmpty() ? Alert::firstButton : button});
            steps.append(u"%1 of %2 %3 with %4"_qs.arg(kind)
                             .arg(row->title(), wallClock(*row->dueDate()))
                             .arg(button));
            if (kind == 0)
                edit(row, [&](MVTask &task) { task.title = u"Title %1"_qs.arg(steps.size()); });
            else if (kind == 1)
                edit(row, [](MVTask &task) {
                    task.typeCalendarID = task.typeCalendarID == u"Home"_qs ? u"Work"_qs : u"Home"_qs;
                });
            else if (all.size() > 4)
                TaskManager::deleteTasks({row}, {});
        };
        const auto foreignEdit = [&] {
            const QString calendar = upTo(1) ? u"Home"_qs : u"Work"_qs;
            const auto texts = files(calendar);
            if (texts.isEmpty())
                return;
            const QString name = texts.keys().at(upTo(int(texts.size()) - 1));
            QString text = texts.value(name);
            text.replace(text.lastIndexOf(u"END:VEVENT"_qs), 0, u"X-NOTE-%1:theirs\r\n"_qs.arg(steps.size()));
            static const QRegularExpression title(u"SUMMARY:[^\r]*"_qs);
            if (upTo(1))
                text.replace(title, u"SUMMARY:Theirs %1"_qs.arg(steps.size()));
            steps.append(u"they edit "_qs + calendar + u'/' + name);
            QFile file(folderOf(calendar) + u'/' + name);
            ASSERT_TRUE(file.open(QIODevice::WriteOnly));
            file.write(text.toUtf8());
        };
        for (int number = 0; number < stepsOfEach && !HasFailure(); ++number) {
            const int kind = upTo(5);
            if (kind < 2) {
                command();
            } else if (kind == 2) {
                foreignEdit();
            } else if (kind < 5 && context().canUndo()) {
                steps.append(u"undo"_qs);
                undo();
            } else if (context().canRedo()) {
                steps.append(u"redo"_qs);
                redo();
            }
            if (upTo(1))
                continue;
            activate();
            const std::string story = steps.join(u'\n').toStdString();
            ASSERT_EQ(shown(), held()) << story;
            QStringList hours;
            for (const TaskPtr &row : rows())
                hours.append(wallClock(*row->startDate()));
            ASSERT_EQ(hours.removeDuplicates(), 0) << hours.join(u' ').toStdString() << '\n' << story;
        }
        activate();
        expectSettled();
    }
}

} // namespace
