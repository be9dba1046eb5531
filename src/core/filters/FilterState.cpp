#include "filters/FilterState.h"

#include "foundation/Localization.h"

FilterState::FilterState(ListFilter &listFilter, std::function<void()> reload)
    : filter(listFilter)
    , reloadData(std::move(reload))
{}

void FilterState::filterStartSettings()
{
    filter.reloadEntry();
    dictionary.reset();
    if (SavedFilter::isEnabled(filter.dictionaryComponent()))
        dictionary = filter.dictionaryComponent();
    filter.setReloadBlock([this](const FilterEntry &entry) { take(entry); });
}

void FilterState::take(const FilterEntry &entry)
{
    dictionary = entry;
    reloadData();
}

void FilterState::clickDeactiveFilter()
{
    dictionary.reset();
    filter.clear();
    reloadData();
}

FilterState::Label FilterState::label() const
{
    if (!isButtonEnabled())
        return Label::Inactive;
    return buttonState() == 1 ? Label::Filtered : Label::Filter;
}

QString FilterState::labelText() const
{
    switch (label()) {
    case Label::Inactive:
        return localized(QStringLiteral("Filter inactive, grouping is activated"));
    case Label::Filtered:
        return localized(QStringLiteral("Filtered"));
    case Label::Filter:
        break;
    }
    return localized(QStringLiteral("Filter"));
}
