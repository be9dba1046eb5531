#pragma once

#include "filters/TasksFilter.h"

#include <QAbstractButton>
#include <QPointer>

class Popover;

/// The filter button of a task list with its words: opens the bubble in which the filter is set. Each change
/// there is in force at once.
class TasksFilterButton : public QAbstractButton
{
    Q_OBJECT
public:
    explicit TasksFilterButton(QWidget *parent = nullptr);

    /// The `type` of the list whose filter it is.
    void setTasksType(int type) { filter.setTasksType(type); }
    /// Who takes the new entry after each change.
    void setReloadBlock(ListFilter::ReloadBlock block) { filter.setReloadBlock(std::move(block)); }
    /// Whether a press opens the bubble. A button that does not is greyed and says why.
    void setShowing(bool isShowing);
    /// 1 while the list is filtered, else 0.
    void setState(int newState);
    int state() const { return shownState; }
    /// Puts the pristine filter in place of the saved one.
    void clearFilter();

    /// Opens the bubble, or closes it.
    void togglePopover();
    void closePopover();
    Popover *popover() const;

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    void describe();
    QColor ink() const;

    TasksFilter filter;
    int shownState = 0;
    QPointer<Popover> bubble;
};
