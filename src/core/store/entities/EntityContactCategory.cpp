#include "store/entities/EntityContactCategory.h"

#include "store/entities/Entities.h"

MANAGED_TO_MANY_DEFINITION(EntityContactCategory, EntityContacts, contact, setContact)
MANAGED_TO_MANY_DEFINITION(EntityContactCategory, EntityContactGroup, contactGroup, setContactGroup)
