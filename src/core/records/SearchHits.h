#pragma once

#include "store/entities/FullName.h"

#include <QString>

#include <optional>
#include <vector>

class StoreReader;

/// A record that a search found.
struct SearchHit
{
    /// 0 task, 1 project, 2 contact, 3 company, 4 note.
    int kind;
    /// The permanent URI.
    QString uri;
    /// The name as the list shows and sorts it.
    QString name;
};

/// Finding records by the rows of the search index that contain a text.
namespace searchhits {

inline constexpr int kindCount = 5;

/// By kind, and within a kind by name, whatever the case.
void sort(std::vector<SearchHit> &hits);

/// What the last save of a store holds, sorted, each record once. Any thread.
/// \param storeIdentifier the identity of the store, which its URIs begin with.
/// \return nothing if the reading was cancelled or failed.
std::optional<std::vector<SearchHit>> read(StoreReader &reader, const QString &storeIdentifier,
                                           const QString &text, NameOrder order);

} // namespace searchhits
