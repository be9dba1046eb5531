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
