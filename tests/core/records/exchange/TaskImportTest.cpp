// iCalendar files that are read into tasks: our own without loss, those of others as far as a task can hold
// them.

#include "records/exchange/TaskImport.h"
#include "ExchangeTest.h"
#include "store/entities/EntityProject.h"

#include <gmock/gmock.h>

#include <QRegularExpression>

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

class TaskImportTest : public ExchangeTest
{
protected:
    TaskImportTest() { UserDefaults::standard().setObject(settings::frequencyCalendarPeriod, 2); }

    static void deny()
    {
        PlatformConfiguration::setAuthorization(u"events"_qs, 2);
        CalendarEvent::resetEventStore();
    }
    static TaskImportAccount import(const QByteArray &text)
    {
        QBuffer file;
        file.setData(text);
        file.open(QIODevice::ReadOnly);
        TaskImport import;
        import.addFile(file, u"tasks.ics"_qs);
        return import.import();
    }
    static QByteArray calendar(const QByteArray &components)
    {
        return "BEGIN:VCALENDAR\r\nVERSION:2.0\r\n" + components + "END:VCALENDAR\r\n";
    }
    static QByteArray todo(const QByteArray &lines)
    {
        return "BEGIN:VTODO\r\n" + lines + "\r\nEND:VTODO\r\n";
    }
    static QByteArray event(const QByteArray &lines)
    {
        return "BEGIN:VEVENT\r\n" + lines + "\r\nEND:VEVENT\r\n";
    }
    /// What a file says but for the moments of its writing.
    static QByteArray substanceOf(const QByteArray &text)
    {
        static const QRegularExpression stamps(u"(DTSTAMP|LAST-MODIFIED):.*\r\n"_qs);
        return QString::fromUtf8(text).remove(stamps).toUtf8();
    }
    void clear()
    {
        for (const TaskPtr &row : rows())
            context().deleteObject(row);
        ASSERT_FALSE(DBWorker::saveContext());
    }
    TaskPtr row(const QString &title)
    {
        return context().fetchFirst<EntityTask>(
            EntityTask::fetchRequest().where(Predicate::format("title = %@", title)));
    }
    /// Rows of every kind, as they could stand in a store.
    std::vector<TaskPtr> assorted()
    {
        const TaskPtr toDo = add(u"Paint, the; house"_qs, TaskType::ToDo, localDate(2026, 11, 24),
                                 localDate(2026, 11, 26, 23, 59, 59));
        toDo->setDetails(u"White\nand blue\\"_qs);
        toDo->setPriority(Priority::High);
        toDo->setStatus(TaskStatus::InProgress);
        toDo->setCategory(EntityCategory::title(u"Work"_qs));
        toDo->setTags({make<EntityTags>(u"paint, wet"_qs), make<EntityTags>(u"Sport"_qs)});
        const auto place = make<EntityLocation>(u"Garden"_qs);
        place->setLatitude(52.5);
        place->setLongitude(13.25);
        toDo->setLocation(place);
        toDo->setAlert(localDate(2026, 11, 24, 8));
        toDo->setSecondAlert(localDate(2026, 11, 24, 9));
        toDo->setCompany(make<EntityCompany>(u"Works"_qs));
        const auto ann = context().insert<EntityContacts>();
        ann->setFirstName(u"Ann Mary"_qs);
        ann->setLastName(u"Lee"_qs);
        toDo->setDelegateToUser(ann);
        toDo->setDelegatedSince(utcDate(2026, 11, 2, 8));
        toDo->setLastAsked(utcDate(2026, 11, 9, 8));
        const TaskPtr call = add(u"Call"_qs, TaskType::EmailCall, {}, localDate(2026, 11, 25, 14, 30));
        call->setAlert(localDate(2026, 11, 25, 14));
        call->setStatus(TaskStatus::Pending);
        const auto tag = make<EntityTags>(u"alone"_qs);
        call->setTags({tag});
        const TaskPtr meeting = add(u"Meeting"_qs, TaskType::Appointment, localDate(2026, 11, 25, 10),
                                    localDate(2026, 11, 25, 11));
        meeting->setAlert(localDate(2026, 11, 25, 9, 45));
        meeting->setPriority(Priority::Low);
        const TaskPtr met =
            add(u"Met"_qs, TaskType::Appointment, localDate(2026, 11, 18, 10), localDate(2026, 11, 18, 11));
        met->setStatus(TaskStatus::Done);
        met->setExpirationDate(utcDate(2026, 11, 18, 11));
        const TaskPtr someday = add(u"Sail"_qs);
        someday->setDueSomeDay(true);
        someday->setPosition(2);
        const TaskPtr due = add(u"Pay"_qs, TaskType::ToDo, {}, localDate(2026, 12, 1, 23, 59, 59));
        // It was done once.
        due->setExpirationDate(utcDate(2026, 11, 19, 12));
        const TaskPtr done =
            add(u"Swept"_qs, TaskType::ToDo, localDate(2026, 11, 20), localDate(2026, 11, 20, 23, 59, 59));
        done->setStatus(TaskStatus::Done);
        done->setExpirationDate(utcDate(2026, 11, 20, 12));
        EXPECT_FALSE(DBWorker::saveContext());
        return {toDo, call, meeting, someday, due, done, met};
    }
};

