#include "records/capture/CaptureLine.h"
#include "foundation/DateFormatter.h"
#include "foundation/Region.h"
#include "records/capture/CaptureWords.h"
#include "recurrence/RecurrenceSentence.h"
#include "support/TestSupport.h"

#include <gtest/gtest.h>

#include <random>

using namespace Qt::Literals::StringLiterals;

namespace {

struct Line
{
    QStringView typed;
    /// The title, and in brackets what was understood: days, minutes, repetition, marks.
    QStringView read;
};

QString inShort(Date date)
{
    return DateFormatter::string(date, u"yyyy-MM-dd"_s);
}

QString inShort(int minute)
{
    return u"%1:%2"_s.arg(minute / 60).arg(minute % 60, 2, 10, QLatin1Char('0'));
}

QString inShort(const RecurrenceRule &rule)
{
    const QStringList units{u"year"_s, u"month"_s, u"week"_s, u"day"_s};
    const RecurrenceFrequency order[] = {RecurrenceFrequency::yearly, RecurrenceFrequency::monthly,
                                         RecurrenceFrequency::weekly, RecurrenceFrequency::daily};
    const auto place = std::ranges::find(order, rule.frequency) - std::begin(order);
    QString text = u"every %1 %2"_s.arg(rule.interval).arg(units.value(place));
    for (const EKWeekday day : rule.byweekday)
        text += u" "_s + QString::number(int(day));
    if (rule.recurrenceEnd && rule.recurrenceEnd->occurrenceCount() > 0)
        text += u" x%1"_s.arg(rule.recurrenceEnd->occurrenceCount());
    else if (rule.recurrenceEnd && rule.recurrenceEnd->endDate())
        text += u" to "_s + inShort(*rule.recurrenceEnd->endDate());
    return text;
}

QString inShort(const Capture &capture)
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

} // namespace

TEST_F(CaptureLineTest, EnglishLines)
{
    Region::setLocale(u"en_US"_s);
    const CaptureWords words({u"en"_s});
    // A Saturday.
    expect(words, localDate(2026, 11, 21, 9, 15),
           {
               {u"Buy milk", u"Buy milk"},
               {u"Buy milk today", u"Buy milk [2026-11-21]"},
               {u"Tomorrow buy milk", u"buy milk [2026-11-22]"},
               {u"Pay rent the day after tomorrow", u"Pay rent [2026-11-23]"},
               {u"Call Ada tomorrow 5pm", u"Call Ada [2026-11-22, 17:00]"},
               {u"Call Ada tomorrow, at 5:30 pm", u"Call Ada [2026-11-22, 17:30]"},
               {u"Call Ada at 5", u"Call Ada [2026-11-21, 17:00]"},
               {u"Call Ada at 8", u"Call Ada [2026-11-22, 8:00]"},
               {u"Call Ada at noon", u"Call Ada [2026-11-21, 12:00]"},
               {u"Dinner tonight", u"Dinner [2026-11-21, 20:00]"},
               {u"Meeting mon 10-11:30", u"Meeting [2026-11-23, 10:00-11:30]"},
               {u"Meeting monday from 10 to 11:30", u"Meeting [2026-11-23, 10:00-11:30]"},
               {u"Meeting monday 5-6pm", u"Meeting [2026-11-23, 17:00-18:00]"},
               {u"Meeting monday 10:00–11:00", u"Meeting [2026-11-23, 10:00-11:00]"},
               {u"Meeting on tuesday at 9am for 90 minutes", u"Meeting [2026-11-24, 9:00-10:30]"},
               {u"Report by friday", u"Report [2026-11-27]"},
               {u"Report next friday", u"Report [2026-11-27]"},
               {u"Report due next week", u"Report [2026-11-23]"},
               {u"Report next month", u"Report [2026-12-01]"},
               {u"Report end of month", u"Report [2026-11-30]"},
               {u"Mow in 3 days", u"Mow [2026-11-24]"},
               {u"Mow in two weeks", u"Mow [2026-12-05]"},
               {u"Mow in a month", u"Mow [2026-12-21]"},
               {u"Tea in 2 hours", u"Tea [2026-11-21, 11:15]"},
               {u"Hike this weekend", u"Hike [2026-11-21]"},
               {u"Gift 12/24", u"Gift [2026-12-24]"},
               {u"Gift 2/3/27", u"Gift [2027-02-03]"},
               {u"Gift Dec 24", u"Gift [2026-12-24]"},
               {u"Gift 24th of December 2027", u"Gift [2027-12-24]"},
               {u"Gift on the 5th", u"Gift [2026-12-05]"},
               {u"Holiday from Dec 24 to Dec 27", u"Holiday [2026-12-24/2026-12-27]"},
               {u"Tidy up someday", u"Tidy up [someday]"},
               {u"Leap 29 Feb", u"Leap [2028-02-29]"},
               {u"Water plants every day", u"Water plants [2026-11-21, every 1 day]"},
               {u"Water plants every 3 days at 8am", u"Water plants [2026-11-21, 8:00, every 3 day]"},
               {u"Gym every monday and thursday", u"Gym [2026-11-23, every 1 week 2 5]"},
               {u"Gym every other week on friday", u"Gym [2026-11-27, every 2 week 6]"},
               {u"Stand-up every weekday 9:00", u"Stand-up [2026-11-23, 9:00, every 1 week 2 3 4 5 6]"},
               {u"Rent every 1st", u"Rent [2026-12-01, every 1 month]"},
               {u"Rent monthly on the 15th", u"Rent [2026-12-15, every 1 month]"},
               {u"Birthday every 31 Dec", u"Birthday [2026-12-31, every 1 year]"},
               {u"Course weekly until 12/31", u"Course [2026-11-21, every 1 week to 2026-12-31]"},
               {u"Course every tuesday 5 times", u"Course [2026-11-24, every 1 week 3 x5]"},
               {u"Taxes !!!", u"Taxes [p0]"},
               {u"Lunch place:Bistro tomorrow", u"Lunch [2026-11-22, at Bistro]"},
           });
}

