#include "shell/SingleInstance.h"

#include "foundation/ApplicationPaths.h"
#include "shell/ApplicationBusObject.h"

#include <QCryptographicHash>
#include <QDBusConnection>
#include <QDir>
#include <QElapsedTimer>
#include <QLocalServer>
#include <QLocalSocket>
#include <QThread>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

using namespace Qt::Literals::StringLiterals;

/// Milliseconds. One that is busy for longer looks at who has asked when it is free.
constexpr int patience = 2000;
/// Until one that is ending has ended.
constexpr int patienceForEnd = 5000;

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
    tryToBeFirst();
}

void SingleInstance::tryToBeFirst()
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
        QLocalSocket *other = server->nextPendingConnection();
        const auto received = std::make_shared<QByteArray>();
        const auto take = [received, other] {
            if (other->bytesAvailable() > 0)
                received->append(other->readAll());
        };
        connect(other, &QLocalSocket::readyRead, this, take);
        connect(other, &QLocalSocket::disconnected, this, [this, other, received, take] {
            take();
            other->deleteLater();
            // Paths can hold everything but this byte.
            const QStringList files = QString::fromUtf8(*received).split(u'\0', Qt::SkipEmptyParts);
            if (!files.isEmpty())
                Q_EMIT filesWanted(files);
        });
        // Who has waited in vain is gone, and an answer to them would drop what they have said.
        other->waitForReadyRead(1);
        take();
        if (other->state() == QLocalSocket::ConnectedState) {
            other->write("1");
            other->flush();
        }
        Q_EMIT activated();
    });
}

/// One that was killed, or is closing, still takes the connection, and shows no window any more.
bool SingleInstance::activateOther(const QStringList &files)
{
    constexpr unsigned pause = 50;
    QElapsedTimer timer;
    timer.start();
    do {
        QLocalSocket socket;
        socket.connectToServer(socketPath);
        if (socket.waitForConnected(patience)) {
            socket.write(files.join(u'\0').toUtf8());
            socket.flush();
            const bool isAnswered = socket.waitForReadyRead(patience);
            if (isAnswered || socket.state() == QLocalSocket::ConnectedState)
                return true;
        }
        tryToBeFirst();
        if (!first)
            QThread::msleep(pause);
    } while (!first && !timer.hasExpired(patienceForEnd));
    return false;
}

void SingleInstance::registerOnBus()
{
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected())
        return;
    auto *object = new ApplicationBusObject(this);
    connect(object, &ApplicationBusObject::activated, this, &SingleInstance::activated);
    connect(object, &ApplicationBusObject::filesWanted, this, &SingleInstance::filesWanted);
    connect(object, &ApplicationBusObject::actionActivated, this, &SingleInstance::actionActivated);
    // The object first, so that nobody who sees the name finds nothing behind it.
    bus.registerObject(ApplicationBusObject::path(), object, QDBusConnection::ExportScriptableSlots);
    bus.registerService(ApplicationBusObject::service());
}
