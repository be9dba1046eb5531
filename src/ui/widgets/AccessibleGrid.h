#pragma once

#include "widgets/AccessibleControl.h"

/// A control whose parts stand in rows and columns, each place taken.
class AccessibleGrid : public AccessibleControl, public QAccessibleTableInterface
{
public:
    using AccessibleControl::AccessibleControl;

    void *interface_cast(QAccessible::InterfaceType type) override;

    int columnCount() const override { return AccessibleControl::columnCount(); }
    int rowCount() const override;
    QAccessibleInterface *cellAt(int row, int column) const override;
    QString columnDescription(int column) const override;
    QString rowDescription(int) const override { return {}; }
    QAccessibleInterface *caption() const override { return nullptr; }
    QAccessibleInterface *summary() const override { return nullptr; }

    QList<QAccessibleInterface *> selectedCells() const override;
    int selectedCellCount() const override { return static_cast<int>(selectedCells().size()); }
    // Cells are selected, not whole rows or columns.
    int selectedColumnCount() const override { return 0; }
    int selectedRowCount() const override { return 0; }
    QList<int> selectedColumns() const override { return {}; }
    QList<int> selectedRows() const override { return {}; }
    bool isColumnSelected(int) const override { return false; }
    bool isRowSelected(int) const override { return false; }
    bool selectRow(int) override { return false; }
    bool selectColumn(int) override { return false; }
    bool unselectRow(int) override { return false; }
    bool unselectColumn(int) override { return false; }
    void modelChange(QAccessibleTableModelChangeEvent *) override {}
};
