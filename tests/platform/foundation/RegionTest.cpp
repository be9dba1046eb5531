#include "foundation/Region.h"
#include "foundation/Calendar.h"
#include "support/TestSupport.h"

#include <gtest/gtest.h>

/// Sets variables of the environment and lets the region read them; puts all back at the end.
class RegionTest : public testing::Test
{
protected:
    void setEnvironment(const std::vector<std::pair<const char *, const char *>> &variables)
    {
        for (const char *name : {"LC_ALL", "LC_TIME", "LC_MESSAGES", "LANG", "LANGUAGE"})
            qunsetenv(name);
        for (const auto &[name, value] : variables)
            qputenv(name, value);
        Region::reload();
    }

    void TearDown() override
    {
        qputenv("TZ", "Europe/Berlin");
        setEnvironment({{"LC_ALL", "en_US.UTF-8"}});
    }
};

TEST_F(RegionTest, DatesFollowTheLocaleOfTimesAndWordsThatOfMessages)
{
    setEnvironment({{"LANG", "ja_JP.UTF-8"}, {"LC_TIME", "de_DE.UTF-8@euro"}});
    EXPECT_EQ(Region::localeIdentifier(), u"de_DE"_qs);
    EXPECT_EQ(Region::preferredLocalizations(), (QStringList{u"ja"_qs, u"en"_qs}));
    EXPECT_EQ(Calendar::current().firstWeekday(), 2);

    setEnvironment({{"LANG", "de_DE.UTF-8"}, {"LANGUAGE", "zh_TW:zh_CN:de"}});
    EXPECT_EQ(Region::preferredLocalizations(),
              (QStringList{u"zh-Hant"_qs, u"zh-Hans"_qs, u"de"_qs, u"en"_qs}));

    setEnvironment({{"LC_ALL", "sr_RS.UTF-8@latin"}, {"LANG", "de_DE.UTF-8"}});
    EXPECT_EQ(Region::localeIdentifier(), u"sr_Latn_RS"_qs);
}

TEST_F(RegionTest, WithoutALocaleItIsPlainEnglish)
{
    for (const char *locale : {"C", "C.UTF-8", "POSIX", ""}) {
        setEnvironment({{"LANG", locale}, {"LANGUAGE", "de"}});
        EXPECT_EQ(Region::localeIdentifier(), u"en_US_POSIX"_qs) << locale;
        EXPECT_EQ(Region::preferredLocalizations(), QStringList{u"en"_qs}) << locale;
        EXPECT_EQ(Calendar::current().firstWeekday(), 1) << locale;
    }
}

TEST_F(RegionTest, TheCalendarIsGregorianWhereTheLocalesOwnIsNot)
{
    for (const QString &locale : {u"fa_IR"_qs, u"th_TH"_qs, u"ar_SA"_qs, u"ja_JP@calendar=japanese"_qs}) {
        Region::setLocale(locale);
        EXPECT_EQ(Calendar::current().year(localDate(2024, 7, 1)), 2024) << qPrintable(locale);
    }
}

TEST_F(RegionTest, ZonesComeInEveryFormOfTZ)
{
    qputenv("TZ", ":America/New_York");
    Region::reload();
    EXPECT_EQ(Region::zoneIdentifier(), QByteArray("America/New_York"));

    qputenv("TZ", "CET-1CEST,M3.5.0,M10.5.0/3");
    Region::reload();
    EXPECT_EQ(Region::secondsFromGMT(utcDate(2024, 1, 15)), 3600);
    EXPECT_EQ(Region::secondsFromGMT(utcDate(2024, 7, 15)), 7200);

    qputenv("TZ", "Nowhere/Atlantis");
    Region::reload();
    EXPECT_EQ(Region::secondsFromGMT(utcDate(2024, 7, 15)), 0);
}

TEST_F(RegionTest, AnUnknownZoneIsRefusedInWords)
{
    const LogCapture log;
    const quint64 before = Region::generation();
    Region::setZone("Nowhere/Atlantis");
    EXPECT_EQ(Region::zoneIdentifier(), QByteArray("Europe/Berlin"));
    EXPECT_EQ(Region::generation(), before);
    ASSERT_EQ(log.lines().size(), 1);
    EXPECT_TRUE(log.lines().front().contains(u"Nowhere/Atlantis"));
}

TEST_F(RegionTest, ChangesReachCalendarsMadeLaterAndTheGenerationTells)
{
    const Date noon = utcDate(2024, 7, 1, 12);
    const Calendar berlin = Calendar::current();
    const quint64 before = Region::generation();
    Region::setZone("Asia/Tokyo");
    EXPECT_NE(Region::generation(), before);
    EXPECT_EQ(Calendar::current().hour(noon), 21);
    EXPECT_EQ(berlin.hour(noon), 14);

    const quint64 unchanged = Region::generation();
    Region::setZone("Asia/Tokyo");
    EXPECT_EQ(Region::generation(), unchanged);
    Region::setLocale(u"de_DE"_qs);
    EXPECT_NE(Region::generation(), unchanged);
}

TEST_F(RegionTest, OffsetsOfNamedZones)
{
    EXPECT_EQ(Region::secondsFromGMT(utcDate(2024, 7, 1), "America/Mexico_City"), -6 * 3600);
    EXPECT_EQ(Region::secondsFromGMT(utcDate(2024, 7, 1), "Asia/Kathmandu"), 20700);
    EXPECT_EQ(Region::secondsFromGMT(utcDate(2024, 7, 1), "UTC+02:00"), 7200);
    EXPECT_EQ(Region::secondsFromGMT(utcDate(2024, 7, 1), "Nowhere/Atlantis"), 0);
}
