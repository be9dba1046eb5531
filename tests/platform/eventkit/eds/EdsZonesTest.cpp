#include "EdsFixture.h"

#include "eventkit/EKEventStore.h"

/// What a zone means must survive the daemon, which takes names that it does not know for UTC.
class EdsZonesTest : public EdsFixture
{
protected:
    /// The start of an event at nine o'clock of a zone, as another program reads it from the daemon.
    Date startOf(const QByteArray &tzid, const QByteArray &zones = {})
    {
        const QByteArray event = "BEGIN:VEVENT\nUID:zoned\nDTSTAMP:20240101T000000Z\nSUMMARY:S\n"
                                 "DTSTART;TZID=" +
                                 tzid + ":20240704T090000\nDURATION:PT1H\nEND:VEVENT\n";
        const CalendarObject written = put(backend, calendar, {{}, {}, calendarText(zones + event)});
        EXPECT_EQ(objects(other, calendar).value(u"zoned"_qs).text, written.text);
        EKEventStore store(std::make_shared<EdsBackend>());
        const auto events = store.calendarItemsWithExternalIdentifier(u"zoned"_qs);
        EXPECT_TRUE(events && events.value().size() == 1) << written.text.constData();
        EXPECT_FALSE(backend.remove(calendar, written.name, written.etag));
        return events && !events.value().empty() ? *events.value().front().startDate : Date();
    }
};

TEST_F(EdsZonesTest, TimesKeepTheirMoment)
{
    EXPECT_EQ(startOf("America/New_York"), utcDate(2024, 7, 4, 13));
    EXPECT_EQ(startOf("US/Eastern"), utcDate(2024, 7, 4, 13));
    EXPECT_EQ(startOf("W. Europe Standard Time"), utcDate(2024, 7, 4, 7));
    EXPECT_EQ(startOf("/example.org/2007_1/Asia/Tokyo"), utcDate(2024, 7, 4, 0));
    EXPECT_EQ(startOf("Office", "BEGIN:VTIMEZONE\nTZID:Office\nBEGIN:STANDARD\nDTSTART:20000101T000000\n"
                                "TZOFFSETFROM:+0530\nTZOFFSETTO:+0530\nEND:STANDARD\nEND:VTIMEZONE\n"),
              utcDate(2024, 7, 4, 3, 30));
    // Nobody knows what it is: nine o'clock here.
    const LogCapture log;
    EXPECT_EQ(startOf("Nowhere"), utcDate(2024, 7, 4, 7));
}

TEST_F(EdsZonesTest, DatesAndFloatingTimesStayWhatTheyAre)
{
    const QByteArray text =
        put(backend, calendar,
            {{}, {}, eventText("day", "SUMMARY:S\nDTSTART;VALUE=DATE:20240704\nDTEND;VALUE=DATE:20240706\n")})
            .text;
    EXPECT_TRUE(text.contains("DTSTART;VALUE=DATE:20240704") && text.contains("DTEND;VALUE=DATE:20240706"));
    const QByteArray floating =
        put(backend, calendar,
            {{}, {}, eventText("floating", "DTSTART:20240704T090000\nDURATION:PT1H\nX-OWN;X-P=1:kept\n")})
            .text;
    EXPECT_TRUE(floating.contains("DTSTART:20240704T090000\r\n")) << floating.constData();
    EXPECT_TRUE(floating.contains("X-OWN;X-P=1:kept"));
}
