#include "cloud/CloudUserDefaults.h"

#include "foundation/UserDefaults.h"

QVariant CloudUserDefaults::objectForKey(const QString &key)
{
    return UserDefaults::standard().object(key);
}

qint64 CloudUserDefaults::integerForKey(const QString &key)
{
    return UserDefaults::standard().integer(key);
}

void CloudUserDefaults::setObject(const QVariant &object, const QString &forKey)
{
    UserDefaults::standard().setObject(forKey, object);
}
