#include "foundation/Region.h"
#include "records/dates/MVDate.h"
#include "support/TestSupport.h"

#include <gtest/gtest.h>

enum class Time { Shown, Hidden };
enum class Lead { Due, Start, EmailCall };

/// The label, with the narrow blank that some locales put before AM and PM made a plain one.
static QString label(OptionalDate date, Time time, Lead lead = Lead::Due)
{
    const QString text =
        MVDate::getLabelText(date, time == Time::Shown, lead == Lead::Start, lead == Lead::EmailCall);
    return QString(text).replace(QChar(0x202F), u' ');
}

TEST(DateLabelsTest, LabelsNameTheDaysAroundToday)
{
    const FrozenClock clock(localDate(2024, 7, 15, 10));
    const Date today = localDate(2024, 7, 15, 14, 5);
    const Date tomorrow = localDate(2024, 7, 16, 14, 5);
    const Date yesterday = localDate(2024, 7, 14, 23, 59);
    EXPECT_EQ(label(today, Time::Shown), u"Due at 2:05 PM"_qs);
    EXPECT_EQ(label(today, Time::Hidden), u"Due Today"_qs);
    EXPECT_EQ(label(tomorrow, Time::Shown), u"Due Tomorrow at 2:05 PM"_qs);
    EXPECT_EQ(label(tomorrow, Time::Hidden), u"Due Tomorrow"_qs);
    EXPECT_EQ(label(yesterday, Time::Shown), u"Due Yesterday at 11:59 PM"_qs);
    EXPECT_EQ(label(yesterday, Time::Hidden), u"Due Yesterday"_qs);
    EXPECT_EQ(label(std::nullopt, Time::Shown), QString());
}

TEST(DateLabelsTest, LabelsOfOtherDaysShowTheDate)
{
    const FrozenClock clock(localDate(2024, 7, 15, 10));
    EXPECT_EQ(label(localDate(2024, 7, 17, 9), Time::Shown), u"Due on July 17 at 9:00 AM, 2024"_qs);
    EXPECT_EQ(label(localDate(2024, 7, 17, 9), Time::Hidden), u"Due on Jul 17, 2024"_qs);
    EXPECT_EQ(label(localDate(2023, 7, 15, 9), Time::Hidden), u"Due on Jul 15, 2023"_qs);
}

TEST(DateLabelsTest, StartDatesAndEmailsAreLabelledAsStarts)
{
    const FrozenClock clock(localDate(2024, 7, 15, 10));
    for (const Lead lead : {Lead::Start, Lead::EmailCall}) {
        EXPECT_EQ(label(localDate(2024, 7, 15, 9), Time::Shown, lead), u"Start at 9:00 AM"_qs);
        EXPECT_EQ(label(localDate(2024, 7, 16, 9), Time::Hidden, lead), u"Start Tomorrow"_qs);
        EXPECT_EQ(label(localDate(2024, 7, 16, 9), Time::Shown, lead), u"Start Tomorrow at 9:00 AM"_qs);
        EXPECT_EQ(label(localDate(2024, 7, 17, 9), Time::Hidden, lead), u"Start Date on Jul 17, 2024"_qs);
    }
}

TEST(DateLabelsTest, BesideADayOfAClockChangeTheDateIsShown)
{
    struct Case
    {
        Date now, date;
        QString text;
    };
    const std::vector<Case> cases = {
        {localDate(2024, 3, 31, 12), localDate(2024, 4, 1), u"Due on Apr 1, 2024"_qs},
        {localDate(2024, 3, 31, 12), localDate(2024, 3, 30), u"Due Yesterday"_qs},
        {localDate(2024, 4, 1, 12), localDate(2024, 3, 31), u"Due on Mar 31, 2024"_qs},
        {localDate(2024, 3, 30, 12), localDate(2024, 3, 31), u"Due Tomorrow"_qs},
        {localDate(2024, 10, 27, 12), localDate(2024, 10, 28), u"Due on Oct 28, 2024"_qs},
        {localDate(2024, 10, 28, 12), localDate(2024, 10, 27), u"Due on Oct 27, 2024"_qs},
        {localDate(2024, 10, 27, 1), localDate(2024, 10, 27, 23), u"Due Today"_qs}};
    for (const Case &one : cases) {
        const FrozenClock clock(one.now);
        EXPECT_EQ(label(one.date, Time::Hidden), one.text);
    }
}

TEST(DateLabelsTest, LabelsSpeakTheUsersLanguage)
{
    Region::setLocale(u"de_DE"_qs);
    const FrozenClock clock(localDate(2024, 7, 15, 10));
    EXPECT_EQ(label(localDate(2024, 7, 15, 14, 5), Time::Shown), u"Fällig um 14:05"_qs);
    EXPECT_EQ(label(localDate(2024, 7, 16), Time::Hidden, Lead::Start), u"Beginn morgen"_qs);
    EXPECT_EQ(label(localDate(2024, 7, 17, 9), Time::Shown), u"Fällig am 17. Juli 2024 um 09:00"_qs);
    EXPECT_EQ(label(localDate(2024, 7, 17, 9), Time::Hidden), u"Fällig am 17.07.2024"_qs);
}

TEST(DateLabelsTest, LabelsAreEnglishAsAWholeWhereThereAreNoWords)
{
    Region::setLocale(u"pl_PL"_qs);
    const FrozenClock clock(localDate(2024, 7, 15, 10));
    EXPECT_EQ(label(localDate(2024, 8, 17, 9), Time::Hidden), u"Due on Aug 17, 2024"_qs);
    EXPECT_EQ(label(localDate(2024, 8, 17, 21), Time::Shown), u"Due on August 17 at 21:00, 2024"_qs);
    EXPECT_EQ(label(localDate(2024, 7, 16, 21), Time::Shown, Lead::Start), u"Start Tomorrow at 21:00"_qs);
}

TEST(DateLabelsTest, LabelsFollowTheDayAsItGoesBy)
{
    const Date date = localDate(2024, 7, 16);
    const auto labelAt = [&](Date now) {
        const FrozenClock clock(now);
        return label(date, Time::Hidden);
    };
    EXPECT_EQ(labelAt(localDate(2024, 7, 15, 23, 59, 59)), u"Due Tomorrow"_qs);
    EXPECT_EQ(labelAt(localDate(2024, 7, 16)), u"Due Today"_qs);
    EXPECT_EQ(labelAt(localDate(2024, 7, 17)), u"Due Yesterday"_qs);
}

TEST(DateLabelsTest, ANotesCreationIsToldInTheWordsOfADueDate)
{
    const FrozenClock clock(localDate(2024, 3, 31, 10));
    EXPECT_EQ(MVDate::noteCreationLabel(std::nullopt), std::nullopt);
    EXPECT_EQ(MVDate::noteCreationLabel(localDate(2024, 4, 1, 9)), u"Due Date Tomorrow, 2024"_qs);
    EXPECT_EQ(MVDate::noteCreationLabel(localDate(2024, 3, 30, 9)), u"Due at 30 March 2024"_qs);
    EXPECT_EQ(MVDate::noteCreationLabel(localDate(2024, 3, 31, 9)), u"Due Today"_qs);
    EXPECT_EQ(MVDate::noteCreationLabel(localDate(2024, 3, 20, 15, 7)),
              u"Due Date on 20 March at 15:07, 2024"_qs);
}
