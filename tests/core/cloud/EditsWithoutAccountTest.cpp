// What the user does on a computer without the calendar reaches its events by the computer that has it.

#include "SharedAccounts.h"

namespace {

class EditsWithoutAccount : public SharedAccounts
{
protected:
    EditsWithoutAccount() { UserDefaults::standard().setObject(settings::frequencyCalendarPeriod, 2); }
    ~EditsWithoutAccount() override
    {
        UserDefaults::standard().removeObject(settings::frequencyCalendarPeriod);
    }
    /// Both have the rows; only the second one has the account still, and knows that.
    void begin()
    {
        fill();
        if (HasFatalFailure())
            return;
        parted();
    }
    void parted()
    {
        leave();
        giveUpAccount(0);
        goTo(0);
        goTo(1);
        goTo(0);
    }
    /// A daily meeting of six days, on both computers.
    void beginWithSeries()
    {
        for (const QTemporaryDir &root : calendars) {
            QFile file(root.path() + u"/Local/Home/standup.ics"_qs);
            ASSERT_TRUE(file.open(QIODevice::WriteOnly));
            file.write(
                "BEGIN:VCALENDAR\r\nVERSION:2.0\r\nPRODID:-//other//EN\r\nBEGIN:VEVENT\r\nUID:standup\r\n"
                "DTSTAMP:20260101T000000Z\r\nSUMMARY:Standup\r\nDTSTART;TZID=Europe/Berlin:"
                "20261123T090000\r\nDTEND;TZID=Europe/Berlin:20261123T091500\r\n"
                "RRULE:FREQ=DAILY;COUNT=6\r\nEND:VEVENT\r\nEND:VCALENDAR\r\n");
        }
        goTo(0);
        goTo(1);
        parted();
    }
    /// Starts a computer, which takes in what has come, but does not look at its calendars yet.
    void startOnly(int home)
    {
        prepareStart(home);
        devices.turnTo(home);
    }
    void prepareStart(int home)
    {
        leave();
        forgetCalendars();
        for (const auto &[key, value] : settingsOf[home])
            UserDefaults::standard().setObject(key, value);
        present = home;
        CalendarEvent::resetEventStore();
        EKEventStore::setSharedBackend(std::make_shared<FolderBackend>(calendars[home].path()));
        PlatformConfiguration::setAuthorization(u"events"_qs, 3);
    }
    void edit(const QString &title, const std::function<void(MVTask &)> &change)
    {
        const TaskPtr row = find(title);
        ASSERT_TRUE(row);
        MVTask copy(row);
        change(copy);
        EXPECT_TRUE(TaskManager::saveTaskTemp(copy, true));
    }
    TaskPtr occurrence(const QString &day)
    {
        for (const TaskPtr &row : devices.context().fetch<EntityTask>(EntityTask::fetchRequest())) {
            if (row->dueDate() && wallClock(*row->dueDate()).mid(5, 5) == day)
                return row;
        }
        return nullptr;
    }
    void editOccurrence(const QString &day, Span span, const std::function<void(MVTask &)> &change)
    {
        const TaskPtr row = occurrence(day);
        ASSERT_TRUE(row) << qPrintable(day);
        MVTask copy(row);
        change(copy);
        const ScriptedAlerts alerts({span == Span::ThisTask ? Alert::firstButton : Alert::secondButton});
        EXPECT_TRUE(TaskManager::saveTaskTemp(copy, true));
        EXPECT_EQ(alerts.asked().size(), 1);
    }
    void removeRow(const TaskPtr &row)
    {
        ASSERT_TRUE(row);
        const ScriptedAlerts alerts({Alert::firstButton, Alert::firstButton});
        TaskManager::deleteTasks({row}, [] {});
        save();
        EXPECT_GE(alerts.asked().size(), 1);
    }
    /// "11-23 10:00 Title", one for each row, and in the same words what its events are.
    QStringList table()
    {
        QStringList lines;
        for (const TaskPtr &row : devices.context().fetch<EntityTask>(EntityTask::fetchRequest())) {
            const OptionalDate date = row->startDate() ? row->startDate() : row->dueDate();
            lines.append((date ? wallClock(*date).mid(5, 11) : QString()) + u' ' + row->title() +
                         (row->status() == TaskStatus::Done ? u" done"_qs : QString()));
        }
        lines.sort();
        return lines;
    }
    static QStringList calendar()
    {
        QStringList lines;
        const auto found = CalendarEvent::eventsForCalendars(CalendarEvent::getAllCalendars());
        for (const EKEvent &event : *found)
            lines.append(wallClock(*event.startDate).mid(5, 11) + u' ' + event.title);
        lines.sort();
        return lines;
    }
    /// The second computer and its calendar, then the first one, and back again. The first one runs then.
    void expectEverywhere(const QStringList &lines, const char *step)
    {
        QStringList open = lines;
        open.removeIf([](const QString &line) { return line.endsWith(u" done"_qs); });
        for (const int home : {1, 0, 1}) {
            goTo(home);
            EXPECT_EQ(table(), lines) << step << ", computer " << home;
            if (home == 1) {
                EXPECT_EQ(calendar(), open) << step;
                EXPECT_TRUE(devices.context().pendingOutbox().empty()) << step;
            }
        }
        goTo(0);
    }
    void undo()
    {
        EXPECT_FALSE(devices.context().undo());
        devices.settle();
    }
    QString fileOf(int home, const QByteArray &words) const
    {
        for (const QString &name : events(home)) {
            const QString path = folderOf(home) + u'/' + name;
            QFile file(path);
            if (file.open(QIODevice::ReadOnly) && file.readAll().contains(words))
                return path;
        }
        return {};
    }
    void replaceIn(const QString &path, const QByteArray &former, const QByteArray &words)
    {
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::ReadOnly)) << qPrintable(path);
        QByteArray text = file.readAll();
        file.close();
        ASSERT_TRUE(text.contains(former)) << text.constData();
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(text.replace(former, words));
    }
    QByteArray textOfEvents(int home) const
    {
        QByteArray text;
        for (const QString &name : events(home)) {
            QFile file(folderOf(home) + u'/' + name);
            if (file.open(QIODevice::ReadOnly))
                text += file.readAll();
        }
        return text;
    }

    static constexpr auto dentist = "11-23 10:00 Dentist";
    static constexpr auto optician = "11-23 10:00 Optician";
    static QStringList lines(std::initializer_list<const char *> list)
    {
        QStringList all;
        for (const char *line : list)
            all.append(QString::fromLatin1(line));
        return all;
    }
};

