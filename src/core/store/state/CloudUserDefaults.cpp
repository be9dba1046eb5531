#include "store/state/CloudUserDefaults.h"

#include "foundation/ApplicationPaths.h"
#include "foundation/UserDefaults.h"
#include "store/state/NotificationNames.h"
#include "ubiquity/UbiquitousKeyValueStore.h"

#include <cmath>
#include <memory>
#include <optional>

namespace {

/// The set of this machine that is not the standard one, if there is any.
struct Suite
{
    QString name;
    std::unique_ptr<UserDefaults> defaults;
};

Suite &suite()
{
    static Suite held;
    return held;
}

UserDefaults &local()
{
    return suite().defaults ? *suite().defaults : UserDefaults::standard();
}

std::optional<Observation> &watch()
{
    static std::optional<Observation> held;
    return held;
}

/// Takes over what other devices changed. Quota and account are no changes of a setting.
void changedExternally(const UbiquitousChange &change)
{
    constexpr int initialSync = 1;
    const UbiquitousKeyValueStore *cloud = UbiquitousKeyValueStore::defaultStore();
    if (!cloud || !change.reason || *change.reason > initialSync)
        return;
    for (const QString &key : change.keys)
        local().setObject(key, cloud->object(key));
    if (!change.keys.isEmpty())
        NotificationCenter::defaultCenter().post(notifications::preferences);
}

} // namespace

void CloudUserDefaults::setObject(const QVariant &object, const QString &forKey)
{
    if (UbiquitousKeyValueStore *cloud = UbiquitousKeyValueStore::defaultStore())
        cloud->setObject(forKey, object);
    local().setObject(forKey, object);
}

void CloudUserDefaults::setString(const QString &string, const QString &forKey)
{
    setObject(string, forKey);
}

void CloudUserDefaults::setBool(bool boolean, const QString &forKey)
{
    setObject(boolean, forKey);
}

void CloudUserDefaults::setInteger(qint64 integer, const QString &forKey)
{
    setObject(integer, forKey);
}

void CloudUserDefaults::setFloat(double number, const QString &forKey)
{
    setObject(number, forKey);
}

void CloudUserDefaults::removeObjectForKey(const QString &key)
{
    setObject({}, key);
}

QVariant CloudUserDefaults::objectForKey(const QString &key)
{
    UbiquitousKeyValueStore *cloud = UbiquitousKeyValueStore::defaultStore();
    const QVariant shared = cloud ? cloud->object(key) : QVariant();
    if (shared.isValid())
        return shared;
    const QVariant own = local().object(key);
    if (cloud && own.isValid())
        cloud->setObject(key, own);
    return own;
}

QString CloudUserDefaults::stringForKey(const QString &key)
{
    return objectForKey(key).toString();
}

bool CloudUserDefaults::boolForKey(const QString &key)
{
    return objectForKey(key).toBool();
}

qint64 CloudUserDefaults::integerForKey(const QString &key)
{
    const QVariant value = objectForKey(key);
    bool isWhole = false;
    const qint64 whole = value.toString().toLongLong(&isWhole);
    return isWhole ? whole : static_cast<qint64>(floatForKey(key));
}

double CloudUserDefaults::floatForKey(const QString &key)
{
    // A number that is out of all measure is as good as none.
    constexpr double limit = 1e18;
    const double number = objectForKey(key).toDouble();
    return std::abs(number) < limit ? number : 0;
}

void CloudUserDefaults::synchronize()
{
    if (UbiquitousKeyValueStore *cloud = UbiquitousKeyValueStore::defaultStore())
        cloud->synchronize();
    local().synchronize();
}

void CloudUserDefaults::registerForNotifications()
{
    if (watch())
        return;
    watch() = NotificationCenter::defaultCenter().addObserver(
        ubiquitousStoreDidChangeExternally,
        [](const UbiquitousChange &change) { changedExternally(change); });
    if (UbiquitousKeyValueStore *cloud = UbiquitousKeyValueStore::defaultStore()) {
        cloud->watch();
        cloud->synchronize();
    }
}

void CloudUserDefaults::removeNotifications()
{
    watch().reset();
}

void CloudUserDefaults::setSuiteName(const QString &name)
{
    if (name.contains(u'/') || name == suite().name)
        return;
    suite() = {};
    if (name.isEmpty())
        return;
    suite() = {name, std::make_unique<UserDefaults>(ApplicationPaths::configFolder() +
                                                    QStringLiteral("/Morvane/%1.json").arg(name))};
    const UbiquitousKeyValueStore *cloud = UbiquitousKeyValueStore::defaultStore();
    for (const QString &key : cloud ? cloud->keys() : QStringList()) {
        if (!local().contains(key))
            local().setObject(key, cloud->object(key));
    }
}

QString CloudUserDefaults::suiteName()
{
    return suite().name;
}
