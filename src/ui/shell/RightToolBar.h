#pragma once

#include <QPointer>
#include <QWidget>

/// The slot for the bar of the present screen.
class ChengedToolBar : public QWidget
{
    Q_OBJECT
public:
    explicit ChengedToolBar(QWidget *parent = nullptr);

    /// Shows a bar in place of the one that was there; whose that was, keeps it.
    void addToolBar(QWidget *bar);

private:
    QPointer<QWidget> shownBar;
};

/// The toolbar over the content. The window can be moved by it.
class RightToolBar : public QWidget
{
    Q_OBJECT
public:
    explicit RightToolBar(QWidget *parent = nullptr);

    ChengedToolBar *chengedToolBar() const { return slot; }

protected:
    void paintEvent(QPaintEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;

private:
    ChengedToolBar *slot;
    std::optional<QPoint> pressedAt;
};
