#pragma once

#include "foundation/Date.h"

#include <QDialog>

class MonthGrid;
class QDateEdit;

/// Asks for a date to show.
class GoToDateWindowController : public QDialog
{
    Q_OBJECT
public:
    explicit GoToDateWindowController(Date date, QWidget *parent = nullptr);

Q_SIGNALS:
    void dateChosen(Date date);

private:
    Date chosen;
    MonthGrid *datePicker;
    QDateEdit *field;
};
