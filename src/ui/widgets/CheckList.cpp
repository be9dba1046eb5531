#include "widgets/CheckList.h"

#include "foundation/Localization.h"
#include "widgets/Accessibility.h"
#include "widgets/Direction.h"
#include "widgets/Icons.h"
#include "widgets/MorvaneStyle.h"
#include "widgets/Theme.h"

#include <QAbstractListModel>
#include <QKeyEvent>
#include <QMetaMethod>
#include <QPainter>
#include <QStyledItemDelegate>

using namespace Qt::Literals::StringLiterals;

constexpr int lineHeight = 40;
constexpr int checkIconSize = 16;
constexpr int iconRoom = 28;
constexpr int iconRole = Qt::UserRole + 1;
constexpr int detailRole = Qt::UserRole + 2;
constexpr int fixedRole = Qt::UserRole + 3;

class CheckListModel : public QAbstractListModel
{
public:
    using QAbstractListModel::QAbstractListModel;

    void setLines(std::vector<CheckList::Line> newLines)
    {
        beginResetModel();
        lines = std::move(newLines);
        marks.assign(lines.size(), false);
        endResetModel();
    }
    const CheckList::Line &at(int line) const { return lines[static_cast<std::size_t>(line)]; }
    bool isMarked(int line) const { return marks[static_cast<std::size_t>(line)]; }
    bool isInside(int line) const { return line >= 0 && line < rowCount(); }
    /// Tells all that changes at once.
    void setMarks(int first, int last, const std::function<bool(int)> &isMarked)
    {
        for (int line = first; line <= last; ++line)
            marks[static_cast<std::size_t>(line)] = !at(line).isHeading && isMarked(line);
        if (first <= last)
            Q_EMIT dataChanged(index(first), index(last), {Qt::CheckStateRole});
    }

    int rowCount(const QModelIndex &parent = {}) const override
    {
        return parent.isValid() ? 0 : static_cast<int>(lines.size());
    }
    Qt::ItemFlags flags(const QModelIndex &index) const override
    {
        const bool isLine = index.isValid() && !at(index.row()).isHeading;
        return isLine ? Qt::ItemIsEnabled | Qt::ItemIsSelectable : Qt::NoItemFlags;
    }
    QVariant data(const QModelIndex &index, int role) const override
    {
        if (!index.isValid())
            return {};
        const CheckList::Line &line = at(index.row());
        if (role == Qt::DisplayRole)
            return line.text;
        if (role == iconRole)
            return line.iconName;
        if (role == detailRole)
            return line.detail;
        if (role == fixedRole)
            return line.isFixed;
        if (role == Qt::AccessibleTextRole)
            return line.detail.isEmpty() ? line.text : line.text + u", "_s + line.detail;
        const bool isTick = role == Qt::CheckStateRole && !line.isHeading;
        return isTick ? QVariant(isMarked(index.row()) ? Qt::Checked : Qt::Unchecked) : QVariant();
    }

private:
    std::vector<CheckList::Line> lines;
    std::vector<bool> marks;
};

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
        const bool isFixed = index.data(fixedRole).toBool();
        const bool isHovered = option.state.testFlag(QStyle::State_MouseOver) && !isFixed &&
                               index.flags().testFlag(Qt::ItemIsEnabled);
        if ((isMarked && !isFixed) || isHovered) {
            painter->setPen(Qt::NoPen);
            painter->setBrush(isMarked ? Theme::selection : Theme::hover);
            painter->drawRoundedRect(card, Theme::controlRadius, Theme::controlRadius);
        }
        if (index.flags().testFlag(Qt::ItemIsEnabled))
            paintLine(*painter, option, index, isMarked);
        else
            paintHeading(*painter, option, index);
        const bool isCurrent = option.state.testFlag(QStyle::State_HasFocus);
        if (isCurrent)
            MorvaneStyle::drawFocusRing(*painter, card, Theme::controlRadius, Theme::focusRing);
        painter->restore();
    }

