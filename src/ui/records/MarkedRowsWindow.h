#pragma once

#include "records/MarkedRowsView.h"

/// A window in which things are marked in a list, which takes effect when the user is done. Return is done,
/// Escape is not.
class MarkedRowsWindow : public QWidget
{
    Q_OBJECT
public:
    void showWindow();
    void clickButtonDone();

protected:
    MarkedRowsWindow(const QString &title, QWidget *parent);

    /// Puts the list in. Once, by the constructor of a window.
    /// \param rows must outlive the window.
    void setRows(MarkedRows &rows, const MarkedRowsView::Words &words, const QString &tableName);
    /// Makes the marks count. False if the window stays.
    virtual bool save() = 0;

    void keyPressEvent(QKeyEvent *event) override;
};
