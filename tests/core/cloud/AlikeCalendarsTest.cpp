// Two computers each have a calendar of their own, and the two are merely called alike.

#include "SharedAccounts.h"

namespace {

class AlikeCalendars : public SharedAccounts
{
protected:
    AlikeCalendars() { UserDefaults::standard().setObject(settings::frequencyCalendarPeriod, 2); }
    ~AlikeCalendars() override { UserDefaults::standard().removeObject(settings::frequencyCalendarPeriod); }
    void begin()
    {
        goTo(0);
        addOnCalendar(u"Dentist"_qs);
        addOnCalendar(u"Optician"_qs);
        goTo(1);
        goTo(0);
        goTo(1);
    }
    void edit(const QString &title, const std::function<void(MVTask &)> &change)
    {
        editRow(find(title), change);
    }
    /// The occurrence of so many days after the first.
    TaskPtr ofDay(int day)
    {
        return devices.context().fetchFirst<EntityTask>(EntityTask::fetchRequest().where(
            Predicate::format("startDate = %@", localDate(2026, 11, 23 + day, 9))));
    }
    void editRow(const TaskPtr &row, const std::function<void(MVTask &)> &change)
    {
        ASSERT_TRUE(row);
        MVTask copy(row);
        change(copy);
        EXPECT_TRUE(TaskManager::saveTaskTemp(copy, true));
        save();
        devices.settle();
    }
    void setDone(const QString &title, bool isDone)
    {
        edit(title, [isDone](MVTask &task) { task.status = isDone ? TaskStatus::Done : TaskStatus::Open; });
    }
    QStringList table()
    {
        QStringList lines;
        for (const TaskPtr &row : devices.context().fetch<EntityTask>(EntityTask::fetchRequest()))
            lines.append(row->title() + (row->status() == TaskStatus::Done ? u" done"_qs : QString()));
        lines.sort();
        return lines;
    }
    static QStringList calendar()
    {
        QStringList titles;
        const auto found = CalendarEvent::eventsForCalendars(CalendarEvent::getAllCalendars());
        for (const EKEvent &event : *found)
            titles.append(event.title);
        titles.sort();
        return titles;
    }
    /// The same rows on both, and each event once, on one of them.
    void expectEverywhere(const QStringList &rows, const char *step, int rounds = 1)
    {
        QStringList open = rows;
        open.removeIf([](const QString &line) { return line.endsWith(u" done"_qs); });
        const int here = *present;
        for (int round = 0; round < rounds; ++round) {
            QStringList events;
            for (const int home : {1 - here, here}) {
                goTo(home);
                EXPECT_EQ(table(), rows) << step << ", computer " << home << ", round " << round;
                events += calendar();
            }
            events.sort();
            EXPECT_EQ(events, open) << step << ", round " << round;
        }
    }
    /// The same rows on both, and the same events.
    void expectSame(const QStringList &rows)
    {
        for (const int home : {0, 1}) {
            goTo(home);
            EXPECT_EQ(table(), rows) << home;
            EXPECT_EQ(calendar(), rows) << home;
        }
    }
};

} // namespace

TEST_F(AlikeCalendars, FollowWhatTheOtherComputerDoesToTheirTasks)
{
    begin();
    expectEverywhere({u"Dentist"_qs, u"Optician"_qs}, "made");
    edit(u"Dentist"_qs, [](MVTask &task) { task.title = u"Surgeon"_qs; });
    expectEverywhere({u"Optician"_qs, u"Surgeon"_qs}, "renamed");
    setDone(u"Surgeon"_qs, true);
    expectEverywhere({u"Optician"_qs, u"Surgeon done"_qs}, "ticked off");
    setDone(u"Surgeon"_qs, false);
    expectEverywhere({u"Optician"_qs, u"Surgeon"_qs}, "opened again");
    goTo(0);
    edit(u"Surgeon"_qs, [](MVTask &task) { task.title = u"Doctor"_qs; });
    expectEverywhere({u"Doctor"_qs, u"Optician"_qs}, "renamed by the other one");
    goTo(1);
    const ScriptedAlerts yes({Alert::firstButton});
    TaskManager::deleteTasks({find(u"Optician"_qs)}, [] {});
    save();
    expectEverywhere({u"Doctor"_qs}, "deleted");
    EXPECT_FALSE(devices.context().undo());
    devices.settle();
    expectEverywhere({u"Doctor"_qs, u"Optician"_qs}, "there again", 2);
}

