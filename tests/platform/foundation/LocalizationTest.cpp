#include "foundation/Localization.h"
#include "foundation/Region.h"
#include "support/TestSupport.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

class LocalizationTest : public testing::Test
{
protected:
    void SetUp() override
    {
        write(u"/en.json"_qs, R"({"HomeCategory": "Home"})");
        write(u"/de.json"_qs, R"({"Today": "Heute", "Done": "Erledigt"})");
        write(u"/Picker.de.json"_qs, R"({"Done": "Fertig"})");
        LocalizationTable::loadDirectory(folder.path());
    }

    void TearDown() override { LocalizationTable::unloadDirectory(folder.path()); }

    void write(const QString &name, const QByteArray &text)
    {
        QFile file(folder.path() + name);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(text);
    }

    QTemporaryDir folder;
};

TEST_F(LocalizationTest, WordsFollowTheLanguageAndFallBackOnEnglishAndTheKey)
{
    EXPECT_EQ(localized(u"Today"_qs), u"Today"_qs);
    EXPECT_EQ(localized(u"HomeCategory"_qs), u"Home"_qs);
    Region::setLocale(u"de_AT"_qs);
    EXPECT_EQ(localized(u"Today"_qs), u"Heute"_qs);
    EXPECT_EQ(localized(u"HomeCategory"_qs), u"Home"_qs);
    EXPECT_EQ(localized(u"No such word"_qs), u"No such word"_qs);
    Region::setLocale(u"fr_FR"_qs);
    EXPECT_EQ(localized(u"Today"_qs), u"Today"_qs);
}

TEST_F(LocalizationTest, ATableOfItsOwnDoesNotMixWithTheMainOne)
{
    Region::setLocale(u"de_DE"_qs);
    EXPECT_EQ(localized(u"Done"_qs, u"Picker"_qs), u"Fertig"_qs);
    EXPECT_EQ(localized(u"Done"_qs), u"Erledigt"_qs);
    EXPECT_EQ(localized(u"Today"_qs, u"Picker"_qs), u"Today"_qs);
}

TEST_F(LocalizationTest, CountedThingsTakeThePluralFormOfTheirLanguage)
{
    write(u"/en.json"_qs, R"({"%1 tasks": {"one": "1 task", "other": "%1 tasks"}})");
    write(u"/ru.json"_qs, R"({"%1 tasks": {"=1": "одна задача", "one": "%1 задача", "few": "%1 задачи",
                              "many": "%1 задач", "other": "%1 задачи"}, "%1 of %2 days": "%1 из %2 дней"})");
    write(u"/fr.json"_qs, R"({"%1 tasks": {"one": "%1 tâche", "other": "%1 tâches"}})");
    const auto tasks = [](qint64 count) { return localizedCount(u"%1 tasks"_qs, count); };
    Region::setLocale(u"en_GB"_qs);
    EXPECT_EQ(tasks(1), u"1 task"_qs);
    EXPECT_EQ(tasks(0), u"0 tasks"_qs);
    Region::setLocale(u"ru_RU"_qs);
    EXPECT_EQ(tasks(1), u"одна задача"_qs);
    EXPECT_EQ(tasks(21), u"21 задача"_qs);
    EXPECT_EQ(tasks(22), u"22 задачи"_qs);
    EXPECT_EQ(tasks(11), u"11 задач"_qs);
    EXPECT_EQ(localizedCount(u"%1 of %2 days"_qs, 3).arg(u"5"_qs), u"3 из 5 дней"_qs);
    EXPECT_EQ(localizedCount(u"%1 unknown words"_qs, 3), u"3 unknown words"_qs);
    Region::setLocale(u"fr_FR"_qs);
    EXPECT_EQ(tasks(0), u"0 tâche"_qs);
    EXPECT_EQ(tasks(2), u"2 tâches"_qs);
    // English words stand in for a language without any, in their own forms.
    Region::setLocale(u"ja_JP"_qs);
    EXPECT_EQ(tasks(1), u"1 task"_qs);
    Region::setLocale(u"nn_NO"_qs);
    EXPECT_EQ(Region::preferredLocalizations().front(), u"nb"_qs);
    Region::setLocale(u"pt_BR"_qs);
    EXPECT_EQ(Region::preferredLocalizations().front(), u"pt-PT"_qs);
}

TEST_F(LocalizationTest, ABrokenTableIsNamedInTheLogAndReadsAsEmpty)
{
    write(u"/it.json"_qs, R"({"Today": )");
    const LogCapture log;
    Region::setLocale(u"it_IT"_qs);
    EXPECT_EQ(localized(u"Today"_qs), u"Today"_qs);
    EXPECT_EQ(localized(u"Done"_qs), u"Done"_qs);
    ASSERT_EQ(log.lines().size(), 1) << "a table is read once";
    EXPECT_TRUE(log.lines().front().contains(u"it.json"));
}
