#include "store/queries/RecordRows.h"

#include "foundation/TextFolding.h"
#include "store/entities/MainContext.h"
#include "store/entities/Model.h"

#include <algorithm>

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

static bool hasHeadings(const std::vector<ListedRecord> &records)
{
    return std::ranges::any_of(records, [](const ListedRecord &one) { return !one.heading.isEmpty(); });
}

void RecordRows::set(std::vector<ListedRecord> records)
{
    rows = hasHeadings(records) ? withHeadings(records) : std::move(records);
    isLoadedOld = true;
}

/// Whether a list without headings stays one in which nothing but the changed records moves.
bool RecordRows::isSteady(const std::vector<ListedRecord> &wanted, const std::set<RowId> &changed) const
{
    if (hasHeadings(rows) || hasHeadings(wanted))
        return false;
    auto present = rows.begin();
    const auto next = [&] {
        while (present != rows.end() && changed.contains(present->row))
            ++present;
        return present != rows.end() ? (present++)->row : 0;
    };
    for (const ListedRecord &record : wanted) {
        if (!changed.contains(record.row) && next() != record.row)
            return false;
    }
    return next() == 0;
}

/// Among very many records a few are seen to without a look at each of the others.
void RecordRows::followChanged(const std::vector<ListedRecord> &wanted, const std::set<RowId> &changed,
                               RowsWatcher &watcher)
{
    std::set<RowId> leaving = changed;
    for (const ListedRecord &record : wanted)
        leaving.erase(record.row);
    for (const RowId record : leaving) {
        if (const int row = find(record); row >= 0)
            erase(row, watcher);
    }
    RowId before = 0;
    for (const ListedRecord &record : wanted) {
        if (changed.contains(record.row))
            placeRecord(record, before, watcher);
        before = record.row;
    }
    for (const RowId record : changed) {
        if (const int row = find(record); row >= 0)
            watcher.rowChanged(row);
    }
}

int RecordRows::find(RowId record) const
{
    const auto found = std::ranges::find(rows, record, &ListedRecord::row);
    return found == rows.end() ? -1 : static_cast<int>(found - rows.begin());
}

void RecordRows::erase(int row, RowsWatcher &watcher)
{
    watcher.willRemove(row, row);
    rows.erase(rows.begin() + row);
    isLoadedOld = true;
    watcher.didRemove();
}

void RecordRows::insert(int row, const ListedRecord &inserted, RowsWatcher &watcher)
{
    watcher.willInsert(row, row);
    rows.insert(rows.begin() + row, inserted);
    isLoadedOld = true;
    watcher.didInsert();
}

void RecordRows::removeLeavers(const std::set<RowId> &staying, RowsWatcher &watcher)
{
    for (int row = size() - 1; row >= 0; --row) {
        if (!isHeading(row) && !staying.contains(identifierAt(row)))
            erase(row, watcher);
    }
}

/// Brings a record behind another one, or to the top for 0.
void RecordRows::placeRecord(const ListedRecord &record, RowId before, RowsWatcher &watcher)
{
    const int above = before == 0 ? 0 : find(before) + 1;
    const int row = find(record.row);
    if (row < 0)
        return insert(above, record, watcher);
    rows[static_cast<std::size_t>(row)].heading = record.heading;
    // Headings between the two do not part them.
    int next = above;
    while (next < size() && isHeading(next))
        ++next;
    if (next == row)
        return;
    watcher.willMove(row, above);
    rows.erase(rows.begin() + row);
    rows.insert(rows.begin() + (row < above ? above - 1 : above), record);
    isLoadedOld = true;
    watcher.didMove();
}

/// Once the records stand in their order, each heading goes where the first record below it is.
void RecordRows::settleHeadings(RowsWatcher &watcher)
{
    std::vector<ListedRecord> records;
    std::ranges::copy_if(rows, std::back_inserter(records), [](const auto &row) { return row.row != 0; });
    const std::vector<ListedRecord> wanted = withHeadings(records);
    std::size_t place = 0;
    for (int row = 0; row < size() || place < wanted.size();) {
        const bool isThere =
            row < size() && place < wanted.size() && rows[static_cast<std::size_t>(row)] == wanted[place];
        if (!isThere && row < size() && isHeading(row)) {
            erase(row, watcher);
            continue;
        }
        if (!isThere)
            insert(row, wanted[place], watcher);
        ++row;
        ++place;
    }
}

void RecordRows::follow(const std::vector<ListedRecord> &wanted, const std::set<RowId> &changed,
                        const std::set<RowId> &held, RowsWatcher &watcher)
{
    if (held.empty() && isSteady(wanted, changed))
        return followChanged(wanted, changed, watcher);
    std::set<RowId> former;
    for (const ListedRecord &row : rows)
        former.insert(row.row);
    std::set<RowId> staying = held;
    for (const ListedRecord &record : wanted)
        staying.insert(record.row);
    removeLeavers(staying, watcher);
    RowId before = 0;
    for (const ListedRecord &record : wanted) {
        const bool isNew = !former.contains(record.row);
        if (isNew || (changed.contains(record.row) && !held.contains(record.row)))
            placeRecord(record, before, watcher);
        before = record.row;
    }
    settleHeadings(watcher);
    for (const ListedRecord &record : wanted) {
        if (changed.contains(record.row))
            watcher.rowChanged(find(record.row));
    }
    // What nobody named has changed its place.
    if (const auto all = withHeadings(wanted); held.empty() && rows != all) {
        watcher.willReset();
        rows = all;
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