void moveToWednesday(MVTask &task)
{
    task.startDate = localDate(2026, 11, 25, 12, 0);
    task.dueDate = localDate(2026, 11, 25, 13, 0);
}

} // namespace

TEST_F(EditsWithoutAccount, ReachTheEventsByTheOtherComputer)
{
    ASSERT_NO_FATAL_FAILURE(begin());
    edit(u"Dentist"_qs, [](MVTask &task) { task.title = u"Surgeon"_qs; });
    edit(u"Surgeon"_qs, [](MVTask &task) {
        moveToWednesday(task);
        task.details = u"bring the card"_qs;
    });
    expectEverywhere(lines({optician, "11-25 12:00 Surgeon"}), "renamed and moved");
    EXPECT_TRUE(textOfEvents(1).contains("bring the card"));
    EXPECT_EQ(state(u"Surgeon"_qs), whole);
    edit(u"Optician"_qs, [](MVTask &task) { task.status = TaskStatus::Done; });
    expectEverywhere(lines({"11-23 10:00 Optician done", "11-25 12:00 Surgeon"}), "ticked off");
    EXPECT_EQ(events(1).size(), 1);
    undo();
    expectEverywhere(lines({optician, "11-25 12:00 Surgeon"}), "opened again");
    EXPECT_EQ(events(1).size(), 2);
    undo();
    expectEverywhere(lines({optician, "11-23 10:00 Surgeon"}), "moved back");
    undo();
    expectEverywhere(lines({dentist, optician}), "renamed back");
    EXPECT_EQ(state(), whole);
}

