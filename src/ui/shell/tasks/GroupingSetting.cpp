#include "shell/tasks/GroupingSetting.h"

#include "foundation/UserDefaults.h"
#include "store/state/SettingsKeys.h"

int GroupingSetting::read(int groupedType)
{
    const QVariantMap chosen = UserDefaults::standard().object(settings::taskGrouped).toMap();
    bool isNumber = false;
    const int index = chosen.value(QString::number(groupedType)).toInt(&isNumber);
    return isNumber ? index : -1;
}

void GroupingSetting::write(int groupedType, int index)
{
    UserDefaults &defaults = UserDefaults::standard();
    QVariantMap chosen = defaults.object(settings::taskGrouped).toMap();
    chosen.insert(QString::number(groupedType), index);
    defaults.setObject(settings::taskGrouped, chosen);
    defaults.synchronize();
}
