#include "shell/SingleInstance.h"

#include "foundation/ApplicationPaths.h"
#include "shell/ApplicationBusObject.h"

#include <QCryptographicHash>
#include <QDBusConnection>
#include <QDir>
#include <QLocalServer>
#include <QLocalSocket>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

using namespace Qt::Literals::StringLiterals;

constexpr int patience = 2000;

/// A folder for the files of a running program. Socket paths must be short, so the data folder itself will
/// not do.
static QString runtimeFolder()
{
    const QString runtime = qEnvironmentVariable("XDG_RUNTIME_DIR");
    return runtime.isEmpty() ? QDir::tempPath() : runtime;
}

static QString fileFor(const QString &ending)
{
    const QByteArray data =
        QCryptographicHash::hash(ApplicationPaths::dataFolder().toUtf8(), QCryptographicHash::Sha1);
    const QString user = QString::fromUtf8(data.toHex().left(16));
    return runtimeFolder() + u"/morvane-"_s + user + ending;
}

SingleInstance::SingleInstance(QObject *parent)
    : QObject(parent)
    , socketPath(fileFor(u".socket"_s))
    , lockFile(::open(QFile::encodeName(fileFor(u".lock"_s)).constData(), O_RDWR | O_CREAT | O_CLOEXEC, 0600))
{
    // Where no lock can be had at all, running is better than not running.
    first = lockFile < 0 || ::flock(lockFile, LOCK_EX | LOCK_NB) == 0;
    if (first)
        listen();
}

SingleInstance::~SingleInstance()
{
    if (lockFile >= 0)
        ::close(lockFile);
}

void SingleInstance::listen()
{
    server = new QLocalServer(this);
    server->setSocketOptions(QLocalServer::UserAccessOption);
    QLocalServer::removeServer(socketPath);
    server->listen(socketPath);
    connect(server, &QLocalServer::newConnection, this, [this] {
        server->nextPendingConnection()->deleteLater();
        Q_EMIT activated();
    });
}

bool SingleInstance::activateOther() const
{
    QLocalSocket socket;
    socket.connectToServer(socketPath);
    return socket.waitForConnected(patience);
}

void SingleInstance::registerOnBus()
{
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected())
        return;
    auto *object = new ApplicationBusObject(this);
    connect(object, &ApplicationBusObject::activated, this, &SingleInstance::activated);
    connect(object, &ApplicationBusObject::actionActivated, this, &SingleInstance::actionActivated);
    // The object first, so that nobody who sees the name finds nothing behind it.
    bus.registerObject(ApplicationBusObject::path(), object, QDBusConnection::ExportScriptableSlots);
    bus.registerService(ApplicationBusObject::service());
}
