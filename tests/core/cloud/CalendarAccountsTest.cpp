// Two computers follow one calendar account, and one of them gives it up.

#include "ReplicatedCalendars.h"

#include "calendarsync/CalendarStoreState.h"

namespace {

class SharedAccounts : public ReplicatedCalendars
{
protected:
    SharedAccounts()
    {
        forgetCalendars();
        for (int home : {0, 1}) {
            // Of its own, each has another calendar.
            const QString own = u"Own %1"_qs.arg(home);
            QDir().mkpath(calendars[home].path() + u"/Local/"_qs + own);
            settingsOf[home] = {
                {settings::savedChooseCalendars, u"Home"_qs + calendarstore::separator + own}};
        }
    }

    /// Each computer has settings of its own.
    void goTo(int home)
    {
        leave();
        forgetCalendars();
        for (const auto &[key, value] : settingsOf[home])
            UserDefaults::standard().setObject(key, value);
        present = home;
        turnTo(home);
    }
    void leave()
    {
        if (!present)
            return;
        devices.end();
        settingsOf[*present].clear();
        for (const QString &key : keys()) {
            if (UserDefaults::standard().contains(key))
                settingsOf[*present][key] = UserDefaults::standard().object(key);
        }
        present.reset();
    }
    QString folderOf(int home) const { return calendars[home].path() + u"/Local/Home"_qs; }
    void giveUpAccount(int home)
    {
        EXPECT_TRUE(QDir().rename(folderOf(home), calendars[home].path() + u"/.away"_qs));
    }
    /// The account brings what the other computer has of it meanwhile.
    void setUpAccount(int home)
    {
        EXPECT_TRUE(QDir().rename(calendars[home].path() + u"/.away"_qs, folderOf(home)));
        carryEvents(1 - home, home);
    }
    /// Two appointments on both computers, one with all that only the program knows.
    void fill()
    {
        goTo(0);
        addOnCalendar(u"Dentist"_qs);
        addOnCalendar(u"Optician"_qs);
        const TaskPtr row = find(u"Dentist"_qs);
        row->setPriority(Priority::High);
        categoryTitle = firstCategory();
        row->setCategory(category(categoryTitle));
        const auto project = devices.context().insert<EntityProject>();
        project->setTitle(u"Health"_qs);
        row->setProject(project);
        const auto tag = devices.context().insert<EntityTags>();
        tag->setTitle(u"teeth"_qs);
        row->setTags({tag});
        const auto person = devices.context().insert<EntityContacts>();
        person->setFirstName(u"Ann"_qs);
        row->setDelegateToUser(person);
        save();
        devices.settle();
        carryEvents(0, 1);
        goTo(1);
        goTo(0);
        ASSERT_EQ(state(), whole);
    }
    /// What can be seen of the row of a title: one line for each row.
    QStringList state(const QString &title = u"Dentist"_qs)
    {
        QStringList lines;
        for (const TaskPtr &row : devices.context().fetch<EntityTask>(
                 EntityTask::fetchRequest().where(Predicate::format("title = %@", title)))) {
            QStringList words{row->priority() == Priority::High ? u"high"_qs : u"none"_qs};
            words += row->category() && row->category()->title() == categoryTitle ? u"category"_qs : u"-"_qs;
            words += row->project() ? row->project()->title() : u"-"_qs;
            words += row->tags().size() == 1 ? row->tags().front()->title() : u"-"_qs;
            words += row->delegateToUser() ? row->delegateToUser()->firstName() : u"-"_qs;
            lines.append(words.join(u' '));
        }
        return lines;
    }
    bool isShown(const QString &title)
    {
        bool isFound = false;
        for (const TaskPtr &task : DBWorker::allNotDoneTasks())
            isFound = isFound || task->title() == title;
        return isFound;
    }
    /// Both computers have both rows, with all that the user gave them.
    void expectWhole(const std::vector<int> &homes)
    {
        for (const int home : homes) {
            goTo(home);
            EXPECT_EQ(state(), whole) << home;
            EXPECT_EQ(rows(u"Optician"_qs), 1) << home;
            EXPECT_TRUE(isShown(u"Dentist"_qs)) << home;
        }
    }
    void deleteElsewhere(int home, const QByteArray &title)
    {
        for (const QString &name : events(home)) {
            QFile file(folderOf(home) + u'/' + name);
            ASSERT_TRUE(file.open(QIODevice::ReadOnly));
            if (file.readAll().contains(title))
                file.remove();
        }
    }

    const QStringList whole{u"high category Health teeth Ann"_qs};
    QString categoryTitle;
    std::map<QString, QVariant> settingsOf[2];
    std::optional<int> present;
};

} // namespace

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
