#pragma once

#include "filters/ListFilter.h"
#include "widgets/PickerField.h"

class MVPopUp;

/// The row of a filter from which several records are picked: says how many, and opens their bubble when
/// pressed.
class MultiPickField : public PickerField
{
    Q_OBJECT
public:
    MultiPickField(ListFilter &filter, const FilterRow &row, QWidget *parent = nullptr);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    void showTitle();
    void openBubble();

    ListFilter &filter;
    QString key;
    FilterRow::Editor picked;
};
