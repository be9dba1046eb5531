#pragma once

#include "calendarviews/BirthdayDays.h"

#include <QWidget>

/// The quiet line between the days and their items that says who has birthday. It is no higher than needed:
/// without a birthday it has no height. A day of it is pressed by the mouse, or by keys: the arrows go along
/// the days that have something, Return presses.
class BirthdaysLine : public QWidget
{
    Q_OBJECT
public:
    explicit BirthdaysLine(QWidget *parent = nullptr);

    /// \param days those of each column; `indent` is where the first column begins, from the leading edge,
    /// and `trailing` where the last one ends.
    void setDays(std::vector<BirthdayDays::List> days, std::vector<QString> spokenDays, int indent,
                 int trailing);
    int neededHeight() const;

    /// Paints a cake and the words, or as much of them as there is room for. The words of a single day that
    /// has the room say what they are.
    static void paintBirthdays(QPainter &painter, const QRectF &place, const BirthdayDays::List &birthdays,
                               bool isRightToLeft);

Q_SIGNALS:
    /// A day was pressed; what is asked about several belongs below that place of the screen.
    void pressed(const BirthdayDays::List &birthdays, const QPoint &globalPosition);

protected:
    void paintEvent(QPaintEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;
    bool event(QEvent *event) override;

private:
    QRectF cell(int column) const;
    /// The column at a point that has birthdays; -1 for none.
    int columnAt(QPointF point) const;
    /// The columns that have some.
    std::vector<int> columns() const;
    void goAlong(int step);
    void press(int column);

    std::vector<BirthdayDays::List> lists;
    std::vector<QString> spoken;
    int leadingSpace = 0;
    int trailingSpace = 0;
    /// The column that the keyboard is on.
    int current = 0;
};
