#include "eventkit/eds/EdsClient.h"

#include "foundation/Log.h"

EdsClient::EdsClient(GlibObject<ESource> calendarSource, Kind calendarKind, EdsPatience &sharedPatience,
                     Listener newsListener)
    : source(std::move(calendarSource))
    , kind(calendarKind)
    , patience(sharedPatience)
    , listener(std::move(newsListener))
{}

EdsClient::~EdsClient()
{
    disconnect();
}

QString EdsClient::sentence(const QString &verb) const
{
    return QStringLiteral("Cannot %1 the calendar \"%2\"")
        .arg(verb, QString::fromUtf8(e_source_get_display_name(source.get())));
}

OptionalError EdsClient::connect()
{
    if (client)
        return std::nullopt;
    if (patience.isExhausted())
        return EdsPatience::error();
    // Any other number lets the call wait for signals of the main loop, which does not run meanwhile.
    constexpr guint32 doNotWait = static_cast<guint32>(-1);
    const auto type = kind == Kind::Events ? E_CAL_CLIENT_SOURCE_TYPE_EVENTS : E_CAL_CLIENT_SOURCE_TYPE_TASKS;
    GlibFailure failure;
    const EdsTimeLimit limit(EdsTimeLimit::forReading);
    client.reset(glibCast<ECalClient>(limit.run([&] {
        return e_cal_client_connect_sync(source.get(), type, doNotWait, limit.cancellable(), failure.out());
    })));
    if (!client) {
        if (limit.isExceeded())
            patience.exhaust();
        return failure.told(sentence(QStringLiteral("open")));
    }
    connectSignal(client.get(), "backend-died", &EdsClient::onDied, this);
    connectSignal(client.get(), "notify::readonly", &EdsClient::onReadOnly, this);
    if (wantsNews)
        watch();
    return std::nullopt;
}

void EdsClient::listen()
{
    wantsNews = true;
    if (client && !view)
        watch();
}

/// Without a view changes by others are seen only when the calendar is asked for.
void EdsClient::watch()
{
    ECalClientView *made = nullptr;
    GlibFailure failure;
    const EdsTimeLimit limit(EdsTimeLimit::forReading);
    const auto makeView = [&] {
        return e_cal_client_get_view_sync(client.get(), "#t", &made, limit.cancellable(), failure.out());
    };
    if (!limit.run(makeView)) {
        Log::line(failure.told(sentence(QStringLiteral("watch"))).message);
        return;
    }
    view.reset(made);
    connectSignal(made, "objects-added", &EdsClient::onChanged, this);
    connectSignal(made, "objects-modified", &EdsClient::onChanged, this);
    connectSignal(made, "objects-removed", &EdsClient::onRemoved, this);
    e_cal_client_view_set_flags(made, E_CAL_CLIENT_VIEW_FLAGS_NONE, nullptr);
    e_cal_client_view_start(made, nullptr);
}

void EdsClient::disconnect()
{
    if (view)
        disconnectSignals(view.get(), this);
    if (client)
        disconnectSignals(client.get(), this);
    view.reset();
    client.reset();
}

/// Of those that the library keeps and the daemon is not asked for.
QByteArray EdsClient::property(const char *name)
{
    if (!client)
        return {};
    char *value = nullptr;
    e_client_get_backend_property_sync(glibCast<EClient>(client.get()), name, &value, nullptr, nullptr);
    const GlibText text(value);
    return text.get();
}

bool EdsClient::isWritable()
{
    if (client)
        wasWritable = !e_client_is_readonly(glibCast<EClient>(client.get()));
    return wasWritable;
}

QStringList EdsClient::addresses()
{
    const QString address = QString::fromUtf8(property(E_CAL_BACKEND_PROPERTY_CAL_EMAIL_ADDRESS)).trimmed();
    return address.isEmpty() ? QStringList() : QStringList(address);
}

QByteArray EdsClient::revision()
{
    return property(CLIENT_BACKEND_PROPERTY_REVISION);
}

/// The library does nothing without somebody who takes the answer. What comes of it is told by the calendar.
static void refreshEnded(GObject *client, GAsyncResult *result, gpointer)
{
    GlibFailure failure;
    e_client_refresh_finish(glibCast<EClient>(client), result, failure.out());
}

void EdsClient::refresh()
{
    if (client && e_client_check_refresh_supported(glibCast<EClient>(client.get())))
        e_client_refresh(glibCast<EClient>(client.get()), nullptr, &refreshEnded, nullptr);
}

void EdsClient::onChanged(ECalClientView *, const GSList *components, gpointer self)
{
    EdsComponents changed;
    for (const GSList *entry = components; entry; entry = entry->next)
        changed.push_back(EdsComponent::of(static_cast<ICalComponent *>(entry->data)));
    static_cast<EdsClient *>(self)->listener.changed(changed);
}

void EdsClient::onRemoved(ECalClientView *, const GSList *identifiers, gpointer self)
{
    for (const GSList *entry = identifiers; entry; entry = entry->next)
        static_cast<EdsClient *>(self)->listener.removed(
            e_cal_component_id_get_uid(static_cast<ECalComponentId *>(entry->data)));
}

void EdsClient::onDied(EClient *, gpointer self)
{
    auto &client = *static_cast<EdsClient *>(self);
    client.disconnect();
    client.listener.died();
}

void EdsClient::onReadOnly(GObject *, GParamSpec *, gpointer self)
{
    static_cast<EdsClient *>(self)->listener.accessMayHaveChanged();
}