TEST_F(TaskImportTest, ReadsBackAllThatAnExportSays)
{
    deny();
    const QByteArray text = exported(ExportFormat::ICalendar, assorted());
    clear();
    const TaskImportAccount account = import(text);
    EXPECT_EQ(account.added, 7) << qPrintable(account.sentences().join(u'\n'));
    EXPECT_THAT(account.partial, IsEmpty());
    std::vector<TaskPtr> again;
    for (const QString &title :
         {u"Paint, the; house"_qs, u"Call"_qs, u"Meeting"_qs, u"Sail"_qs, u"Pay"_qs, u"Swept"_qs, u"Met"_qs})
        again.push_back(row(title));
    EXPECT_EQ(substanceOf(exported(ExportFormat::ICalendar, again)), substanceOf(text));
    EXPECT_EQ(again[0]->category(), EntityCategory::title(u"Work"_qs));
    EXPECT_THAT(again[0]->tags(), SizeIs(2)) << "one of them is called as a category is";
    EXPECT_FALSE(again[1]->category());
    EXPECT_EQ(again[5]->expirationDate(), utcDate(2026, 11, 20, 12));
    EXPECT_EQ(again[6]->expirationDate(), utcDate(2026, 11, 18, 11));
    EXPECT_EQ(again[4]->expirationDate(), utcDate(2026, 11, 19, 12));
    EXPECT_EQ(again[3]->position(), 2);
    EXPECT_EQ(again[0]->delegatedSince(), utcDate(2026, 11, 2, 8));
    EXPECT_EQ(again[0]->lastAsked(), utcDate(2026, 11, 9, 8));
    EXPECT_EQ(context().count(EntityContacts::fetchRequest()), 1);
    // Once more: nothing comes twice, nothing changes.
    const TaskImportAccount second = import(text);
    EXPECT_EQ(second.added, 0);
    EXPECT_EQ(second.same, 7) << qPrintable(second.sentences().join(u'\n'));
    ASSERT_FALSE(context().undo());
    EXPECT_THAT(rows(), IsEmpty()) << "one step takes all of it back";
}

TEST_F(TaskImportTest, MakesASeriesWithWhatIsLeftOutAndWhatWasEdited)
{
    const QByteArray text = calendar(
        event("UID:run\r\nSUMMARY:Run\r\nDTSTART;TZID=Europe/Berlin:20261120T070000\r\n"
              "DTEND;TZID=Europe/Berlin:20261120T080000\r\nRRULE:FREQ=DAILY;COUNT=6\r\n"
              "EXDATE;TZID=Europe/Berlin:20261122T070000") +
        event("UID:run\r\nSUMMARY:Run far\r\nRECURRENCE-ID;TZID=Europe/Berlin:20261124T070000\r\n"
              "DTSTART;TZID=Europe/Berlin:20261124T090000\r\nDTEND;TZID=Europe/Berlin:20261124T100000"));
    const TaskImportAccount account = import(text);
    EXPECT_EQ(account.added, 1) << qPrintable(account.sentences().join(u'\n'));
    QStringList shown;
    for (const TaskPtr &one : rows())
        shown << wallClock(*one->startDate()) + u' ' + one->title();
    shown.sort();
    EXPECT_THAT(shown, SizeIs(5)) << qPrintable(shown.join(u'\n'));
    EXPECT_FALSE(shown.join(u'\n').contains(u"2026-11-22"_qs)) << qPrintable(shown.join(u'\n'));
    ASSERT_TRUE(row(u"Run far"_qs));
    EXPECT_EQ(row(u"Run far"_qs)->startDate(), localDate(2026, 11, 24, 9));
    EXPECT_EQ(import(text).same, 1);
    EXPECT_THAT(rows(), SizeIs(5));
}

