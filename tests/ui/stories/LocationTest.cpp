// A task is given a place.

#include "shell/maps/Geocoder.h"
#include "shell/maps/MapView.h"
#include "shell/tasks/LocationBubble.h"
#include "shell/tasks/LocationPopup.h"
#include "ui/support/HttpServer.h"
#include "ui/support/ShellTest.h"
#include "widgets/CheckList.h"

#include <QApplication>
#include <QBuffer>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QSignalSpy>
#include <QToolButton>
#include <QUrlQuery>
#include <QWheelEvent>

using namespace Qt::Literals::StringLiterals;

namespace {

/// What the configuration of this machine says while it lives.
class Configured
{
public:
    explicit Configured(const QJsonObject &values)
        : path(qEnvironmentVariable("XDG_CONFIG_HOME") + u"/Morvane/platform.json"_s)
    {
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(QJsonDocument(values).toJson());
    }
    ~Configured() { QFile::remove(path); }

private:
    QString path;
};

QByteArray redTile()
{
    QImage image(256, 256, QImage::Format_RGB32);
    image.fill(Qt::red);
    QBuffer buffer;
    image.save(&buffer, "PNG");
    return buffer.data();
}

class LocationTest : public ShellTest
{
protected:
    LocationTest()
    {
        for (const LocationPtr &seeded : DBWorker::allLocations())
            context().deleteObject(seeded);
        EXPECT_FALSE(DBWorker::saveContext());
    }
    ~LocationTest() override
    {
        const ScriptedAlerts alerts({Alert::thirdButton});
        if (newTaskWindow())
            newTaskWindow()->close();
    }

    LocationPopup &field() { return find<LocationPopup>(*newTaskWindow(), "LocationPopup"); }
    LocationBubble &open()
    {
        if (!newTaskWindow())
            openNewTask();
        QTest::mouseClick(&field(), Qt::LeftButton, {}, QPoint(60, 15));
        auto *bubble = field().findChild<LocationBubble *>();
        EXPECT_NE(bubble, nullptr);
        return *bubble;
    }
    static CheckList &table(LocationBubble &bubble) { return *bubble.findChild<CheckList *>(); }
    static void pressRow(LocationBubble &bubble, int row)
    {
        const QModelIndex index = table(bubble).model()->index(row, 0);
        QTest::mouseClick(table(bubble).viewport(), Qt::LeftButton, {},
                          table(bubble).visualRect(index).center());
    }
    LocationBubble &openMap()
    {
        LocationBubble &bubble = open();
        pressRow(bubble, 0);
        return bubble;
    }
    static void done(LocationBubble &bubble)
    {
        QTest::mouseClick(&find<QPushButton>(bubble, "buttonDone"), Qt::LeftButton);
    }
    LocationPtr chosen() { return newTaskWindow()->taskForm()->currentTask().location; }
};

} // namespace

TEST_F(LocationTest, APlaceThatIsHalfTypedIsAskedAboutOnEachWayOut)
{
    const std::vector<std::function<void(LocationBubble &)>> ways = {
        [](LocationBubble &bubble) { QTest::keyClick(&bubble, Qt::Key_Escape); },
        [](LocationBubble &bubble) {
            QTest::mouseClick(&find<QPushButton>(bubble, "buttonCancel"), Qt::LeftButton);
        },
        [](LocationBubble &bubble) { bubble.close(); }};
    for (const auto &leave : ways) {
        const QPointer<LocationBubble> bubble = &openMap();
        leave(*bubble);
        QTest::qWait(1);
        if (bubble)
            pressRow(*bubble, 0);
        const QPointer<LocationBubble> second = bubble ? bubble : QPointer(&openMap());
        QTest::keyClicks(second->focusWidget(), u"Harb"_s);
        const ScriptedAlerts alerts({Alert::secondButton, Alert::thirdButton});
        leave(*second);
        ASSERT_TRUE(QTest::qWaitFor([&] { return alerts.asked().size() == 1; }))
            << "nothing was typed before";
        ASSERT_TRUE(second && second->isVisible());
        QTest::keyClicks(second->focusWidget(), u"our"_s);
        EXPECT_EQ(find<QLineEdit>(*second, "fieldTitle").text(), u"Harbour"_s);
        leave(*second);
        ASSERT_TRUE(QTest::qWaitFor([&] { return alerts.asked().size() == 2; }));
        QTest::qWait(1);
        EXPECT_TRUE(!second || !find<QLineEdit>(*second, "fieldTitle").isVisible());
        if (second)
            second->close();
        QTest::qWait(1);
    }
    EXPECT_EQ(DBWorker::allLocations().size(), 0);
    LocationBubble &bubble = openMap();
    QTest::keyClicks(bubble.focusWidget(), u"Harbour"_s);
    const ScriptedAlerts alerts({Alert::firstButton});
    QTest::keyClick(&bubble, Qt::Key_Escape);
    ASSERT_NE(chosen(), nullptr);
    EXPECT_EQ(chosen()->title(), u"Harbour"_s);
}

