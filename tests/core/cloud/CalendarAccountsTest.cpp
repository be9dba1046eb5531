// Two computers follow one calendar account, and one of them gives it up.

#include "SharedAccounts.h"

TEST_F(SharedAccounts, GivenUpOnOneComputerTakeNothingFromTheOther)
{
    fill();
    leave();
    giveUpAccount(0);
    expectWhole({0, 1, 0, 1});
    EXPECT_EQ(events(1).size(), 2);
    // Set up again: one row for each event, with all that is the user's.
    leave();
    setUpAccount(0);
    expectWhole({0, 1, 0});
    for (const int home : {0, 1})
        EXPECT_EQ(events(home).size(), 2) << home;
    goTo(0);
    find(u"Optician"_qs)->setPriority(Priority::High);
    save();
    deleteElsewhere(0, "Dentist");
    carryEvents(0, 1);
    for (const int home : {0, 1, 0}) {
        goTo(home);
        EXPECT_EQ(state(), QStringList()) << home;
        EXPECT_EQ(state(u"Optician"_qs), QStringList(u"high - - - -"_qs)) << home;
    }
}

TEST_F(SharedAccounts, GivenUpOnOneComputerLeaveTheTasksToItsUser)
{
    fill();
    leave();
    giveUpAccount(0);
    goTo(0);
    // What the user does there is no wish for another event.
    find(u"Optician"_qs)->setPriority(Priority::High);
    MVTask copy(find(u"Dentist"_qs));
    copy.details = u"bring the card"_qs;
    EXPECT_TRUE(TaskManager::saveTaskTemp(copy, false));
    save();
    expectWhole({0, 1, 0});
    EXPECT_EQ(state(u"Optician"_qs), QStringList(u"high - - - -"_qs));
    goTo(0);
    MVTask done(find(u"Optician"_qs));
    done.status = TaskStatus::Done;
    EXPECT_TRUE(TaskManager::saveTaskTemp(done, false));
    save();
    for (const int home : {0, 1}) {
        goTo(home);
        ASSERT_EQ(rows(u"Optician"_qs), 1) << home;
        EXPECT_EQ(find(u"Optician"_qs)->status(), TaskStatus::Done) << home;
    }
    const QDir own(calendars[0].path() + u"/Local/Own 0"_qs);
    EXPECT_EQ(own.entryList({u"*.ics"_qs}), QStringList());
    leave();
    setUpAccount(0);
    goTo(0);
    EXPECT_EQ(events(0).size(), 1) << "What was ticked off leaves the calendar";
    carryEvents(0, 1);
    for (const int home : {1, 0}) {
        goTo(home);
        EXPECT_EQ(state(), whole) << home;
        ASSERT_EQ(rows(u"Optician"_qs), 1) << home;
        EXPECT_EQ(find(u"Optician"_qs)->status(), TaskStatus::Done) << home;
        EXPECT_EQ(events(home).size(), 1) << home;
    }
    EXPECT_EQ(own.entryList({u"*.ics"_qs}), QStringList());
}

TEST_F(SharedAccounts, SetUpAgainUnderAnotherIdentifierGetTheirRowsBack)
{
    fill();
    leave();
    giveUpAccount(0);
    expectWhole({0, 1});
    leave();
    // On the disk of the first computer the calendar has another place now, and the same title.
    const QString place = calendars[0].path() + u"/Local/Again"_qs;
    ASSERT_TRUE(QDir().rename(calendars[0].path() + u"/.away"_qs, place));
    QFile title(place + u"/displayname"_qs);
    ASSERT_TRUE(title.open(QIODevice::WriteOnly));
    title.write("Home");
    title.close();
    expectWhole({0, 1});
    goTo(0);
    for (const EKCalendar &one : CalendarCatalogue::getAllCalendars()) {
        if (one.title == u"Home"_qs)
            UserDefaults::standard().setObject(
                settings::savedChooseCalendars,
                UserDefaults::standard().string(settings::savedChooseCalendars) + calendarstore::separator +
                    CalendarCatalogue::identifierOfCalendar(one));
    }
    expectWhole({0, 1, 0});
    // The row and its event belong together again.
    MVTask copy(find(u"Dentist"_qs));
    copy.details = u"bring the card"_qs;
    EXPECT_TRUE(TaskManager::saveTaskTemp(copy, false));
    save();
    leave();
    QByteArray texts;
    const QStringList names = QDir(place).entryList({u"*.ics"_qs});
    EXPECT_EQ(names.size(), 2);
    for (const QString &name : names) {
        QFile file(place + u'/' + name);
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        texts += file.readAll();
    }
    EXPECT_TRUE(texts.contains("bring the card"));
}

