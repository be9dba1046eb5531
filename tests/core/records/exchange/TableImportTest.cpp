// Tables of tasks, projects and notes that are read back: our own without loss, those of spreadsheets as far
// as they can be understood.

#include "ExchangeTest.h"
#include "calendarsync/CalendarOutbox.h"
#include "calendarsync/RecordsTransaction.h"
#include "foundation/Csv.h"
#include "foundation/Region.h"
#include "records/copies/TaskColumns.h"
#include "records/dates/MTDates.h"
#include "records/exchange/TableCells.h"
#include "records/exchange/TaskImport.h"
#include "records/people/ImportableContacts.h"
#include "store/entities/EntityProject.h"

#include <QTemporaryDir>

#include <gmock/gmock.h>

#include <cmath>

namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

// What is compared of two records

/// Rows have the seconds of a day's end or none, so minutes are compared.
QString shown(OptionalDate date)
{
    return date ? QString::number(std::floor(date->referenceSeconds() / 60), 'f', 0) : u"-"_qs;
}
QString shown(const QString &text)
{
    return text;
}
QString shown(std::optional<bool> value)
{
    return QString::number(value.value_or(false));
}
template <typename Number>
QString shown(std::optional<Number> value)
{
    return value ? QString::number(double(*value)) : u"-"_qs;
}
QString shown(const ContactPtr &person)
{
    return person ? person->firstName() + u'|' + person->lastName() : u"-"_qs;
}
QString shown(const std::shared_ptr<EntityLocation> &place)
{
    return place ? place->title() + shown(place->latitude()) + u' ' + shown(place->longitude()) : u"-"_qs;
}
QString shown(const ProjectPtr &project)
{
    return project ? project->title() + project->identifier() : u"-"_qs;
}
template <typename Titled>
QString shown(const std::shared_ptr<Titled> &record)
{
    return record ? record->title() : u"-"_qs;
}
template <typename Record>
QString shown(const std::vector<std::shared_ptr<Record>> &records)
{
    QStringList all;
    for (const auto &record : records)
        all << shown(record);
    all.sort();
    return all.join(u"; "_qs);
}

/// All that a task is, but for what its calendar gives it.
QString valuesOf(const EntityTask &task)
{
    static const QSet<QString> ofCalendars = {
        u"calendarID"_qs,     u"typeCalendarID"_qs, u"calendarTitle"_qs,  u"colorCalendarR"_qs,
        u"colorCalendarG"_qs, u"colorCalendarB"_qs, u"colorCalendarA"_qs, u"allowsContentModifications"_qs,
        u"remindID"_qs,       u"repeatInfoUser"_qs, u"rowIndex"_qs,       u"wasCreatedOffCalendar"_qs};
    QStringList values = {task.identifier()};
    taskcolumns::forEach([&](const auto &column) {
        const QString name = QString::fromLatin1(column.name.data(), qsizetype(column.name.size()));
        if (!ofCalendars.contains(name))
            values << name + u": "_qs + shown(column.of(task));
    });
    return values.join(u'\n');
}

QString valuesOf(const EntityProject &project)
{
    return QStringList{project.identifier(),
                       project.title(),
                       project.details(),
                       shown(project.status()),
                       shown(project.priority()),
                       shown(project.startDate()),
                       shown(project.dueDate()),
                       shown(project.creationDate()),
                       shown(project.expirationDate()),
                       shown(project.category()),
                       shown(project.delegateToUser()),
                       shown(project.task())}
        .join(u'\n');
}

QString valuesOf(const EntityNote &note)
{
    return QStringList{note.identifier(),          note.title(),          note.detail(),
                       shown(note.creationDate()), shown(note.contact()), shown(note.company())}
        .join(u'\n');
}

class TableImportTest : public ExchangeTest
{
protected:
    TableImportTest() { UserDefaults::standard().setObject(settings::frequencyCalendarPeriod, 2); }

