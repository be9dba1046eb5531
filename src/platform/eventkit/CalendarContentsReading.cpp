#include "eventkit/CalendarContents.h"
#include "foundation/Log.h"

#include <algorithm>

// What the backend holds, parsed once for each version of an object.

void CalendarContents::reportOnce(const QString &calendarIdentifier, const CalendarObject &object,
                                  const QString &reason)
{
    const QString key = calendarIdentifier + u'/' + object.name + u'\n' + reason;
    if (reported.contains(key))
        return;
    reported.insert(key);
    Log::line(QStringLiteral("Cannot use %1/%2: %3.").arg(calendarIdentifier, object.name, reason));
}

bool CalendarContents::Unusable::mayHold(const QString &uid) const
{
    if (isUnknown())
        return true;
    QByteArray unfolded = text + '\n';
    unfolded.replace("\r", "").replace("\n ", "").replace("\n\t", "");
    return formerUid == uid || unfolded.contains(':' + uid.toUtf8() + '\n');
}

/// The backend itself reports what it cannot read.
CalendarItemPointer CalendarContents::parsed(const QString &calendarIdentifier, const CalendarObject &object)
{
    if (object.etag.isEmpty())
        return nullptr;
    const auto &former = known[calendarIdentifier].byName;
    const auto same = former.constFind(object.name);
    if (same != former.constEnd() && same->etag == object.etag)
        return same->item;
    const auto item = CalendarItem::fromText(object.text);
    if (item)
        return item.value();
    reportOnce(calendarIdentifier, object, item.error().message);
    return nullptr;
}

CalendarContents::Unusable CalendarContents::unusable(const QString &calendarIdentifier,
                                                      const CalendarObject &object)
{
    const Known &former = known[calendarIdentifier];
    const CalendarItemPointer item = former.byName.value(object.name).item;
    return {object.text, item ? item->uid() : former.unusable.value(object.name).formerUid};
}

Result<std::vector<StoredItem>> CalendarContents::storedItems(const QString &calendarIdentifier)
{
    const QByteArray stampOfNames = storage->stampOfNames(calendarIdentifier);
    auto objects = storage->objects(calendarIdentifier);
    if (!objects)
        return objects.error();
    std::sort(objects->begin(), objects->end(),
              [](const CalendarObject &one, const CalendarObject &other) { return one.name < other.name; });
    Known present{{}, {}, stampOfNames, {}};
    present.byName.reserve(static_cast<qsizetype>(objects->size()));
    present.namesByUid.reserve(static_cast<qsizetype>(objects->size()));
    std::vector<StoredItem> items;
    items.reserve(objects->size());
    for (const CalendarObject &object : objects.value()) {
        const CalendarItemPointer item = parsed(calendarIdentifier, object);
        present.byName.insert(object.name, {object.etag, item});
        if (!item) {
            present.unusable.insert(object.name, unusable(calendarIdentifier, object));
            continue;
        }
        if (present.namesByUid.contains(item->uid())) {
            reportOnce(calendarIdentifier, object, QStringLiteral("its UID is that of another object"));
            continue;
        }
        present.namesByUid.insert(item->uid(), object.name);
        items.push_back({object.name, object.etag, item});
    }
    known[calendarIdentifier] = std::move(present);
    return items;
}

/// Whether a calendar can have no UID that it had not when it was read. Objects that could not be used are
/// looked at again: they may have been mended in their places.
bool CalendarContents::hasSameNames(const QString &calendarIdentifier)
{
    const Known &calendar = known[calendarIdentifier];
    if (calendar.stampOfNames.isEmpty() || calendar.stampOfNames != storage->stampOfNames(calendarIdentifier))
        return false;
    const QStringList unusable = calendar.unusable.keys();
    return std::all_of(unusable.begin(), unusable.end(), [&](const QString &name) {
        const auto object = storage->object(calendarIdentifier, name);
        return object && object.value() && object.value()->etag == calendar.byName.value(name).etag;
    });
}

Result<std::optional<StoredItem>> CalendarContents::storedItem(const QString &calendarIdentifier,
                                                               const QString &uid)
{
    const auto &calendar = known[calendarIdentifier];
    const QString name = calendar.namesByUid.value(uid);
    if (!name.isEmpty()) {
        const auto object = storage->object(calendarIdentifier, name);
        if (!object)
            return object.error();
        const auto item = object.value() ? parsed(calendarIdentifier, *object.value()) : nullptr;
        if (item && item->uid() == uid) {
            known[calendarIdentifier].byName.insert(name, {object.value()->etag, item});
            return std::optional(StoredItem{name, object.value()->etag, item});
        }
    } else if (hasSameNames(calendarIdentifier)) {
        return std::optional<StoredItem>();
    }
    const auto items = storedItems(calendarIdentifier);
    if (!items)
        return items.error();
    for (const StoredItem &stored : items.value())
        if (stored.item->uid() == uid)
            return std::optional(stored);
    return std::optional<StoredItem>();
}
