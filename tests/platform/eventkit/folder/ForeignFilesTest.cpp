#include "FolderFixture.h"

#include "eventkit/CalendarError.h"

#include <sys/stat.h>

/// Files from other programs, with everything in them.
class ForeignFilesTest : public FolderFixture
{
protected:
    /// What is different, line by line: "-" before, "+" after.
    static QStringList difference(const QByteArray &before, const QByteArray &after)
    {
        QList<QByteArray> former = before.split('\n');
        QStringList found;
        QStringList added;
        for (const QByteArray &line : after.split('\n'))
            if (!former.removeOne(line))
                added.append(u'+' + QString::fromUtf8(line));
        for (const QByteArray &line : former)
            found.append(u'-' + QString::fromUtf8(line));
        return found + added;
    }

    const QByteArray rich =
        "BEGIN:VCALENDAR\r\nPRODID:-//Other//"
        "EN\r\nVERSION:2.0\r\nX-WR-CALNAME;X-P=1:Name\r\nBEGIN:VTIMEZONE\r\n"
        "TZID:Europe/Berlin\r\nBEGIN:STANDARD\r\nDTSTART:20231029T030000\r\nTZOFFSETFROM:+0200\r\n"
        "TZOFFSETTO:+0100\r\nEND:STANDARD\r\nEND:VTIMEZONE\r\nBEGIN:VEVENT\r\nSEQUENCE:4\r\n"
        "SUMMARY;LANGUAGE=en;X-NOTE=\"a:b;c\":A title that is so long that it had to be folded somewh\r\n"
        " ere by the program that wrote it\r\nSTYLED-DESCRIPTION;FMTTYPE=text/html:<b>bold</b>\r\n"
        "CATEGORIES:A,B\r\nUID:rich@example.org\r\nX-OTHER;X-Q=2:kept\r\nDTSTAMP;VALUE=DATE-TIME:"
        "20240101T000000Z\r\n"
        "DTSTART;VALUE=DATE-TIME;TZID=Europe/Berlin:20240304T090000\r\nDTEND;VALUE=DATE-TIME;TZID=Europe/"
        "Berlin:2024\r\n"
        " 0304T100000\r\nPRIORITY:abc\r\nATTACH;FMTTYPE=text/plain;ENCODING=BASE64;VALUE=BINARY:YWJj\r\n"
        "BEGIN:VALARM\r\nACTION:EMAIL\r\nTRIGGER:-PT1H\r\nATTENDEE:mailto:a@example.org\r\nEND:VALARM\r\n"
        "BEGIN:VALARM\r\nX-UID:1\r\nACTION:DISPLAY\r\nDESCRIPTION:Now\r\nTRIGGER;RELATED=END:-"
        "PT1H15M\r\nREPEAT:2\r\n"
        "DURATION:PT5M\r\nEND:VALARM\r\nBEGIN:VALARM\r\nACTION:X-ODD\r\nTRIGGER:P1D\r\nEND:VALARM\r\n"
        "BEGIN:PARTICIPANT\r\nCALENDAR-ADDRESS:mailto:b@example.org\r\nBEGIN:VLOCATION\r\nNAME:Room\r\n"
        "END:VLOCATION\r\nEND:PARTICIPANT\r\nEND:VEVENT\r\nBEGIN:X-CUSTOM\r\nfree text\r\nEND:X-CUSTOM\r\n"
        "END:VCALENDAR\r\n";
};

TEST_F(ForeignFilesTest, ANewTitleChangesItsLineAndTheStampsOnly)
{
    write(u"some name.ics"_qs, rich);
    EKEvent event = events().at(0);
    EXPECT_EQ(event.title,
              u"A title that is so long that it had to be folded somewhere by the program that wrote it"_qs);
    EXPECT_EQ(event.alarms, (std::vector{EKAlarm::alarmWithRelativeOffset(-900)}));
    event.title = u"Short"_qs;
    save(event);
    EXPECT_EQ(names(), (QStringList{u"some name.ics"_qs}));
    QByteArray expected = rich;
    expected.replace(
        "A title that is so long that it had to be folded somewh\r\n ere by the program that wrote it",
        "Short");
    expected.replace("DTSTAMP;VALUE=DATE-TIME:20240101T000000Z", "DTSTAMP;VALUE=DATE-TIME:20240301T110000Z");
    expected.replace("VALUE=BINARY:YWJj\r\n", "VALUE=BINARY:YWJj\r\nLAST-MODIFIED:20240301T110000Z\r\n");
    EXPECT_EQ(read(u"some name.ics"_qs), expected);
}

