#pragma once

#include <QWidget>

class FilterButtonCancelView;
class MVSegmentView;
class QHBoxLayout;
class TasksFilterButton;

/// The strip above a list of tasks: how it is grouped, and its filter.
class TasksTabTopView : public QWidget
{
    Q_OBJECT
public:
    /// As high as details stay below the upper edge of the content.
    static constexpr int stripHeight = 40;

    explicit TasksTabTopView(QWidget *parent = nullptr);

    /// Puts the grouping at the leading side.
    void setGrouping(MVSegmentView *grouping);
    TasksFilterButton *buttonFilter() const { return filterButton; }
    FilterButtonCancelView *cancelFilterView() const { return cancelView; }

private:
    QHBoxLayout *row;
    FilterButtonCancelView *cancelView;
    TasksFilterButton *filterButton;
};
