// The presets of the repeat pop-up, and the sentences of rules.

#include "recurrence/RepeatPicker.h"
#include "foundation/Region.h"
#include "recurrence/RecurrencePickerTexts.h"
#include "recurrence/RecurrenceSentence.h"
#include "support/TestSupport.h"

#include <QDir>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>

#include <gtest/gtest.h>

using namespace Qt::Literals::StringLiterals;
using Language = RecurrencePickerLanguage;

namespace {

/// 2026-11-23 is a Monday.
const Date monday = localDate(2026, 11, 23);
const Date tuesday = localDate(2026, 11, 24);

RepeatPicker pickerOf(const QString &text)
{
    RepeatPicker picker;
    picker.setRepeatStringWithStr(text);
    return picker;
}

QString sentence(const QString &rule, Language language = Language::english)
{
    return RecurrenceSentence::of(*RRule::ruleFromString(u"RRULE:"_s + rule), language);
}

} // namespace

TEST(RepeatPicker, APresetBecomesARuleAndIsKnownAgain)
{
    RepeatPicker picker;
    const QStringList bodies = {{},
                                u"FREQ=DAILY;INTERVAL=1;"_s,
                                u"FREQ=WEEKLY;INTERVAL=1;"_s,
                                u"FREQ=WEEKLY;INTERVAL=2;"_s,
                                u"FREQ=MONTHLY;INTERVAL=1;"_s,
                                u"FREQ=YEARLY;INTERVAL=1;"_s,
                                u"FREQ=WEEKLY;INTERVAL=1;"_s};
    for (int index = RepeatPicker::EveryDay; index <= RepeatPicker::EveryWeekday; ++index) {
        picker.updateRecurrenceRuleWithIndex(index, monday);
        EXPECT_TRUE(picker.stringRule().startsWith(u"RRULE:"_s + bodies.at(index))) << index;
        EXPECT_EQ(pickerOf(picker.stringRule()).presetOf(monday), index);
    }
    EXPECT_TRUE(picker.stringRule().endsWith(u"BYDAY=MO,TU,WE,TH,FR"_s));
    picker.updateRecurrenceRuleWithIndex(RepeatPicker::Never, monday);
    EXPECT_EQ(picker.stringRule(), QString());
    EXPECT_FALSE(picker.rule);
}

TEST(RepeatPicker, AListThatSaysNoMoreThanTheDateIsStillAPreset)
{
    struct Case
    {
        QString rule;
        OptionalDate date;
        RepeatPicker::Preset preset;
    };
    const std::vector<Case> cases = {
        {u"FREQ=WEEKLY;BYDAY=MO"_s, monday, RepeatPicker::EveryWeek},
        {u"FREQ=WEEKLY;BYDAY=MO"_s, tuesday, RepeatPicker::Custom},
        {u"FREQ=WEEKLY;BYDAY=MO"_s, {}, RepeatPicker::Custom},
        {u"FREQ=WEEKLY;INTERVAL=2;BYDAY=TU"_s, tuesday, RepeatPicker::EveryTwoWeeks},
        {u"FREQ=WEEKLY;INTERVAL=3"_s, monday, RepeatPicker::Custom},
        {u"FREQ=WEEKLY;INTERVAL=2;BYDAY=MO,TU,WE,TH,FR"_s, monday, RepeatPicker::Custom},
        {u"FREQ=WEEKLY;BYDAY=FR,TH,WE,TU,MO"_s, monday, RepeatPicker::EveryWeekday},
        {u"FREQ=MONTHLY;BYMONTHDAY=23"_s, monday, RepeatPicker::EveryMonth},
        {u"FREQ=MONTHLY;BYMONTHDAY=23,24"_s, monday, RepeatPicker::Custom},
        {u"FREQ=YEARLY;BYMONTH=11"_s, monday, RepeatPicker::EveryYear},
        {u"FREQ=YEARLY;BYMONTH=12"_s, monday, RepeatPicker::Custom},
        {u"FREQ=DAILY;INTERVAL=1"_s, {}, RepeatPicker::EveryDay},
        {u"FREQ=DAILY;INTERVAL=2"_s, monday, RepeatPicker::Custom},
    };
    for (const Case &one : cases) {
        const RepeatPicker picker = pickerOf(u"RRULE:"_s + one.rule);
        EXPECT_EQ(picker.presetOf(one.date), one.preset) << qPrintable(one.rule);
        EXPECT_EQ(picker.isCustomRecurrenceWithOccurrenceDate(one.date), one.preset == RepeatPicker::Custom);
    }
    const LogCapture log;
    EXPECT_EQ(pickerOf(u"RRULE:INTERVAL=2"_s).presetOf(monday), RepeatPicker::Never);
    EXPECT_EQ(pickerOf(QString()).presetOf(monday), RepeatPicker::Never);
}

TEST(RepeatPicker, LanguagesAreFoundWithAnyRegion)
{
    const std::vector<std::pair<QString, Language>> cases = {{u"de-CH"_s, Language::german},
                                                             {u"es-mx"_s, Language::spanish},
                                                             {u"fr_CA"_s, Language::french},
                                                             {u"zh-Hans"_s, Language::simplifiedChinese},
                                                             {u"zh-TW"_s, Language::traditionalChinese},
                                                             {u"zh-Hant-HK"_s, Language::traditionalChinese},
                                                             {u"pt"_s, Language::portugal},
                                                             {u"nn"_s, Language::norwegian},
                                                             {u"xx"_s, Language::english},
                                                             {QString(), Language::english}};
    for (const auto &[code, language] : cases)
        EXPECT_EQ(RecurrencePickerLanguages::ofCode(code), language) << qPrintable(code);
    for (int index = 0; index < RecurrencePickerLanguages::count; ++index) {
        const auto language = static_cast<Language>(index);
        EXPECT_EQ(RecurrencePickerLanguages::ofCode(RecurrencePickerLanguages::code(language)), language);
    }
}