TEST_F(CaptureLineTest, GermanLines)
{
    Region::setLocale(u"de_DE"_s);
    const CaptureWords words({u"de"_s, u"en"_s});
    expect(words, localDate(2026, 11, 21, 9, 15),
           {
               {u"Milch kaufen", u"Milch kaufen"},
               {u"Milch kaufen heute", u"Milch kaufen [2026-11-21]"},
               {u"Morgen Milch kaufen", u"Milch kaufen [2026-11-22]"},
               {u"Miete übermorgen", u"Miete [2026-11-23]"},
               {u"Ada anrufen morgen um 17 Uhr", u"Ada anrufen [2026-11-22, 17:00]"},
               {u"Ada anrufen morgen 17:30", u"Ada anrufen [2026-11-22, 17:30]"},
               {u"Ada anrufen um 5", u"Ada anrufen [2026-11-22, 5:00]"},
               {u"Ada anrufen um 17.30 Uhr", u"Ada anrufen [2026-11-21, 17:30]"},
               {u"Besprechung Montag von 10 bis 11:30", u"Besprechung [2026-11-23, 10:00-11:30]"},
               {u"Besprechung am Montag 10-12 Uhr", u"Besprechung [2026-11-23, 10:00-12:00]"},
               {u"Besprechung am Di. um 9 Uhr für 2 Stunden", u"Besprechung [2026-11-24, 9:00-11:00]"},
               {u"Bericht bis Freitag", u"Bericht [2026-11-27]"},
               {u"Bericht nächsten Freitag", u"Bericht [2026-11-27]"},
               {u"Bericht nächste Woche", u"Bericht [2026-11-23]"},
               {u"Bericht Ende des Monats", u"Bericht [2026-11-30]"},
               {u"Rasen in drei Tagen", u"Rasen [2026-11-24]"},
               {u"Rasen in 2 Wochen", u"Rasen [2026-12-05]"},
               {u"Rasen in einem Monat", u"Rasen [2026-12-21]"},
               {u"Geschenk 24.12.", u"Geschenk [2026-12-24]"},
               {u"Geschenk am 24.12.2027", u"Geschenk [2027-12-24]"},
               {u"Geschenk 24. Dezember", u"Geschenk [2026-12-24]"},
               {u"Geschenk am 5.", u"Geschenk [2026-12-05]"},
               {u"Urlaub vom 24.12. bis 27.12.", u"Urlaub [2026-12-24/2026-12-27]"},
               {u"Urlaub 24.12. - 3.1.", u"Urlaub [2026-12-24/2027-01-03]"},
               {u"Aufräumen irgendwann", u"Aufräumen [someday]"},
               {u"Blumen gießen täglich", u"Blumen gießen [2026-11-21, every 1 day]"},
               {u"Blumen gießen alle 3 Tage um 8 Uhr", u"Blumen gießen [2026-11-21, 8:00, every 3 day]"},
               {u"Sport jeden Montag und Donnerstag", u"Sport [2026-11-23, every 1 week 2 5]"},
               {u"Sport alle zwei Wochen am Freitag", u"Sport [2026-11-27, every 2 week 6]"},
               {u"Runde werktags 9:00", u"Runde [2026-11-23, 9:00, every 1 week 2 3 4 5 6]"},
               {u"Miete jeden 1.", u"Miete [2026-12-01, every 1 month]"},
               {u"Kurs wöchentlich bis 31.12.", u"Kurs [2026-11-21, every 1 week to 2026-12-31]"},
               {u"Kurs jeden Dienstag 5 mal", u"Kurs [2026-11-24, every 1 week 3 x5]"},
               {u"Steuer !! ort:Büro", u"Steuer [p1, at Büro]"},
               {u"Frühstück Sonntag morgens", u"Frühstück [2026-11-22, 9:00]"},
           });
}

