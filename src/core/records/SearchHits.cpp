#include "records/SearchHits.h"

#include "foundation/TextFolding.h"
#include "objectstore/StoreReader.h"
#include "store/entities/Entities.h"

#include <QUrl>

#include <algorithm>
#include <array>
#include <unordered_set>

namespace {

/// Where the name of a kind of record stands.
struct Kind
{
    std::string_view entity;
    std::vector<std::string> nameColumns;
};

const std::array<Kind, searchhits::kindCount> &kinds()
{
    static const std::array<Kind, searchhits::kindCount> all = {
        {{EntityTask::entityName, {"title"}},
         {EntityProject::entityName, {"title"}},
         {EntityContacts::entityName, {"firstName", "lastName"}},
         {EntityCompany::entityName, {"title"}},
         {EntityNote::entityName, {"title"}}}};
    return all;
}

QString nameOf(const RowReader &row, const Kind &kind, NameOrder order)
{
    return kind.nameColumns.size() == 1 ? row.text(0) : fullNameIn(order, row.text(0), row.text(1));
}

} // namespace

void searchhits::sort(std::vector<SearchHit> &hits)
{
    std::stable_sort(hits.begin(), hits.end(), [](const SearchHit &one, const SearchHit &other) {
        return one.kind != other.kind ? one.kind < other.kind
                                      : caseInsensitiveCompare(one.name, other.name) < 0;
    });
}

/// The identifiers of records in the rows of the index that contain a text, each once and in their order.
static std::optional<std::vector<QString>> urisWith(StoreReader &reader, const QString &text)
{
    std::vector<QString> uris;
    std::unordered_set<QString> seen;
    const FetchRequest containing =
        EntitySearchIndex::fetchRequest().where(Predicate::format("string CONTAINS[cd] %@", text));
    const bool isRead = reader.visit(containing, {"objectId"}, [&](const RowReader &row) {
        if (seen.insert(row.text(0)).second)
            uris.push_back(row.text(0));
    });
    return isRead ? std::optional(std::move(uris)) : std::nullopt;
}

std::optional<std::vector<SearchHit>> searchhits::read(StoreReader &reader, const QString &storeIdentifier,
                                                       const QString &text, NameOrder order)
{
    const auto uris = urisWith(reader, text);
    if (!uris)
        return std::nullopt;
    std::vector<SearchHit> hits;
    hits.reserve(uris->size());
    const QString store = QStringLiteral("x-morvane://%1/").arg(storeIdentifier);
    for (const QString &uri : *uris) {
        const QStringList parts = uri.startsWith(store) ? uri.mid(store.size()).split(u'/') : QStringList();
        const auto kind = std::find_if(kinds().begin(), kinds().end(), [&parts](const Kind &one) {
            return parts.size() == 2 && parts[0].toStdString() == one.entity;
        });
        if (kind == kinds().end())
            continue;
        const int number = static_cast<int>(kind - kinds().begin());
        const QString id = QUrl::fromPercentEncoding(parts[1].toUtf8());
        const auto add = [&](const RowReader &row) {
            hits.push_back({number, uri, nameOf(row, *kind, order)});
        };
        if (!reader.visitRow(kind->entity, id, kind->nameColumns, add))
            return std::nullopt;
    }
    sort(hits);
    return hits;
}
