#pragma once

#include "foundation/DateFormatter.h"
#include "foundation/Region.h"
#include "records/capture/CaptureLine.h"
#include "records/capture/CaptureWords.h"
#include "recurrence/RecurrenceSentence.h"
#include "support/TestSupport.h"

#include <gtest/gtest.h>

// Captured lines, and what is read from them in one short text.

namespace capturelines {

using namespace Qt::Literals::StringLiterals;

struct Line
{
    QStringView typed;
    /// The title, and in brackets what was understood: days, minutes, repetition, marks.
    QStringView read;
};

inline QString inShort(Date date)
{
    return DateFormatter::string(date, u"yyyy-MM-dd"_s);
}

inline QString inShort(int minute)
{
    return u"%1:%2"_s.arg(minute / 60).arg(minute % 60, 2, 10, QLatin1Char('0'));
}

inline QString inShort(const RecurrenceRule &rule)
{
    const QStringList units{u"year"_s, u"month"_s, u"week"_s, u"day"_s};
    const RecurrenceFrequency order[] = {RecurrenceFrequency::yearly, RecurrenceFrequency::monthly,
                                         RecurrenceFrequency::weekly, RecurrenceFrequency::daily};
    const auto place = std::ranges::find(order, rule.frequency) - std::begin(order);
    QString text = u"every %1 %2"_s.arg(rule.interval).arg(units.value(place));
    for (const EKWeekday day : rule.byweekday)
        text += u" "_s + QString::number(int(day));
    for (const int position : rule.bysetpos)
        text += u" #"_s + QString::number(position);
    for (const int day : rule.bymonthday)
        text += u" d"_s + QString::number(day);
    if (rule.recurrenceEnd && rule.recurrenceEnd->occurrenceCount() > 0)
        text += u" x%1"_s.arg(rule.recurrenceEnd->occurrenceCount());
    else if (rule.recurrenceEnd && rule.recurrenceEnd->endDate())
        text += u" to "_s + inShort(*rule.recurrenceEnd->endDate());
    return text;
}

inline QString inShort(const Capture &capture)
{
    QStringList parts;
    if (capture.isSomeday)
        parts.append(u"someday"_s);
    if (capture.day)
        parts.append(inShort(*capture.day) +
                     (capture.lastDay ? u"/"_s + inShort(*capture.lastDay) : QString()));
    if (capture.minute)
        parts.append(inShort(*capture.minute) +
                     (capture.lastMinute ? u"-"_s + inShort(*capture.lastMinute) : QString()));
    if (capture.repeat)
        parts.append(inShort(*capture.repeat));
    if (capture.priority)
        parts.append(u"p%1"_s.arg(int(*capture.priority)));
    if (!capture.place.isEmpty())
        parts.append(u"at "_s + capture.place);
    return capture.title + (parts.isEmpty() ? QString() : u" ["_s + parts.join(u", "_s) + u"]"_s);
}

class CaptureLineTest : public testing::Test
{
protected:
    CaptureLineTest() { Region::setZone("Europe/Berlin"); }
    ~CaptureLineTest() override { Region::reload(); }

    static void expect(const CaptureWords &words, Date now, const std::vector<Line> &lines)
    {
        for (const Line &line : lines) {
            const Capture capture = CaptureLine(words, {}, now).read(line.typed.toString());
            EXPECT_EQ(inShort(capture), line.read.toString()) << line.typed.toString().toStdString();
        }
    }
};

} // namespace capturelines
