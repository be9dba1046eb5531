#include "DesktopDaemon.h"

#include "Waiting.h"

#include <QDBusArgument>
#include <QDBusMetaType>
#include <QDBusObjectPath>
#include <QDBusReply>
#include <QDirIterator>
#include <QFile>

#include <gtest/gtest.h>

#include <csignal>
#include <cstdlib>

using Properties = QMap<QString, QVariantMap>;
using Objects = QMap<QDBusObjectPath, Properties>;
using Texts = QMap<QString, QString>;

namespace {

const QString namePrefix = QStringLiteral("org.gnome.evolution.dataserver.");
const QString managerPath = QStringLiteral("/org/gnome/evolution/dataserver/SourceManager");

QDBusConnection bus()
{
    return QDBusConnection::sessionBus();
}

QDBusMessage call(const QString &service, const QString &path, const QString &interfaceName,
                  const QString &method, const QVariantList &arguments = {})
{
    QDBusMessage message = QDBusMessage::createMethodCall(service, path, interfaceName, method);
    message.setArguments(arguments);
    return bus().call(message);
}

QDBusMessage callBus(const QString &method, const QVariantList &arguments = {})
{
    const QString service = QStringLiteral("org.freedesktop.DBus");
    return call(service, QStringLiteral("/org/freedesktop/DBus"), service, method, arguments);
}

void expectDone(const QDBusMessage &reply)
{
    EXPECT_EQ(reply.type(), QDBusMessage::ReplyMessage) << qPrintable(reply.errorMessage());
}

/// The daemon is started by the bus, with the folders of this run, and does not outlive it.
class PrivateDaemon : public testing::Environment
{
    void SetUp() override
    {
        qDBusRegisterMetaType<QMap<QString, QString>>();
        qDBusRegisterMetaType<Properties>();
        qDBusRegisterMetaType<Objects>();
        if (qgetenv("DBUS_SESSION_BUS_ADDRESS").contains("/run/user/")) {
            std::fprintf(stderr, "These tests need a bus of their own: dbus-run-session -- <this test>\n");
            std::_Exit(1);
        }
        Texts environment = {{QStringLiteral("GSETTINGS_BACKEND"), QStringLiteral("memory")}};
        for (const char *variable : {"HOME", "XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_CACHE_HOME",
                                     "XDG_STATE_HOME", "XDG_RUNTIME_DIR", "TZ", "LC_ALL"})
            environment.insert(QString::fromLatin1(variable), qEnvironmentVariable(variable));
        expectDone(
            callBus(QStringLiteral("UpdateActivationEnvironment"), {QVariant::fromValue(environment)}));
    }

    void TearDown() override { DesktopDaemon::killAll(); }
};

const auto *const privateDaemon = testing::AddGlobalTestEnvironment(new PrivateDaemon);

Objects managedObjects(const QString &service)
{
    const QDBusReply<Objects> reply =
        call(service, managerPath, QStringLiteral("org.freedesktop.DBus.ObjectManager"),
             QStringLiteral("GetManagedObjects"));
    EXPECT_TRUE(reply.isValid()) << qPrintable(reply.error().message());
    return reply.value();
}

bool areAllThreadsStopped(int process)
{
    QDirIterator threads(QStringLiteral("/proc/%1/task").arg(process), QDir::Dirs | QDir::NoDotAndDotDot);
    while (threads.hasNext()) {
        QFile status(threads.next() + QStringLiteral("/stat"));
        if (status.open(QIODevice::ReadOnly) && !status.readAll().contains(") T "))
            return false;
    }
    return true;
}

QString uidOf(const Properties &interfaces)
{
    return interfaces.value(namePrefix + QStringLiteral("Source")).value(QStringLiteral("UID")).toString();
}

} // namespace

QStringList DesktopDaemon::runningNames()
{
    const QDBusReply<QStringList> names = callBus(QStringLiteral("ListNames"));
    return names.value().filter(namePrefix);
}

/// Of the part that runs, or else could run.
QString DesktopDaemon::name(Part part)
{
    const QString wanted =
        namePrefix + (part == Part::Sources ? QStringLiteral("Sources") : QStringLiteral("Calendar"));
    const QDBusReply<QStringList> activatable = callBus(QStringLiteral("ListActivatableNames"));
    const QStringList names = activatable.value().filter(wanted);
    EXPECT_FALSE(names.isEmpty()) << qPrintable(wanted) << " is not installed";
    return names.value(0);
}

std::optional<int> DesktopDaemon::process(Part part)
{
    const QDBusReply<uint> reply = callBus(QStringLiteral("GetConnectionUnixProcessID"), {name(part)});
    return reply.isValid() ? std::optional(static_cast<int>(reply.value())) : std::nullopt;
}

void DesktopDaemon::signal(Part part, int number)
{
    const auto running = process(part);
    ASSERT_TRUE(running);
    EXPECT_EQ(::kill(*running, number), 0);
    // A thread that is just running on a busy machine may answer some calls more before it stands.
    EXPECT_TRUE(number != SIGSTOP || waitUntil([&] { return areAllThreadsStopped(*running); }));
}

void DesktopDaemon::kill(Part part)
{
    signal(part, SIGKILL);
    waitUntil([&] { return !process(part); });
}

void DesktopDaemon::killAll()
{
    for (const QString &running : runningNames()) {
        const QDBusReply<uint> reply = callBus(QStringLiteral("GetConnectionUnixProcessID"), {running});
        if (reply.isValid())
            ::kill(static_cast<int>(reply.value()), SIGKILL);
    }
}

QString DesktopDaemon::pathOf(const QString &uid)
{
    const Objects objects = managedObjects(name(Part::Sources));
    for (auto object = objects.begin(); object != objects.end(); ++object)
        if (uidOf(object.value()) == uid)
            return object.key().path();
    ADD_FAILURE() << "There is no source " << qPrintable(uid);
    return {};
}

QStringList DesktopDaemon::sources()
{
    QStringList found;
    for (const Properties &interfaces : managedObjects(name(Part::Sources)))
        if (const QString uid = uidOf(interfaces); !uid.isEmpty())
            found.append(uid);
    return found;
}

void DesktopDaemon::createSource(const QString &uid, const QString &text)
{
    expectDone(call(name(Part::Sources), managerPath, namePrefix + QStringLiteral("SourceManager"),
                    QStringLiteral("CreateSources"), {QVariant::fromValue(Texts{{uid, text}})}));
}

void DesktopDaemon::removeSource(const QString &uid)
{
    expectDone(call(name(Part::Sources), pathOf(uid), namePrefix + QStringLiteral("Source.Removable"),
                    QStringLiteral("Remove")));
}

void DesktopDaemon::writeSource(const QString &uid, const QString &text)
{
    expectDone(call(name(Part::Sources), pathOf(uid), namePrefix + QStringLiteral("Source.Writable"),
                    QStringLiteral("Write"), {text}));
}
