#include "widgets/TableCell.h"

#include "widgets/TextLabel.h"

#include <QAbstractItemView>
#include <QHelpEvent>
#include <QToolTip>

using namespace Qt::Literals::StringLiterals;

bool TableCell::helpEvent(QHelpEvent *event, QAbstractItemView *view, const QStyleOptionViewItem &option,
                          const QModelIndex &index)
{
    if (event->type() != QEvent::ToolTip)
        return QAbstractItemDelegate::helpEvent(event, view, option, index);
    const QString whole = index.isValid() ? cutText(option, index) : QString();
    // As rich text it is broken into lines.
    const QString shown =
        whole.isEmpty() ? QString() : u"<p>"_s + readablePart(whole).toHtmlEscaped() + u"</p>"_s;
    QToolTip::showText(event->globalPos(), shown, view, option.rect);
    return !whole.isEmpty();
}

QString TableCell::cutText(const QStyleOptionViewItem &, const QModelIndex &) const
{
    return {};
}

QString TableCell::ifWider(const QString &text, const QFont &font, int room)
{
    return QFontMetrics(font).horizontalAdvance(firstPart(text)) > room ? text : QString();
}
