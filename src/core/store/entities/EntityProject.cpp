#include "store/entities/EntityProject.h"

#include "store/entities/Entities.h"

MANAGED_TO_ONE_DEFINITION(EntityProject, EntityCategory, category, setCategory)
MANAGED_TO_MANY_DEFINITION(EntityProject, EntityContacts, delegateToUser, setDelegateToUser)
MANAGED_TO_MANY_DEFINITION(EntityProject, EntityTask, task, setTask)
