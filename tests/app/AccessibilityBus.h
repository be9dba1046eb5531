#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>
#include <QStringList>

#include <functional>
#include <optional>
#include <vector>

/// An element of the tree that a program shows to assistive technology.
struct Element
{
    QString service;
    QString path;
    bool operator==(const Element &) const = default;
};

/// The bus of assistive technology, as a screen reader uses it. It finds elements by role and name, acts on
/// them, and hears what is told of them. An element that has gone has no name, no states and no children.
class AccessibilityBus : public QObject
{
    Q_OBJECT
public:
    /// The bits of the states that matter here.
    enum State {
        Checked = 4,
        Expanded = 10,
        Focusable = 11,
        Focused = 12,
        Selected = 23,
        Sensitive = 24,
        Showing = 25
    };

    /// \param address of the bus.
    explicit AccessibilityBus(const QString &address);

    /// All that a program tells, from the desktop down.
    std::vector<Element> programs() const;
    std::vector<Element> childrenOf(const Element &element) const;
    QString nameOf(const Element &element) const { return text(element, QStringLiteral("Name")); }
    QString descriptionOf(const Element &element) const
    {
        return text(element, QStringLiteral("Description"));
    }
    QString roleOf(const Element &element) const;
    int placeOf(const Element &element) const;
    bool is(const Element &element, State state) const;
    QStringList actionsOf(const Element &element) const;

    /// Waits for an element of the program that is seen, of a role and with a name that begins so; absent
    /// if none comes in time. With a root, only what is below that.
    std::optional<Element> find(const QString &role, const QString &name,
                                const std::optional<Element> &root = {}) const;
    /// The same without waiting, below an element.
    std::optional<Element> lookFor(const Element &root,
                                   const std::function<bool(const Element &)> &isMeant) const;
    /// Does what the element offers by that name. Fails the test if it does not.
    void act(const std::optional<Element> &element, const QString &action) const;
    void press(const std::optional<Element> &element) const { act(element, QStringLiteral("Press")); }
    void type(const std::optional<Element> &element, const QString &words) const;

    /// Whether it was told that a state of an element is set or not, since the last such question.
    bool hearsState(const Element &element, const QString &state, bool isSet);
    /// Whether a sentence was said.
    bool hearsSentence(const QString &sentence);
    /// What is wrong with the elements that are seen: controls without a name, a role, or an action.
    QStringList faults() const;

    /// Waits long enough for a slow machine.
    static bool waitFor(const std::function<bool()> &condition);

private Q_SLOTS:
    void stateChanged(const QDBusMessage &message);
    void announced(const QDBusMessage &message);

private:
    /// What a call gives; invalid if it fails, as with an element that has gone.
    QVariant ask(const Element &element, const QString &interface, const QString &method,
                 const QVariantList &arguments = {}) const;
    QVariant property(const Element &element, const QString &name) const;
    QString text(const Element &element, const QString &property) const;
    QStringList buttonsSeen() const;
    void findFaults(const Element &element, const QString &path, QStringList &faults) const;

    QDBusConnection bus;
    QStringList states;
    QStringList sentences;
};