    static void deny()
    {
        PlatformConfiguration::setAuthorization(u"events"_qs, 2);
        CalendarEvent::resetEventStore();
    }
    static TaskImportAccount import(const std::vector<QByteArray> &texts, const StepBlock &step = {})
    {
        TaskImport import;
        for (const QByteArray &text : texts) {
            QBuffer file;
            file.setData(text);
            file.open(QIODevice::ReadOnly);
            import.addFile(file, u"list.csv"_qs);
        }
        return import.import(step);
    }
    static TaskImportAccount import(const QByteArray &text) { return import(std::vector{text}); }
    static std::string said(const TaskImportAccount &account)
    {
        return account.sentences().join(u'\n').toStdString();
    }
    template <typename Record>
    std::vector<std::shared_ptr<Record>> all()
    {
        const auto found = context().fetch<Record>(Record::fetchRequest());
        return {found.begin(), found.end()};
    }
    template <typename Record>
    QStringList values()
    {
        QStringList values;
        for (const auto &record : all<Record>())
            values << valuesOf(*record);
        values.sort();
        return values;
    }
    /// Everything that a user has made.
    void clear()
    {
        const auto remove = [this](const auto &records) {
            for (const auto &record : records)
                context().deleteObject(record);
        };
        remove(all<EntityTask>());
        remove(all<EntityProject>());
        remove(all<EntityNote>());
        remove(all<EntityContacts>());
        remove(all<EntityCompany>());
        remove(all<EntityTags>());
        remove(all<EntityLocation>());
        ASSERT_FALSE(DBWorker::saveContext());
    }
    TaskPtr row(const QString &title)
    {
        return context().fetchFirst<EntityTask>(
            EntityTask::fetchRequest().where(Predicate::format("title = %@", title)));
    }
    ContactPtr person(const QString &first, const QString &last)
    {
        const auto made = context().insert<EntityContacts>();
        made->setFirstName(first);
        made->setLastName(last);
        return made;
    }

    /// Tasks with every field in all its forms.
    std::vector<TaskPtr> assorted()
    {
        const TaskPtr toDo = add(u"Paint, the; \"house\""_qs, TaskType::ToDo, localDate(2026, 11, 24),
                                 localDate(2026, 11, 26, 23, 59, 59));
        toDo->setDetails(u" White\nand \"blue\"\n\n=1+1 "_qs);
        toDo->setPriority(Priority::High);
        toDo->setStatus(TaskStatus::InProgress);
        toDo->setCategory(EntityCategory::title(u"Work"_qs));
        toDo->setTags({make<EntityTags>(u"paint, wet"_qs), make<EntityTags>(u"Sport"_qs)});
        const auto place = make<EntityLocation>(u"Garden"_qs);
        place->setLatitude(52.5);
        place->setLongitude(-13.25);
        toDo->setLocation(place);
        toDo->setAlert(localDate(2026, 11, 24, 8));
        toDo->setSecondAlert(localDate(2026, 11, 24, 9));
        toDo->setCompany(make<EntityCompany>(u"Works"_qs));
        toDo->setDelegateToUser(person(u"Ann"_qs, u"van der Lee, Jr."_qs));
        toDo->setDelegatedSince(utcDate(2026, 11, 2, 8));
        toDo->setLastAsked(utcDate(2026, 11, 9, 8));
        toDo->setPosition(3);
        const TaskPtr call = add(u"=Call"_qs, TaskType::EmailCall, {}, localDate(2026, 7, 25, 14, 30));
        call->setSecondAlert(localDate(2026, 7, 25, 14));
        call->setStatus(TaskStatus::Pending);
        call->setDelegateToUser(person(u""_qs, u"Kay"_qs));
        call->setTags({make<EntityTags>(u"alone, and"_qs)});
        const TaskPtr meeting = add(u"Meeting"_qs, TaskType::Appointment, localDate(2026, 11, 25, 10),
                                    localDate(2026, 11, 26, 0));
        meeting->setAlert(localDate(2026, 11, 25, 9, 45));
        meeting->setPriority(Priority::Low);
        meeting->setRepeat(u"Every RRULE FREQ=WEEKLY;INTERVAL=2;BYDAY=WE"_qs);
        meeting->setEndRepeat(localDate(2027, 1, 20, 23, 59, 59));
        const auto house = make<EntityProject>(u"House"_qs);
        const auto other = make<EntityProject>(u"House"_qs);
        meeting->setProject(house);
        const TaskPtr someday = add(u"Sail"_qs);
        someday->setDueSomeDay(true);
        someday->setProject(other);
        someday->setPosition(2);
        someday->setPriority(Priority::Medium);
        const TaskPtr inbox = add(u"Sort"_qs);
        inbox->setPosition(1);
        const TaskPtr due = add(u"Pay"_qs, TaskType::ToDo, {}, localDate(2026, 12, 1, 23, 59, 59));
        // It was done once, and is open again.
        due->setExpirationDate(utcDate(2026, 11, 19, 12));
        const TaskPtr done =
            add(u"Swept"_qs, TaskType::ToDo, localDate(2026, 11, 20), localDate(2026, 11, 20, 23, 59, 59));
        done->setStatus(TaskStatus::Done);
        done->setExpirationDate(utcDate(2026, 11, 20, 12));
        done->setRepeat(u"Every RRULE FREQ=DAILY"_qs);
        std::vector<TaskPtr> tasks = {toDo, call, meeting, someday, inbox, due, done};
        double age = 0;
        for (const TaskPtr &task : tasks) {
            task->setCreationDate(utcDate(2026, 10, 1, 8) + Seconds(age));
            task->setLastModificationDate(utcDate(2026, 11, 1, 8) + Seconds(age));
            age += 61.5;
            if (!task->priority())
                task->setPriority(Priority::None);
            if (!task->status())
                task->setStatus(TaskStatus::Open);
        }
        EXPECT_FALSE(DBWorker::saveContext());
        return tasks;
    }
};

