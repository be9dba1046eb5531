#include "calendarsync/CalendarCatalogue.h"

#include "calendarsync/CalendarReferences.h"
#include "calendarsync/CalendarStoreState.h"
#include "calendarsync/EventStoreAccess.h"
#include "calendarsync/KnownCalendars.h"
#include "foundation/Localization.h"
#include "foundation/Log.h"
#include "foundation/TextFolding.h"
#include "foundation/UserDefaults.h"
#include "store/state/CoreContext.h"
#include "store/state/SettingsKeys.h"

#include <algorithm>
#include <map>

// The calendars that the store has, by the names that the organiser gives them.

namespace {

using calendarstore::isCloud;
using calendarstore::ownTitle;
using calendarstore::separator;
using calendarstore::state;

std::vector<EKCalendar> ownCalendars()
{
    std::vector<EKCalendar> own = CalendarCatalogue::getAllCalendars();
    std::erase_if(own, [](const EKCalendar &one) { return one.title != ownTitle; });
    return own;
}

bool isSameCalendar(const EKCalendar &one, const EKCalendar &other)
{
    return one.calendarIdentifier == other.calendarIdentifier;
}

bool isChosen(const EKCalendar &calendar)
{
    const std::vector<EKCalendar> chosen = CalendarCatalogue::getAllAccessCalendars();
    return std::any_of(chosen.begin(), chosen.end(),
                       [&](const EKCalendar &one) { return isSameCalendar(one, calendar); });
}

/// Of calendars with the program's own title the first takes what the others hold. One that holds what cannot
/// be moved stays, with all of it.
void removeDuplicateCalendars(const std::vector<EKCalendar> &calendars)
{
    EKEventStore &store = EventStoreAccess::eventStore();
    for (size_t place = 1; place < calendars.size(); ++place) {
        auto error = store.moveContents(calendars[place], calendars.front(), true);
        if (!error)
            error = store.removeCalendar(calendars[place], false);
        if (error)
            Log::line(QStringLiteral("removing calendar %1: %2").arg(calendars[place].title, error->message));
    }
    if (const auto error = store.commit())
        Log::line(error->message);
    state().calendars.reset();
}

std::optional<EKSource> sourceOfOwnCalendar()
{
    const auto sources = EventStoreAccess::eventStore().sources();
    if (!sources)
        return std::nullopt;
    const std::vector<EKSource> &all = sources.value();
    auto found = std::find_if(all.begin(), all.end(), isCloud);
    if (found == all.end())
        found = std::find_if(all.begin(), all.end(),
                             [](const EKSource &one) { return one.sourceType == EKSourceType::Local; });
    return found == all.end() ? std::nullopt : std::optional(*found);
}

/// What is shown for titles that every desktop has in English.
QString localizedIfOneOf(const QString &title, const std::vector<std::pair<QString, QString>> &words)
{
    for (const auto &[name, shown] : words) {
        if (title.compare(name, Qt::CaseInsensitive) == 0)
            return localized(shown);
    }
    return title;
}

} // namespace

bool calendarstore::isCloud(const EKSource &source)
{
    return source.sourceType == EKSourceType::CalDAV && source.title.toLower() == QStringLiteral("icloud");
}

std::vector<EKCalendar> CalendarCatalogue::getAllCalendars()
{
    EKEventStore &store = EventStoreAccess::eventStore();
    if (!state().calendars) {
        auto found = store.calendarsForEntityType(EKEntityType::Event);
        if (!found || found->empty()) {
            // A service that tells of none any more has lost them, or is about to load them.
            std::vector<EKCalendar> known = knowncalendars::read();
            state().isReachable = found && known.empty();
            if (!state().isReachable) {
                Log::line(found ? QStringLiteral("There are no calendars at present.")
                                : found.error().message);
                return known;
            }
        }
        state().isReachable = true;
        knowncalendars::keep(*found);
        calendarreferences::take(*found);
        state().calendars = std::move(*found);
    }
    return *state().calendars;
}

std::vector<EKCalendar> CalendarCatalogue::getAllAccessCalendars()
{
    UserDefaults &defaults = UserDefaults::standard();
    if (!defaults.contains(settings::savedChooseCalendars) &&
        CoreContext::version() == QStringLiteral("3.0") && isOurCalendar()) {
        if (const auto own = getCalendar()) {
            defaults.setObject(settings::savedChooseCalendars, identifierOfCalendar(*own));
            defaults.setObject(settings::defaultCalendar, identifierOfCalendar(*own));
        }
    }
    const QString saved = defaults.string(settings::savedChooseCalendars);
    if (saved.isEmpty())
        return {};
    const QStringList references = saved.split(separator);
    std::vector<EKCalendar> chosen = getAllCalendars();
    std::erase_if(chosen, [&references](const EKCalendar &one) {
        return !references.contains(identifierOfCalendar(one));
    });
    return chosen;
}