TEST_F(TaskImportTest, TakesOutOfASeriesTheDayThatWasDoneAtAnotherTime)
{
    const QByteArray text =
        calendar(event("UID:run\r\nSUMMARY:Run\r\nDTSTART;TZID=Europe/Berlin:20261120T070000\r\n"
                       "DTEND;TZID=Europe/Berlin:20261120T080000\r\nRRULE:FREQ=DAILY;COUNT=6") +
                 event("UID:run\r\nSUMMARY:Run far\r\nRECURRENCE-ID;TZID=Europe/Berlin:20261123T070000\r\n"
                       "X-MORVANE-STATUS:COMPLETED\r\nDTSTART;TZID=Europe/Berlin:20261124T090000\r\n"
                       "DTEND;TZID=Europe/Berlin:20261124T100000"));
    EXPECT_EQ(import(text).added, 1);
    const auto shown = [this] {
        QStringList all;
        for (const TaskPtr &one : rows())
            all << wallClock(*one->startDate()) + u' ' + one->title() + u' ' +
                       QString::number(one->calendarID().isEmpty());
        all.sort();
        return all;
    };
    const QStringList former = shown();
    EXPECT_THAT(former, SizeIs(6));
    ASSERT_TRUE(row(u"Run far"_qs));
    EXPECT_EQ(row(u"Run far"_qs)->status(), TaskStatus::Done);
    EXPECT_EQ(row(u"Run far"_qs)->startDate(), localDate(2026, 11, 24, 9));
    pass();
    EXPECT_EQ(shown(), former) << "the day of the series went, and not the one on which it was done";
}

TEST_F(TaskImportTest, WritesWhatHasADateToTheCalendarOnce)
{
    const QByteArray text = calendar(
        event("UID:party@elsewhere\r\nSUMMARY:Party\r\nDTSTART:20261127T190000Z\r\nDTEND:20261127T220000Z") +
        event("UID:trip\r\nSUMMARY:Trip\r\nDTSTART;VALUE=DATE:20261128\r\nDTEND;VALUE=DATE:20261130"));
    EXPECT_EQ(import(text).added, 2);
    EXPECT_THAT(eventsElsewhere(), SizeIs(2));
    EXPECT_EQ(row(u"Trip"_qs)->type(), TaskType::ToDo);
    EXPECT_EQ(row(u"Trip"_qs)->dueDate(), localDate(2026, 11, 29, 23, 59, 59));
    EXPECT_EQ(import(text).same, 2);
    pass();
    EXPECT_THAT(rows(), SizeIs(2));
    EXPECT_THAT(eventsElsewhere(), SizeIs(2));
}

TEST_F(TaskImportTest, KeepsWhatIsNewerHereAndTakesWhatIsNewerThere)
{
    deny();
    const auto said = [](const QByteArray &title, const QByteArray &stamp) {
        return calendar(todo("UID:roof\r\nSUMMARY:" + title + "\r\nLAST-MODIFIED:" + stamp));
    };
    EXPECT_EQ(import(said("Roof", "20261101T000000Z")).added, 1);
    MVTask edited(row(u"Roof"_qs));
    edited.details = u"Ask Bob"_qs;
    ASSERT_TRUE(TaskManager::saveTaskTemp(edited, true));
    EXPECT_THAT(import(said("New roof", "20261101T000000Z")).newerHere, ElementsAre(u"Roof"_qs));
    EXPECT_EQ(row(u"Roof"_qs)->details(), u"Ask Bob"_qs);
    EXPECT_THAT(import(said("New roof", "20261201T000000Z")).changed, ElementsAre(u"New roof"_qs));
    EXPECT_THAT(rows(), SizeIs(1));
    ASSERT_FALSE(context().undo());
    EXPECT_EQ(row(u"Roof"_qs)->details(), u"Ask Bob"_qs);
}

