#include "AccessibilityBus.h"

#include <QCoreApplication>
#include <QDBusArgument>
#include <QDBusObjectPath>
#include <QDBusVariant>
#include <QElapsedTimer>
#include <QThread>

#include <gtest/gtest.h>

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

static const QString accessible = u"org.a11y.atspi.Accessible"_s;
static const QString action = u"org.a11y.atspi.Action"_s;
static const Element desktop{u"org.a11y.atspi.Registry"_s, u"/org/a11y/atspi/accessible/root"_s};

AccessibilityBus::AccessibilityBus(const QString &address)
    : bus(QDBusConnection::connectToBus(address, u"reader"_s))
{
    const QString events = u"org.a11y.atspi.Event.Object"_s;
    EXPECT_TRUE(bus.isConnected());
    EXPECT_TRUE(bus.connect({}, {}, events, u"StateChanged"_s, this, SLOT(stateChanged(QDBusMessage))));
    EXPECT_TRUE(bus.connect({}, {}, events, u"Announcement"_s, this, SLOT(announced(QDBusMessage))));
    for (const QString &event : {u"object:state-changed:checked"_s, u"object:state-changed:focused"_s})
        ask({desktop.service, u"/org/a11y/atspi/registry"_s}, u"org.a11y.atspi.Registry"_s,
            u"RegisterEvent"_s, {event});
}

QVariant AccessibilityBus::ask(const Element &element, const QString &interface, const QString &method,
                               const QVariantList &arguments) const
{
    constexpr int patience = 60000;
    QDBusMessage message = QDBusMessage::createMethodCall(element.service, element.path, interface, method);
    message.setArguments(arguments);
    const QDBusMessage reply = bus.call(message, QDBus::Block, patience);
    return reply.type() == QDBusMessage::ReplyMessage ? reply.arguments().value(0) : QVariant();
}

QVariant AccessibilityBus::property(const Element &element, const QString &name) const
{
    const QVariant answer = ask(element, u"org.freedesktop.DBus.Properties"_s, u"Get"_s, {accessible, name});
    return answer.value<QDBusVariant>().variant();
}

QString AccessibilityBus::text(const Element &element, const QString &name) const
{
    return property(element, name).toString();
}

QString AccessibilityBus::roleOf(const Element &element) const
{
    return ask(element, accessible, u"GetRoleName"_s).toString();
}

int AccessibilityBus::placeOf(const Element &element) const
{
    return ask(element, accessible, u"GetIndexInParent"_s).toInt();
}

bool AccessibilityBus::is(const Element &element, State state) const
{
    const QVariant answer = ask(element, accessible, u"GetState"_s);
    const auto bits = answer.isValid() ? qdbus_cast<QList<uint>>(answer) : QList<uint>();
    return !bits.isEmpty() && (bits.first() >> state & 1) != 0;
}

std::vector<Element> AccessibilityBus::childrenOf(const Element &element) const
{
    std::vector<Element> children;
    const QVariant answer = ask(element, accessible, u"GetChildren"_s);
    if (!answer.isValid())
        return children;
    const auto list = answer.value<QDBusArgument>();
    list.beginArray();
    while (!list.atEnd()) {
        Element child;
        QDBusObjectPath path;
        list.beginStructure();
        list >> child.service >> path;
        list.endStructure();
        child.path = path.path();
        children.push_back(child);
    }
    list.endArray();
    return children;
}

std::vector<Element> AccessibilityBus::programs() const
{
    return childrenOf(desktop);
}

QStringList AccessibilityBus::actionsOf(const Element &element) const
{
    QStringList names;
    const QVariant answer = ask(element, action, u"GetActions"_s);
    if (!answer.isValid())
        return names;
    const auto list = answer.value<QDBusArgument>();
    list.beginArray();
    while (!list.atEnd()) {
        QString name;
        QString description;
        QString keys;
        list.beginStructure();
        list >> name >> description >> keys;
        list.endStructure();
        names << name;
    }
    list.endArray();
    return names;
}

// Finding and acting

bool AccessibilityBus::waitFor(const std::function<bool()> &condition)
{
    constexpr qint64 patience = 60000;
    constexpr unsigned long pause = 30;
    QElapsedTimer waited;
    waited.start();
    while (!condition()) {
        if (waited.elapsed() > patience)
            return false;
        QCoreApplication::processEvents();
        QThread::msleep(pause);
    }
    return true;
}

