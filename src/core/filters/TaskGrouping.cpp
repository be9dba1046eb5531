#include "filters/TaskGrouping.h"

#include "foundation/UserDefaults.h"
#include "store/state/SettingsKeys.h"

#include <QVariantMap>

static constexpr int noIndex = -1;
static constexpr int lastIndex = 2;

int TaskGrouping::selectedIndex() const
{
    const QVariantMap stored = UserDefaults::standard().object(settings::taskGrouped).toMap();
    bool isNumber = false;
    const int index = stored.value(QString::number(listType)).toInt(&isNumber);
    return listType != noIndex && isNumber && index >= 0 && index <= lastIndex ? index : noIndex;
}

void TaskGrouping::setSelectedIndex(int index) const
{
    if (listType == noIndex)
        return;
    UserDefaults &defaults = UserDefaults::standard();
    QVariantMap stored = defaults.object(settings::taskGrouped).toMap();
    stored.insert(QString::number(listType), index);
    defaults.setObject(settings::taskGrouped, stored);
    defaults.synchronize();
}
