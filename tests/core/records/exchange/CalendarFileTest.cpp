// Tasks, projects and notes as iCalendar files, read by another library and by this program's own calendars.

#include "ExchangeTest.h"
#include "eventkit/IcalDocument.h"
#include "eventkit/IcalText.h"

#include <gmock/gmock.h>
#include <libical/ical.h>

#include <QRegularExpression>

namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;
using testing::SizeIs;

class CalendarFileTest : public ExchangeTest
{
protected:
    /// More than the first occurrences of a series are in the store.
    CalendarFileTest() { UserDefaults::standard().setObject(settings::frequencyCalendarPeriod, 2); }

    /// The text of a file that another library finds no fault with: it keeps the rules of RFC 5545, and each
    /// object stands in it once.
    template <typename Record>
    static QByteArray file(const std::vector<std::shared_ptr<Record>> &records)
    {
        const QByteArray text = exported(ExportFormat::ICalendar, records);
        icalcomponent *calendar = icalparser_parse_string(text.constData());
        EXPECT_NE(calendar, nullptr) << text.constData();
        if (!calendar)
            return text;
        EXPECT_TRUE(icalrestriction_check(calendar)) << icalcomponent_as_ical_string(calendar);
        EXPECT_EQ(icalcomponent_count_errors(calendar), 0) << icalcomponent_as_ical_string(calendar);
        icalcomponent_free(calendar);
        for (const QByteArray &line : text.split('\n'))
            EXPECT_LE(line.size(), 76) << line.constData();
        return text;
    }
    /// The lines of the components of that name, each as a list; without those that tell when it was written.
    static std::vector<QStringList> components(const QByteArray &text, const QByteArray &name)
    {
        std::vector<QStringList> found;
        const auto document = IcalDocument::fromText(text);
        EXPECT_TRUE(document);
        for (const IcalComponent *child : document.value().calendar().children()) {
            if (child->name() != name)
                continue;
            QStringList lines;
            for (const ContentLine *line : child->allLines())
                if (line->name() != "DTSTAMP" && line->name() != "CREATED" && line->name() != "LAST-MODIFIED")
                    lines << QString::fromUtf8(line->head() + ':' + line->value());
            for (const IcalComponent *inner : child->children())
                lines << QString::fromUtf8(inner->name() + ' ' + inner->value("TRIGGER"));
            found.push_back(lines);
        }
        return found;
    }
    /// Rows whose title begins so, by date.
    static std::vector<TaskPtr> rowsOf(const QString &title)
    {
        std::vector<TaskPtr> found = rows();
        std::erase_if(found, [&](const TaskPtr &row) { return !row->title().startsWith(title); });
        return found;
    }
    static void deny()
    {
        PlatformConfiguration::setAuthorization(u"events"_qs, 2);
        CalendarEvent::resetEventStore();
    }
    static std::string words(const QStringList &lines) { return lines.join(u'\n').toStdString(); }
};

