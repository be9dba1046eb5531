#include "foundation/TextFolding.h"
#include "foundation/Region.h"
#include "support/TestSupport.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

TEST(TextFoldingTest, CaseMarksAndLigaturesFoldAway)
{
    const std::vector<std::pair<QString, QString>> cases = {
        {u"CAFE menu 42!"_qs, u"cafe menu 42!"_qs},
        {u"Café"_qs, u"cafe"_qs},
        {u"Cafe\u0301"_qs, u"cafe"_qs},
        {u"Straße ẞ"_qs, u"strasse ss"_qs},
        {u"İIıi"_qs, u"iiii"_qs},
        {u"\uFB01ne"_qs, u"fine"_qs},
        {u"Øre Łódź Đorđe"_qs, u"ore lodz dorde"_qs},
        {u"Ævar Œuvre Þór Ðað"_qs, u"aevar oeuvre thor dad"_qs},
        {u"ΣΊΣΥΦΟΣ σίσυφος"_qs, u"σισυφοσ σισυφοσ"_qs},
        {u"Привет Йод"_qs, u"привет иод"_qs},
        {u"ガ"_qs, u"カ"_qs},
        {u"𝐀😀"_qs, u"a😀"_qs},
        {QString(), QString()}};
    for (const auto &[text, folded] : cases) {
        EXPECT_EQ(foldedForSearch(text), folded);
        EXPECT_EQ(foldedForSearch(folded), folded) << "folding again changes nothing";
    }
}

TEST(TextFoldingTest, NeedlesAreFoundInFoldedText)
{
    EXPECT_TRUE(containsFolded(u"Ein Café am Platz", u"cafe am"));
    EXPECT_TRUE(beginsWithFolded(u"Éclair", u"ec"));
    EXPECT_FALSE(beginsWithFolded(u"Ein Éclair", u"ec"));
    EXPECT_FALSE(containsFolded(u"Cafe", u"café"));
    EXPECT_TRUE(containsFolded(u"", u""));
    EXPECT_TRUE(containsFolded(u"한국어", foldedForSearch(u"국어")));
}

TEST(TextFoldingTest, OrderIgnoresCaseButNotAccents)
{
    EXPECT_EQ(localizedCaseInsensitiveCompare(u"résumé", u"RÉSUMÉ"), 0);
    EXPECT_LT(localizedCaseInsensitiveCompare(u"resume", u"résumé"), 0);
    EXPECT_LT(localizedCaseInsensitiveCompare(u"apple", u"Banana"), 0);
    EXPECT_LT(localizedCaseInsensitiveCompare(u"item 10", u"item 9"), 0) << "digits are letters here";
    EXPECT_LT(localizedCaseInsensitiveCompare(u"", u"a"), 0);
    EXPECT_EQ(caseInsensitiveCompare(u"Straßen", u"sTRAßEN"), 0);
    EXPECT_GT(caseInsensitiveCompare(u"é", u"Z"), 0);
}

TEST(TextFoldingTest, OrderFollowsTheLocale)
{
    const auto order = [](const QString &locale, QStringView one, QStringView two) {
        Region::setLocale(locale);
        return localizedCaseInsensitiveCompare(one, two);
    };
    EXPECT_LT(order(u"de_DE"_qs, u"Ärger", u"Zorn"), 0);
    EXPECT_GT(order(u"sv_SE"_qs, u"Ärger", u"Zorn"), 0);
    EXPECT_EQ(order(u"C"_qs, u"apple", u"APPLE"), 0);
    EXPECT_LT(order(u"C"_qs, u"apple", u"Banana"), 0);
}

TEST(TextFoldingTest, SortKeysOrderGeneratedTextsAsTheComparisonDoes)
{
    std::mt19937 random(testSeed());
    const QString letters = u"aAäÄbBoöØzZß 19é-"_qs;
    const auto anyText = [&] {
        QString text;
        for (auto length = random() % 8; length > 0; --length)
            text += letters[static_cast<qsizetype>(random() % static_cast<unsigned>(letters.size()))];
        return text;
    };
    const auto sign = [](int order) { return (order > 0) - (order < 0); };
    for (const QString &locale : {u"en_US"_qs, u"sv_SE"_qs}) {
        Region::setLocale(locale);
        for (int count = 0; count < 500; ++count) {
            const QString one = anyText();
            const QString two = anyText();
            ASSERT_EQ(sign(localizedCaseInsensitiveCompare(one, two)),
                      sign(collationSortKey(one).compare(collationSortKey(two))))
                << qPrintable(one) << " and " << qPrintable(two);
        }
    }
    EXPECT_LT(collationSortKey(QString(500, u'a')), collationSortKey(QString(500, u'a') + u'b'));
}
