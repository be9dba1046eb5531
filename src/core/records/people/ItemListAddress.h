#pragma once

#include "records/people/ContactDetailHolders.h"

#include <vector>

/// A row of a form that shows one postal address, its type, and the stored row that it stands for.
class ItemListAddress
{
public:
    using AddressPtr = std::shared_ptr<EntityAddress>;
    using Types = std::vector<std::shared_ptr<EntityAddressType>>;
    using Rows = std::vector<ItemListAddress>;

    /// A form row for a stored row, or a blank one for null, whose type is the first that no row of the form
    /// has.
    static ItemListAddress initAddressItem(const AddressPtr &address, const Types &typesPopupItems,
                                           const Rows &allComponents, bool editable);
    /// The first type that no row uses, or null if all are used.
    static std::shared_ptr<EntityAddressType> typeNoSelectAddress(const Types &types,
                                                                  const Rows &allAddressComponents);

    /// Binds the row that this one stands for, and shows what it holds.
    void setEntityAddress(const AddressPtr &address);

    /// The fields that the user types into; the links are not looked at.
    MVAddress &values() { return typed; }
    const MVAddress &values() const { return typed; }
    /// The fields that hold something in one line.
    QString text() const;
    bool isEmpty() const { return text().isEmpty(); }
    bool isEditable() const { return editable; }
    /// The stored row; null for one that is new.
    const AddressPtr &entity() const { return boundRow; }
    const std::shared_ptr<EntityAddressType> &type() const { return typed.addressType; }
    void setType(const std::shared_ptr<EntityAddressType> &type) { typed.addressType = type; }

private:
    MVAddress typed;
    AddressPtr boundRow;
    bool editable = false;
};
