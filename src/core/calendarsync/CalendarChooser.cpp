#include "calendarsync/CalendarChooser.h"

#include "calendarsync/CalendarPass.h"
#include "calendarsync/CalendarStoreState.h"
#include "calendarsync/EventStoreAccess.h"
#include "calendarsync/KnownCalendars.h"
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

static QStringList storedChoice()
{
    return UserDefaults::standard()
        .string(settings::savedChooseCalendars)
        .split(calendarstore::separator, Qt::SkipEmptyParts);
}

/// Adds a calendar to the stored choice, or takes it out; the others stay as they stand there.
static void savedChooseCalendars(const EKCalendar &changed)
{
    UserDefaults &defaults = UserDefaults::standard();
    const QString reference = CalendarCatalogue::identifierOfCalendar(changed);
    QStringList references = storedChoice();
    if (references.removeAll(reference) == 0)
        references.append(reference);
    defaults.setObject(settings::savedChooseCalendars, references.join(calendarstore::separator));
    defaults.synchronize();
}

CalendarChooser::CalendarChooser()
{
    takeContent();
}

void CalendarChooser::takeContent()
{
    content = CalendarCatalogue::sortingAndGroupingByTitleForData(false);
    takeChoice();
}

/// The rows stay as they are shown.
void CalendarChooser::takeChoice()
{
    content.selected = CalendarCatalogue::sortingAndGroupingByTitleForData(false).selected;
    const auto calendar = CalendarCatalogue::getDefaultAccessCalendar();
    usual = calendar ? calendar->calendarIdentifier : QString();
}

bool CalendarChooser::reload()
{
    const CalendarChooserData former = content;
    const QString formerUsual = usual;
    takeContent();
    return former.data != content.data || former.selected != content.selected || formerUsual != usual;
}

const EKCalendar *CalendarChooser::calendarAt(int row) const
{
    if (row < 0 || row >= static_cast<int>(content.data.size()))
        return nullptr;
    return std::get_if<EKCalendar>(&content.data[static_cast<std::size_t>(row)]);
}

QString CalendarChooser::titleAt(int row) const
{
    if (const EKCalendar *calendar = calendarAt(row))
        return CalendarCatalogue::localizedTitleCalendar(*calendar);
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
    return calendar && calendar->calendarIdentifier == usual;
}

std::optional<EKCalendar> CalendarChooser::presentCalendarAt(int row) const
{
    const EKCalendar *shown = calendarAt(row);
    if (!shown)
        return std::nullopt;
    const std::vector<EKCalendar> calendars = CalendarCatalogue::getAllCalendars();
    const auto found = std::ranges::find_if(calendars, isSameAs(*shown));
    return found == calendars.end() ? std::nullopt : std::optional(*found);
}

bool CalendarChooser::toggle(int row)
{
    const auto calendar = presentCalendarAt(row);
    if (!calendar)
        return false;
    Log::line(calendar->calendarIdentifier);
    savedChooseCalendars(*calendar);
    takeChoice();
    return true;
}

bool CalendarChooser::setDefault(int row)
{
    const auto calendar = presentCalendarAt(row);
    if (!calendar || !calendar->allowsContentModifications)
        return false;
    // What new tasks go into is one of the chosen ones.
    const QString reference = CalendarCatalogue::identifierOfCalendar(*calendar);
    if (!storedChoice().contains(reference))
        savedChooseCalendars(*calendar);
    UserDefaults::standard().setObject(settings::defaultCalendar, reference);
    UserDefaults::standard().synchronize();
    takeChoice();
    return true;
}

bool CalendarChooser::canBeDefault(int row) const
{
    const EKCalendar *calendar = calendarAt(row);
    return calendar && calendar->allowsContentModifications;
}

CalendarChooser::Emptiness CalendarChooser::emptiness() const
{
    if (!EventStoreAccess::hasAccesToCalendar())
        return Emptiness::NoAccess;
    auto present = EventStoreAccess::eventStore().calendarsForEntityType(EKEntityType::Event);
    if (present && present->empty())
        return Emptiness::NoCalendars;
    return content.data.empty() ? Emptiness::Silent : Emptiness::None;
}

bool CalendarChooser::makeCalendar()
{
    // Those that are remembered have gone, says who wants another one.
    const std::vector<EKCalendar> known = knowncalendars::read();
    knowncalendars::keep({});
    const auto made = CalendarCatalogue::getCalendar();
    if (!made) {
        // Their tasks are still shown.
        knowncalendars::keep(known);
        return false;
    }
    takeContent();
    for (int row = 0; row < static_cast<int>(content.data.size()); ++row) {
        if (const EKCalendar *calendar = calendarAt(row); calendar && isSameAs(*made)(*calendar))
            return setDefault(row);
    }
    return false;
}

void CalendarChooser::finish()
{
    CalendarPass::syncCalendarToAppWithTask(nullptr);
    DBWorker::saveOrTell();
    UserDefaults::standard().setObject(settings::needPopToRootDetailHome, QStringLiteral("YES"));
    UserDefaults::standard().synchronize();
    NotificationCenter::defaultCenter().post(notifications::iCloudChange);
}
