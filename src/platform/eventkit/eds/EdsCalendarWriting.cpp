#include "eventkit/eds/EdsCalendar.h"

#include <algorithm>
#include <thread>

namespace {

Error conflict()
{
    return CalendarError::make(CalendarError::Conflict,
                               QStringLiteral("Cannot write the event: somebody else has changed it."));
}

const EdsComponent *findOccurrence(const EdsComponents &components, const QByteArray &recurrenceId)
{
    const auto found = std::find_if(components.begin(), components.end(), [&](const EdsComponent &component) {
        return component.recurrenceId == recurrenceId;
    });
    return found == components.end() ? nullptr : &*found;
}

/// Those of some components that others do not have in this form.
EdsComponents changedOf(const EdsComponents &wished, const EdsComponents &stored)
{
    EdsComponents changed;
    for (const EdsComponent &component : wished) {
        const EdsComponent *former = findOccurrence(stored, component.recurrenceId);
        if (!former || former->fingerprint != component.fingerprint)
            changed.push_back(component);
    }
    return changed;
}

/// Those of the stored components that are no longer wished for.
EdsComponents droppedOf(const EdsComponents &stored, const EdsComponents &wished)
{
    EdsComponents dropped;
    for (const EdsComponent &component : stored)
        if (!findOccurrence(wished, component.recurrenceId))
            dropped.push_back(component);
    return dropped;
}

} // namespace

OptionalError EdsCalendar::checkWritable()
{
    if (auto error = client.connect())
        return error;
    if (!client.isWritable())
        return CalendarError::make(CalendarError::ReadOnly,
                                   QStringLiteral("Cannot change the calendar: it may only be read."));
    return std::nullopt;
}

/// Puts what was found under a UID in place of what was known of it.
void EdsCalendar::note(const QByteArray &uid, EdsComponents components)
{
    if (components.empty()) {
        known.remove(uid);
        return;
    }
    const auto read = described(std::move(components));
    if (read)
        known.insert(uid, read.value());
    else
        isStale = true;
}

/// The same where somebody else has changed it.
void EdsCalendar::noteChanged(const QByteArray &uid, EdsComponents components)
{
    note(uid, std::move(components));
    hasNews = true;
    tellChange();
}

Result<EdsComponents> EdsCalendar::unchanged(const QByteArray &uid, const QByteArray &etag)
{
    auto stored = client.ofUid(uid);
    if (!stored)
        return stored;
    sortComponents(stored.value());
    const QByteArray storedEtag = stored->empty() ? QByteArray() : edsEtag(stored.value());
    if (storedEtag == etag)
        return stored;
    noteChanged(uid, std::move(stored.value()));
    return conflict();
}

OptionalError EdsCalendar::writeNew(const EdsComponents &components)
{
    const auto created = client.create(components.front());
    if (!created)
        return created.error();
    auto error = client.replaceDetached({components.begin() + 1, components.end()});
    // The first error says what is wrong; half an object is worse than none.
    if (error)
        client.removeAll(created.value()).ignore();
    return error;
}

/// The only way to be rid of edited occurrences that all calendars understand alike.
OptionalError EdsCalendar::rewrite(const EdsComponents &stored, const EdsComponents &wished)
{
    if (auto error = client.removeAll(stored.front().uid))
        return error;
    auto error = writeNew(wished);
    // What was there before comes back, if that is possible.
    if (error)
        writeNew(stored).ignore();
    return error;
}

OptionalError EdsCalendar::writeChanged(const EdsComponents &stored, const EdsComponents &wished)
{
    const EdsComponents dropped = droppedOf(stored, wished);
    const EdsComponents changed = changedOf(wished, stored);
    const bool losesMaster = !dropped.empty() && !dropped.front().isDetached();
    const bool gainsMaster = !wished.front().isDetached() && stored.front().isDetached();
    if (losesMaster || gainsMaster || (!dropped.empty() && !client.canRemoveDetached()))
        return rewrite(stored, wished);
    for (const EdsComponent &component : dropped)
        if (auto error = client.removeDetached(component))
            return error;
    const bool hasMaster = !changed.empty() && !changed.front().isDetached();
    if (hasMaster)
        if (auto error = client.replaceMaster(changed.front()))
            return error;
    return client.replaceDetached({changed.begin() + (hasMaster ? 1 : 0), changed.end()});
}

/// What the daemon tells of its revision comes a moment after the answer to a change.
void EdsCalendar::settle(const QByteArray &revisionBefore)
{
    constexpr int mostSteps = 50;
    for (int step = 0; step < mostSteps && client.revision() == revisionBefore; ++step)
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
}

Result<CalendarObject> EdsCalendar::readBack(const QByteArray &uid, const QByteArray &revisionBefore)
{
    auto stored = client.ofUid(uid);
    if (!stored)
        return stored.error();
    if (stored->empty())
        return conflict();
    auto read = described(std::move(stored.value()));
    if (!read)
        return read.error();
    known.insert(uid, read.value());
    settle(revisionBefore);
    if (knownRevision == revisionBefore)
        knownRevision = client.revision();
    return read->object;
}

Result<CalendarObject> EdsCalendar::put(const CalendarObject &object)
{
    if (auto error = checkWritable())
        return *error;
    auto wished = edsObjectFromText(object.text);
    if (!wished)
        return wished.error();
    const QByteArray uid = wished->components.front().uid;
    const bool isNew = object.name.isEmpty();
    if (!isNew && uid != object.name.toUtf8())
        return CalendarError::make(CalendarError::Invalid,
                                   QStringLiteral("Cannot write the event: its UID is another one."));
    auto stored = unchanged(uid, isNew ? QByteArray() : object.etag);
    if (!stored)
        return stored.error();
    for (const QByteArray &zone : wished->zones)
        if (auto error = client.addZone(zone))
            return *error;
    const QByteArray revision = client.revision();
    const OptionalError error =
        stored->empty() ? writeNew(wished->components) : writeChanged(stored.value(), wished->components);
    if (error) {
        isStale = true;
        return *error;
    }
    return readBack(uid, revision);
}

OptionalError EdsCalendar::remove(const QString &name, const QByteArray &etag)
{
    if (auto error = checkWritable())
        return error;
    const QByteArray uid = name.toUtf8();
    auto stored = client.ofUid(uid);
    if (!stored)
        return stored.error();
    if (stored->empty()) {
        known.remove(uid);
        return std::nullopt;
    }
    if (const auto same = unchanged(uid, etag); !same)
        return same.error();
    const QByteArray revision = client.revision();
    if (auto error = client.removeAll(uid); error && !CalendarError::is(error, CalendarError::NotFound)) {
        isStale = true;
        return error;
    }
    known.remove(uid);
    settle(revision);
    if (knownRevision == revision)
        knownRevision = client.revision();
    return std::nullopt;
}
