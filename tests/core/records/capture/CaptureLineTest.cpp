#include "CaptureLines.h"

#include <random>

using namespace capturelines;

TEST_F(CaptureLineTest, EnglishLines)
{
    Region::setLocale(u"en_US"_s);
    const CaptureWords words({u"en"_s});
    // A Saturday.
    expect(
        words, localDate(2026, 11, 21, 9, 15),
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
            {u"Water plants every 3 days at 8am", u"Water plants [2026-11-22, 8:00, every 3 day]"},
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
            // Weekdays with dates and weeks.
            {u"Dentist Friday 31 Dec 9am", u"Dentist [2026-12-31, 9:00]"},
            {u"Dentist 31 Dec (Thu) 9am", u"Dentist [2026-12-31, 9:00]"},
            {u"Review Friday next week", u"Review [2026-11-27]"},
            {u"Review next week Friday", u"Review [2026-11-27]"},
            {u"Review Monday in two weeks", u"Review [2026-12-07]"},
            {u"Review a week from tomorrow", u"Review [2026-11-29]"},
            {u"Review week after next", u"Review [2026-11-30]"},
            {u"Review next weekend", u"Review [2026-11-28]"},
            {u"Watch Friday the 13th", u"Watch [2027-08-13]"},
            // Parts of months and years.
            {u"Report end of next month", u"Report [2026-12-31]"},
            {u"Report end of the year", u"Report [2026-12-31]"},
            {u"Trip mid-January", u"Trip [2027-01-15]"},
            {u"Trip at the end of February", u"Trip [2027-02-28]"},
            {u"Pay rent on the last day of the month", u"Pay rent [2026-11-30]"},
            {u"Pay on the 31st", u"Pay [2026-12-31]"},
            {u"Pay on the 3rd of next month", u"Pay [2026-12-03]"},
            {u"Clean oven on last Saturday of the month", u"Clean oven [2026-11-28]"},
            // Ranges.
            {u"Holiday from 9 to 12 March", u"Holiday [2027-03-09/2027-03-12]"},
            {u"Holiday Dec 24-27", u"Holiday [2026-12-24/2026-12-27]"},
            {u"Holiday 24-27 December", u"Holiday [2026-12-24/2026-12-27]"},
            {u"Retreat from Fri to Mon", u"Retreat [2026-11-27/2026-11-30]"},
            {u"Retreat Fri-Sun", u"Retreat [2026-11-27/2026-11-29]"},
            // Times and lengths.
            {u"Party Dec 31 at midnight", u"Party [2027-01-01, 0:00]"},
            {u"Party 12/31 10pm-2am", u"Party [2026-12-31/2027-01-01, 22:00-2:00]"},
            {u"Call back in 2h", u"Call back [2026-11-21, 11:15]"},
            {u"Call back in 20min", u"Call back [2026-11-21, 9:35]"},
            {u"Workshop Mon for 2h at 5pm", u"Workshop [2026-11-23, 17:00-19:00]"},
            {u"Workshop Mon 5pm for an hour and tea", u"Workshop and tea [2026-11-23, 17:00-18:00]"},
            {u"Workshop Mon between 9 and 11am", u"Workshop [2026-11-23, 9:00-11:00]"},
            {u"Tea half past five", u"Tea [2026-11-21, 17:30]"},
            {u"Tea tomorrow at quarter to six", u"Tea [2026-11-22, 17:45]"},
            {u"Dinner Friday evening", u"Dinner [2026-11-27, 18:00]"},
            {u"Dinner tomorrow night", u"Dinner [2026-11-22, 20:00]"},
            {u"Dinner Friday at 8 in the evening", u"Dinner [2026-11-27, 20:00]"},
            {u"Dinner tonight at 9", u"Dinner [2026-11-21, 21:00]"},
            {u"At 9 call Ada", u"call Ada [2026-11-22, 9:00]"},
            {u"Talk at 10 to the team", u"Talk to the team [2026-11-21, 10:00]"},
            // Repetitions.
            {u"Gym every 2nd day", u"Gym [2026-11-21, every 2 day]"},
            {u"Bins every second Tuesday", u"Bins [2026-11-24, every 2 week 3]"},
            {u"Club every first Monday", u"Club [2026-12-07, every 1 month 2 #1]"},
            {u"Club every last Friday of the month at 6pm", u"Club [2026-11-27, 18:00, every 1 month 6 #-1]"},
            {u"Club first Monday of every month", u"Club [2026-12-07, every 1 month 2 #1]"},
            {u"Gym on Mondays and Thursdays 6pm", u"Gym [2026-11-23, 18:00, every 1 week 2 5]"},
            {u"Gym every Mon/Wed/Fri 7am", u"Gym [2026-11-23, 7:00, every 1 week 2 4 6]"},
            {u"Sync every Mon-Fri 9am", u"Sync [2026-11-23, 9:00, every 1 week 2 3 4 5 6]"},
            {u"Pills every evening at 9", u"Pills [2026-11-21, 21:00, every 1 day]"},
            {u"Rent on the 1st of every month", u"Rent [2026-12-01, every 1 month]"},
            {u"Statement every month on the last day", u"Statement [2026-11-30, every 1 month d-1]"},
            {u"Course every Tuesday until end of May", u"Course [2026-11-24, every 1 week 3 to 2027-05-31]"},
            {u"Standup every day 9:30am until Dec 31",
             u"Standup [2026-11-21, 9:30, every 1 day to 2026-12-31]"},
            {u"Course daily starting Monday", u"Course [2026-11-23, every 1 day]"},
            {u"Course weekly 10x", u"Course [2026-11-21, every 1 week x10]"},
            // Signs.
            {u"Tomorrow: call Ada", u"call Ada [2026-11-22]"},
            {u"Lunch place:Bistro, tomorrow", u"Lunch [2026-11-22, at Bistro]"},
            {u"Lunch place:\"Town Hall\" Friday noon", u"Lunch [2026-11-27, 12:00, at Town Hall]"},
            {u"Book a table for Friday 7pm", u"Book a table [2026-11-27, 19:00]"},
            {u"Call Ada, tomorrow, 5 pm", u"Call Ada [2026-11-22, 17:00]"},
            {u"Doctor on Nov 30th at 3.15pm", u"Doctor [2026-11-30, 15:15]"},
            {u"Backup every Sunday night", u"Backup [2026-11-22, 20:00, every 1 week 1]"},
            {u"Payroll every two weeks on Friday", u"Payroll [2026-11-27, every 2 week 6]"},
            {u"Meeting Tue 2-3", u"Meeting [2026-11-24, 14:00-15:00]"},
            {u"Conference 1-3 Dec 2027", u"Conference [2027-12-01/2027-12-03]"},
            {u"Review every 3 months on the 1st", u"Review [2026-12-01, every 3 month]"},
            {u"Call Bob in 1.5 hours", u"Call Bob [2026-11-21, 10:45]"},
            {u"Go home at a quarter to 5", u"Go home [2026-11-21, 16:45]"},
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
               {u"Blumen gießen alle 3 Tage um 8 Uhr", u"Blumen gießen [2026-11-22, 8:00, every 3 day]"},
               {u"Sport jeden Montag und Donnerstag", u"Sport [2026-11-23, every 1 week 2 5]"},
               {u"Sport alle zwei Wochen am Freitag", u"Sport [2026-11-27, every 2 week 6]"},
               {u"Runde werktags 9:00", u"Runde [2026-11-23, 9:00, every 1 week 2 3 4 5 6]"},
               {u"Miete jeden 1.", u"Miete [2026-12-01, every 1 month]"},
               {u"Kurs wöchentlich bis 31.12.", u"Kurs [2026-11-21, every 1 week to 2026-12-31]"},
               {u"Kurs jeden Dienstag 5 mal", u"Kurs [2026-11-24, every 1 week 3 x5]"},
               {u"Steuer !! ort:Büro", u"Steuer [p1, at Büro]"},
               {u"Frühstück Sonntag morgens", u"Frühstück [2026-11-22, 9:00]"},
               // Weekdays with dates and weeks.
               {u"Fr 31.12. 9 Uhr Zahnarzt", u"Zahnarzt [2026-12-31, 9:00]"},
               {u"Zahnarzt am Donnerstag, dem 31. Dezember um 9:30", u"Zahnarzt [2026-12-31, 9:30]"},
               {u"Zahnarzt 31.12. (Do)", u"Zahnarzt [2026-12-31]"},
               {u"Zahnarzt am 31.12 um 9", u"Zahnarzt [2026-12-31, 9:00]"},
               {u"Zahnarzt am 31. 12. 2026", u"Zahnarzt [2026-12-31]"},
               {u"Bericht nächste Woche Freitag", u"Bericht [2026-11-27]"},
               {u"Bericht Freitag nächster Woche", u"Bericht [2026-11-27]"},
               {u"Bericht Montag in zwei Wochen", u"Bericht [2026-12-07]"},
               {u"Bericht heute in 3 Wochen", u"Bericht [2026-12-12]"},
               {u"Bericht übernächsten Montag", u"Bericht [2026-11-30]"},
               {u"Bericht bis spätestens Freitag 12 Uhr", u"Bericht [2026-11-27, 12:00]"},
               // Parts of months and years.
               {u"Bericht in einem halben Jahr", u"Bericht [2027-05-21]"},
               {u"Bericht am letzten Tag des Monats", u"Bericht [2026-11-30]"},
               {u"Bericht Ende nächsten Monats", u"Bericht [2026-12-31]"},
               {u"Bericht Anfang nächster Woche", u"Bericht [2026-11-23]"},
               {u"Bericht Mitte März", u"Bericht [2027-03-15]"},
               {u"Bericht am 15. nächsten Monats", u"Bericht [2026-12-15]"},
               {u"Bericht KW 50", u"Bericht [2026-12-07]"},
               {u"Miete am 31.", u"Miete [2026-12-31]"},
               {u"Feiern 29.2.", u"Feiern [2028-02-29]"},
               // Ranges.
               {u"Urlaub vom 9. bis 12. März", u"Urlaub [2027-03-09/2027-03-12]"},
               {u"Urlaub vom 23.12. bis einschließlich 6.1.", u"Urlaub [2026-12-23/2027-01-06]"},
               {u"Urlaub 24.-27.12.", u"Urlaub [2026-12-24/2026-12-27]"},
               {u"Urlaub 24.12.-3.1.", u"Urlaub [2026-12-24/2027-01-03]"},
               {u"Messe von Freitag bis Montag", u"Messe [2026-11-27/2026-11-30]"},
               {u"Messe Mo-Mi", u"Messe [2026-11-23/2026-11-25]"},
               // Times and lengths.
               {u"Rückruf in 2h", u"Rückruf [2026-11-21, 11:15]"},
               {u"Kurs Montag um 17 Uhr für 2h", u"Kurs [2026-11-23, 17:00-19:00]"},
               {u"Kurs Montag 17 Uhr, 90 min", u"Kurs [2026-11-23, 17:00-18:30]"},
               {u"Kurs Montag 10-12", u"Kurs [2026-11-23, 10:00-12:00]"},
               {u"Kurs Montag 17h", u"Kurs [2026-11-23, 17:00]"},
               {u"7 Uhr 30 aufstehen", u"aufstehen [2026-11-22, 7:30]"},
               {u"Tee halb fünf", u"Tee [2026-11-21, 16:30]"},
               {u"Tee um Viertel nach 5", u"Tee [2026-11-21, 17:15]"},
               {u"Tee heute Abend um 8", u"Tee [2026-11-21, 20:00]"},
               {u"Tee morgen früh um 6", u"Tee [2026-11-22, 6:00]"},
               {u"Freitag morgen Brot holen", u"Brot holen [2026-11-27, 9:00]"},
               {u"Tee Freitagabend", u"Tee [2026-11-27, 18:00]"},
               {u"Montagabend um 8 Kino", u"Kino [2026-11-23, 20:00]"},
               {u"Kino um 8 am Abend", u"Kino [2026-11-21, 20:00]"},
               {u"Tee heute Nacht", u"Tee [2026-11-21, 22:00]"},
               {u"Raketen am 31.12. um Mitternacht", u"Raketen [2027-01-01, 0:00]"},
               {u"Party 31.12. 22-2 Uhr", u"Party [2026-12-31/2027-01-01, 22:00-2:00]"},
               {u"Ada um 9 anrufen", u"Ada anrufen [2026-11-22, 9:00]"},
               // Repetitions.
               {u"Müll jede 2. Woche", u"Müll [2026-11-21, every 2 week]"},
               {u"Müll jeden zweiten Dienstag", u"Müll [2026-11-24, every 2 week 3]"},
               {u"Müll alle 2 Wochen dienstags", u"Müll [2026-11-24, every 2 week 3]"},
               {u"Sport dienstags", u"Sport [2026-11-24, every 1 week 3]"},
               {u"Sport montags und donnerstags 18 Uhr", u"Sport [2026-11-23, 18:00, every 1 week 2 5]"},
               {u"Runde montags bis freitags 9 Uhr", u"Runde [2026-11-23, 9:00, every 1 week 2 3 4 5 6]"},
               {u"Sport jeden Morgen um 7", u"Sport [2026-11-22, 7:00, every 1 day]"},
               {u"Putzen jeden Samstagvormittag", u"Putzen [2026-11-21, 10:00, every 1 week 7]"},
               {u"Stammtisch jeden ersten Montag im Monat 19 Uhr",
                u"Stammtisch [2026-12-07, 19:00, every 1 month 2 #1]"},
               {u"Miete am 1. jedes Monats", u"Miete [2026-12-01, every 1 month]"},
               {u"Abschluss jeden letzten Tag des Monats", u"Abschluss [2026-11-30, every 1 month d-1]"},
               {u"Kurs jeden Dienstag bis Ende Mai", u"Kurs [2026-11-24, every 1 week 3 to 2027-05-31]"},
               {u"Kurs täglich ab Montag", u"Kurs [2026-11-23, every 1 day]"},
               // Signs.
               {u"Essen ort:\"Altes Rathaus\" Freitag", u"Essen [2026-11-27, at Altes Rathaus]"},
               {u"Tisch für Freitag 19 Uhr bestellen", u"Tisch bestellen [2026-11-27, 19:00]"},
               {u"Film am Samstag, den 28.11., um 20.15 Uhr", u"Film [2026-11-28, 20:15]"},
               {u"Sicherung jede Nacht um 23 Uhr", u"Sicherung [2026-11-21, 23:00, every 1 day]"},
               {u"Konferenz 1.–3. Dezember 2027", u"Konferenz [2027-12-01/2027-12-03]"},
               {u"Miete immer am 1.", u"Miete [2026-12-01, every 1 month]"},
               {u"Bob in einer Viertelstunde anrufen", u"Bob anrufen [2026-11-21, 9:30]"},
               {u"Bericht nächsten Monat am 5.", u"Bericht [2026-12-05]"},
               {u"Bericht in 2 Wochen am Montag", u"Bericht [2026-12-07]"},
               {u"Tisch für 4 Personen um 19 Uhr", u"Tisch für 4 Personen [2026-11-21, 19:00]"},
               {u"Miete immer zum Monatsende", u"Miete immer [2026-11-30]"},
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

TEST_F(CaptureLineTest, WordsThatOnlyLookLikeDatesStayInTheTitle)
{
    const Date now = localDate(2026, 11, 21, 9, 15);
    const auto expectTitles = [&](const QStringList &languages, std::initializer_list<QStringView> lines) {
        const CaptureWords words(languages);
        for (const QStringView line : lines)
            expect(words, now, {{line, line}});
    };
    Region::setLocale(u"en_US"_s);
    expectTitles({u"en"_s}, {u"May and June met",
                             u"Second draft",
                             u"March on",
                             u"Mo called",
                             u"Call 3 people",
                             u"Sun cream",
                             u"Enjoy the sun",
                             u"read 1984",
                             u"Look at 3 offers",
                             u"Meet at 5 Main Street",
                             u"Meet on the 2nd floor",
                             u"Cut costs by 10 percent",
                             u"Renew flat 5a lease",
                             u"Watch 2h film",
                             u"Sat with Ada",
                             u"Buy 15.",
                             u"Run 10-12 miles",
                             u"3/4 inch screws",
                             u"24/7 support plan",
                             u"Book 2 seats for 2 weeks",
                             u"Book from Ada",
                             u"Every cloud",
                             u"Night shift",
                             u"Gym 3 times a week",
                             u"Read chapters 3 to 5",
                             u"Last Monday notes",
                             u"Wed wedding planner",
                             u"May I come in",
                             u"Jan called",
                             u"Tomorrow's World",
                             u"End of story",
                             u"In 3 steps",
                             u"10 times table"});
    Region::setLocale(u"de_DE"_s);
    expectTitles({u"de"_s, u"en"_s}, {u"Tod eines Handlungsreisenden lesen",
                                      u"Mai Thai bestellen",
                                      u"Kauf 2 Karten",
                                      u"Preis um 5 Euro senken",
                                      u"Um 5 vor 12 handeln",
                                      u"um",
                                      u"am",
                                      u"Do it yourself",
                                      u"So ein Mist",
                                      u"Kapitel 3 bis 5 lesen",
                                      u"Kaffee um die Ecke",
                                      u"1.5 Liter Milch",
                                      u"1,5 Stunden laufen",
                                      u"Abend mit Ada planen",
                                      u"Früh aufstehen",
                                      u"Zum 5. Mal Ada mahnen",
                                      u"Erste Hilfe Kurs",
                                      u"Zweite Mahnung schicken",
                                      u"Ab und zu lüften",
                                      u"Mitte suchen",
                                      u"Jeder Tag zählt",
                                      u"Fr. Müller anrufen",
                                      u"Von 5 auf 7 erhöhen",
                                      u"Letzten Freitag",
                                      u"August Macke",
                                      u"Mi Casa",
                                      u"Bis bald",
                                      u"3. Advent feiern",
                                      u"Alle 10 Minuten"});
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
    expect(words, localDate(2026, 10, 24, 20),
           {{u"a in 7 Stunden", u"a [2026-10-25, 2:00]"},
            {u"b 23-7 Uhr", u"b [2026-10-24/2026-10-25, 23:00-7:00]"},
            {u"c morgen 2:30", u"c [2026-10-25, 2:30]"}});
    expect(words, localDate(2028, 2, 28, 12),
           {{u"a morgen", u"a [2028-02-29]"},
            {u"b 29.2.", u"b [2028-02-29]"},
            {u"c Monatsende", u"c [2028-02-29]"},
            {u"d 29.2.2027", u"d 29.2.2027"}});
    expect(words, localDate(2026, 12, 30, 9),
           {{u"a Ende der Woche", u"a [2027-01-01]"},
            {u"b KW 1", u"b [2027-01-04]"},
            {u"c nächstes Wochenende", u"c [2027-01-09]"}});
    expect(words, localDate(2026, 10, 25, 0, 30),
           {{u"a in 24 Stunden", u"a [2026-10-25, 23:30]"}, {u"b morgen", u"b [2026-10-26]"}});
    expect(words, localDate(2026, 12, 31, 22, 30),
           {
               {u"a um Mitternacht", u"a [2027-01-01, 0:00]"},
               {u"b morgen um 0:30 Uhr", u"b [2027-01-01, 0:30]"},
               {u"c Sa 9 Uhr", u"c [2027-01-02, 9:00]"},
               {u"d Ende nächsten Monats", u"d [2027-01-31]"},
               {u"e Silvester 31.12. 23-1 Uhr", u"e Silvester [2026-12-31/2027-01-01, 23:00-1:00]"},
           });
    expect(words, localDate(9999, 12, 31, 12),
           {{u"a 1.1.", u"a 1.1."},
            {u"Ende März", u"Ende März"},
            {u"KW 9", u"KW 9"},
            {u"nächstes Jahr", u"nächstes Jahr"}});
}

TEST_F(CaptureLineTest, LinesOfTheDaysAroundTheChangeOfTheClock)
{
    Region::setLocale(u"en_US"_s);
    // A Friday.
    expect(
        CaptureWords({u"en"_s}), localDate(2026, 10, 23, 9, 15),
        {
            {u"Submit taxes by the end of October", u"Submit taxes [2026-10-31]"},
            {u"Call mum on Sunday at 2:30am", u"Call mum [2026-10-25, 2:30]"},
            {u"Flight Sunday 25 Oct 02:30", u"Flight [2026-10-25, 2:30]"},
            {u"Dentist 2:30", u"Dentist [2026-10-23, 14:30]"},
            {u"Run 6:30", u"Run [2026-10-24, 6:30]"},
            {u"Meeting this Friday at half past ten", u"Meeting [2026-10-23, 10:30]"},
            {u"Meeting Friday at quarter past twelve", u"Meeting [2026-10-30, 12:15]"},
            {u"Return book the Monday after next", u"Return book [2026-11-02]"},
            {u"Return book within 2 weeks", u"Return book [2026-11-06]"},
            {u"Vacation until Nov 8", u"Vacation [2026-11-08]"},
            {u"Quarterly report every 3 months on the 15th", u"Quarterly report [2026-11-15, every 3 month]"},
            {u"Weekly review Friday 3pm", u"review [2026-10-30, 15:00, every 1 week]"},
            {u"Check in 24 hours before the flight", u"Check in 24 hours before the flight"},
            {u"Chapter 12/13 revision", u"Chapter 12/13 revision"},
            {u"Say good morning to Mr Friday tomorrow", u"Say good morning to Mr Friday [2026-10-24]"},
        });
    Region::setLocale(u"de_DE"_s);
    // A Friday.
    expect(CaptureWords({u"de"_s, u"en"_s}), localDate(2027, 1, 29, 14, 30),
           {
               {u"Steuer bis Ende Februar", u"Steuer [2027-02-28]"},
               {u"Rechnung am 29.2.", u"Rechnung [2028-02-29]"},
               {u"Rechnung am 30.2.", u"Rechnung am 30.2."},
               {u"Uhr umstellen am 28.3. um 2 Uhr", u"Uhr umstellen [2027-03-28, 2:00]"},
               {u"Seminar Mo bis Mi", u"Seminar [2027-02-01/2027-02-03]"},
               {u"Treffen Montag 10.30", u"Treffen [2027-02-01, 10:30]"},
               {u"Treffen Freitag 10.12.", u"Treffen [2027-12-10]"},
               {u"Treffen diesen Freitag um halb elf", u"Treffen [2027-01-29, 10:30]"},
               {u"Essen um halb eins", u"Essen [2027-01-30, 12:30]"},
               {u"Buch zurückgeben binnen 2 Wochen", u"Buch zurückgeben [2027-02-12]"},
               {u"Anrufen in 3 Tagen nach dem Urlaub", u"Anrufen in 3 Tagen nach dem Urlaub"},
               {u"Herrn Montag und Frau Mai anrufen", u"Herrn Montag und Frau Mai anrufen"},
               {u"Guten Morgen sagen", u"Guten Morgen sagen"},
           });
}

TEST_F(CaptureLineTest, OtherLanguagesHaveTheirWordsFromTheLocaleData)
{
    const Date now = localDate(2026, 11, 21, 9, 15);
    const std::tuple<QStringView, QStringView, QStringView> lines[] = {
        {u"fr", u"Courses demain", u"Courses [2026-11-22]"},
        {u"fr", u"Courses dans 3 jours", u"Courses [2026-11-24]"},
        {u"fr", u"Réunion demain 17h30", u"Réunion [2026-11-22, 17:30]"},
        {u"fr", u"Réunion 17h", u"Réunion [2026-11-21, 17:00]"},
        {u"sv", u"Film 17h", u"Film 17h"},
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
    const QString several = u"Plan the day after tomorrow"_s;
    const Capture plain = line.read(several, {5, 9, 13, 19});
    EXPECT_EQ(plain.title, several) << "no shorter piece is found inside of one that was taken back";
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
        "1. next week someday - and 99/99 0 é 😀 first last 2nd mid end of month Mondays evening halb 2h "
        "24.-27.12. mo-mi between (Thu) the in 90 min place:\"b c\" KW 50 24 Uhr"_s.split(u' ');
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
