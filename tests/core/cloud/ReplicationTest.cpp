#include "ReplicatedCalendars.h"

#include "cloud/DeviceHealth.h"

#include <algorithm>
#include <set>

TEST_F(ReplicatedCalendars, ShowOneRowForEachEventWhoeverMadeItFirst)
{
    turnTo(0);
    addOnCalendar(u"Dentist"_qs);
    ASSERT_EQ(events(0).size(), 1);
    // The row comes before its event has reached the calendars here.
    turnTo(1);
    EXPECT_EQ(rows(u"Dentist"_qs), 1) << "A pass leaves alone what it has never seen";
    EXPECT_EQ(events(1).size(), 0);
    carryEvents(0, 1);
    turnTo(1);
    EXPECT_EQ(rows(u"Dentist"_qs), 1);
    // A new event comes to both by the server, and both make a row of it while they are apart.
    addOnCalendar(u"Optician"_qs);
    ASSERT_EQ(events(1).size(), 2);
    devices.kill();
    carryEvents(1, 0);
    cutOff();
    turnTo(0);
    EXPECT_EQ(rows(u"Optician"_qs), 1) << "Made by the pass";
    find(u"Optician"_qs)->setPriority(Priority::High);
    save();
    devices.settle();
    joinAgain();
    for (const int home : {1, 0, 1, 0}) {
        turnTo(home);
        for (const QString &title : {u"Dentist"_qs, u"Optician"_qs})
            EXPECT_EQ(rows(title), 1) << home << qPrintable(title);
        EXPECT_EQ(events(home).size(), 2);
    }
    // Another program deletes one: the row goes on both, and nothing brings it back.
    turnTo(1);
    for (const QString &name : events(1)) {
        QFile file(calendars[1].path() + u"/Local/Home/"_qs + name);
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        if (file.readAll().contains("Dentist"))
            file.remove();
    }
    carryEvents(1, 0);
    for (const int home : {0, 1, 0}) {
        turnTo(home);
        EXPECT_EQ(rows(u"Dentist"_qs), 0) << home;
        EXPECT_EQ(rows(u"Optician"_qs), 1) << home;
        EXPECT_EQ(events(home).size(), 1) << home;
    }
}

TEST_F(ReplicatedCalendars, GiveATaskOneEventThatBothWriteWhileTheyAreApart)
{
    const auto uids = [this](int home) {
        QByteArrayList found;
        for (const QString &name : events(home)) {
            QFile file(calendars[home].path() + u"/Local/Home/"_qs + name);
            EXPECT_TRUE(file.open(QIODevice::ReadOnly));
            for (const QByteArray &line : file.readAll().split('\n')) {
                if (line.startsWith("UID:"))
                    found.append(line.trimmed());
            }
        }
        std::ranges::sort(found);
        return found;
    };
    // Neither may use the calendars when it is made.
    turnTo(0, false);
    addOnCalendar(u"Dentist"_qs);
    turnTo(1, false);
    ASSERT_EQ(rows(u"Dentist"_qs), 1);
    cutOff();
    turnTo(0);
    EXPECT_EQ(events(0).size(), 1);
    cutOff();
    turnTo(1);
    EXPECT_EQ(events(1).size(), 1);
    EXPECT_EQ(uids(0), uids(1)) << "In the account it is one";
    joinAgain();
    for (const int home : {0, 1, 0}) {
        turnTo(home);
        EXPECT_EQ(rows(u"Dentist"_qs), 1) << home;
        EXPECT_EQ(events(home).size(), 1) << home;
        EXPECT_EQ("UID:" + find(u"Dentist"_qs)->calendarID().toUtf8(), uids(home).value(0)) << home;
    }
    devices.end();

    // The account has brought the event of the other one before the calendars may be used here.
    turnTo(0, false);
    addOnCalendar(u"Optician"_qs);
    turnTo(1, false);
    ASSERT_EQ(rows(u"Optician"_qs), 1);
    cutOff();
    turnTo(0);
    EXPECT_EQ(events(0).size(), 2);
    cutOff();
    carryEvents(0, 1);
    turnTo(1);
    EXPECT_EQ(rows(u"Optician"_qs), 1);
    EXPECT_EQ(uids(1), uids(0));
    joinAgain();
    for (const int home : {1, 0, 1}) {
        turnTo(home);
        EXPECT_EQ(rows(u"Optician"_qs), 1) << home;
        EXPECT_EQ(uids(home).size(), 2) << home;
    }
}

