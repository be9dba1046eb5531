#pragma once

#include "CalendarTest.h"

#include <QCoreApplication>

/// A program in front of calendars that have moods, and its commands in short.
class MoodyCalendarTest : public CalendarTest
{
protected:
    MoodyCalendarTest()
    {
        UserDefaults::standard().setObject(settings::frequencyCalendarPeriod, 2);
        backend = connectMoodyStore();
    }

    static MVTask draft(const QString &title, int day = 24, const QString &calendar = u"Home"_qs)
    {
        MVTask task;
        task.title = title;
        task.type = TaskType::Appointment;
        task.status = TaskStatus::Open;
        task.startDate = localDate(2026, 11, day, 9);
        task.dueDate = localDate(2026, 11, day, 10);
        task.typeCalendarID = calendar;
        return task;
    }
    static TaskPtr make(MVTask task)
    {
        EXPECT_TRUE(TaskManager::saveTaskTemp(task, true));
        return task.task();
    }
    static void edit(const TaskPtr &row, const std::function<void(MVTask &)> &change)
    {
        MVTask copy(row);
        change(copy);
        EXPECT_TRUE(TaskManager::saveTaskTemp(copy, true));
    }
    static void rename(const TaskPtr &row, const QString &title)
    {
        edit(row, [&title](MVTask &task) { task.title = title; });
    }
    static void tickOff(const TaskPtr &row) { MVTask(row).changeStatusType(TaskStatus::Done, true); }
    static void deleteRow(const TaskPtr &row)
    {
        const ScriptedAlerts alerts({Alert::firstButton});
        TaskManager::deleteTasks({row}, {});
    }
    void activate() { delegate->applicationDidBecomeActive(); }
    /// The other turns of the main loop.
    static void goOn()
    {
        for (int turn = 0; turn < 5; ++turn)
            QCoreApplication::processEvents();
    }
    void undo()
    {
        ASSERT_FALSE(context().undo());
        goOn();
    }
    void redo()
    {
        ASSERT_FALSE(context().redo());
        goOn();
    }
    void restart()
    {
        quit();
        CalendarEvent::resetEventStore();
        launch();
    }
    static TaskPtr rowOf(const QString &title)
    {
        for (const TaskPtr &row : rows()) {
            if (row->title() == title)
                return row;
        }
        return nullptr;
    }
    /// The titles and first days of the events, as another program finds them: "24 Title".
    QStringList events() const
    {
        QStringList lines;
        for (const EKEvent &event : eventsElsewhere())
            lines.append(wallClock(*event.startDate).mid(8, 2) + u' ' + event.title);
        lines.sort();
        return lines;
    }
    /// The same of the rows, of which those that are done come with a mark.
    static QStringList tasks()
    {
        QStringList lines;
        for (const TaskPtr &row : rows())
            lines.append(wallClock(*row->dueDate()).mid(8, 2) + u' ' + row->title() +
                         (row->status() == TaskStatus::Done ? u" (done)"_qs : QString()));
        lines.sort();
        return lines;
    }
    QString pathOf(const QString &title, const QString &calendar = u"Home"_qs) const
    {
        const auto texts = files(calendar);
        for (auto file = texts.begin(); file != texts.end(); ++file) {
            if (file.value().contains(u"SUMMARY:"_qs + title + u'\r'))
                return folderOf(calendar) + u'/' + file.key();
        }
        return {};
    }
    static void put(const QString &path, const QByteArray &text)
    {
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(text);
    }
    static QByteArray read(const QString &path)
    {
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << path.toStdString();
        return file.readAll();
    }
    /// All is written, and stays as it is.
    void expectArrived(const QStringList &wantedTasks, const QStringList &wantedEvents)
    {
        EXPECT_EQ(tasks(), wantedTasks);
        EXPECT_EQ(events(), wantedEvents);
        EXPECT_TRUE(context().pendingOutbox().empty());
        expectSettled();
    }

    std::shared_ptr<MoodyBackend> backend;
};
