#include "foundation/UserDefaults.h"
#include "foundation/ApplicationPaths.h"
#include "support/TestSupport.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <csignal>
#include <limits>
#include <sys/resource.h>

class UserDefaultsTest : public testing::Test
{
protected:
    void writeFile(const QByteArray &text) const
    {
        QDir().mkpath(folder.filePath(u"Morvane"_qs));
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(text);
    }

    QByteArray fileText(const QString &name) const
    {
        QFile file(name);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    QJsonObject fileObject() const { return QJsonDocument::fromJson(fileText(path)).object(); }

    QStringList filesBeside() const
    {
        return QDir(folder.filePath(u"Morvane"_qs)).entryList(QDir::Files, QDir::Name);
    }

    QTemporaryDir folder;
    const QString path = folder.filePath(u"Morvane/defaults.json"_qs);
};

TEST_F(UserDefaultsTest, ValuesOfEveryTypeComeBackFromTheFile)
{
    const Date moment = utcDate(2026, 11, 21, 9);
    const QVariantMap values = {
        {u"whole"_qs, std::numeric_limits<qint64>::max()},
        {u"small"_qs, -1},
        {u"fraction"_qs, 0.1},
        {u"text"_qs, u"Grüße \"…\"\n"_qs},
        {u"yes"_qs, true},
        {u"bytes"_qs, QByteArray("\0\xff{", 3)},
        {u"noBytes"_qs, QByteArray("")},
        {u"date"_qs, QVariant::fromValue(moment)},
        {u"list"_qs, QVariantList{1, u"two"_qs, QVariant::fromValue(moment)}},
        {u"map"_qs, QVariantMap{{u"inner"_qs, QVariantMap{{u"bytes"_qs, QByteArray("x")}}}}}};
    {
        UserDefaults defaults(path);
        for (auto value = values.begin(); value != values.end(); ++value)
            defaults.setObject(value.key(), value.value());
    }
    const UserDefaults again(path);
    EXPECT_EQ(again.object(u"whole"_qs).typeId(), QMetaType::LongLong);
    for (auto value = values.begin(); value != values.end(); ++value)
        EXPECT_EQ(again.object(value.key()), value.value()) << qPrintable(value.key());
    EXPECT_EQ(fileObject()[u"date"_qs].toObject()[u"$date"_qs].toString(), u"2026-11-21T09:00:00Z"_qs);
    EXPECT_EQ(fileObject()[u"bytes"_qs].toObject()[u"$data"_qs].toString(), u"AP97"_qs);
}

TEST_F(UserDefaultsTest, DatesKeepTheirFractionsAndOtherFormsOfISO8601AreRead)
{
    UserDefaults defaults(path);
    for (const double seconds :
         {0.0, 0.25, 0.1, 754'000'000.123456789, -3'155'673'600.5, 799'999'999.9999999}) {
        const Date date = Date::fromReferenceSeconds(seconds);
        defaults.setObject(u"date"_qs, QVariant::fromValue(date));
        EXPECT_EQ(defaults.date(u"date"_qs), date);
    }
    // Years that cannot be written in four digits become the nearest that can.
    for (const auto &[far, near] :
         {std::pair(-1e12, utcDate(1, 1, 1)), {1e12, utcDate(9999, 12, 31, 23, 59, 59)}}) {
        defaults.setObject(u"date"_qs, QVariant::fromValue(Date::fromReferenceSeconds(far)));
        EXPECT_EQ(defaults.date(u"date"_qs), near);
    }
    writeFile(
        R"({"offset": {"$date": "2026-11-21T10:30:00.5+01:30"}, "bad": {"$date": "soon"}, "number": {"$date": 5},
                  "extra": {"$date": "2026-11-21T09:00:00Z", "more": 1}, "text": "2026-11-21T09:00:00Z"})");
    const UserDefaults read(path);
    EXPECT_EQ(read.date(u"offset"_qs), utcDate(2026, 11, 21, 9) + Seconds(0.5));
    for (const QString &key : {u"bad"_qs, u"number"_qs, u"extra"_qs, u"text"_qs, u"absent"_qs})
        EXPECT_FALSE(read.date(key)) << qPrintable(key);
    EXPECT_EQ(read.object(u"bad"_qs).toMap().value(u"$date"_qs), u"soon"_qs);
}

TEST_F(UserDefaultsTest, ValuesConvertAsTextsAndNumbersDo)
{
    writeFile(
        R"({"one": "1", "text": " 12.7 apples", "yes": "YES", "no": "NO", "zero": "0", "true": true, "fraction": -2.9,
                  "big": 9007199254740993, "bigText": "9007199254740993", "huge": 1e300, "list": [1], "null": null})");
    const UserDefaults defaults(path);
    struct Case
    {
        QString key;
        qint64 integer;
        double number;
        bool boolean;
        QString string;
    };
    const std::vector<Case> cases = {
        {u"one"_qs, 1, 1, true, u"1"_qs},
        {u"text"_qs, 12, 12.7, true, u" 12.7 apples"_qs},
        {u"yes"_qs, 0, 0, true, u"YES"_qs},
        {u"no"_qs, 0, 0, false, u"NO"_qs},
        {u"zero"_qs, 0, 0, false, u"0"_qs},
        {u"true"_qs, 1, 1, true, u"true"_qs},
        {u"fraction"_qs, -2, -2.9, true, u"-2.9"_qs},
        {u"big"_qs, 9007199254740993, 9007199254740992.0, true, u"9007199254740993"_qs},
        {u"bigText"_qs, 9007199254740993, 9007199254740992.0, true, u"9007199254740993"_qs},
        {u"huge"_qs, 0, 1e300, true, u"1e+300"_qs},
        {u"list"_qs, 0, 0, false, QString()},
        {u"null"_qs, 0, 0, false, QString()},
        {u"absent"_qs, 0, 0, false, QString()}};
    for (const Case &one : cases) {
        SCOPED_TRACE(qPrintable(one.key));
        EXPECT_EQ(defaults.integer(one.key), one.integer);
        EXPECT_DOUBLE_EQ(defaults.number(one.key), one.number);
        EXPECT_EQ(defaults.boolean(one.key), one.boolean);
        EXPECT_EQ(defaults.string(one.key), one.string);
    }
    EXPECT_FALSE(defaults.object(u"absent"_qs).isValid());
    EXPECT_TRUE(defaults.contains(u"null"_qs));
}