TEST_F(SharedAccounts, LoseARowWithItsEventAlsoWhereTheAccountWasGivenUp)
{
    fill();
    leave();
    giveUpAccount(0);
    expectWhole({0, 1});
    leave();
    deleteElsewhere(1, "Dentist");
    for (const int home : {1, 0, 1}) {
        goTo(home);
        EXPECT_EQ(state(), QStringList()) << home;
        EXPECT_EQ(rows(u"Optician"_qs), 1) << home;
    }
    leave();
    setUpAccount(0);
    for (const int home : {0, 1, 0}) {
        goTo(home);
        EXPECT_EQ(state(), QStringList()) << home;
        EXPECT_EQ(rows(u"Optician"_qs), 1) << home;
        EXPECT_EQ(events(home).size(), 1) << home;
    }
}

TEST_F(SharedAccounts, LoseTheirRowsOnceTheLastComputerGivesThemUp)
{
    fill();
    leave();
    // Neither knows yet that the other one does the same.
    giveUpAccount(0);
    giveUpAccount(1);
    goTo(0);
    EXPECT_EQ(state(), whole);
    for (const int home : {1, 0, 1}) {
        goTo(home);
        EXPECT_EQ(state(), QStringList()) << home;
        EXPECT_EQ(rows(u"Optician"_qs), 0) << home;
    }
}

TEST_F(SharedAccounts, LoseTheirRowsAtOnceOnTheOnlyComputer)
{
    goTo(0);
    addOnCalendar(u"Dentist"_qs);
    leave();
    giveUpAccount(0);
    goTo(0);
    EXPECT_EQ(rows(u"Dentist"_qs), 0);
}

TEST_F(SharedAccounts, LoseTheirRowsWhereTheOtherComputerNeverHadThem)
{
    ASSERT_TRUE(QDir(calendars[1].path() + u"/Local"_qs).rmdir(u"Home"_qs));
    goTo(0);
    addOnCalendar(u"Dentist"_qs);
    leave();
    // It takes part, but has not come to look at its calendars.
    devices.turnTo(1);
    EXPECT_EQ(rows(u"Dentist"_qs), 1);
    devices.end();
    giveUpAccount(0);
    goTo(0);
    EXPECT_EQ(rows(u"Dentist"_qs), 1);
    goTo(1);
    EXPECT_EQ(rows(u"Dentist"_qs), 1);
    // The first computer hears now that it was the only one.
    for (const int home : {0, 1}) {
        goTo(home);
        EXPECT_EQ(rows(u"Dentist"_qs), 0) << home;
    }
}

TEST_F(SharedAccounts, DoNotWaitForAComputerThatIsGone)
{
    fill();
    leave();
    giveUpAccount(0);
    goTo(0);
    EXPECT_EQ(state(), whole);
    leave();
    {
        const FrozenClock later(localDate(2027, 2, 10));
        goTo(0);
        EXPECT_EQ(state(), whole) << "It may have been a long journey";
        leave();
    }
    {
        const FrozenClock later(localDate(2027, 2, 25));
        goTo(0);
        EXPECT_EQ(state(), QStringList()) << "Nothing was heard of it for ninety days";
        leave();
    }
}

TEST_F(SharedAccounts, DoNotWaitForAComputerThatTheUserHasRemoved)
{
    fill();
    leave();
    giveUpAccount(0);
    goTo(0);
    EXPECT_EQ(state(), whole);
    Replication &exchange = *devices.program().replication();
    for (const replication::Device &device : exchange.health().devices) {
        if (!device.isOwn) {
            EXPECT_FALSE(exchange.removeDevice(device.id));
        }
    }
    goTo(0);
    EXPECT_EQ(state(), QStringList());
    // It comes back all the same: its calendars give it one row for each event.
    for (const int home : {1, 0, 1}) {
        goTo(home);
        EXPECT_EQ(rows(u"Dentist"_qs), 1) << home;
        EXPECT_EQ(rows(u"Optician"_qs), 1) << home;
    }
    EXPECT_EQ(events(1).size(), 2);
}