TEST_F(CalendarFileTest, SaysAllOfATask)
{
    deny();
    const TaskPtr toDo = add(u"Paint, the; house"_qs, TaskType::ToDo, localDate(2026, 11, 24),
                             localDate(2026, 11, 26, 23, 59, 59));
    toDo->setDetails(u"White\nand blue"_qs);
    toDo->setPriority(Priority::High);
    toDo->setStatus(TaskStatus::InProgress);
    toDo->setCategory(make<EntityCategory>(u"Home, sweet"_qs));
    toDo->setTags({make<EntityTags>(u"paint"_qs)});
    const auto place = make<EntityLocation>(u"Garden"_qs);
    place->setLatitude(52.5);
    place->setLongitude(13.25);
    toDo->setLocation(place);
    toDo->setAlert(localDate(2026, 11, 24, 8));
    const TaskPtr call = add(u"Call Ann"_qs, TaskType::EmailCall, {}, localDate(2026, 11, 25, 14, 30));
    call->setAlert(localDate(2026, 11, 25, 14));
    call->setStatus(TaskStatus::Pending);
    const TaskPtr meeting =
        add(u"Meeting"_qs, TaskType::Appointment, localDate(2026, 11, 25, 10), localDate(2026, 11, 25, 11));
    meeting->setAlert(localDate(2026, 11, 25, 9, 45));
    const TaskPtr someday = add(u"Sail"_qs);
    someday->setDueSomeDay(true);
    const TaskPtr done =
        add(u"Swept"_qs, TaskType::ToDo, localDate(2026, 11, 20), localDate(2026, 11, 20, 23, 59, 59));
    done->setStatus(TaskStatus::Done);
    done->setExpirationDate(utcDate(2026, 11, 20, 12));
    ASSERT_FALSE(DBWorker::saveContext());

    const std::vector tasks = {toDo, call, meeting, someday, done};
    const QByteArray text = file(tasks);
    const auto todos = components(text, "VTODO");
    ASSERT_THAT(todos, SizeIs(4));
    EXPECT_THAT(todos[0],
                ElementsAre(u"UID:"_qs + toDo->identifier(), u"DTSTART;VALUE=DATE:20261124"_qs,
                            u"DUE;VALUE=DATE:20261126"_qs, u"SUMMARY:Paint\\, the\\; house"_qs,
                            u"DESCRIPTION:White\\nand blue"_qs, u"LOCATION:Garden"_qs, u"GEO:52.5;13.25"_qs,
                            u"PRIORITY:1"_qs, u"STATUS:IN-PROCESS"_qs, u"CATEGORIES:Home\\, sweet,paint"_qs,
                            u"X-MORVANE-CATEGORY:Home\\, sweet"_qs, u"X-MORVANE-TAGS:paint"_qs,
                            u"VALARM PT8H"_qs));
    EXPECT_THAT(todos[1],
                ElementsAre(u"UID:"_qs + call->identifier(), u"DUE;TZID=Europe/Berlin:20261125T143000"_qs,
                            u"SUMMARY:Call Ann"_qs, u"STATUS:NEEDS-ACTION"_qs, u"X-MORVANE-STATUS:PENDING"_qs,
                            u"X-MORVANE-TYPE:EMAIL-CALL"_qs, u"VALARM 20261125T130000Z"_qs));
    EXPECT_THAT(words(todos[2]), HasSubstr("X-MORVANE-SOMEDAY:TRUE"));
    EXPECT_THAT(words(todos[2]), Not(HasSubstr("DUE")));
    EXPECT_THAT(words(todos[3]), HasSubstr("STATUS:COMPLETED\nCOMPLETED:20261120T120000Z"));
    EXPECT_THAT(components(text, "VEVENT"),
                ElementsAre(ElementsAre(u"UID:"_qs + meeting->identifier(),
                                        u"DTSTART;TZID=Europe/Berlin:20261125T100000"_qs,
                                        u"DTEND;TZID=Europe/Berlin:20261125T110000"_qs, u"SUMMARY:Meeting"_qs,
                                        u"VALARM -PT15M"_qs)));
    EXPECT_THAT(components(text, "VTIMEZONE"), SizeIs(1)) << "once for all";
    EXPECT_LT(text.indexOf("BEGIN:VTIMEZONE"), text.indexOf("TZID=Europe/Berlin"));

    // A later export is the same object with what has changed.
    EXPECT_EQ(file(tasks), text);
    meeting->setTitle(u"Long meeting"_qs);
    const QStringList later = components(file(tasks), "VEVENT").front();
    EXPECT_EQ(later.front(), u"UID:"_qs + meeting->identifier());
    EXPECT_THAT(later, Contains(u"SUMMARY:Long meeting"_qs));
}

TEST_F(CalendarFileTest, WritesASeriesOnceAsItsCalendarHasIt)
{
    write(u"Home"_qs, u"yoga"_qs,
          u"SUMMARY:Yoga\nDTSTART;TZID=Europe/Berlin:20261110T180000\nDTEND;TZID=Europe/"
          u"Berlin:20261110T190000\n"
          "RRULE:FREQ=WEEKLY;UNTIL=20270301T000000Z\nEXDATE;TZID=Europe/Berlin:20261201T180000\n"
          "ATTENDEE;CN=Ann:mailto:ann@example.org\nEND:VEVENT\nBEGIN:VEVENT\nUID:yoga\n"
          "DTSTAMP:20260101T000000Z\nSUMMARY:Yoga outside\nRECURRENCE-ID;TZID=Europe/Berlin:20261208T180000\n"
          "DTSTART;TZID=Europe/Berlin:20261208T200000\nDTEND;TZID=Europe/Berlin:20261208T210000\n"_qs);
    pass();
    const std::vector<TaskPtr> yoga = rowsOf(u"Yoga"_qs);
    ASSERT_GT(yoga.size(), 3u);
    yoga[1]->setPriority(Priority::Low);

    // Whichever occurrences are chosen, the series is there once and whole.
    const QByteArray text = file(std::vector{yoga[1], yoga[2], yoga.back()});
    const auto events = components(text, "VEVENT");
    ASSERT_THAT(events, SizeIs(2));
    EXPECT_THAT(words(events[0]), HasSubstr("DTSTART;TZID=Europe/Berlin:20261110T180000"));
    EXPECT_THAT(words(events[0]), HasSubstr("EXDATE;TZID=Europe/Berlin:20261201T180000"));
    EXPECT_THAT(words(events[0]), HasSubstr("ATTENDEE;CN=Ann:mailto:ann@example.org"));
    EXPECT_THAT(words(events[0]), HasSubstr("PRIORITY:9"));
    EXPECT_THAT(words(events[1]), HasSubstr("RECURRENCE-ID;TZID=Europe/Berlin:20261208T180000"));

    // A calendar that is given the file has the same occurrences.
    const auto occurrences = [&] {
        QStringList lines;
        for (const EKEvent &event : eventsElsewhere())
            lines << wallClock(*event.startDate) + event.title;
        return lines;
    };
    const QStringList before = occurrences();
    ASSERT_TRUE(QFile::remove(folderOf(u"Home"_qs) + u"/yoga.ics"_qs));
    QFile copy(folderOf(u"Work"_qs) + u"/copy.ics"_qs);
    ASSERT_TRUE(copy.open(QIODevice::WriteOnly));
    copy.write(text);
    copy.close();
    EXPECT_EQ(occurrences(), before);
}