TEST_F(TableImportTest, AProjectThatIsOnlyNamedBeginsAsANewOneUntilItsFileComes)
{
    const QTemporaryDir folder;
    const auto importPeople = [&folder](const QByteArray &text) {
        QFile file(folder.filePath(u"people.csv"_qs));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.write(text) == text.size());
        file.close();
        ImportableContacts list;
        list.add(ContactCards::ofFile(file.fileName()));
        while (list.readSome(1'000)) {
        }
        list.list().markShown(true);
        EXPECT_EQ(list.import([](const QByteArray &image) { return image; }).sentences(),
                  (QStringList{u"1 contact was imported."_qs, u"1 project is new."_qs}));
    };
    const QByteArray titles =
        "Title,Status,Priority,Start,Due,Category,Tasks,Notes,Created,Done on,Identifier\r\n";
    const QByteArray whole = titles + "Boat,Open,High,,,,,,2026-09-03T08:00:00+00:00,,"
                                      "0b9a4d6e-7c1f-4c62-9a59-4d2a3a1be001\r\n";
    const QByteArray wholeWithoutMore = QByteArray(whole).replace("High", "No Priority");
    struct Naming
    {
        const char *text;
        bool isOfPeople;
    };
    const auto namings =
        std::to_array<Naming>({{"First Name,Last Name,Projects\r\nAnn,Lee,Boat\r\n", true},
                               {"Title,Type,Due,Project\r\nPaint,ToDo,2026-12-01,Boat\r\n", false},
                               {"Title,Type,Due,Project,Project Identifier\r\nPaint,ToDo,2026-12-01,Boat,"
                                "0b9a4d6e-7c1f-4c62-9a59-4d2a3a1be001\r\n",
                                false}});
    for (std::size_t number = 0; number < 2 * namings.size(); ++number) {
        const auto &[text, isOfPeople] = namings[number / 2];
        const bool saysMore = number % 2 == 0;
        SCOPED_TRACE(text);
        clear();
        if (isOfPeople)
            importPeople(text);
        else
            EXPECT_EQ(import(text).added, 1);
        ASSERT_EQ(all<EntityProject>().size(), 1u);
        ProjectPtr boat = all<EntityProject>().front();
        EXPECT_EQ(boat->status(), TaskStatus::Open) << "so that filters find it";
        EXPECT_EQ(boat->priority(), Priority::None);
        EXPECT_EQ(boat->stage(), 0);
        EXPECT_EQ(boat->creationDate(), Clock::now());
        for (int time = 0; time < 2; ++time) {
            const TaskImportAccount account = import(saysMore ? whole : wholeWithoutMore);
            EXPECT_TRUE(account.newerHere.isEmpty()) << said(account);
            ASSERT_EQ(all<EntityProject>().size(), 1u) << "its own file completes it";
            boat = all<EntityProject>().front();
            EXPECT_EQ(boat->identifier(), u"0b9a4d6e-7c1f-4c62-9a59-4d2a3a1be001"_qs);
            EXPECT_EQ(boat->priority(), saysMore ? Priority::High : Priority::None);
            EXPECT_EQ(boat->stage(), 0);
            EXPECT_EQ(boat->creationDate(), utcDate(2026, 9, 3, 8));
            EXPECT_EQ(boat->delegateToUser().size(), isOfPeople ? 1u : 0u);
            EXPECT_EQ(boat->task().size(), isOfPeople ? 0u : 1u);
        }
    }
    // One that has got a title of its own is no longer the one that was named.
    clear();
    importPeople(namings[0].text);
    all<EntityProject>().front()->setTitle(u"Ship"_qs);
    ASSERT_FALSE(DBWorker::saveContext());
    importPeople("First Name,Last Name,Projects\r\nBob,Kay,Boat\r\n");
    EXPECT_EQ(all<EntityProject>().size(), 2u);
}