TEST_F(CaptureLineTest, WhatIsNotUnderstoodStaysInTheTitle)
{
    Region::setLocale(u"de_DE"_s);
    const CaptureWords words({u"de"_s, u"en"_s});
    expect(words, localDate(2026, 11, 21, 9, 15),
           {
               {u"", u""},
               {u"   ", u""},
               {u"so geht das nicht", u"so geht das nicht"},
               {u"Buy sun cream", u"Buy sun cream"},
               {u"31.2. gibt es nicht", u"31.2. gibt es nicht"},
               {u"30 Feb party", u"30 Feb party"},
               {u"Zimmer 25:00", u"Zimmer 25:00"},
               {u"Version 2.10 testen", u"Version 2.10 testen"},
               {u"5 Äpfel kaufen", u"5 Äpfel kaufen"},
               {u"Read \"Tomorrow\" by Ada", u"Read \"Tomorrow\" by Ada"},
               {u"today and tomorrow", u"and tomorrow [2026-11-21]"},
               {u"#Unknown +nobody @none", u"#Unknown +nobody @none"},
               {u"Wow!! great !!!! stop", u"Wow!! great !!!! stop"},
               {u"someday at 5pm", u"at 5pm [someday]"},
               {u"for 2 hours", u"for 2 hours"},
               {u"every", u"every"},
               {u"every now and then", u"every now and then"},
               {u"on", u"on"},
               {u"C++ +", u"C++ +"},
               {u"99999999999 days", u"99999999999 days"},
           });
}

TEST_F(CaptureLineTest, MonthEndsAndChangesOfTheClock)
{
    Region::setLocale(u"de_DE"_s);
    const CaptureWords words({u"de"_s, u"en"_s});
    expect(words, localDate(2027, 1, 31, 23, 30),
           {
               {u"a in einem Monat", u"a [2027-02-28]"},
               {u"b morgen", u"b [2027-02-01]"},
               {u"c in 1 Stunde", u"c [2027-02-01, 0:30]"},
               {u"d Monatsende", u"d [2027-01-31]"},
               {u"e am 31.", u"e [2027-01-31]"},
               {u"f am 30.", u"f [2027-03-30]"},
               {u"g um 23 Uhr", u"g [2027-02-01, 23:00]"},
           });
    // The night in which an hour is skipped, and the one in which there are two of it.
    expect(words, localDate(2026, 3, 28, 12),
           {{u"a morgen 2:30", u"a [2026-03-29, 2:30]"}, {u"b in 1 Tag", u"b [2026-03-29]"}});
    expect(words, localDate(2026, 10, 25, 0, 30),
           {{u"a in 24 Stunden", u"a [2026-10-25, 23:30]"}, {u"b morgen", u"b [2026-10-26]"}});
    expect(words, localDate(9999, 12, 31, 12), {{u"a 1.1.", u"a 1.1."}});
}

