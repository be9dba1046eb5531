#pragma once

#include "eventkit/EKCalendar.h"
#include "eventkit/eds/EdsBus.h"
#include "eventkit/eds/EdsTimeLimit.h"

#include <QHash>
#include <QSet>

#include <functional>
#include <vector>

/// The accounts and calendars that the daemon knows. Errors are those of `CalendarError`; a daemon that
/// cannot be reached is Storage.
class EdsRegistry
{
public:
    /// `mayHaveChanged` is called on the main loop when `takeNews` should be asked.
    EdsRegistry(EdsPatience &sharedPatience, std::function<void()> mayHaveChanged);
    ~EdsRegistry();
    EdsRegistry(const EdsRegistry &) = delete;
    EdsRegistry &operator=(const EdsRegistry &) = delete;

    /// Connects if that is not done. To be called before each of the following.
    OptionalError open();
    /// The same, and asks the daemon what it has now; the library is told only later, on the main loop.
    OptionalError update();

    std::vector<EKSource> sources() const;
    /// By account and title; see `edsCalendarFrom`.
    std::vector<EKCalendar> calendars() const;
    /// The source of a calendar or task list that is in use; null if there is none of this identifier.
    GlibObject<ESource> find(const QString &identifier) const;
    /// The identifier of the calendar that the user has chosen for new entries; null without one.
    QString defaultCalendar(EKEntityType entityType) const;
    QStringList mailAddresses() const;

    /// Answers the identifier.
    Result<QString> create(const EKCalendar &calendar);
    OptionalError change(const EKCalendar &calendar);
    OptionalError remove(const QString &identifier);

    /// Asks accounts for calendars that were added at the server.
    void refresh();
    /// Whether somebody else has changed accounts or calendars since this was last asked.
    bool takeNews();

private:
    OptionalError connect();
    bool isComplete() const;
    void listen();
    std::vector<GlibObject<ESource>> list(const char *extension) const;
    std::vector<GlibObject<ESource>> calendarSources() const;
    QHash<QString, QByteArray> fingerprints() const;
    void forgive(ESource *source);

    static void onSource(ESourceRegistry *registry, ESource *source, gpointer self);

    EdsPatience &patience;
    std::function<void()> tellChange;
    EdsBus bus;
    GlibObject<ESourceRegistry> registry;
    QHash<QString, QByteArray> known;
    /// The identifiers of all sources that the daemon had when it was last asked.
    QSet<QString> present;
};