TEST_F(TableImportTest, TasksComeBackAsTheyWere)
{
    deny();
    const QByteArray text = exported(ExportFormat::Csv, assorted());
    const QStringList former = values<EntityTask>();
    clear();
    const TaskImportAccount account = import(text);
    EXPECT_EQ(said(account), "7 entries were imported.");
    const QStringList present = values<EntityTask>();
    ASSERT_EQ(present.size(), former.size());
    for (qsizetype place = 0; place < former.size(); ++place)
        EXPECT_EQ(present[place], former[place]);
    std::vector<TaskPtr> again;
    for (const QString &title : {u"Paint, the; \"house\""_qs, u"=Call"_qs, u"Meeting"_qs, u"Sail"_qs,
                                 u"Sort"_qs, u"Pay"_qs, u"Swept"_qs})
        again.push_back(row(title));
    EXPECT_EQ(exported(ExportFormat::Csv, again).toStdString(), text.toStdString());
    EXPECT_EQ(context().count(EntityContacts::fetchRequest()), 2);
    EXPECT_EQ(context().count(EntityProject::fetchRequest()), 2);

    // Once more: nothing comes twice, nothing changes.
    EXPECT_EQ(said(import(text)), "Nothing new was imported.\n7 were there already, just the same.");
    EXPECT_EQ(values<EntityTask>(), former);
    ASSERT_FALSE(context().undo());
    EXPECT_THAT(rows(), IsEmpty()) << "one step takes all of it back";
}

TEST_F(TableImportTest, ProjectsAndNotesComeBackWithTheirPeopleAndTasks)
{
    deny();
    const std::vector<TaskPtr> tasks = assorted();
    const auto house = make<EntityProject>(u"Roof, new"_qs);
    house->setDetails(u"Two\nlines"_qs);
    house->setStatus(TaskStatus::Done);
    house->setPriority(Priority::Medium);
    house->setStartDate(localDate(2026, 11, 1));
    house->setDueDate(localDate(2026, 12, 24, 23, 59, 59));
    house->setCategory(EntityCategory::title(u"HomeCategory"_qs));
    house->setDelegateToUser({tasks[0]->delegateToUser(), person(u"Bob Carl"_qs, u"Kay"_qs)});
    house->setExpirationDate(utcDate(2026, 11, 20, 12));
    tasks[0]->setProject(house);
    for (const auto &project : all<EntityProject>()) {
        project->setCreationDate(utcDate(2026, 10, 1, 8));
        project->setStatus(project->status().value_or(TaskStatus::Open));
        project->setPriority(project->priority().value_or(Priority::None));
    }
    const auto note = make<EntityNote>(u"Colours"_qs);
    note->setDetail(u"White\n- blue"_qs);
    note->setCreationDate(utcDate(2026, 10, 2, 8));
    note->setContact(tasks[0]->delegateToUser());
    note->setCompany(make<EntityCompany>(u"Paints"_qs));
    make<EntityNote>(u"Nobody's"_qs)->setCreationDate(utcDate(2026, 10, 2, 9));
    ASSERT_FALSE(DBWorker::saveContext());
    const QByteArray projectTable = exported(ExportFormat::Csv, all<EntityProject>());
    const QByteArray taskTable = exported(ExportFormat::Csv, tasks);
    const QByteArray noteTable = exported(ExportFormat::Csv, all<EntityNote>());
    const QStringList formerTasks = values<EntityTask>();
    const QStringList formerProjects = values<EntityProject>();
    const QStringList formerNotes = values<EntityNote>();
    for (const std::vector<QByteArray> &order :
         {std::vector{taskTable, projectTable, noteTable}, std::vector{noteTable, projectTable, taskTable}}) {
        clear();
        EXPECT_EQ(said(import(order)), "12 entries were imported.");
        EXPECT_EQ(values<EntityProject>(), formerProjects);
        EXPECT_EQ(values<EntityTask>(), formerTasks);
        EXPECT_EQ(values<EntityNote>(), formerNotes);
        EXPECT_EQ(import(order).same, 12);
    }
    // One after the other, the tasks first: they bring projects of which no more is known.
    clear();
    EXPECT_EQ(import(taskTable).added, 7);
    const TaskImportAccount later = import(projectTable);
    EXPECT_THAT(later.changed, ElementsAre(u"Roof, new"_qs)) << said(later);
    EXPECT_THAT(later.missingTasks, IsEmpty());
    EXPECT_EQ(all<EntityTask>().size(), 7u);
    // Without the table of tasks these are missing, and no empty ones are made.
    clear();
    EXPECT_THAT(said(import(projectTable)), HasSubstr("Tasks of projects that are in no table"));
    EXPECT_THAT(rows(), IsEmpty());
}

