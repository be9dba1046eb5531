#include "CaptureLines.h"

using namespace capturelines;

using CaptureSeriesTest = CaptureLineTest;

TEST_F(CaptureSeriesTest, EnglishDaysOfAMonthAndWeekdaysInALine)
{
    Region::setLocale(u"en_US"_s);
    // A Saturday.
    expect(CaptureWords({u"en"_s}), localDate(2026, 11, 21, 9, 15),
           {
               {u"Rent every 1st and 15th", u"Rent [2026-12-01, every 1 month d1 d15]"},
               {u"Rent monthly on the 1st and 25th", u"Rent [2026-11-25, every 1 month d1 d25]"},
               {u"Rent on the 5th, 10th and 20th of every month",
                u"Rent [2026-12-05, every 1 month d5 d10 d20]"},
               {u"Yoga Mon, Wed, Fri 7am", u"Yoga [2026-11-23, 7:00, every 1 week 2 4 6]"},
               {u"Yoga Tue/Thu 6pm", u"Yoga [2026-11-24, 18:00, every 1 week 3 5]"},
               {u"Shift Mon-Fri 9-5", u"Shift [2026-11-23/2026-11-27, 9:00-17:00]"},
               {u"Water plants daily for 2 weeks", u"Water plants [2026-11-21, every 1 day x14]"},
               {u"Gym every Mon and Thu for 4 weeks", u"Gym [2026-11-23, every 1 week 2 5 x8]"},
               {u"Course every day for 2 hours", u"Course for 2 hours [2026-11-21, every 1 day]"},
           });
}

TEST_F(CaptureSeriesTest, EnglishDaysAndTimesBeforeAndAfterOthers)
{
    Region::setLocale(u"en_US"_s);
    expect(CaptureWords({u"en"_s}), localDate(2026, 11, 21, 9, 15),
           {
               {u"Invoice before Friday", u"Invoice [2026-11-26]"},
               {u"Ask before the 5th", u"Ask [2026-12-04]"},
               {u"Eat before tomorrow", u"Eat [2026-11-21]"},
               {u"Eat before today", u"Eat [2026-11-21]"},
               {u"Gift two days before Dec 24", u"Gift [2026-12-22]"},
               {u"Pack the day before Friday", u"Pack [2026-11-26]"},
               {u"Call 2 weeks after May 3 10am", u"Call [2027-05-17, 10:00]"},
               {u"Pay before 5pm", u"Pay [2026-11-21, 17:00]"},
               {u"Meet before noon", u"Meet [2026-11-21, 12:00]"},
               {u"Read before sun sets", u"Read before sun sets"},
               {u"Look before 3 others come", u"Look before 3 others come"},
               {u"Check in 24 hours before the flight", u"Check in 24 hours before the flight"},
               {u"Gift two days before Christmas", u"Gift two days before Christmas"},
               {u"Meet Ann 5 o'clock", u"Meet Ann [2026-11-21, 17:00]"},
               {u"Call Bob at 0830", u"Call Bob [2026-11-22, 8:30]"},
               {u"Retire by 2030", u"Retire by 2030"},
               {u"Midnight snack", u"Midnight snack"},
               {u"Noon on Friday lunch", u"lunch [2026-11-27, 12:00]"},
               {u"Meeting tomorrow 9 to 5", u"Meeting [2026-11-22, 9:00-17:00]"},
               {u"Read tomorrow 2 to 3 pages", u"Read 2 to 3 pages [2026-11-22]"},
           });
}

TEST_F(CaptureSeriesTest, GermanSeriesAndDaysBeforeOthers)
{
    Region::setLocale(u"de_DE"_s);
    expect(CaptureWords({u"de"_s}), localDate(2026, 11, 21, 9, 15),
           {
               {u"Miete jeden 1. und 15. zahlen", u"Miete zahlen [2026-12-01, every 1 month d1 d15]"},
               {u"Monatlich am 15. Miete zahlen", u"Miete zahlen [2026-12-15, every 1 month]"},
               {u"Probe am 1. und 15. jedes Monats", u"Probe [2026-12-01, every 1 month d1 d15]"},
               {u"Sport Mo, Mi, Fr 7 Uhr", u"Sport [2026-11-23, 7:00, every 1 week 2 4 6]"},
               {u"Di/Do Sport", u"Sport [2026-11-24, every 1 week 3 5]"},
               {u"Täglich für 2 Wochen Tablette", u"Tablette [2026-11-21, every 1 day x14]"},
               {u"vor Freitag fertig", u"fertig [2026-11-26]"},
               {u"vor dem 5. abgeben", u"abgeben [2026-12-04]"},
               {u"3 Tage vor dem 24.12. packen", u"packen [2026-12-21]"},
               {u"Anruf vor 17:30", u"Anruf [2026-11-21, 17:30]"},
               {u"vor dem Essen Tablette", u"vor dem Essen Tablette"},
               {u"Vor 3 Jahren gekauft", u"Vor 3 Jahren gekauft"},
               {u"um 5 vor 12 essen", u"um 5 vor 12 essen"},
               {u"Mitternacht Snack", u"Mitternacht Snack"},
           });
}
