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
        for (const TaskStatus status : allTaskStatuses)
            EXPECT_EQ(Functional::statusTypeFromString(Functional::statusStringFromType(status)), status);
        for (const Priority priority : allPriorities)
            EXPECT_EQ(Functional::priorityTypeFromString(Functional::priorityStringFromType(priority)),
                      priority);
        for (const TaskType type : allTaskTypes)
            EXPECT_EQ(Functional::taskTypeFromString(Functional::typeStringFromType(type)), type);
    }
    EXPECT_EQ(Functional::statusStringFromType(TaskStatus::InProgress), u"In Arbeit"_qs);
    EXPECT_EQ(Functional::statusTypeFromString(u"In Progress"_qs), TaskStatus::Open)
        << "the words are those of the language";
    Region::setLocale(u"en_US"_qs);
    EXPECT_EQ(Functional::statusStringFromType(TaskStatus::InProgress), u"In Progress"_qs);
    EXPECT_EQ(Functional::priorityStringFromType(Priority::None), u"No Priority"_qs);
    EXPECT_EQ(Functional::typeStringFromType(TaskType::EmailCall), u"Email/Call"_qs);
}

TEST(FunctionalTest, WhatIsNoNumberOrNoWordHasAFixedAnswer)
{
    for (const int number : {4, 7, -1}) {
        EXPECT_TRUE(Functional::statusStringFromType(static_cast<TaskStatus>(number)).isEmpty());
        EXPECT_TRUE(Functional::priorityStringFromType(static_cast<Priority>(number)).isEmpty());
        EXPECT_TRUE(Functional::typeStringFromType(static_cast<TaskType>(number)).isEmpty());
        EXPECT_EQ(Functional::priorityTypeFromNumber(number), Priority::None);
    }
    EXPECT_TRUE(Functional::typeStringFromType(static_cast<TaskType>(3)).isEmpty());
    EXPECT_TRUE(Functional::typeStringFromType(std::nullopt).isEmpty());
    EXPECT_EQ(Functional::priorityTypeFromNumber(2), Priority::Low);
    EXPECT_EQ(Functional::priorityTypeFromString(u"Urgent"_qs), Priority::High);
    EXPECT_EQ(Functional::taskTypeFromString(u"Dream"_qs), TaskType::ToDo);
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
