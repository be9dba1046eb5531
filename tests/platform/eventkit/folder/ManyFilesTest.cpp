#include "FolderFixture.h"

#include <QElapsedTimer>

/// Five thousand events in files of their own, a tenth of them series.
class ManyFilesTest : public FolderFixture
{
protected:
    ManyFilesTest()
    {
        for (int index = 0; index < count; ++index) {
            const QByteArray number = QByteArray::number(index);
            const QByteArray rule = index % 10 == 0 ? "RRULE:FREQ=WEEKLY\n" : "";
            const QByteArray day =
                QDate(2022, 1, 1).addDays(index % 1000).toString(u"yyyyMMdd"_qs).toLatin1();
            write(u"%1.ics"_qs.arg(index),
                  eventText("u" + number, "DTSTAMP:20240101T000000Z\nSUMMARY:Event " + number +
                                              "\nDESCRIPTION:Some words\nDTSTART;TZID=Europe/Berlin:" + day +
                                              "T090000\nDURATION:PT1H\n" + rule +
                                              "BEGIN:VALARM\nACTION:DISPLAY\nTRIGGER:-PT15M\nEND:VALARM\n"));
        }
    }

    qint64 milliseconds() const
    {
        QElapsedTimer timer;
        timer.start();
        events();
        return timer.elapsed();
    }

    static constexpr int count = 5000;
};

TEST_F(ManyFilesTest, AskingAgainIsQuick)
{
    const qint64 first = milliseconds();
    const std::size_t found = events().size();
    const qint64 again = std::min({milliseconds(), milliseconds(), milliseconds()});
    std::printf("%zu events; first %lld ms, again %lld ms\n", found, static_cast<long long>(first),
                static_cast<long long>(again));
    EXPECT_GT(found, 1900U);
    // Generous, for busy machines and sanitizers.
    EXPECT_LT(first, 10'000);
    EXPECT_LT(again, 2'000);
    EXPECT_LT(again, first);

    // Many questions about single events.
    const auto held = store.holdContents();
    QElapsedTimer timer;
    timer.start();
    for (int index = 0; index < 1000; ++index)
        EXPECT_EQ(store.calendarItemsWithExternalIdentifier(u"u%1"_qs.arg(index * 5)).value().size(), 1U);
    std::printf("a thousand look-ups: %lld ms\n", static_cast<long long>(timer.elapsed()));
    EXPECT_LT(timer.elapsed(), 5'000);
}
