#include "records/Functional.h"
#include "foundation/Region.h"
#include "support/TestSupport.h"

#include <QCoreApplication>
#include <QElapsedTimer>

#include <gtest/gtest.h>

TEST(FunctionalTest, NumbersHaveWordsAndWordsHaveNumbers)
{
    for (const QString &locale : {u"en_US"_qs, u"de_DE"_qs}) {
        Region::setLocale(locale);
        for (int number = 0; number < 4; ++number) {
            EXPECT_EQ(Functional::statusTypeFromString(Functional::statusStringFromType(number)), number);
            EXPECT_EQ(Functional::priorityTypeFromString(Functional::priorityStringFromType(number)), number);
        }
        for (int type = 0; type < 3; ++type)
            EXPECT_EQ(Functional::taskTypeFromString(Functional::typeStringFromType(type)), type);
    }
    EXPECT_EQ(Functional::statusStringFromType(1), u"In Arbeit"_qs);
    EXPECT_EQ(Functional::statusTypeFromString(u"In Progress"_qs), 0)
        << "the words are those of the language";
    Region::setLocale(u"en_US"_qs);
    EXPECT_EQ(Functional::statusStringFromType(1), u"In Progress"_qs);
    EXPECT_EQ(Functional::priorityStringFromType(3), u"No Priority"_qs);
    EXPECT_EQ(Functional::typeStringFromType(2), u"Email/Call"_qs);
}

TEST(FunctionalTest, WhatIsNoNumberOrNoWordHasAFixedAnswer)
{
    for (const int number : {4, 7, -1}) {
        EXPECT_TRUE(Functional::statusStringFromType(number).isEmpty());
        EXPECT_TRUE(Functional::priorityStringFromType(number).isEmpty());
        EXPECT_TRUE(Functional::typeStringFromType(number).isEmpty());
        EXPECT_EQ(Functional::priorityTypeFromNumber(number), 3);
    }
    EXPECT_TRUE(Functional::typeStringFromType(3).isEmpty());
    EXPECT_TRUE(Functional::typeStringFromType(std::nullopt).isEmpty());
    EXPECT_EQ(Functional::priorityTypeFromNumber(2), 2);
    EXPECT_EQ(Functional::priorityTypeFromString(u"Urgent"_qs), 0);
    EXPECT_EQ(Functional::taskTypeFromString(u"Dream"_qs), 0);
}

TEST(FunctionalTest, ARepeatedCategoryTitleGetsOneBlankAndNoMore)
{
    EXPECT_EQ(Functional::getUnicalCategoryTitleWithArray({u"Work"_qs}, u"Home"_qs), u"Home"_qs);
    EXPECT_EQ(Functional::getUnicalCategoryTitleWithArray({u"Work"_qs, u"Work "_qs}, u"Work"_qs),
              u"Work "_qs);
}

TEST(FunctionalTest, TheCustomPaletteGoesFromSixToTwenty)
{
    EXPECT_EQ(Functional::getCategoryColorByIndex(6),
              (CategoryColor{218 / 255.0, 68 / 255.0, 83 / 255.0, 1, 6}));
    EXPECT_EQ(Functional::getCategoryColorByIndex(13),
              (CategoryColor{52 / 255.0, 152 / 255.0, 219 / 255.0, 1, 13}));
    EXPECT_EQ(Functional::getCategoryColorByIndex(20),
              (CategoryColor{243 / 255.0, 156 / 255.0, 18 / 255.0, 1, 20}));
    EXPECT_EQ(Functional::getCategoryColorByIndex(5), std::nullopt);
    EXPECT_EQ(Functional::getCategoryColorByIndex(21), std::nullopt);
}

TEST(FunctionalTest, TheFirstElementOfAValueGetsTheStatus)
{
    const auto element = [](const QString &value, const QVariant &status) {
        return QVariantMap{{u"Value"_qs, value}, {u"Status"_qs, status}};
    };
    QVariantMap first = element(u"a"_qs, 0);
    first.insert(u"Extra"_qs, 1);
    const QVariantList list = {first, element(u"b"_qs, 0), element(u"a"_qs, 0)};
    EXPECT_EQ(Functional::changeStatusElement(list, u"a"_qs, true),
              (QVariantList{element(u"a"_qs, true), element(u"b"_qs, 0), element(u"a"_qs, 0)}));
    EXPECT_EQ(Functional::changeStatusElement(list, u"c"_qs, true), list);
}

