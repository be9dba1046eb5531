#include "eventkit/CalendarBackend.h"
#include "eventkit/EKEventStore.h"
#include "eventkit/SharedEventStore.h"
#include "foundation/MainLoop.h"
#include "workspace/PlatformConfiguration.h"

#include <map>
#include <utility>

namespace {

using Completion = std::function<void(bool)>;

struct Shared
{
    std::shared_ptr<CalendarBackend> backend;
    /// Makes it when it is first asked for.
    EKEventStore::BackendSource source;
};

Shared &shared()
{
    static Shared backend;
    return backend;
}

EKEventStore::AccessQuestion &accessQuestion()
{
    static EKEventStore::AccessQuestion question;
    return question;
}

/// Who waits for the answer to a question that stands.
std::map<EKEntityType, std::vector<Completion>> &waiting()
{
    static std::map<EKEntityType, std::vector<Completion>> completions;
    return completions;
}

QString nameOf(EKEntityType entityType)
{
    return entityType == EKEntityType::Event ? QStringLiteral("events") : QStringLiteral("reminders");
}

void takeAnswer(EKEntityType entityType, bool isGranted)
{
    const auto found = waiting().find(entityType);
    if (found == waiting().end())
        return;
    const auto status = isGranted ? EKAuthorizationStatus::Authorized : EKAuthorizationStatus::Denied;
    PlatformConfiguration::setAuthorization(nameOf(entityType), static_cast<int>(status));
    const std::vector<Completion> completions = std::move(found->second);
    waiting().erase(found);
    for (const Completion &completion : completions)
        completion(isGranted);
}

} // namespace

std::shared_ptr<CalendarBackend> sharedCalendarBackend()
{
    if (const auto source = std::exchange(shared().source, {}))
        EKEventStore::setSharedBackend(source());
    return shared().backend;
}

void EKEventStore::setSharedBackend(std::shared_ptr<CalendarBackend> backend)
{
    if (shared().backend)
        shared().backend->setChangedCallback({});
    shared() = {std::move(backend), {}};
    if (shared().backend)
        shared().backend->setChangedCallback(
            [] { NotificationCenter::defaultCenter().post(EKEventStoreChangedNotification); });
}

void EKEventStore::setSharedBackendSource(BackendSource source)
{
    setSharedBackend(nullptr);
    shared().source = std::move(source);
}

void EKEventStore::setAccessQuestion(AccessQuestion question)
{
    accessQuestion() = std::move(question);
    waiting().clear();
}

EKAuthorizationStatus EKEventStore::authorizationStatusForEntityType(EKEntityType entityType)
{
    const int status = PlatformConfiguration().authorization(nameOf(entityType));
    return status >= 0 && status <= 3 ? static_cast<EKAuthorizationStatus>(status)
                                      : EKAuthorizationStatus::NotDetermined;
}

void EKEventStore::requestAccessToEntityType(EKEntityType entityType, std::function<void(bool)> completion)
{
    const EKAuthorizationStatus status = authorizationStatusForEntityType(entityType);
    if (status != EKAuthorizationStatus::NotDetermined || !accessQuestion()) {
        const bool isGranted = status == EKAuthorizationStatus::Authorized;
        MainLoop::performDelayed(Seconds(0), [completion, isGranted] { completion(isGranted); });
        return;
    }
    const bool isAsked = waiting().contains(entityType);
    waiting()[entityType].push_back(std::move(completion));
    if (isAsked)
        return;
    MainLoop::performDelayed(Seconds(0), [entityType] {
        if (accessQuestion())
            accessQuestion()(entityType, [entityType](bool isGranted) { takeAnswer(entityType, isGranted); });
    });
}
