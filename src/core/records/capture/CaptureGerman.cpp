#include "records/capture/CaptureWords.h"

#include <utility>

// The German words of dates, times and repetitions.

using namespace Qt::Literals::StringLiterals;

void CaptureWords::addGerman()
{
    using enum Meaning;
    if (std::exchange(knowsGerman, true))
        return;
    constexpr int hour = 60;
    add({u"heute"}, DaysAhead, 0);
    add({u"morgen"}, DaysAhead, 1);
    add({u"übermorgen", u"uebermorgen"}, DaysAhead, 2);
    add({u"guten morgen", u"guten abend", u"gute nacht", u"guten tag"}, Saying);
    add({u"herr", u"herrn", u"hr.", u"frau", u"fr.", u"familie", u"dr."}, PersonTitle);
    for (const QStringView within : {u"binnen ", u"innerhalb von ", u"innerhalb "}) {
        add(within.toString() + u"# tagen"_s, Entry{DaysAhead, 1});
        add(within.toString() + u"# wochen"_s, Entry{WeeksAhead, 1});
        add(within.toString() + u"# monaten"_s, Entry{MonthsAhead, 1});
        add(within.toString() + u"einer woche"_s, Entry{WeeksAhead, 1});
        add(within.toString() + u"eines monats"_s, Entry{MonthsAhead, 1});
    }
    add({u"in # tagen", u"in # tag", u"in einem tag"}, DaysAhead, 1);
    add({u"in # wochen", u"in # woche", u"in einer woche"}, WeeksAhead, 1);
    add({u"in # monaten", u"in # monat", u"in einem monat"}, MonthsAhead, 1);
    add({u"in # jahren", u"in # jahr", u"in einem jahr"}, YearsAhead, 1);
    add({u"in # stunden", u"in # stunde", u"in einer stunde"}, HoursAhead, 1);
    add({u"in # minuten", u"in # minute", u"in # min"}, MinutesAhead, 1);
    add({u"in einem halben jahr"}, MonthsAhead, 6);
    add({u"in einer viertelstunde"}, MinutesAhead, 15);
    add({u"in einer dreiviertelstunde"}, MinutesAhead, 45);
    for (const QStringView word :
         {u"nächste", u"nächster", u"nächsten", u"nächstes", u"kommende", u"kommenden", u"kommender"}) {
        const QString next = word.toString();
        add(next + u" woche"_s, Entry{NextWeek, 1});
        add(u"über"_s + next + u" woche"_s, Entry{NextWeek, 2});
        for (const QStringView month : {u" monat", u" monats"})
            add(next + month.toString(), Entry{NextMonth});
        for (const QStringView year : {u" jahr", u" jahres"})
            add(next + year.toString(), Entry{NextYear});
        add(next + u" wochenende"_s, Entry{Weekend, 1});
        add(u"am "_s + next + u" wochenende"_s, Entry{Weekend, 1});
    }
    add({u"des nächsten monats"}, NextMonth);
    add({u"des nächsten jahres"}, NextYear);
    add({u"wochenende", u"am wochenende", u"dieses wochenende", u"zum wochenende", u"bis zum wochenende"},
        Weekend);
    add({u"monatsende", u"zum monatsende", u"bis monatsende"}, EndOfMonth);
    add({u"jahresende", u"zum jahresende", u"bis jahresende"}, EndOfYear);
    add({u"kw #", u"kw#", u"in kw #", u"in kw#"}, WeekNumber);
    add({u"der woche", u"dieser woche", u"diese woche"}, ThisWeek);
    add({u"des monats", u"im monat", u"dieses monats", u"diesen monat"}, ThisMonth);
    add({u"des jahres", u"dieses jahres", u"dieses jahr"}, ThisYear);
    add({u"anfang"}, PartOf, 0);
    add({u"mitte"}, PartOf, 1);
    add({u"ende", u"letzter tag", u"letzten tag", u"letzter tag im", u"letzten tag im"}, PartOf, 2);
    const QStringView ordinals[] = {u"letzte", u"erste", u"zweite", u"dritte", u"vierte", u"fünfte"};
    int order = -1;
    for (const QStringView stem : ordinals) {
        for (const QStringView ending : {u"", u"n", u"r", u"s"})
            add(stem.toString() + ending.toString(), Entry{Ordinal, order});
        order += order < 0 ? 2 : 1;
    }
    add({u"letzten tag", u"letzter tag"}, LastDay);
    add({u"irgendwann", u"eines tages"}, Someday);
    const std::pair<QStringView, int> parts[] = {
        {u"früh", 9 * hour},        {u"morgen", 9 * hour}, {u"vormittag", 10 * hour}, {u"mittag", 12 * hour},
        {u"nachmittag", 15 * hour}, {u"abend", 18 * hour}, {u"nacht", 22 * hour}};
    for (const auto &[part, minute] : parts)
        add(part.toString(), Entry{DayPart, minute, true});
    const QStringView days[] = {u"sonntag",    u"montag",  u"dienstag", u"mittwoch",
                                u"donnerstag", u"freitag", u"samstag"};
    int day = 0;
    for (const QStringView name : days) {
        ++day;
        const QString full = name.toString();
        for (const QStringView word : {u"nächsten ", u"nächster ", u"nächste "}) {
            add(word.toString() + full, Entry{WeekdayNextWeek, day});
            add(u"über"_s + word.toString() + full, Entry{WeekdayAfterNext, day});
        }
        for (const QStringView word : {u"kommenden ", u"kommender "})
            add(word.toString() + full, Entry{Weekday, day});
        add(full + u's', Entry{WeekdayEach, day});
        for (const auto &[part, minute] : parts)
            add(full + part.toString(), Entry{Weekday, day, false, minute});
        // With the full stop it is a weekday, but for "Fr. Müller"; without, "so" and "do" are mostly
        // something else.
        add(full.left(2) + u"."_s, Entry{Weekday, day, name == u"freitag"});
        add(full.left(2), Entry{Weekday, day, true});
    }
    add({u"sonnabend"}, Weekday, 7);
    add({u"jänner"}, Month, 1);
    add({u"mitternacht"}, Minute, 24 * hour);
    add({u"morgens", u"am morgen"}, DayPart, 9 * hour);
    add({u"vormittags", u"am vormittag"}, DayPart, 10 * hour);
    add({u"mittags", u"am mittag"}, DayPart, 12 * hour);
    add({u"nachmittags", u"am nachmittag"}, DayPart, 15 * hour);
    add({u"abends", u"am abend"}, DayPart, 18 * hour);
    add({u"nachts", u"in der nacht"}, DayPart, 22 * hour);
    add({u"halb #"}, ClockAround, -30);
    add({u"viertel nach #"}, ClockAround, 15);
    add({u"viertel vor #", u"dreiviertel #"}, ClockAround, -15);
    add({u"täglich", u"jeden tag"}, Daily);
    add({u"wöchentlich", u"jede woche", u"einmal pro woche", u"einmal in der woche"}, Weekly);
    add({u"vierzehntägig"}, Weekly, 2);
    add({u"monatlich", u"jeden monat", u"einmal im monat"}, Monthly);
    add({u"vierteljährlich", u"jedes quartal"}, Monthly, 3);
    add({u"jährlich", u"jedes jahr", u"einmal im jahr"}, Yearly);
    add({u"werktags", u"jeden werktag", u"an werktagen", u"wochentags"}, OnWorkdays);
    add({u"jedes wochenende", u"an wochenenden"}, OnWeekends);
    add({u"jeden", u"jede", u"jedes", u"immer"}, Every);
    add({u"jedes monats", u"jeden monats", u"eines jeden monats", u"jeden monat"}, EachMonth, 1);
    add({u"im monat", u"des monats"}, EachMonth, 0);
    add({u"alle #"}, Every, 0);
    add({u"# mal", u"#mal", u"#-mal"}, Times);
    add({u"am", u"bis", u"bis zum", u"zum", u"diesen", u"dieser", u"fällig", u"fällig am", u"fällig bis",
         u"spätestens", u"spätestens am", u"bis spätestens", u"bis spätestens am", u"ab dem",
         u"bis einschließlich"},
        BeforeDate);
    add({u"vor", u"noch vor", u"vor dem"}, BeforeDate, -1, true);
    add({u"# tage vor", u"# tage vor dem", u"# tag vor", u"einen tag vor", u"am tag vor"}, BeforeDate, -1,
        true);
    add({u"# tage nach", u"# tage nach dem", u"# tag nach", u"einen tag nach", u"am tag nach"}, BeforeDate, 1,
        true);
    add({u"# wochen vor", u"# wochen vor dem", u"eine woche vor"}, BeforeDate, -7, true);
    add({u"# wochen nach", u"# wochen nach dem", u"eine woche nach"}, BeforeDate, 7, true);
    add({u"vor", u"noch vor"}, BeforeTime, 0, true);
    add({u"den", u"dem", u"der", u"für", u"für den"}, BeforeDate, 0, true);
    add({u"um", u"gegen", u"bis", u"ab"}, BeforeTime);
    add({u"von", u"vom", u"ab"}, From);
    add({u"bis", u"bis zum", u"bis einschließlich", u"bis inklusive"}, To);
    add({u"bis", u"bis zum", u"bis einschließlich"}, Until);
    add({u"zwischen"}, Between);
    add({u"für"}, For);
    add({u"und"}, And);
    add({u"# stunden", u"# stunde", u"# std", u"# std.", u"#std", u"#std."}, Hours, 1);
    add({u"# minuten", u"# minute", u"# min."}, Minutes, 1);
    add({u"eine halbe stunde", u"einer halben stunde"}, Minutes, 30);
    add({u"eine viertelstunde"}, Minutes, 15);
    add({u"eine dreiviertelstunde"}, Minutes, 45);
    add({u"anderthalb stunden", u"eineinhalb stunden"}, Minutes, 90);
    add({u"uhr"}, OClock);
    add({u"tag", u"tage", u"tagen"}, DayUnit);
    add({u"woche", u"wochen"}, WeekUnit);
    add({u"monat", u"monate", u"monaten"}, MonthUnit);
    add({u"jahr", u"jahre", u"jahren"}, YearUnit);
    const QStringView names[] = {u"eins",     u"zwei",     u"drei",     u"vier",     u"fünf",
                                 u"sechs",    u"sieben",   u"acht",     u"neun",     u"zehn",
                                 u"elf",      u"zwölf",    u"dreizehn", u"vierzehn", u"fünfzehn",
                                 u"sechzehn", u"siebzehn", u"achtzehn", u"neunzehn", u"zwanzig"};
    int number = 0;
    for (const QStringView name : names)
        numbers.emplace(name.toString(), ++number);
    for (const QStringView name : {u"ein", u"eine", u"einem", u"einer"})
        numbers.emplace(name.toString(), 1);
}