TEST_F(LocationTest, APlaceOfTheTableIsChosenAndASecondPressTakesItBack)
{
    DBWorker::saveLocation(u"Office"_s, 52.5, 13.4);
    LocationBubble &bubble = open();
    EXPECT_EQ(bubble.size(), QSize(350, 250));
    EXPECT_EQ(table(bubble).textOf(0), u"Add New Location"_s);
    pressRow(bubble, 1);
    EXPECT_TRUE(table(bubble).isMarked(1));
    done(bubble);
    ASSERT_NE(chosen(), nullptr);
    EXPECT_EQ(field().text(), u"Office"_s);
    QTest::qWait(1);
    LocationBubble &again = open();
    EXPECT_TRUE(table(again).isMarked(1));
    pressRow(again, 1);
    done(again);
    EXPECT_EQ(chosen(), nullptr);
}

TEST_F(LocationTest, ReturnTakesTheLineThatTheKeysAreOnAndWhatWasPressedCounts)
{
    DBWorker::saveLocation(u"Office"_s, 52.5, 13.4);
    LocationBubble &bubble = open();
    QTest::keyClick(&table(bubble), Qt::Key_Down);
    QTest::keyClick(&table(bubble), Qt::Key_Return);
    ASSERT_NE(chosen(), nullptr);
    EXPECT_EQ(chosen()->title(), u"Office"_s);
    QTest::qWait(1);
    LocationBubble &again = open();
    EXPECT_EQ(table(again).currentIndex().row(), 1);
    QTest::keyClick(&table(again), Qt::Key_Space);
    QTest::keyClick(&table(again), Qt::Key_Return);
    EXPECT_EQ(chosen(), nullptr);
    QTest::qWait(1);
    LocationBubble &third = open();
    QTest::keyClick(&table(third), Qt::Key_Return);
    EXPECT_TRUE(find<QLineEdit>(third, "fieldTitle").isVisible());
    third.close();
}

TEST_F(LocationTest, WithoutAServiceATitleAndTypedCoordinatesMakeAPlace)
{
    LocationBubble &bubble = openMap();
    EXPECT_FALSE(find<QWidget>(bubble, "mapView").isVisible());
    EXPECT_FALSE(find<QToolButton>(bubble, "buttonSearchLocate").isVisible());
    done(bubble);
    EXPECT_TRUE(bubble.isVisible()) << "a place without a title is none";
    QTest::keyClicks(&find<QLineEdit>(bubble, "fieldTitle"), u"Summer house"_s);
    auto &latitude = find<QLineEdit>(bubble, "fieldLatitude");
    QTest::keyClicks(&latitude, u"91"_s);
    done(bubble);
    EXPECT_TRUE(bubble.isVisible());
    EXPECT_TRUE(find<QLabel>(bubble, "labelStatus").isVisible());
    QTest::keyClicks(&latitude, u"59,3"_s);
    done(bubble);
    EXPECT_TRUE(bubble.isVisible()) << "one of the two is not enough";
    QTest::keyClicks(&find<QLineEdit>(bubble, "fieldLongitude"), u"18.1"_s);
    QTest::keyClick(&latitude, Qt::Key_Return);
    ASSERT_NE(chosen(), nullptr);
    EXPECT_EQ(chosen()->title(), u"Summer house"_s);
    EXPECT_EQ(chosen()->latitude(), 59.3);
    EXPECT_EQ(chosen()->longitude(), 18.1);
}