TEST(RecurrenceSentence, TellsIntervalAndListsInTheOrderOfTheLanguage)
{
    const QString weekly = u"FREQ=WEEKLY;BYDAY=SU,MO,FR"_s;
    const QString monthly = u"FREQ=MONTHLY;INTERVAL=2;BYMONTHDAY=1,22,31,-1"_s;
    const QString yearly = u"FREQ=YEARLY;BYMONTH=3,1"_s;
    EXPECT_EQ(sentence(u"FREQ=DAILY;INTERVAL=2"_s), u"Repeats every 2 days"_s);
    EXPECT_EQ(sentence(u"FREQ=WEEKLY;BYDAY=MO,TU,WE,TH,FR"_s), u"Repeats every weekday"_s);
    EXPECT_EQ(sentence(monthly), u"Repeats every 2 months on the 1st, 22nd, 31st and last day"_s);
    EXPECT_EQ(sentence(yearly), u"Repeats every year in January and March"_s);
    EXPECT_EQ(sentence(weekly, Language::simplifiedChinese), u"每周的星期日、星期一和星期五重复一次"_s);
    EXPECT_EQ(sentence(weekly, Language::portugal),
              u"Repete-se todas as semanas, ao domingo, à segunda-feira e à sexta-feira"_s);
    EXPECT_EQ(sentence(weekly, Language::russian),
              u"Повторяется каждую неделю по воскресеньям, понедельникам и пятницам"_s);
    EXPECT_EQ(sentence(weekly, Language::dutch), u"Wordt elke week op zondag, maandag en vrijdag herhaald"_s);
    EXPECT_EQ(sentence(yearly, Language::german), u"Wiederholt sich jedes Jahr im Januar und März"_s);
    EXPECT_EQ(sentence(u"FREQ=MONTHLY;INTERVAL=2;BYDAY=TU,TH"_s),
              u"Repeats every 2 months on Tuesday and Thursday"_s);
    EXPECT_EQ(sentence(u"FREQ=MONTHLY;BYDAY=TU;BYMONTHDAY=13"_s), u"Repeats every month on the 13th"_s);
    EXPECT_EQ(sentence(u"FREQ=HOURLY"_s), QString());
}

TEST(RecurrenceSentence, CountsHaveTheFormsOfTheirLanguage)
{
    const auto every = [](int days, Language language) {
        return sentence(u"FREQ=DAILY;INTERVAL=%1"_s.arg(days), language);
    };
    EXPECT_EQ(every(2, Language::russian), u"Повторяется каждые 2 дня"_s);
    EXPECT_EQ(every(5, Language::russian), u"Повторяется каждые 5 дней"_s);
    EXPECT_EQ(every(21, Language::russian), u"Повторяется каждый 21 день"_s);
    EXPECT_EQ(every(3, Language::ukrainian), u"Повторюється кожні 3 дні"_s);
    EXPECT_EQ(every(2, Language::hebrew), u"חוזר כל יומיים"_s);
    EXPECT_EQ(every(2, Language::arabic), u"يتكرر كل يومين"_s);
    EXPECT_EQ(every(5, Language::arabic), u"يتكرر كل ٥ أيام"_s);
    EXPECT_EQ(every(21, Language::arabic), u"يتكرر كل ٢١ يومًا"_s);
}

/// Whatever a rule says, no language leaves a key, a brace or a double blank behind.
TEST(RecurrenceSentence, EveryLanguageHasEveryTextAndFillsAllPlaces)
{
    const auto keysOf = [](const QString &path) {
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << qPrintable(path);
        return QJsonDocument::fromJson(file.readAll()).object().keys();
    };
    const QStringList english = keysOf(u":/translations/RecurrencePicker.en.json"_s);
    EXPECT_GT(english.size(), 30);
    const QStringList lists = {u"FREQ=DAILY"_s,
                               u"FREQ=WEEKLY"_s,
                               u"FREQ=WEEKLY;BYDAY=SU,MO,TU,WE,TH,FR,SA"_s,
                               u"FREQ=MONTHLY;BYMONTHDAY=1"_s,
                               u"FREQ=MONTHLY;BYMONTHDAY=2,3,-1"_s,
                               u"FREQ=YEARLY;BYMONTH=5"_s,
                               u"FREQ=YEARLY;BYMONTH=1,2,3,4,6,7,8,9,10,11,12"_s};
    const QRegularExpression leftOver(u"[{}#]|  |RecurrenceRuleText|unit\\."_s);
    const LogCapture log;
    for (int index = 0; index < RecurrencePickerLanguages::count; ++index) {
        const auto language = static_cast<Language>(index);
        const QString code = RecurrencePickerLanguages::code(language);
        EXPECT_EQ(keysOf(u":/translations/RecurrencePicker.%1.json"_s.arg(code)), english)
            << qPrintable(code);
        for (const QString &list : lists) {
            for (const int interval : {1, 2, 5, 21}) {
                const QString text = sentence(u"%1;INTERVAL=%2"_s.arg(list).arg(interval), language);
                EXPECT_FALSE(text.isEmpty());
                EXPECT_FALSE(text.contains(leftOver)) << qPrintable(text);
            }
        }
    }
    EXPECT_EQ(log.lines(), QStringList());
}
