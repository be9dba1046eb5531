#pragma once

#include "filters/MultiPick.h"
#include "widgets/Popover.h"

class BubbleHeader;
class CheckList;
class QLabel;
class QLineEdit;
class QPushButton;

/// A bubble from which several objects are picked, with a search field above them.
class MVPopUp : public Popover
{
    Q_OBJECT
public:
    MVPopUp(const QString &title, MultiPick picked, QWidget *parent = nullptr);

    /// The bubble for all records of a kind.
    static MVPopUp *of(FilterRow::Editor kind, const FilterSelection &selected, QWidget *parent);

    void clickDone();

Q_SIGNALS:
    /// "Done": what is marked. The bubble has closed.
    void toPopUp(const FilterSelection &selected);

protected:
    void keyPressEvent(QKeyEvent *event) override;

private:
    void showRows();
    void showMarks();
    void tellCount();

    MultiPick pick;
    BubbleHeader *header;
    QLineEdit *fieldSearch;
    QPushButton *buttonAll;
    CheckList *table;
    QLabel *labelEmpty;
};
