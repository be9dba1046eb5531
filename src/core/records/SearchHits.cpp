#include "records/SearchHits.h"

#include "foundation/Localization.h"
#include "foundation/TextFolding.h"
#include "objectstore/StoreReader.h"
#include "store/entities/Entities.h"
#include "store/queries/DBWorker.h"
#include "store/queries/TypedNumber.h"

#include <QUrl>

#include <algorithm>
#include <array>
#include <numeric>
#include <unordered_map>
#include <unordered_set>

namespace {

/// From so many records of a kind on, reading all of its rows once is quicker than looking for each.
constexpr std::size_t manyRecords = 400;

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

/// The records of one kind that are named in the index, in the order of the index.
struct Named
{
    std::vector<QString> uris;
    std::unordered_map<QString, std::size_t> places;
};

using NamedByKind = std::array<Named, searchhits::kindCount>;

/// Takes in a URI of this store; those of others, and of kinds that are not searched, are left out.
void add(NamedByKind &named, const QString &uri, const QString &store)
{
    const QStringList parts = uri.startsWith(store) ? uri.mid(store.size()).split(u'/') : QStringList();
    if (parts.size() != 2)
        return;
    const std::string entity = parts[0].toStdString();
    const auto kind =
        std::find_if(kinds().begin(), kinds().end(), [&](const Kind &one) { return one.entity == entity; });
    if (kind == kinds().end())
        return;
    Named &of = named[static_cast<std::size_t>(kind - kinds().begin())];
    if (of.places.emplace(QUrl::fromPercentEncoding(parts[1].toUtf8()), of.uris.size()).second)
        of.uris.push_back(uri);
}

/// So many fill a screen.
constexpr std::size_t firstRecords = 60;

/// Whose number has these digits, however it is divided.
bool addHoldersOfNumber(NamedByKind &named, StoreReader &reader, const QString &digits, const QString &store)
{
    if (digits.isEmpty())
        return true;
    return reader.visit(
        EntityPhone::fetchRequest(), {"number", "contact", "company"}, [&](const RowReader &row) {
            if (!typednumber::isIn(row.text(0), digits))
                return;
            for (const auto &[column, entity] :
                 {std::pair(1, EntityContacts::entityName), std::pair(2, EntityCompany::entityName)}) {
                const QByteArray holder = QUrl::toPercentEncoding(row.text(column));
                const QString kind = QString::fromUtf8(entity.data(), static_cast<qsizetype>(entity.size()));
                if (!holder.isEmpty())
                    add(named, store + kind + u'/' + QString::fromLatin1(holder), store);
            }
        });
}

/// \param enough is called once as soon as there are enough for a screen.
std::optional<NamedByKind> namedIn(StoreReader &reader, const searchhits::Query &query,
                                   const std::function<void(const NamedByKind &)> &enough)
{
    NamedByKind named;
    std::unordered_set<QString> seen;
    const QString store = QStringLiteral("x-morvane://%1/").arg(query.storeIdentifier);
    const FetchRequest containing =
        EntitySearchIndex::fetchRequest().where(Predicate::format("string CONTAINS[cd] %@", query.text));
    const bool isRead = reader.visit(containing, {"objectId"}, [&](const RowReader &row) {
        const auto [uri, isNew] = seen.insert(row.text(0));
        if (!isNew)
            return;
        add(named, *uri, store);
        if (enough && seen.size() == firstRecords)
            enough(named);
    });
    if (!isRead || !addHoldersOfNumber(named, reader, typednumber::digitsOf(query.text), store))
        return std::nullopt;
    return named;
}

/// The names of the records, by their places; absent for a record that is gone.
bool readNames(StoreReader &reader, const Kind &kind, const Named &named, NameOrder order,
               std::vector<std::optional<QString>> &names)
{
    std::vector<std::string> columns = kind.nameColumns;
    columns.emplace_back("id");
    const int idColumn = static_cast<int>(kind.nameColumns.size());
    const auto take = [&](const RowReader &row) {
        const auto place = named.places.find(row.text(idColumn));
        if (place != named.places.end())
            names[place->second] = idColumn == 1 ? row.text(0) : fullNameIn(order, row.text(0), row.text(1));
    };
    if (named.uris.size() >= manyRecords)
        return reader.visit(FetchRequest(kind.entity), columns, take);
    return std::all_of(named.places.begin(), named.places.end(), [&](const auto &place) {
        return reader.visitRow(kind.entity, place.first, columns, take);
    });
}

/// The places of hits in the order of their kinds and names.
std::vector<std::size_t> sortedPlaces(const std::vector<SearchHit> &hits)
{
    std::vector<QString> folded;
    folded.reserve(hits.size());
    for (const SearchHit &hit : hits)
        folded.push_back(hit.name.toCaseFolded());
    std::vector<std::size_t> places(hits.size());
    std::iota(places.begin(), places.end(), std::size_t(0));
    std::stable_sort(places.begin(), places.end(), [&](std::size_t one, std::size_t other) {
        return hits[one].kind != hits[other].kind ? hits[one].kind < hits[other].kind
                                                  : folded[one] < folded[other];
    });
    return places;
}

} // namespace

ObjectPtr SearchRow::record() const
{
    return isHeading() ? nullptr : DBWorker::getObjectFromId(uri);
}

QStringList searchhits::headings()
{
    QStringList words;
    for (const QString &word : {QStringLiteral("Task"), QStringLiteral("Project"), QStringLiteral("Contact"),
                                QStringLiteral("Company"), QStringLiteral("Note")})
        words.append(localized(word).toUpper());
    return words;
}

SearchRows searchhits::rows(std::vector<SearchHit> hits, const QStringList &headings)
{
    auto made = std::make_shared<std::vector<SearchRow>>();
    made->reserve(hits.size() + kindCount);
    int lastKind = -1;
    for (const std::size_t place : sortedPlaces(hits)) {
        SearchHit &hit = hits[place];
        if (hit.kind != std::exchange(lastKind, hit.kind))
            made->push_back({headings.at(hit.kind), {}, {}});
        made->push_back({{}, std::move(hit.uri), std::move(hit.name), hit.isNamed});
    }
    return made;
}

/// The records with their names.
static std::optional<std::vector<SearchHit>> hitsOf(StoreReader &reader, const NamedByKind &named,
                                                    const searchhits::Query &query)
{
    const QString wanted = foldedForSearch(query.text);
    std::vector<SearchHit> hits;
    for (int kind = 0; kind < searchhits::kindCount; ++kind) {
        const Named &of = named[static_cast<std::size_t>(kind)];
        std::vector<std::optional<QString>> names(of.uris.size());
        if (!readNames(reader, kinds()[static_cast<std::size_t>(kind)], of, query.order, names))
            return std::nullopt;
        for (std::size_t place = 0; place < names.size(); ++place) {
            if (!names[place])
                continue;
            const bool isNamed = containsFolded(*names[place], wanted);
            hits.push_back({kind, of.uris[place], std::move(*names[place]), isNamed});
        }
    }
    return hits;
}

std::optional<std::vector<SearchHit>> searchhits::read(StoreReader &reader, const Query &query,
                                                       const FirstHits &first)
{
    std::function<void(const NamedByKind &)> enough;
    if (first)
        enough = [&](const NamedByKind &some) {
            if (auto hits = hitsOf(reader, some, query))
                first(std::move(*hits));
        };
    const auto named = namedIn(reader, query, enough);
    return named ? hitsOf(reader, *named, query) : std::nullopt;
}
