#include "foundation/NotificationCenter.h"

#include <QHash>

#include <utility>
#include <vector>

struct Observation::Observer
{
    QString name;
    std::type_index type;
    NotificationCenter::Block block;
    std::weak_ptr<NotificationCenter::Registry> registry;
    bool isRegistered = true;
};

struct NotificationCenter::Registry
{
    QHash<QString, std::vector<std::shared_ptr<Observation::Observer>>> observers;

    void remove(const std::shared_ptr<Observation::Observer> &observer)
    {
        std::erase(observers[observer->name], observer);
    }
};

Observation::Observation() = default;
Observation::Observation(std::shared_ptr<Observer> registeredObserver)
    : observer(std::move(registeredObserver))
{}
Observation::Observation(Observation &&other) noexcept = default;

Observation &Observation::operator=(Observation &&other) noexcept
{
    if (this != &other) {
        cancel();
        observer = std::move(other.observer);
    }
    return *this;
}

Observation::~Observation()
{
    cancel();
}

void Observation::cancel()
{
    const auto forgotten = std::exchange(observer, nullptr);
    if (!forgotten)
        return;
    forgotten->isRegistered = false;
    if (const auto registry = forgotten->registry.lock())
        registry->remove(forgotten);
}

NotificationCenter &NotificationCenter::defaultCenter()
{
    static NotificationCenter center;
    return center;
}

NotificationCenter::NotificationCenter()
    : registry(std::make_shared<Registry>())
{}
NotificationCenter::~NotificationCenter() = default;

Observation NotificationCenter::add(const QString &name, std::type_index type, Block block)
{
    const Observation::Observer entry{name, type, std::move(block), registry};
    auto observer = std::make_shared<Observation::Observer>(entry);
    registry->observers[name].push_back(observer);
    return Observation(std::move(observer));
}

void NotificationCenter::tell(const QString &name, std::type_index type, const void *subject)
{
    // The copy holds each observer for as long as its block runs, whatever the block does to the list.
    const auto observers = registry->observers.value(name);
    for (const auto &observer : observers)
        if (observer->isRegistered && observer->type == type)
            observer->block(subject);
}
