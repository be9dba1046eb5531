#pragma once

#include "records/MarkedRows.h"

#include <QWidget>

#include <functional>

class CheckList;
class QLabel;
class QLineEdit;

/// A search field over a list with letters and marks, and a sentence where the list is empty. A press on a
/// line marks it. The list may be of any length.
class MarkedRowsView : public QWidget
{
    Q_OBJECT
public:
    struct Words
    {
        /// What assistive technology calls the list.
        QString name;
        /// What is said where there is nothing to mark.
        QString empty;
    };
    /// \param rows must outlive the view.
    MarkedRowsView(MarkedRows &rows, Words words, QWidget *parent = nullptr);

    CheckList &list() { return *table; }
    QLineEdit &searchField() { return *fieldSearch; }
    void setEmptyWords(const QString &empty);
    /// Shows the rows anew, after others were put in place.
    void showRows();
    /// Shows the marks anew, after some were set by other means than a press.
    void showMarks();

Q_SIGNALS:
    /// A press changed a mark, or a search changed what is shown.
    void changed();

protected:
    void keyPressEvent(QKeyEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void tellCount();
    void toggle(int row);

    MarkedRows &rows;
    Words words;
    QLineEdit *fieldSearch;
    CheckList *table;
    QLabel *labelEmpty;
};
