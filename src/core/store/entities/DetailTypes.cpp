#include "store/entities/DetailTypes.h"

#include "store/entities/Entities.h"
#include "store/entities/MainContext.h"

namespace {

template <typename Type>
std::shared_ptr<Type> typeOfTitle(const QString &title)
{
    return mainContext().fetchFirst<Type>(Type::fetchRequest().where(Predicate::format("title = %@", title)));
}

template <typename Type>
ObjectList<Type> typesInOrder()
{
    return mainContext().fetch<Type>(Type::fetchRequest().sortedBy({ascending("index")}));
}

} // namespace

MANAGED_TO_MANY_DEFINITION(EntityPhoneType, EntityPhone, phone, setPhone)

MANAGED_TO_MANY_DEFINITION(EntityEmailType, EntityEmail, email, setEmail)

MANAGED_TO_MANY_DEFINITION(EntityURLType, EntityURL, url, setUrl)

MANAGED_TO_MANY_DEFINITION(EntityAddressType, EntityAddress, address, setAddress)

std::shared_ptr<EntityPhoneType> EntityPhoneType::type(const QString &title)
{
    return typeOfTitle<EntityPhoneType>(title);
}

ObjectList<EntityPhoneType> EntityPhoneType::allTypes()
{
    return typesInOrder<EntityPhoneType>();
}

std::shared_ptr<EntityEmailType> EntityEmailType::type(const QString &title)
{
    return typeOfTitle<EntityEmailType>(title);
}

ObjectList<EntityEmailType> EntityEmailType::allTypes()
{
    return typesInOrder<EntityEmailType>();
}

std::shared_ptr<EntityURLType> EntityURLType::type(const QString &title)
{
    return typeOfTitle<EntityURLType>(title);
}

ObjectList<EntityURLType> EntityURLType::allTypes()
{
    return typesInOrder<EntityURLType>();
}

std::shared_ptr<EntityAddressType> EntityAddressType::type(const QString &title)
{
    return typeOfTitle<EntityAddressType>(title);
}

ObjectList<EntityAddressType> EntityAddressType::allTypes()
{
    return typesInOrder<EntityAddressType>();
}
