#include "CloudTest.h"

#include "store/state/NotificationNames.h"
#include "ubiquity/UbiquitousKeyValueStore.h"

#include <QCoreApplication>
#include <QDeadlineTimer>

namespace {

class CloudSettings : public CloudTest
{
protected:
    CloudSettings() { CloudUserDefaults::removeNotifications(); }
    ~CloudSettings() override
    {
        CloudUserDefaults::setSuiteName({});
        for (const QString &key : {u"one"_qs, u"two"_qs})
            UserDefaults::standard().removeObject(key);
    }

    QVariant inCloud(const QString &key) const { return UbiquitousKeyValueStore(cloud.path()).object(key); }
    static QVariant here(const QString &key) { return UserDefaults::standard().object(key); }
    static void tell(std::optional<int> reason, const QStringList &keys)
    {
        NotificationCenter::defaultCenter().post(ubiquitousStoreDidChangeExternally,
                                                 UbiquitousChange{reason, keys});
    }

    int told = 0;
    Observation preferences =
        NotificationCenter::defaultCenter().addObserver(notifications::preferences, [this] { ++told; });
};

TEST_F(CloudSettings, AreThoseOfTheMachineWithoutACloud)
{
    CloudUserDefaults::setInteger(2, u"one"_qs);
    EXPECT_EQ(here(u"one"_qs), 2);
    EXPECT_EQ(CloudUserDefaults::integerForKey(u"one"_qs), 2);
    EXPECT_EQ(CloudUserDefaults::integerForKey(u"missing"_qs), 0);
    EXPECT_FALSE(CloudUserDefaults::boolForKey(u"missing"_qs));
    EXPECT_EQ(CloudUserDefaults::floatForKey(u"missing"_qs), 0.0);
    EXPECT_EQ(CloudUserDefaults::stringForKey(u"missing"_qs), QString());
    CloudUserDefaults::synchronize();
    CloudUserDefaults::removeObjectForKey(u"one"_qs);
    EXPECT_FALSE(here(u"one"_qs).isValid());
}

TEST_F(CloudSettings, AreSharedAndTheCloudWins)
{
    CloudUserDefaults::setString(u"local"_qs, u"one"_qs);
    joinCloud();
    EXPECT_FALSE(inCloud(u"one"_qs).isValid());
    EXPECT_EQ(CloudUserDefaults::stringForKey(u"one"_qs), u"local"_qs);
    EXPECT_EQ(inCloud(u"one"_qs), u"local"_qs) << "What is only known here is published";
    UserDefaults::standard().setObject(u"one"_qs, u"other"_qs);
    EXPECT_EQ(CloudUserDefaults::stringForKey(u"one"_qs), u"local"_qs);
    CloudUserDefaults::setBool(true, u"one"_qs);
    EXPECT_EQ(inCloud(u"one"_qs), true);
    EXPECT_EQ(here(u"one"_qs), true);
    EXPECT_TRUE(CloudUserDefaults::boolForKey(u"one"_qs));
    CloudUserDefaults::setFloat(2.75, u"one"_qs);
    EXPECT_EQ(CloudUserDefaults::floatForKey(u"one"_qs), 2.75);
    EXPECT_EQ(CloudUserDefaults::integerForKey(u"one"_qs), 2);
    CloudUserDefaults::setFloat(1e300, u"one"_qs);
    EXPECT_EQ(CloudUserDefaults::integerForKey(u"one"_qs), 0);
    CloudUserDefaults::setObject(QVariant::fromValue(localDate(2026, 1, 1)), u"one"_qs);
    EXPECT_EQ(inCloud(u"one"_qs).value<Date>(), localDate(2026, 1, 1));
    CloudUserDefaults::removeObjectForKey(u"one"_qs);
    EXPECT_FALSE(inCloud(u"one"_qs).isValid() || here(u"one"_qs).isValid());
}

TEST_F(CloudSettings, KeepWhatAnotherDeviceWroteMeanwhile)
{
    joinCloud();
    CloudUserDefaults::setInteger(1, u"one"_qs);
    UbiquitousKeyValueStore(cloud.path()).setObject(u"two"_qs, 2);
    CloudUserDefaults::setInteger(3, u"one"_qs);
    EXPECT_EQ(inCloud(u"two"_qs), 2);
    EXPECT_EQ(inCloud(u"one"_qs), 3);
    writeFile(cloud.filePath(u"KeyValueStore.json"_qs), "{ broken");
    CloudUserDefaults::setInteger(4, u"one"_qs);
    EXPECT_EQ(inCloud(u"one"_qs), 4);
    EXPECT_EQ(inCloud(u"two"_qs), 2) << "What was read before goes on to count";
    // A place that cannot be written: the setting is still kept here.
    QFile::remove(cloud.filePath(u"KeyValueStore.json"_qs));
    QDir(cloud.path()).mkdir(u"KeyValueStore.json"_qs);
    const LogCapture log;
    CloudUserDefaults::setInteger(5, u"one"_qs);
    EXPECT_EQ(here(u"one"_qs), 5);
    EXPECT_EQ(CloudUserDefaults::integerForKey(u"one"_qs), 5);
    EXPECT_EQ(log.lines().filter(u"Cannot write the shared settings"_qs).size(), 1);
}

TEST_F(CloudSettings, TakeOverWhatServersAndFirstReadingsChange)
{
    joinCloud();
    UbiquitousKeyValueStore(cloud.path()).setObject(u"one"_qs, 9);
    CloudUserDefaults::registerForNotifications();
    CloudUserDefaults::registerForNotifications();
    told = 0;
    UserDefaults::standard().setObject(u"one"_qs, 1);
    for (const std::optional<int> reason :
         {std::optional<int>(2), std::optional<int>(3), std::optional<int>()})
        tell(reason, {u"one"_qs});
    tell(0, {});
    EXPECT_EQ(here(u"one"_qs), 1);
    EXPECT_EQ(told, 0);
    tell(1, {u"one"_qs});
    EXPECT_EQ(here(u"one"_qs), 9);
    EXPECT_EQ(told, 1) << "One observer only";
    UserDefaults::standard().setObject(u"two"_qs, 1);
    tell(0, {u"two"_qs});
    EXPECT_FALSE(here(u"two"_qs).isValid()) << "A key that is gone there goes here";
    CloudUserDefaults::removeNotifications();
    tell(0, {u"one"_qs});
    EXPECT_EQ(told, 2);
}

TEST_F(CloudSettings, NoticeChangesOfTheSharedFile)
{
    joinCloud();
    CloudUserDefaults::registerForNotifications();
    const auto waitFor = [](const QString &key, const QVariant &value) {
        const QDeadlineTimer deadline(10000);
        while (here(key) != value && !deadline.hasExpired())
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 100);
        EXPECT_EQ(here(key), value);
    };
    UbiquitousKeyValueStore elsewhere(cloud.path());
    elsewhere.setObject(u"one"_qs, 7);
    waitFor(u"one"_qs, 7);
    elsewhere.setObject(u"one"_qs, 8);
    waitFor(u"one"_qs, 8);
    // Whoever carries it takes the file away before the next one comes, and in parts.
    const QString path = cloud.filePath(u"KeyValueStore.json"_qs);
    for (const bool isGone : {true, false}) {
        isGone ? void(QFile::remove(path)) : writeFile(path, R"({"one": )");
        const QDeadlineTimer meanwhile(300);
        while (!meanwhile.hasExpired())
            QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
        EXPECT_EQ(here(u"one"_qs), 8) << isGone;
    }
    EXPECT_EQ(CloudUserDefaults::integerForKey(u"one"_qs), 8);
    writeFile(path, R"({"one": 9})");
    waitFor(u"one"_qs, 9);
    // Two devices wrote at once.
    const QString copy = cloud.filePath(u"KeyValueStore.sync-conflict-20261123-101500-ABCDEFG.json"_qs);
    writeFile(copy, R"({"one": 1, "two": 5})");
    waitFor(u"two"_qs, 5);
    EXPECT_EQ(here(u"one"_qs), 9);
    EXPECT_FALSE(QFile::exists(copy));
    EXPECT_EQ(inCloud(u"two"_qs), 5);
    // The folder goes, as one on another computer, and comes back with something new.
    ASSERT_TRUE(QDir().rename(cloud.path(), cloud.path() + u".away"_qs));
    EXPECT_EQ(CloudUserDefaults::integerForKey(u"one"_qs), 9) << "as it was last known";
    UbiquitousKeyValueStore(cloud.path() + u".away"_qs).setObject(u"one"_qs, 10);
    ASSERT_TRUE(QDir().rename(cloud.path() + u".away"_qs, cloud.path()));
    CloudUserDefaults::integerForKey(u"two"_qs);
    waitFor(u"one"_qs, 10);
    elsewhere.setObject(u"one"_qs, 11);
    waitFor(u"one"_qs, 11);
}

TEST_F(CloudSettings, MoveToASuiteOfTheirOwn)
{
    joinCloud();
    UbiquitousKeyValueStore(cloud.path()).setObject(u"one"_qs, 1);
    UserDefaults::standard().setObject(u"one"_qs, 5);
    CloudUserDefaults::setSuiteName(u"../evil"_qs);
    EXPECT_EQ(CloudUserDefaults::suiteName(), QString());
    CloudUserDefaults::setSuiteName(u"suite"_qs);
    EXPECT_EQ(CloudUserDefaults::suiteName(), u"suite"_qs);
    leaveCloud();
    EXPECT_EQ(CloudUserDefaults::integerForKey(u"one"_qs), 1) << "It lacked the key, the cloud had it";
    CloudUserDefaults::setSuiteName({});
    EXPECT_EQ(CloudUserDefaults::integerForKey(u"one"_qs), 5);
}

} // namespace
