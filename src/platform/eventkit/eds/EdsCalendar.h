#pragma once

#include "eventkit/CalendarBackend.h"
#include "eventkit/eds/EdsClient.h"
#include "eventkit/eds/EdsObjectText.h"

#include <QHash>

/// The objects of one calendar of the daemon. What was read is kept; asked again, the daemon is only asked
/// whether anything has changed. The name of an object is its UID.
class EdsCalendar
{
public:
    /// `mayHaveChanged` is called on the main loop when `takeNews` should be asked, `died` when it should be
    /// asked after a while.
    EdsCalendar(GlibObject<ESource> source, EdsClient::Kind kind, EdsPatience &patience,
                std::function<void()> mayHaveChanged, std::function<void()> died);

    OptionalError connect();
    /// Lets `mayHaveChanged` be called for changes of objects, too.
    void listen() { client.listen(); }
    bool isWritable() { return client.isWritable(); }
    QStringList addresses() { return client.addresses(); }
    void refresh() { client.refresh(); }

    Result<std::vector<CalendarObject>> objects();
    Result<std::optional<CalendarObject>> object(const QString &name);
    QByteArray stampOfNames();
    Result<CalendarObject> put(const CalendarObject &object);
    OptionalError remove(const QString &name, const QByteArray &etag);

    enum class News { None, Changed, Unreachable };
    /// Whether somebody else has changed something since this was last asked.
    News takeNews();

private:
    struct Known
    {
        EdsComponents components;
        CalendarObject object;
    };

    bool isCurrent();
    OptionalError load();
    Result<Known> described(EdsComponents components);
    Result<QByteArray> zoneText(const QByteArray &tzid);
    void hear(const EdsComponents &components);
    void hearRemoved(const QByteArray &uid);
    void noteNews();

    OptionalError checkWritable();
    /// What is stored under a UID, if that is what the caller last saw.
    Result<EdsComponents> unchanged(const QByteArray &uid, const QByteArray &etag);
    OptionalError writeNew(const EdsComponents &components);
    OptionalError writeChanged(const EdsComponents &stored, const EdsComponents &wished);
    OptionalError rewrite(const EdsComponents &stored, const EdsComponents &wished);
    Result<CalendarObject> readBack(const QByteArray &uid, const QByteArray &revisionBefore);
    void settle(const QByteArray &revisionBefore);
    void note(const QByteArray &uid, EdsComponents components);
    void noteChanged(const QByteArray &uid, EdsComponents components);

    EdsClient client;
    std::function<void()> tellChange;
    QHash<QByteArray, Known> known;
    QHash<QByteArray, QByteArray> zones;
    QByteArray knownRevision;
    /// How often all objects were read.
    int loads = 0;
    std::optional<bool> toldWritable;
    bool isLoaded = false;
    bool isStale = false;
    bool hasNews = false;
};
