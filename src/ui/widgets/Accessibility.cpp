#include "widgets/Accessibility.h"

#include "widgets/AccessibleControl.h"
#include "widgets/AccessiblePartInterface.h"

#include <QApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QPointer>

using namespace Qt::Literals::StringLiterals;

/// Qt sends neither what is announced nor what is expanded, but it has a connection to the bus on which
/// assistive technology listens. Where there is none, nobody listens.
static void sendOnBus(QAccessibleInterface *element, const QString &signal, const QString &kind, int detail,
                      const QVariant &value)
{
    const QDBusConnection bus(u"a11y"_s);
    if (!element || !bus.isConnected())
        return;
    const QString path = u"/org/a11y/atspi/accessible/%1"_s.arg(QAccessible::uniqueId(element));
    QDBusMessage message = QDBusMessage::createSignal(path, u"org.a11y.atspi.Event.Object"_s, signal);
    message << kind << detail << 0 << QVariant::fromValue(QDBusVariant(value)) << QVariantMap();
    bus.send(message);
}

/// The interface of a control that somebody has asked for, or null.
static AccessibleControl *askedFor(const QWidget &control)
{
    const AccessibleSubject *const subject = AccessibleSubject::of(control);
    return subject && QAccessible::isActive() ? subject->control : nullptr;
}

/// The interface of a control, if somebody listens.
static AccessibleControl *heard(QWidget &control)
{
    if (!QAccessible::isActive())
        return nullptr;
    return dynamic_cast<AccessibleControl *>(QAccessible::queryAccessibleInterface(&control));
}

static void send(QAccessibleInterface *element, QAccessible::Event type)
{
    if (!element)
        return;
    QAccessibleEvent event(element, type);
    QAccessible::updateAccessibility(&event);
}

void Accessibility::describe(QWidget &control, AccessibleDescription description)
{
    // What was asked for before knew nothing of this.
    if (QAccessible::isActive()) {
        if (QAccessibleInterface *former = QAccessible::queryAccessibleInterface(&control))
            QAccessible::deleteAccessibleInterface(QAccessible::uniqueId(former));
    }
    delete AccessibleSubject::of(control);
    new AccessibleSubject(control, std::move(description));
}

bool Accessibility::isHeard()
{
    return QAccessible::isActive();
}

void Accessibility::announce(QWidget &about, const QString &sentence)
{
    if (!QAccessible::isActive())
        return;
    QAccessibleInterface *element = QAccessible::queryAccessibleInterface(&about);
    if (auto *control = dynamic_cast<AccessibleControl *>(element))
        control->announced(sentence);
    send(element, QAccessible::Alert);
    constexpr int politely = 1;
    sendOnBus(element, u"Announcement"_s, {}, politely, sentence);
}

void Accessibility::nameChanged(QWidget &control)
{
    send(askedFor(control), QAccessible::NameChanged);
}

void Accessibility::partsChanged(QWidget &control, const std::set<quint64> &outOfSight)
{
    if (AccessibleControl *element = askedFor(control))
        element->tellChanges(outOfSight);
}

void Accessibility::focusMoved(QWidget &control)
{
    const AccessibleControl *const element = heard(control);
    if (!element || !element->hasParts() || !element->parts().focused)
        return;
    if (QAccessibleInterface *part = element->partOf(element->parts().focused()))
        send(part, QAccessible::Focus);
}

void Accessibility::expandedChanged(QWidget &control, quint64 key, bool isExpanded)
{
    const AccessibleControl *const element = heard(control);
    QAccessibleInterface *const part = element ? element->partOf(key) : nullptr;
    if (!part)
        return;
    QAccessible::State changed;
    changed.expanded = true;
    QAccessibleStateChangeEvent event(part, changed);
    QAccessible::updateAccessibility(&event);
    sendOnBus(part, u"StateChanged"_s, u"expanded"_s, isExpanded ? 1 : 0, 0);
}

void Accessibility::partSelected(QWidget &control, quint64 key, bool isSelected)
{
    AccessibleControl *const element = askedFor(control);
    if (!element)
        return;
    // One that goes is deselected on its way.
    if (element->parts().exists && !element->parts().exists(key))
        return;
    element->toldSelected(key, isSelected);
    send(element->partOf(key), isSelected ? QAccessible::SelectionAdd : QAccessible::SelectionRemove);
}

void Accessibility::partCame(QWidget &control, quint64 key)
{
    if (const AccessibleControl *element = askedFor(control))
        send(element->partOf(key), QAccessible::ObjectCreated);
}

void Accessibility::partWent(QWidget &control, quint64 key)
{
    const AccessibleControl *const element = askedFor(control);
    auto *part = element ? dynamic_cast<AccessiblePartInterface *>(element->knownPart(key)) : nullptr;
    if (!part)
        return;
    // What is not valid any more is not told.
    part->setLeaving(true);
    send(part, QAccessible::ObjectDestroyed);
    part->setLeaving(false);
}

void Accessibility::partForgotten(QWidget &control, quint64 key)
{
    if (AccessibleControl *element = askedFor(control))
        element->forget(key);
}

void Accessibility::partsReplaced(QWidget &control)
{
    if (AccessibleControl *element = askedFor(control))
        element->forgetGone();
}

void Accessibility::placesRefilled(QWidget &control)
{
    if (AccessibleControl *element = askedFor(control))
        element->forgetAll();
}

// Bubbles

/// The widget that Qt told of last as the one with the keys, since a bubble was opened.
static QPointer<QWidget> &focusToldByQt()
{
    static QPointer<QWidget> widget;
    return widget;
}

void Accessibility::bubbleOpened(QWidget &bubble)
{
    if (!QAccessible::isActive())
        return;
    focusToldByQt() = nullptr;
    QObject::connect(qApp, &QApplication::focusChanged, &bubble,
                     [](QWidget *, QWidget *now) { focusToldByQt() = now; });
    QAccessibleInterface *const element = QAccessible::queryAccessibleInterface(&bubble);
    send(element, QAccessible::ObjectCreated);
    send(element, QAccessible::DialogStart);
}

/// Qt gives the keys back to the window under the bubble, without a word where they were there before.
void Accessibility::bubbleCloses(QWidget &bubble)
{
    if (!QAccessible::isActive())
        return;
    QAccessibleInterface *const element = QAccessible::queryAccessibleInterface(&bubble);
    send(element, QAccessible::DialogEnd);
    send(element, QAccessible::ObjectDestroyed);
    const auto tellFocus = [] {
        QWidget *const focused = QApplication::focusWidget();
        QAccessibleInterface *const holder =
            focused ? QAccessible::queryAccessibleInterface(focused) : nullptr;
        const auto *control = dynamic_cast<AccessibleControl *>(holder);
        // One with parts says itself on which of them the keys are.
        if (focused != focusToldByQt() && (!control || !control->hasParts()))
            send(holder, QAccessible::Focus);
    };
    QMetaObject::invokeMethod(qApp, tellFocus, Qt::QueuedConnection);
}

QStringList Accessibility::keysOf(const std::vector<AccessibleAction> &actions, const QString &name)
{
    const auto found = std::ranges::find(actions, name, &AccessibleAction::name);
    return found == actions.end() || found->keys.isEmpty() ? QStringList() : QStringList(found->keys);
}
