#include "records/RecordCell.h"

#include "records/PlainRecordScreen.h"
#include "records/Portraits.h"
#include "widgets/Direction.h"
#include "widgets/TaskTableRow.h"
#include "widgets/Theme.h"

#include <QPainter>

constexpr int inset = 16;
constexpr int dotSize = 10;
constexpr int dotGap = 10;
constexpr int portraitSize = 36;
constexpr int portraitGap = 12;

namespace {

/// Where the parts of a row stand, before they are mirrored.
struct Places
{
    QRect card;
    QRect portrait;
    QRect dot;
    QRect title;
    QRect detail;
};

/// A dot stands before the title, but on the edge of a portrait.
Places placesOf(const QRect &row, bool hasPortrait, bool hasDot, bool hasDetail)
{
    const int titleHeight = QFontMetrics(Theme::font(Theme::FontRole::Body)).height();
    const int detailHeight = hasDetail ? QFontMetrics(Theme::font(Theme::FontRole::Small)).height() : 0;
    Places places;
    places.card = row.adjusted(Theme::contentMargin, 0, -Theme::contentMargin, 0);
    const int top = row.top() + (row.height() - titleHeight - detailHeight) / 2;
    const int begin = places.card.left() + inset;
    const int left = begin + (hasPortrait ? portraitSize + portraitGap : hasDot ? dotSize + dotGap : 0);
    const int width = places.card.right() - inset - left;
    places.portrait = {begin, row.center().y() - portraitSize / 2, portraitSize, portraitSize};
    places.dot = {begin, row.center().y() - dotSize / 2, dotSize, dotSize};
    if (hasPortrait)
        places.dot.moveBottomRight(places.portrait.bottomRight());
    places.title = {left, top, width, titleHeight};
    places.detail = {left, top + titleHeight, width, detailHeight};
    return places;
}

Places placesOf(const QStyleOptionViewItem &option, const QModelIndex &index)
{
    return placesOf(option.rect, index.data(PlainListModel::PortraitRole).isValid(),
                    index.data(PlainListModel::MarkRole).value<QColor>().isValid(),
                    !index.data(PlainListModel::DetailRole).toString().isEmpty());
}

const TableModel &modelOf(const QModelIndex &index)
{
    return static_cast<const TableModel &>(*index.model());
}

} // namespace

QString RecordCell::cutText(const QStyleOptionViewItem &option, const QModelIndex &index) const
{
    if (!modelOf(index).isItem(index.row()))
        return {};
    return ifWider(index.data().toString(), Theme::font(Theme::FontRole::Body),
                   placesOf(option, index).title.width());
}

void RecordCell::paintHeading(QPainter &painter, const QStyleOptionViewItem &option, const QString &words,
                              bool isQuiet)
{
    const int indent = Theme::contentMargin + Theme::unit / 2;
    const QRect place = option.rect.adjusted(indent, 0, -indent, -Theme::unit);
    painter.setFont(Theme::font(Theme::FontRole::BodyStrong));
    painter.setPen(isQuiet ? Theme::secondaryText : Theme::text);
    Direction::drawLine(painter, place, option.direction, words, Qt::AlignBottom);
}

static void paintRecord(QPainter &painter, const QStyleOptionViewItem &option, const QModelIndex &index)
{
    const Places places = placesOf(option, index);
    const auto placed = [&option](const QRect &rect) {
        return QStyle::visualRect(option.direction, option.rect, rect);
    };
    const auto write = [&](const QRect &where, Theme::FontRole role, const QColor &colour,
                           const QString &text) {
        painter.setFont(Theme::font(role));
        painter.setPen(colour);
        Direction::drawLine(painter, placed(where), option.direction, text);
    };
    TaskTableRow::at(modelOf(index), index.row())
        .paint(painter, option, placed(places.card), placed(places.title));
    const QVariant portrait = index.data(PlainListModel::PortraitRole);
    if (portrait.isValid())
        Portraits::shared().paint(painter, placed(places.portrait), portrait.value<Portrait>());
    if (const auto mark = index.data(PlainListModel::MarkRole).value<QColor>(); mark.isValid()) {
        painter.setPen(portrait.isValid() ? QPen(Theme::card, 2) : QPen(Qt::NoPen));
        painter.setBrush(mark);
        painter.drawEllipse(placed(places.dot));
    }
    const bool isMarked =
        option.state.testFlag(QStyle::State_Selected) && option.state.testFlag(QStyle::State_Active);
    write(places.title, Theme::FontRole::Body, isMarked ? Theme::selectedText : Theme::text,
          index.data().toString());
    // Of a text the beginning of its first line.
    constexpr int longest = 400;
    const QString detail = index.data(PlainListModel::DetailRole).toString().left(longest).simplified();
    if (!detail.isEmpty())
        write(places.detail, Theme::FontRole::Small, Theme::secondaryText, detail);
}

void RecordCell::paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const
{
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    if (modelOf(index).isItem(index.row()))
        paintRecord(*painter, option, index);
    else
        paintHeading(*painter, option, index.data().toString());
    painter->restore();
}
