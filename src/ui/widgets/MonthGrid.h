#pragma once

#include "widgets/MonthPage.h"

#include <QWidget>

/// A month to pick a day from, by the mouse or the keys: arrows by days and weeks, Page Up and Down by
/// months, with Shift by years.
class MonthGrid : public QWidget
{
    Q_OBJECT
public:
    explicit MonthGrid(QWidget *parent = nullptr);

    void setLimits(OptionalDate minimum, OptionalDate maximum);
    /// Offers to go by years with the mouse, too.
    void setShowsYears(bool shows);
    void setDate(Date date);
    Date date() const { return chosen; }
    void showMonth(int monthsAway);

    QSize sizeHint() const override;

Q_SIGNALS:
    void dateChanged(Date date);
    /// A day was pressed twice, or Return was.
    void accepted();

protected:
    void focusInEvent(QFocusEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void leaveEvent(QEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    QRect cell(int row, int column) const;
    int dayAt(const QPoint &point) const;
    bool isAllowed(const MonthPage::Day &day) const;
    void choose(Date day);
    void moveBy(int days);
    /// How many days of its week lie before the chosen one.
    int placeInWeek() const;
    void paintTitle(QPainter &painter) const;
    void paintDay(QPainter &painter, int index) const;
    QRect arrow(int direction) const;
    QRect yearArrow(int direction) const;
    void describe();
    quint64 keyOf(int index) const;
    int indexOfKey(quint64 key) const;

    Date chosen;
    OptionalDate least;
    OptionalDate most;
    bool showsYears = false;
    MonthPage page;
    int hovered = -1;
};
