#include "records/LocationChoice.h"

#include "store/entities/MainContext.h"
#include "store/queries/DBWorker.h"

#include <algorithm>
#include <cmath>

constexpr int digitsOfDegrees = 6;

LocationChoice::LocationChoice(const LocationPtr &current)
{
    load();
    const auto found = std::ranges::find(all, current);
    if (current && found != all.end())
        selected = static_cast<int>(found - all.begin()) + 1;
}

void LocationChoice::load()
{
    const auto found = DBWorker::allLocations();
    all.assign(found.begin(), found.end());
}

LocationPtr LocationChoice::locationAt(int row) const
{
    const bool isLocation = row > addRow && row <= static_cast<int>(all.size());
    return isLocation ? all[static_cast<std::size_t>(row - 1)] : nullptr;
}

LocationPtr LocationChoice::lastWithPosition() const
{
    for (auto location = all.rbegin(); location != all.rend(); ++location) {
        // The place of an event that does not say where it is has two zeros.
        const bool isAtZero = (*location)->latitude() == 0.0 && (*location)->longitude() == 0.0;
        if ((*location)->latitude() && (*location)->longitude() && !isAtZero)
            return *location;
    }
    return nullptr;
}

void LocationChoice::press(int row)
{
    if (row == addRow) {
        adding = true;
        locationTemp = {};
    } else if (locationAt(row)) {
        selected = selected == row ? -1 : row;
    }
}

std::optional<LocationPtr> LocationChoice::made() const
{
    const QString title = locationTemp.title.trimmed();
    if (title.isEmpty())
        return std::nullopt;
    return DBWorker::saveLocation(title, locationTemp.latitude, locationTemp.longitude);
}

LocationPtr LocationChoice::remove(int row)
{
    LocationPtr location = locationAt(row);
    if (!location)
        return nullptr;
    const LocationPtr before = chosen();
    mainContext().deleteObject(location);
    DBWorker::saveStep(QStringLiteral("Delete"));
    load();
    const auto found = std::ranges::find(all, before);
    selected = before && found != all.end() ? static_cast<int>(found - all.begin()) + 1 : -1;
    return location;
}

std::optional<double> LocationChoice::degrees(const QString &text, double limit)
{
    const QString plain = text.trimmed().replace(u',', u'.');
    bool isNumber = false;
    const double number = plain.toDouble(&isNumber);
    const bool isUsable = isNumber && std::isfinite(number) && std::abs(number) <= limit;
    return isUsable ? std::optional(number) : std::nullopt;
}

QString LocationChoice::degreesText(double degrees)
{
    return QString::number(degrees, 'f', digitsOfDegrees);
}
