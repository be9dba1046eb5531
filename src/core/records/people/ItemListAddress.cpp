#include "records/people/ItemListAddress.h"

#include "records/people/FreeType.h"

#include <QStringList>

ItemListAddress ItemListAddress::initAddressItem(const AddressPtr &address, const Types &typesPopupItems,
                                                 const Rows &allComponents, bool editable)
{
    ItemListAddress row;
    row.editable = editable;
    if (address)
        row.setEntityAddress(address);
    else
        row.setType(typeNoSelectAddress(typesPopupItems, allComponents));
    return row;
}

std::shared_ptr<EntityAddressType> ItemListAddress::typeNoSelectAddress(const Types &types,
                                                                        const Rows &allAddressComponents)
{
    return firstTypeWithoutRow(types, allAddressComponents);
}

void ItemListAddress::setEntityAddress(const AddressPtr &address)
{
    boundRow = address;
    typed = {};
    if (!address)
        return;
    typed.street1 = address->street1();
    typed.street2 = address->street2();
    typed.city = address->city();
    typed.state = address->state();
    typed.zip = address->zip();
    typed.country = address->country();
    typed.addressType = address->addressType();
}

QString ItemListAddress::text() const
{
    QStringList filled = {typed.street1, typed.street2, typed.city, typed.state, typed.zip, typed.country};
    filled.removeAll(QString());
    return filled.join(QStringLiteral(", "));
}
