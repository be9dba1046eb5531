#pragma once

#include <QLibrary>
#include <QString>

#include <memory>

class CalendarBackend;

/// The calendars that the desktop keeps by a daemon. What is needed to talk to it lies in a library of its
/// own, which is loaded only when it is asked for: a program that does without starts without it.
class DesktopCalendars
{
public:
    /// The path of the library, without its suffix.
    explicit DesktopCalendars(const QString &libraryPath);

    /// Whether the library is there and the daemon answers, which is started for it.
    bool isAvailable();
    /// The backend, whether or not the daemon answers now; null, with a line in the log, without the library.
    std::shared_ptr<CalendarBackend> backend();

private:
    QLibrary library;
};