TEST_F(CalendarFileTest, WritesARepeatedToDoAsOneToDo)
{
    write(u"Home"_qs, u"bins"_qs,
          u"SUMMARY:Bins\nDTSTART;VALUE=DATE:20261116\nDTEND;VALUE=DATE:20261118\nRRULE:FREQ=WEEKLY\n"
          "TRANSP:TRANSPARENT\nEXDATE;VALUE=DATE:20261130\n"
          "BEGIN:VALARM\nACTION:DISPLAY\nDESCRIPTION:x\nTRIGGER:PT7H\nEND:VALARM\n"_qs);
    write(u"Home"_qs, u"ring"_qs,
          u"SUMMARY:Ring Bob\nDTSTART:20261124T100000Z\n"
          "BEGIN:VALARM\nACTION:DISPLAY\nDESCRIPTION:x\nTRIGGER:-PT10M\nEND:VALARM\n"_qs);
    pass();
    std::vector<TaskPtr> bins = rowsOf(u"Bins"_qs);
    ASSERT_GT(bins.size(), 2u);
    // One is ticked off: it leaves the series and stands alone.
    MVTask first(bins.front());
    first.setTaskValues();
    first.status = TaskStatus::Done;
    {
        const ScriptedAlerts alerts({Alert::firstButton});
        ASSERT_TRUE(first.saveStatus());
    }
    const QByteArray text = file(rows());
    const auto todos = components(text, "VTODO");
    ASSERT_THAT(todos, SizeIs(3));
    EXPECT_THAT(components(text, "VEVENT"), SizeIs(0));
    const auto with = [&](const QString &line) {
        const auto found =
            std::ranges::find_if(todos, [&](const QStringList &one) { return one.contains(line); });
        return found == todos.end() ? QStringList() : *found;
    };
    const std::string series = words(with(u"UID:bins"_qs));
    EXPECT_THAT(series, HasSubstr("DTSTART;VALUE=DATE:20261116\nDUE;VALUE=DATE:20261117"));
    EXPECT_THAT(series, HasSubstr("RRULE:FREQ=WEEKLY"));
    EXPECT_THAT(series, HasSubstr("EXDATE;VALUE=DATE:20261130"));
    EXPECT_THAT(series, HasSubstr("VALARM PT7H"));
    EXPECT_THAT(series, HasSubstr("STATUS:NEEDS-ACTION"));
    EXPECT_THAT(series, Not(HasSubstr("TRANSP")));
    const QStringList done = with(u"STATUS:COMPLETED"_qs);
    EXPECT_THAT(done, Contains(u"SUMMARY:Bins"_qs));
    EXPECT_THAT(done, Not(Contains(u"UID:bins"_qs)));
    const std::string call = words(with(u"UID:ring"_qs));
    EXPECT_THAT(call, HasSubstr("DUE:20261124T100000Z"));
    EXPECT_THAT(call, Not(HasSubstr("DTSTART")));
    EXPECT_THAT(call, HasSubstr("VALARM 20261124T095000Z"));
}