std::optional<Element> AccessibilityBus::lookFor(const Element &root,
                                                 const std::function<bool(const Element &)> &isMeant) const
{
    for (const Element &child : childrenOf(root)) {
        if (isMeant(child))
            return child;
        if (const auto found = lookFor(child, isMeant))
            return found;
    }
    return std::nullopt;
}

std::optional<Element> AccessibilityBus::find(const QString &role, const QString &name,
                                              const std::optional<Element> &root) const
{
    // The lines of a menu that is closed can be chosen, too.
    const bool isSeen = role != u"menu item"_s;
    std::optional<Element> found;
    waitFor([&] {
        found = lookFor(root.value_or(desktop), [&](const Element &element) {
            return roleOf(element) == role && nameOf(element).startsWith(name) &&
                   (!isSeen || is(element, Showing));
        });
        return found.has_value();
    });
    EXPECT_TRUE(found) << qPrintable(role + u' ' + name + u" is not there, but:\n"_s +
                                     buttonsSeen().join(u'\n'));
    return found;
}

/// What could be pressed instead.
QStringList AccessibilityBus::buttonsSeen() const
{
    QStringList seen;
    const auto isSeenButton = [&](const Element &element) {
        const QString role = roleOf(element);
        if ((role.endsWith(u"button"_s) || role.endsWith(u"box"_s) || role == u"dialog"_s) &&
            is(element, Showing))
            seen << role + u' ' + nameOf(element);
        return false;
    };
    lookFor(desktop, isSeenButton);
    return seen;
}

void AccessibilityBus::act(const std::optional<Element> &element, const QString &name) const
{
    ASSERT_TRUE(element) << qPrintable(name);
    const auto index = actionsOf(*element).indexOf(name);
    ASSERT_GE(index, 0) << qPrintable(nameOf(*element) + u" does not "_s + name);
    EXPECT_TRUE(ask(*element, action, u"DoAction"_s, {static_cast<int>(index)}).toBool());
}

void AccessibilityBus::type(const std::optional<Element> &element, const QString &words) const
{
    ASSERT_TRUE(element) << qPrintable(words);
    EXPECT_TRUE(ask(*element, u"org.a11y.atspi.EditableText"_s, u"SetTextContents"_s, {words}).toBool());
}

// Hearing

void AccessibilityBus::stateChanged(const QDBusMessage &message)
{
    const QVariantList told = message.arguments();
    states << u"%1 %2 %3"_s.arg(message.path(), told.value(0).toString()).arg(told.value(1).toInt());
}

void AccessibilityBus::announced(const QDBusMessage &message)
{
    sentences << message.arguments().value(3).value<QDBusVariant>().variant().toString();
}

bool AccessibilityBus::hearsState(const Element &element, const QString &state, bool isSet)
{
    const QString line = u"%1 %2 %3"_s.arg(element.path, state).arg(isSet ? 1 : 0);
    const bool isHeard = waitFor([&] { return states.contains(line); });
    states.clear();
    return isHeard;
}

bool AccessibilityBus::hearsSentence(const QString &sentence)
{
    const bool isHeard = waitFor([&] { return sentences.contains(sentence); });
    sentences.clear();
    return isHeard;
}

// Faults

void AccessibilityBus::findFaults(const Element &element, const QString &path, QStringList &found) const
{
    const QString role = roleOf(element);
    const QString name = nameOf(element);
    const QString here = path + u'/' + role;
    const QStringList buttons = {u"push button"_s, u"check box"_s, u"radio button"_s, u"combo box"_s};
    if (!is(element, Showing))
        return;
    const bool isFocusable = is(element, Focusable);
    if ((isFocusable || buttons.contains(role)) && name.isEmpty())
        found << here + u" has no name"_s;
    if (isFocusable && QStringList{u"filler"_s, u"frame"_s, u"unknown"_s}.contains(role))
        found << here + u" has no role: "_s + name;
    if (buttons.contains(role) && is(element, Sensitive) && actionsOf(element).isEmpty())
        found << here + u" cannot be pressed: "_s + name;
    for (const Element &child : childrenOf(element))
        findFaults(child, here, found);
}

QStringList AccessibilityBus::faults() const
{
    QStringList found;
    for (const Element &program : programs()) {
        for (const Element &window : childrenOf(program))
            findFaults(window, {}, found);
    }
    return found;
}