TEST_F(LocationTest, ASearchPutsThePinAndADraggedPinGetsItsAddress)
{
    HttpServer server([](const QUrl &url) -> std::optional<QByteArray> {
        if (url.path().startsWith(u"/tiles"_s))
            return redTile();
        return url.path() == u"/search"_s
                   ? R"([{"lat":"52.5163","lon":"13.3777","display_name":"Gate, Berlin"}])"_ba
                   : R"({"lat":"52.5","lon":"13.3","display_name":"Park, Berlin"})"_ba;
    });
    const Configured configured({{u"geocoder"_s, QString(server.address() + u"/search?q={query}"_s)},
                                 {u"tiles"_s, QString(server.address() + u"/tiles/{z}/{x}/{y}.png"_s)}});
    LocationBubble &bubble = openMap();
    auto &title = find<QLineEdit>(bubble, "fieldTitle");
    auto &latitude = find<QLineEdit>(bubble, "fieldLatitude");
    auto &map = find<MapView>(bubble, "mapView");
    QTest::keyClicks(&title, u"gate & wall"_s);
    QTest::mouseClick(&find<QToolButton>(bubble, "buttonSearchLocate"), Qt::LeftButton);
    ASSERT_TRUE(QTest::qWaitFor([&] { return title.text() == u"Gate, Berlin"_s; }));
    EXPECT_EQ(latitude.text(), u"52.516300"_s);
    const auto search =
        std::ranges::find(server.asked(), u"/search"_s, [](const QUrl &url) { return url.path(); });
    ASSERT_NE(search, server.asked().end());
    EXPECT_EQ(QUrlQuery(*search).queryItemValue(u"q"_s, QUrl::FullyDecoded), u"gate & wall"_s);
    EXPECT_TRUE(QTest::qWaitFor(
        [&] { return map.grab().toImage().pixelColor(5, map.height() / 2) == QColor(Qt::red); }));

    const QPoint pin = map.pinPoint().toPoint() - QPoint(0, 8);
    QTest::mousePress(&map, Qt::LeftButton, {}, pin);
    QTest::mouseMove(&map, pin + QPoint(20, 12));
    QTest::mouseRelease(&map, Qt::LeftButton, {}, pin + QPoint(20, 12));
    ASSERT_TRUE(QTest::qWaitFor([&] { return title.text() == u"Park, Berlin"_s; }));
    EXPECT_NE(latitude.text(), u"52.500000"_s) << "the pin stays where it was put";
    EXPECT_LT(map.pin().latitude, 52.5163);
    EXPECT_GT(map.pin().longitude, 13.3777);
    done(bubble);
    ASSERT_NE(chosen(), nullptr);
    EXPECT_EQ(chosen()->title(), u"Park, Berlin"_s);
    EXPECT_NEAR(chosen()->latitude().value(), map.pin().latitude, 1e-5);
}

TEST_F(LocationTest, AServiceThatIsOutOfReachIsSaidAndTypingStillWorks)
{
    const Configured configured({{u"geocoder"_s, u"http://127.0.0.1:9/search"_s},
                                 {u"tiles"_s, u"http://127.0.0.1:9/{z}/{x}/{y}.png"_s}});
    LocationBubble &bubble = openMap();
    QTest::keyClicks(&find<QLineEdit>(bubble, "fieldTitle"), u"Home"_s);
    done(bubble);
    EXPECT_TRUE(bubble.isVisible()) << "a title is searched for first";
    const auto &status = find<QLabel>(bubble, "labelStatus");
    EXPECT_TRUE(
        QTest::qWaitFor([&] { return status.text() == u"Places cannot be searched at the moment."_s; }));
    done(bubble);
    ASSERT_NE(chosen(), nullptr);
    EXPECT_EQ(chosen()->title(), u"Home"_s);
    EXPECT_FALSE(chosen()->latitude());
    EXPECT_FALSE(chosen()->longitude());
}

