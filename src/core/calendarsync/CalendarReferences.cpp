#include "calendarsync/CalendarReferences.h"

#include "calendarsync/CalendarStoreState.h"
#include "foundation/UserDefaults.h"
#include "store/state/SettingsKeys.h"

#include <QVariantMap>

#include <algorithm>

namespace calendarreferences {

namespace {

/// For each identifier its reference, and behind it the former ones, the last first.
using References = std::map<QString, QStringList>;

References stored()
{
    References references;
    const QVariantMap kept = UserDefaults::standard().object(settings::calendarReferences).toMap();
    for (auto entry = kept.begin(); entry != kept.end(); ++entry) {
        if (const QStringList own = entry.value().toStringList(); !own.isEmpty())
            references.emplace(entry.key(), own);
    }
    return references;
}

References &references()
{
    auto &held = calendarstore::state().references;
    if (!held)
        held = stored();
    return *held;
}

void keep()
{
    QVariantMap kept;
    for (const auto &[identifier, own] : references())
        kept.insert(identifier, own);
    UserDefaults::standard().setObject(settings::calendarReferences, kept);
}

/// A former reference is its calendar's still: an undo can bring rows back that name it so.
bool isTaken(const QString &reference, const QString &identifier)
{
    return std::ranges::any_of(references(), [&](const auto &entry) {
        return entry.first != identifier && entry.second.contains(reference);
    });
}

QString withIdentifier(const QString &title, const QString &identifier)
{
    const QString shown = title.contains(calendarstore::separator) ? QString() : title;
    return shown + identifierMark + identifier;
}

/// Whether a calendar that may only be read has the title alone all the same. A calendar whose account is not
/// connected says that it may not be written: who was known by the title once is known by it still.
bool hasPlainOne(const EKCalendar &calendar)
{
    const auto own = references().find(calendar.calendarIdentifier);
    return own != references().end() && !own->second.front().contains(identifierMark);
}

QString referenceFor(const EKCalendar &calendar, const QString &title, bool mayBePlain)
{
    // A list of references must come apart again.
    const bool isPlain = mayBePlain && !title.isEmpty() && !title.contains(calendarstore::separator) &&
                         !title.contains(identifierMark);
    return isPlain && !isTaken(title, calendar.calendarIdentifier)
               ? title
               : withIdentifier(title, calendar.calendarIdentifier);
}

QString referenceFor(const EKCalendar &calendar)
{
    return referenceFor(calendar, calendar.title,
                        calendar.allowsContentModifications || hasPlainOne(calendar));
}

/// Whether the settings call a calendar by its title alone.
bool isNamedByTitle(const EKCalendar &calendar, const QString &title)
{
    const UserDefaults &defaults = UserDefaults::standard();
    const QStringList named = (defaults.string(settings::savedChooseCalendars) + calendarstore::separator +
                               defaults.string(settings::defaultCalendar))
                                  .split(calendarstore::separator);
    return !title.isEmpty() && named.contains(title) &&
           !named.contains(withIdentifier(title, calendar.calendarIdentifier));
}

void give(const QString &identifier, const QString &reference)
{
    QStringList &own = references()[identifier];
    own.removeAll(reference);
    own.prepend(reference);
}

} // namespace

void take(const std::vector<EKCalendar> &calendars)
{
    calendarstore::state().references.reset();
    // Who has had a title before it is asked for by another one keeps it, those that may be written first. A
    // store of former times says only so.
    const QVariantMap titles = UserDefaults::standard().object(settings::dictionaryCalendarsData).toMap();
    bool isNew = false;
    const auto takeThose = [&](const auto &isMeant) {
        for (const EKCalendar &one : calendars) {
            const QString former = titles.value(one.calendarIdentifier).toString();
            if (references().contains(one.calendarIdentifier) || !isMeant(one, !former.isEmpty()))
                continue;
            const QString title = former.isEmpty() ? one.title : former;
            give(one.calendarIdentifier,
                 referenceFor(one, title, one.allowsContentModifications || isNamedByTitle(one, former)));
            isNew = true;
        }
    };
    takeThose(
        [](const EKCalendar &one, bool wasKnown) { return wasKnown && one.allowsContentModifications; });
    takeThose([](const EKCalendar &, bool wasKnown) { return wasKnown; });
    takeThose([](const EKCalendar &, bool) { return true; });
    if (isNew)
        keep();
}

QString of(const EKCalendar &calendar)
{
    const auto own = references().find(calendar.calendarIdentifier);
    return own == references().end() ? referenceFor(calendar) : own->second.front();
}

QString identifierOf(const QString &reference)
{
    const auto found = std::ranges::find_if(
        references(), [&reference](const auto &entry) { return entry.second.contains(reference); });
    return found == references().end() ? QString() : found->first;
}

QString nameElsewhere(const QString &reference)
{
    const qsizetype mark = reference.lastIndexOf(identifierMark);
    return mark > 0 ? reference.left(mark) : reference;
}

QStringList formerOf(const QString &identifier)
{
    const auto own = references().find(identifier);
    return own == references().end() ? QStringList() : own->second.mid(1);
}

std::vector<Renamed> follow(const std::vector<EKCalendar> &calendars)
{
    std::vector<Renamed> renamed;
    for (const EKCalendar &one : calendars) {
        const QString present = of(one);
        const QString wanted = referenceFor(one);
        if (present == wanted)
            continue;
        give(one.calendarIdentifier, wanted);
        renamed.push_back({present, wanted});
    }
    if (!renamed.empty())
        keep();
    return renamed;
}

void handOver(const QString &identifierOfGone, const QString &identifier)
{
    const auto gone = references().extract(identifierOfGone);
    if (gone.empty())
        return;
    QStringList &own = references()[identifier];
    own = gone.mapped() + own;
    keep();
}

void forgetOthersThan(const QStringList &identifiers)
{
    const auto forgotten = std::erase_if(
        references(), [&identifiers](const auto &entry) { return !identifiers.contains(entry.first); });
    if (forgotten > 0)
        keep();
}

} // namespace calendarreferences
