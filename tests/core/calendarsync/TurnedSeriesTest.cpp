// A series that is moved to other days of the week.

#include "SeriesStories.h"

namespace {

using testing::IsEmpty;
using testing::SizeIs;

/// A choir on Mondays at nine, and what is left of its rule after "all future" edits.
class TurnedSeries : public SeriesStories
{
protected:
    TurnedSeries() { QFile::remove(folderOf(u"Home"_qs) + u"/standup.ics"_qs); }

    /// The lines that say when it repeats, of all parts of the series.
    QStringList rules() const
    {
        QStringList lines;
        for (const QString &text : files(u"Home"_qs)) {
            const QString event = text.mid(text.indexOf(u"BEGIN:VEVENT"_qs));
            for (const QString &line : event.split(u"\r\n"_qs)) {
                if (line.startsWith(u"RRULE:"_qs))
                    lines.append(line.mid(6));
            }
        }
        lines.sort();
        return lines;
    }
    QStringList choir() const
    {
        return calendar().filter(u"Choir"_qs).replaceInStrings(u" Choir"_qs, QString());
    }
    void write(const QString &rule, const QString &more = {}) const
    {
        CalendarTest::write(u"Home"_qs, u"choir"_qs,
                            u"SUMMARY:Choir\nDTSTART;TZID=Europe/Berlin:20261123T090000\n"
                            u"DTEND;TZID=Europe/Berlin:20261123T100000\nRRULE:%1\n%2"_qs.arg(rule, more));
    }
    void shift(size_t place, Seconds byStart, Seconds byEnd)
    {
        pass();
        editSeries(rows().at(place), Span::FutureTasks, [&](MVTask &task) {
            task.startDate = *task.startDate + byStart;
            task.dueDate = *task.dueDate + byEnd;
        });
        pass();
        QStringList shown;
        for (const TaskPtr &row : SeriesStories::rows())
            shown.append(wallClock(*row->startDate()).mid(5, 11));
        EXPECT_EQ(shown, choir());
        expectSettled();
    }
    static constexpr Seconds aDay{86400};
    static constexpr Seconds anHour{3600};
};

TEST_F(TurnedSeries, TurnsItsWeekdaysAndKeepsItsEnd)
{
    // Until Wednesday the 9th of December.
    write(
        u"FREQ=WEEKLY;UNTIL=20261209T080000Z;BYDAY=MO,WE"_qs,
        u"END:VEVENT\nBEGIN:VEVENT\nUID:choir\nDTSTAMP:20260101T000000Z\nSUMMARY:Choir\n"
        u"RECURRENCE-ID;TZID=Europe/Berlin:20261202T090000\nDTSTART;TZID=Europe/Berlin:20261202T150000\nDURATION:PT1H\n"_qs);
    shift(0, aDay, aDay);
    EXPECT_EQ(rules(), QStringList(u"FREQ=WEEKLY;UNTIL=20261209T080000Z;BYDAY=TU,TH"_qs));
    EXPECT_EQ(choir(), QStringList({u"11-24 09:00"_qs, u"11-26 09:00"_qs, u"12-01 09:00"_qs,
                                    u"12-02 15:00"_qs, u"12-08 09:00"_qs}))
        << "what was edited alone stays where it is";
    // From the midst of it, and back to another hour: the last day counts still, at whatever hour.
    shift(2, aDay + anHour, aDay + anHour);
    EXPECT_EQ(choir(), QStringList({u"11-24 09:00"_qs, u"11-26 09:00"_qs, u"12-02 10:00"_qs,
                                    u"12-02 15:00"_qs, u"12-09 10:00"_qs}));
    EXPECT_EQ(rules().last(), u"FREQ=WEEKLY;UNTIL=20261209T090000Z;BYDAY=WE,FR"_qs);
    for (const TaskPtr &row : rows()) {
        if (*row->startDate() > localDate(2026, 11, 27)) {
            EXPECT_EQ(wallClock(*row->endRepeat()).left(10), u"2026-12-09"_qs);
        }
    }
    // When it ends does not concern its rule.
    shift(0, Seconds(0), anHour);
    shift(2, Seconds(0), anHour);
    EXPECT_EQ(rules().last(), u"FREQ=WEEKLY;UNTIL=20261209T090000Z;BYDAY=WE,FR"_qs);
    EXPECT_EQ(rows().at(4)->dueDate(), localDate(2026, 12, 9, 12));
}

TEST_F(TurnedSeries, KeepsARuleOfOneDayInItsWords)
{
    write(u"FREQ=WEEKLY;UNTIL=20261214T080000Z;WKST=SU;BYDAY=MO"_qs);
    shift(1, Seconds(0), anHour);
    EXPECT_EQ(rules().last(), u"FREQ=WEEKLY;UNTIL=20261214T080000Z;WKST=SU;BYDAY=MO"_qs);
    EXPECT_EQ(choir(),
              QStringList({u"11-23 09:00"_qs, u"11-30 09:00"_qs, u"12-07 09:00"_qs, u"12-14 09:00"_qs}));
    shift(2, -aDay, -aDay);
    EXPECT_EQ(choir(),
              QStringList({u"11-23 09:00"_qs, u"11-30 09:00"_qs, u"12-06 09:00"_qs, u"12-13 09:00"_qs}));
    // Beyond its end one is left.
    shift(3, aDay * 3, aDay * 3);
    EXPECT_EQ(choir(),
              QStringList({u"11-23 09:00"_qs, u"11-30 09:00"_qs, u"12-06 09:00"_qs, u"12-16 09:00"_qs}));
}

} // namespace
