// A place is chosen for a task, or made.

#include "records/LocationChoice.h"
#include "CoreTest.h"

using namespace Qt::Literals::StringLiterals;

namespace {

class LocationChoiceTest : public CoreTest
{
protected:
    LocationChoiceTest()
    {
        for (const LocationPtr &seeded : DBWorker::allLocations())
            context().deleteObject(seeded);
        office = DBWorker::saveLocation(u"Office"_s, 52.5, 13.4);
        quay = DBWorker::saveLocation(u"Quay"_s, -33.9, 151.2);
    }

    LocationPtr office;
    LocationPtr quay;
};

} // namespace

TEST_F(LocationChoiceTest, APressChoosesAndASecondOneTakesItBack)
{
    LocationChoice choice(quay);
    EXPECT_EQ(choice.chosen(), quay);
    choice.press(1);
    EXPECT_EQ(choice.chosen(), office);
    choice.press(1);
    EXPECT_EQ(choice.chosen(), nullptr);
    EXPECT_EQ(choice.selectedRow(), -1);
    choice.press(9);
    EXPECT_EQ(choice.selectedRow(), -1);
}

TEST_F(LocationChoiceTest, ANewPlaceNeedsATitleAndKeepsItsCoordinates)
{
    LocationChoice choice(office);
    choice.press(LocationChoice::addRow);
    EXPECT_TRUE(choice.isAdding());
    EXPECT_FALSE(choice.made());
    choice.locationTemp = {u" Park "_s, 48.1, 11.6};
    const LocationPtr park = choice.made().value();
    EXPECT_EQ(park->title(), u"Park"_s);
    EXPECT_EQ(park->latitude(), 48.1);
    choice.locationTemp = {u"Park"_s, 1, 2};
    EXPECT_EQ(choice.made(), park) << "a title stands for one place";
    EXPECT_EQ(park->longitude(), 11.6);
    EXPECT_EQ(LocationChoice(park).lastWithPosition(), quay);
    choice.locationTemp = {u"Somewhere"_s, {}, {}};
    const LocationPtr unknown = choice.made().value();
    EXPECT_FALSE(unknown->latitude() || unknown->longitude());
    EXPECT_EQ(LocationChoice(unknown).lastWithPosition(), quay) << "no place lies in the Gulf of Guinea";
    const LocationPtr ofEvent = DBWorker::saveLocation(u"Room 4"_s, 0, 0);
    EXPECT_EQ(LocationChoice(ofEvent).lastWithPosition(), quay) << "nor one of an event without a position";
    const LocationPtr equator = DBWorker::saveLocation(u"Zenith"_s, 0, 32.5);
    EXPECT_EQ(LocationChoice(equator).lastWithPosition(), equator);
}

TEST_F(LocationChoiceTest, ADeletedPlaceIsGoneFromTableAndStoreAndAnotherStaysChosen)
{
    LocationChoice choice(quay);
    EXPECT_EQ(choice.remove(LocationChoice::addRow), nullptr);
    EXPECT_EQ(choice.remove(1), office);
    EXPECT_EQ(choice.locations(), std::vector{quay});
    EXPECT_EQ(choice.chosen(), quay);
    EXPECT_EQ(choice.remove(1), quay);
    EXPECT_EQ(choice.chosen(), nullptr);
    EXPECT_TRUE(DBWorker::allLocations().isEmpty());
}

TEST_F(LocationChoiceTest, DegreesAreReadWithPointOrCommaInsideTheirLimits)
{
    EXPECT_EQ(LocationChoice::degrees(u" 52,5 "_s, 90), 52.5);
    EXPECT_EQ(LocationChoice::degrees(u"-90"_s, 90), -90);
    for (const QString &wrong : {QString(), u"91"_s, u"north"_s, u"1,2,3"_s, u"nan"_s, u"inf"_s})
        EXPECT_FALSE(LocationChoice::degrees(wrong, 90)) << qPrintable(wrong);
}