TEST_F(TableImportTest, ASeriesComesBackWithWhatIsLeftOutAndWhatWasEdited)
{
    MVTask run;
    run.title = u"Run"_qs;
    run.type = TaskType::Appointment;
    run.status = TaskStatus::Open;
    run.priority = Priority::None;
    run.startDate = localDate(2026, 11, 23, 7);
    run.dueDate = localDate(2026, 11, 23, 8);
    run.repeat = u"RRULE:FREQ=DAILY"_qs;
    run.endRepeat = localDate(2026, 11, 28, 23, 59, 59);
    run.typeCalendarID = u"Work"_qs;
    ASSERT_TRUE(TaskManager::saveTaskTemp(run, true));
    const auto onDay = [this](int day) -> TaskPtr {
        for (const TaskPtr &row : rows())
            if (MTDates::dayOfMonth(*row->startDate()) == day)
                return row;
        return nullptr;
    };
    ASSERT_THAT(rows(), SizeIs(6));
    {
        RecordsTransaction transaction;
        TaskManager::deleteTask(transaction, onDay(25));
        const TaskPtr moved = onDay(26);
        MVTask copy(moved);
        copy.title = u"Run far"_qs;
        copy.startDate = localDate(2026, 11, 26, 9);
        copy.dueDate = localDate(2026, 11, 26, 10);
        TaskManager::saveMemberOfSeries(transaction, copy, localDate(2026, 11, 26, 7), Span::ThisTask);
        onDay(27)->setTags({make<EntityTags>(u"wet"_qs)});
        ASSERT_FALSE(transaction.commit());
    }
    const QByteArray text = exported(ExportFormat::Csv, rows());
    const auto lines = [this] {
        QStringList shownRows;
        for (const TaskPtr &row : rows())
            shownRows << row->title() + wallClock(*row->startDate()) + wallClock(*row->dueDate()) +
                             shown(row->tags()) + row->calendarTitle() + shown(row->endRepeat()) +
                             QString::number(row->repeat().isEmpty());
        shownRows.sort();
        return shownRows;
    };
    const QStringList former = lines();
    ASSERT_THAT(former, SizeIs(5)) << qPrintable(former.join(u'\n'));
    for (const TaskPtr &row : rows())
        context().deleteObject(row);
    ASSERT_FALSE(DBWorker::saveContext());
    for (const QString &calendar : {u"Home"_qs, u"Work"_qs})
        for (const QString &file : files(calendar).keys())
            QFile::remove(folderOf(calendar) + u'/' + file);
    connectStore();
    EXPECT_EQ(said(import(text)), "5 entries were imported.");
    EXPECT_EQ(lines(), former);
    EXPECT_THAT(files(u"Work"_qs), SizeIs(1)) << "one series, and no event for each row";
    EXPECT_THAT(files(u"Home"_qs), IsEmpty());
    EXPECT_EQ(said(import(text)), "Nothing new was imported.\n5 were there already, just the same.");
    pass();
    EXPECT_EQ(lines(), former);
}

TEST_F(TableImportTest, AnOccurrenceOnAnotherDayStandsForTheOneThatIsMissing)
{
    QByteArray text = "Title,Type,Start,Due,Repeat,End Repeat,Series,Tags\n";
    for (const QByteArray day : {"27", "23", "24", "25"})
        text += "Run,Appointment,2026-11-" + day + "T07:00:00+01:00,2026-11-" + day +
                "T08:00:00+01:00,RRULE:FREQ=DAILY,2026-11-27,s,\"day " + day + "\nrun\"\n";
    text += "Run late,Appointment,2026-11-28T07:00:00+01:00,2026-11-28T08:00:00+01:00,,,s,\n"
            "Rest,Appointment,2026-11-29T07:00:00+01:00,2026-11-29T08:00:00+01:00,,,s,\n";
    EXPECT_EQ(said(import(text)), "6 entries were imported.");
    QStringList shownRows;
    for (const TaskPtr &row : rows())
        shownRows << wallClock(*row->startDate()).mid(8, 2) + u' ' + row->title() + u' ' + shown(row->tags());
    shownRows.sort();
    EXPECT_THAT(shownRows,
                ElementsAre(u"23 Run day 23; run"_qs, u"24 Run day 24; run"_qs, u"25 Run day 25; run"_qs,
                            u"27 Run day 27; run"_qs, u"28 Run late "_qs, u"29 Rest "_qs));
    EXPECT_THAT(eventsElsewhere(), SizeIs(6));
    ASSERT_FALSE(context().undo());
    EXPECT_THAT(rows(), IsEmpty());
    // Without calendars there is the first row until they are back, and the user is told.
    deny();
    const TaskImportAccount account = import(text);
    EXPECT_EQ(account.added, 2);
    EXPECT_THAT(account.partial, ElementsAre(u"Run"_qs));
}