TEST_F(EditsWithoutAccount, DeleteTheEventWithTheRow)
{
    ASSERT_NO_FATAL_FAILURE(begin());
    removeRow(find(u"Dentist"_qs));
    expectEverywhere(lines({optician}), "deleted");
    EXPECT_EQ(events(1).size(), 1);
    undo();
    expectEverywhere(lines({dentist, optician}), "there again");
    EXPECT_EQ(events(1).size(), 2);
    EXPECT_EQ(state(), whole);
    // Not even known to the other one before it was taken back.
    removeRow(find(u"Optician"_qs));
    undo();
    expectEverywhere(lines({dentist, optician}), "taken back at once");
    removeRow(find(u"Optician"_qs));
    startOnly(1);
    goTo(0);
    undo();
    expectEverywhere(lines({dentist, optician}), "taken back before it was written");
}

TEST_F(EditsWithoutAccount, MeetThoseOfOtherProgramsAndOfTheOtherComputer)
{
    ASSERT_NO_FATAL_FAILURE(begin());
    edit(u"Dentist"_qs, [](MVTask &task) { task.title = u"Surgeon"_qs; });
    edit(u"Optician"_qs, moveToWednesday);
    replaceIn(fileOf(1, "SUMMARY:Dentist"), "SUMMARY:Dentist", "LOCATION:Main Street\r\nSUMMARY:Dentist");
    replaceIn(fileOf(1, "SUMMARY:Optician"), "SUMMARY:Optician", "SUMMARY:Glasses");
    expectEverywhere(lines({"11-23 10:00 Surgeon", "11-25 12:00 Glasses"}), "both other fields");
    EXPECT_TRUE(textOfEvents(1).contains("Main Street"));
    ASSERT_TRUE(find(u"Surgeon"_qs)->location());
    EXPECT_EQ(find(u"Surgeon"_qs)->location()->title(), u"Main Street"_qs);
    // Both are edited at once: the later hand prevails in each field, on both and in the calendar.
    edit(u"Surgeon"_qs, [](MVTask &task) { task.title = u"Hospital"_qs; });
    edit(u"Glasses"_qs, [](MVTask &task) { task.title = u"Lenses"_qs; });
    leave();
    const QString away = devices.sharedFolder() + u"/Orrelin"_qs;
    ASSERT_TRUE(QDir().rename(away, away + u" away"_qs));
    const FrozenClock later(localDate(2026, 11, 21, 9, 45));
    startOnly(1);
    devices.program().applicationDidBecomeActive();
    edit(u"Surgeon"_qs, [](MVTask &task) { task.title = u"Doctor"_qs; });
    edit(u"Glasses"_qs, [](MVTask &task) { task.details = u"both pairs"_qs; });
    leave();
    ASSERT_TRUE(QDir(away).removeRecursively());
    ASSERT_TRUE(QDir().rename(away + u" away"_qs, away));
    expectEverywhere(lines({"11-23 10:00 Doctor", "11-25 12:00 Lenses"}), "at once");
    EXPECT_TRUE(textOfEvents(1).contains("both pairs"));
}

TEST_F(EditsWithoutAccount, AreLeftToAComputerThatHasTheCalendarItself)
{
    ASSERT_NO_FATAL_FAILURE(fill());
    edit(u"Dentist"_qs, [](MVTask &task) { task.title = u"Surgeon"_qs; });
    removeRow(find(u"Optician"_qs));
    EXPECT_EQ(calendar(), lines({"11-23 10:00 Surgeon"}));
    startOnly(1);
    EXPECT_EQ(table(), lines({"11-23 10:00 Surgeon"}));
    EXPECT_TRUE(devices.context().pendingOutbox().empty());
    EXPECT_EQ(calendar(), lines({dentist, optician}));
    leave();
    carryEvents(0, 1);
    expectEverywhere(lines({"11-23 10:00 Surgeon"}), "carried by the account");
}

