#include "CoreTest.h"

#include "records/dates/MTDates.h"

#include "store/state/NotificationNames.h"
#include "support/FullDisk.h"
#include "support/OtherProgram.h"
#include "usernotifications/UserNotificationCenter.h"

#include <QCoreApplication>

#include <sqlite3.h>

namespace {

/// A shell that keeps what it is told, and answers as it is set.
class ToldShell : public ShellPort
{
public:
    struct Record
    {
        QStringList calls;
        QString badge;
        bool hasMainWindow = true;
        bool canCommit = true;
    };
    explicit ToldShell(Record &told)
        : record(told)
    {}
    void showMainWindow() override { record.calls.append(u"main"_qs); }
    void showStartWindow() override { record.calls.append(u"start"_qs); }
    bool hasMainWindow() const override { return record.hasMainWindow; }
    bool commitEditing() override { return record.canCommit; }
    void setBadgeLabel(const QString &label) override { record.badge = label; }

private:
    Record &record;
};

/// Writes down what appears.
class NotingPresenter : public NotificationPresenter
{
public:
    explicit NotingPresenter(QStringList &shownTexts)
        : texts(shownTexts)
    {}
    void present(const UserNotification &notification, Outcome) override
    {
        texts.append(notification.subtitle);
    }

private:
    QStringList &texts;
};

class Life : public CoreTest
{
protected:
    void launchWithShell()
    {
        quit();
        delegate = std::make_unique<AppDelegate>(std::make_unique<ToldShell>(told));
        delegate->applicationWillFinishLaunching();
        delegate->applicationDidFinishLaunching();
    }
    static QString setting(const QString &key) { return UserDefaults::standard().string(key); }