TEST(FunctionalTest, SecondsAndTimesOfDayAreCutOff)
{
    EXPECT_EQ(Functional::dateWithZeroSeconds(localDate(2024, 7, 1, 23, 59, 59) + Seconds(0.9)),
              localDate(2024, 7, 1, 23, 59));
    EXPECT_EQ(Functional::dateWithZeroSeconds(Date::fromReferenceSeconds(-1)),
              Date::fromReferenceSeconds(-60));
    EXPECT_EQ(Functional::dateWithoutTimeOfDate(localDate(2024, 12, 31, 23, 59)), localDate(2024, 12, 31));
    Region::setZone("Asia/Beirut");
    EXPECT_EQ(Functional::dateWithoutTimeOfDate(localDate(2024, 3, 31, 15)), localDate(2024, 3, 31, 1));
}

TEST(FunctionalTest, TheSameMinuteIsToldByTheMinuteAndTheDay)
{
    const Date minute = localDate(2024, 7, 1, 10, 0, 30);
    EXPECT_EQ(Functional::sameMinute(minute, minute + Seconds(29)), true);
    EXPECT_EQ(Functional::sameMinute(minute, minute + Seconds(30)), false);
    EXPECT_EQ(Functional::sameMinute(minute, minute + Seconds(86400)), false);
}

TEST(FunctionalTest, APartThatLeavesItsWholeIsToldByTheFirstRuleThatItBreaks)
{
    const auto day = [](int number) { return OptionalDate(localDate(2024, 7, number)); };
    const OptionalDate none;
    const auto broken = Functional::dateValidationsMainStartDate;
    EXPECT_EQ(broken(day(5), day(10), day(5), day(10)), 0);
    EXPECT_EQ(broken(day(5), day(10), day(4), day(11)), 1);
    EXPECT_EQ(broken(day(5), day(10), day(11), day(12)), 2);
    EXPECT_EQ(broken(day(5), day(10), day(6), day(11)), 4);
    EXPECT_EQ(broken(day(5), day(10), none, day(4)), 3);
    EXPECT_EQ(broken(day(11), day(10), none, day(10)), 3);
    EXPECT_EQ(broken(day(12), day(10), none, day(11)), 4) << "the due dates come first";
    EXPECT_EQ(broken(none, none, day(1), day(2)), 0);
    EXPECT_EQ(broken(day(5), day(10), none, none), 0);
    EXPECT_EQ(broken(day(5), none, day(6), day(7)), 0);
}

TEST(FunctionalTest, MessagesHaveOneButtonAndTheTitleTwice)
{
    const ScriptedAlerts alerts({Alert::firstButton, Alert::firstButton});
    Functional::messageAlertWithTitle(u"Invalid Date"_qs, u"Nothing known"_qs);
    Region::setLocale(u"de_DE"_qs);
    Functional::messageAlertWithTitle(u"Invalid Date"_qs, u"Nothing known"_qs);
    EXPECT_EQ(
        alerts.asked(),
        (std::vector{
            AlertQuestion{u"Invalid Date"_qs, u"Invalid Date"_qs, u"Nothing known"_qs, {u"OK"_qs}},
            AlertQuestion{u"Ungültiges Datum"_qs, u"Ungültiges Datum"_qs, u"Nothing known"_qs, {u"OK"_qs}}}));
}

TEST(FunctionalTest, DelayedBlocksRunOnTheMainLoop)
{
    bool isRun = false;
    Functional::performDelayed(0.001, [&] { isRun = true; });
    EXPECT_FALSE(isRun);
    QElapsedTimer waited;
    waited.start();
    while (!isRun && waited.elapsed() < 5000)
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 50);
    EXPECT_TRUE(isRun);
}
