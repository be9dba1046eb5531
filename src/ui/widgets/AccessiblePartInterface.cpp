#include "widgets/AccessiblePartInterface.h"

#include <QWidget>

QAccessible::State AccessiblePartInterface::state() const
{
    QAccessible::State state = told().state;
    state.invalid = !isValid();
    if (!state.invalid) {
        state.invisible = !owner.control().isVisible();
        state.disabled = state.disabled || !owner.control().isEnabled();
    }
    return state;
}

QString AccessiblePartInterface::text(QAccessible::Text kind) const
{
    if (kind == QAccessible::Name)
        return told().name;
    return kind == QAccessible::Description ? told().description : QString();
}

QRect AccessiblePartInterface::rect() const
{
    if (!isValid())
        return {};
    const QRect place = told().place;
    return {owner.control().mapToGlobal(place.topLeft()), place.size()};
}

void *AccessiblePartInterface::interface_cast(QAccessible::InterfaceType type)
{
    if (type == QAccessible::ActionInterface)
        return static_cast<QAccessibleActionInterface *>(this);
    if (type == QAccessible::TableCellInterface && owner.isCell(key))
        return static_cast<QAccessibleTableCellInterface *>(this);
    return nullptr;
}

QStringList AccessiblePartInterface::actionNames() const
{
    QStringList names;
    for (const AccessibleAction &action : told().actions)
        names << action.name;
    return names;
}

QStringList AccessiblePartInterface::keyBindingsForAction(const QString &name) const
{
    return Accessibility::keysOf(told().actions, name);
}