std::vector<EKCalendar>
CalendarCatalogue::getAllModifiedCalendarsFromCalendars(const std::vector<EKCalendar> &calendars)
{
    std::vector<EKCalendar> writable = calendars;
    std::erase_if(writable, [](const EKCalendar &one) { return !one.allowsContentModifications; });
    return writable;
}

std::optional<EKCalendar> CalendarCatalogue::getCalendar()
{
    if (!EventStoreAccess::hasAccesToCalendar())
        return std::nullopt;
    const auto keep = [](const EKCalendar &calendar) {
        UserDefaults::standard().setObject(settings::ownCalendarIdentifier, identifierOfCalendar(calendar));
        UserDefaults::standard().synchronize();
    };
    if (const std::vector<EKCalendar> own = ownCalendars(); !own.empty()) {
        keep(own.front());
        return own.front();
    }
    const std::optional<EKSource> source = sourceOfOwnCalendar();
    if (!source)
        return std::nullopt;
    EKCalendar made = EKCalendar::calendarForEntityType(EKEntityType::Event, EventStoreAccess::eventStore());
    made.title = ownTitle;
    made.source = *source;
    if (!EventStoreAccess::eventStore().saveCalendar(made, true)) {
        Log::line(QStringLiteral("Calendar saved!"));
        keep(made);
    }
    state().calendars.reset();
    return made;
}

bool CalendarCatalogue::isOurCalendar()
{
    if (!EventStoreAccess::hasAccesToAppleCalendar())
        return false;
    const std::vector<EKCalendar> own = ownCalendars();
    if (own.size() > 1)
        removeDuplicateCalendars(own);
    return !own.empty();
}

std::optional<EKCalendar> CalendarCatalogue::setDefaultCalendarFromAppleCalendar()
{
    const std::optional<EKCalendar> calendar = EventStoreAccess::eventStore().defaultCalendarForNewEvents();
    if (calendar) {
        UserDefaults::standard().setObject(settings::defaultCalendar, identifierOfCalendar(*calendar));
        UserDefaults::standard().synchronize();
    }
    return calendar;
}

std::optional<EKCalendar> CalendarCatalogue::getDefaultCalendar()
{
    if (!EventStoreAccess::hasAccesToCalendar())
        return std::nullopt;
    const QString reference = UserDefaults::standard().string(settings::defaultCalendar);
    return reference.isEmpty() ? setDefaultCalendarFromAppleCalendar() : calendarOfIdentifier(reference);
}

std::optional<EKCalendar> CalendarCatalogue::getDefaultAccessCalendar()
{
    // What is put into a calendar that nobody has chosen is on no list.
    const std::vector<EKCalendar> usable = getAllModifiedCalendarsFromCalendars(getAllAccessCalendars());
    if (usable.empty() || !EventStoreAccess::hasAccesToCalendar())
        return std::nullopt;
    const std::optional<EKCalendar> stored = getDefaultCalendar();
    const auto found = std::ranges::find_if(usable, [&stored](const EKCalendar &one) {
        return stored && one.calendarIdentifier == stored->calendarIdentifier;
    });
    return found == usable.end() ? usable.front() : *found;
}

QString CalendarCatalogue::identifierOfCalendar(const EKCalendar &calendar)
{
    return calendarreferences::of(calendar);
}

QStringList CalendarCatalogue::visibleReferences()
{
    QStringList references;
    for (const EKCalendar &one : getAllAccessCalendars()) {
        references += identifierOfCalendar(one);
        references += calendarreferences::formerOf(one.calendarIdentifier);
    }
    const QStringList chosen =
        UserDefaults::standard().string(settings::savedChooseCalendars).split(separator, Qt::SkipEmptyParts);
    for (const QString &reference : chosen) {
        const QString identifier = calendarreferences::identifierOf(reference);
        if (!identifier.isEmpty() && !references.contains(reference))
            references += QStringList(reference) + calendarreferences::formerOf(identifier);
    }
    return references;
}

bool CalendarCatalogue::isKnownReference(const QString &reference)
{
    return !calendarreferences::identifierOf(reference).isEmpty() ||
           calendarOfIdentifier(reference).has_value();
}

bool CalendarCatalogue::isHere(const QString &reference)
{
    const QString own = calendarreferences::identifierOf(reference);
    return std::ranges::any_of(getAllCalendars(), [&](const EKCalendar &one) {
        return own.isEmpty() ? identifierOfCalendar(one) == reference : one.calendarIdentifier == own;
    });
}

