#pragma once

#include "CoreTest.h"
#include "MoodyBackend.h"

#include "calendarsync/CalendarEvent.h"
#include "records/TaskManager.h"
#include "store/entities/MainContext.h"
#include "store/state/NotificationNames.h"
#include "workspace/PlatformConfiguration.h"

#include <QTemporaryDir>

/// A program with access to a tree of calendars: "Home" and "Work" of the source "Local", both chosen.
class CalendarTest : public CoreTest
{
protected:
    CalendarTest()
    {
        for (const QString &title : {u"Home"_qs, u"Work"_qs})
            makeCalendar(title);
        PlatformConfiguration::setAuthorization(u"events"_qs, 3);
        connectStore();
        choose({u"Home"_qs, u"Work"_qs});
    }
    ~CalendarTest() override
    {
        CalendarEvent::resetEventStore();
        EKEventStore::setSharedBackend(nullptr);
        PlatformConfiguration::setAuthorization(u"events"_qs, 0);
        for (const QString &key :
             {settings::savedChooseCalendars, settings::defaultCalendar, settings::dictionaryCalendarsData,
              settings::eventsAtLastPass, settings::calendarsWithKeptRows, settings::knownCalendars,
              settings::calendarReferences, settings::calendarSuccessors, settings::lostNamesAreFound})
            UserDefaults::standard().removeObject(key);
    }

    QString folderOf(const QString &title) const { return root.filePath(u"Local/"_qs + title); }
    void makeCalendar(const QString &title) const { QDir().mkpath(folderOf(title)); }
    /// Another title for the calendar of a folder; known once the store is connected again.
    void rename(const QString &folder, const QString &title) const
    {
        QFile file(folderOf(folder) + u"/displayname"_qs);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(title.toUtf8());
    }
    void connectStore() const
    {
        CalendarEvent::resetEventStore();
        EKEventStore::setSharedBackend(std::make_shared<FolderBackend>(root.path()));
    }
    /// The same calendars, but their answers are for the test to decide.
    std::shared_ptr<MoodyBackend> connectMoodyStore() const
    {
        CalendarEvent::resetEventStore();
        auto backend = std::make_shared<MoodyBackend>(root.path());
        EKEventStore::setSharedBackend(backend);
        return backend;
    }
    static void choose(const QStringList &references)
    {
        UserDefaults::standard().setObject(settings::savedChooseCalendars, references.join(u"Ω"_qs));
    }

    /// What is in the window, as another program sees it, which knows of the files alone.
    std::vector<EKEvent> eventsElsewhere() const
    {
        EKEventStore elsewhere(std::make_shared<FolderBackend>(root.path()));
        const DateInterval seen = CalendarEvent::window();
        return elsewhere
            .eventsMatchingPredicate(elsewhere.predicateForEventsWithStartDate(seen.start, seen.end))
            .value();
    }
    /// An hour of "Home", saved as by the form.
    static void makeAppointment(const QString &title, Date start)
    {
        MVTask task;
        task.title = title;
        task.type = TaskType::Appointment;
        task.status = TaskStatus::Open;
        task.startDate = start;
        task.dueDate = start + Seconds(3600);
        task.typeCalendarID = u"Home"_qs;
        ASSERT_TRUE(TaskManager::saveTaskTemp(task, true));
    }

    /// Writes the file of an event as another program would.
    void write(const QString &calendar, const QString &uid, const QString &lines) const
    {
        QFile file(folderOf(calendar) + u'/' + uid + u".ics"_qs);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        QString text = u"BEGIN:VCALENDAR\nVERSION:2.0\nPRODID:-//other//EN\nBEGIN:VEVENT\nUID:%1\n"
                       u"DTSTAMP:20260101T000000Z\n%2END:VEVENT\nEND:VCALENDAR\n"_qs.arg(uid, lines);
        file.write(text.replace(u'\n', u"\r\n"_qs).toUtf8());
    }
    /// The files of a calendar with their text, as another program reads them.
    QMap<QString, QString> files(const QString &calendar) const
    {
        QMap<QString, QString> texts;
        const QDir folder(folderOf(calendar));
        for (const QString &name : folder.entryList({u"*.ics"_qs}, QDir::Files)) {
            QFile file(folder.filePath(name));
            EXPECT_TRUE(file.open(QIODevice::ReadOnly));
            texts.insert(name, QString::fromUtf8(file.readAll()));
        }
        return texts;
    }
    /// A pass as an activation starts it.
    void pass()
    {
        CalendarEvent::syncCalendarToAppWithTask(nullptr);
        EXPECT_FALSE(DBWorker::saveContext());
    }
    /// A pass that finds nothing to do: no row changes and no file is written.
    void expectSettled()
    {
        const auto filesBefore = QList{files(u"Home"_qs), files(u"Work"_qs)};
        const std::vector<TaskPtr> rowsBefore = rows();
        const auto changed = NotificationCenter::defaultCenter().addObserver(
            notifications::contextDidSave, [](const StoreChanges &changes) {
                ADD_FAILURE() << "rows changed: " << changes.updated.size() << " updated, "
                              << changes.inserted.size() << " made, " << changes.deleted.size() << " deleted";
            });
        for (int round = 0; round < 2; ++round)
            CalendarEvent::syncCalendarToAppWithTask(nullptr);
        EXPECT_EQ(rows(), rowsBefore);
        EXPECT_EQ(QList({files(u"Home"_qs), files(u"Work"_qs)}), filesBefore);
    }
    static std::vector<TaskPtr> rows()
    {
        std::vector<TaskPtr> all;
        for (const TaskPtr &row : mainContext().fetch<EntityTask>(
                 EntityTask::fetchRequest().sortedBy({ascending("dueDate"), ascending("title")})))
            all.push_back(row);
        return all;
    }

    /// Edits the row of a series as the user does, and answers how far the edit reaches.
    static MVTask editSeries(const TaskPtr &row, Span span, const std::function<void(MVTask &)> &edit)
    {
        MVTask copy(row);
        edit(copy);
        const ScriptedAlerts alerts({span == Span::ThisTask ? Alert::firstButton : Alert::secondButton});
        EXPECT_TRUE(TaskManager::saveTaskTemp(copy, true));
        return copy;
    }
    /// "11-24 09:30 Title", one for each row.
    static QStringList table()
    {
        QStringList lines;
        for (const TaskPtr &row : rows())
            lines.append(wallClock(*row->dueDate()).mid(5, 11) + u' ' + row->title());
        return lines;
    }

    QTemporaryDir root;
};
