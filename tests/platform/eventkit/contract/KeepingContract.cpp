#include "EventStoreContract.h"

namespace {

/// The unfolded lines of an object in alphabetical order, without those that every edit writes anew.
QStringList linesOf(QByteArray text)
{
    text.replace("\r\n ", "").replace("\r\n\t", "");
    QStringList lines = QString::fromUtf8(text).split(u"\r\n"_qs, Qt::SkipEmptyParts);
    lines.removeIf([](const QString &line) {
        return line.startsWith(u"SUMMARY"_qs) || line.startsWith(u"DTSTAMP"_qs) ||
               line.startsWith(u"LAST-MODIFIED"_qs) || line.startsWith(u"SEQUENCE"_qs);
    });
    lines.sort();
    return lines;
}

/// What was in an object and is no longer.
QStringList lost(const QStringList &before, QStringList after)
{
    QStringList found;
    for (const QString &line : before)
        if (!after.removeOne(line))
            found.append(line);
    return found;
}

const QByteArray farZone =
    "BEGIN:VTIMEZONE\nTZID:Far Island\nX-ZONE-NOTE:ours\nBEGIN:STANDARD\nDTSTART:20000101T000000\n"
    "TZOFFSETFROM:+0530\nTZOFFSETTO:+0530\nTZNAME:FIT\nEND:STANDARD\nEND:VTIMEZONE\n";

/// A series of four days with everything that programs write, its second day edited.
const QByteArray richSeries =
    "BEGIN:VEVENT\nUID:rich\nDTSTAMP:20240101T000000Z\nCREATED:20230101T000000Z\nSEQUENCE:3\n"
    "SUMMARY;LANGUAGE=en;X-NOTE=\"a:b;c\":Rich\nDTSTART;TZID=Far Island:20240304T090000\n"
    "DTEND;TZID=Far Island:20240304T100000\nRRULE:FREQ=DAILY;COUNT=4\n"
    "EXDATE;TZID=Far Island:20240306T090000\nRDATE;TZID=Far Island:20240320T110000\n"
    "ORGANIZER;CN=Ada;SENT-BY=\"mailto:office@example.org\":mailto:ada@example.org\n"
    "ATTENDEE;CN=Bob;CUTYPE=INDIVIDUAL;DELEGATED-TO=\"mailto:eve@example.org\";PARTSTAT=DELEGATED;RSVP=TRUE:"
    "mailto:bob@example.org\n"
    "CLASS:PRIVATE\nPRIORITY:2\nURL:https://example.org/rich\nCONTACT:Bob\\, by telephone\n"
    "RELATED-TO;RELTYPE=SIBLING:other\nX-APPLE-TRAVEL-ADVISORY-BEHAVIOR:AUTOMATIC\n"
    "X-OTHER;X-Q=2;X-R=\"with: colon\":kept\n"
    "BEGIN:VALARM\nX-WR-ALARMUID:1\nACTION:DISPLAY\nDESCRIPTION:Before\nTRIGGER;RELATED=END:-PT15M\n"
    "REPEAT:2\nDURATION:PT5M\nEND:VALARM\n"
    "BEGIN:VALARM\nACTION:AUDIO\nATTACH;FMTTYPE=audio/basic:ftp://example.org/bell.aud\n"
    "TRIGGER;VALUE=DATE-TIME:20240304T020000Z\nEND:VALARM\n"
    "BEGIN:VALARM\nACTION:EMAIL\nSUMMARY:Mail\nDESCRIPTION:Mail\nATTENDEE:mailto:a@example.org\n"
    "TRIGGER:-P1D\nEND:VALARM\nEND:VEVENT\n"
    "BEGIN:VEVENT\nUID:rich\nDTSTAMP:20240101T000000Z\nRECURRENCE-ID;TZID=Far Island:20240305T090000\n"
    "SUMMARY:Edited\nDTSTART;TZID=Far Island:20240305T130000\nDTEND;TZID=Far Island:20240305T133000\n"
    "X-OF-THE-DAY:kept\nBEGIN:VALARM\nACTION:DISPLAY\nDESCRIPTION:Day\nTRIGGER:PT0S\nEND:VALARM\nEND:"
    "VEVENT\n";

} // namespace

TEST_P(EventStoreContract, ANewTitleLosesNothingOfWhatThePlaceKeeps)
{
    putForeign(farZone + richSeries, u"rich"_qs);
    // 9:00 on the island is 4:30 in Berlin.
    EXPECT_EQ(list(3), (QStringList{u"Rich 03-04 04:30-05:30"_qs, u"Edited 03-05 08:30-09:00"_qs,
                                    u"Rich 03-07 04:30-05:30"_qs, u"Rich 03-20 06:30-07:30"_qs}));
    const QStringList before = linesOf(textOf(u"rich"_qs));
    EXPECT_TRUE(before.contains(u"X-OTHER;X-Q=2;X-R=\"with: colon\":kept"_qs));

    EKEvent all = eventAt(localDate(2024, 3, 4, 4, 30));
    EXPECT_EQ(all.alarms, (std::vector{EKAlarm::alarmWithRelativeOffset(2700),
                                       EKAlarm::alarmWithAbsoluteDate(Date::fromUnixSeconds(1709517600))}));
    all.title = u"All"_qs;
    save(all, EKSpan::FutureEvents);
    EXPECT_EQ(linesOf(textOf(u"rich"_qs)), before);

    EKEvent edited = eventAt(localDate(2024, 3, 5, 8, 30));
    edited.title = u"Edited again"_qs;
    save(edited);
    EXPECT_EQ(linesOf(textOf(u"rich"_qs)), before);

    EKEvent fourth = eventAt(localDate(2024, 3, 7, 4, 30));
    fourth.title = u"Alone"_qs;
    save(fourth);
    EXPECT_EQ(lost(before, linesOf(textOf(u"rich"_qs))), QStringList());
    EXPECT_EQ(list(3), (QStringList{u"All 03-04 04:30-05:30"_qs, u"Edited again 03-05 08:30-09:00"_qs,
                                    u"Alone 03-07 04:30-05:30"_qs, u"All 03-20 06:30-07:30"_qs}));
}