TEST_F(ForeignFilesTest, NothingIsWrittenForNothing)
{
    write(u"a.ics"_qs, rich);
    const QDateTime written = QFileInfo(path(u"a.ics"_qs)).lastModified();
    EKEvent event = events().at(0);
    save(event, EKSpan::FutureEvents);
    event.title = u"Other"_qs;
    event.title = events().at(0).title;
    save(event);
    EXPECT_EQ(read(u"a.ics"_qs), rich);
    EXPECT_EQ(QFileInfo(path(u"a.ics"_qs)).lastModified(), written);
}

TEST_F(ForeignFilesTest, NewTimesKeepParametersAndNewAlarmsTheOthers)
{
    write(u"a.ics"_qs, rich);
    EKEvent event = events().at(0);
    event.startDate = localDate(2024, 3, 4, 9, 30);
    event.endDate = localDate(2024, 3, 4, 10, 30);
    event.alarms = {EKAlarm::alarmWithRelativeOffset(0), EKAlarm::alarmWithRelativeOffset(-900)};
    save(event);
    EXPECT_EQ(
        difference(rich, read(u"a.ics"_qs)),
        (QStringList{u"-SEQUENCE:4\r"_qs, u"-DTSTAMP;VALUE=DATE-TIME:20240101T000000Z\r"_qs,
                     u"-DTSTART;VALUE=DATE-TIME;TZID=Europe/Berlin:20240304T090000\r"_qs,
                     u"-DTEND;VALUE=DATE-TIME;TZID=Europe/Berlin:2024\r"_qs, u"- 0304T100000\r"_qs,
                     u"+SEQUENCE:5\r"_qs, u"+DTSTAMP;VALUE=DATE-TIME:20240301T110000Z\r"_qs,
                     u"+DTSTART;VALUE=DATE-TIME;TZID=Europe/Berlin:20240304T093000\r"_qs,
                     u"+DTEND;VALUE=DATE-TIME;TZID=Europe/Berlin:20240304T103000\r"_qs,
                     u"+LAST-MODIFIED:20240301T110000Z\r"_qs,
                     u"+DESCRIPTION:A title that is so long that it had to be folded somewhere by t\r"_qs,
                     u"+ he program that wrote it\r"_qs, u"+TRIGGER:PT0S\r"_qs, u"+ACTION:DISPLAY\r"_qs,
                     u"+BEGIN:VALARM\r"_qs, u"+END:VALARM\r"_qs}));
}

TEST_F(ForeignFilesTest, ADividedSeriesKeepsEverythingInBothParts)
{
    QByteArray series = rich;
    series.replace("PRIORITY:abc\r\n", "PRIORITY:abc\r\nRRULE;X-R=1:FREQ=DAILY;COUNT=4;X-MINE=2\r\n");
    write(u"a.ics"_qs, series);
    EKEvent third = events().at(2);
    third.title = u"Later"_qs;
    save(third, EKSpan::FutureEvents);
    ASSERT_EQ(names().size(), 2);
    const QByteArray earlier = read(u"a.ics"_qs);
    EXPECT_TRUE(earlier.contains("\r\nRRULE;X-R=1:FREQ=DAILY;COUNT=2;X-MINE=2\r\n"));
    const QByteArray later = read(names().at(names().indexOf(u"a.ics"_qs) == 0 ? 1 : 0));
    EXPECT_TRUE(later.contains("\r\nRRULE;X-R=1:FREQ=DAILY;COUNT=2;X-MINE=2\r\n"));
    EXPECT_TRUE(later.contains("\r\nUID:" + third.calendarItemExternalIdentifier.toUtf8() + "\r\n"));
    for (const QByteArray &kept : {QByteArray("BEGIN:PARTICIPANT"), QByteArray("ACTION:X-ODD"),
                                   QByteArray("STYLED-DESCRIPTION"), QByteArray("free text")}) {
        EXPECT_TRUE(earlier.contains(kept)) << kept.constData();
        EXPECT_TRUE(later.contains(kept)) << kept.constData();
    }
}

TEST_F(ForeignFilesTest, AMovedSeriesKeepsWhatIsSaidOfItsEditedOccurrences)
{
    write(u"a.ics"_qs,
          calendarText("BEGIN:VEVENT\nUID:u\nDTSTART:20240304T090000\nRRULE:FREQ=DAILY;COUNT=4\nEND:VEVENT\n"
                       "BEGIN:VEVENT\nUID:u\nRECURRENCE-ID;RANGE=THISANDFUTURE;X-P=1:20240306T090000\n"
                       "DTSTART:20240306T150000\nEND:VEVENT\n"));
    EKEvent first = events().at(0);
    first.startDate = first.endDate = localDate(2024, 3, 4, 10);
    save(first, EKSpan::FutureEvents);
    EXPECT_TRUE(read(u"a.ics"_qs).contains("RECURRENCE-ID;RANGE=THISANDFUTURE;X-P=1:20240306T100000\n"));
}

