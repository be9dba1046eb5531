#pragma once

#include "filters/ListFilter.h"

#include <functional>
#include <set>

/// Objects of which any number are marked: all of them, or those that the user marks one by one. A search
/// narrows what is shown and leaves the marks as they are.
class MultiPick
{
public:
    struct Entry
    {
        /// What the store calls the object.
        RowId row = 0;
        QString title;
    };
    /// Gives the object of a row; null for one that has gone.
    using Load = std::function<ObjectPtr(RowId)>;

    /// \param load asked for what is handed over, so that of very many none has to be loaded before.
    MultiPick(std::vector<Entry> entries, Load load, const FilterSelection &selected);

    /// What is shown, in order.
    const std::vector<Entry> &allData() const { return all; }
    int rowCount() const { return static_cast<int>(dataSource.size()); }
    QString titleOf(int row) const { return all[indexOf(row)].title; }
    bool isMarked(int row) const { return selectRows.contains(indexOf(row)); }
    bool selectedAll() const { return everything; }

    /// Shows what holds the text, case and diacritics ignored; an empty text shows everything.
    void search(const QString &text);
    /// A press on a shown row.
    void toggle(int row);
    /// Marks everything, or unmarks it, whatever a search shows of it.
    void toggleAll();
    /// What is handed over. If that is everything, it is said and not listed.
    FilterSelection selection() const;

private:
    std::size_t indexOf(int row) const { return dataSource[static_cast<std::size_t>(row)]; }

    std::vector<Entry> all;
    Load objectOf;
    std::vector<std::size_t> dataSource;
    std::set<std::size_t> selectRows;
    bool everything;
};
