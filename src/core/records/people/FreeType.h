#pragma once

#include <algorithm>
#include <memory>
#include <vector>

/// The first of some types that no form row uses yet, or null if all are used. Types are compared by
/// identity; rows tell theirs by `type()`.
template <typename Type, typename Rows>
std::shared_ptr<Type> firstTypeWithoutRow(const std::vector<std::shared_ptr<Type>> &types, const Rows &rows)
{
    for (const std::shared_ptr<Type> &type : types) {
        const bool isUsed =
            std::any_of(rows.begin(), rows.end(), [&type](const auto &row) { return row.type() == type; });
        if (!isUsed)
            return type;
    }
    return nullptr;
}