TEST_F(UserDefaultsTest, WhatNobodyAsksForSurvivesARewrite)
{
    writeFile(R"({"foreign": {"$kind": [null, {"$date": 5}, 1.50]}, "old": 1, "null": null})");
    QJsonObject expected = fileObject();
    {
        UserDefaults defaults(path);
        defaults.setObject(u"new"_qs, 2);
        defaults.removeObject(u"old"_qs);
        defaults.setObject(u"gone"_qs, 3);
        defaults.setObject(u"gone"_qs, QVariant());
    }
    expected.remove(u"old"_qs);
    expected.insert(u"new"_qs, 2);
    EXPECT_EQ(fileObject(), expected);
}

TEST_F(UserDefaultsTest, ChangesAreWrittenSoonAndTogetherByTheMainLoop)
{
    UserDefaults defaults(path);
    defaults.setObject(u"one"_qs, 1);
    defaults.setObject(u"two"_qs, 2);
    EXPECT_TRUE(filesBeside().isEmpty());
    QElapsedTimer waited;
    waited.start();
    while (filesBeside().isEmpty() && waited.elapsed() < 5000)
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 100);
    EXPECT_EQ(fileObject(), (QJsonObject{{u"one"_qs, 1}, {u"two"_qs, 2}}));

    EXPECT_TRUE(QFile::remove(path));
    defaults.setObject(u"one"_qs, 1);
    EXPECT_TRUE(defaults.synchronize());
    EXPECT_TRUE(filesBeside().isEmpty()) << "nothing has changed, so nothing is written";
}

TEST_F(UserDefaultsTest, ABrokenFileIsSetAsideAndNeverOverwritten)
{
    const FrozenClock clock(utcDate(2026, 11, 21, 9, 5, 7));
    const QByteArrayList broken = {"", "{\"half\": ", "[1, 2]", "\"text\"", "\xff\xfe"};
    for (const QByteArray &text : broken) {
        const LogCapture log;
        writeFile(text);
        UserDefaults defaults(path);
        EXPECT_FALSE(defaults.contains(u"half"_qs));
        defaults.setObject(u"fresh"_qs, true);
        EXPECT_TRUE(defaults.synchronize());
        EXPECT_EQ(fileObject(), (QJsonObject{{u"fresh"_qs, true}}));
        ASSERT_EQ(log.lines().size(), 1);
        EXPECT_TRUE(log.lines().front().contains(path) &&
                    log.lines().front().contains(u".broken-20261121T090507Z"));
    }
    QByteArrayList kept;
    for (const QString &name : filesBeside())
        if (name.contains(u".broken-"))
            kept.append(fileText(folder.filePath(u"Morvane/"_qs + name)));
    EXPECT_EQ(kept, broken) << "each under a name of its own, unchanged";
}

