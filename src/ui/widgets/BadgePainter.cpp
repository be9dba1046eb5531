#include "widgets/BadgePainter.h"

#include "widgets/Theme.h"

#include <QFontMetrics>
#include <QPainter>
#include <QPainterPath>
#include <QStyle>

constexpr int badgePadding = 7;
constexpr int badgeMargin = 14;

BadgePainter::BadgePainter(int leftNumber, int rightNumber, const QFont &badgeFont)
    : left(leftNumber)
    , right(rightNumber)
    , font(badgeFont)
{}

int BadgePainter::widthOf(int number) const
{
    const QFontMetrics metrics(font);
    return std::max(metrics.horizontalAdvance(QString::number(number)) + 2 * badgePadding,
                    metrics.height() + 4);
}

int BadgePainter::width() const
{
    if (isHidden())
        return 0;
    return badgeMargin + widthOf(right) + (isDouble() ? widthOf(left) : 0);
}

static void paintPart(QPainter &painter, const QRect &part, const QColor &fill, const QColor &text,
                      int number)
{
    painter.fillRect(part, fill);
    painter.setPen(text);
    painter.drawText(part, Qt::AlignCenter, QString::number(number));
}

void BadgePainter::paint(QPainter &painter, const QRect &row, Qt::LayoutDirection direction) const
{
    if (isHidden())
        return;
    const int height = QFontMetrics(font).height() + 4;
    const int pillWidth = width() - badgeMargin;
    const QRect atEnd(row.right() + 1 - badgeMargin - pillWidth, row.center().y() - height / 2, pillWidth,
                      height);
    const QRect pill = QStyle::visualRect(direction, row, atEnd);
    QPainterPath shape;
    shape.addRoundedRect(pill, height / 2.0, height / 2.0);
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setClipPath(shape);
    painter.setFont(font);
    const int leftWidth = isDouble() ? widthOf(left) : 0;
    if (isDouble())
        paintPart(painter, QRect(pill.left(), pill.top(), leftWidth, height), Theme::badgeOverdue,
                  Theme::badgeOverdueText, left);
    paintPart(painter, pill.adjusted(leftWidth, 0, 0, 0), Theme::badge, Theme::badgeText, right);
    painter.restore();
}