TEST_F(EditsWithoutAccount, OutliveAKillBeforeTheyAreWritten)
{
    ASSERT_NO_FATAL_FAILURE(begin());
    edit(u"Dentist"_qs, [](MVTask &task) { task.title = u"Surgeon"_qs; });
    removeRow(find(u"Optician"_qs));
    // What comes is written a second later, and looked at before.
    prepareStart(1);
    devices.begin(1);
    const QDeadlineTimer deadline(10'000);
    while (devices.context().pendingOutbox().size() < 2 && !deadline.hasExpired())
        QCoreApplication::processEvents();
    ASSERT_EQ(devices.context().pendingOutbox().size(), 2);
    EXPECT_EQ(table(), lines({"11-23 10:00 Surgeon"}));
    // A pass finds the rows right until then.
    CalendarEvent::syncCalendarToAppWithTask(nullptr);
    EXPECT_EQ(table(), lines({"11-23 10:00 Surgeon"}));
    EXPECT_EQ(calendar(), lines({dentist, optician}));
    devices.kill();
    expectEverywhere(lines({"11-23 10:00 Surgeon"}), "after the kill");
}

TEST_F(EditsWithoutAccount, AreAboutOccurrencesOrTheRestOfASeries)
{
    ASSERT_NO_FATAL_FAILURE(beginWithSeries());
    editOccurrence(u"11-24"_qs, Span::ThisTask, [](MVTask &task) {
        task.title = u"Retro"_qs;
        task.startDate = localDate(2026, 11, 24, 15, 0);
        task.dueDate = localDate(2026, 11, 24, 16, 0);
    });
    const QString ofSeries = u"11-%1 09:00 Standup"_qs;
    QStringList all;
    for (const int day : {23, 25, 26, 27, 28})
        all.append(ofSeries.arg(day));
    all.insert(1, u"11-24 15:00 Retro"_qs);
    expectEverywhere(all, "one moved");
    removeRow(occurrence(u"11-26"_qs));
    all.removeAll(ofSeries.arg(26));
    expectEverywhere(all, "one deleted");
    editOccurrence(u"11-27"_qs, Span::ThisTask, [](MVTask &task) { task.status = TaskStatus::Done; });
    all.replaceInStrings(ofSeries.arg(27), ofSeries.arg(27) + u" done"_qs);
    expectEverywhere(all, "one ticked off");
    undo();
    all.replaceInStrings(u" done"_qs, QString());
    expectEverywhere(all, "one opened again");
    editOccurrence(u"11-23"_qs, Span::FutureTasks, [](MVTask &task) { task.title = u"Daily"_qs; });
    // Those that were changed alone are no part of it.
    all = lines({"11-23 09:00 Daily", "11-24 15:00 Retro", "11-25 09:00 Daily", "11-27 09:00 Standup",
                 "11-28 09:00 Daily"});
    expectEverywhere(all, "all others renamed");
}

TEST_F(EditsWithoutAccount, LeaveTheEventsOfACalendarThatTheProgramHasDropped)
{
    ASSERT_NO_FATAL_FAILURE(fill());
    leave();
    giveUpAccount(0);
    goTo(0);
    Replication &exchange = *devices.program().replication();
    for (const replication::Device &device : exchange.health().devices) {
        if (!device.isOwn) {
            EXPECT_FALSE(exchange.removeDevice(device.id));
        }
    }
    goTo(0);
    EXPECT_EQ(table(), QStringList());
    goTo(1);
    EXPECT_EQ(calendar(), lines({dentist, optician}));
    EXPECT_EQ(table(), lines({dentist, optician}));
}