TEST_F(UserDefaultsTest, AFileThatCannotBeOpenedIsLeftAlone)
{
    QDir().mkpath(path + u"/inside"_qs);
    const LogCapture log;
    UserDefaults defaults(path);
    defaults.setObject(u"key"_qs, 1);
    EXPECT_FALSE(defaults.synchronize());
    EXPECT_EQ(defaults.integer(u"key"_qs), 1);
    EXPECT_TRUE(QDir(path + u"/inside"_qs).exists());
    ASSERT_EQ(log.lines().size(), 1);
    EXPECT_TRUE(log.lines().front().contains(path));
}

TEST_F(UserDefaultsTest, AFailedWriteIsLoggedOnceAndTriedAgain)
{
    QFile obstacle(folder.filePath(u"Morvane"_qs));
    ASSERT_TRUE(obstacle.open(QIODevice::WriteOnly));
    const LogCapture log;
    UserDefaults defaults(path);
    defaults.setObject(u"key"_qs, 1);
    EXPECT_FALSE(defaults.synchronize());
    EXPECT_FALSE(defaults.synchronize());
    EXPECT_EQ(log.lines().size(), 1);
    EXPECT_EQ(defaults.integer(u"key"_qs), 1);

    ASSERT_TRUE(obstacle.remove());
    EXPECT_TRUE(defaults.synchronize());
    EXPECT_EQ(fileObject(), (QJsonObject{{u"key"_qs, 1}}));
}

/// Lets no file grow beyond some bytes, as a full disk does.
class FullDisk
{
public:
    explicit FullDisk(rlim_t bytes)
        : oldHandler(std::signal(SIGXFSZ, SIG_IGN))
    {
        getrlimit(RLIMIT_FSIZE, &old);
        const rlimit limit{bytes, old.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FullDisk()
    {
        setrlimit(RLIMIT_FSIZE, &old);
        std::signal(SIGXFSZ, oldHandler);
    }

private:
    rlimit old{};
    void (*oldHandler)(int);
};

TEST_F(UserDefaultsTest, AFullDiskLeavesTheLastWholeFile)
{
    writeFile(R"({"key": "old"})");
    const LogCapture log;
    UserDefaults defaults(path);
    // Small settings and large ones: both in one piece or not at all.
    for (const int size : {1'000, 100'000}) {
        defaults.setObject(u"key"_qs, QString(size, u'x'));
        const FullDisk disk(400);
        EXPECT_FALSE(defaults.synchronize()) << size;
    }
    EXPECT_EQ(fileText(path), QByteArray(R"({"key": "old"})"));
    EXPECT_EQ(filesBeside(), QStringList{u"defaults.json"_qs}) << "no half-written file stays behind";
    EXPECT_EQ(log.lines().size(), 1);
    EXPECT_TRUE(defaults.synchronize());
    EXPECT_EQ(fileObject()[u"key"_qs].toString().size(), 100'000);
}

TEST(StandardUserDefaultsTest, LieInTheConfigurationFolder)
{
    UserDefaults::standard().setObject(u"key"_qs, 1);
    EXPECT_TRUE(UserDefaults::standard().synchronize());
    EXPECT_TRUE(QFile::exists(ApplicationPaths::configFolder() + u"/Morvane/defaults.json"_qs));
}

TEST_F(UserDefaultsTest, TellsOfEachValueThatBecomesAnotherOrGoes)
{
    UserDefaults defaults(path);
    UserDefaults others(folder.filePath(u"Morvane/others.json"_qs));
    QStringList told;
    const Observation observation = NotificationCenter::defaultCenter().addObserver(
        userDefaultsDidChange, [&](const DefaultsChange &change) {
            if (change.defaults == &defaults)
                told.append(change.key + u'=' + defaults.string(change.key));
        });
    defaults.setObject(u"store"_qs, 1);
    defaults.setObject(u"store"_qs, 1);
    others.setObject(u"store"_qs, 2);
    defaults.removeObject(u"none"_qs);
    defaults.removeObject(u"store"_qs);
    EXPECT_EQ(told, QStringList({u"store=1"_qs, u"store="_qs}));
}
