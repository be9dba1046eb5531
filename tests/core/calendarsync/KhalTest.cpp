// A second program at the same folder: khal reads it and writes to it while Morvane does.

#include "CalendarTest.h"
#include "records/dates/MTDates.h"

#include <gmock/gmock.h>

#include <QProcess>
#include <QStandardPaths>

namespace {

using testing::SizeIs;

class KhalTest : public CalendarTest
{
protected:
    KhalTest()
    {
        UserDefaults::standard().setObject(settings::frequencyCalendarPeriod, 2);
        environment.insert(u"LC_ALL"_qs, u"C.UTF-8"_qs);
        environment.insert(u"TZ"_qs, u"Europe/Berlin"_qs);
        for (const char *name : {"HOME", "XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_CACHE_HOME"})
            environment.insert(QString::fromLatin1(name), home.path());
        QFile file(home.filePath(u"khal.conf"_qs));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(QByteArrayLiteral("[calendars]\n[[Home]]\npath = %HOME\n[[Work]]\npath = %WORK\n"
                                     "[locale]\nlocal_timezone = Europe/Berlin\n"
                                     "default_timezone = Europe/Berlin\ntimeformat = %H:%M\n"
                                     "dateformat = %Y-%m-%d\nlongdateformat = %Y-%m-%d\n"
                                     "datetimeformat = %Y-%m-%d %H:%M\n"
                                     "longdatetimeformat = %Y-%m-%d %H:%M\n"
                                     "[default]\ndefault_calendar = Home\n[sqlite]\npath = %CACHE\n")
                       .replace("%HOME", QFile::encodeName(folderOf(u"Home"_qs)))
                       .replace("%WORK", QFile::encodeName(folderOf(u"Work"_qs)))
                       .replace("%CACHE", QFile::encodeName(home.filePath(u"khal.db"_qs))));
    }

    void SetUp() override
    {
        if (QStandardPaths::findExecutable(u"khal"_qs).isEmpty())
            GTEST_SKIP() << "khal is not installed";
    }

    /// Runs khal and gives the lines that it prints.
    QStringList khal(const QStringList &arguments) const
    {
        QProcess process;
        process.setProcessEnvironment(environment);
        process.start(u"khal"_qs, QStringList{u"-c"_qs, home.filePath(u"khal.conf"_qs)} + arguments);
        EXPECT_TRUE(process.waitForStarted());
        EXPECT_TRUE(process.waitForFinished(60000));
        EXPECT_EQ(process.exitCode(), 0) << process.readAllStandardError().constData();
        QStringList lines =
            QString::fromUtf8(process.readAllStandardOutput()).split(u'\n', Qt::SkipEmptyParts);
        lines.removeAll(u"No events"_qs);
        return lines;
    }
    /// "2026-11-24 09:00 - 2026-11-24 10:00 Title", one for each event of the next twelve days.
    QStringList listed() const
    {
        QStringList lines =
            khal({u"list"_qs, u"--day-format"_qs, QString(), u"--format"_qs,
                  u"{start-long} - {end-long} {title}"_qs, u"2026-11-22"_qs, u"2026-12-03"_qs});
        lines.sort();
        return lines;
    }
    QStringList at(const QString &day, const QString &time) const
    {
        return khal({u"at"_qs, u"--day-format"_qs, QString(), u"--format"_qs, u"{title}"_qs, day, time});
    }
    /// The first open one of that title, or that of a day of November.
    static TaskPtr rowOf(const QString &title, int day = 0)
    {
        for (const TaskPtr &row : rows()) {
            if (row->title().startsWith(title) && row->status() != TaskStatus::Done &&
                (day == 0 || MTDates::startOfCurrentDay(*row->startDate()) == localDate(2026, 11, day)))
                return row;
        }
        ADD_FAILURE() << qPrintable(title) << " is no open task";
        return nullptr;
    }
    static void make(const QString &title, Date start, Seconds length, const QString &repeat = {},
                     OptionalDate endRepeat = {})
    {
        MVTask task;
        task.title = title;
        task.type = TaskType::Appointment;
        task.status = TaskStatus::Open;
        task.startDate = start;
        task.dueDate = start + length;
        task.repeat = repeat;
        task.endRepeat = endRepeat;
        task.typeCalendarID = u"Home"_qs;
        ASSERT_TRUE(TaskManager::saveTaskTemp(task, true));
    }
    /// The open tasks as `listed` has the events.
    static QStringList shown()
    {
        QStringList lines;
        for (const TaskPtr &row : rows()) {
            if (row->status() != TaskStatus::Done)
                lines.append(wallClock(*row->startDate()).left(16) + u" - "_qs +
                             wallClock(*row->dueDate()).left(16) + u' ' + row->title());
        }
        lines.sort();
        return lines;
    }
    void expectBoth(QStringList wanted)
    {
        wanted.sort();
        EXPECT_EQ(listed(), wanted);
        EXPECT_EQ(shown(), wanted);
        expectSettled();
    }