TEST_F(TableImportTest, ComesBackInEveryLanguageAndEnglishIsUnderstoodInAll)
{
    deny();
    const QString locale = Region::localeIdentifier();
    const std::vector<TaskPtr> tasks = assorted();
    const auto house = make<EntityProject>(u"Roof"_qs);
    house->setStatus(TaskStatus::InProgress);
    house->setPriority(Priority::Low);
    house->setDueDate(localDate(2026, 12, 24, 23, 59, 59));
    house->setCategory(EntityCategory::title(u"Sport"_qs));
    house->setCreationDate(utcDate(2026, 10, 1, 8));
    house->setDelegateToUser({tasks[0]->delegateToUser()});
    const auto note = make<EntityNote>(u"Colours"_qs);
    note->setCreationDate(utcDate(2026, 10, 2, 8));
    note->setContact(tasks[1]->delegateToUser());
    ASSERT_FALSE(DBWorker::saveContext());
    const QByteArray english = exported(ExportFormat::Csv, tasks);
    const QStringList formerTasks = values<EntityTask>();
    const QString formerProject = valuesOf(*house);
    const QStringList formerNotes = values<EntityNote>();
    QString reader = u"zh_TW"_qs;
    for (const QString &language :
         {u"de_DE"_qs, u"ar_EG"_qs, u"es_ES"_qs, u"fr_FR"_qs, u"he_IL"_qs, u"it_IT"_qs, u"ja_JP"_qs,
          u"ko_KR"_qs, u"ms_MY"_qs, u"nb_NO"_qs, u"nl_NL"_qs, u"pt_PT"_qs, u"ru_RU"_qs, u"sv_SE"_qs,
          u"uk_UA"_qs, u"zh_CN"_qs, u"zh_TW"_qs}) {
        SCOPED_TRACE(qPrintable(language));
        Region::setLocale(language);
        const std::vector<QByteArray> tables = {exported(ExportFormat::Csv, all<EntityTask>()),
                                                exported(ExportFormat::Csv, all<EntityProject>()),
                                                exported(ExportFormat::Csv, all<EntityNote>())};
        EXPECT_NE(tables[0].left(tables[0].indexOf('\n')), english.left(english.indexOf('\n')));
        EXPECT_EQ(import(english).same, 7);
        clear();
        // Its words are understood by somebody of any other language.
        Region::setLocale(reader);
        reader = language;
        const TaskImportAccount account = import(tables);
        EXPECT_EQ(account.added, 11);
        EXPECT_EQ(account.sentences().size(), 1) << said(account);
        EXPECT_EQ(values<EntityTask>(), formerTasks);
        EXPECT_THAT(values<EntityProject>(), testing::Contains(formerProject));
        EXPECT_EQ(values<EntityNote>(), formerNotes);
    }
    Region::setLocale(locale);
}

TEST_F(TableImportTest, ReadsTablesOfSpreadsheets)
{
    deny();
    const TaskImportAccount account =
        import("sep=;\r\nTask;Due Date;Shoe Size;Status;Tags;Start;Assignee;Reminder;Priority\r\n"
               "Bake;24.11.2026;44;Completed;sweet, brown;;Bob Kay;;Normal\r\n"
               "Cook;24.11.26 14:30;;;;24.11.2026 13:00;\"Lee, Ann\";2026-11-24 12:00;urgent\r\n"
               "Ring;11/25/2026 2:30 PM;;x;;;;;\r\n"
               "Wash;31.2.2026;;;;;;;\r\n"
               "Turn;23.11.2026;;;;25.11.2026;;;\r\n"
               ";;;;;;;;\r\n"
               "Short;2026-11-27\r\n"
               ";28.11.2026;;;;;;;;;lost");
    EXPECT_EQ(account.added, 7);
    EXPECT_THAT(account.unread, ElementsAre(u"\"urgent\" in line 4"_qs, u"\"x\" in line 5"_qs,
                                            u"\"31.2.2026\" in line 6"_qs, u"\"25.11.2026\" in line 7"_qs));
    EXPECT_THAT(account.unknownColumns, ElementsAre(u"Shoe Size"_qs, u"#11"_qs));
    const TaskPtr bake = row(u"Bake"_qs);
    EXPECT_EQ(bake->status(), TaskStatus::Done);
    EXPECT_EQ(bake->type(), TaskType::ToDo);
    EXPECT_EQ(bake->priority(), Priority::Medium);
    EXPECT_EQ(shown(bake->tags()), u"brown; sweet"_qs);
    EXPECT_EQ(shown(bake->delegateToUser()), u"Bob|Kay"_qs);
    const TaskPtr cook = row(u"Cook"_qs);
    EXPECT_EQ(cook->type(), TaskType::Appointment);
    EXPECT_EQ(cook->startDate(), localDate(2026, 11, 24, 13));
    EXPECT_EQ(cook->dueDate(), localDate(2026, 11, 24, 14, 30));
    EXPECT_EQ(cook->alert(), localDate(2026, 11, 24, 12));
    EXPECT_EQ(cook->details(), u"Priority: urgent"_qs);
    EXPECT_EQ(shown(cook->delegateToUser()), u"Ann|Lee"_qs);
    EXPECT_EQ(row(u"Ring"_qs)->dueDate(), localDate(2026, 11, 25, 14, 30));
    EXPECT_EQ(row(u"Ring"_qs)->type(), TaskType::EmailCall);
    EXPECT_EQ(row(u"Wash"_qs)->details(), u"Due: 31.2.2026"_qs);
    EXPECT_FALSE(row(u"Wash"_qs)->dueDate());
    EXPECT_EQ(row(u"Turn"_qs)->details(), u"Start: 25.11.2026"_qs);
    EXPECT_EQ(shown(row(u"Short"_qs)->dueDate()), shown(localDate(2026, 11, 27, 23, 59)));
    EXPECT_TRUE(row(u"No Title"_qs));
    // The same once more, and with other columns in another order.
    EXPECT_EQ(import("Due Date\tTask\n2026-11-27\tShort\n").same, 1);
    EXPECT_THAT(rows(), SizeIs(7));
}

