#include "eventkit/eds/EdsBackend.h"

#include "eventkit/eds/EdsCalendar.h"
#include "eventkit/eds/EdsRegistry.h"
#include "eventkit/eds/EdsSources.h"

using Milliseconds = std::chrono::milliseconds;

/// Changes that come close together are told once.
static constexpr Milliseconds quiet{200};
static constexpr Milliseconds firstAttempt{1'000};
static constexpr Milliseconds longestPause{60'000};

static Error hasGone(const QString &identifier)
{
    return CalendarError::make(CalendarError::NotFound,
                               QStringLiteral("The calendar %1 has gone.").arg(identifier));
}

bool EdsBackend::isAvailable()
{
    EdsBus bus;
    EdsPatience patience(bus);
    return !EdsRegistry(patience, [] {}).open();
}

EdsBackend::EdsBackend()
    : bus(std::make_unique<EdsBus>())
    , patience(std::make_unique<EdsPatience>(*bus))
    , registry(std::make_unique<EdsRegistry>(*patience, [this] { checkSoon(); }))
    , nextAttempt(firstAttempt)
{
    delay.setSingleShot(true);
    QObject::connect(&delay, &QTimer::timeout, &delay, [this] { check(); });
}

EdsBackend::~EdsBackend() = default;

bool EdsBackend::ringsAlarms() const
{
    return bus->isAlarmServiceRunning();
}

void EdsBackend::checkSoon()
{
    delay.start(quiet);
}

EdsCalendar *EdsBackend::openCalendar(const QString &identifier)
{
    auto source = registry->find(identifier);
    if (!source) {
        calendarsByIdentifier.erase(identifier);
        return nullptr;
    }
    auto &entry = calendarsByIdentifier[identifier];
    if (!entry) {
        const auto kind = edsIsTaskList(source.get()) ? EdsClient::Kind::Tasks : EdsClient::Kind::Events;
        entry = std::make_unique<EdsCalendar>(
            std::move(source), kind, *patience, [this] { checkSoon(); },
            [this] { delay.start(firstAttempt); });
        if (changed)
            entry->listen();
    }
    return entry.get();
}

Result<EdsCalendar *> EdsBackend::calendar(const QString &identifier)
{
    if (auto error = registry->open())
        return *error;
    if (EdsCalendar *found = openCalendar(identifier))
        return found;
    return hasGone(identifier);
}

/// The daemon says yes to changes of a calendar that was removed, and forgets them.
Result<EdsCalendar *> EdsBackend::writableCalendar(const QString &identifier)
{
    if (auto error = registry->update())
        return *error;
    return calendar(identifier);
}

Result<std::vector<EKSource>> EdsBackend::sources()
{
    if (auto error = registry->update())
        return *error;
    return registry->sources();
}

/// Adds what only the calendar itself tells.
EKCalendar EdsBackend::completed(EKCalendar calendar)
{
    EdsCalendar *found = openCalendar(calendar.calendarIdentifier);
    if (!found)
        return calendar;
    // One that cannot be connected to is as it was last known; an error is told when it is read.
    static_cast<void>(found->connect());
    calendar.allowsContentModifications = found->isWritable();
    calendar.ownerAddresses = found->addresses() + registry->mailAddresses();
    calendar.ownerAddresses.removeDuplicates();
    return calendar;
}

Result<std::vector<EKCalendar>> EdsBackend::calendars()
{
    if (auto error = registry->update())
        return *error;
    auto found = registry->calendars();
    for (EKCalendar &calendar : found)
        calendar = completed(calendar);
    return found;
}

std::optional<QString> EdsBackend::defaultCalendar(EKEntityType entityType)
{
    const auto present = calendars();
    if (!present)
        return std::nullopt;
    const QString chosen = registry->defaultCalendar(entityType);
    std::optional<QString> best;
    for (const EKCalendar &calendar : present.value()) {
        if (!calendar.allowsContentModifications || !calendar.allowedEntityTypes.contains(entityType))
            continue;
        if (!best || calendar.calendarIdentifier == chosen)
            best = calendar.calendarIdentifier;
    }
    return best;
}

Result<std::vector<CalendarObject>> EdsBackend::objects(const QString &calendarIdentifier)
{
    const auto found = calendar(calendarIdentifier);
    return found ? found.value()->objects() : found.error();
}

Result<std::optional<CalendarObject>> EdsBackend::object(const QString &calendarIdentifier,
                                                         const QString &name)
{
    const auto found = calendar(calendarIdentifier);
    return found ? found.value()->object(name) : found.error();
}

QByteArray EdsBackend::stampOfNames(const QString &calendarIdentifier)
{
    const auto found = calendar(calendarIdentifier);
    return found ? found.value()->stampOfNames() : QByteArray();
}

/// The UID is read from the text.
Result<CalendarObject> EdsBackend::put(const QString &calendarIdentifier, const CalendarObject &object,
                                       const QString &)
{
    const auto found = writableCalendar(calendarIdentifier);
    return found ? found.value()->put(object) : found.error();
}

OptionalError EdsBackend::remove(const QString &calendarIdentifier, const QString &name,
                                 const QByteArray &etag)
{
    const auto found = writableCalendar(calendarIdentifier);
    if (found)
        return found.value()->remove(name, etag);
    const OptionalError error = found.error();
    return CalendarError::is(error, CalendarError::NotFound) ? std::nullopt : error;
}

Result<EKCalendar> EdsBackend::createCalendar(const EKCalendar &calendar)
{
    if (auto error = registry->update())
        return *error;
    const auto made = registry->create(calendar);
    if (!made)
        return made.error();
    for (const EKCalendar &present : registry->calendars())
        if (present.calendarIdentifier == made.value())
            return completed(present);
    return hasGone(made.value());
}

OptionalError EdsBackend::updateCalendar(const EKCalendar &calendar)
{
    const auto error = registry->update();
    return error ? error : registry->change(calendar);
}

OptionalError EdsBackend::removeCalendar(const QString &calendarIdentifier)
{
    if (auto error = registry->update())
        return error;
    auto error = registry->remove(calendarIdentifier);
    if (!error)
        calendarsByIdentifier.erase(calendarIdentifier);
    return error;
}

void EdsBackend::refresh()
{
    registry->refresh();
    for (const auto &[identifier, calendar] : calendarsByIdentifier)
        calendar->refresh();
    checkSoon();
}

void EdsBackend::setChangedCallback(std::function<void()> callback)
{
    changed = std::move(callback);
    if (!changed)
        return;
    for (const auto &[identifier, calendar] : calendarsByIdentifier)
        calendar->listen();
    // Calendars tell of changes once they are connected to, which may take a while.
    QTimer::singleShot(0, &delay, [this] { static_cast<void>(calendars()); });
}

void EdsBackend::setWaitListener(std::function<void(Milliseconds)> listener)
{
    EdsTimeLimit::setListener(std::move(listener));
}

void EdsBackend::check()
{
    bool hasNews = registry->takeNews();
    bool isUnreachable = false;
    for (const auto &[identifier, calendar] : calendarsByIdentifier) {
        const auto news = calendar->takeNews();
        hasNews = hasNews || news == EdsCalendar::News::Changed;
        isUnreachable = isUnreachable || news == EdsCalendar::News::Unreachable;
    }
    if (isUnreachable)
        delay.start(std::exchange(nextAttempt, std::min(nextAttempt * 2, longestPause)));
    else
        nextAttempt = firstAttempt;
    if (hasNews && changed)
        changed();
}