    ToldShell::Record told;
};

TEST_F(Life, LaunchForgetsWhatLastsForOneRunAndShowsTheMainWindow)
{
    UserDefaults::standard().setObject(settings::calendarState, 2);
    UserDefaults::standard().setObject(settings::calendarLastDate,
                                       QVariant::fromValue(localDate(2020, 1, 1)));
    launchWithShell();
    EXPECT_EQ(UserDefaults::standard().integer(settings::calendarState), 0);
    EXPECT_EQ(UserDefaults::standard().integer(settings::selectSortCategoryIndex), -1);
    EXPECT_FALSE(UserDefaults::standard().contains(settings::calendarLastDate));
    EXPECT_EQ(setting(settings::valueSwitchDatabase), u"0"_qs);
    EXPECT_EQ(told.calls, QStringList(u"main"_qs));
    EXPECT_TRUE(QDir(FileManager::appFolderURL() + u"/Orrelin Images"_qs).exists());
    EXPECT_TRUE(delegate->applicationShouldHandleReopen(true));
    EXPECT_EQ(told.calls.size(), 1);
    told.hasMainWindow = false;
    EXPECT_TRUE(delegate->applicationShouldHandleReopen(false));
    EXPECT_EQ(told.calls.last(), u"start"_qs);
}

TEST_F(Life, TheBadgeFollowsEverySaveOfATask)
{
    launchWithShell();
    EXPECT_EQ(told.badge, QString());
    const TaskPtr task =
        add(u"missed"_qs, TaskType::Appointment, localDate(2026, 11, 20, 9), localDate(2026, 11, 20, 10));
    QCoreApplication::processEvents();
    EXPECT_EQ(told.badge, u"1"_qs);
    MVTask(task).changeStatusType(TaskStatus::Done, true);
    QCoreApplication::processEvents();
    EXPECT_EQ(told.badge, QString());
    EXPECT_EQ(task->expirationDate(), localDate(2026, 11, 21, 9, 15));
}

TEST_F(Life, ActivationWithoutCalendarsWritesDownThatThereAreNone)
{
    const LogCapture log;
    delegate->applicationDidBecomeActive();
    EXPECT_TRUE(log.lines().contains(u"SYNC:NO - ACCESS APP TO iCALENDAR"_qs));
    EXPECT_EQ(setting(settings::sumStatuses), u"0"_qs);
    EXPECT_EQ(setting(settings::isAccessToCalendar), u"NO"_qs);
    EXPECT_EQ(setting(settings::applicationDidBecomeActive), u"YES"_qs);
    const TaskPtr repeating = add(u"weekly"_qs);
    repeating->setRepeat(u"RRULE FREQ=WEEKLY"_qs);
    MVTask copy(repeating);
    copy.changeStatusType(TaskStatus::Done, false);
    EXPECT_EQ(copy.status, TaskStatus::Open) << "A repeating task cannot be edited without its calendar";
    delegate->applicationDidResignActive();
    copy.changeStatusType(TaskStatus::Done, false);
    EXPECT_EQ(copy.status, TaskStatus::Done);
}

TEST_F(Life, AnActivationAfterATravelCountsDaysByTheNewZone)
{
    const Date noon = localDate(2026, 11, 21, 12);
    EXPECT_EQ(MTDates::startOfCurrentDay(noon), localDate(2026, 11, 21));
    qputenv("TZ", "Asia/Tokyo");
    delegate->applicationDidBecomeActive();
    EXPECT_EQ(MTDates::startOfCurrentDay(noon), noon - Seconds(20 * 3600))
        << "noon in Berlin is 20:00 in Tokyo";
    qputenv("TZ", "Europe/Berlin");
    delegate->applicationDidBecomeActive();
    EXPECT_EQ(MTDates::startOfCurrentDay(noon), localDate(2026, 11, 21));
}

TEST_F(Life, EveryAlertIsScheduledWithItsSave)
{
    for (const QString &title : {u"one"_qs, u"two"_qs}) {
        const TaskPtr task =
            add(title, TaskType::EmailCall, {}, localDate(2026, 11, title == u"one"_qs ? 22 : 23, 9));
        task->setAlert(localDate(2026, 11, 21, 10));
        task->setSecondAlert(localDate(2026, 11, 21, 9));
    }
    delegate->applicationDidResignActive();
    const auto scheduled = UserNotificationCenter::defaultUserNotificationCenter().scheduledNotifications();
    ASSERT_EQ(scheduled.size(), 2u) << "alerts in the past make none";
    EXPECT_EQ(scheduled[0].subtitle, u"one"_qs);
    EXPECT_EQ(scheduled[0].deliveryDate, localDate(2026, 11, 21, 10));
    ObjectPtr clicked;
    const Observation observation = NotificationCenter::defaultCenter().addObserver(
        notifications::clickTableSearch, [&clicked](const ObjectPtr &one) { clicked = one; });
    delegate->userNotificationCenterDidActivateNotification(scheduled[0].userInfo.value(u"TASK_ID_KEY"_qs));
    EXPECT_EQ(clicked, DBWorker::getFirstTaskByTitle(u"one"_qs));
}

TEST_F(Life, AnAlertRingsOnceWhateverBecomesOfTheListOfScheduledOnes)
{
    const QString list = FileManager::appFolderURL() + u"/Notifications.json"_qs;
    QStringList shown;
    const auto connect = [&] {
        delegate->startUserNotifications(std::make_unique<NotingPresenter>(shown));
        return std::exchange(shown, {});
    };
    const auto clockAt = [](int hour, int minute) {
        Clock::setSource([now = localDate(2026, 11, 21, hour, minute)] { return now; });
    };
    EXPECT_EQ(connect(), QStringList());
    const TaskPtr seen = add(u"seen"_qs);
    seen->setAlert(localDate(2026, 11, 21, 10));
    const TaskPtr missed = add(u"missed"_qs);
    missed->setAlert(localDate(2026, 11, 21, 11));
    missed->setSecondAlert(localDate(2026, 11, 21, 16));
    const TaskPtr done = add(u"done"_qs);
    done->setAlert(localDate(2026, 11, 21, 11));
    done->setStatus(TaskStatus::Done);
    EXPECT_FALSE(DBWorker::saveContext());
    clockAt(10, 1);
    UserNotificationCenter::defaultUserNotificationCenter().deliverDue();
    EXPECT_EQ(std::exchange(shown, {}), QStringList(u"seen"_qs));

    // Killed, so to speak: nothing is told of the end.
    delegate.reset();
    UserNotificationCenter::defaultUserNotificationCenter().close();
    ASSERT_TRUE(QFile::remove(list));
    writeElsewhere(storePath(), "INSERT INTO EntityTask (id, title, type, status, dueSomeDay, alert) SELECT "
                                "'other', 'from elsewhere', 0, 0, 0, alert + 1800 FROM EntityTask WHERE "
                                "title = 'missed'");
    clockAt(12, 0);
    launch();
    const QStringList digest = connect();
    ASSERT_EQ(digest.size(), 1);
    EXPECT_TRUE(digest.first().startsWith(u"2 alerts"_qs)) << digest.first().toStdString();
    EXPECT_TRUE(digest.first().contains(u"missed, from elsewhere"_qs)) << digest.first().toStdString();
    quit();
    UserNotificationCenter::defaultUserNotificationCenter().close();
    clockAt(12, 30);
    launch();
    EXPECT_EQ(connect(), QStringList());
    delegate->applicationDidBecomeActive();
    clockAt(16, 1);
    UserNotificationCenter::defaultUserNotificationCenter().deliverDue();
    EXPECT_EQ(shown, QStringList(u"missed"_qs)) << "its second alert";
}

TEST_F(Life, WhatRingsIsHeldAgainstTheStore)
{
    UserNotificationCenter &center = UserNotificationCenter::defaultUserNotificationCenter();
    for (const QString &title : {u"kept"_qs, u"done elsewhere"_qs, u"gone elsewhere"_qs, u"moved"_qs}) {
        add(title)->setAlert(localDate(2026, 11, 21, 10));
        EXPECT_FALSE(DBWorker::saveContext());
    }
    EXPECT_EQ(center.scheduledNotifications().size(), 4u);
    quit();
    center.close();
    writeElsewhere(storePath(), "UPDATE EntityTask SET status = 3 WHERE title = 'done elsewhere';"
                                "DELETE FROM EntityTask WHERE title = 'gone elsewhere';"
                                "UPDATE EntityTask SET alert = alert + 1800 WHERE title = 'moved'");
    Clock::setSource([now = localDate(2026, 11, 21, 10, 15)] { return now; });
    launch();
    // A task with an alert is saved before anything has rung: what is due is not there twice.
    add(u"another"_qs)->setAlert(localDate(2026, 11, 21, 12));
    EXPECT_FALSE(DBWorker::saveContext());
    QStringList shown;
    delegate->startUserNotifications(std::make_unique<NotingPresenter>(shown));
    EXPECT_EQ(std::exchange(shown, {}), QStringList(u"kept"_qs));
    delegate->applicationDidBecomeActive();
    EXPECT_EQ(shown, QStringList()) << "the next start of the window rings nothing again";
    Clock::setSource([now = localDate(2026, 11, 21, 10, 31)] { return now; });
    center.deliverDue();
    EXPECT_EQ(shown, QStringList(u"moved"_qs));
}

TEST_F(Life, SettingsAreComputedAtEachRead)
{
    const DataConteiner &shared = delegate->dataConteiner();
    UserDefaults &defaults = UserDefaults::standard();
    EXPECT_EQ(shared.leftIntervalAccessCalendar(), -2678400);
    for (const auto &[setting, seconds] :
         {std::pair(0, 8035200), std::pair(1, 16070400), std::pair(2, 31536000), std::pair(7, 16070400)}) {
        defaults.setObject(settings::syncPeriodType, setting);
        EXPECT_EQ(shared.rightIntervalAccessCalendar(), seconds);
    }
    for (const auto &[setting, occurrences] :
         {std::pair(0, 1), std::pair(1, 3), std::pair(2, 7), std::pair(5, 7)}) {
        defaults.setObject(settings::frequencyCalendarPeriod, setting);
        EXPECT_EQ(shared.calendarFrequencyDay(), occurrences);
    }
}

TEST_F(Life, QuittingWithAStoreThatCannotBeWrittenAsksOnceAndThenQuits)
{
    launchWithShell();
    told.canCommit = false;
    EXPECT_EQ(delegate->applicationShouldTerminate(), AppDelegate::TerminateReply::Cancel);
    told.canCommit = true;
    sqlite3 *other = nullptr;
    sqlite3_open(storePath().toUtf8().constData(), &other);
    ASSERT_EQ(sqlite3_exec(other, "BEGIN IMMEDIATE", nullptr, nullptr, nullptr), SQLITE_OK);
    context().insert<EntityNote>()->setTitle(u"not lost"_qs);
    {
        const ScriptedAlerts alerts({Alert::secondButton, Alert::firstButton});
        EXPECT_EQ(delegate->applicationShouldTerminate(), AppDelegate::TerminateReply::Cancel);
        ASSERT_EQ(alerts.asked().size(), 1u);
        EXPECT_EQ(alerts.asked()[0].message, u"Could not save changes while quitting. Quit anyway?"_qs);
        EXPECT_TRUE(alerts.asked()[0].informativeText.contains(u"locked"_qs)) << "it says why";
        EXPECT_EQ(alerts.asked()[0].buttons, QStringList({u"Quit anyway"_qs, u"Cancel"_qs}));
        EXPECT_EQ(delegate->applicationShouldTerminate(), AppDelegate::TerminateReply::Now);
        delegate->applicationWillTerminate();
        EXPECT_EQ(alerts.asked().size(), 2u);
        EXPECT_EQ(delegate->applicationShouldTerminate(AppDelegate::QuitWish::OfSystem),
                  AppDelegate::TerminateReply::Now)
            << "the system waits for no answer";
        EXPECT_EQ(alerts.asked().size(), 2u);
    }
    sqlite3_exec(other, "ROLLBACK", nullptr, nullptr, nullptr);
    sqlite3_close(other);
    quit();
    launch();
    EXPECT_EQ(DBWorker::allNote().first()->title(), u"not lost"_qs);
}

TEST_F(Life, EachCommandSaysThatItWasNotSavedAndTheProgramDoesNotGoOnAboutIt)
{
    const ScriptedAlerts alerts({Alert::firstButton, Alert::firstButton});
    const LogCapture log;
    {
        const FullDisk disk;
        for (size_t command = 1; command <= 2; ++command) {
            context().insert<EntityNote>()->setTitle(u"not lost"_qs);
            EXPECT_FALSE(DBWorker::saveOrTell());
            EXPECT_FALSE(DBWorker::saveOrTell()) << "a second save of the same command";
            EXPECT_EQ(alerts.asked().size(), command);
            QCoreApplication::processEvents();
        }
        delegate->applicationDidResignActive();
        delegate->applicationDidBecomeActive();
        QCoreApplication::processEvents();
        EXPECT_EQ(alerts.asked().size(), 2u) << "the user knows";
    }
    EXPECT_TRUE(DBWorker::saveOrTell());
    EXPECT_EQ(DBWorker::allNote().size(), 2);
}

TEST_F(Life, AStackThatWasForgottenIsOpenedAnew)
{
    add(u"kept"_qs);
    const ManagedObjectContext *former = &context();
    EXPECT_NE(former, nullptr);
    delegate->resetStack0();
    EXPECT_FALSE(delegate->hasManagedObjectContext());
    QCoreApplication::processEvents();
    EXPECT_NE(DBWorker::getFirstTaskByTitle(u"kept"_qs), nullptr);
}

TEST_F(Life, TheSampleStoreIsAnotherFileThatHidesNothing)
{
    const auto addHidden = [this](const QString &title) {
        const auto task = context().insert<EntityTask>();
        task->setTitle(title);
        task->setTypeCalendarID(u"gone"_qs);
        DBWorker::saveOrTell();
    };
    addHidden(u"mine"_qs);
    EXPECT_TRUE(DBWorker::allTasks().isEmpty());
    UserDefaults::standard().setObject(settings::valueSwitchDatabase, 1);
    EXPECT_TRUE(DBWorker::isSample());
    addHidden(u"sample"_qs);
    EXPECT_EQ(titles(DBWorker::allTasks()), QStringList(u"sample"_qs));
    EXPECT_TRUE(QFile::exists(FileManager::appFolderURL() + u"/Model11.sqlite"_qs));
    UserDefaults::standard().setObject(settings::valueSwitchDatabase, 0);
    EXPECT_TRUE(DBWorker::allTasks().isEmpty());
}

TEST_F(Life, AFetchThatFailsIsAnEmptyListAndALine)
{
    add(u"task"_qs);
    sqlite3 *other = nullptr;
    sqlite3_open(storePath().toUtf8().constData(), &other);
    ASSERT_EQ(sqlite3_exec(other, "ALTER TABLE EntityTask RENAME TO Gone", nullptr, nullptr, nullptr),
              SQLITE_OK);
    const LogCapture log;
    EXPECT_TRUE(DBWorker::getTasksWithoutCategories().isEmpty());
    EXPECT_TRUE(log.lines().join(u'\n').contains(u"Can't get task EntityTask: no such table"_qs))
        << qPrintable(log.lines().join(u'\n'));
    EXPECT_EQ(sqlite3_exec(other, "ALTER TABLE Gone RENAME TO EntityTask", nullptr, nullptr, nullptr),
              SQLITE_OK);
    sqlite3_close(other);
    EXPECT_EQ(titles(DBWorker::getTasksWithoutCategories()), QStringList(u"task"_qs));
}

TEST(LifeDeathTest, AStoreThatCannotBeOpenedEndsTheProgramAndIsLeftAsItIs)
{
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    FileManager::createAppFolder();
    const QString path = FileManager::appFolderURL() + u"/Model0.sqlite"_qs;
    QFile::remove(path);
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(QByteArray(4096, 'x'));
    file.close();
    EXPECT_EXIT(
        {
            AppDelegate delegate;
            delegate.applicationWillFinishLaunching();
        },
        testing::ExitedWithCode(EXIT_FAILURE), "Unresolved error.*Model0.sqlite.*not a database");
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll(), QByteArray(4096, 'x'));
    file.remove();
}

} // namespace
