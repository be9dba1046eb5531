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
    /// The bounds of the left pane, which begins at the upper one. It gives way where the right pane needs
    /// its room, and comes back to the width that the user gave it.
    void setLeftBounds(int minimum, int maximum);
    /// As if the user had given it that width.
    void setLeftWidth(int width);

protected:
    bool event(QEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    void giveLeftItsWidth();

    int leftWanted = 0;
};
