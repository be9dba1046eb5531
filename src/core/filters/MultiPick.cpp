#include "filters/MultiPick.h"

#include "foundation/TextFolding.h"

#include <algorithm>

MultiPick::MultiPick(std::vector<Entry> entries, const FilterSelection &selected)
    : all(std::move(entries))
    , everything(selected.selectedAll)
{
    for (std::size_t index = 0; index < all.size(); ++index) {
        if (everything || std::ranges::count(selected.objects, all[index].object) > 0)
            selectRows.insert(index);
    }
    search({});
}

void MultiPick::search(const QString &text)
{
    const QString needle = foldedForSearch(text.trimmed());
    dataSource.clear();
    for (std::size_t index = 0; index < all.size(); ++index) {
        if (containsFolded(all[index].title, needle))
            dataSource.push_back(index);
    }
}

void MultiPick::toggle(int row)
{
    const std::size_t index = indexOf(row);
    if (selectRows.erase(index) == 0)
        selectRows.insert(index);
    everything = false;
}

void MultiPick::toggleAll()
{
    everything = !everything;
    selectRows.clear();
    for (std::size_t index = 0; everything && index < all.size(); ++index)
        selectRows.insert(index);
}

FilterSelection MultiPick::selection() const
{
    FilterSelection selection;
    selection.selectedAll = everything;
    for (const std::size_t index : selectRows)
        selection.objects.push_back(all[index].object);
    return selection;
}
