#include "shell/tasks/CaptureOfferList.h"

#include "foundation/Localization.h"
#include "widgets/Appearance.h"
#include "widgets/FloatingCard.h"
#include "widgets/Theme.h"

#include <QListView>
#include <QPainter>
#include <QStringListModel>
#include <QStyledItemDelegate>
#include <QVBoxLayout>

using namespace Qt::Literals::StringLiterals;

constexpr int nameMargin = Theme::unit;
constexpr int cardMargin = Theme::unit / 2;

/// A name on its row, on a tinted ground if it is the marked one.
class OfferedName : public QStyledItemDelegate
{
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const override
    {
        painter->save();
        painter->setRenderHint(QPainter::Antialiasing);
        painter->setFont(option.font);
        if (option.state.testFlag(QStyle::State_Selected)) {
            painter->setPen(Qt::NoPen);
            painter->setBrush(Theme::selection);
            painter->drawRoundedRect(option.rect.adjusted(2, 0, -2, 0), Theme::controlRadius - 2,
                                     Theme::controlRadius - 2);
        }
        const QRect words = option.rect.adjusted(nameMargin, 0, -nameMargin, 0);
        painter->setPen(Theme::text);
        painter->drawText(
            words, Qt::AlignVCenter | Qt::AlignLeading,
            option.fontMetrics.elidedText(index.data().toString(), Qt::ElideRight, words.width()));
        painter->restore();
    }
    QSize sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const override
    {
        return {option.fontMetrics.horizontalAdvance(index.data().toString()) + 2 * nameMargin,
                option.fontMetrics.height() + Theme::unit};
    }
};

CaptureOfferList::CaptureOfferList()
    : names(new QStringListModel(this))
    , list(new QListView)
{
    setObjectName(u"captureOffers"_s);
    list->setAccessibleName(localized(u"Suggestions"_s));
    list->setModel(names);
    list->setItemDelegate(new OfferedName(list));
    list->setFocusPolicy(Qt::NoFocus);
    list->setFrameShape(QFrame::NoFrame);
    list->viewport()->setAutoFillBackground(false);
    list->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    list->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    Appearance::setFont(*list, Theme::FontRole::Body);
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(cardMargin, cardMargin, cardMargin, cardMargin);
    column->addWidget(list);
    connect(list, &QListView::clicked, this,
            [this](const QModelIndex &index) { Q_EMIT chosen(index.data().toString()); });
    hide();
}

void CaptureOfferList::showBelow(QWidget &field, int x, const CaptureOffer &offer)
{
    QWidget *const over = field.window();
    if (parentWidget() != over)
        setParent(over);
    setLayoutDirection(field.layoutDirection());
    names->setStringList(offer.names);
    list->clearSelection();
    // Return leaves a name as it is that stands there already.
    if (!offer.isName)
        walk(1);
    constexpr int leastWidth = 140;
    constexpr int mostWidth = 360;
    const auto count = static_cast<int>(offer.names.size());
    const int height = list->sizeHintForRow(0) * count + 2 * cardMargin;
    const int width =
        std::clamp(list->sizeHintForColumn(0) + 2 * (cardMargin + nameMargin), leastWidth, mostWidth);
    const QPoint below = field.mapTo(over, QPoint(x, field.height() + 2));
    const int left = isRightToLeft() ? below.x() - width : below.x();
    setGeometry(std::clamp(left, 0, std::max(0, over->width() - width)), below.y(), width, height);
    show();
    raise();
}

void CaptureOfferList::walk(int step)
{
    const int count = names->rowCount();
    const QModelIndexList now = list->selectionModel()->selectedIndexes();
    const int from = now.isEmpty() ? (step > 0 ? -1 : count) : now.front().row();
    list->setCurrentIndex(names->index((from + step + count) % count));
}

QString CaptureOfferList::marked() const
{
    const QModelIndexList now = list->selectionModel()->selectedIndexes();
    return now.isEmpty() ? QString() : now.front().data().toString();
}

void CaptureOfferList::paintEvent(QPaintEvent *)
{
    paintFloatingCard(*this);
}
