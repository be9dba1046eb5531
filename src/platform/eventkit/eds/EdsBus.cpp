#include "eventkit/eds/EdsBus.h"

#include "eventkit/eds/EdsTimeLimit.h"

#include <QFile>

static const QString reaching = QStringLiteral("Cannot reach the calendar service");

static Error unreachable(const QString &reason)
{
    return CalendarError::make(CalendarError::Storage, reaching + QStringLiteral(": ") + reason);
}

OptionalError EdsBus::connect()
{
    if (!connection) {
        GlibFailure failure;
        const EdsTimeLimit limit(EdsTimeLimit::forReading);
        connection.reset(limit.run(
            [&] { return g_bus_get_sync(G_BUS_TYPE_SESSION, limit.cancellable(), failure.out()); }));
        if (!connection)
            return failure.told(reaching);
        // Else the program would end with the bus.
        g_dbus_connection_set_exit_on_close(connection.get(), FALSE);
    }
    if (g_dbus_connection_is_closed(connection.get())) {
        connection.reset();
        return unreachable(QStringLiteral("the session bus has gone"));
    }
    return std::nullopt;
}

GlibVariant EdsBus::call(const QByteArray &service, const char *path, const char *interfaceName,
                         const char *method, const char *replyType, GlibFailure &failure, GVariant *arguments)
{
    constexpr int atMost = static_cast<int>(EdsTimeLimit::forReading.count());
    const EdsTimeLimit limit(EdsTimeLimit::forReading);
    const std::unique_ptr<GVariantType, void (*)(GVariantType *)> type(g_variant_type_new(replyType),
                                                                       g_variant_type_free);
    return GlibVariant(limit.run([&] {
        return g_dbus_connection_call_sync(connection.get(), service.constData(), path, interfaceName, method,
                                           arguments, type.get(), G_DBUS_CALL_FLAGS_NONE, atMost, nullptr,
                                           failure.out());
    }));
}

std::vector<QByteArray> EdsBus::names(const char *method, const QByteArray &beginning)
{
    std::vector<QByteArray> found;
    GlibFailure failure;
    const GlibVariant reply = call("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
                                   method, "(as)", failure);
    if (!reply)
        return found;
    const GlibVariant all(g_variant_get_child_value(reply.get(), 0));
    for (gsize index = 0; index < g_variant_n_children(all.get()); ++index) {
        const GlibVariant name(g_variant_get_child_value(all.get(), index));
        const QByteArray text = g_variant_get_string(name.get(), nullptr);
        if (text.startsWith(beginning))
            found.push_back(text);
    }
    return found;
}

/// The names end with a number that changes with the version of the daemon.
static const QByteArray registryName = "org.gnome.evolution.dataserver.Sources";
static const QByteArray calendarsName = "org.gnome.evolution.dataserver.Calendar";

QByteArray EdsBus::findRegistry()
{
    for (const char *method : {"ListNames", "ListActivatableNames"}) {
        if (const auto found = names(method, registryName); !found.empty())
            return found.front();
    }
    return {};
}

bool EdsBus::answersPing(const QByteArray &name, std::chrono::milliseconds atMost)
{
    GlibFailure failure;
    const EdsTimeLimit limit(EdsTimeLimit::forReading);
    const GlibVariant reply(limit.run([&] {
        return g_dbus_connection_call_sync(
            connection.get(), name.constData(), "/", "org.freedesktop.DBus.Peer", "Ping", nullptr, nullptr,
            G_DBUS_CALL_FLAGS_NO_AUTO_START, static_cast<int>(atMost.count()), nullptr, failure.out());
    }));
    return reply || !failure.is(G_IO_ERROR, G_IO_ERROR_TIMED_OUT);
}

/// Whether the process of a name was stopped by a signal or a debugger; false if that cannot be known.
bool EdsBus::isStopped(const QByteArray &name)
{
    GlibFailure failure;
    const GlibVariant reply =
        call("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
             "GetConnectionUnixProcessID", "(u)", failure, g_variant_new("(s)", name.constData()));
    if (!reply)
        return false;
    guint32 process = 0;
    g_variant_get(reply.get(), "(u)", &process);
    QFile status(QStringLiteral("/proc/%1/stat").arg(process));
    if (!status.open(QIODevice::ReadOnly))
        return false;
    // The name of the program stands in parentheses before the state, and may hold some itself.
    const QByteArray text = status.readAll();
    const QByteArray state = text.mid(text.lastIndexOf(')') + 2, 1);
    return state == "T" || state == "t";
}

bool EdsBus::isDaemonSilent()
{
    // The parts are asked one after the other.
    constexpr std::chrono::milliseconds atOnce{80};
    // A machine that is busy may take longer to give a living process its turn.
    constexpr std::chrono::milliseconds whenBusy{1'500};
    if (connect())
        return false;
    for (const QByteArray &beginning : {registryName, calendarsName}) {
        for (const QByteArray &name : names("ListNames", beginning)) {
            if (!answersPing(name, atOnce) && (isStopped(name) || !answersPing(name, whenBusy)))
                return true;
        }
    }
    return false;
}

/// Of what stands at one path of the daemon, by interface and property; empty if that is no source.
static QString uidOfSource(GVariant *interfaces)
{
    const GlibVariant source(
        g_variant_lookup_value(interfaces, "org.gnome.evolution.dataserver.Source", nullptr));
    const GlibVariant uid(source ? g_variant_lookup_value(source.get(), "UID", nullptr) : nullptr);
    return uid ? QString::fromUtf8(g_variant_get_string(uid.get(), nullptr)) : QString();
}

Result<QSet<QString>> EdsBus::sources()
{
    if (auto error = connect())
        return *error;
    if (registry.isEmpty())
        registry = findRegistry();
    if (registry.isEmpty())
        return unreachable(QStringLiteral("there is none"));
    GlibFailure failure;
    const GlibVariant reply =
        call(registry, "/org/gnome/evolution/dataserver/SourceManager", "org.freedesktop.DBus.ObjectManager",
             "GetManagedObjects", "(a{oa{sa{sv}}})", failure);
    if (!reply)
        return failure.told(reaching);
    QSet<QString> found;
    const GlibVariant objects(g_variant_get_child_value(reply.get(), 0));
    for (gsize index = 0; index < g_variant_n_children(objects.get()); ++index) {
        const GlibVariant object(g_variant_get_child_value(objects.get(), index));
        const GlibVariant interfaces(g_variant_get_child_value(object.get(), 1));
        if (const QString uid = uidOfSource(interfaces.get()); !uid.isEmpty())
            found.insert(uid);
    }
    // A daemon that works has some of its own.
    return found.isEmpty() ? Result<QSet<QString>>(unreachable(QStringLiteral("it has nothing"))) : found;
}

bool EdsBus::isAlarmServiceRunning()
{
    if (connect())
        return false;
    GlibFailure failure;
    const GlibVariant reply =
        call("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "NameHasOwner", "(b)",
             failure, g_variant_new("(s)", "org.gnome.Evolution-alarm-notify"));
    gboolean isRunning = FALSE;
    if (reply)
        g_variant_get(reply.get(), "(b)", &isRunning);
    return isRunning == TRUE;
}
