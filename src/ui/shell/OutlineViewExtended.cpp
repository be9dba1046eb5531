#include "shell/OutlineViewExtended.h"

#include "foundation/Localization.h"
#include "records/DraggedRecords.h"
#include "shell/SidebarCell.h"
#include "shell/SidebarModel.h"
#include "widgets/Appearance.h"
#include "widgets/Theme.h"

#include <QAccessibleActionInterface>
#include <QApplication>
#include <QDropEvent>
#include <QKeyEvent>
#include <QMimeData>
#include <QScrollBar>
#include <QTimer>

#include <utility>

using namespace Qt::Literals::StringLiterals;

constexpr int holdPatience = 500;

static quint64 sidebarKey(const QModelIndex &index)
{
    return index.data(SidebarModel::StableIdRole).toULongLong();
}

OutlineViewExtended::OutlineViewExtended(QWidget *parent)
    : QTreeView(parent)
{
    describe();
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
    Appearance::follow(*this, [this] {
        QPalette dark = verticalScrollBar()->palette();
        dark.setColor(QPalette::Window, Theme::sidebar);
        verticalScrollBar()->setPalette(dark);
    });
    setItemDelegate(new SidebarCell(this));
    setAcceptDrops(true);
    viewport()->setAcceptDrops(true);
    holdTimer.setSingleShot(true);
    holdTimer.setInterval(holdPatience);
    connect(&holdTimer, &QTimer::timeout, this, [this] { Q_EMIT heldOver(heldIndex); });
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
    // Qt tells of the whole tree only after this.
    QMetaObject::invokeMethod(
        this, [this] { Accessibility::focusMoved(*this); }, Qt::QueuedConnection);
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
    // The tree would tell assistive technology of rows by places that count the hidden header.
    QAbstractItemView::selectionChanged(selected, deselected);
    Accessibility::partsChanged(*this);
    if (!selected.isEmpty())
        Q_EMIT selectionDidChange(selected.indexes().first());
}

void OutlineViewExtended::currentChanged(const QModelIndex &current, const QModelIndex &previous)
{
    QAbstractItemView::currentChanged(current, previous);
    if (hasFocus())
        Accessibility::focusMoved(*this);
}

/// The rows are all made anew for one that comes or goes, which alone is told, once the headings are open
/// again.
void OutlineViewExtended::setModel(QAbstractItemModel *newModel)
{
    QTreeView::setModel(newModel);
    connect(newModel, &QAbstractItemModel::modelAboutToBeReset, this, [this] {
        if (Accessibility::isHeard())
            QMetaObject::invokeMethod(
                this, [this, former = shownKeys()] { tellRows(former); }, Qt::QueuedConnection);
    });
}

void OutlineViewExtended::tellRows(const QList<quint64> &former)
{
    const QList<quint64> keys = shownKeys();
    for (const quint64 key : former) {
        if (keys.contains(key))
            continue;
        Accessibility::partWent(*this, key);
        Accessibility::partForgotten(*this, key);
    }
    for (const quint64 key : keys) {
        if (!former.contains(key))
            Accessibility::partCame(*this, key);
    }
}

void OutlineViewExtended::dataChanged(const QModelIndex &topLeft, const QModelIndex &bottomRight,
                                      const QList<int> &roles)
{
    QTreeView::dataChanged(topLeft, bottomRight, roles);
    Accessibility::partsChanged(*this);
}

// What assistive technology is told

QModelIndexList OutlineViewExtended::shownRows() const
{
    QModelIndexList rows;
    for (int top = 0; model() && top < model()->rowCount(); ++top) {
        const QModelIndex heading = model()->index(top, 0);
        rows << heading;
        for (int row = 0; isExpanded(heading) && row < model()->rowCount(heading); ++row)
            rows << model()->index(row, 0, heading);
    }
    return rows;
}

QList<quint64> OutlineViewExtended::shownKeys() const
{
    QList<quint64> keys;
    for (const QModelIndex &row : shownRows())
        keys << sidebarKey(row);
    return keys;
}

QModelIndex OutlineViewExtended::rowOfKey(quint64 key) const
{
    const QModelIndexList rows = shownRows();
    const auto found = std::ranges::find(rows, key, sidebarKey);
    return found == rows.end() ? QModelIndex() : *found;
}

