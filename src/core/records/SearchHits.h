#pragma once

#include "objectstore/ManagedObject.h"
#include "store/entities/FullName.h"

#include <QString>
#include <QStringList>

#include <functional>
#include <memory>
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
    /// Whether the name has the text that was looked for, and not only something else of the record.
    bool isNamed = false;
};

/// A line of the results: a heading (a localised word in capitals), or a record.
struct SearchRow
{
    QString heading;
    /// The permanent URI of the record; empty for a heading.
    QString uri;
    /// What the list shows of the record.
    QString name;
    /// Whether that has the text that was looked for.
    bool isNamed = false;

    bool isHeading() const { return uri.isEmpty(); }
    /// Null for a heading, and for a record that is gone since. Main thread only.
    ObjectPtr record() const;
};

/// What a search gives. It may hold a line for every record there is, so it is handed on without a copy.
using SearchRows = std::shared_ptr<const std::vector<SearchRow>>;

/// Finding records by the rows of the search index that contain a text. Any thread, but for `headings`.
namespace searchhits {

inline constexpr int kindCount = 5;

/// What a search has to know before it starts.
struct Query
{
    /// The identity of the store, which its URIs begin with.
    QString storeIdentifier;
    QString text;
    NameOrder order;
    /// The headings in the user's language, by kind.
    QStringList headings;
};

/// The localised words in capitals. Main thread only.
QStringList headings();

/// The lines for records: by kind and, whatever the case, by name, each kind under its heading.
SearchRows rows(std::vector<SearchHit> hits, const QStringList &headings);

/// Hears of the records that were found so far.
using FirstHits = std::function<void(std::vector<SearchHit> hits)>;

/// What the last save of a store holds, each record once.
/// \param first is called once with the first of many, while the others are still looked for; it may be
/// empty.
/// \return nothing if the reading was cancelled or failed.
std::optional<std::vector<SearchHit>> read(StoreReader &reader, const Query &query,
                                           const FirstHits &first = {});

} // namespace searchhits
