#include "widgets/CheckList.h"

#include "foundation/Localization.h"
#include "widgets/Accessibility.h"
#include "widgets/Direction.h"
#include "widgets/Icons.h"
#include "widgets/MorvaneStyle.h"
#include "widgets/Theme.h"

#include <QKeyEvent>
#include <QMetaMethod>
#include <QPainter>
#include <QStandardItemModel>
#include <QStyledItemDelegate>

using namespace Qt::Literals::StringLiterals;

constexpr int lineHeight = 40;
constexpr int checkIconSize = 16;
constexpr int iconRoom = 28;
constexpr int iconRole = Qt::UserRole + 1;

namespace {

class LineDelegate : public QStyledItemDelegate
{
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    QSize sizeHint(const QStyleOptionViewItem &option, const QModelIndex &) const override
    {
        return {1, std::max(lineHeight, option.fontMetrics.height() + 2 * Theme::unit)};
    }

    void paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const override
    {
        painter->save();
        painter->setRenderHint(QPainter::Antialiasing);
        const QRect card = option.rect.adjusted(0, 1, 0, -1);
        const bool isMarked = index.data(Qt::CheckStateRole).toInt() == Qt::Checked;
        if (isMarked || option.state.testFlag(QStyle::State_MouseOver)) {
            painter->setPen(Qt::NoPen);
            painter->setBrush(isMarked ? Theme::selection : Theme::hover);
            painter->drawRoundedRect(card, Theme::controlRadius, Theme::controlRadius);
        }
        paintLine(*painter, option, index, isMarked);
        const bool isCurrent = option.state.testFlag(QStyle::State_HasFocus);
        if (isCurrent)
            MorvaneStyle::drawFocusRing(*painter, card, Theme::controlRadius, Theme::focusRing);
        painter->restore();
    }

private:
    static void paintLine(QPainter &painter, const QStyleOptionViewItem &option, const QModelIndex &index,
                          bool isMarked)
    {
        QRect place = option.rect.adjusted(Theme::unit + 4, 0, -Theme::unit, 0);
        const auto mirrored = [&](const QRect &rect) {
            return QStyle::visualRect(option.direction, option.rect, rect);
        };
        const QString icon = index.data(iconRole).toString();
        if (!icon.isEmpty()) {
            Icons::paint(painter, mirrored(QRect(place.left(), place.top(), checkIconSize, place.height())),
                         icon, Theme::accent, checkIconSize);
            place.setLeft(place.left() + iconRoom);
        }
        const QRect mark(place.right() - iconRoom, place.top(), iconRoom, place.height());
        if (isMarked)
            Icons::paint(painter, mirrored(mark), u"check-mark"_s, Theme::accent,
                         checkIconSize + Theme::unit);
        place.setRight(mark.left());
        painter.setPen(Theme::text);
        Direction::drawLine(painter, mirrored(place), option.direction, index.data().toString());
    }
};

} // namespace

CheckList::CheckList(QWidget *parent)
    : QListView(parent)
    , lineModel(new QStandardItemModel(this))
{
    const auto moreActions = [this](int line) -> std::vector<AccessibleAction> {
        if (!isSignalConnected(QMetaMethod::fromSignal(&CheckList::deletePressed)))
            return {};
        return {{localized(u"Delete"_s), [this, line] { Q_EMIT deletePressed(line); }, u"Delete"_s}};
    };
    Accessibility::describeList(
        *this, [this](int line) { Q_EMIT linePressed(line); }, moreActions);
    setModel(lineModel);
    connect(lineModel, &QStandardItemModel::dataChanged, this, &CheckList::tellSoon);
    setItemDelegate(new LineDelegate(this));
    setFrameShape(NoFrame);
    setMouseTracking(true);
    setSelectionMode(NoSelection);
    setEditTriggers(NoEditTriggers);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollMode(ScrollPerPixel);
    setUniformItemSizes(true);
}

void CheckList::setLines(const std::vector<Line> &lines)
{
    lineModel->clear();
    for (const Line &line : lines) {
        auto *item = new QStandardItem(line.text);
        item->setData(line.iconName, iconRole);
        item->setData(Qt::Unchecked, Qt::CheckStateRole);
        item->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable);
        lineModel->appendRow(item);
    }
    if (lineCount() > 0)
        setCurrentIndex(lineModel->index(0, 0));
}

/// All marks that are set together are told together.
void CheckList::tellSoon()
{
    if (!Accessibility::isHeard() || std::exchange(isTellingDue, true))
        return;
    const auto tell = [this] {
        isTellingDue = false;
        Accessibility::partsChanged(*this);
    };
    QMetaObject::invokeMethod(this, tell, Qt::QueuedConnection);
}

int CheckList::lineCount() const
{
    return lineModel->rowCount();
}

QString CheckList::textOf(int line) const
{
    return lineModel->item(line)->text();
}

void CheckList::setMarked(int line, bool marked)
{
    if (QStandardItem *item = lineModel->item(line))
        item->setData(marked ? Qt::Checked : Qt::Unchecked, Qt::CheckStateRole);
}

bool CheckList::isMarked(int line) const
{
    const QStandardItem *item = lineModel->item(line);
    return item && item->data(Qt::CheckStateRole).toInt() == Qt::Checked;
}

void CheckList::mouseReleaseEvent(QMouseEvent *event)
{
    QListView::mouseReleaseEvent(event);
    const QModelIndex index = indexAt(event->position().toPoint());
    if (index.isValid() && event->button() == Qt::LeftButton)
        Q_EMIT linePressed(index.row());
}

void CheckList::keyPressEvent(QKeyEvent *event)
{
    const int line = currentIndex().row();
    if (event->key() == Qt::Key_Space && line >= 0)
        Q_EMIT linePressed(line);
    else if ((event->key() == Qt::Key_Delete || event->key() == Qt::Key_Backspace) && line >= 0)
        Q_EMIT deletePressed(line);
    else if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)
        event->ignore();
    else
        QListView::keyPressEvent(event);
}