TEST_F(CalendarFileTest, MakesASeriesOfItsRowsWhileNoCalendarCanBeRead)
{
    write(
        u"Home"_qs, u"run"_qs,
        u"SUMMARY:Run\nDTSTART;TZID=Europe/Berlin:20261120T070000\nDTEND;TZID=Europe/Berlin:20261120T080000\n"
        "RRULE:FREQ=DAILY;COUNT=6\nEXDATE;TZID=Europe/Berlin:20261122T070000\n"
        "END:VEVENT\nBEGIN:VEVENT\nUID:run\nDTSTAMP:20260101T000000Z\nSUMMARY:Run far\n"
        "RECURRENCE-ID;TZID=Europe/Berlin:20261124T070000\nDTSTART;TZID=Europe/Berlin:20261124T070000\n"
        "DTEND;TZID=Europe/Berlin:20261124T080000\n"_qs);
    pass();
    const std::vector<TaskPtr> runs = rowsOf(u"Run"_qs);
    ASSERT_THAT(runs, SizeIs(5));
    deny();
    const auto events = components(file(std::vector{runs[1]}), "VEVENT");
    ASSERT_THAT(events, SizeIs(2));
    EXPECT_THAT(words(events[0]), HasSubstr("DTSTART;TZID=Europe/Berlin:20261120T070000"));
    EXPECT_THAT(words(events[0]), HasSubstr("EXDATE;TZID=Europe/Berlin:20261122T070000"));
    EXPECT_EQ(words(events[0]).find("20261123"), std::string::npos);
    EXPECT_THAT(words(events[1]), HasSubstr("SUMMARY:Run far"));
    EXPECT_THAT(words(events[1]), HasSubstr("RECURRENCE-ID;TZID=Europe/Berlin:20261124T070000"));
}

TEST_F(CalendarFileTest, BringsTheTasksOfAProject)
{
    deny();
    const auto house = make<EntityProject>(u"House"_qs);
    house->setDueDate(localDate(2026, 12, 31));
    house->setStatus(TaskStatus::InProgress);
    const TaskPtr roof = add(u"Roof"_qs);
    roof->setProject(house);
    const TaskPtr other = add(u"Other"_qs);
    ASSERT_FALSE(DBWorker::saveContext());
    const auto todos = components(file(std::vector{house}), "VTODO");
    ASSERT_THAT(todos, SizeIs(2));
    EXPECT_THAT(todos[0],
                ElementsAre(u"UID:"_qs + house->identifier(), u"DUE;VALUE=DATE:20261231"_qs,
                            u"SUMMARY:House"_qs, u"STATUS:IN-PROCESS"_qs, u"X-MORVANE-KIND:PROJECT"_qs));
    EXPECT_THAT(todos[1], Contains(u"RELATED-TO:"_qs + house->identifier()));
    EXPECT_THAT(todos[1], Contains(u"X-MORVANE-PROJECT:House"_qs));
    const auto note = make<EntityNote>(u"Colours"_qs);
    note->setDetail(u"White"_qs);
    ASSERT_FALSE(DBWorker::saveContext());
    EXPECT_THAT(components(file(std::vector{note}), "VJOURNAL"),
                ElementsAre(ElementsAre(u"UID:"_qs + note->identifier(), u"SUMMARY:Colours"_qs,
                                        u"DESCRIPTION:White"_qs)));
}

TEST_F(CalendarFileTest, EndsWhereItIsStoppedAndTellsOfAFullDevice)
{
    deny();
    std::vector<RowId> rows;
    for (const QString &title : {u"One"_qs, u"Two"_qs, u"Three"_qs})
        rows.push_back(add(title)->rowId());
    context().deleteObject(context().fetchFirst<EntityTask>(
        EntityTask::fetchRequest().where(Predicate::format("title == %@", u"Two"_qs))));
    ASSERT_FALSE(DBWorker::saveContext());
    QBuffer file;
    file.open(QIODevice::WriteOnly);
    int steps = 0;
    ASSERT_FALSE(RecordExport::write(file, ExportFormat::ICalendar, EntityTask::entityName, rows,
                                     [&] { return ++steps < 2; }));
    EXPECT_EQ(file.data().count("BEGIN:VTODO"), 1) << "the second is gone, the third not wanted";
    QFile full(u"/dev/full"_qs);
    ASSERT_TRUE(full.open(QIODevice::WriteOnly | QIODevice::Unbuffered));
    const OptionalError error = RecordExport::write(full, ExportFormat::Csv, EntityTask::entityName, rows);
    ASSERT_TRUE(error);
    EXPECT_THAT(error->message.toStdString(), HasSubstr("No space left"));
    EXPECT_TRUE(RecordExport::write(file, ExportFormat::VCard, EntityTask::entityName, rows));
}

} // namespace