TEST_F(LocationTest, DeletingAPlaceAsksAndTakesItFromTheTask)
{
    DBWorker::saveLocation(u"Office"_s, 52.5, 13.4);
    LocationBubble &first = open();
    pressRow(first, 1);
    done(first);
    QTest::qWait(1);
    LocationBubble &bubble = open();
    table(bubble).setFocus();
    QTest::keyClick(&table(bubble), Qt::Key_Up);
    {
        const ScriptedAlerts none;
        QTest::keyClick(&table(bubble), Qt::Key_Delete);
        EXPECT_TRUE(none.asked().empty()) << "the first row is no place";
    }
    QTest::keyClick(&table(bubble), Qt::Key_Down);
    const ScriptedAlerts alerts({Alert::firstButton});
    QTest::keyClick(&table(bubble), Qt::Key_Delete);
    EXPECT_EQ(alerts.asked().size(), 1U);
    EXPECT_TRUE(DBWorker::allLocations().isEmpty());
    EXPECT_EQ(chosen(), nullptr);
    EXPECT_EQ(table(bubble).lineCount(), 1);
    bubble.close();
}

TEST_F(LocationTest, TheAddressOfAServiceTakesTheTextOrIsGivenIt)
{
    const Geocoder with(u"https://a.example/search?q={query}&format=jsonv2"_s);
    EXPECT_EQ(with.searchUrl(u"a b&c"_s).toEncoded(), "https://a.example/search?q=a%20b%26c&format=jsonv2");
    EXPECT_EQ(with.addressUrl({1.5, -2}).toEncoded(),
              "https://a.example/reverse?format=jsonv2&lat=1.500000&lon=-2.000000");
    const Geocoder plain(u"https://a.example/find"_s);
    EXPECT_EQ(plain.searchUrl(u"a+b"_s).toEncoded(), "https://a.example/find?q=a%2Bb&format=json&limit=1");
    EXPECT_EQ(plain.addressUrl({1.5, -2}).toEncoded(),
              "https://a.example/find?q=1.500000%2C-2.000000&format=json&limit=1");
    for (const QByteArray &useless : {"[]"_ba, "{}"_ba, "nonsense"_ba, R"([{"lat":"x","lon":"1"}])"_ba})
        EXPECT_FALSE(Geocoder::read(useless)) << useless.constData();
}

TEST_F(LocationTest, TheMapIsLedByKeysAndWheel)
{
    MapView map(u"http://127.0.0.1:9/{z}/{x}/{y}.png"_s);
    map.resize(300, 200);
    map.showPin({52.5, 13.4}, 10);
    QSignalSpy moved(&map, &MapView::pinMoved);
    QTest::keyClick(&map, Qt::Key_Plus);
    EXPECT_EQ(map.zoom(), 11);
    EXPECT_TRUE(moved.isEmpty());
    QTest::keyClick(&map, Qt::Key_Up);
    QTest::keyClick(&map, Qt::Key_Right);
    EXPECT_EQ(moved.size(), 2);
    EXPECT_GT(map.pin().latitude, 52.5);
    EXPECT_GT(map.pin().longitude, 13.4);
    // What is under the mouse stays there while the wheel zooms.
    const QPointF under = map.pinPoint();
    QWheelEvent wheel(under, map.mapToGlobal(under), {}, {0, 120}, Qt::NoButton, {}, Qt::NoScrollPhase,
                      false);
    QApplication::sendEvent(&map, &wheel);
    EXPECT_EQ(map.zoom(), 12);
    EXPECT_NEAR(map.pinPoint().x(), under.x(), 0.01);
    EXPECT_NEAR(map.pinPoint().y(), under.y(), 0.01);
    for (int step = 0; step < 40; ++step)
        QTest::keyClick(&map, Qt::Key_Minus);
    EXPECT_EQ(map.zoom(), MapProjection::leastZoom);
}