TEST_F(TableImportTest, DatesAreReadAsPeopleWriteThem)
{
    const auto written = [](const QString &text) {
        const auto date = tablecells::dateOf(text);
        return !date ? u"none"_qs : date->isDay ? wallClock(date->date).left(10) : wallClock(date->date);
    };
    const QString locale = Region::localeIdentifier();
    EXPECT_EQ(written(u"2026-11-24T10:00:00Z"_qs), wallClock(utcDate(2026, 11, 24, 10)));
    EXPECT_EQ(written(u"2026-11-24T10:00:00.5+05:30"_qs), wallClock(utcDate(2026, 11, 24, 4, 30)));
    EXPECT_EQ(written(u"1. 2. 2026"_qs), u"2026-02-01"_qs);
    EXPECT_EQ(written(u"2026/2/1 12:05 am"_qs), wallClock(localDate(2026, 2, 1, 0, 5)));
    Region::setLocale(u"en_US"_qs);
    EXPECT_EQ(written(u"2/1/2026"_qs), u"2026-02-01"_qs);
    EXPECT_EQ(written(u"24/11/26"_qs), u"2026-11-24"_qs);
    Region::setLocale(u"en_GB"_qs);
    EXPECT_EQ(written(u"2/1/2026"_qs), u"2026-01-02"_qs);
    EXPECT_EQ(written(u"11/24/2026"_qs), u"2026-11-24"_qs);
    Region::setLocale(locale);
    for (const QString &text : {u""_qs, u"tomorrow"_qs, u"2026-13-01"_qs, u"2026-02-29"_qs, u"24.11."_qs,
                                u"2026-11-24 25:00"_qs, u"2026-11-24 13:00 PM"_qs, u"2026-11-24x"_qs})
        EXPECT_EQ(written(text), u"none"_qs) << qPrintable(text);
}

TEST_F(TableImportTest, TakesOverWhatWasChangedInTheTableAndNotWhatWasChangedHere)
{
    deny();
    QByteArray text = exported(ExportFormat::Csv, assorted());
    clear();
    ASSERT_EQ(import(text).added, 7);
    text.replace("Sail", "Sail far");
    EXPECT_THAT(import(text).changed, ElementsAre(u"Sail far"_qs));
    const TaskPtr sail = row(u"Sail far"_qs);
    ASSERT_TRUE(sail);
    EXPECT_TRUE(sail->dueSomeDay().value_or(false));
    // A few columns say nothing of the others.
    const QByteArray few =
        "Identifier,Priority,Last changed\n" + sail->identifier().toUtf8() + ",High,2030-01-01T00:00:00Z\n";
    EXPECT_THAT(
        import("Title," + few.left(few.indexOf('\n')) + "\nSail far," + few.mid(few.indexOf('\n') + 1))
            .changed,
        SizeIs(1));
    EXPECT_EQ(sail->priority(), Priority::High);
    EXPECT_EQ(sail->position(), 2);
    EXPECT_TRUE(sail->project() && sail->dueSomeDay().value_or(false));
    // It was changed here since.
    const TaskImportAccount account = import(text);
    EXPECT_THAT(account.newerHere, ElementsAre(u"Sail far"_qs));
    EXPECT_EQ(account.same, 6);
    EXPECT_EQ(sail->priority(), Priority::High);
}

TEST_F(TableImportTest, KeepsUnknownColumnsInTheDetails)
{
    deny();
    const QByteArray text =
        "Title,Due,Qx1,,Notes\nPaint,2026-11-24,red,wet,Twice,more\nSweep,2026-11-25,,,\n";
    const TaskImportAccount account = import(text);
    EXPECT_EQ(account.added, 2);
    EXPECT_EQ(row(u"Paint"_qs)->details(), u"Twice\nQx1: red\n#4: wet\n#6: more"_qs);
    EXPECT_EQ(row(u"Sweep"_qs)->details(), QString());
    EXPECT_THAT(said(account), HasSubstr("Columns that mean nothing here stand in notes: Qx1, #4, #6."));
    EXPECT_EQ(import(text).same, 2) << "once more it says nothing else";
    // Titles are written in one language, whatever that of the reader is.
    EXPECT_EQ(import("Titel;Fällig;Priorität\nKühn;2026-11-24;Hoch\n").added, 1);
    EXPECT_EQ(row(u"Kühn"_qs)->priority(), Priority::High);
}

