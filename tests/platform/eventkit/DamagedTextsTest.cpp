#include "eventkit/EventReading.h"
#include "eventkit/SeriesEditing.h"
#include "support/TestSupport.h"

#include <gtest/gtest.h>

#include <random>

/// Texts with anything broken in them: what is still understood can be read and edited, and what comes out is
/// understood again.
class DamagedTextsTest : public testing::Test
{
protected:
    std::size_t pick(std::size_t size)
    {
        return std::uniform_int_distribution<std::size_t>(0, size - 1)(random);
    }

    QByteArray damaged()
    {
        QList<QByteArray> lines = sample.split('\n');
        for (std::size_t count = 1 + pick(3); count > 0; --count) {
            QByteArray &line = lines[qsizetype(pick(std::size_t(lines.size())))];
            const auto place = qsizetype(pick(std::size_t(line.size()) + 1));
            switch (pick(5)) {
            case 0:
                line = lines[qsizetype(pick(std::size_t(lines.size())))];
                break;
            case 1:
                line = line.left(place);
                break;
            case 2:
                line.insert(place, static_cast<char>(pick(256)));
                break;
            case 3:
                line.insert(place, QByteArray::number(qulonglong(random()) * random()));
                break;
            default:
                line.replace("2024", QByteArray::number(qulonglong(pick(12'000))).rightJustified(4, '0'));
            }
        }
        return lines.join('\n');
    }

    static void expectUnderstood(const QByteArray &text, const QByteArray &origin)
    {
        const auto item = CalendarItem::fromText(text);
        EXPECT_TRUE(item) << (item ? "" : qPrintable(item.error().message)) << "\n" << origin.constData();
    }

    static void edit(const CalendarItemPointer &item, const ItemOccurrence &occurrence,
                     const QByteArray &origin)
    {
        const EKEvent before = eventOf(item, occurrence, EKCalendar());
        EKEvent after = before;
        after.title = QStringLiteral("Other");
        after.startDate = *before.startDate + Seconds(7200);
        after.endDate = *before.endDate + Seconds(10'800);
        expectUnderstood(SeriesEditing::withOccurrence(*item, occurrence, before, after).text, origin);
        expectUnderstood(SeriesEditing::from(*item, occurrence, before, after, QStringLiteral("new")).text,
                         origin);
        after.allDay = !before.allDay;
        expectUnderstood(SeriesEditing::from(*item, occurrence, before, after, item->uid()).text, origin);
        for (const auto &rest :
             {SeriesEditing::upTo(*item, occurrence.key), SeriesEditing::without(*item, occurrence.key)})
            if (rest)
                expectUnderstood(*rest, origin);
    }

    std::mt19937 random{testSeed()};
    const QByteArray sample =
        "BEGIN:VCALENDAR\nBEGIN:VTIMEZONE\nTZID:Own\nBEGIN:STANDARD\nDTSTART:20241027T030000\n"
        "TZOFFSETFROM:+0200\nTZOFFSETTO:+0100\nRRULE:FREQ=YEARLY;BYMONTH=10;BYDAY=-1SU\nEND:STANDARD\n"
        "END:VTIMEZONE\nBEGIN:VEVENT\nUID:1\nDTSTART;TZID=Own:20240304T090000\nDURATION:P1DT2H\n"
        "RRULE:FREQ=DAILY;COUNT=30;INTERVAL=2\nEXDATE;TZID=Own:20240308T090000\nRDATE;VALUE=PERIOD:"
        "20240309T080000Z/PT1H\nGEO:1;2\nLOCATION:x\nATTENDEE;CN=\"a\":mailto:x\nBEGIN:VALARM\n"
        "ACTION:DISPLAY\nTRIGGER;RELATED=END:-PT5M\nEND:VALARM\nEND:VEVENT\nBEGIN:VEVENT\nUID:1\n"
        "RECURRENCE-ID;TZID=Own:20240306T090000\nDTSTART:20240306T100000Z\nDTEND;VALUE=DATE:20240310\n"
        "END:VEVENT\nEND:VCALENDAR\n";
};

TEST_F(DamagedTextsTest, WhatIsStillUnderstoodAfterGeneratedDamageCanBeEdited)
{
    int understood = 0;
    for (int round = 0; round < 400; ++round) {
        const QByteArray text = damaged();
        const auto item = CalendarItem::fromText(text);
        if (!item || !item.value() || item.value()->entityType() != EKEntityType::Event)
            continue;
        EXPECT_EQ(item.value()->document().text(), text);
        const auto occurrences =
            ItemExpansion::occurrences(*item.value(), {utcDate(2024, 3, 1), utcDate(2024, 4, 1)});
        if (occurrences.empty())
            continue;
        ++understood;
        edit(item.value(), occurrences[pick(occurrences.size())], text);
        if (HasFailure())
            return;
    }
    EXPECT_GT(understood, 100);
}
