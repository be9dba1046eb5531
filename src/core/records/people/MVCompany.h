#pragma once

#include "store/entities/Entities.h"

#include <QString>

#include <optional>
#include <vector>

/// The values of a company while a window has them. Links hold the rows.
class MVCompany
{
public:
    QString details;
    std::optional<int> keyPhoto;
    /// The name of the picture in the image store; empty without one.
    QString photoName;
    QString title;
    std::vector<std::shared_ptr<EntityAddress>> address;
    /// Who works there.
    std::vector<ContactPtr> contact;
    std::vector<std::shared_ptr<EntityContactGroup>> contactGroup;
    std::vector<std::shared_ptr<EntityEmail>> email;
    std::vector<std::shared_ptr<EntityPhone>> phone;
    std::vector<TaskPtr> task;
    std::vector<std::shared_ptr<EntityURL>> url;
};
