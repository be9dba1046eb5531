#include "shell/OutlineViewExtended.h"

#include "shell/SidebarCell.h"
#include "widgets/Theme.h"

#include <QApplication>
#include <QKeyEvent>
#include <QScrollBar>
#include <QTimer>

#include <utility>

OutlineViewExtended::OutlineViewExtended(QWidget *parent)
    : QTreeView(parent)
{
    setFrameShape(NoFrame);
    setHeaderHidden(true);
    setIndentation(0);
    setRootIsDecorated(false);
    setExpandsOnDoubleClick(false);
    setEditTriggers(EditKeyPressed);
    setSelectionMode(SingleSelection);
    setVerticalScrollMode(ScrollPerPixel);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setTabKeyNavigation(false);
    setMouseTracking(true);
    viewport()->setAutoFillBackground(false);
    QPalette dark = verticalScrollBar()->palette();
    dark.setColor(QPalette::Window, Theme::sidebar);
    verticalScrollBar()->setPalette(dark);
    setItemDelegate(new SidebarCell(this));
    connect(qApp, &QApplication::focusChanged, this, [this](QWidget *former, QWidget *now) {
        if (now == this)
            hadFocus = isFocusOfPress ? former : nullptr;
    });
}

bool OutlineViewExtended::isHeading(const QModelIndex &index) const
{
    return index.isValid() && !index.flags().testFlag(Qt::ItemIsSelectable);
}

void OutlineViewExtended::setLeaveQuestion(std::function<bool(const QModelIndex &)> isHeldBy,
                                           std::function<bool()> mayLeaveIt)
{
    isHeld = std::move(isHeldBy);
    mayLeave = std::move(mayLeaveIt);
}

bool OutlineViewExtended::isHeldBack(const QModelIndex &index) const
{
    return isHeld && !selectionModel()->isSelected(index) && isHeld(index);
}

void OutlineViewExtended::focusInEvent(QFocusEvent *event)
{
    isFocusOfPress = event->reason() == Qt::MouseFocusReason;
    QTreeView::focusInEvent(event);
}

/// The press that led here has its end first: a question would swallow it. Who stays where they are goes on
/// typing there.
void OutlineViewExtended::selectAfterQuestion(const QModelIndex &index) const
{
    if (std::exchange(wanted, index).isValid())
        return;
    auto *view = const_cast<OutlineViewExtended *>(this);
    QTimer::singleShot(0, view, [view, typedIn = hadFocus] {
        const QModelIndexList selected = view->selectedIndexes();
        if (view->selectIndex(std::exchange(view->wanted, {})))
            return;
        if (!selected.isEmpty())
            view->setCurrentIndex(selected.first());
        if (typedIn)
            typedIn->setFocus();
    });
}

bool OutlineViewExtended::selectIndex(const QModelIndex &row)
{
    const QPersistentModelIndex index = row;
    if (isHeldBack(index) && !mayLeave())
        return false;
    // The answer may have changed the rows.
    if (!index.isValid())
        return false;
    if (index.parent().isValid())
        expand(index.parent());
    selectionModel()->setCurrentIndex(index, QItemSelectionModel::ClearAndSelect);
    scrollTo(index);
    return true;
}

void OutlineViewExtended::toggle(const QModelIndex &heading)
{
    if (isExpanded(heading))
        return collapse(heading);
    expand(heading);
    selectIndex(heading.model()->index(0, 0, heading));
}

QItemSelectionModel::SelectionFlags OutlineViewExtended::selectionCommand(const QModelIndex &index,
                                                                          const QEvent *event) const
{
    // The screen stays while the keys pass over a heading or the press goes beside the rows.
    if (!index.isValid() || isHeading(index))
        return QItemSelectionModel::NoUpdate;
    if (isHeldBack(index)) {
        selectAfterQuestion(index);
        return QItemSelectionModel::NoUpdate;
    }
    return QTreeView::selectionCommand(index, event);
}

void OutlineViewExtended::selectionChanged(const QItemSelection &selected, const QItemSelection &deselected)
{
    QTreeView::selectionChanged(selected, deselected);
    if (!selected.isEmpty())
        Q_EMIT selectionDidChange(selected.indexes().first());
}

void OutlineViewExtended::mousePressEvent(QMouseEvent *event)
{
    const QModelIndex index = indexAt(event->position().toPoint());
    if (event->button() != Qt::LeftButton || !isHeading(index))
        return QTreeView::mousePressEvent(event);
    selectionModel()->setCurrentIndex(index, QItemSelectionModel::NoUpdate);
    toggle(index);
}

/// What has a title of its own is renamed, anything else is pressed twice.
void OutlineViewExtended::mouseDoubleClickEvent(QMouseEvent *event)
{
    const QModelIndex index = indexAt(event->position().toPoint());
    if (event->button() == Qt::LeftButton && index.isValid() && index.flags().testFlag(Qt::ItemIsEditable))
        return rename(index);
    mousePressEvent(event);
}

void OutlineViewExtended::rename(const QModelIndex &index)
{
    if (index.isValid() && index.flags().testFlag(Qt::ItemIsEditable))
        edit(index);
}

bool OutlineViewExtended::event(QEvent *event)
{
    // The key removes what is selected here, not what the list on the right has selected.
    const bool isDelete =
        event->type() == QEvent::ShortcutOverride && static_cast<QKeyEvent *>(event)->key() == Qt::Key_Delete;
    if (!isDelete)
        return QTreeView::event(event);
    event->accept();
    return true;
}

void OutlineViewExtended::keyPressEvent(QKeyEvent *event)
{
    switch (event->key()) {
    case Qt::Key_Delete:
    case Qt::Key_Backspace:
        return selectionModel()->hasSelection() ? Q_EMIT didRemoveRow(selectedIndexes().first())
                                                : QApplication::beep();
    case Qt::Key_Space:
    case Qt::Key_Return:
    case Qt::Key_Enter:
        return isHeading(currentIndex()) ? toggle(currentIndex()) : QTreeView::keyPressEvent(event);
    default:
        QTreeView::keyPressEvent(event);
    }
}

void OutlineViewExtended::drawBranches(QPainter *, const QRect &, const QModelIndex &) const {}

void OutlineViewExtended::drawRow(QPainter *painter, const QStyleOptionViewItem &option,
                                  const QModelIndex &index) const
{
    QStyleOptionViewItem row = option;
    row.state.setFlag(QStyle::State_Open, isExpanded(index));
    row.state.setFlag(QStyle::State_Selected, selectionModel()->isSelected(index));
    row.state.setFlag(QStyle::State_HasFocus, hasFocus() && index == currentIndex());
    const QPoint pointer = viewport()->mapFromGlobal(QCursor::pos());
    row.state.setFlag(QStyle::State_MouseOver, underMouse() && option.rect.contains(pointer));
    itemDelegate()->paint(painter, row, index);
}
