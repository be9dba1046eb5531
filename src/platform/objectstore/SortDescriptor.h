#pragma once

#include <string>
#include <vector>

/// One key by which fetched rows are ordered. Absent values come first in ascending order, last in
/// descending.
struct SortDescriptor
{
    enum class Comparison {
        /// Numbers and dates by value, texts by code point.
        Literal,
        /// Texts in the order of the user's language, ignoring case.
        LocalizedCaseInsensitive,
    };

    std::string key;
    bool isAscending = true;
    Comparison comparison = Comparison::Literal;
};

using SortDescriptors = std::vector<SortDescriptor>;

inline SortDescriptor ascending(std::string key)
{
    return {std::move(key), true, SortDescriptor::Comparison::Literal};
}
inline SortDescriptor descending(std::string key)
{
    return {std::move(key), false, SortDescriptor::Comparison::Literal};
}
