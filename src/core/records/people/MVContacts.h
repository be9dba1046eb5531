#pragma once

#include "foundation/Date.h"
#include "store/entities/Entities.h"
#include "store/entities/FullName.h"

#include <QString>

#include <optional>
#include <vector>

/// The values of a contact while a window has them. Links hold the rows; null for none.
class MVContacts
{
public:
    OptionalDate birthday;
    QString firstName;
    QString lastName;
    std::optional<int> keyPhoto;
    /// The name of the picture in the image store; empty without one.
    QString photoName;
    std::vector<std::shared_ptr<EntityAddress>> address;
    CompanyPtr company;
    std::shared_ptr<EntityContactCategory> contactCategory;
    std::vector<std::shared_ptr<EntityContactGroup>> contactGroup;
    std::vector<std::shared_ptr<EntityEmail>> email;
    std::vector<std::shared_ptr<EntityPhone>> phone;
    std::vector<ProjectPtr> project;
    std::vector<TaskPtr> task;
    std::vector<std::shared_ptr<EntityURL>> url;
    std::vector<std::shared_ptr<EntityNote>> note;

    /// The same as that of a stored contact.
    QString fullName() const { return fullNameWith(firstName, lastName); }
};
