#include "records/MarkedRows.h"

#include "foundation/TextFolding.h"
#include "store/queries/RecordRows.h"

#include <algorithm>
#include <tuple>

/// Titles that begin with no letter come together, whatever stands between them in the order.
void MarkedRows::setEntries(std::vector<Entry> newEntries)
{
    struct Keyed
    {
        bool isLettered;
        // A key for each title is quicker than a comparison of titles for each step of the sorting.
        QByteArray place;
        Ordered ordered;
    };
    std::vector<Keyed> keyed;
    keyed.reserve(newEntries.size());
    for (Entry &entry : newEntries) {
        QString letter = RecordRows::letterOf(entry.title);
        QByteArray place = collationSortKey(entry.title);
        const bool isLettered = letter != QLatin1Char('#');
        keyed.push_back({isLettered, std::move(place), {std::move(entry), std::move(letter)}});
    }
    const auto key = [](const Keyed &one) {
        return std::tie(one.isLettered, one.place, one.ordered.entry.key);
    };
    std::ranges::sort(keyed, std::less<>(), key);
    entries.clear();
    entries.reserve(keyed.size());
    for (Keyed &one : keyed)
        entries.push_back(std::move(one.ordered));
    search(wanted);
}

void MarkedRows::show()
{
    shown.clear();
    const bool hasLetters = wanted.isEmpty() || lettersInSearch == LettersInSearch::Stay;
    const QString *letter = nullptr;
    for (const Ordered &one : entries) {
        if (!wanted.isEmpty() && !one.folded.contains(wanted))
            continue;
        if (hasLetters && (!letter || *letter != one.letter)) {
            letter = &one.letter;
            shown.push_back({0, one.letter});
        }
        shown.push_back({one.entry.key, one.entry.title, one.entry.detail});
    }
}

void MarkedRows::search(const QString &text)
{
    wanted = foldedForSearch(text);
    if (!wanted.isEmpty() && !entries.empty() && entries.front().folded.isNull()) {
        for (Ordered &one : entries)
            one.folded = foldedForSearch(one.entry.title);
    }
    show();
}

void MarkedRows::setMarked(std::set<Key> keys)
{
    marks = std::move(keys);
}

bool MarkedRows::isFixed(int row) const
{
    return fixed.contains(shown[static_cast<std::size_t>(row)].key);
}

bool MarkedRows::isMarked(int row) const
{
    return isFixed(row) || marks.contains(shown[static_cast<std::size_t>(row)].key);
}

void MarkedRows::toggle(int row)
{
    const Key key = shown.at(static_cast<std::size_t>(row)).key;
    if (key != 0 && !fixed.contains(key) && marks.erase(key) == 0)
        marks.insert(key);
}

void MarkedRows::markShown(bool isWanted)
{
    for (const Row &row : shown) {
        if (row.isHeading() || fixed.contains(row.key))
            continue;
        if (isWanted)
            marks.insert(row.key);
        else
            marks.erase(row.key);
    }
}

bool MarkedRows::canMarkShown() const
{
    return std::ranges::any_of(
        shown, [this](const Row &row) { return !row.isHeading() && !fixed.contains(row.key); });
}

bool MarkedRows::areAllShownMarked() const
{
    bool isAny = false;
    for (const Row &row : shown) {
        if (row.isHeading() || fixed.contains(row.key))
            continue;
        if (!marks.contains(row.key))
            return false;
        isAny = true;
    }
    return isAny;
}
