#include "calendarsync/CalendarChooser.h"

#include "calendarsync/CalendarStoreState.h"
#include "foundation/Log.h"
#include "foundation/NotificationCenter.h"
#include "foundation/UserDefaults.h"
#include "store/queries/DBWorker.h"
#include "store/state/NotificationNames.h"
#include "store/state/SettingsKeys.h"

#include <algorithm>

static auto isSameAs(const EKCalendar &calendar)
{
    return [&calendar](const EKCalendar &other) {
        return other.calendarIdentifier == calendar.calendarIdentifier;
    };
}

CalendarChooser::CalendarChooser()
    : content(CalendarEvent::sortingAndGroupingByTitleForData(false))
{}

const EKCalendar *CalendarChooser::calendarAt(int row) const
{
    if (row < 0 || row >= static_cast<int>(content.data.size()))
        return nullptr;
    return std::get_if<EKCalendar>(&content.data[static_cast<std::size_t>(row)]);
}

QString CalendarChooser::titleAt(int row) const
{
    if (const EKCalendar *calendar = calendarAt(row))
        return CalendarEvent::localizedTitleCalendar(*calendar);
    return std::get<QString>(content.data.at(static_cast<std::size_t>(row)));
}

bool CalendarChooser::isSelected(int row) const
{
    const EKCalendar *calendar = calendarAt(row);
    return calendar && std::ranges::any_of(content.selected, isSameAs(*calendar));
}

bool CalendarChooser::isDefault(int row) const
{
    const EKCalendar *calendar = calendarAt(row);
    return calendar && calendar->allowsContentModifications &&
           UserDefaults::standard().string(settings::defaultCalendar) ==
               CalendarEvent::identifierOfCalendar(*calendar);
}

bool CalendarChooser::toggle(int row)
{
    const EKCalendar *calendar = calendarAt(row);
    if (!calendar)
        return false;
    Log::line(calendar->calendarIdentifier);
    if (std::erase_if(content.selected, isSameAs(*calendar)) == 0)
        content.selected.push_back(*calendar);
    savedChooseCalendars();
    return true;
}

void CalendarChooser::savedChooseCalendars() const
{
    QStringList references;
    for (const EKCalendar &calendar : content.selected)
        references.append(CalendarEvent::identifierOfCalendar(calendar));
    UserDefaults::standard().setObject(settings::savedChooseCalendars,
                                       references.join(calendarstore::separator));
    UserDefaults::standard().synchronize();
}

bool CalendarChooser::setDefault(int row)
{
    const EKCalendar *calendar = calendarAt(row);
    if (!calendar)
        return false;
    UserDefaults::standard().setObject(settings::defaultCalendar,
                                       CalendarEvent::identifierOfCalendar(*calendar));
    UserDefaults::standard().synchronize();
    return true;
}

void CalendarChooser::finish()
{
    CalendarEvent::syncCalendarToAppWithTask(nullptr);
    DBWorker::saveContext();
    UserDefaults::standard().setObject(settings::needPopToRootDetailHome, QStringLiteral("YES"));
    UserDefaults::standard().synchronize();
    NotificationCenter::defaultCenter().post(notifications::iCloudChange);
}
