#pragma once

#include "CalendarTest.h"

#include "records/TaskBatch.h"
#include "store/queries/EventDates.h"

#include <gmock/gmock.h>

#include <QCoreApplication>
#include <QRegularExpression>

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
        QStringList lines;
        for (const EKEvent &event : eventsElsewhere()) {
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
