#pragma once

#include <QStringList>
#include <QWidget>

/// Back, today and on, as one rounded control of three parts.
class DaysControllerButton : public QWidget
{
    Q_OBJECT
public:
    explicit DaysControllerButton(QWidget *parent = nullptr);

    /// What to say of each part to whoever rests on it.
    void setPartTips(const QStringList &tips) { partTips = tips; }

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

Q_SIGNALS:
    /// -1, 0 or 1.
    void pressed(int number);

protected:
    bool event(QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void leaveEvent(QEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;

private:
    QRect rectOf(int part) const;
    int partAt(QPoint point) const;
    QString nameOf(int part) const;
    void paintPart(QPainter &painter, int part) const;

    int held = -1;
    int hovered = -1;
    int focused = 1;
    QStringList partTips;
};