QStringList CalendarCatalogue::namesForOtherDevices()
{
    QStringList names;
    for (const EKCalendar &one : knowncalendars::read()) {
        const QStringList references =
            QStringList(identifierOfCalendar(one)) + calendarreferences::formerOf(one.calendarIdentifier);
        std::ranges::transform(references, std::back_inserter(names), calendarreferences::nameElsewhere);
    }
    names.sort();
    names.removeDuplicates();
    return names;
}

std::optional<EKCalendar> CalendarCatalogue::calendarOfIdentifier(const QString &identifier)
{
    if (identifier.isNull())
        return std::nullopt;
    const std::vector<EKCalendar> calendars = getAllCalendars();
    const QString own = calendarreferences::identifierOf(identifier);
    const qsizetype mark = identifier.lastIndexOf(calendarreferences::identifierMark);
    if (own.isEmpty() && mark < 0)
        return calendarOfTitle(identifier);
    const QString wanted =
        own.isEmpty() ? identifier.mid(mark + calendarreferences::identifierMark.size()) : own;
    const auto found = std::ranges::find(calendars, wanted, &EKCalendar::calendarIdentifier);
    if (found == calendars.end() || (found->allowsContentModifications && !isChosen(*found)))
        return std::nullopt;
    return *found;
}

std::optional<EKCalendar> CalendarCatalogue::calendarOfTitle(const QString &title)
{
    for (const EKCalendar &one : getAllAccessCalendars()) {
        if (one.title == title)
            return one;
    }
    return std::nullopt;
}

bool CalendarCatalogue::calendarAccessOfCalendarTypeIdentifier(const QString &identifier)
{
    const std::optional<EKCalendar> calendar = calendarOfIdentifier(identifier);
    return calendar && isChosen(*calendar);
}

bool CalendarCatalogue::calendarAccessOfTitle(const QString &title)
{
    return calendarOfTitle(title).has_value();
}

EKColor CalendarCatalogue::getColorOfCalendar(const EKCalendar &calendar)
{
    constexpr EKColor quiet{0.3059, 0.4196, 0.5686, 1};
    EKColor color = calendar.color.value_or(quiet);
    color.alpha = 1;
    return color;
}

QString CalendarCatalogue::localizedTitleCalendar(const EKCalendar &calendar)
{
    if (calendar.allowsContentModifications)
        return calendar.title;
    static const QString birthdays = QStringLiteral("Birthdays");
    static const QString foundInMail = QStringLiteral("Found in Mail");
    static const QString contacts = QStringLiteral("Contacts");
    return localizedIfOneOf(calendar.title,
                            {{birthdays, birthdays}, {foundInMail, foundInMail}, {contacts, contacts}});
}

QString CalendarCatalogue::localizedTitleSource(const EKSource &source)
{
    static const QString subscribed = QStringLiteral("Subscribed Calendars");
    return localizedIfOneOf(source.title, {{QStringLiteral("Other"), QStringLiteral("Other calendar")},
                                           {subscribed, subscribed}});
}

int CalendarCatalogue::getSourceType()
{
    const bool isInCloud = std::ranges::any_of(getAllAccessCalendars(), [](const EKCalendar &one) {
        return one.source.sourceType != EKSourceType::Local;
    });
    return isInCloud ? cloudSourceType : 0;
}

bool CalendarCatalogue::lacksCloudFolder(bool hasCloudFolder)
{
    return !hasCloudFolder && std::ranges::any_of(getAllAccessCalendars(),
                                                  [](const EKCalendar &one) { return isCloud(one.source); });
}

CalendarChooserData CalendarCatalogue::sortingAndGroupingByTitleForData(bool onlyAccessModified)
{
    const std::vector<EKCalendar> calendars =
        onlyAccessModified ? getAllModifiedCalendarsFromCalendars(getAllAccessCalendars())
                           : getAllCalendars();
    const QStringList references =
        UserDefaults::standard().string(settings::savedChooseCalendars).split(separator);
    CalendarChooserData result;
    // From the high end of the alphabet down, as titles of sources go.
    std::map<QString, std::vector<EKCalendar>, std::greater<>> groups;
    for (const EKCalendar &one : calendars) {
        groups[one.source.title].push_back(one);
        if (references.contains(identifierOfCalendar(one)))
            result.selected.push_back(one);
    }
    for (auto &[title, group] : groups) {
        std::stable_sort(group.begin(), group.end(), [](const EKCalendar &one, const EKCalendar &other) {
            return one.title < other.title;
        });
        result.data.emplace_back(localizedTitleSource(group.front().source));
        result.data.insert(result.data.end(), group.begin(), group.end());
    }
    return result;
}
