#pragma once

#include "eventkit/eds/EdsGlib.h"

#include <QSet>

#include <chrono>
#include <vector>

/// What is asked of the daemon that knows the calendars directly, because the library answers such questions
/// out of what it was told before, also when the daemon has gone. Each question ends after a few seconds.
class EdsBus
{
public:
    /// The identifiers of all sources that the daemon has now; it is started if it does not run. Storage if
    /// that cannot be done, or there is no such daemon.
    Result<QSet<QString>> sources();
    /// Whether a part of the daemon runs and yet answers no ping: one that was stopped is known at once, one
    /// that only waits for its turn on a busy machine is given more than a second. One that does not run is
    /// not silent: it is started by the next call.
    bool isDaemonSilent();
    /// Whether the desktop's service runs that rings the alarms of the daemon's calendars.
    bool isAlarmServiceRunning();

private:
    OptionalError connect();
    GlibVariant call(const QByteArray &service, const char *path, const char *interfaceName,
                     const char *method, const char *replyType, GlibFailure &failure,
                     GVariant *arguments = nullptr);
    /// The names on the bus that begin with a text, or all that it could start.
    std::vector<QByteArray> names(const char *method, const QByteArray &beginning);
    QByteArray findRegistry();
    bool answersPing(const QByteArray &name, std::chrono::milliseconds atMost);
    bool isStopped(const QByteArray &name);

    GlibObject<GDBusConnection> connection;
    QByteArray registry;
};
