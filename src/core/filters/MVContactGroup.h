#pragma once

#include "store/entities/Entities.h"

#include <QString>

#include <optional>
#include <vector>

/// The values of a group or a list of contacts before it is stored. Absent values are those that nobody set.
class MVContactGroup
{
public:
    std::optional<int> criteria;
    QString title;
    std::optional<bool> allCompanies;
    std::optional<bool> allCategories;
    std::optional<bool> useGeneralFilter;
    std::vector<std::shared_ptr<EntityContactCategory>> categories;
    std::vector<CompanyPtr> companies;
    std::vector<ContactPtr> contacts;
};
