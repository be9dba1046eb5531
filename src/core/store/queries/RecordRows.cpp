#include "store/queries/RecordRows.h"

#include "foundation/TextFolding.h"
#include "store/entities/MainContext.h"
#include "store/entities/Model.h"

#include <algorithm>
#include <unordered_set>

namespace {

struct Hash
{
    std::size_t operator()(const ListedRecord &row) const { return qHash(row.heading, qHash(row.row)); }
};
using RowSet = std::unordered_set<ListedRecord, Hash>;

} // namespace

std::vector<ListedRecord> RecordRows::withHeadings(const std::vector<ListedRecord> &records)
{
    std::vector<ListedRecord> rows;
    rows.reserve(records.size());
    const QString *above = nullptr;
    for (const ListedRecord &record : records) {
        if (!record.heading.isEmpty() && (!above || *above != record.heading))
            rows.push_back({0, record.heading});
        above = &record.heading;
        rows.push_back(record);
    }
    return rows;
}

void RecordRows::set(const std::vector<ListedRecord> &records)
{
    rows = withHeadings(records);
    isLoadedOld = true;
}

int RecordRows::find(const ListedRecord &row) const
{
    const auto found = std::ranges::find(rows, row);
    return found == rows.end() ? -1 : static_cast<int>(found - rows.begin());
}

int RecordRows::placeFor(const std::vector<ListedRecord> &wanted, std::size_t place) const
{
    return place == 0 ? 0 : find(wanted[place - 1]) + 1;
}

void RecordRows::follow(const std::vector<ListedRecord> &records, const std::set<RowId> &changed,
                        const std::set<RowId> &held, RowsWatcher &watcher)
{
    const std::vector<ListedRecord> wanted = withHeadings(records);
    const RowSet wantedRows(wanted.begin(), wanted.end());
    const RowSet formerRows(rows.begin(), rows.end());
    isLoadedOld = true;
    for (int row = size() - 1; row >= 0; --row) {
        const ListedRecord &one = rows[static_cast<std::size_t>(row)];
        if (wantedRows.contains(one) || (one.row != 0 && held.contains(one.row)))
            continue;
        watcher.willRemove(row, row);
        rows.erase(rows.begin() + row);
        isLoadedOld = true;
        watcher.didRemove();
    }
    for (std::size_t place = 0; place < wanted.size(); ++place) {
        const ListedRecord &one = wanted[place];
        const bool isNew = !formerRows.contains(one);
        if (!isNew && (one.row == 0 || !changed.contains(one.row) || held.contains(one.row)))
            continue;
        const int above = placeFor(wanted, place);
        if (isNew) {
            watcher.willInsert(above, above);
            rows.insert(rows.begin() + above, one);
            isLoadedOld = true;
            watcher.didInsert();
        } else if (const int row = find(one); row != above && row + 1 != above) {
            watcher.willMove(row, above);
            rows.erase(rows.begin() + row);
            rows.insert(rows.begin() + (row < above ? above - 1 : above), one);
            isLoadedOld = true;
            watcher.didMove();
        }
        watcher.rowChanged(find(one));
    }
    // What nobody named has changed its place.
    if (held.empty() && rows != wanted) {
        watcher.willReset();
        rows = wanted;
        isLoadedOld = true;
        watcher.didReset();
    }
}

ObjectPtr RecordRows::recordAt(int row) const
{
    if (std::exchange(isLoadedOld, false)) {
        std::vector<RowId> identifiers;
        identifiers.reserve(rows.size());
        for (const ListedRecord &one : rows)
            identifiers.push_back(one.row);
        loaded =
            ObjectListBase(mainContext(), organiserModel().requireEntity(entity), std::move(identifiers));
    }
    return isHeading(row) ? nullptr : loaded.objectAt(row);
}

int RecordRows::rowOf(const ManagedObject &record) const
{
    if (record.entity().name() != entity)
        return -1;
    const auto found = std::ranges::find(rows, record.rowId(), &ListedRecord::row);
    return found == rows.end() ? -1 : static_cast<int>(found - rows.begin());
}

QString RecordRows::letterOf(const QString &text)
{
    const QString folded = foldedForSearch(text.left(2)).left(1);
    return folded.isEmpty() || !folded.front().isLetter() ? QStringLiteral("#") : folded.toUpper();
}
