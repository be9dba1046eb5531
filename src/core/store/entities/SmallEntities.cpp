#include "store/entities/SmallEntities.h"

#include "store/entities/Entities.h"

MANAGED_TO_MANY_DEFINITION(EntityTags, EntityTask, task, setTask)

MANAGED_TO_MANY_DEFINITION(EntityLocation, EntityTask, task, setTask)

MANAGED_TO_ONE_DEFINITION(EntityNote, EntityContacts, contact, setContact)
MANAGED_TO_ONE_DEFINITION(EntityNote, EntityCompany, company, setCompany)
