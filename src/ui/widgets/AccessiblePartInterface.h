#pragma once

#include "widgets/AccessibleControl.h"

#include <algorithm>

/// A painted part as assistive technology sees it. It knows its key alone; what it is, the control says.
class AccessiblePartInterface : public QAccessibleInterface,
                                public QAccessibleActionInterface,
                                public QAccessibleTableCellInterface
{
public:
    AccessiblePartInterface(const AccessibleControl &whole, quint64 partKey)
        : owner(whole)
        , key(partKey)
    {}

    quint64 partKey() const { return key; }
    const AccessibleControl *control() const { return &owner; }

    // What it is
    bool isValid() const override { return isLeaving || owner.exists(key); }
    /// While it is told that the part has gone, it is the part still.
    void setLeaving(bool leaving) { isLeaving = leaving; }
    QObject *object() const override { return nullptr; }
    QWindow *window() const override { return owner.window(); }
    QAccessibleInterface *parent() const override { return const_cast<AccessibleControl *>(&owner); }
    QAccessibleInterface *child(int) const override { return nullptr; }
    QAccessibleInterface *childAt(int, int) const override { return nullptr; }
    int childCount() const override { return 0; }
    int indexOfChild(const QAccessibleInterface *) const override { return -1; }
    QAccessible::Role role() const override { return told().role; }
    QAccessible::State state() const override;
    QString text(QAccessible::Text kind) const override;
    void setText(QAccessible::Text, const QString &) override {}
    QRect rect() const override;
    void *interface_cast(QAccessible::InterfaceType type) override;

    // What can be done with it
    QStringList actionNames() const override;
    void doAction(const QString &name) override { const_cast<AccessibleControl &>(owner).perform(key, name); }
    QStringList keyBindingsForAction(const QString &name) const override;

    // A cell of a grid
    bool isSelected() const override { return told().state.selected; }
    QList<QAccessibleInterface *> columnHeaderCells() const override { return {}; }
    QList<QAccessibleInterface *> rowHeaderCells() const override { return {}; }
    int columnIndex() const override { return owner.placeOf(key) % std::max(1, owner.columnCount()); }
    int rowIndex() const override { return owner.placeOf(key) / std::max(1, owner.columnCount()); }
    int columnExtent() const override { return 1; }
    int rowExtent() const override { return 1; }
    QAccessibleInterface *table() const override { return parent(); }

private:
    AccessiblePart told() const { return owner.exists(key) ? owner.tellPart(key) : AccessiblePart(); }

    const AccessibleControl &owner;
    quint64 key;
    bool isLeaving = false;
};
