#pragma once

#include "filters/ListFilter.h"

#include <optional>

/// What the bar above a list shows of its filter, and which entry the list is fetched with. While the list is
/// grouped its filter rests: it is kept, but neither applied nor shown.
class FilterState
{
public:
    enum class Label { Filter, Filtered, Inactive };

    /// The filter and whatever `reloadData` reaches must outlive this.
    FilterState(ListFilter &listFilter, std::function<void()> reload);
    FilterState(const FilterState &) = delete;
    FilterState &operator=(const FilterState &) = delete;

    /// The list comes up: takes the saved entry if it is enabled, and listens to the popover from now on.
    void filterStartSettings();
    /// "Clear filter" was clicked.
    void clickDeactiveFilter();
    /// The grouping of the list was chosen; -1 for none. Does not reload.
    void setSelectedIndex(int index) { groupingIndex = index; }

    /// The entry in memory; null without one.
    const FilterEntry *filterDictionary() const { return dictionary ? &*dictionary : nullptr; }
    /// The entry to fetch with: none while the list is grouped.
    const FilterEntry *filterOfList() const { return isButtonEnabled() ? filterDictionary() : nullptr; }

    /// Whether "Clear filter" shows.
    bool isCancelViewVisible() const { return filterOfList() != nullptr; }
    /// Whether the button reacts to clicks.
    bool isButtonEnabled() const { return groupingIndex == -1; }
    /// 1 while a filter is in force, else 0.
    int buttonState() const { return isCancelViewVisible() ? 1 : 0; }
    Label label() const;
    /// The word for it in the user's language.
    QString labelText() const;

private:
    void take(const FilterEntry &entry);

    ListFilter &filter;
    std::function<void()> reloadData;
    std::optional<FilterEntry> dictionary;
    int groupingIndex = -1;
};
