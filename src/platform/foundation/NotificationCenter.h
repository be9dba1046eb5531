#pragma once

#include <QString>
#include <QStringView>

#include <any>
#include <cstddef>
#include <functional>
#include <memory>

/// The name of a notification. Made from a literal only, so that names are declared once, as constants:
/// `inline constexpr NotificationName taskChange{u"TaskChange"};`
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

struct Notification
{
    NotificationName name;
    /// Whom the notification is about; empty if about nobody in particular.
    std::any object;
    std::any userInfo;
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
    using Block = std::function<void(const Notification &)>;

    static NotificationCenter &defaultCenter();

    NotificationCenter();
    ~NotificationCenter();
    NotificationCenter(const NotificationCenter &) = delete;
    NotificationCenter &operator=(const NotificationCenter &) = delete;

    /// Calls `block` at each post of that name for as long as the answer lives.
    Observation addObserver(NotificationName name, Block block);

    void post(NotificationName name, std::any object = {}, std::any userInfo = {});

private:
    friend class Observation;
    struct Registry;
    std::shared_ptr<Registry> registry;
};
