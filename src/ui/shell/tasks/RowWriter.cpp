#include "shell/tasks/RowWriter.h"

#include "widgets/Direction.h"
#include "widgets/Icons.h"

#include <QPainter>
#include <QStyle>

using namespace Qt::Literals::StringLiterals;

QRect RowWriter::placed(const QRect &rect) const
{
    return QStyle::visualRect(option.direction, option.rect, rect);
}

void RowWriter::write(const QRect &where, Theme::FontRole role, const QColor &colour, const QString &text,
                      bool isStruckOut) const
{
    if (where.isEmpty() || text.isEmpty())
        return;
    QFont font = Theme::font(role);
    font.setStrikeOut(isStruckOut);
    painter.setFont(font);
    painter.setPen(colour);
    Direction::drawLine(painter, placed(where), option.direction, text);
}

void RowWriter::writeTitle(const QRect &where, const QString &title, bool isDone) const
{
    const bool isMarked =
        option.state.testFlag(QStyle::State_Selected) && option.state.testFlag(QStyle::State_Active);
    const QColor resting = isDone ? Theme::secondaryText : Theme::text;
    write(where, Theme::FontRole::Body, isMarked ? Theme::selectedText : resting, title, isDone);
}

void RowWriter::paintIcon(const QRect &where, const QString &icon, const QColor &colour) const
{
    Icons::paint(painter, placed(where), icon, colour, where.width());
}

void RowWriter::paintDisc(const QRect &where, const QColor &colour) const
{
    painter.setPen(Theme::dotEdge(colour));
    painter.setBrush(colour);
    painter.drawEllipse(QRectF(placed(where)).adjusted(0.5, 0.5, -0.5, -0.5));
}

void RowWriter::paintCheckBox(const QRect &where, bool isChecked) const
{
    if (isChecked) {
        paintIcon(where, u"check-done"_s, Theme::checkBoxDone);
        paintIcon(where, u"check-mark"_s, Theme::textOnAccent);
        return;
    }
    const bool isHovered = option.state.testFlag(QStyle::State_MouseOver);
    paintIcon(where, u"check-open"_s, isHovered ? Theme::accent : Theme::checkBox);
}
