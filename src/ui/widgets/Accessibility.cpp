#include "widgets/Accessibility.h"

#include "foundation/Localization.h"
#include "widgets/AccessibleControl.h"
#include "widgets/AccessibleGrid.h"

#include <QAction>
#include <QApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QListView>
#include <QToolButton>

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

/// Qt presses a tool button before it answers who asked for that, who would wait for as long as a question
/// stands that the press asks.
static AccessibleSubject *describedButton(QToolButton &button, const std::function<QString()> &name)
{
    const auto actions = [&button]() -> std::vector<AccessibleAction> {
        return {{QAccessibleActionInterface::pressAction(), [&button] { button.click(); }, u"Space"_s}};
    };
    return new AccessibleSubject(button, {.role = QAccessible::Button, .name = name, .actions = actions});
}

/// What is said of widgets of Qt's, or null.
static AccessibleSubject *describedAsQts(const QString &className, QObject &object)
{
    auto *const button = qobject_cast<QToolButton *>(&object);
    if (button && className == u"QLineEditIconButton"_s) {
        // Inside of a field one clears it, and any other is only an icon.
        const QAction *const action = button->defaultAction();
        if (action && action->objectName() == u"_q_qlineeditclearaction"_s)
            return describedButton(*button, [] { return localized(u"Clear"_s); });
        return new AccessibleSubject(*button, {.role = QAccessible::Graphic});
    }
    if (button && className == u"QToolButton"_s && !button->menu() && !button->isCheckable())
        return describedButton(*button, [button] {
            return button->accessibleName().isEmpty() ? button->text() : button->accessibleName();
        });
    return nullptr;
}

static QAccessibleInterface *makeInterface(const QString &className, QObject *object)
{
    auto *widget = qobject_cast<QWidget *>(object);
    if (!widget)
        return nullptr;
    AccessibleSubject *subject = AccessibleSubject::of(*object);
    if (!subject)
        subject = describedAsQts(className, *widget);
    if (subject) {
        if (subject->what.parts.columns)
            return new AccessibleGrid(*widget, subject);
        return new AccessibleControl(*widget, subject);
    }
    // What nothing better was found for.
    const bool isPlain = className == u"QWidget"_s || className == u"QMainWindow"_s;
    return isPlain ? new AccessibleControl(*widget, nullptr) : nullptr;
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

void Accessibility::install()
{
    QAccessible::installFactory(makeInterface);
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

void Accessibility::partsChanged(QWidget &control)
{
    if (AccessibleControl *element = askedFor(control))
        element->tellChanges();
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
    if (const AccessibleControl *element = askedFor(control))
        send(element->knownPart(key), QAccessible::ObjectDestroyed);
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

// Bubbles

void Accessibility::bubbleOpened(QWidget &bubble)
{
    if (!QAccessible::isActive())
        return;
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
        if (!control || !control->hasParts())
            send(holder, QAccessible::Focus);
    };
    QMetaObject::invokeMethod(qApp, tellFocus, Qt::QueuedConnection);
}

// List views

void Accessibility::describeList(QListView &list, std::function<void(int)> press,
                                 std::function<std::vector<AccessibleAction>(int)> moreActions)
{
    const auto rowOf = [](quint64 key) { return static_cast<int>(key) - 1; };
    const auto part = [&list, press, moreActions, rowOf](quint64 key) {
        const int row = rowOf(key);
        const QModelIndex index = list.model()->index(row, 0);
        const QVariant name = index.data(Qt::AccessibleTextRole);
        const QVariant tick = index.data(Qt::CheckStateRole);
        AccessiblePart told{.name = name.isValid() ? name.toString() : index.data().toString()};
        told.place = list.visualRect(index);
        told.state.offscreen = !list.viewport()->rect().intersects(told.place);
        if (!index.flags().testFlag(Qt::ItemIsEnabled)) {
            told.role = QAccessible::Heading;
            return told;
        }
        told.role = tick.isValid() ? QAccessible::CheckBox : QAccessible::ListItem;
        told.state.checkable = tick.isValid();
        told.state.checked = tick.toInt() == Qt::Checked;
        told.state.focusable = true;
        told.state.focused = list.hasFocus() && list.currentIndex() == index;
        told.actions = {{QAccessibleActionInterface::pressAction(), [press, row] { press(row); }, u"Space"_s},
                        {QAccessibleActionInterface::setFocusAction(), [&list, row] {
                             list.setFocus();
                             list.setCurrentIndex(list.model()->index(row, 0));
                         }}};
        if (tick.isValid())
            told.actions.insert(told.actions.begin() + 1, {QAccessibleActionInterface::toggleAction(),
                                                           [press, row] { press(row); }, u"Space"_s});
        for (const AccessibleAction &more : moreActions ? moreActions(row) : std::vector<AccessibleAction>())
            told.actions.push_back(more);
        return told;
    };
    describe(list, {.role = QAccessible::List,
                    .parts = {.count = [&list] { return list.model() ? list.model()->rowCount() : 0; },
                              .part = part,
                              .focused = [&list]() -> quint64 {
                                  const int row = list.hasFocus() ? list.currentIndex().row() : -1;
                                  return static_cast<quint64>(row + 1);
                              },
                              .at = [&list](QPoint point) -> quint64 {
                                  const QPoint inView = list.viewport()->mapFrom(&list, point);
                                  return static_cast<quint64>(list.indexAt(inView).row() + 1);
                              }}});
}
