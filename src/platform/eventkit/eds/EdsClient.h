#pragma once

#include "eventkit/eds/EdsComponent.h"
#include "eventkit/eds/EdsTimeLimit.h"

#include <QStringList>

#include <functional>

/// One calendar or task list at the daemon. Connects by itself when it is asked something, and again after
/// the daemon has died; each call ends within the times of `EdsTimeLimit`. Errors are those of
/// `CalendarError`.
class EdsClient
{
public:
    enum class Kind { Events, Tasks };
    /// What is told on the main loop. The first two after anybody has changed objects, once `listen` was
    /// called.
    struct Listener
    {
        std::function<void(const EdsComponents &components)> changed;
        std::function<void(const QByteArray &uid)> removed;
        /// The connection is lost.
        std::function<void()> died;
        /// Whether the calendar may be written to is perhaps no longer what it was. While a calendar is
        /// opened it changes to and fro.
        std::function<void()> accessMayHaveChanged;
    };

    EdsClient(GlibObject<ESource> calendarSource, Kind calendarKind, EdsPatience &sharedPatience,
              Listener newsListener);
    ~EdsClient();
    EdsClient(const EdsClient &) = delete;
    EdsClient &operator=(const EdsClient &) = delete;

    OptionalError connect();
    bool isConnected() const { return client != nullptr; }
    /// Lets changes of objects be told from now on, also after the connection was lost and made again.
    void listen();
    bool isListening() const { return view != nullptr; }
    /// As it was when the calendar was last connected to; false before.
    bool isWritable();
    /// Under which the owner is invited, where the account knows.
    QStringList addresses();
    /// Differs after each change; empty where the calendar keeps none.
    QByteArray revision();
    void refresh();

    /// All components of the calendar.
    Result<EdsComponents> all();
    /// Those of a UID; none if there is no such object.
    Result<EdsComponents> ofUid(const QByteArray &uid);
    /// The VTIMEZONE of a name that components of this calendar use; empty if the daemon has none.
    Result<QByteArray> zone(const QByteArray &tzid);

    OptionalError addZone(const QByteArray &text);
    /// Adds an object and answers its UID. Conflict if there is one with that UID.
    Result<QByteArray> create(const EdsComponent &component);
    /// Puts the event itself in place of the former one; its edited occurrences stay.
    OptionalError replaceMaster(const EdsComponent &component);
    /// Adds or replaces edited occurrences.
    OptionalError replaceDetached(const EdsComponents &components);
    /// Whether `removeDetached` does no harm to other occurrences here.
    bool canRemoveDetached() const;
    /// Puts the occurrence back that was edited.
    OptionalError removeDetached(const EdsComponent &component);
    /// Removes all of a UID. NotFound if there is nothing.
    OptionalError removeAll(const QByteArray &uid);

private:
    using Call = std::function<bool(ECalClient *client, GCancellable *cancellable, GError **error)>;

    void watch();
    void disconnect();
    OptionalError read(const Call &call);
    OptionalError write(const Call &call);
    OptionalError modify(const EdsComponents &components, ECalObjModType type);
    QByteArray property(const char *name);
    QString sentence(const QString &verb) const;

    static void onChanged(ECalClientView *view, const GSList *components, gpointer self);
    static void onRemoved(ECalClientView *view, const GSList *identifiers, gpointer self);
    static void onDied(EClient *client, gpointer self);
    static void onReadOnly(GObject *client, GParamSpec *property, gpointer self);

    GlibObject<ESource> source;
    Kind kind;
    EdsPatience &patience;
    Listener listener;
    GlibObject<ECalClient> client;
    GlibObject<ECalClientView> view;
    bool wantsNews = false;
    bool wasWritable = false;
};
