#pragma once

#include "filters/FilterState.h"
#include "filters/StripButton.h"
#include "filters/TaskFilterController.h"

#include <QPointer>

class Popover;

/// The filter button of a list with its words: opens the bubble in which the filter is set. Each change there
/// is in force at once.
class FilterButton : public StripButton
{
    Q_OBJECT
Q_SIGNALS:
    /// The bubble is about to be made.
    void opening();

public:
    explicit FilterButton(QWidget *parent = nullptr);

    /// The filter that the bubble sets; it has to outlive the button.
    void setFilter(ListFilter *listFilter) { filter = listFilter; }
    /// What the bubble offers below the rows of the filter.
    void setAction(TaskFilterController::Action belowRows) { action = std::move(belowRows); }
    /// Shows whether the list is filtered. While its filter rests the button is greyed and says why.
    void setState(const FilterState &state);

    /// Opens the bubble, or closes it.
    void togglePopover();
    void closePopover();
    Popover *popover() const;

protected:
    bool isOpen() const override;

private:
    ListFilter *filter = nullptr;
    std::optional<TaskFilterController::Action> action;
    QPointer<Popover> bubble;
};
