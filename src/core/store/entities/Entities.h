#pragma once

#include "store/entities/ContactDetails.h"
#include "store/entities/DetailTypes.h"
#include "store/entities/EntityCategory.h"
#include "store/entities/EntityCompany.h"
#include "store/entities/EntityContactCategory.h"
#include "store/entities/EntityContactGroup.h"
#include "store/entities/EntityContacts.h"
#include "store/entities/EntityProject.h"
#include "store/entities/EntityTask.h"
#include "store/entities/SmallEntities.h"

#include <memory>

using TaskPtr = std::shared_ptr<EntityTask>;
using ProjectPtr = std::shared_ptr<EntityProject>;
using ContactPtr = std::shared_ptr<EntityContacts>;
using CompanyPtr = std::shared_ptr<EntityCompany>;
using CategoryPtr = std::shared_ptr<EntityCategory>;