private:
    static void paintHeading(QPainter &painter, const QStyleOptionViewItem &option, const QModelIndex &index)
    {
        painter.setFont(Theme::font(Theme::FontRole::BodyStrong));
        painter.setPen(Theme::secondaryText);
        Direction::drawLine(painter, option.rect.adjusted(Theme::unit + 4, 0, -Theme::unit, -Theme::unit / 2),
                            option.direction, index.data().toString(), Qt::AlignBottom);
    }
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
        const bool isFixed = index.data(fixedRole).toBool();
        if (isMarked)
            Icons::paint(painter, mirrored(mark), u"check-mark"_s,
                         isFixed ? Theme::secondaryText : Theme::accent, checkIconSize + Theme::unit);
        place.setRight(mark.left());
        const QString detail = index.data(detailRole).toString();
        if (!detail.isEmpty()) {
            // The text comes first; what stands beside it takes what is left, and half of the line at most.
            const int wanted =
                option.fontMetrics.horizontalAdvance(index.data().toString()) + 2 * Theme::unit;
            const int room = std::min(option.fontMetrics.horizontalAdvance(detail) + Theme::unit,
                                      std::max(place.width() - wanted, place.width() / 3));
            const QRect end(place.right() - room, place.top(), room, place.height());
            painter.setPen(Theme::secondaryText);
            Direction::drawLine(painter, mirrored(end), option.direction, detail, Qt::AlignVCenter);
            place.setRight(end.left() - Theme::unit);
        }
        painter.setPen(isFixed ? Theme::secondaryText : Theme::text);
        Direction::drawLine(painter, mirrored(place), option.direction, index.data().toString());
    }
};

} // namespace

CheckList::CheckList(QWidget *parent)
    : QListView(parent)
    , lineModel(new CheckListModel(this))
{
    const auto moreActions = [this](int line) -> std::vector<AccessibleAction> {
        if (!isSignalConnected(QMetaMethod::fromSignal(&CheckList::deletePressed)))
            return {};
        return {{localized(u"Delete"_s), [this, line] { Q_EMIT deletePressed(line); }, u"Delete"_s}};
    };
    Accessibility::describeList(
        *this, [this](int line) { press(line); }, moreActions);
    setModel(lineModel);
    connect(lineModel, &QAbstractItemModel::dataChanged, this, &CheckList::tellSoon);
    setItemDelegate(new LineDelegate(this));
    setFrameShape(NoFrame);
    setMouseTracking(true);
    setSelectionMode(NoSelection);
    setEditTriggers(NoEditTriggers);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollMode(ScrollPerPixel);
    setUniformItemSizes(true);
}

void CheckList::setLines(std::vector<Line> lines)
{
    const auto first = std::ranges::find(lines, false, &Line::isHeading) - lines.begin();
    lineModel->setLines(std::move(lines));
    Accessibility::placesRefilled(*this);
    if (lineModel->isInside(static_cast<int>(first)))
        setCurrentIndex(lineModel->index(static_cast<int>(first)));
}

/// Qt's list view would tell of a line also while the keys are elsewhere, such as in a field that searches.
void CheckList::currentChanged(const QModelIndex &current, const QModelIndex &previous)
{
    QAbstractItemView::currentChanged(current, previous);
    Accessibility::focusMoved(*this);
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
    return lineModel->at(line).text;
}

void CheckList::setMarked(int line, bool marked)
{
    if (lineModel->isInside(line))
        lineModel->setMarks(line, line, [marked](int) { return marked; });
}

void CheckList::setMarked(const std::function<bool(int line)> &isLineMarked)
{
    lineModel->setMarks(0, lineCount() - 1, isLineMarked);
}

bool CheckList::isMarked(int line) const
{
    return lineModel->isInside(line) && lineModel->isMarked(line);
}

void CheckList::mouseReleaseEvent(QMouseEvent *event)
{
    QListView::mouseReleaseEvent(event);
    const QModelIndex index = indexAt(event->position().toPoint());
    if (index.flags().testFlag(Qt::ItemIsEnabled) && event->button() == Qt::LeftButton)
        press(index.row());
}

void CheckList::press(int line)
{
    if (lineModel->isInside(line) && !lineModel->at(line).isFixed)
        Q_EMIT linePressed(line);
}

void CheckList::keyPressEvent(QKeyEvent *event)
{
    const int line = currentIndex().flags().testFlag(Qt::ItemIsEnabled) ? currentIndex().row() : -1;
    if (event->key() == Qt::Key_Space && line >= 0)
        press(line);
    else if ((event->key() == Qt::Key_Delete || event->key() == Qt::Key_Backspace) && line >= 0)
        Q_EMIT deletePressed(line);
    else if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)
        event->ignore();
    else
        QListView::keyPressEvent(event);
}
