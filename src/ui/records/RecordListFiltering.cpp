#include "filters/FilterButton.h"
#include "filters/FilterButtonCancelView.h"
#include "filters/TasksTabTopView.h"
#include "foundation/Localization.h"
#include "records/RecordListScreen.h"
#include "widgets/EmptyState.h"

#include <QApplication>
#include <QVBoxLayout>

using namespace Qt::Literals::StringLiterals;

// What narrows a list, above it.

void RecordListScreen::setUpFilter(std::shared_ptr<ListFilter> filter)
{
    listFilter = std::move(filter);
    topView = new TasksTabTopView;
    setStrip(topView);
    filteredState = new EmptyState(u"filtered"_s, description.filteredSentence, listLayer);
    filteredState->setAction(localized(u"Clear filter"_s));
    listLayer->layout()->addWidget(filteredState);
    filteredState->hide();
    connect(filteredState, &EmptyState::actionClicked, this, [this] {
        clearFilter();
        view->setFocus();
    });
    // Keys that come in quick succession share one fetch.
    filterState = std::make_unique<FilterState>(*listFilter, [this] {
        mustCloseHidden = true;
        showFilterState();
        reloadSoon();
    });
    filterState->filterStartSettings();
    topView->buttonFilter()->setFilter(listFilter.get());
    connect(topView->cancelFilterView(), &QAbstractButton::clicked, this, &RecordListScreen::clearFilter);
}

void RecordListScreen::setStrip(QWidget *aboveList)
{
    strip = aboveList;
    static_cast<QVBoxLayout *>(layout())->insertWidget(0, strip);
}

void RecordListScreen::showFilterState()
{
    if (!filterState)
        return;
    filterState->setSelectedIndex(groupingIndex());
    topView->cancelFilterView()->setVisible(filterState->isCancelViewVisible());
    topView->buttonFilter()->setState(*filterState);
}

bool RecordListScreen::canFilter() const
{
    return filterState && filterState->isButtonEnabled();
}

bool RecordListScreen::canClearFilter() const
{
    return filterState && filterState->isCancelViewVisible();
}

void RecordListScreen::openFilter()
{
    if (canFilter())
        topView->buttonFilter()->togglePopover();
}

void RecordListScreen::clearFilter()
{
    if (!filterState)
        return;
    topView->buttonFilter()->closePopover();
    filterState->clickDeactiveFilter();
    // Without a filter nothing is hidden: what is open stays so.
    mustCloseHidden = false;
    reloadData();
    // What was pressed may have gone.
    if (!view->hasFocus() && !topView->isAncestorOf(QApplication::focusWidget()))
        view->setFocus();
}
