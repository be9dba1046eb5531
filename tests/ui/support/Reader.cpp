#include "ui/support/Reader.h"

#include <QCoreApplication>
#include <QTest>
#include <QWidget>

#include <private/qguiapplication_p.h>
#include <qpa/qplatformaccessibility.h>
#include <qpa/qplatformintegration.h>

#include <gtest/gtest.h>

using namespace Qt::Literals::StringLiterals;

namespace {

QStringList lines;

QString lineOf(QAccessibleEvent &event, QAccessibleInterface &element)
{
    const QString name = element.text(QAccessible::Name);
    switch (event.type()) {
    case QAccessible::Focus:
        return u"focus: "_s + name;
    case QAccessible::NameChanged:
        // Widgets are named again and again.
        return element.object() ? QString() : u"named: "_s + name;
    case QAccessible::SelectionAdd:
        return u"selected: "_s + name;
    case QAccessible::SelectionRemove:
        return u"deselected: "_s + name;
    case QAccessible::ObjectCreated:
        return u"came: "_s + name;
    case QAccessible::ObjectDestroyed:
        return u"went: "_s + name;
    case QAccessible::Alert:
        return u"said: "_s + element.text(QAccessible::UserText);
    case QAccessible::StateChanged: {
        const QAccessible::State changed = static_cast<QAccessibleStateChangeEvent &>(event).changedStates();
        if (changed.checked)
            return (element.state().checked ? u"ticked: "_s : u"unticked: "_s) + name;
        if (changed.expanded)
            return (element.state().expanded ? u"opened: "_s : u"closed: "_s) + name;
        return {};
    }
    default:
        return {};
    }
}

void hear(QAccessibleEvent *event)
{
    QAccessibleInterface *const element = event->accessibleInterface();
    const QString line = element ? lineOf(*event, *element) : QString();
    if (!line.isEmpty())
        lines << line;
}

bool isButton(QAccessible::Role role)
{
    return role == QAccessible::Button || role == QAccessible::CheckBox || role == QAccessible::RadioButton ||
           role == QAccessible::ComboBox;
}

} // namespace

/// On a platform without a bus nobody ever listens, unless the platform is told so.
void Reader::setListening(bool isListening)
{
    QGuiApplicationPrivate::platformIntegration()->accessibility()->setActive(isListening);
}

Reader::Reader()
    : former(QAccessible::installUpdateHandler(hear))
{
    lines.clear();
    setListening(true);
}

Reader::~Reader()
{
    setListening(false);
    QAccessible::installUpdateHandler(former);
}

QStringList Reader::heard()
{
    QCoreApplication::processEvents();
    return std::exchange(lines, {});
}

bool Reader::hears(const QString &line)
{
    return QTest::qWaitFor([&] { return lines.contains(line); });
}

QAccessibleInterface &Reader::of(QWidget &widget)
{
    return *QAccessible::queryAccessibleInterface(&widget);
}

QAccessibleInterface *Reader::find(QAccessibleInterface &root, QAccessible::Role role, const QString &name)
{
    if (root.role() == role && root.text(QAccessible::Name).startsWith(name) && !root.state().invisible)
        return &root;
    for (int index = 0; index < root.childCount(); ++index) {
        QAccessibleInterface *const child = root.child(index);
        if (QAccessibleInterface *found = child ? find(*child, role, name) : nullptr)
            return found;
    }
    return nullptr;
}

QAccessibleInterface *Reader::find(QWidget &root, QAccessible::Role role, const QString &name)
{
    return find(of(root), role, name);
}

QStringList Reader::namesIn(QWidget &control)
{
    QStringList names;
    for (int index = 0; index < of(control).childCount(); ++index)
        names << of(control).child(index)->text(QAccessible::Name);
    return names;
}

void Reader::act(QAccessibleInterface *element, const QString &action)
{
    ASSERT_NE(element, nullptr) << qPrintable(action);
    ASSERT_TRUE(element->actionInterface() && element->actionInterface()->actionNames().contains(action))
        << qPrintable(element->text(QAccessible::Name) + u" does not "_s + action);
    element->actionInterface()->doAction(action);
    QCoreApplication::processEvents();
}

void Reader::press(QAccessibleInterface *element)
{
    act(element, QAccessibleActionInterface::pressAction());
}

QStringList Reader::faultsIn(QAccessibleInterface &root, const QString &path)
{
    const QObject *object = root.object();
    const QString kind = object ? QString::fromLatin1(object->metaObject()->className()) : u"part"_s;
    const QString here = path + u'/' + kind;
    const QAccessible::Role role = root.role();
    const QAccessible::State state = root.state();
    if (state.invisible)
        return {};
    QStringList faults;
    const bool isNamed = !root.text(QAccessible::Name).isEmpty();
    if ((state.focusable || isButton(role)) && !isNamed)
        faults << here + u" has no name"_s;
    if (state.focusable &&
        (role == QAccessible::Client || role == QAccessible::Border || role == QAccessible::NoRole))
        faults << here + u" has no role: "_s + root.text(QAccessible::Name);
    if (isButton(role) && !state.disabled &&
        (!root.actionInterface() || root.actionInterface()->actionNames().isEmpty()))
        faults << here + u" cannot be pressed: "_s + root.text(QAccessible::Name);
    for (int index = 0; index < root.childCount(); ++index) {
        if (QAccessibleInterface *child = root.child(index))
            faults << faultsIn(*child, here);
    }
    return faults;
}
