#include "CalendarTest.h"

#include "foundation/Log.h"

#include <gmock/gmock.h>

#include <chrono>

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
        QStringList lines;
        for (const EKEvent &event : eventsElsewhere())
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

TEST_P(AwkwardSeries, OneThatWasDeletedElsewhereGoes)
{
    // Its first is long ago, and says nothing of the others.
    const auto rewrite = [this](const QString &more) {
        QString lines = u"SUMMARY:Shift\n"_qs + QLatin1String(firstTimes) + QLatin1String(GetParam().lines);
        for (const auto &[from, to] : {std::pair(u"20261123T080000"_qs, u"20220101T080000"_qs),
                                       std::pair(u";COUNT="_qs, u";X-COUNT="_qs),
                                       // Not so many that they are too many.
                                       std::pair(u"INTERVAL=20;"_qs, u"INTERVAL=400;"_qs),
                                       std::pair(u"INTERVAL=90;"_qs, u"INTERVAL=90000;"_qs)})
            lines.replace(from, to);
        write(u"Home"_qs, u"shift"_qs, lines + more);
    };
    rewrite({});
    pass();
    const QStringList before = shown();
    ASSERT_GE(before.size(), 2);
    {
        EKEventStore elsewhere(std::make_shared<FolderBackend>(root.path()));
        const Date start = *rowAt(before.last())->startDate();
        const auto events = elsewhere.eventsMatchingPredicate(
            elsewhere.predicateForEventsWithStartDate(start, start + Seconds(1)));
        ASSERT_FALSE(elsewhere.removeEvent(events.value().front(), EKSpan::ThisEvent, true));
    }
    pass();
    EXPECT_FALSE(shown().contains(before.last()));
    expectSettled();
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

/// Series with more occurrences than anybody can use.
class EndlessSeries : public CalendarTest
{
protected:
    EndlessSeries()
    {
        write(u"Home"_qs, u"minutes"_qs,
              u"SUMMARY:Minutes\nDTSTART:20200101T000000Z\nDURATION:PT10S\nRRULE:FREQ=MINUTELY\n"_qs);
        write(u"Home"_qs, u"seconds"_qs,
              u"SUMMARY:Seconds\nDTSTART:20200101T000000Z\nDURATION:PT1S\nRRULE:FREQ=SECONDLY\n"_qs);
        write(u"Home"_qs, u"count"_qs,
              u"SUMMARY:Count\nDTSTART:20000101T000000Z\nRRULE:FREQ=SECONDLY;COUNT=2000000000\n"_qs);
        write(u"Work"_qs, u"dentist"_qs,
              u"SUMMARY:Dentist\nDTSTART:20261123T090000Z\nDTEND:20261123T100000Z\n"_qs);
    }
    static std::vector<TaskPtr> rowsOf(const QString &title)
    {
        std::vector<TaskPtr> found = rows();
        std::erase_if(found, [&title](const TaskPtr &row) { return row->title() != title; });
        return found;
    }
};

TEST_F(EndlessSeries, LeavesTheRestUsable)
{
    QStringList lines;
    Log::setSink([&lines](const QString &line) { lines.append(line); });
    const auto begin = std::chrono::steady_clock::now();
    pass();
    pass();
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(60));
    Log::setSink({});
    EXPECT_EQ(lines.filter(u"holds too much"_qs).size(), 1) << qPrintable(lines.join(u'\n'));
    EXPECT_TRUE(lines.filter(u"holds too much"_qs).value(0).contains(u"\"Home\""_qs));
    EXPECT_THAT(rowsOf(u"Dentist"_qs), SizeIs(1));
    const auto minutes = rowsOf(u"Minutes"_qs);
    ASSERT_FALSE(minutes.empty());
    EXPECT_LT(minutes.size(), 1000U);
    EXPECT_FALSE(rowsOf(u"Seconds"_qs).empty());
    EXPECT_GE(minutes.front()->startDate(), localDate(2026, 11, 21, 9, 14)) << "those to come";
    // One of them is changed alone, as of any series.
    {
        const ScriptedAlerts alerts({Alert::firstButton});
        TaskManager::deleteTasks({minutes.at(5)}, {});
    }
    EXPECT_TRUE(files(u"Home"_qs).value(u"minutes.ics"_qs).contains(u"RRULE:FREQ=MINUTELY"_qs));
    EXPECT_TRUE(files(u"Home"_qs).value(u"minutes.ics"_qs).contains(u"EXDATE"_qs));
    EXPECT_EQ(rowsOf(u"Minutes"_qs).size(), minutes.size() - 1);
    // Rows of which the pass sees no event any more stay, as long as the series is there.
    const FrozenClock later(localDate(2026, 11, 21, 9, 45));
    pass();
    EXPECT_EQ(rowsOf(u"Minutes"_qs).front(), minutes.front());
    QFile::remove(folderOf(u"Home"_qs) + u"/minutes.ics"_qs);
    connectStore();
    const ScriptedAlerts alerts({Alert::firstButton, Alert::firstButton});
    pass();
    EXPECT_TRUE(rowsOf(u"Minutes"_qs).empty());
    EXPECT_THAT(rowsOf(u"Dentist"_qs), SizeIs(1));
}

} // namespace
