#include "filters/ListFilter.h"
#include "foundation/Localization.h"

// The words for what is picked.

QString FilterSelection::popUpTitle(bool selectedAll, int countObjects)
{
    if (selectedAll)
        return localized(QStringLiteral("All"));
    if (countObjects == 0)
        return localized(QStringLiteral("None"));
    // The first letter of the word is the Cyrillic one.
    return QStringLiteral("%1 %2 %3")
        .arg(localized(QStringLiteral("\u0421hoose")), QString::number(countObjects),
             localizedCount(QStringLiteral("items"), countObjects));
}

QString FilterSelection::title() const
{
    return popUpTitle(selectedAll, static_cast<int>(objects.size()));
}
