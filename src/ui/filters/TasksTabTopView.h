#pragma once

#include <QWidget>

class FilterButtonCancelView;
class MVSegmentView;
class QHBoxLayout;
class FilterButton;

/// The strip above a list of records of any kind: how it is grouped, what is added to it, and its filter.
class TasksTabTopView : public QWidget
{
    Q_OBJECT
public:
    /// As high as details stay below the upper edge of the content.
    static constexpr int stripHeight = 40;

    explicit TasksTabTopView(QWidget *parent = nullptr);

    /// Puts the grouping at the leading side.
    void setGrouping(MVSegmentView *grouping);
    /// Puts something between the grouping and the filter; it takes the room that they leave, up to its own
    /// limit.
    void setMiddle(QWidget *middle);
    FilterButton *buttonFilter() const { return filterButton; }
    FilterButtonCancelView *cancelFilterView() const { return cancelView; }

protected:
    bool event(QEvent *event) override;

private:
    void shareRoom();
    void orderTabs();

    QHBoxLayout *row;
    FilterButtonCancelView *cancelView;
    FilterButton *filterButton;
};
