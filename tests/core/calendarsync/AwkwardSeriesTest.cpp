#include "CalendarTest.h"

#include "store/queries/EventDates.h"

#include <gmock/gmock.h>

namespace {

using testing::SizeIs;

/// A series that no rule of a row can say, or only a part of it.
struct Kind
{
    const char *name;
    const char *lines;
    size_t count;
};

constexpr const char *firstTimes = "DTSTART;TZID=Europe/Berlin:20261123T080000\nDURATION:PT15M\n";

const Kind kinds[] = {
    {"Dates", "RDATE;TZID=Europe/Berlin:20261124T080000,20261126T100000,20261126T180000\n", 4},
    {"Hours", "RRULE:FREQ=HOURLY;INTERVAL=6;COUNT=5\n", 5},
    {"Minutes", "RRULE:FREQ=MINUTELY;INTERVAL=20;COUNT=5\n", 5},
    {"Seconds", "RRULE:FREQ=SECONDLY;INTERVAL=90;COUNT=5\n", 5},
    {"TwiceADay", "RRULE:FREQ=DAILY;BYHOUR=8,20;COUNT=6\n", 6},
    {"WithoutMaster",
     "RECURRENCE-ID;TZID=Europe/Berlin:20261123T070000\nEND:VEVENT\nBEGIN:VEVENT\nUID:shift\n"
     "DTSTAMP:20260101T000000Z\nSUMMARY:Shift\nDTSTART;TZID=Europe/Berlin:20261123T200000\nDURATION:PT15M\n"
     "RECURRENCE-ID;TZID=Europe/Berlin:20261124T070000\nEND:VEVENT\nBEGIN:VEVENT\nUID:shift\n"
     "DTSTAMP:20260101T000000Z\nSUMMARY:Shift\nDTSTART;TZID=Europe/Berlin:20261125T080000\nDURATION:PT15M\n"
     "RECURRENCE-ID;TZID=Europe/Berlin:20261125T070000\n",
     3},
};

void PrintTo(const Kind &kind, std::ostream *stream)
{
    *stream << kind.name;
}

/// What a person does to one occurrence is done to that one alone, and can be taken back.
class AwkwardSeries : public CalendarTest, public testing::WithParamInterface<Kind>
{
protected:
    AwkwardSeries()
    {
        UserDefaults::standard().setObject(settings::frequencyCalendarPeriod, 2);
        writeSeries();
        activate();
    }
    void writeSeries() const
    {
        write(u"Home"_qs, u"shift"_qs,
              u"SUMMARY:Shift\n"_qs + QLatin1String(firstTimes) + QLatin1String(GetParam().lines));
    }
    void activate() { delegate->applicationDidBecomeActive(); }
    QString file() const { return files(u"Home"_qs).value(u"shift.ics"_qs); }
    static QString lineOf(const QString &title, Date start) { return wallClock(start).mid(5) + u' ' + title; }
    static QStringList shown()
    {
        QStringList lines;
        for (const TaskPtr &row : rows()) {
            if (row->status() != TaskStatus::Done)
                lines.append(lineOf(row->title(), *row->startDate()));
        }
        lines.sort();
        return lines;
    }
    /// As another program sees them, which knows of the files alone.
    QStringList held() const
    {
        EKEventStore elsewhere(std::make_shared<FolderBackend>(root.path()));
        const DateInterval seen = CalendarEvent::window();
        const auto events = elsewhere.eventsMatchingPredicate(
            elsewhere.predicateForEventsWithStartDate(seen.start, seen.end));
        QStringList lines;
        for (const EKEvent &event : events.value())
            lines.append(lineOf(event.title, *event.startDate));
        lines.sort();
        return lines;
    }
    /// The lines of the file that say when the series takes place.
    static QStringList linesOfSeries(const QString &text)
    {
        QStringList lines = text.split(u"\r\n"_qs);
        lines.removeIf([](const QString &line) {
            // Rules by the year are those of the zone.
            return (!line.startsWith(u"RRULE"_qs) && !line.startsWith(u"RDATE"_qs)) ||
                   line.contains(u"YEARLY"_qs);
        });
        return lines;
    }
    static TaskPtr rowAt(const QString &line)
    {
        for (const TaskPtr &row : rows()) {
            if (row->status() != TaskStatus::Done && lineOf(row->title(), *row->startDate()) == line)
                return row;
        }
        return nullptr;
    }
    static void edit(const TaskPtr &row, const std::function<void(MVTask &)> &change)
    {
        MVTask copy(row);
        change(copy);
        const ScriptedAlerts alerts({Alert::firstButton});
        EXPECT_TRUE(TaskManager::saveTaskTemp(copy, true));
    }
    static void remove(const TaskPtr &row)
    {
        const ScriptedAlerts alerts({Alert::firstButton});
        TaskManager::deleteTasks({row}, {});
    }
    /// Does something to each occurrence in turn, and takes it back.
    /// \param becomes what the title and the start become; nothing if the occurrence leaves the calendar.
    void expectOneChanged(const std::function<void(const TaskPtr &)> &command,
                          const std::function<QString(QString line)> &becomes)
    {
        const QStringList before = held();
        ASSERT_THAT(before, SizeIs(GetParam().count));
        ASSERT_EQ(shown(), before);
        const QString text = file();
        for (const QString &line : before) {
            SCOPED_TRACE(qPrintable(line));
            const TaskPtr row = rowAt(line);
            ASSERT_TRUE(row);
            command(row);
            QStringList wanted = before;
            wanted.removeOne(line);
            if (const QString changed = becomes(line); !changed.isEmpty())
                wanted.append(changed);
            wanted.sort();
            EXPECT_EQ(held(), wanted);
            EXPECT_EQ(shown(), wanted);
            EXPECT_EQ(linesOfSeries(file()), linesOfSeries(text));
            EXPECT_THAT(files(u"Home"_qs), SizeIs(1));
            activate();
            EXPECT_EQ(shown(), wanted);
            expectSettled();
            ASSERT_FALSE(context().undo());
            activate();
            EXPECT_EQ(held(), before) << "taken back";
            EXPECT_EQ(shown(), before) << "taken back";
            expectSettled();
            if (HasFailure())
                return;
        }
    }
};

TEST_P(AwkwardSeries, OneIsDeleted)
{
    expectOneChanged(remove, [](const QString &) { return QString(); });
}

TEST_P(AwkwardSeries, OneIsTickedOff)
{
    expectOneChanged(
        [](const TaskPtr &row) {
            edit(row, [](MVTask &task) { task.changeStatusType(TaskStatus::Done, false); });
        },
        [](const QString &) { return QString(); });
}

TEST_P(AwkwardSeries, OneGetsAnotherTitle)
{
    expectOneChanged([](const TaskPtr &row) { edit(row, [](MVTask &task) { task.title = u"Alone"_qs; }); },
                     [](QString line) { return line.replace(u"Shift"_qs, u"Alone"_qs); });
}

TEST_P(AwkwardSeries, OneIsMoved)
{
    // To a day that has none.
    const Date target = localDate(2026, 12, 2, 17, 5);
    expectOneChanged(
        [&](const TaskPtr &row) {
            edit(row, [&](MVTask &task) {
                task.startDate = target;
                task.dueDate = target + Seconds(900);
            });
        },
        [&](const QString &) { return lineOf(u"Shift"_qs, target); });
}

TEST_P(AwkwardSeries, OneAfterTheOtherIsDeleted)
{
    for (qsizetype left = held().size(); left > 1; --left) {
        remove(rowAt(shown().last()));
        EXPECT_THAT(held(), SizeIs(left - 1));
        EXPECT_EQ(shown(), held());
    }
    remove(rowAt(shown().last()));
    EXPECT_TRUE(files(u"Home"_qs).isEmpty());
    activate();
    EXPECT_TRUE(rows().empty());
}

TEST_P(AwkwardSeries, AsManyFutureOnesAreShownAsOfAnyOther)
{
    const QStringList all = shown();
    UserDefaults::standard().setObject(settings::frequencyCalendarPeriod, 0);
    pass();
    EXPECT_EQ(shown(), QStringList(all.first()));
    UserDefaults::standard().setObject(settings::frequencyCalendarPeriod, 2);
    pass();
    EXPECT_EQ(shown(), all);
}

TEST_P(AwkwardSeries, OneIsEditedAndOneDeletedWithoutAccess)
{
    const QStringList before = held();
    PlatformConfiguration::setAuthorization(u"events"_qs, 0);
    remove(rowAt(before.at(1)));
    edit(rowAt(before.at(0)), [](MVTask &task) { task.title = u"Alone"_qs; });
    EXPECT_EQ(held(), before);
    PlatformConfiguration::setAuthorization(u"events"_qs, 3);
    activate();
    QStringList wanted = before;
    wanted.removeAt(1);
    wanted.first().replace(u"Shift"_qs, u"Alone"_qs);
    wanted.sort();
    EXPECT_EQ(held(), wanted);
    EXPECT_EQ(shown(), wanted);
    EXPECT_THAT(files(u"Home"_qs), SizeIs(1));
    expectSettled();
    // Taken back without access, too: the title in its place, the deleted one as an event of its own.
    PlatformConfiguration::setAuthorization(u"events"_qs, 0);
    ASSERT_FALSE(context().undo());
    ASSERT_FALSE(context().undo());
    PlatformConfiguration::setAuthorization(u"events"_qs, 3);
    activate();
    EXPECT_EQ(held(), before);
    EXPECT_EQ(shown(), before);
    expectSettled();
}

TEST_P(AwkwardSeries, AnOccurrenceThatWasMovedElsewhereGetsNoSecondEvent)
{
    // The first has gone to another day since the rows were made.
    const QString first = shown().first();
    const TaskPtr row = rowAt(first);
    {
        EKEventStore elsewhere(std::make_shared<FolderBackend>(root.path()));
        const DateInterval seen = CalendarEvent::window();
        auto events = elsewhere.eventsMatchingPredicate(
            elsewhere.predicateForEventsWithStartDate(seen.start, seen.end));
        EKEvent &event = events.value().front();
        event.startDate = *event.startDate + Seconds(20 * 86400.0);
        event.endDate = *event.endDate + Seconds(20 * 86400.0);
        ASSERT_FALSE(elsewhere.saveEvent(event, EKSpan::ThisEvent, true));
    }
    const QStringList moved = held();
    edit(row, [](MVTask &task) { task.title = u"Late"_qs; });
    activate();
    QStringList titles = held();
    titles.replaceInStrings(u"Late"_qs, u"Shift"_qs);
    EXPECT_EQ(titles, moved);
    EXPECT_THAT(files(u"Home"_qs), SizeIs(1));
    EXPECT_EQ(shown(), held());
    expectSettled();
}

INSTANTIATE_TEST_SUITE_P(Kinds, AwkwardSeries, testing::ValuesIn(kinds),
                         [](const auto &one) { return std::string(one.param.name); });

} // namespace