TEST_F(ReplicatedCalendars, WhatLiesOnACalendarThatOnlyTheOtherHasIsShown)
{
    turnTo(0);
    addOnCalendar(u"Dentist"_qs);
    ASSERT_TRUE(QDir(calendars[1].path() + u"/Local"_qs).rename(u"Home"_qs, u"Elsewhere"_qs));
    // The settings of the other computer know nothing of the calendar either.
    devices.end();
    forgetCalendars();
    const auto shown = [this] {
        QStringList titles;
        for (const TaskPtr &task : DBWorker::allNotDoneTasks())
            titles.append(task->title());
        return titles;
    };
    turnTo(1);
    EXPECT_TRUE(shown().contains(u"Dentist"_qs));
    EXPECT_EQ(rows(u"Dentist"_qs), 1);
    // One that is there is for the user to choose.
    ASSERT_TRUE(QDir(calendars[1].path() + u"/Local"_qs).rename(u"Elsewhere"_qs, u"Home"_qs));
    turnTo(1);
    EXPECT_FALSE(shown().contains(u"Dentist"_qs));
}

TEST_F(ReplicationTest, TwoComputersHoldTheSameRecordsOnce)
{
    devices.turnTo(0);
    const int categories = count("EntityCategory");
    const int phoneTypes = count("EntityPhoneType");
    ASSERT_GT(categories, 0);
    const QString title = firstCategory();
    add(u"Paint the door"_qs)->setCategory(category(title));
    save();
    devices.turnTo(1);
    ASSERT_NE(find(u"Paint the door"_qs), nullptr);
    EXPECT_EQ(count("EntityCategory"), categories) << "What both were born with is there once";
    EXPECT_EQ(count("EntityPhoneType"), phoneTypes);
    EXPECT_EQ(find(u"Paint the door"_qs)->category()->title(), title);
    find(u"Paint the door"_qs)->setTitle(u"Paint the gate"_qs);
    add(u"Call Ann"_qs);
    save();
    devices.turnTo(0);
    EXPECT_EQ(count("EntityCategory"), categories);
    EXPECT_NE(find(u"Paint the gate"_qs), nullptr);
    EXPECT_EQ(find(u"Paint the gate"_qs)->category()->title(), title);
    EXPECT_EQ(inbox().size(), 2);
    // The search finds what came in.
    EXPECT_EQ(
        devices.context().count(
            FetchRequest("EntitySearchIndex").where(Predicate::format("string contains[cd] %@", u"gate"_qs))),
        1);
}

TEST_F(ReplicationTest, WhatIsFiledUnderADoubleThatWentStaysFiled)
{
    // The second computer files a task under its own category before it hears of the first one.
    devices.turnTo(0);
    const QString title = firstCategory();
    const int categories = count("EntityCategory");
    add(u"On the first"_qs)->setCategory(category(title));
    save();
    const QString away = devices.sharedFolder() + u"/Orrelin"_qs;
    devices.end();
    ASSERT_TRUE(QDir().rename(away, away + u"-away"_qs));
    devices.turnTo(1);
    add(u"On the second"_qs)->setCategory(category(title));
    save();
    devices.end();
    // The stick of the second one is copied to where that of the first one is.
    const QDir second(away + u"/Orrelin CoreData"_qs);
    for (const QString &device : second.entryList(QDir::Dirs | QDir::NoDotAndDotDot))
        ASSERT_TRUE(QDir().rename(second.filePath(device), away + u"-away/Orrelin CoreData/"_qs + device));
    ASSERT_TRUE(QDir(away).removeRecursively());
    ASSERT_TRUE(QDir().rename(away + u"-away"_qs, away));
    for (const int home : {0, 1, 0, 1}) {
        devices.turnTo(home);
        EXPECT_EQ(count("EntityCategory"), categories);
        for (const QString &task : {u"On the first"_qs, u"On the second"_qs}) {
            ASSERT_NE(find(task), nullptr) << home;
            ASSERT_NE(find(task)->category(), nullptr) << home << qPrintable(task);
            EXPECT_EQ(find(task)->category()->title(), title);
        }
        // Both had the first place in the Inbox.
        std::set<qint64> positions;
        for (const TaskPtr &task : DBWorker::allInboxTasks())
            positions.insert(task->position().value_or(0));
        EXPECT_EQ(positions.size(), size_t(DBWorker::allInboxTasks().size()));
    }
}

