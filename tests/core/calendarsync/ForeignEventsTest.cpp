#include "CalendarTest.h"

#include <gmock/gmock.h>

namespace {

using testing::SizeIs;

/// Events of other programs whose title was changed here.
class ForeignEvents : public CalendarTest
{
protected:
    /// The lines of the only event that differ after an edit of its row, "-" before and "+" after.
    QStringList changedLines(const QString &lines, const std::function<void(MVTask &)> &edit)
    {
        write(u"Home"_qs, u"foreign"_qs, lines);
        pass();
        const QStringList before = files(u"Home"_qs).first().split(u"\r\n"_qs);
        if (rows().at(0)->repeat().isEmpty()) {
            MVTask copy(rows().at(0));
            edit(copy);
            EXPECT_TRUE(TaskManager::saveTaskTemp(copy, true));
        } else {
            editSeries(rows().at(0), Span::FutureTasks, edit);
        }
        const QStringList after = files(u"Home"_qs).first().split(u"\r\n"_qs);
        QStringList changes;
        const auto add = [&changes](const QStringList &from, const QStringList &other, QChar mark) {
            for (const QString &line : from) {
                const bool isMark = line.startsWith(u"DTSTAMP"_qs) || line.startsWith(u"LAST-MODIFIED"_qs);
                if (!other.contains(line) && !isMark)
                    changes.append(mark + line);
            }
        };
        add(before, after, u'-');
        add(after, before, u'+');
        pass();
        expectSettled();
        return changes;
    }
    static void rename(MVTask &task) { task.title = u"New"_qs; }
    const QStringList onlyTitle = {u"-SUMMARY:Old"_qs, u"+SUMMARY:New"_qs};
    const QString hour = u"SUMMARY:Old\nDTSTART:20261124T080000Z\nDTEND:20261124T090000Z\n"_qs;
};

TEST_F(ForeignEvents, KeepTheirHoursOverMidnight)
{
    EXPECT_EQ(changedLines(u"SUMMARY:Old\nDTSTART;TZID=America/New_York:20261124T170030\nDURATION:PT2H\n"_qs,
                           rename),
              onlyTitle);
    EXPECT_EQ(rows().at(0)->type(), TaskType::ToDo) << "a bar of two days here";
    // Given other days it becomes what it looks like.
    MVTask moved(rows().at(0));
    moved.startDate = localDate(2026, 11, 26);
    moved.dueDate = localDate(2026, 11, 27, 23, 59);
    ASSERT_TRUE(TaskManager::saveTaskTemp(moved, true));
    const QString text = files(u"Home"_qs).first();
    EXPECT_TRUE(text.contains(u"DTSTART;VALUE=DATE:20261126\r\n"_qs)) << text.toStdString();
    EXPECT_TRUE(text.contains(u"DTEND;VALUE=DATE:20261128\r\n"_qs)) << text.toStdString();
}

TEST_F(ForeignEvents, KeepEveryAlarm)
{
    const QString alarms = u"BEGIN:VALARM\nUID:A\nACTION:AUDIO\nATTACH;VALUE=URI:Chord\nTRIGGER:-PT30M\n"
                           u"ACKNOWLEDGED:20261101T000000Z\nEND:VALARM\n"
                           u"BEGIN:VALARM\nUID:B\nACTION:DISPLAY\nDESCRIPTION:b\n"
                           u"TRIGGER;VALUE=DATE-TIME:20261123T080000Z\nEND:VALARM\n"
                           u"BEGIN:VALARM\nUID:C\nACTION:DISPLAY\nDESCRIPTION:c\nTRIGGER;RELATED=END:PT5M\n"
                           u"END:VALARM\n"
                           u"BEGIN:VALARM\nUID:D\nACTION:EMAIL\nSUMMARY:d\nDESCRIPTION:d\nTRIGGER:-P1D\n"
                           u"ATTENDEE:mailto:me@example.org\nEND:VALARM\n"_qs;
    EXPECT_EQ(changedLines(hour + alarms, rename), onlyTitle);
    // One that is changed here leaves the others alone.
    MVTask copy(rows().at(0));
    copy.alert = localDate(2026, 11, 24, 8, 50);
    ASSERT_TRUE(TaskManager::saveTaskTemp(copy, true));
    const QString changed = files(u"Home"_qs).first();
    EXPECT_TRUE(changed.contains(u"TRIGGER:-PT10M"_qs));
    EXPECT_FALSE(changed.contains(u"UID:A\r\n"_qs));
    for (const QString &uid : {u"B"_qs, u"C"_qs, u"D"_qs})
        EXPECT_TRUE(changed.contains(u"UID:%1\r\n"_qs.arg(uid))) << uid.toStdString();
    // Without alerts only what no row shows is left.
    MVTask silent(rows().at(0));
    silent.alert = silent.secondAlert = std::nullopt;
    ASSERT_TRUE(TaskManager::saveTaskTemp(silent, true));
    EXPECT_EQ(files(u"Home"_qs).first().count(u"BEGIN:VALARM"_qs), 1);
    EXPECT_TRUE(files(u"Home"_qs).first().contains(u"ACTION:EMAIL"_qs));
}

TEST_F(ForeignEvents, KeepTheAlarmOfAMoment)
{
    const QString moment = u"SUMMARY:Old\nDTSTART:20261124T080000Z\nBEGIN:VALARM\nACTION:DISPLAY\n"
                           u"DESCRIPTION:x\nTRIGGER:-PT15M\nEND:VALARM\n"_qs;
    EXPECT_EQ(changedLines(moment, rename), onlyTitle);
    EXPECT_EQ(rows().at(0)->alert(), localDate(2026, 11, 24, 8, 45));
    MVTask copy(rows().at(0));
    copy.alert = localDate(2026, 11, 24, 8, 50);
    ASSERT_TRUE(TaskManager::saveTaskTemp(copy, true));
    EXPECT_TRUE(files(u"Home"_qs).first().contains(u"TRIGGER:-PT10M"_qs));
    copy.alert = std::nullopt;
    ASSERT_TRUE(TaskManager::saveTaskTemp(copy, true));
    EXPECT_FALSE(files(u"Home"_qs).first().contains(u"VALARM"_qs)) << "taken off where it was shown";
}

TEST_F(ForeignEvents, KeepTheirPlaceAsItIsWritten)
{
    EXPECT_EQ(changedLines(hour + u"LOCATION:Here\\, there\nGEO:48.13715432;11.57612499\n"_qs, rename),
              onlyTitle);
    EXPECT_EQ(changedLines(hour + u"LOCATION;LANGUAGE=de:Nowhere\n"_qs, rename), onlyTitle)
        << "nobody said that it lies at zero degrees";
}

TEST_F(ForeignEvents, KeepZonesOfTheirOwnAndEditedOccurrences)
{
    const QString text =
        u"BEGIN:VCALENDAR\nVERSION:2.0\nPRODID:-//other//EN\nX-WR-CALNAME:Team\nBEGIN:VTIMEZONE\n"
        u"TZID:W. Europe Standard Time\nBEGIN:STANDARD\nDTSTART:16010101T030000\nTZOFFSETFROM:+0200\n"
        u"TZOFFSETTO:+0100\nRRULE:FREQ=YEARLY;BYDAY=-1SU;BYMONTH=10\nEND:STANDARD\nBEGIN:DAYLIGHT\n"
        u"DTSTART:16010101T020000\nTZOFFSETFROM:+0100\nTZOFFSETTO:+0200\n"
        u"RRULE:FREQ=YEARLY;BYDAY=-1SU;BYMONTH=3\nEND:DAYLIGHT\nEND:VTIMEZONE\nBEGIN:VEVENT\nUID:odd\n"
        u"DTSTAMP:20261101T000000Z\nSUMMARY;LANGUAGE=de:Old\n"
        u"DTSTART;TZID=\"W. Europe Standard Time\":20261123T090000\n"
        u"DTEND;TZID=\"W. Europe Standard Time\":20261123T100000\n"
        u"RRULE:FREQ=WEEKLY;UNTIL=20270117T080000Z;INTERVAL=1;BYDAY=MO;WKST=SU\n"
        u"EXDATE;TZID=\"W. Europe Standard Time\":20261207T090000\n"
        u"X-ALT-DESC;FMTTYPE=text/html:<b>a\\, b</b>\nDESCRIPTION:Eins\\nZwei\\, und drei mit einer Zeile\\, "
        u"die\n  umgebrochen ist – ä\nATTACH;FMTTYPE=application/pdf;FILENAME=\"a, "
        u"b.pdf\":https://example.org/a\n"
        u"X-APPLE-STRUCTURED-LOCATION;VALUE=URI;X-TITLE=\"A, B\":geo:48.1,11.5\nEND:VEVENT\n"
        u"BEGIN:VEVENT\nUID:odd\nDTSTAMP:20261101T000000Z\n"
        u"RECURRENCE-ID;RANGE=THISANDFUTURE;TZID=\"W. Europe Standard Time\":20261214T090000\nSUMMARY:Moved\n"
        u"DTSTART;TZID=\"W. Europe Standard Time\":20261214T110000\nDURATION:PT1H\nX-ODD:1\nEND:VEVENT\n"
        u"END:VCALENDAR\n"_qs;
    QFile file(folderOf(u"Home"_qs) + u"/odd.ics"_qs);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(QString(text).replace(u'\n', u"\r\n"_qs).toUtf8());
    file.close();
    UserDefaults::standard().setObject(settings::frequencyCalendarPeriod, 1);
    pass();
    EXPECT_EQ(table(), QStringList({u"11-23 10:00 Old"_qs, u"11-30 10:00 Old"_qs, u"12-14 12:00 Moved"_qs}));
    editSeries(rows().at(0), Span::FutureTasks, rename);
    QString expected = text;
    expected.replace(u"LANGUAGE=de:Old"_qs, u"LANGUAGE=de:New"_qs)
        .replace(expected.indexOf(u"DTSTAMP:20261101T000000Z"_qs), 24, u"DTSTAMP:20261121T081500Z"_qs)
        .replace(u"X-TITLE=\"A, B\":geo:48.1,11.5\n"_qs,
                 u"X-TITLE=\"A, B\":geo:48.1,11.5\nLAST-MODIFIED:20261121T081500Z\n"_qs);
    EXPECT_EQ(files(u"Home"_qs).first().remove(u'\r'), expected);
    pass();
    expectSettled();
}

TEST_F(ForeignEvents, KeepTheirRule)
{
    const QStringList rules = {u"FREQ=WEEKLY;INTERVAL=2;WKST=SU;BYDAY=TU,SU;COUNT=20"_qs,
                               u"FREQ=WEEKLY;UNTIL=20270110T080000Z;BYDAY=TU;X-OWN=1"_qs,
                               u"FREQ=DAILY;UNTIL=20261224"_qs, u"BYHOUR=9;FREQ=DAILY"_qs,
                               u"FREQ=MONTHLY;BYDAY=TU;BYSETPOS=-1"_qs};
    for (const QString &rule : rules)
        EXPECT_EQ(
            changedLines(hour + u"RRULE:%1\nRDATE:20261230T080000Z\nEXDATE:20261208T080000Z\n"_qs.arg(rule),
                         rename),
            onlyTitle)
            << rule.toStdString();
}

} // namespace
