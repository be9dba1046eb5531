#pragma once

#include <QString>
#include <QStringView>

#include <cstddef>
#include <functional>
#include <memory>
#include <type_traits>
#include <typeindex>

/// The name of a notification, and the type of what it tells. Made from a literal only, so that names are
/// declared once, as constants: `inline constexpr NotificationName<TaskPtr> taskChange{u"TaskChange"};`
/// One that tells nothing but that it happened is a `NotificationName<>`.
template <typename Subject = void>
class NotificationName
{
public:
    template <std::size_t Size>
    constexpr explicit NotificationName(const char16_t (&literal)[Size])
        : name(literal, Size - 1)
    {}

    constexpr QStringView view() const { return name; }
    QString toString() const { return name.toString(); }

    friend bool operator==(NotificationName one, NotificationName other) { return one.name == other.name; }

private:
    QStringView name;
};

/// Keeps an observer registered; the observer is forgotten when this goes out of scope.
class [[nodiscard]] Observation
{
public:
    Observation();
    Observation(Observation &&other) noexcept;
    Observation &operator=(Observation &&other) noexcept;
    Observation(const Observation &) = delete;
    Observation &operator=(const Observation &) = delete;
    ~Observation();

    /// Forgets the observer now.
    void cancel();

private:
    friend class NotificationCenter;
    struct Observer;
    explicit Observation(std::shared_ptr<Observer> registeredObserver);

    std::shared_ptr<Observer> observer;
};

/// A named broadcast inside the program, for the main thread.
///
/// Observers are called at once, in the order of their registration. During a post observers may be added and
/// removed, the running one included: a removed one is not called any more, an added one only by the next
/// post.
class NotificationCenter
{
public:
    static NotificationCenter &defaultCenter();

    NotificationCenter();
    ~NotificationCenter();
    NotificationCenter(const NotificationCenter &) = delete;
    NotificationCenter &operator=(const NotificationCenter &) = delete;

    /// Calls `block` with the subject at each post of that name for as long as the answer lives.
    template <typename Subject>
    Observation addObserver(NotificationName<Subject> name,
                            std::type_identity_t<std::function<void(const Subject &)>> block)
    {
        return add(name.toString(), typeid(Subject), [block = std::move(block)](const void *subject) {
            block(*static_cast<const Subject *>(subject));
        });
    }
    Observation addObserver(NotificationName<> name, std::function<void()> block)
    {
        return add(name.toString(), typeid(void), [block = std::move(block)](const void *) { block(); });
    }

    template <typename Subject>
    void post(NotificationName<Subject> name, const std::type_identity_t<Subject> &subject)
    {
        tell(name.toString(), typeid(Subject), &subject);
    }
    void post(NotificationName<> name) { tell(name.toString(), typeid(void), nullptr); }

private:
    friend class Observation;
    struct Registry;
    using Block = std::function<void(const void *subject)>;

    Observation add(const QString &name, std::type_index type, Block block);
    void tell(const QString &name, std::type_index type, const void *subject);

    std::shared_ptr<Registry> registry;
};
