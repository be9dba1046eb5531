#include "filters/MultiPick.h"

#include "foundation/TextFolding.h"

#include <algorithm>

MultiPick::MultiPick(std::vector<Entry> entries, Load load, const FilterSelection &selected)
    : all(std::move(entries))
    , objectOf(std::move(load))
    , everything(selected.selectedAll)
{
    std::set<RowId> rows;
    for (const ObjectPtr &object : selected.objects) {
        if (object)
            rows.insert(object->rowId());
    }
    for (std::size_t index = 0; index < all.size(); ++index) {
        if (everything || rows.contains(all[index].row))
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
    if (everything)
        return selection;
    for (const std::size_t index : selectRows) {
        if (ObjectPtr object = objectOf(all[index].row))
            selection.objects.push_back(std::move(object));
    }
    return selection;
}
