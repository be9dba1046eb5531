#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QStringList>

#include <optional>

/// The calendar daemon on the bus of this test run, as another program sees it: without the library that the
/// backend uses.
class DesktopDaemon
{
public:
    /// The parts of it that run on their own.
    enum class Part { Sources, Calendars };

    /// The process of a part; absent if it does not run.
    static std::optional<int> process(Part part);
    /// Sends a signal to the part, which must run.
    static void signal(Part part, int number);
    /// Kills it and waits until it has left the bus.
    static void kill(Part part);
    /// Kills all parts that run.
    static void killAll();

    /// Makes a source of the text of its file.
    static void createSource(const QString &uid, const QString &text);
    static void removeSource(const QString &uid);
    /// Gives a source another text. It must be one that may be written.
    static void writeSource(const QString &uid, const QString &text);
    /// The identifiers of all sources.
    static QStringList sources();

private:
    static QString name(Part part);
    static QString pathOf(const QString &uid);
    static QStringList runningNames();
};