TEST_F(ForeignFilesTest, WhatCannotBeUnderstoodIsReportedOnceAndLeftAlone)
{
    const QByteArray good = eventText("good", "DTSTART:20240304T090000\nSUMMARY:Good\n");
    const std::vector<std::pair<QString, QByteArray>> odd = {
        {u"cut.ics"_qs, rich.left(rich.size() / 2)},
        {u"empty.ics"_qs, {}},
        {u"garbage.ics"_qs, QByteArray("\0\xff\xfe garbage", 12)},
        {u"nouid.ics"_qs, calendarText("BEGIN:VEVENT\nDTSTART:20240304T090000\nEND:VEVENT\n")},
        {u"twouids.ics"_qs, calendarText("BEGIN:VEVENT\nUID:1\nDTSTART:20240304T090000\nEND:VEVENT\n"
                                         "BEGIN:VEVENT\nUID:2\nDTSTART:20240304T090000\nEND:VEVENT\n")},
        {u"zdouble.ics"_qs, good}};
    const std::vector<std::pair<QString, QByteArray>> silent = {
        {u"journal.ics"_qs, calendarText("BEGIN:VJOURNAL\nUID:j\nEND:VJOURNAL\n")},
        {u"nostart.ics"_qs, eventText("nostart", "SUMMARY:No start\n")},
        {u"absurd.ics"_qs, eventText("absurd", "DTSTART:00000000T990000\n")},
        {u".hidden.ics"_qs, eventText("hidden", "DTSTART:20240304T090000\n")},
        {u"note.txt"_qs, good},
        {u"half.ics.tmp"_qs, good}};
    write(u"good.ics"_qs, good);
    for (const auto &[name, text] : odd)
        write(name, text);
    for (const auto &[name, text] : silent)
        write(name, text);
    QDir().mkpath(path(u"folder.ics"_qs));

    const LogCapture log;
    EXPECT_EQ(titles(), (QStringList{u"Good"_qs}));
    EXPECT_EQ(titles(), (QStringList{u"Good"_qs}));
    QStringList reported = log.lines();
    reported.sort();
    EXPECT_EQ(reported,
              (QStringList{u"Cannot use home/work/cut.ics: it is cut off."_qs,
                           u"Cannot use home/work/empty.ics: there is no calendar in it."_qs,
                           u"Cannot use home/work/garbage.ics: there is no calendar in it."_qs,
                           u"Cannot use home/work/nouid.ics: an event in it has no UID."_qs,
                           u"Cannot use home/work/twouids.ics: it holds events with more than one UID."_qs,
                           u"Cannot use home/work/zdouble.ics: its UID is that of another object."_qs}));
    EKEvent event = events().at(0);
    event.title = u"Better"_qs;
    save(event);
    EXPECT_FALSE(store.removeEvent(event, EKSpan::FutureEvents, true));
    for (const auto &[name, text] : odd)
        EXPECT_EQ(read(name), text) << qPrintable(name);
    for (const auto &[name, text] : silent)
        EXPECT_EQ(read(name), text) << qPrintable(name);
    // Once mended it is read.
    write(u"cut.ics"_qs, rich);
    EXPECT_EQ(titles().size(), 2);
}

TEST_F(ForeignFilesTest, NewFilesAreNamedAfterTheirUidWhereOthersWould)
{
    const auto put = [&](const QString &uid) {
        const auto written = backend->put(u"home/work"_qs, {{}, {}, eventText(uid.toUtf8(), "")}, uid);
        return written ? written.value().name : QString();
    };
    EXPECT_EQ(put(u"A-b_c.d+e9"_qs), u"A-b_c.d+e9.ics"_qs);
    for (const QString &uid :
         {u"../../escape"_qs, u"with space"_qs, u"ü"_qs, u".hidden"_qs, QString(300, u'x')}) {
        const QString name = put(uid);
        EXPECT_EQ(name.size(), 40) << qPrintable(name);
        EXPECT_TRUE(QFile::exists(path(name)));
    }
    const QString again = put(u"A-b_c.d+e9"_qs);
    EXPECT_NE(again, u"A-b_c.d+e9.ics"_qs) << "an existing file is never written over";
    EXPECT_EQ(put({}).size(), 40);
}

