// Calendars that are renamed, and such as share a title: what names a calendar names it still.

#include "MoodyCalendarTest.h"

#include "calendarsync/CalendarChooser.h"

#include <gmock/gmock.h>

namespace {

using testing::SizeIs;

class CalendarRenames : public MoodyCalendarTest
{
protected:
    CalendarRenames() { UserDefaults::standard().setObject(settings::defaultCalendar, u"Work"_qs); }

    /// Tasks of each kind on "Work", of which a pass brings only the first.
    void fill()
    {
        make(draft(u"Near"_qs, 24, u"Work"_qs));
        make(draft(u"Done"_qs, 25, u"Work"_qs));
        tickOff(rowOf(u"Done"_qs));
        MVTask far = draft(u"Far"_qs, 24, u"Work"_qs);
        far.startDate = localDate(2030, 1, 1, 9);
        far.dueDate = localDate(2030, 1, 1, 10);
        make(far);
        MVTask undated = draft(u"Undated"_qs, 24, u"Work"_qs);
        undated.type = TaskType::ToDo;
        undated.startDate = undated.dueDate = std::nullopt;
        undated.dueSomeDay = true;
        undated.calendarTitle = u"Work"_qs;
        make(undated);
        activate();
        ASSERT_THAT(rows(), SizeIs(4));
    }
    /// So many that the user is asked before they go.
    static void fillMore()
    {
        for (int day = 16; day < 22; ++day)
            make(draft(u"More %1"_qs.arg(day), day, u"Work"_qs));
    }
    static QString setting(const QString &key) { return UserDefaults::standard().string(key); }
    static QStringList references()
    {
        QStringList found;
        for (const TaskPtr &row : DBWorker::hideNotAccessTasksFromArray(rows()))
            found.append(row->typeCalendarID() + u':' + row->calendarTitle());
        return found;
    }
    /// All four are shown on a calendar of that title, which is the default one, and nothing else is chosen.
    void expectFollowed(const QString &title)
    {
        for (int activation = 0; activation < 2; ++activation) {
            EXPECT_EQ(references(), QStringList(4, title + u':' + title));
            EXPECT_EQ(setting(settings::defaultCalendar), title);
            EXPECT_EQ(setting(settings::savedChooseCalendars), title);
            activate();
        }
        expectSettled();
    }
    void titles(const QStringList &wanted) const
    {
        EKEventStore elsewhere(std::make_shared<FolderBackend>(root.path()));
        QStringList found;
        const auto calendars = elsewhere.calendarsForEntityType(EKEntityType::Event);
        for (const EKCalendar &one : calendars.value())
            found.append(one.source.title + u'/' + one.title);
        EXPECT_EQ(found, wanted) << "nobody but the other program renames";
    }
    /// A calendar of another account.
    void makeOther(const QString &title) { QDir().mkpath(root.filePath(u"Office/"_qs + title)); }
    static EKCalendar calendarIn(const QString &account, const QString &title)
    {
        for (const EKCalendar &one : CalendarEvent::getAllCalendars()) {
            if (one.source.title == account && one.title == title)
                return one;
        }
        ADD_FAILURE() << "no such calendar";
        return {};
    }
    static QString referenceIn(const QString &account, const QString &title)
    {
        return CalendarEvent::identifierOfCalendar(calendarIn(account, title));
    }
    void look()
    {
        backend->refresh();
        activate();
    }
};

TEST_F(CalendarRenames, AreFollowedWhetherTheProgramRunsOrNot)
{
    choose({u"Work"_qs});
    fill();
    // While it runs.
    CalendarTest::rename(u"Work"_qs, u"Homework"_qs);
    look();
    expectFollowed(u"Homework"_qs);
    // "Home" is no part of it, and the other way about.
    CalendarTest::rename(u"Work"_qs, u"Ho"_qs);
    look();
    expectFollowed(u"Ho"_qs);
    // While it does not run.
    quit();
    CalendarTest::rename(u"Work"_qs, u"Crew"_qs);
    CalendarEvent::resetEventStore();
    launch();
    EXPECT_EQ(references().size(), 4) << "before the first activation too";
    activate();
    expectFollowed(u"Crew"_qs);
    // While the calendars are silent, and over a start without them.
    backend->setSilent(true);
    CalendarTest::rename(u"Work"_qs, u"Team"_qs);
    restart();
    activate();
    expectFollowed(u"Crew"_qs);
    backend->setSilent(false);
    look();
    expectFollowed(u"Team"_qs);
    titles({u"Local/Home"_qs, u"Local/Team"_qs});
}

TEST_F(CalendarRenames, OfAStoreThatKnowsTitlesAloneAreFollowed)
{
    choose({u"Work"_qs});
    fill();
    quit();
    UserDefaults::standard().removeObject(settings::calendarReferences);
    CalendarTest::rename(u"Work"_qs, u"Crew"_qs);
    makeOther(u"Work"_qs);
    CalendarEvent::resetEventStore();
    launch();
    EXPECT_EQ(references().size(), 4);
    activate();
    expectFollowed(u"Crew"_qs);
}

TEST_F(CalendarRenames, TasksThatAFormerVersionLostAreFoundOnce)
{
    choose({u"Work"_qs});
    fill();
    const auto lose = [](const TaskPtr &row) { row->setTypeCalendarID(u"Lab"_qs); };
    std::ranges::for_each(rows(), lose);
    EXPECT_FALSE(DBWorker::saveContext());
    quit();
    UserDefaults::standard().removeObject(settings::calendarReferences);
    UserDefaults::standard().removeObject(settings::lostNamesAreFound);
    CalendarEvent::resetEventStore();
    launch();
    EXPECT_EQ(references().size(), 0);
    activate();
    expectFollowed(u"Work"_qs);
    // Later on such a name is that of a calendar elsewhere.
    lose(rowOf(u"Undated"_qs));
    EXPECT_FALSE(DBWorker::saveContext());
    look();
    EXPECT_EQ(rowOf(u"Undated"_qs)->typeCalendarID(), u"Lab"_qs);
}

TEST_F(CalendarRenames, TheNameIsTheSameWhileACalendarCannotBeWritten)
{
    choose({u"Work"_qs});
    fill();
    backend->readOnlyTitles = {u"Local/Work"_qs};
    look();
    expectFollowed(u"Work"_qs);
    // At the first look of a program that has known titles alone.
    quit();
    UserDefaults::standard().removeObject(settings::calendarReferences);
    CalendarEvent::resetEventStore();
    launch();
    EXPECT_EQ(references().size(), 4);
    expectFollowed(u"Work"_qs);
    // Another one of the title does not take its place.
    backend->readOnlyTitles.clear();
    makeOther(u"Work"_qs);
    look();
    const QString other = referenceIn(u"Office"_qs, u"Work"_qs);
    for (const QStringList &readOnly : {QStringList(u"Local/Work"_qs), QStringList()}) {
        backend->readOnlyTitles = readOnly;
        look();
        expectFollowed(u"Work"_qs);
        EXPECT_EQ(referenceIn(u"Office"_qs, u"Work"_qs), other);
    }
    // One that was only read so far has the title alone from when it can be written.
    backend->readOnlyTitles = {u"Feasts"_qs};
    makeOther(u"Feasts"_qs);
    look();
    const QString readOnly = referenceIn(u"Office"_qs, u"Feasts"_qs);
    EXPECT_TRUE(readOnly.startsWith(u"Feasts[<±>]"_qs));
    EXPECT_TRUE(CalendarEvent::calendarOfIdentifier(readOnly)) << "its tasks are on it, chosen or not";
    backend->readOnlyTitles.clear();
    look();
    EXPECT_EQ(referenceIn(u"Office"_qs, u"Feasts"_qs), u"Feasts"_qs);
}

TEST_F(CalendarRenames, TwoAccountsHaveEachItsOwnOfOneTitle)
{
    choose({u"Work"_qs});
    fill();
    makeOther(u"Work"_qs);
    const QString office = root.filePath(u"Office/Work/there.ics"_qs);
    put(office, "BEGIN:VCALENDAR\r\nVERSION:2.0\r\nPRODID:-//x//EN\r\nBEGIN:VEVENT\r\nUID:there\r\n"
                "DTSTAMP:20260101T000000Z\r\nSUMMARY:There\r\nDTSTART:20261126T080000Z\r\n"
                "DTEND:20261126T090000Z\r\nEND:VEVENT\r\nEND:VCALENDAR\r\n");
    look();
    expectFollowed(u"Work"_qs);
    titles({u"Local/Home"_qs, u"Local/Work"_qs, u"Office/Work"_qs});
    // Chosen by the user it is another one, for tasks and for events.
    CalendarChooser chooser;
    int other = 0;
    for (int row = 0; row < static_cast<int>(chooser.rows().size()); ++row) {
        const EKCalendar *calendar = chooser.calendarAt(row);
        if (calendar && calendar->source.title == u"Office"_qs)
            other = row;
    }
    ASSERT_FALSE(chooser.isSelected(other));
    EXPECT_FALSE(CalendarEvent::calendarOfIdentifier(referenceIn(u"Office"_qs, u"Work"_qs)))
        << "nothing is written there yet";
    ASSERT_TRUE(chooser.toggle(other));
    activate();
    const TaskPtr there = rowOf(u"There"_qs);
    ASSERT_TRUE(there);
    EXPECT_EQ(there->calendarTitle(), u"Work"_qs);
    const QString reference = there->typeCalendarID();
    EXPECT_EQ(references().filter(reference + u':'), QStringList(reference + u":Work"_qs));
    rename(there, u"There too"_qs);
    make(draft(u"New there"_qs, 27, reference));
    EXPECT_TRUE(read(office).contains("SUMMARY:There too"));
    EXPECT_THAT(QDir(root.filePath(u"Office/Work"_qs)).entryList({u"*.ics"_qs}), SizeIs(2));
    EXPECT_THAT(files(u"Work"_qs), SizeIs(2));
    // What the first is called from now on does not concern the other.
    CalendarTest::rename(u"Work"_qs, u"Crew"_qs);
    look();
    EXPECT_EQ(references().filter(u"Crew:Crew"_qs).size(), 4);
    EXPECT_EQ(references().filter(reference + u":Work"_qs).size(), 2);
    EXPECT_EQ(setting(settings::savedChooseCalendars), u"CrewΩ"_qs + reference);
    EXPECT_EQ(setting(settings::defaultCalendar), u"Crew"_qs);
    // They change titles.
    CalendarTest::rename(u"Work"_qs, u"Work"_qs);
    put(root.filePath(u"Office/Work/displayname"_qs), "Crew");
    look();
    EXPECT_EQ(references().filter(u"Work:Work"_qs).size(), 4);
    EXPECT_EQ(references().filter(referenceIn(u"Office"_qs, u"Crew"_qs) + u":Crew"_qs).size(), 2);
    EXPECT_EQ(setting(settings::defaultCalendar), u"Work"_qs);
    expectSettled();
}

TEST_F(CalendarRenames, ACalendarThatTakesThePlaceOfOneThatHasGoneIsAnother)
{
    choose({u"Work"_qs});
    fill();
    QDir(folderOf(u"Work"_qs)).removeRecursively();
    makeOther(u"Work"_qs);
    look();
    // What was an event there went with it; the others are on no calendar.
    EXPECT_EQ(references(), QStringList(2, u":"_qs));
    EXPECT_TRUE(rowOf(u"Undated"_qs));
    EXPECT_TRUE(rowOf(u"Done"_qs));
    EXPECT_EQ(setting(settings::savedChooseCalendars), QString()) << "nobody has chosen it";
    EXPECT_THAT(CalendarEvent::getAllAccessCalendars(), SizeIs(0));
}

TEST_F(CalendarRenames, WhatIsKeptOfAMissingOneIsShownAndGoesToItsSuccessor)
{
    choose({u"Work"_qs});
    fill();
    fillMore();
    makeOther(u"Work"_qs);
    look();
    const QString office = referenceIn(u"Office"_qs, u"Work"_qs);
    choose({u"Work"_qs, office});
    ASSERT_TRUE(QDir().rename(folderOf(u"Work"_qs), root.filePath(u".away"_qs)));
    {
        const ScriptedAlerts alerts({Alert::secondButton});
        look();
        look();
        EXPECT_THAT(alerts.asked(), SizeIs(1));
    }
    const QStringList all(10, u"Work:Work"_qs);
    EXPECT_EQ(references(), all);
    EXPECT_EQ(referenceIn(u"Office"_qs, u"Work"_qs), office) << "it is no successor of it";
    // The account is set up again, and nobody has chosen the calendar yet.
    QDir().mkpath(root.filePath(u"New"_qs));
    ASSERT_TRUE(QDir().rename(root.filePath(u".away"_qs), root.filePath(u"New/Work"_qs)));
    for (int activation = 0; activation < 2; ++activation) {
        look();
        EXPECT_EQ(references(), all);
        EXPECT_EQ(setting(settings::savedChooseCalendars), u"WorkΩ"_qs + office);
    }
    choose({u"Work"_qs, office, referenceIn(u"New"_qs, u"Work"_qs)});
    for (int activation = 0; activation < 2; ++activation) {
        look();
        EXPECT_EQ(references(), all);
        EXPECT_EQ(referenceIn(u"New"_qs, u"Work"_qs), u"Work"_qs);
        EXPECT_EQ(setting(settings::savedChooseCalendars), office + u"ΩWork"_qs);
        EXPECT_EQ(setting(settings::defaultCalendar), u"Work"_qs);
    }
    // Its tasks are its own: what is written goes there.
    rename(rowOf(u"More 17"_qs), u"Moved in"_qs);
    QStringList found;
    for (const QString &name : QDir(root.filePath(u"New/Work"_qs)).entryList({u"*.ics"_qs}))
        found += QString::fromUtf8(read(root.filePath(u"New/Work/"_qs + name))).split(u"\r\n"_qs);
    EXPECT_TRUE(found.contains(u"SUMMARY:Moved in"_qs));
    expectSettled();
}

TEST_F(CalendarRenames, ARemovalIsFollowedOnceTheSampleIsLeft)
{
    choose({u"Work"_qs});
    fill();
    fillMore();
    UserDefaults::standard().setObject(settings::valueSwitchDatabase, 1);
    QDir(folderOf(u"Work"_qs)).removeRecursively();
    look();
    UserDefaults::standard().setObject(settings::valueSwitchDatabase, 0);
    EXPECT_EQ(setting(settings::savedChooseCalendars), u"Work"_qs);
    const ScriptedAlerts alerts({Alert::secondButton});
    look();
    look();
    EXPECT_THAT(alerts.asked(), SizeIs(1));
    EXPECT_EQ(references(), QStringList(10, u"Work:Work"_qs));
}

TEST_F(CalendarRenames, WhatIsTakenBackAfterOneIsOnTheCalendarStill)
{
    choose({u"Work"_qs});
    fill();
    deleteRow(rowOf(u"Undated"_qs));
    CalendarTest::rename(u"Work"_qs, u"Crew"_qs);
    look();
    // A new calendar of the former title has nothing of it.
    makeOther(u"Work"_qs);
    look();
    undo();
    EXPECT_EQ(references().size(), 4);
    EXPECT_EQ(CalendarEvent::calendarOfIdentifier(u"Work"_qs)->title, u"Crew"_qs);
    EXPECT_NE(referenceIn(u"Office"_qs, u"Work"_qs), u"Work"_qs);
    look();
    expectFollowed(u"Crew"_qs);
}

} // namespace
