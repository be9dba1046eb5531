#pragma once

#include <QSplitter>

/// A left pane of bounded width beside a right one that takes all resizing. Posts "SplitChangeSize" as the
/// divider moves.
class SplitPanes : public QSplitter
{
    Q_OBJECT
public:
    explicit SplitPanes(QWidget *parent = nullptr);

    void setPanes(QWidget *left, QWidget *right);
    /// The bounds of the left pane.
    void setLeftBounds(int minimum, int maximum);
};
