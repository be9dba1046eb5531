// Which interface a widget gets: one of ours, or Qt's own.

#include "foundation/Localization.h"
#include "widgets/AccessibleGrid.h"

#include <QAction>
#include <QMenu>
#include <QToolButton>

using namespace Qt::Literals::StringLiterals;

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

void Accessibility::install()
{
    QAccessible::installFactory(makeInterface);
}
