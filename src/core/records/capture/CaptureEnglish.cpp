#include "records/capture/CaptureWords.h"

// The English words of dates, times and repetitions.

using namespace Qt::Literals::StringLiterals;

void CaptureWords::addEnglish()
{
    using enum Meaning;
    constexpr int hour = 60;
    add({u"today"}, DaysAhead, 0);
    add({u"tomorrow", u"tmrw", u"tmr"}, DaysAhead, 1);
    add({u"day after tomorrow", u"the day after tomorrow", u"overmorrow"}, DaysAhead, 2);
    add({u"good morning", u"good afternoon", u"good evening", u"good night"}, Saying);
    add({u"mr", u"mr.", u"mrs", u"mrs.", u"ms", u"ms.", u"miss", u"dr", u"dr."}, PersonTitle);
    add({u"within # days", u"within a day"}, DaysAhead, 1);
    add({u"within # weeks", u"within a week"}, WeeksAhead, 1);
    add({u"within # months", u"within a month"}, MonthsAhead, 1);
    add({u"in # days", u"in # day", u"# days from now", u"in a day"}, DaysAhead, 1);
    add({u"in # weeks", u"in # week", u"# weeks from now", u"in a week"}, WeeksAhead, 1);
    add({u"in # months", u"in # month", u"# months from now", u"in a month"}, MonthsAhead, 1);
    add({u"in # years", u"in # year", u"# years from now", u"in a year"}, YearsAhead, 1);
    add({u"in # hours", u"in # hour", u"in an hour", u"in # h"}, HoursAhead, 1);
    add({u"in # minutes", u"in # minute", u"in # min", u"in a minute"}, MinutesAhead, 1);
    add({u"in half a year"}, MonthsAhead, 6);
    add({u"in a fortnight"}, WeeksAhead, 2);
    add({u"# weeks from", u"# week from", u"a week from"}, WeeksFrom, 1);
    add({u"next week", u"coming week"}, NextWeek, 1);
    add({u"week after next", u"the week after next"}, NextWeek, 2);
    add({u"next month"}, NextMonth);
    add({u"next year"}, NextYear);
    add({u"weekend", u"the weekend", u"this weekend", u"at the weekend", u"on the weekend"}, Weekend);
    add({u"next weekend"}, Weekend, 1);
    add({u"eom"}, EndOfMonth);
    add({u"eoy"}, EndOfYear);
    add({u"week", u"the week", u"this week"}, ThisWeek);
    add({u"month", u"the month", u"this month"}, ThisMonth);
    add({u"year", u"the year", u"this year"}, ThisYear);
    add({u"early", u"in early", u"start of", u"the start of", u"at the start of", u"beginning of",
         u"the beginning of"},
        PartOf, 0);
    add({u"mid", u"in mid", u"middle of", u"the middle of", u"in the middle of"}, PartOf, 1);
    add({u"end of", u"the end of", u"at the end of", u"last day of", u"the last day of"}, PartOf, 2);
    const std::initializer_list<QStringView> ordinals[] = {{u"last"},  {u"first"},  {u"second"},
                                                           {u"third"}, {u"fourth"}, {u"fifth"}};
    int order = -1;
    for (const auto &ordinal : ordinals) {
        add(ordinal, Ordinal, order);
        order += order < 0 ? 2 : 1;
    }
    add({u"last day"}, LastDay);
    add({u"someday", u"some day"}, Someday);
    const std::initializer_list<QStringView> shortDays[] = {
        {u"sun"}, {u"mon"}, {u"tue", u"tues"}, {u"wed", u"weds"}, {u"thu", u"thur", u"thurs"},
        {u"fri"}, {u"sat"}};
    int day = 0;
    for (const auto &names : shortDays) {
        ++day;
        add(names, Weekday, day, day == 1 || day == 7 || day == 4);
        for (const QStringView name : names)
            add(u"next "_s + name.toString(), Entry{WeekdayNextWeek, day});
    }
    day = 0;
    for (const QStringView name :
         {u"sunday", u"monday", u"tuesday", u"wednesday", u"thursday", u"friday", u"saturday"}) {
        ++day;
        add(name.toString() + u's', Entry{WeekdayEach, day});
        add(u"coming "_s + name.toString(), Entry{Weekday, day});
        add(name.toString() + u" after next"_s, Entry{WeekdayAfterNext, day});
    }
    add({u"jan"}, Month, 1);
    add({u"feb"}, Month, 2);
    add({u"sept"}, Month, 9);
    add({u"noon", u"midday"}, Minute, 12 * hour);
    add({u"midnight"}, Minute, 24 * hour);
    add({u"in the morning", u"in the mornings"}, DayPart, 9 * hour);
    add({u"in the afternoon"}, DayPart, 15 * hour);
    add({u"in the evening"}, DayPart, 18 * hour);
    add({u"at night"}, DayPart, 20 * hour);
    add({u"morning"}, DayPart, 9 * hour, true);
    add({u"afternoon"}, DayPart, 15 * hour, true);
    add({u"evening"}, DayPart, 18 * hour, true);
    add({u"night"}, DayPart, 20 * hour, true);
    add(u"this morning"_s, Entry{DaysAhead, 0, false, 9 * hour});
    add(u"this afternoon"_s, Entry{DaysAhead, 0, false, 15 * hour});
    add(u"this evening"_s, Entry{DaysAhead, 0, false, 18 * hour});
    add(u"tonight"_s, Entry{DaysAhead, 0, false, 20 * hour});
    add({u"half past #"}, ClockAround, 30);
    add({u"quarter past #", u"a quarter past #"}, ClockAround, 15);
    add({u"quarter to #", u"a quarter to #"}, ClockAround, -15);
    add({u"daily", u"every day", u"each day", u"everyday"}, Daily);
    add({u"weekly", u"every week", u"each week", u"once a week"}, Weekly);
    add({u"biweekly", u"fortnightly", u"every fortnight"}, Weekly, 2);
    add({u"monthly", u"every month", u"each month", u"once a month"}, Monthly);
    add({u"quarterly", u"every quarter"}, Monthly, 3);
    add({u"yearly", u"annually", u"every year", u"each year", u"once a year"}, Yearly);
    add({u"every weekday", u"weekdays", u"on weekdays", u"every workday", u"every working day"}, OnWorkdays);
    add({u"every weekend", u"on weekends"}, OnWeekends);
    add({u"every", u"each"}, Every);
    add({u"every other"}, Every, 2);
    add({u"of every month", u"of each month", u"every month", u"each month"}, EachMonth, 1);
    add({u"of the month", u"in the month"}, EachMonth, 0);
    add({u"every #"}, Every, 0);
    add({u"# times", u"for # times", u"#x", u"# x"}, Times);
    add({u"on", u"by", u"due", u"due on", u"due by", u"on the", u"by the", u"this", u"on this", u"starting",
         u"starting on", u"beginning on", u"as of", u"until", u"till"},
        BeforeDate);
    // What has to be done before a day has all of the day before it.
    add({u"before", u"before the"}, BeforeDate, -1, true);
    add({u"# days before", u"# day before", u"a day before", u"the day before"}, BeforeDate, -1, true);
    add({u"# days after", u"# day after", u"a day after", u"the day after"}, BeforeDate, 1, true);
    add({u"# weeks before", u"# week before", u"a week before", u"the week before"}, BeforeDate, -7, true);
    add({u"# weeks after", u"# week after", u"a week after", u"the week after"}, BeforeDate, 7, true);
    add({u"before"}, BeforeTime, 0, true);
    // These stand before other words as well: "the sun", "for 5".
    add({u"the", u"for", u"for the"}, BeforeDate, 0, true);
    add({u"at", u"by", u"around", u"due", u"due at", u"due by"}, BeforeTime);
    add({u"from"}, From);
    add({u"between"}, Between);
    add({u"to", u"till", u"until", u"-", u"–"}, To);
    add({u"until", u"till"}, Until);
    add({u"for"}, For);
    add({u"in"}, In);
    add({u"and", u"&"}, And);
    add({u"of"}, OfMonth);
    add({u"#h", u"#hr", u"#hrs", u"# h", u"# hr", u"# hrs", u"# hours", u"# hour", u"an hour"}, Hours, 1);
    add({u"#min", u"#mins", u"# min", u"# mins", u"# minutes", u"# minute"}, Minutes, 1);
    add({u"half an hour"}, Minutes, 30);
    add({u"o'clock", u"o’clock"}, OClock);
    add({u"day", u"days"}, DayUnit);
    add({u"week", u"weeks"}, WeekUnit);
    add({u"month", u"months"}, MonthUnit);
    add({u"year", u"years"}, YearUnit);
    const QStringView names[] = {u"one",     u"two",       u"three",    u"four",     u"five",
                                 u"six",     u"seven",     u"eight",    u"nine",     u"ten",
                                 u"eleven",  u"twelve",    u"thirteen", u"fourteen", u"fifteen",
                                 u"sixteen", u"seventeen", u"eighteen", u"nineteen", u"twenty"};
    int number = 0;
    for (const QStringView name : names)
        numbers.emplace(name.toString(), ++number);
    addOfLocale(u"en"_s);
}