TEST_F(ForeignFilesTest, ATimeIsWrittenWithItsZone)
{
    EKEvent event = EKEvent::eventWithEventStore(store);
    event.calendar = store.defaultCalendarForNewEvents();
    event.title = u"New"_qs;
    event.startDate = localDate(2024, 7, 4, 9);
    event.endDate = localDate(2024, 7, 4, 10);
    save(event);
    const QByteArray text = read(names().at(0));
    EXPECT_TRUE(text.contains("\r\nDTSTART;TZID=Europe/Berlin:20240704T090000\r\n"));
    EXPECT_TRUE(text.contains("BEGIN:VTIMEZONE\r\nTZID:Europe/Berlin\r\n"));
    EXPECT_TRUE(text.contains("RRULE:FREQ=YEARLY;BYMONTH=3;BYDAY=-1SU\r\n"));
    EXPECT_EQ(text.count("TZOFFSETFROM:+0100\r\n"), 1);
    event.timeZone = "UTC";
    save(event);
    EXPECT_TRUE(read(names().at(0)).contains("\r\nDTSTART:20240704T070000Z\r\n"));
    event.allDay = true;
    save(event);
    EXPECT_TRUE(
        read(names().at(0)).contains("\r\nDTSTART;VALUE=DATE:20240704\r\nDTEND;VALUE=DATE:20240705\r\n"));
}

TEST_F(ForeignFilesTest, AHugeFileIsAnEventLikeAnyOther)
{
    write(u"huge.ics"_qs, eventText("huge", "SUMMARY:Huge\nDTSTART:20240304T090000\nDESCRIPTION:" +
                                                QByteArray(5'000'000, 'x') + "\n"));
    EXPECT_EQ(events().at(0).notes.size(), 5'000'000);
}

TEST_F(ForeignFilesTest, WhatIsNoFileIsPassedOver)
{
    write(u"good.ics"_qs, eventText("good", "SUMMARY:Good\nDTSTART:20240304T090000\n"));
    for (const QString &pipe : {u"pipe.ics"_qs, u"displayname"_qs, u"color"_qs})
        ASSERT_EQ(mkfifo(QFile::encodeName(path(pipe)).constData(), 0600), 0);
    QDir().mkpath(path(u"folder.ics"_qs));
    EXPECT_TRUE(QFile::link(path(u"loop.ics"_qs), path(u"loop.ics"_qs)));
    EXPECT_EQ(titles(), QStringList{u"Good"_qs});
    const auto calendars = store.calendarsForEntityType(EKEntityType::Event);
    EXPECT_EQ(calendars.value().at(0).title, u"work"_qs);
}

TEST_F(ForeignFilesTest, TextsInLatin1AreReadAsSuchAndStayAsTheyAreWritten)
{
    const QByteArray lines = "DTSTART:20240304T090000\nDTEND:20240304T100000\nSUMMARY:Caf\xE9\\, sp\xE4t\n"
                             "DESCRIPTION:Gr\xFC\xDF"
                             "e\nLOCATION:Zürich\n";
    write(u"latin.ics"_qs, eventText("k\xF6nig", lines));
    EKEvent event = events().at(0);
    EXPECT_EQ(event.title, u"Café, spät"_qs);
    EXPECT_EQ(event.notes, u"Grüße"_qs);
    EXPECT_EQ(event.location, u"Zürich"_qs);
    EXPECT_EQ(event.calendarItemExternalIdentifier, u"könig"_qs);
    event.title = u"Tee"_qs;
    save(event);
    EXPECT_EQ(names().size(), 1) << "it is found by its UID";
    EXPECT_TRUE(read(u"latin.ics"_qs)
                    .contains("DESCRIPTION:Gr\xFC\xDF"
                              "e"));
    EXPECT_EQ(titles(), QStringList{u"Tee"_qs});
}

TEST_F(ForeignFilesTest, TheNameOfAZoneIsNoPath)
{
    for (const QByteArray &zone : {QByteArray("../../../etc/passwd"), QByteArray("/etc/localtime"),
                                   QByteArray("Europe/../Europe/Berlin")}) {
        write(u"zone.ics"_qs, eventText("zone", "SUMMARY:Zone\nDTSTART;TZID=" + zone + ":20240304T090000\n"));
        EXPECT_EQ(events().at(0).startDate, localDate(2024, 3, 4, 9)) << zone.constData() << ": floating";
    }
}