TEST_F(CaptureLineTest, OtherLanguagesHaveTheirWordsFromTheLocaleData)
{
    const Date now = localDate(2026, 11, 21, 9, 15);
    const std::tuple<QStringView, QStringView, QStringView> lines[] = {
        {u"fr", u"Courses demain", u"Courses [2026-11-22]"},
        {u"fr", u"Courses dans 3 jours", u"Courses [2026-11-24]"},
        {u"es", u"Compras pasado mañana", u"Compras [2026-11-23]"},
        {u"it", u"Spesa lunedì", u"Spesa [2026-11-23]"},
        {u"nl", u"Boodschappen over 2 weken", u"Boodschappen [2026-12-05]"},
        {u"ru", u"Молоко через 5 дней", u"Молоко [2026-11-26]"},
        {u"ja", u"牛乳 明日", u"牛乳 [2026-11-22]"},
        {u"ja", u"牛乳 3日後", u"牛乳 3日後"},
        {u"sv", u"Mjölk i morgon", u"Mjölk [2026-11-22]"},
    };
    for (const auto &[language, typed, read] : lines) {
        const QString words = typed.toString();
        const Capture capture = CaptureLine(CaptureWords({language.toString()}), {}, now).read(words);
        if (words == u"牛乳 3日後"_s)
            EXPECT_TRUE(inShort(capture) == read.toString() || inShort(capture) == u"牛乳 [2026-11-24]"_s);
        else
            EXPECT_EQ(inShort(capture), read.toString()) << words.toStdString();
    }
}

TEST_F(CaptureLineTest, NamesArePiecesThatCanBeTakenBack)
{
    Region::setLocale(u"en_US"_s);
    const CaptureWords words({u"en"_s});
    const auto category = std::make_shared<EntityCategory>();
    CaptureLine::Names names;
    names.category = [&](QStringView text) -> std::pair<CategoryPtr, int> {
        return text.startsWith(u"Deep Work") ? std::pair(category, 9) : std::pair(CategoryPtr(), 0);
    };
    const CaptureLine line(words, names, localDate(2026, 11, 21, 9, 15));
    const QString typed = u"Plan #Deep Work, tomorrow 5pm !"_s;
    const Capture all = line.read(typed);
    EXPECT_EQ(all.title, u"Plan"_s);
    EXPECT_EQ(all.category, category);
    using Kind = CapturePiece::Kind;
    const std::vector<CapturePiece> pieces = {
        {Kind::Category, 5, 10}, {Kind::Date, 17, 8}, {Kind::Time, 26, 3}, {Kind::Priority, 30, 1}};
    EXPECT_EQ(all.pieces, pieces);
    const Capture without = line.read(typed, {5, 26});
    EXPECT_EQ(without.title, u"Plan #Deep Work, 5pm"_s);
    EXPECT_EQ(without.category, nullptr);
    EXPECT_FALSE(without.minute);
    EXPECT_TRUE(without.day);
    EXPECT_EQ(line.read(u"#Deep Workshop"_s).title, u"#Deep Workshop"_s) << "a part of a word is no name";
}

TEST_F(CaptureLineTest, GeneratedLinesLoseNoWord)
{
    Region::setLocale(u"en_US"_s);
    const CaptureWords words({u"de"_s, u"en"_s});
    const CaptureLine line(words, {}, localDate(2026, 11, 21, 9, 15));
    const QStringList pool =
        u"every each on by from to 5 5pm 10-11 31.12. 12/24 Dec monday so sun in 2 weeks days "
        "until for hours ! !!! #x +y @z place:a \"quoted text\" morgen um bis am 17 Uhr jeden "
        "1. next week someday - and 99/99 0 é 😀"_s.split(u' ');
    std::mt19937 random(testSeed());
    for (int round = 0; round < 3000; ++round) {
        QStringList typed;
        const int count = int(random() % 9);
        for (int word = 0; word < count; ++word)
            typed.append(pool.at(int(random() % uint(pool.size()))));
        const QString text = typed.join(u' ');
        const Capture capture = line.read(text);
        // The title and the pieces together are the line.
        QString rest = text;
        for (auto piece = capture.pieces.rbegin(); piece != capture.pieces.rend(); ++piece) {
            ASSERT_GE(piece->from, 0);
            ASSERT_LE(piece->from + piece->length, rest.size()) << "pieces lie apart: " << text.toStdString();
            rest.replace(piece->from, piece->length, u" "_s);
        }
        ASSERT_EQ(rest.remove(u',').simplified(), QString(capture.title).remove(u',').simplified())
            << text.toStdString();
    }
}
