#pragma once

#include "filters/FilterState.h"

#include <QAbstractButton>
#include <QPointer>

class Popover;

/// The filter button of a list with its words: opens the bubble in which the filter is set. Each change there
/// is in force at once.
class FilterButton : public QAbstractButton
{
    Q_OBJECT
public:
    explicit FilterButton(QWidget *parent = nullptr);

    /// The filter that the bubble sets; it has to outlive the button.
    void setFilter(ListFilter *listFilter) { filter = listFilter; }
    /// Shows whether the list is filtered. While its filter rests the button is greyed and says why.
    void setState(const FilterState &state);

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
    QColor ink() const;

    ListFilter *filter = nullptr;
    FilterState::Label label = FilterState::Label::Filter;
    QPointer<Popover> bubble;
};
