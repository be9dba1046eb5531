#include "foundation/ZoneRules.h"

#include <QDateTime>
#include <QHash>
#include <QTimeZone>

#include <map>
#include <mutex>
#include <utility>
#include <vector>

#include <unicode/rbtz.h>
#include <unicode/tzrule.h>

static constexpr qint64 firstMoment = -6'000'000'000;     // 1779: local mean time everywhere
static constexpr qint64 endOfTransitions = 2'145'916'800; // 2038: QTimeZone lists transitions until here
static constexpr qint64 horizon = 3'408'220'800;          // 2078
static constexpr qint64 probeStep = qint64(30) * 86'400;

/// Instants of change in milliseconds since 1970, by what the standard and the daylight offset become then.
using Changes = std::map<std::pair<int, int>, std::vector<UDate>>;

static QDateTime utc(qint64 unixSeconds)
{
    return QDateTime::fromSecsSinceEpoch(unixSeconds, Qt::UTC);
}

static void add(Changes &changes, const QTimeZone::OffsetData &change)
{
    const auto instant = static_cast<UDate>(change.atUtc.toMSecsSinceEpoch());
    changes[{change.standardTimeOffset, change.daylightTimeOffset}].push_back(instant);
}

static void addListedChanges(Changes &changes, const QTimeZone &zone)
{
    const auto listed = zone.transitions(utc(firstMoment), utc(endOfTransitions));
    for (const auto &change : listed)
        add(changes, change);
}

/// From 2038 on each change must be asked for one by one. `nextTransition` now and then answers nothing or
/// the instant that it was given, most of all around 2038-01-19; asking again from a month later finds the
/// next one.
static void addLaterChanges(Changes &changes, const QTimeZone &zone)
{
    qint64 latest = endOfTransitions;
    for (qint64 probe = endOfTransitions; probe < horizon;) {
        const auto change = zone.nextTransition(utc(probe));
        const qint64 instant = change.atUtc.isValid() ? change.atUtc.toSecsSinceEpoch() : latest;
        if (instant > latest) {
            add(changes, change);
            latest = probe = instant;
        } else {
            probe += probeStep;
        }
    }
}

static std::shared_ptr<const icu::BasicTimeZone> zoneFrom(const QByteArray &identifier, int firstOffset,
                                                          const Changes &changes)
{
    const auto name = icu::UnicodeString::fromUTF8(identifier.toStdString());
    auto rules = std::make_shared<icu::RuleBasedTimeZone>(
        name, new icu::InitialTimeZoneRule(name, firstOffset * 1000, 0));
    UErrorCode status = U_ZERO_ERROR;
    for (const auto &[offsets, instants] : changes)
        rules->addTransitionRule(
            new icu::TimeArrayTimeZoneRule(name, offsets.first * 1000, offsets.second * 1000, instants.data(),
                                           static_cast<int>(instants.size()), icu::DateTimeRule::UTC_TIME),
            status);
    rules->complete(status);
    return rules;
}

static std::shared_ptr<const icu::BasicTimeZone> zoneFrom(const QTimeZone &zone)
{
    Changes changes;
    addListedChanges(changes, zone);
    if (zone.hasTransitions())
        addLaterChanges(changes, zone);
    return zoneFrom(zone.id(), zone.offsetFromUtc(utc(firstMoment)), changes);
}

/// The zones that were made so far, and who may look at them.
struct BuiltZones
{
    std::mutex mutex;
    QHash<QByteArray, std::shared_ptr<const icu::BasicTimeZone>> zones;
};

static BuiltZones &builtZones()
{
    static BuiltZones built;
    return built;
}

std::shared_ptr<const icu::BasicTimeZone> sharedZoneRules(const QByteArray &identifier)
{
    BuiltZones &built = builtZones();
    const std::lock_guard lock(built.mutex);
    auto &rules = built.zones[identifier];
    if (!rules) {
        const QTimeZone zone(identifier);
        rules = zoneFrom(zone.isValid() ? zone : QTimeZone::utc());
    }
    return rules;
}

void registerZoneRules(const QByteArray &identifier, int firstOffset, const std::vector<ZoneChange> &changes)
{
    Changes sorted;
    for (const ZoneChange &change : changes)
        sorted[{change.offset, 0}].push_back(static_cast<UDate>(change.unixSeconds) * 1000);
    BuiltZones &built = builtZones();
    const std::lock_guard lock(built.mutex);
    auto &rules = built.zones[identifier];
    if (!rules)
        rules = zoneFrom(identifier, firstOffset, sorted);
}