TEST_F(TaskImportTest, TakesFromOthersWhatATaskCanHold)
{
    deny();
    const TaskImportAccount account = import(calendar(
        todo("UID:1\r\nSUMMARY:Bake\r\nDUE:20261130T150000Z\r\nPRIORITY:3\r\nCATEGORIES:sweet,work\r\n"
             "URL:https://cake.example\r\nCONTACT:Baker\\, +49 1\r\nX-OTHER:1") +
        todo("UID:2\r\nSUMMARY:Cool\r\nDTSTART;VALUE=DATE:20261203\r\nSTATUS:CANCELLED") +
        todo("UID:3\r\nSUMMARY:Late\r\nDTSTART:20261203T090000Z\r\nDUE:20261201T090000Z") +
        event("UID:4\r\nSUMMARY:Nowhen") + todo("SUMMARY:Nameless") + todo("SUMMARY:Nameless") +
        "BEGIN:VJOURNAL\r\nUID:5\r\nSUMMARY:Diary\r\nDESCRIPTION:Rain\r\nEND:VJOURNAL\r\n"));
    EXPECT_EQ(account.added, 4) << qPrintable(account.sentences().join(u'\n'));
    EXPECT_THAT(account.refused, SizeIs(2)) << "called off, and without a date";
    const TaskPtr bake = row(u"Bake"_qs);
    ASSERT_TRUE(bake);
    EXPECT_EQ(bake->dueDate(), utcDate(2026, 11, 30, 15)) << "the moment stays";
    EXPECT_EQ(bake->priority(), Priority::High);
    EXPECT_EQ(bake->category(), EntityCategory::title(u"Work"_qs));
    ASSERT_THAT(bake->tags(), SizeIs(1));
    EXPECT_EQ(bake->tags().front()->title(), u"sweet"_qs);
    EXPECT_EQ(bake->details(), u"https://cake.example\nContacts: Baker, +49 1"_qs);
    EXPECT_EQ(row(u"Late"_qs)->dueDate(), utcDate(2026, 12, 1, 9));
    EXPECT_EQ(DBWorker::allNote().first()->detail(), u"Rain"_qs);
}

TEST_F(TaskImportTest, LosesNothingToADamagedNeighbour)
{
    deny();
    const QByteArray whole = todo("UID:a\r\nSUMMARY:Whole");
    const QByteArray damaged = "BEGIN:VCALENDAR\r\n" + whole + "BEGIN:VTODO\r\nUID:b\r\nSUMMARY:Cut\r\n" +
                               todo("UID:c\r\nSUMMARY:Next") +
                               todo("UID:d\r\nSUMMARY:" + QByteArray(3'000'000, 'x')) +
                               "BEGIN:VTODO\r\nBEGIN:VALARM\r\nEND:VTODO\r\n" +
                               todo("UID:e\r\nSUMMARY:Last") + "BEGIN:VTODO\r\nUID:f\r\nSUMM";
    const TaskImportAccount account = import(damaged);
    EXPECT_EQ(account.added, 3) << qPrintable(account.sentences().join(u'\n'));
    const std::string said = account.refused.join(u'\n').toStdString();
    EXPECT_THAT(said, HasSubstr("What begins in line 6 of \"tasks.ics\" is cut off."));
    EXPECT_THAT(said, HasSubstr("is too large."));
    EXPECT_THAT(said, HasSubstr("cannot be read."));
    for (const QByteArray &other : {QByteArray(), QByteArray("\0\xff\xfe", 3), QByteArray("BEGIN:VCARD\r\n"),
                                    QByteArray(5'000'000, 'y'), calendar({})})
        EXPECT_THAT(import(other).refused, SizeIs(1)) << other.left(20).constData();
}

TEST_F(TaskImportTest, BringsProjectsWithTheirTasks)
{
    deny();
    const auto house = make<EntityProject>(u"House"_qs);
    house->setStatus(TaskStatus::InProgress);
    house->setCreationDate(utcDate(2026, 11, 1));
    house->setCategory(EntityCategory::title(u"Work"_qs));
    const TaskPtr roof = add(u"Roof"_qs);
    roof->setProject(house);
    ASSERT_FALSE(DBWorker::saveContext());
    const QByteArray text = exported(ExportFormat::ICalendar, std::vector{house});
    clear();
    context().deleteObject(house);
    ASSERT_FALSE(DBWorker::saveContext());
    EXPECT_EQ(import(text).added, 2);
    EXPECT_EQ(context().count(EntityProject::fetchRequest()), 1);
    const TaskPtr again = row(u"Roof"_qs);
    ASSERT_TRUE(again && again->project());
    EXPECT_EQ(substanceOf(exported(ExportFormat::ICalendar, std::vector{again->project()})),
              substanceOf(text));
    EXPECT_EQ(import(text).same, 2);
    // What says something else here stays, and the user is told.
    again->project()->setTitle(u"Hut"_qs);
    ASSERT_FALSE(DBWorker::saveContext());
    EXPECT_EQ(import(text).newerHere, QStringList(u"Hut"_qs));
    EXPECT_EQ(again->project()->title(), u"Hut"_qs);
}

} // namespace
