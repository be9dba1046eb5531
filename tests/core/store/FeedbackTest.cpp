// The mail about the program, what it tells of the machine, and where help lies on the web.

#include "CoreTest.h"

#include "foundation/ApplicationPaths.h"
#include "records/FeedbackMail.h"
#include "records/HelpAddresses.h"
#include "workspace/Machine.h"

#include <QTemporaryDir>
#include <QUrl>
#include <QUrlQuery>

using namespace Qt::Literals::StringLiterals;

namespace {

class Feedback : public CoreTest
{
protected:
    ~Feedback() override { configure({}); }

    static void configure(const QByteArray &json)
    {
        const QString path = ApplicationPaths::configFolder() + u"/Morvane/platform.json"_s;
        QFile::remove(path);
        if (!json.isEmpty())
            write(path, json);
    }
    static void write(const QString &path, const QByteArray &contents)
    {
        QDir().mkpath(QFileInfo(path).path());
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(contents);
    }
};

TEST_F(Feedback, TheMailTellsOfTheMachineBelowTheWords)
{
    configure(R"({"supportAddress": "help@example.org"})");
    const QUrl url(FeedbackMail::url(), QUrl::StrictMode);
    ASSERT_TRUE(url.isValid());
    EXPECT_EQ(url.scheme(), u"mailto"_s);
    EXPECT_EQ(url.path(), u"help@example.org"_s);
    const QUrlQuery query(url);
    EXPECT_EQ(query.queryItemValue(u"subject"_s, QUrl::FullyDecoded),
              u"Feedback on Morvane (%1)"_s.arg(FeedbackMail::revision()));
    const QStringList lines = query.queryItemValue(u"body"_s, QUrl::FullyDecoded).split(u"\r\n"_s);
    EXPECT_EQ(lines, (QStringList{{},
                                  {},
                                  u"Please, do not delete the text below:"_s,
                                  {},
                                  u"1. Device model: "_s + FeedbackMail::deviceModelString(),
                                  u"2. System version: "_s + FeedbackMail::systemVersion(),
                                  u"3. App version: "_s + AppDelegate::version()}));
    // No byte of the texts can end a field or begin another.
    const QString text = FeedbackMail::url();
    EXPECT_EQ(text.count(u'&'), 1);
    EXPECT_EQ(text.count(u'='), 2);
    EXPECT_FALSE(text.contains(u' ') || text.contains(u'+') || text.contains(u'('));
    configure({});
    EXPECT_TRUE(FeedbackMail::url().startsWith(u"mailto:?subject="_s));
}

TEST_F(Feedback, KnownModelsHaveTheirNames)
{
    using FeedbackMail::deviceModelString;
    EXPECT_EQ(deviceModelString(u"Macmini6,2"_s), u"Mac Mini Late 2012 (Macmini6,2)"_s);
    EXPECT_EQ(deviceModelString(u"MacBookPro11,3"_s), u"MacBook Pro Retina Mid 2014 (MacBookPro11,3)"_s);
    EXPECT_EQ(deviceModelString(u"MacBookPro11,4"_s), u"MacBook Pro Retina Mid 2015 (MacBookPro11,4)"_s);
    EXPECT_EQ(deviceModelString(u"iMac18,1"_s), u"iMac 2017 (iMac18,1)"_s);
    EXPECT_EQ(deviceModelString(u"iMac18,2"_s), u"iMac Retina Mid 2017 (iMac18,2)"_s);
    EXPECT_EQ(deviceModelString(u"MacPro7,1"_s), u"Mac Pro Early 2017 (MacPro7,1)"_s);
    for (const QString &other :
         {u"iMac18"_s, u"MacBookAir6,1 MacBookAir6,2"_s, u"20XW & more=1"_s, QString()})
        EXPECT_EQ(deviceModelString(other), u"unknown (%1)"_s.arg(other));
}

TEST_F(Feedback, TheMachineSaysWhatItIs)
{
    const QTemporaryDir root;
    EXPECT_EQ(Machine::model(root.path()), QString());
    EXPECT_TRUE(Machine::system(root.path()).startsWith(u"Linux "_s));
    write(root.filePath(u"proc/device-tree/model"_s), QByteArray("Board 4 B\0", 10));
    EXPECT_EQ(Machine::model(root.path()), u"Board 4 B"_s);
    write(root.filePath(u"sys/class/dmi/id/product_name"_s), "Laptop 14 & more\n");
    EXPECT_EQ(Machine::model(root.path()), u"Laptop 14 & more"_s);
    write(root.filePath(u"usr/lib/os-release"_s), "NAME=x\nPRETTY_NAME='Some System 3'\n");
    EXPECT_TRUE(Machine::system(root.path()).startsWith(u"Some System 3, Linux "_s));
    write(root.filePath(u"etc/os-release"_s), "PRETTY_NAME=\"Debian 12\"\n");
    EXPECT_TRUE(Machine::system(root.path()).startsWith(u"Debian 12, Linux "_s));
}

TEST_F(Feedback, TheGuideOnTheWebFollowsTheFirstLanguage)
{
    EXPECT_EQ(HelpAddresses::guide({u"fr"_s}), QString()) << "nothing is configured";
    EXPECT_EQ(HelpAddresses::videos(), QString());
    configure(R"({"helpPages": {"default": "https://x/en", "fr": "https://x/fr", "zh-Hant": "https://x/t",
                                "zh-Hans": "https://x/s", "videos": "https://x/v"}})");
    const std::vector<std::pair<QString, QString>> pages = {
        {u"fr"_s, u"fr"_s}, {u"fr-CA"_s, u"fr"_s},      {u"zh-Hant"_s, u"t"_s}, {u"zh-Hans"_s, u"s"_s},
        {u"de"_s, u"en"_s}, {u"zh-Hant-HK"_s, u"en"_s}, {u"videos"_s, u"en"_s}, {u"en"_s, u"en"_s}};
    for (const auto &[language, page] : pages)
        EXPECT_EQ(HelpAddresses::guide({language, u"fr"_s}), u"https://x/"_s + page) << qPrintable(language);
    EXPECT_EQ(HelpAddresses::videos(), u"https://x/v"_s);
    configure(R"({"helpPages": "https://y"})");
    EXPECT_EQ(HelpAddresses::guide({u"fr"_s}), u"https://y"_s);
}

} // namespace
