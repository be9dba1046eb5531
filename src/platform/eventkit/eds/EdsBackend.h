#pragma once

#include "eventkit/CalendarBackend.h"

#include <QTimer>

#include <chrono>
#include <map>
#include <memory>

class EdsBus;
class EdsCalendar;
class EdsPatience;
class EdsRegistry;

/// The calendars and task lists that the desktop has anyway, kept by evolution-data-server. It is spoken to
/// over D-Bus and started where it does not run; when it dies it is started again.
///
/// Signals of the daemon need an event loop of GLib, which is Qt's own unless that is switched off. Calls end
/// within seconds, or half a minute for those that have to reach a server; a daemon that did not answer is
/// left alone for a while.
class EdsBackend : public CalendarBackend
{
public:
    /// Whether there is such a daemon and it answers; starts it.
    static bool isAvailable();

    EdsBackend();
    ~EdsBackend() override;

    /// The daemon itself rings nothing; a service of the desktop does, which is not started everywhere.
    bool ringsAlarms() const override;
    Result<std::vector<EKSource>> sources() override;
    Result<std::vector<EKCalendar>> calendars() override;
    std::optional<QString> defaultCalendar(EKEntityType entityType) override;
    Result<std::vector<CalendarObject>> objects(const QString &calendarIdentifier) override;
    Result<std::optional<CalendarObject>> object(const QString &calendarIdentifier,
                                                 const QString &name) override;
    QByteArray stampOfNames(const QString &calendarIdentifier) override;
    Result<CalendarObject> put(const QString &calendarIdentifier, const CalendarObject &object,
                               const QString &uid) override;
    OptionalError remove(const QString &calendarIdentifier, const QString &name,
                         const QByteArray &etag) override;
    /// A calendar for events, or for reminders if it is for nothing else. Only the account of this machine
    /// takes new ones; others answer ReadOnly.
    Result<EKCalendar> createCalendar(const EKCalendar &calendar) override;
    OptionalError updateCalendar(const EKCalendar &calendar) override;
    OptionalError removeCalendar(const QString &calendarIdentifier) override;
    void refresh() override;
    void setChangedCallback(std::function<void()> callback) override;
    void setWaitListener(std::function<void(std::chrono::milliseconds)> listener) override;

private:
    /// Null for an unknown calendar.
    Result<EdsCalendar *> calendar(const QString &identifier);
    Result<EdsCalendar *> writableCalendar(const QString &identifier);
    EdsCalendar *openCalendar(const QString &identifier);
    EKCalendar completed(EKCalendar calendar);
    void checkSoon();
    void check();

    std::unique_ptr<EdsBus> bus;
    std::unique_ptr<EdsPatience> patience;
    std::unique_ptr<EdsRegistry> registry;
    std::map<QString, std::unique_ptr<EdsCalendar>> calendarsByIdentifier;
    std::function<void()> changed;
    QTimer delay;
    std::chrono::milliseconds nextAttempt;
};
