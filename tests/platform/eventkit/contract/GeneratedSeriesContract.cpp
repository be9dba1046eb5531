#include "EventStoreContract.h"

#include "eventkit/WallClock.h"

#include <QDate>

#include <algorithm>
#include <random>

namespace {

/// Makes series with everything in them, in three zones and over both changes of the clock.
class SeriesGenerator
{
public:
    explicit SeriesGenerator(unsigned seed)
        : random(seed)
    {}

    int pick(int lowest, int highest) { return std::uniform_int_distribution(lowest, highest)(random); }
    template <typename T>
    const T &oneOf(const std::vector<T> &values)
    {
        return values[std::size_t(pick(0, int(values.size()) - 1))];
    }

    QByteArray series(const QByteArray &uid)
    {
        isAllDay = pick(0, 2) == 0;
        zone = oneOf<QByteArray>({"Europe/Berlin", "America/New_York", "Australia/Sydney"});
        timeOfDay = oneOf<QByteArray>({"023000", "090000", "090000", "233000"});
        const int start = pick(45, 75);
        QByteArray text = "BEGIN:VEVENT\nUID:" + uid + "\nDTSTAMP:20240101T000000Z\nSUMMARY:Series\n" +
                          time("DTSTART", start) + "DURATION:" + (isAllDay ? "P2D" : "PT90M") +
                          "\nRRULE:" + rule() + "\n";
        for (int count = pick(0, 2); count > 0; --count)
            text += time("EXDATE", start + pick(1, 30));
        for (int count = pick(0, 2); count > 0; --count)
            text += time("RDATE", start + pick(1, 60));
        return text + "END:VEVENT\n";
    }

    bool isAllDay = false;
    QByteArray zone;
    QByteArray timeOfDay;

private:
    QByteArray rule()
    {
        const QByteArray body = oneOf<QByteArray>(
            {"FREQ=DAILY", "FREQ=DAILY;INTERVAL=3", "FREQ=WEEKLY;BYDAY=MO,WE,SU", "FREQ=WEEKLY;INTERVAL=2",
             "FREQ=MONTHLY;BYMONTHDAY=1,15,-1", "FREQ=MONTHLY;BYDAY=2TU,-1SU"});
        return body + oneOf<QByteArray>({"", ";COUNT=" + QByteArray::number(pick(2, 40)),
                                         isAllDay ? ";UNTIL=20240420" : ";UNTIL=20240420T140000Z"});
    }

    QByteArray time(const QByteArray &name, int dayOfYear) const
    {
        const QByteArray day =
            QDate(2024, 1, 1).addDays(dayOfYear).toString(QStringLiteral("yyyyMMdd")).toLatin1();
        return isAllDay ? name + ";VALUE=DATE:" + day + "\n"
                        : name + ";TZID=" + zone + ":" + day + "T" + timeOfDay + "\n";
    }

    std::mt19937 random;
};

const Date beginning = utcDate(2024, 1, 1);
/// Looked at are occurrences up to here, wherever they were moved.
const Date lastOccurrence = utcDate(2024, 5, 5, 5);

} // namespace

/// What is left after an edit, worked out from what was there before.
class ExpectedEvents
{
public:
    explicit ExpectedEvents(const std::vector<EKEvent> &present)
    {
        for (const EKEvent &event : present)
            if (*event.occurrenceDate <= lastOccurrence)
                events.push_back(event);
    }

    template <typename Change>
    void change(const Change &changeOf)
    {
        std::for_each(events.begin(), events.end(), changeOf);
    }
    template <typename Condition>
    void drop(const Condition &isDropped)
    {
        std::erase_if(events, isDropped);
    }

    QStringList list() const
    {
        QStringList found;
        for (const EKEvent &event : events)
            found.append(wallClock(*event.occurrenceDate) + u" "_qs + event.title + u' ' +
                         wallClock(*event.startDate) + u' ' + wallClock(*event.endDate));
        found.sort();
        return found;
    }

    std::vector<EKEvent> events;
};

static void move(EKEvent &event, double seconds)
{
    event.startDate = *event.startDate + Seconds(seconds);
    event.endDate = *event.endDate + Seconds(seconds);
}

TEST_P(EventStoreContract, EditsOfGeneratedSeriesConcernOnlyWhatTheyName)
{
    SeriesGenerator generator(testSeed());
    const auto all = [&] { return events(beginning, lastOccurrence + Seconds(5 * secondsOfADay)); };
    for (int round = 0; round < place->generatedSeries(); ++round) {
        const QString uid = u"series-%1"_qs.arg(round);
        putForeign(generator.series(uid.toLatin1()), uid);
        const QByteArray original = textOf(uid);
        for (int edits = generator.pick(0, 2); edits > 0; --edits) {
            EKEvent edited = generator.oneOf(all());
            edited.title = u"Edited"_qs;
            move(edited, generator.pick(-3, 3) * secondsOfADay);
            save(edited);
        }
        ExpectedEvents expected(all());
        if (expected.events.empty())
            continue;
        EKEvent chosen = generator.oneOf(expected.events);
        const Date at = *chosen.occurrenceDate;
        const auto isLater = [at](const EKEvent &event) { return *event.occurrenceDate >= at; };
        const auto isMeant = [&](const EKEvent &event) {
            return *event.occurrenceDate == at || (isLater(event) && !event.isDetached);
        };
        const int edit = generator.pick(0, 4);
        if (edit == 0) {
            expected.drop([at](const EKEvent &event) { return *event.occurrenceDate == at; });
            expectNoError(store.removeEvent(chosen, EKSpan::ThisEvent, true));
        } else if (edit == 1) {
            expected.drop(isLater);
            expectNoError(store.removeEvent(chosen, EKSpan::FutureEvents, true));
        } else if (edit == 2) {
            expected.change([at](EKEvent &event) {
                if (*event.occurrenceDate == at)
                    event.title = u"This"_qs;
            });
            chosen.title = u"This"_qs;
            save(chosen);
        } else {
            // An hour later where that means the same on each day of the series.
            const double shift =
                edit == 4 && !generator.isAllDay && generator.timeOfDay == "090000" ? 3600 : 0;
            expected.change([&](EKEvent &event) {
                if (isMeant(event)) {
                    event.title = u"Later"_qs;
                    move(event, shift);
                }
                if (isLater(event))
                    event.occurrenceDate = *event.occurrenceDate + Seconds(shift);
            });
            chosen.title = u"Later"_qs;
            move(chosen, shift);
            save(chosen, EKSpan::FutureEvents);
        }
        EXPECT_EQ(ExpectedEvents(all()).list(), expected.list())
            << "edit " << edit << " at " << qPrintable(wallClock(at)) << " of\n"
            << original.constData();
        if (HasFailure())
            return;
        const auto objects = backend->objects(calendar.calendarIdentifier);
        for (const CalendarObject &object : objects.value())
            expectNoError(backend->remove(calendar.calendarIdentifier, object.name, object.etag));
    }
}
