#include "filters/FilterButtonCancelView.h"
#include "filters/TaskGrouping.h"
#include "filters/TasksFilterButton.h"
#include "filters/TasksTabTopView.h"
#include "foundation/Localization.h"
#include "records/DetailStack.h"
#include "shell/tasks/TabTaskViewController.h"
#include "widgets/EmptyState.h"
#include "widgets/MVSegmentView.h"

#include <QApplication>
#include <QVBoxLayout>

using namespace Qt::Literals::StringLiterals;

// What narrows and groups a list, above it.

void TabTaskViewController::setUpTopView()
{
    topView = new TasksTabTopView;
    static_cast<QVBoxLayout *>(layout())->insertWidget(0, topView);
    filteredState = new EmptyState(u"filtered"_s, localized(u"No task passes the filter."_s), listLayer);
    filteredState->setAction(localized(u"Clear filter"_s));
    listLayer->layout()->addWidget(filteredState);
    filteredState->hide();
    connect(filteredState, &EmptyState::actionClicked, this, &TabTaskViewController::clearFilter);
    setUpGrouping();
    setUpFilter();
}

void TabTaskViewController::setUpGrouping()
{
    if (description.groupedType < 0)
        return;
    tasksGroupedView =
        new MVSegmentView({localized(u"Category"_s), localized(u"Project"_s), localized(u"Priority"_s)});
    tasksGroupedView->setObjectName(u"tasksGroupedView"_s);
    tasksGroupedView->setAccessibleName(localized(u"Group by"_s));
    tasksGroupedView->setHaveNotSelect(true);
    tasksGroupedView->setSelectedIndex(TaskGrouping(description.groupedType).selectedIndex());
    connect(tasksGroupedView, &MVSegmentView::selectedIndexChanged, this,
            &TabTaskViewController::saveGrouping);
    topView->setGrouping(tasksGroupedView);
}

void TabTaskViewController::setUpFilter()
{
    tasksFilter.setTasksType(static_cast<int>(type()));
    // Keys that come in quick succession share one fetch.
    filterState = std::make_unique<FilterState>(tasksFilter, [this] {
        mustCloseHidden = true;
        showFilterState();
        reloadSoon();
    });
    filterState->filterStartSettings();
    topView->buttonFilter()->setFilter(&tasksFilter);
    connect(topView->cancelFilterView(), &QAbstractButton::clicked, this,
            &TabTaskViewController::clearFilter);
    showFilterState();
}

void TabTaskViewController::showFilterState()
{
    if (!filterState)
        return;
    filterState->setSelectedIndex(static_cast<int>(grouping()));
    topView->cancelFilterView()->setVisible(filterState->isCancelViewVisible());
    topView->buttonFilter()->setState(*filterState);
}

void TabTaskViewController::closeHiddenDetails()
{
    if (!detailStack())
        return;
    std::vector<TaskPtr> hidden = detailStack()->shownTasks();
    // What is being typed stays, whatever the list shows.
    std::erase_if(hidden, [this](const TaskPtr &task) {
        DetailViewController *const pane = detailStack()->paneOf(task);
        return model->rowOf(task) >= 0 || (pane && pane->hasChanges());
    });
    detailStack()->removeAllDetailFromTasks(hidden);
}

bool TabTaskViewController::canFilter() const
{
    return filterState && filterState->isButtonEnabled();
}

bool TabTaskViewController::canClearFilter() const
{
    return filterState && filterState->isCancelViewVisible();
}

void TabTaskViewController::openFilter()
{
    if (canFilter())
        topView->buttonFilter()->togglePopover();
}

void TabTaskViewController::clearFilter()
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

void TabTaskViewController::saveGrouping(int index)
{
    TaskGrouping(description.groupedType).setSelectedIndex(index);
    reload(SelectionMemory::Otherwise::Nothing);
}

Grouping TabTaskViewController::grouping() const
{
    return tasksGroupedView ? static_cast<Grouping>(tasksGroupedView->selectedIndex()) : Grouping::None;
}
