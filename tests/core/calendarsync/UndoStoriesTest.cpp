// What the user takes back, on both sides: the rows and the calendars, also after passes and restarts.

#include "UndoStories.h"

namespace {

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

} // namespace