    QTemporaryDir home;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
};

TEST_F(KhalTest, SeesWhatIsMadeHereAndWhatBecomesOfIt)
{
    const QString dentist = u"2026-11-24 09:00 - 2026-11-24 10:00 Dentist"_qs;
    const auto walk = [](int day) {
        return u"2026-11-%1 07:30 - 2026-11-%1 08:00 Walk, \"long\"; ä\\b"_qs.arg(day);
    };
    make(u"Dentist"_qs, localDate(2026, 11, 24, 9), Seconds(3600));
    make(u"Walk, \"long\"; ä\\b"_qs, localDate(2026, 11, 23, 7, 30), Seconds(1800),
         u"RRULE:FREQ=DAILY;INTERVAL=1"_qs, localDate(2026, 11, 26, 23, 59));
    pass();
    expectBoth({dentist, walk(23), walk(24), walk(25), walk(26)});
    EXPECT_EQ(at(u"2026-11-24"_qs, u"09:30"_qs), QStringList(u"Dentist"_qs));

    // One is ticked off, one gets another time, and the other program loses no other.
    editSeries(rowOf(u"Walk"_qs, 24), Span::ThisTask,
               [](MVTask &task) { task.changeStatusType(TaskStatus::Done, false); });
    editSeries(rowOf(u"Walk"_qs, 25), Span::ThisTask, [](MVTask &task) {
        task.startDate = localDate(2026, 11, 25, 18);
        task.dueDate = localDate(2026, 11, 25, 19);
    });
    QString later = walk(25);
    later.replace(u"07:30"_qs, u"18:00"_qs).replace(u"08:00"_qs, u"19:00"_qs);
    pass();
    expectBoth({dentist, walk(23), later, walk(26)});

    // Both ways back.
    ASSERT_FALSE(context().undo());
    ASSERT_FALSE(context().undo());
    pass();
    expectBoth({dentist, walk(23), walk(24), walk(25), walk(26)});
}

TEST_F(KhalTest, MakesAnEventThatIsEditedAndDeletedHere)
{
    khal({u"new"_qs, u"2026-11-25"_qs, u"10:00"_qs, u"11:30"_qs, u"Review, part 2"_qs, u"::"_qs,
          u"Bring it;"_qs});
    khal({u"new"_qs, u"--repeat"_qs, u"weekly"_qs, u"--until"_qs, u"2026-12-03"_qs, u"2026-11-25"_qs,
          u"16:00"_qs, u"17:00"_qs, u"Yoga"_qs});
    const QString first = u"2026-11-25 16:00 - 2026-11-25 17:00 Yoga"_qs;
    const QString second = u"2026-12-02 16:00 - 2026-12-02 17:00 Yoga"_qs;
    pass();
    expectBoth({u"2026-11-25 10:00 - 2026-11-25 11:30 Review, part 2"_qs, first, second});
    EXPECT_EQ(rowOf(u"Review, part 2"_qs)->details(), u"Bring it;"_qs);

    // An edit here is one there, in the same event.
    MVTask copy(rowOf(u"Review, part 2"_qs));
    copy.title = u"Review"_qs;
    copy.startDate = localDate(2026, 11, 26, 14);
    copy.dueDate = localDate(2026, 11, 26, 15);
    ASSERT_TRUE(TaskManager::saveTaskTemp(copy, true));
    expectBoth({u"2026-11-26 14:00 - 2026-11-26 15:00 Review"_qs, first, second});
    EXPECT_THAT(files(u"Home"_qs), SizeIs(2));
    editSeries(rowOf(u"Yoga"_qs), Span::ThisTask,
               [](MVTask &task) { task.changeStatusType(TaskStatus::Done, false); });
    expectBoth({u"2026-11-26 14:00 - 2026-11-26 15:00 Review"_qs, second});

    {
        const ScriptedAlerts alerts({Alert::firstButton});
        TaskManager::deleteTasks({rowOf(u"Review"_qs)}, {});
    }
    expectBoth({second});
    EXPECT_EQ(at(u"2026-11-26"_qs, u"14:30"_qs), QStringList());

    // What it makes afterwards stands beside what was left.
    khal({u"new"_qs, u"-a"_qs, u"Work"_qs, u"2026-11-27"_qs, u"08:00"_qs, u"08:15"_qs, u"Call"_qs});
    pass();
    expectBoth({second, u"2026-11-27 08:00 - 2026-11-27 08:15 Call"_qs});
}

} // namespace
