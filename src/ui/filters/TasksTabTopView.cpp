#include "filters/TasksTabTopView.h"

#include "filters/FilterButton.h"
#include "filters/FilterButtonCancelView.h"
#include "widgets/Direction.h"
#include "widgets/MVSegmentView.h"
#include "widgets/Theme.h"

#include <QEvent>
#include <QHBoxLayout>

TasksTabTopView::TasksTabTopView(QWidget *parent)
    : QWidget(parent)
    , row(new QHBoxLayout(this))
    , cancelView(new FilterButtonCancelView)
    , filterButton(new FilterButton)
{
    setFixedHeight(stripHeight);
    row->setContentsMargins(
        Direction::margins(*this, Theme::contentMargin, 0, Theme::contentMargin - Theme::unit, 0));
    row->setSpacing(Theme::unit);
    row->addStretch(1);
    row->addWidget(cancelView);
    row->addWidget(filterButton);
    cancelView->hide();
}

bool TasksTabTopView::event(QEvent *event)
{
    if (event->type() == QEvent::Resize || event->type() == QEvent::LayoutRequest)
        shareRoom();
    return QWidget::event(event);
}

/// Where the words of both do not fit, the one that clears keeps its cross and the state its words.
void TasksTabTopView::shareRoom()
{
    int wanted = row->contentsMargins().left() + row->contentsMargins().right();
    for (const QWidget *part : findChildren<QWidget *>(Qt::FindDirectChildrenOnly)) {
        if (!part->isHidden())
            wanted += (part->sizePolicy().horizontalPolicy() == QSizePolicy::Expanding
                           ? part->minimumSizeHint().width()
                           : part->sizeHint().width()) +
                      row->spacing();
    }
    cancelView->setMaximumWidth(wanted > width() ? cancelView->minimumSizeHint().width()
                                                 : cancelView->sizeHint().width());
}

void TasksTabTopView::setMiddle(QWidget *middle)
{
    constexpr int leastShare = 100;
    row->insertWidget(row->indexOf(cancelView) - 1, middle, leastShare);
    orderTabs();
}

/// The tab key goes through a strip in the order in which its parts came.
void TasksTabTopView::orderTabs()
{
    for (QWidget *part : {static_cast<QWidget *>(cancelView), static_cast<QWidget *>(filterButton)}) {
        row->removeWidget(part);
        part->setParent(nullptr);
        row->addWidget(part);
    }
}

void TasksTabTopView::setGrouping(MVSegmentView *grouping)
{
    row->insertWidget(0, grouping);
    orderTabs();
}