TEST_F(ReplicationTest, AnEditBeatsADeletionThatDidNotKnowOfIt)
{
    devices.turnTo(0);
    add(u"Paint the door"_qs);
    devices.turnTo(1);
    ASSERT_NE(find(u"Paint the door"_qs), nullptr);
    devices.end();
    // Apart from each other: one edits, one deletes.
    devices.turnTo(0);
    const QString away = devices.sharedFolder() + u"/Orrelin"_qs;
    find(u"Paint the door"_qs)->setDetails(u"in green"_qs);
    save();
    devices.kill();
    ASSERT_TRUE(QDir().rename(away, away + u"-away"_qs));
    devices.turnTo(1);
    devices.context().deleteObject(find(u"Paint the door"_qs));
    save();
    devices.settle();
    EXPECT_EQ(find(u"Paint the door"_qs), nullptr);
    devices.end();
    ASSERT_TRUE(QDir(away).removeRecursively());
    ASSERT_TRUE(QDir().rename(away + u"-away"_qs, away));
    for (const int home : {0, 1, 0}) {
        devices.turnTo(home);
        ASSERT_NE(find(u"Paint the door"_qs), nullptr) << home;
        EXPECT_EQ(find(u"Paint the door"_qs)->details(), u"in green"_qs);
    }
}

TEST_F(ReplicationTest, ACopiedOrRestoredStoreIsAnotherDevice)
{
    devices.turnTo(0);
    add(u"Before the copy"_qs);
    devices.end();
    const QString store = devices.storePath(0);
    const QString copy = devices.sharedFolder() + u"/copy.sqlite"_qs;
    ASSERT_TRUE(QFile::copy(store, copy));
    devices.turnTo(0);
    add(u"After the copy"_qs);
    devices.turnTo(1);
    ASSERT_NE(find(u"After the copy"_qs), nullptr);
    devices.end();
    // The copy is put back, and the user goes on with it.
    ASSERT_TRUE(QFile::remove(store) && QFile::copy(copy, store));
    QFile::remove(store + u"-wal"_qs);
    QFile::remove(store + u"-shm"_qs);
    devices.turnTo(0);
    EXPECT_NE(find(u"After the copy"_qs), nullptr) << "What was lost comes back from the folder";
    add(u"After the return"_qs);
    devices.turnTo(1);
    for (const QString &title : {u"Before the copy"_qs, u"After the copy"_qs, u"After the return"_qs})
        EXPECT_NE(find(title), nullptr) << qPrintable(title);
}

TEST_F(ReplicationTest, AFolderThatComesBackIsUsedAtOnce)
{
    devices.turnTo(0);
    add(u"before"_qs);
    devices.turnTo(1);
    devices.turnTo(0);
    devices.end();
    const QString away = devices.sharedFolder() + u".away"_qs;
    ASSERT_TRUE(QDir().rename(devices.sharedFolder(), away));
    devices.turnToAlone(0);
    EXPECT_TRUE(DeviceHealth::of(nullptr).isCutOff);
    add(u"meanwhile"_qs);
    find(u"before"_qs)->setTitle(u"after"_qs);
    save();
    int told = 0;
    const Observation telling =
        NotificationCenter::defaultCenter().addObserver(notifications::sharingChanged, [&told] { ++told; });
    ASSERT_TRUE(QDir().rename(away, devices.sharedFolder()));
    const QDeadlineTimer deadline(10'000);
    while (!devices.program().replication() && !deadline.hasExpired()) {
        QThread::msleep(1);
        QCoreApplication::processEvents();
    }
    ASSERT_TRUE(devices.program().replication());
    EXPECT_GT(told, 0);
    devices.settle();
    // What is saved from here on is told once.
    add(u"then"_qs);
    devices.settle();
    for (const int home : {1, 0}) {
        devices.turnTo(home);
        QStringList titles = inbox();
        titles.sort();
        EXPECT_EQ(titles, (QStringList{u"after"_qs, u"meanwhile"_qs, u"then"_qs})) << home;
    }
    EXPECT_FALSE(DeviceHealth::of(devices.program().replication()).isCutOff);
}
