#include "eventkit/eds/EdsRegistry.h"

#include "eventkit/eds/EdsSources.h"

#include <algorithm>

static const QString localAccount = QStringLiteral("local-stub");

EdsRegistry::EdsRegistry(EdsPatience &sharedPatience, std::function<void()> mayHaveChanged)
    : patience(sharedPatience)
    , tellChange(std::move(mayHaveChanged))
{}

EdsRegistry::~EdsRegistry()
{
    if (registry)
        disconnectSignals(registry.get(), this);
}

OptionalError EdsRegistry::update()
{
    if (patience.isExhausted())
        return EdsPatience::error();
    const auto begin = std::chrono::steady_clock::now();
    auto sources = bus.sources();
    if (!sources) {
        if (std::chrono::steady_clock::now() - begin >= EdsTimeLimit::forReading)
            patience.exhaust();
        return sources.error();
    }
    present = std::move(sources.value());
    return registry ? std::nullopt : connect();
}

OptionalError EdsRegistry::open()
{
    return registry ? std::nullopt : update();
}

/// Whether the library knows every source that the daemon has.
bool EdsRegistry::isComplete() const
{
    return std::all_of(present.begin(), present.end(), [this](const QString &uid) {
        const GlibObject<ESource> source(
            e_source_registry_ref_source(registry.get(), uid.toUtf8().constData()));
        return source != nullptr;
    });
}

/// The library shares one list among all who ask for it, and hands it out also when its last user is just
/// leaving, and it is empty already.
OptionalError EdsRegistry::connect()
{
    constexpr int mostAttempts = 5;
    constexpr std::chrono::milliseconds pause{20};
    for (int attempt = 0; attempt < mostAttempts; ++attempt) {
        GlibFailure failure;
        const EdsTimeLimit limit(EdsTimeLimit::forReading);
        registry.reset(
            limit.run([&] { return e_source_registry_new_sync(limit.cancellable(), failure.out()); }));
        if (limit.isExceeded())
            patience.exhaust();
        if (!registry)
            return failure.told(QStringLiteral("Cannot reach the calendar service"));
        if (isComplete()) {
            listen();
            return std::nullopt;
        }
        registry.reset();
        std::this_thread::sleep_for(pause);
        // Meanwhile there may be others.
        if (auto sources = bus.sources())
            present = std::move(sources.value());
    }
    return CalendarError::make(CalendarError::Storage,
                               QStringLiteral("The calendar service has not told all of its calendars."));
}

void EdsRegistry::listen()
{
    for (const char *signal :
         {"source-added", "source-changed", "source-removed", "source-enabled", "source-disabled"})
        connectSignal(registry.get(), signal, &EdsRegistry::onSource, this);
    known = fingerprints();
}

std::vector<GlibObject<ESource>> EdsRegistry::list(const char *extension) const
{
    std::vector<GlibObject<ESource>> found;
    GList *sources = e_source_registry_list_sources(registry.get(), extension);
    for (const GList *entry = sources; entry; entry = entry->next)
        found.emplace_back(static_cast<ESource *>(entry->data));
    g_list_free(sources);
    std::erase_if(found, [this](const auto &source) {
        return !e_source_registry_check_enabled(registry.get(), source.get()) ||
               !present.contains(QString::fromUtf8(e_source_get_uid(source.get())));
    });
    return found;
}

std::vector<GlibObject<ESource>> EdsRegistry::calendarSources() const
{
    auto found = list(E_SOURCE_EXTENSION_CALENDAR);
    for (auto &source : list(E_SOURCE_EXTENSION_TASK_LIST))
        if (edsIsTaskList(source.get()))
            found.push_back(std::move(source));
    return found;
}

std::vector<EKSource> EdsRegistry::sources() const
{
    std::vector<EKSource> found;
    const auto add = [&](const EKSource &source) {
        if (std::find(found.begin(), found.end(), source) == found.end())
            found.push_back(source);
    };
    if (const GlibObject<ESource> local{
            e_source_registry_ref_source(registry.get(), localAccount.toUtf8().constData())})
        add(edsSourceFrom(local.get()));
    for (const auto &account : list(E_SOURCE_EXTENSION_COLLECTION)) {
        auto *collection = static_cast<ESourceCollection *>(
            e_source_get_extension(account.get(), E_SOURCE_EXTENSION_COLLECTION));
        if (e_source_collection_get_calendar_enabled(collection))
            add(edsSourceFrom(account.get()));
    }
    for (const auto &source : calendarSources())
        add(edsSourceFrom(edsAccountOf(registry.get(), source.get()).get()));
    std::stable_sort(found.begin(), found.end(),
                     [](const EKSource &one, const EKSource &other) { return one.title < other.title; });
    return found;
}

std::vector<EKCalendar> EdsRegistry::calendars() const
{
    std::vector<EKCalendar> found;
    for (const auto &source : calendarSources())
        found.push_back(edsCalendarFrom(registry.get(), source.get()));
    const auto key = [](const EKCalendar &calendar) {
        return std::tie(calendar.source.title, calendar.source.sourceIdentifier, calendar.title);
    };
    std::stable_sort(found.begin(), found.end(),
                     [&](const EKCalendar &one, const EKCalendar &other) { return key(one) < key(other); });
    return found;
}

GlibObject<ESource> EdsRegistry::find(const QString &identifier) const
{
    for (auto &source : calendarSources())
        if (identifier == QString::fromUtf8(e_source_get_uid(source.get())))
            return std::move(source);
    return nullptr;
}

QString EdsRegistry::defaultCalendar(EKEntityType entityType) const
{
    const GlibObject<ESource> chosen(entityType == EKEntityType::Event
                                         ? e_source_registry_ref_default_calendar(registry.get())
                                         : e_source_registry_ref_default_task_list(registry.get()));
    return chosen ? QString::fromUtf8(e_source_get_uid(chosen.get())) : QString();
}

QStringList EdsRegistry::mailAddresses() const
{
    return edsMailAddresses(registry.get());
}

void EdsRegistry::refresh()
{
    if (!registry)
        return;
    for (const auto &account : list(E_SOURCE_EXTENSION_COLLECTION))
        e_source_registry_refresh_backend(registry.get(), e_source_get_uid(account.get()), nullptr, nullptr,
                                          nullptr);
}

QHash<QString, QByteArray> EdsRegistry::fingerprints() const
{
    QHash<QString, QByteArray> found;
    for (const auto &source : calendarSources())
        found.insert(QString::fromUtf8(e_source_get_uid(source.get())), edsFingerprint(source.get()));
    for (const EKSource &account : sources())
        found.insert(u'@' + account.sourceIdentifier, account.title.toUtf8());
    return found;
}

void EdsRegistry::onSource(ESourceRegistry *, ESource *, gpointer self)
{
    static_cast<EdsRegistry *>(self)->tellChange();
}

bool EdsRegistry::takeNews()
{
    if (!registry || update())
        return false;
    auto former = std::exchange(known, fingerprints());
    return former != known;
}