TEST_F(TableImportTest, TellsWhatCannotBeRead)
{
    deny();
    const std::vector<std::pair<QByteArray, std::string>> bad = {
        {"", "is no table"},
        {"colour,size\nred,1\n", "is no table"},
        {QByteArray("T\0i\0t\0l\0e\0\n\0", 12), "is no table"},
        {QByteArray(3'000'000, 'y'), "is no table"},
        {"First Name,Last Name,Title\nAnn,Lee,Dr.\n", "is no table"},
        {"Title,Due\n", "There is no task in \"list.csv\"."},
        {"Title,Due,Notes\nA,2026-11-24,\"cut", "What begins in line 2 of \"list.csv\" is cut off."},
        {"Title,Due\n" + QByteArray(10'000'000, 'x') + ",\n",
         "What begins in line 2 of \"list.csv\" is too large."},
        {"Title,Due\n\"" + QByteArray(20'000'000, '\n') + "\",\n", "is too large."}};
    for (const auto &[text, sentence] : bad) {
        const TaskImportAccount account = import(text);
        EXPECT_EQ(account.added, 0) << text.left(40).constData();
        EXPECT_THAT(said(account), HasSubstr(sentence)) << text.left(40).constData();
    }
    EXPECT_THAT(rows(), IsEmpty());
    // What is damaged takes nothing else with it; Latin-1 is read as such.
    QByteArray wide = "Title,Due";
    QByteArray line = "K\xFChn,2026-11-24";
    for (int column = 0; column < 1'000; ++column) {
        wide += ",c" + QByteArray::number(column);
        line += ",";
    }
    const QByteArray text = wide + '\n' + line + "7\nBig,," + QByteArray(9'000'000, 'x') + "\nLast,,\n";
    const TaskImportAccount account = import(text);
    EXPECT_EQ(account.added, 2) << said(account);
    EXPECT_THAT(account.refused, SizeIs(1));
    EXPECT_THAT(account.unknownColumns, ElementsAre(u"c999"_qs));
    EXPECT_TRUE(row(u"Kühn"_qs) && row(u"Last"_qs));
}

TEST_F(TableImportTest, ThousandsComeInPartsAndAreOneStep)
{
    deny();
    QByteArray text = "Title,Due,Project\n";
    for (int number = 0; number < 1'300; ++number)
        text += "Task " + QByteArray::number(number) + ",2026-11-24,House\n";
    int steps = 0;
    const TaskImportAccount stopped = import({text}, [&steps] { return ++steps < 1'200; });
    EXPECT_TRUE(stopped.wasStopped);
    EXPECT_EQ(stopped.added, 1'200);
    EXPECT_EQ(context().count(EntityProject::fetchRequest()), 1);
    const TaskImportAccount rest = import(text);
    EXPECT_EQ(rest.added, 100);
    EXPECT_EQ(rest.same, 1'200);
    ASSERT_FALSE(context().undo());
    EXPECT_THAT(rows(), SizeIs(1'200));
    ASSERT_FALSE(context().undo());
    EXPECT_THAT(rows(), IsEmpty()) << "its parts are one step";
}

TEST_F(TableImportTest, PartsReachTheCalendarsAndAreTakenBackFromThem)
{
    QByteArray text = "Title,Due,Calendar\n";
    for (int number = 0; number < 510; ++number)
        text += "Task " + QByteArray::number(number) + ",2026-11-24T10:00:00Z," +
                (number % 2 == 0 ? "Work" : "Gone") + "\n";
    const TaskImportAccount account = import(text);
    EXPECT_EQ(account.added, 510);
    EXPECT_THAT(account.otherCalendars, ElementsAre(u"Gone"_qs));
    // So many are carried out while the program goes on.
    CalendarOutbox::carryOutFor(context(), Seconds(20));
    EXPECT_EQ(files(u"Work"_qs).size(), 255);
    EXPECT_EQ(eventsElsewhere().size(), 510u);
    EXPECT_EQ(import(text).same, 510);
    pass();
    EXPECT_EQ(rows().size(), 510u);
    ASSERT_FALSE(context().undo());
    CalendarOutbox::carryOutFor(context(), Seconds(20));
    EXPECT_TRUE(rows().empty());
    EXPECT_TRUE(eventsElsewhere().empty());
}

} // namespace