AccessiblePart OutlineViewExtended::partOf(const QModelIndex &index)
{
    AccessiblePart part{.name = index.data().toString(),
                        .description = index.data(Qt::AccessibleDescriptionRole).toString()};
    const QRect inViewport = visualRect(index);
    part.place = {viewport()->mapTo(this, inViewport.topLeft()), inViewport.size()};
    part.state.offscreen = !inViewport.intersects(viewport()->rect());
    part.state.expandable = model()->hasChildren(index);
    part.state.expanded = part.state.expandable && isExpanded(index);
    part.state.collapsed = part.state.expandable && !isExpanded(index);
    part.state.selectable = !isHeading(index);
    part.state.selected = selectionModel()->isSelected(index);
    part.state.focusable = true;
    part.state.focused = hasFocus() && index == currentIndex();
    const QPersistentModelIndex row = index;
    part.actions = {{QAccessibleActionInterface::pressAction(),
                     [this, row] {
                         if (!isHeading(row))
                             return void(selectIndex(row));
                         selectionModel()->setCurrentIndex(row, QItemSelectionModel::NoUpdate);
                         toggle(row);
                     },
                     u"Return"_s},
                    {QAccessibleActionInterface::setFocusAction(), [this, row] {
                         setFocus();
                         selectionModel()->setCurrentIndex(row, QItemSelectionModel::NoUpdate);
                     }}};
    if (index.flags().testFlag(Qt::ItemIsEditable))
        part.actions.push_back({localized(u"Edit Title"_s), [this, row] { rename(row); }});
    return part;
}

void OutlineViewExtended::describe()
{
    AccessibleParts parts;
    parts.count = [this] { return static_cast<int>(shownRows().size()); };
    parts.part = [this](quint64 key) { return partOf(rowOfKey(key)); };
    parts.keyAt = [this](int place) { return sidebarKey(shownRows().at(place)); };
    parts.placeOf = [this](quint64 key) { return static_cast<int>(shownRows().indexOf(rowOfKey(key))); };
    parts.exists = [this](quint64 key) { return rowOfKey(key).isValid(); };
    parts.focused = [this] { return hasFocus() ? sidebarKey(currentIndex()) : 0; };
    parts.at = [this](QPoint point) { return sidebarKey(indexAt(viewport()->mapFrom(this, point))); };
    parts.inSight = [this] {
        std::vector<quint64> keys;
        for (QModelIndex row = indexAt({0, 0}); row.isValid(); row = indexBelow(row)) {
            if (visualRect(row).top() >= viewport()->height())
                break;
            keys.push_back(sidebarKey(row));
        }
        return keys;
    };
    parts.widgets = [this] {
        const auto *field = viewport()->findChild<QWidget *>({}, Qt::FindDirectChildrenOnly);
        return field && field->isVisible() ? QList<QWidget *>{viewport()} : QList<QWidget *>();
    };
    Accessibility::describe(*this, {.role = QAccessible::List, .parts = std::move(parts)});
    connect(this, &QTreeView::expanded, this, [this](const QModelIndex &index) {
        Accessibility::expandedChanged(*this, sidebarKey(index), true);
    });
    connect(this, &QTreeView::collapsed, this, [this](const QModelIndex &index) {
        Accessibility::expandedChanged(*this, sidebarKey(index), false);
    });
}

// What is dragged over the rows

void OutlineViewExtended::dragEnterEvent(QDragEnterEvent *event)
{
    if (!DraggedRecords::tasksIn(*event->mimeData()).empty())
        event->acceptProposedAction();
}

void OutlineViewExtended::dragMoveEvent(QDragMoveEvent *event)
{
    const QModelIndex index = indexAt(event->position().toPoint());
    if (heldIndex != index) {
        heldIndex = index;
        holdTimer.start();
        viewport()->update();
    }
    event->setAccepted(index.isValid() && takes && takes(index));
}

void OutlineViewExtended::dragLeaveEvent(QDragLeaveEvent *)
{
    holdTimer.stop();
    heldIndex = QModelIndex();
    viewport()->update();
}

void OutlineViewExtended::dropEvent(QDropEvent *event)
{
    const QModelIndex index = indexAt(event->position().toPoint());
    dragLeaveEvent(nullptr);
    if (!takes || !takes(index))
        return event->ignore();
    event->acceptProposedAction();
    Q_EMIT dropped(index, DraggedRecords::tasksIn(*event->mimeData()));
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
    const bool isTarget = heldIndex == index && takes && takes(index);
    row.state.setFlag(QStyle::State_MouseOver, isTarget || (underMouse() && option.rect.contains(pointer)));
    itemDelegate()->paint(painter, row, index);
}
