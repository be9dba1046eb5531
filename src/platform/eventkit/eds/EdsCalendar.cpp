#include "eventkit/eds/EdsCalendar.h"

#include <algorithm>

EdsCalendar::EdsCalendar(GlibObject<ESource> source, EdsClient::Kind kind, EdsPatience &patience,
                         std::function<void()> mayHaveChanged, std::function<void()> died)
    : client(std::move(source), kind, patience,
             {.changed = [this](const EdsComponents &components) { hear(components); },
              .removed = [this](const QByteArray &uid) { hearRemoved(uid); },
              .died =
                  [this, tellDeath = std::move(died)] {
                      isStale = true;
                      tellDeath();
                  },
              .accessMayHaveChanged = [this] { tellChange(); }})
    , tellChange(std::move(mayHaveChanged))
{}

OptionalError EdsCalendar::connect()
{
    auto error = client.connect();
    if (!error && !toldWritable)
        toldWritable = client.isWritable();
    return error;
}

/// The VTIMEZONE of a zone that only the daemon knows; empty for others.
Result<QByteArray> EdsCalendar::zoneText(const QByteArray &tzid)
{
    const auto found = zones.constFind(tzid);
    if (found != zones.constEnd())
        return *found;
    if (isKnownToDaemon(tzid))
        return *zones.insert(tzid, {});
    auto text = client.zone(tzid);
    if (text && !text->isEmpty())
        zones.insert(tzid, *text);
    return text;
}

Result<EdsCalendar::Known> EdsCalendar::described(EdsComponents components)
{
    sortComponents(components);
    QByteArrayList texts;
    QByteArrayList described;
    for (const EdsComponent &component : components)
        for (const QByteArray &tzid : component.zones) {
            if (described.contains(tzid))
                continue;
            described.append(tzid);
            const auto text = zoneText(tzid);
            if (!text)
                return text.error();
            texts.append(text.value());
        }
    const QString name = QString::fromUtf8(components.front().uid);
    const CalendarObject object{name, edsEtag(components), edsCalendarText(texts, components)};
    return Known{std::move(components), object};
}

OptionalError EdsCalendar::load()
{
    if (auto error = client.connect())
        return error;
    const QByteArray revision = client.revision();
    auto components = client.all();
    if (!components)
        return components.error();
    QHash<QByteArray, EdsComponents> byUid;
    for (EdsComponent &component : components.value())
        if (!component.uid.isEmpty())
            byUid[component.uid].push_back(std::move(component));
    QHash<QByteArray, Known> present;
    bool isSame = byUid.size() == known.size();
    for (auto entry = byUid.begin(); entry != byUid.end(); ++entry) {
        sortComponents(entry.value());
        const auto former = known.constFind(entry.key());
        const bool isFormer = former != known.constEnd() && former->object.etag == edsEtag(entry.value());
        isSame = isSame && isFormer;
        if (isFormer) {
            present.insert(entry.key(), *former);
            continue;
        }
        const auto read = described(std::move(entry.value()));
        if (!read)
            return read.error();
        present.insert(entry.key(), read.value());
    }
    known = std::move(present);
    ++loads;
    knownRevision = revision;
    isStale = false;
    if (std::exchange(isLoaded, true) && !isSame) {
        hasNews = true;
        tellChange();
    }
    return std::nullopt;
}

/// Calendars without a revision tell of changes by news only.
bool EdsCalendar::isCurrent()
{
    if (!isLoaded || isStale || !client.isConnected())
        return false;
    const QByteArray revision = client.revision();
    return revision == knownRevision && (!revision.isEmpty() || client.isListening());
}

Result<std::vector<CalendarObject>> EdsCalendar::objects()
{
    if (!isCurrent())
        if (auto error = load())
            return *error;
    std::vector<CalendarObject> found;
    found.reserve(static_cast<std::size_t>(known.size()));
    for (const Known &entry : std::as_const(known))
        found.push_back(entry.object);
    return found;
}

/// Where something has changed, the daemon is asked for this one; the others can wait.
Result<std::optional<CalendarObject>> EdsCalendar::object(const QString &name)
{
    const QByteArray uid = name.toUtf8();
    if (!isCurrent()) {
        auto stored = client.ofUid(uid);
        if (!stored)
            return stored.error();
        sortComponents(stored.value());
        // What was never asked for is no news.
        const QByteArray etag = stored->empty() ? QByteArray() : edsEtag(stored.value());
        if (!isLoaded)
            note(uid, std::move(stored.value()));
        else if (known.value(uid).object.etag != etag)
            noteChanged(uid, std::move(stored.value()));
    }
    const auto found = known.constFind(uid);
    return found == known.constEnd() ? std::optional<CalendarObject>() : std::optional(found->object);
}

/// The object that this program adds itself is known to who adds it.
QByteArray EdsCalendar::stampOfNames()
{
    return isCurrent() ? QByteArray::number(loads) : QByteArray();
}

/// What this program has written itself comes back as news, too, and is told apart by what it says.
void EdsCalendar::hear(const EdsComponents &components)
{
    const auto isOwn = [this](const EdsComponent &component) {
        const auto entry = known.constFind(component.uid);
        return entry != known.constEnd() &&
               std::any_of(entry->components.begin(), entry->components.end(),
                           [&](const EdsComponent &own) { return own.fingerprint == component.fingerprint; });
    };
    if (!std::all_of(components.begin(), components.end(), isOwn))
        noteNews();
}

/// Said of a series, too, when only one of its edited occurrences has gone.
void EdsCalendar::hearRemoved(const QByteArray &uid)
{
    if (!isLoaded || known.contains(uid))
        noteNews();
}

/// What is known is compared when it is read again; where nothing is known, anything is new.
void EdsCalendar::noteNews()
{
    isStale = true;
    hasNews = hasNews || !isLoaded;
    tellChange();
}

EdsCalendar::News EdsCalendar::takeNews()
{
    const OptionalError error = isStale && isLoaded ? load() : connect();
    if (error)
        return News::Unreachable;
    isStale = false;
    const bool hasOtherAccess = toldWritable && *toldWritable != client.isWritable();
    toldWritable = client.isWritable();
    return std::exchange(hasNews, false) || hasOtherAccess ? News::Changed : News::None;
}
