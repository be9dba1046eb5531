#include "shell/search/CellViewSearchDeteil.h"

#include "foundation/Localization.h"
#include "widgets/Direction.h"
#include "widgets/TableModel.h"
#include "widgets/Theme.h"

#include <QPainter>

using namespace Qt::Literals::StringLiterals;

constexpr int headingIndent = 14;
constexpr int recordIndent = 25;

static void paintBack(QPainter &painter, const QStyleOptionViewItem &option)
{
    const bool isSelected = option.state.testFlag(QStyle::State_Selected);
    if (!isSelected && !option.state.testFlag(QStyle::State_MouseOver))
        return;
    painter.setPen(Qt::NoPen);
    painter.setBrush(isSelected ? Theme::selection : Theme::hover);
    painter.drawRoundedRect(option.rect.adjusted(Theme::unit / 2, 2, -Theme::unit / 2, -2),
                            Theme::controlRadius, Theme::controlRadius);
}

void CellViewSearchDeteil::paint(QPainter *painter, const QStyleOptionViewItem &option,
                                 const QModelIndex &index) const
{
    const bool isHeading =
        static_cast<const TableModel *>(index.model())->kindOf(index.row()) == RowKind::Header;
    const bool isSelected = option.state.testFlag(QStyle::State_Selected);
    const QString title = index.data().toString();
    const QString text = title.isEmpty() ? localized(u"Untitled"_s) : title;
    const QRect place =
        QStyle::visualRect(option.direction, option.rect,
                           option.rect.adjusted(isHeading ? headingIndent : recordIndent,
                                                isHeading ? Theme::unit / 2 : 0, -headingIndent, 0));
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    if (!isHeading)
        paintBack(*painter, option);
    painter->setFont(Theme::font(isHeading ? Theme::FontRole::SmallStrong : Theme::FontRole::Body));
    painter->setPen(isHeading || title.isEmpty() ? Theme::secondaryText
                    : isSelected                 ? Theme::selectedText
                                                 : Theme::text);
    Direction::drawLine(*painter, place, option.direction, text);
    painter->restore();
}

QString CellViewSearchDeteil::cutText(const QStyleOptionViewItem &option, const QModelIndex &index) const
{
    return ifWider(index.data().toString(), Theme::font(Theme::FontRole::Body),
                   option.rect.width() - recordIndent - headingIndent);
}
