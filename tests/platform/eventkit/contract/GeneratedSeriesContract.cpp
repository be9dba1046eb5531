#include "EventStoreContract.h"

#include "eventkit/WallClock.h"

#include <QDateTime>
#include <QTimeZone>

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

    /// An edit of an occurrence of that series and all later ones.
    QByteArray edit(const QByteArray &uid, Date occurrence, const QByteArray &title) const
    {
        const QByteArray own = isAllDay ? "Europe/Berlin" : zone;
        const QDateTime start =
            QDateTime::fromSecsSinceEpoch(qint64(occurrence.unixSeconds()), QTimeZone(own));
        const auto line = [&](const QByteArray &name, const QDateTime &at) {
            const QByteArray day = at.toString(QStringLiteral("yyyyMMdd")).toLatin1();
            return isAllDay ? name + ";VALUE=DATE:" + day + "\n"
                            : name + ";TZID=" + zone + ":" + day +
                                  at.toString(QStringLiteral("'T'hhmmss")).toLatin1() + "\n";
        };
        return "BEGIN:VEVENT\nUID:" + uid + "\nDTSTAMP:20240101T000000Z\nSUMMARY:" + title + "\n" +
               line("RECURRENCE-ID;RANGE=THISANDFUTURE", start) +
               line("DTSTART", start.addSecs(int(shiftOfEdits()))) +
               "DURATION:" + (isAllDay ? "P2D" : "PT45M") + "\nEND:VEVENT\n";
    }
    /// An hour where that means the same on each day of the series.
    double shiftOfEdits() const { return !isAllDay && timeOfDay == "090000" ? 3600 : 0; }

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
        std::ranges::sort(events, {}, &EKEvent::occurrenceDate);
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
    /// Where edits of this and all later ones begin, by their title.
    QMap<QString, Date> edits;
    const auto all = [&] { return events(beginning, lastOccurrence + Seconds(5 * secondsOfADay)); };
    for (int round = 0; round < place->generatedSeries(); ++round) {
        const QString uid = u"series-%1"_qs.arg(round);
        putForeign(generator.series(uid.toLatin1()), uid);
        edits.clear();
        for (int count = generator.pick(0, 2); count > 0; --count) {
            ExpectedEvents expected(all());
            // Each before those that are there.
            expected.drop([&edits](const EKEvent &event) { return edits.contains(event.title); });
            if (expected.events.empty())
                break;
            const Date from = *generator.oneOf(expected.events).occurrenceDate;
            expected = ExpectedEvents(all());
            const QString title = u"Edit %1"_qs.arg(count);
            expected.change([&](EKEvent &event) {
                if (*event.occurrenceDate < from || edits.contains(event.title))
                    return;
                event.title = title;
                move(event, generator.shiftOfEdits());
                if (!generator.isAllDay)
                    event.endDate = *event.startDate + Seconds(45 * 60);
            });
            auto objects = backend->objects(calendar.calendarIdentifier);
            CalendarObject object = objects.value().front();
            object.text.replace("END:VCALENDAR",
                                generator.edit(uid.toLatin1(), from, title.toLatin1()).replace("\n", "\r\n") +
                                    "END:VCALENDAR");
            EXPECT_TRUE(backend->put(calendar.calendarIdentifier, object, uid));
            EXPECT_EQ(ExpectedEvents(all()).list(), expected.list()) << object.text.constData();
            edits.insert(title, from);
        }
        const QByteArray original = textOf(uid);
        for (int count = generator.pick(0, 2); count > 0; --count) {
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
        // Behind one that was edited alone the rest is that of the next.
        const auto next =
            std::find_if(expected.events.begin(), expected.events.end(), [&](const EKEvent &event) {
                return *event.occurrenceDate > at && !event.isDetached && chosen.isDetached;
            });
        const Date restFrom = next == expected.events.end() ? at : *next->occurrenceDate;
        const auto isMeant = [&](const EKEvent &event) {
            const bool isOfNextEdit = edits.contains(event.title) && edits[event.title] > restFrom;
            return *event.occurrenceDate == at || (isLater(event) && !event.isDetached && !isOfNextEdit);
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
            const double shift = edit == 4 ? generator.shiftOfEdits() : 0;
            // What another program had moved for good is when the new series has it.
            const bool isOfEdit =
                std::any_of(edits.cbegin(), edits.cend(), [restFrom](Date from) { return from <= restFrom; });
            const double moved = shift + (isOfEdit ? generator.shiftOfEdits() : 0);
            expected.change([&](EKEvent &event) {
                if (isMeant(event)) {
                    event.title = u"Later"_qs;
                    move(event, shift);
                }
                if (isLater(event))
                    event.occurrenceDate = *event.occurrenceDate + Seconds(moved);
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
