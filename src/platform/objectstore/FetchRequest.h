#pragma once

#include "objectstore/Predicate.h"
#include "objectstore/SortDescriptor.h"

#include <QString>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// What to look for: objects of an entity that pass a predicate, in an order.
class FetchRequest
{
public:
    explicit FetchRequest(std::string_view name)
        : entityName(name)
    {}

    FetchRequest &where(Predicate condition)
    {
        predicate = std::move(condition);
        return *this;
    }
    FetchRequest &sortedBy(SortDescriptors descriptors)
    {
        sortDescriptors = std::move(descriptors);
        return *this;
    }
    FetchRequest &limitedTo(int count)
    {
        limit = count;
        return *this;
    }

    /// Looks at these rows and at no others.
    FetchRequest &among(std::vector<RowId> rows)
    {
        candidates = std::move(rows);
        return *this;
    }

    /// Names a partial index of the entity whose condition all rows fulfil that pass anyway. It changes
    /// nothing about what is found, but lets SQLite see that this index has all of it.
    FetchRequest &along(std::string_view index)
    {
        partialIndex = index;
        return *this;
    }

    /// What the log says before the error if the fetch fails.
    FetchRequest &reportedAs(QString text)
    {
        failureText = std::move(text);
        return *this;
    }

    std::string entityName;
    Predicate predicate;
    /// In order of weight. With none, rows come in the order in which they were inserted.
    SortDescriptors sortDescriptors;
    /// The greatest number of objects; negative for all.
    int limit = -1;
    /// The only rows that can be found; absent for all.
    std::optional<std::vector<RowId>> candidates;
    /// Empty for none.
    std::string partialIndex;
    QString failureText = QStringLiteral("Cannot fetch");
};
