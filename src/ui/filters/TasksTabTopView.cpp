#include "filters/TasksTabTopView.h"

#include "filters/FilterButtonCancelView.h"
#include "filters/TasksFilterButton.h"
#include "widgets/MVSegmentView.h"
#include "widgets/Theme.h"

#include <QHBoxLayout>

TasksTabTopView::TasksTabTopView(QWidget *parent)
    : QWidget(parent)
    , row(new QHBoxLayout(this))
    , cancelView(new FilterButtonCancelView)
    , filterButton(new TasksFilterButton)
{
    setFixedHeight(stripHeight);
    row->setContentsMargins(Theme::contentMargin, 0, Theme::contentMargin - Theme::unit, 0);
    row->setSpacing(Theme::unit);
    row->addStretch(1);
    row->addWidget(cancelView);
    row->addWidget(filterButton);
    cancelView->hide();
}

void TasksTabTopView::setGrouping(MVSegmentView *grouping)
{
    row->insertWidget(0, grouping);
    setTabOrder(grouping, cancelView);
}