TEST_F(AlikeCalendars, FollowWhatTheOtherComputerDoesToASeries)
{
    const QString day = u"Standup"_qs;
    // What is said of one occurrence stays when the others are given another name, on either side of it.
    for (const auto &[alone, edited] : {std::pair(0, 2), std::pair(2, 1)}) {
        SCOPED_TRACE(alone);
        QFile file(folderOf(0) + u"/standup%1.ics"_qs.arg(alone));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("BEGIN:VCALENDAR\r\nVERSION:2.0\r\nPRODID:-//other//EN\r\nBEGIN:VEVENT\r\nUID:standup" +
                   QByteArray::number(alone) +
                   "\r\nDTSTAMP:20260101T000000Z\r\nSUMMARY:Standup\r\n"
                   "DTSTART;TZID=Europe/Berlin:20261123T090000\r\n"
                   "DTEND;TZID=Europe/Berlin:20261123T091500\r\nRRULE:FREQ=DAILY;COUNT=4\r\n"
                   "END:VEVENT\r\nEND:VCALENDAR\r\n");
        file.close();
        goTo(0);
        goTo(1);
        expectEverywhere({day, day, day, day}, "made");
        {
            const ScriptedAlerts only({Alert::firstButton});
            editRow(ofDay(alone), [](MVTask &task) { task.title = u"Talk"_qs; });
        }
        expectEverywhere({day, day, day, u"Talk"_qs}, "one renamed");
        {
            const ScriptedAlerts all({Alert::secondButton});
            editRow(ofDay(edited), [](MVTask &task) { task.title = u"Meeting"_qs; });
        }
        QStringList after(4, u"Meeting"_qs);
        after[alone] = u"Talk"_qs;
        after.sort();
        expectEverywhere(after, "the rest renamed");
        {
            const ScriptedAlerts only({Alert::firstButton});
            TaskManager::deleteTasks({ofDay(edited)}, [] {});
            save();
        }
        after.removeOne(u"Meeting"_qs);
        expectEverywhere(after, "one deleted", 2);
        goTo(0);
        for (const QString &name : QDir(folderOf(0)).entryList({u"*.ics"_qs}))
            QFile::remove(folderOf(0) + u'/' + name);
        goTo(1);
        goTo(0);
        expectEverywhere({}, "gone");
    }
}

TEST_F(AlikeCalendars, TakeOverTheTasksOfAComputerThatIsGone)
{
    begin();
    Replication &exchange = *devices.program().replication();
    for (const replication::Device &device : exchange.health().devices) {
        if (!device.isOwn) {
            EXPECT_FALSE(exchange.removeDevice(device.id));
        }
    }
    edit(u"Dentist"_qs, [](MVTask &task) { task.title = u"Surgeon"_qs; });
    goTo(1);
    EXPECT_EQ(table(), (QStringList{u"Optician"_qs, u"Surgeon"_qs}));
    EXPECT_EQ(calendar(), QStringList(u"Surgeon"_qs)) << "Nobody else writes it";
}

TEST_F(AlikeCalendars, CanBeTheSameWhoseEventsAreStillOnTheirWay)
{
    begin();
    edit(u"Dentist"_qs, [](MVTask &task) { task.title = u"Surgeon"_qs; });
    {
        const ScriptedAlerts yes({Alert::firstButton});
        TaskManager::deleteTasks({find(u"Optician"_qs)}, [] {});
        save();
    }
    // The account brings them before the other computer has heard of that, and after it has.
    leave();
    carryEvents(0, 1);
    goTo(1);
    EXPECT_EQ(table(), QStringList(u"Surgeon"_qs));
    EXPECT_EQ(calendar(), QStringList(u"Surgeon"_qs));
    goTo(0);
    EXPECT_EQ(table(), QStringList(u"Surgeon"_qs));
    EXPECT_EQ(calendar(), QStringList(u"Surgeon"_qs));
    leave();
    carryEvents(0, 1);
    expectSame({u"Surgeon"_qs});
    // Both have seen it now. Each writes its own, and the account carries it.
    edit(u"Surgeon"_qs, [](MVTask &task) { task.title = u"Doctor"_qs; });
    EXPECT_EQ(calendar(), QStringList(u"Doctor"_qs));
    leave();
    carryEvents(1, 0);
    expectSame({u"Doctor"_qs});
}
