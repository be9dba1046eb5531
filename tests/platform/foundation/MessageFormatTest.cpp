// Texts with places for values, and the names of days and months.

#include "foundation/MessageFormat.h"
#include "foundation/CalendarSymbols.h"
#include "support/TestSupport.h"

#include <gtest/gtest.h>

using namespace Qt::Literals::StringLiterals;
using CalendarSymbols::Form;

TEST(MessageFormat, CountsTakeTheFormsOfTheirLanguage)
{
    const QString days = u"{0, plural, one{# день} few{# дня} many{# дней} other{# дня}}"_s;
    EXPECT_EQ(MessageFormat::format(days, u"ru"_s, {3}), u"3 дня"_s);
    EXPECT_EQ(MessageFormat::format(days, u"ru"_s, {11}), u"11 дней"_s);
    const QString place = u"{0, selectordinal, one{#st} two{#nd} few{#rd} other{#th}}"_s;
    EXPECT_EQ(MessageFormat::format(place, u"en"_s, {112}), u"112th"_s);
}

TEST(MessageFormat, ValuesAreTakenAsTheyAreAndApostrophesStay)
{
    EXPECT_EQ(MessageFormat::format(u"that's {0}"_s, u"en"_s, {u"{x} # 'y'"_s}), u"that's {x} # 'y'"_s);
}

TEST(MessageFormat, APatternThatCannotBeReadIsAnsweredAndLogged)
{
    const LogCapture log;
    EXPECT_EQ(MessageFormat::format(u"every {0"_s, u"en"_s, {2}), u"every {0"_s);
    EXPECT_EQ(log.lines().size(), 1);
}

TEST(CalendarSymbols, NamesFollowTheLanguageAndTheirPlaceInASentence)
{
    EXPECT_EQ(CalendarSymbols::weekdays(u"en"_s, Form::InText).first(), u"Sunday"_s);
    EXPECT_EQ(CalendarSymbols::weekdays(u"de"_s, Form::Alone).last(), u"Samstag"_s);
    EXPECT_EQ(CalendarSymbols::months(u"ru"_s, Form::InText).first(), u"января"_s);
    EXPECT_EQ(CalendarSymbols::months(u"ru"_s, Form::Alone).first(), u"январь"_s);
    // A locale whose own calendar is another one still gets the months that rules speak of.
    EXPECT_EQ(CalendarSymbols::months(u"th"_s, Form::AloneShort).size(), 12);
    EXPECT_EQ(CalendarSymbols::months(u"en_IL"_s, Form::Alone).last(), u"December"_s);
}
