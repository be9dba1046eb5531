#pragma once

#include <QFont>
#include <QRect>
#include <QString>

class QPainter;

/// The pill with one or two numbers beside a sidebar row. The left number counts what is overdue.
class BadgePainter
{
public:
    BadgePainter(int leftNumber, int rightNumber, const QFont &badgeFont);

    /// Two zeros show nothing; a zero on either side leaves the right number alone.
    bool isHidden() const { return left == 0 && right == 0; }
    bool isDouble() const { return left != 0 && right != 0; }
    int width() const;
    /// Draws the pill at the trailing end of a row.
    void paint(QPainter &painter, const QRect &row, Qt::LayoutDirection direction) const;

private:
    int widthOf(int number) const;

    int left;
    int right;
    QFont font;
};
