#include "store/entities/ContactDetails.h"

#include "store/entities/Entities.h"

MANAGED_TO_ONE_DEFINITION(EntityPhone, EntityPhoneType, type, setType)
MANAGED_TO_ONE_DEFINITION(EntityPhone, EntityContacts, contact, setContact)
MANAGED_TO_ONE_DEFINITION(EntityPhone, EntityCompany, company, setCompany)

MANAGED_TO_ONE_DEFINITION(EntityEmail, EntityEmailType, type, setType)
MANAGED_TO_ONE_DEFINITION(EntityEmail, EntityContacts, contact, setContact)
MANAGED_TO_ONE_DEFINITION(EntityEmail, EntityCompany, company, setCompany)

MANAGED_TO_ONE_DEFINITION(EntityURL, EntityURLType, type, setType)
MANAGED_TO_ONE_DEFINITION(EntityURL, EntityContacts, contact, setContact)
MANAGED_TO_ONE_DEFINITION(EntityURL, EntityCompany, company, setCompany)

MANAGED_TO_ONE_DEFINITION(EntityAddress, EntityAddressType, addressType, setAddressType)
MANAGED_TO_ONE_DEFINITION(EntityAddress, EntityContacts, contact, setContact)
MANAGED_TO_ONE_DEFINITION(EntityAddress, EntityCompany, company, setCompany)
