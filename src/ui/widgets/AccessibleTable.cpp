#include "widgets/AccessibleTable.h"

#include "foundation/Localization.h"
#include "widgets/TableViewExtended.h"

#include <QAccessibleActionInterface>
#include <QEvent>

using namespace Qt::Literals::StringLiterals;

/// More rows than these are not told of one by one.
constexpr std::size_t mostSteps = 4;
constexpr std::size_t mostSelected = 8;
constexpr std::size_t mostChanged = 16;

AccessibleTable::AccessibleTable(TableViewExtended &list)
    : QObject(&list)
    , view(list)
{
    soon.setSingleShot(true);
    soon.setInterval(0);
    connect(&soon, &QTimer::timeout, this, &AccessibleTable::tellNow);
    view.installEventFilter(this);
    AccessibleParts parts;
    parts.count = [this] { return static_cast<int>(order().rows.size()); };
    parts.part = [this](quint64 key) { return partOf(key); };
    parts.keyAt = [this](int place) {
        return model->stableIdAt(order().rows[static_cast<std::size_t>(place)]);
    };
    parts.placeOf = [this](quint64 key) { return placeOfRow(rowOfKey(key)); };
    parts.exists = [this](quint64 key) { return rowOfKey(key) >= 0; };
    parts.focused = [this] { return view.hasFocus() ? currentKey() : 0; };
    parts.at = [this](QPoint point) { return keyAtPoint(point); };
    parts.inSight = [this] { return keysInSight(); };
    // The field in which a title is written stands on the viewport.
    parts.widgets = [this] {
        const auto *field = view.viewport()->findChild<QWidget *>({}, Qt::FindDirectChildrenOnly);
        return field && field->isVisible() ? QList<QWidget *>{view.viewport()} : QList<QWidget *>();
    };
    Accessibility::describe(
        view, {.role = QAccessible::List,
               .description =
                   [this] {
                       const int items = order().itemCount();
                       return model ? model->countInWords(items) : QString();
                   },
               .parts = std::move(parts),
               .isMultiSelectable =
                   [this] { return view.selectionMode() == QAbstractItemView::ExtendedSelection; }});
}

void AccessibleTable::follow(TableModel *rowsModel)
{
    for (const QMetaObject::Connection &connection : connections)
        disconnect(connection);
    connections.clear();
    model = rowsModel;
    reset();
    if (!model)
        return;
    connections = {connect(model, &TableModel::rowsInserted, this,
                           [this](const QModelIndex &, int first, int last) { rowsInserted(first, last); }),
                   connect(model, &TableModel::rowsAboutToBeRemoved, this,
                           [this](const QModelIndex &, int first, int last) { rowsGoing(first, last); }),
                   connect(model, &TableModel::rowsRemoved, this, &AccessibleTable::rowsStandElsewhere),
                   connect(model, &TableModel::rowsMoved, this,
                           [this](const QModelIndex &, int first, int last, const QModelIndex &, int target) {
                               rowsMoved(first, last, target);
                           }),
                   connect(model, &TableModel::modelReset, this, &AccessibleTable::reset),
                   connect(model, &TableModel::dataChanged, this,
                           [this](const QModelIndex &first, const QModelIndex &last) {
                               rowsSayOther(first.row(), last.row());
                           }),
                   connect(view.selectionModel(), &QItemSelectionModel::currentRowChanged, this,
                           [this] {
                               if (!Accessibility::isHeard() || !view.hasFocus())
                                   return;
                               // The list is told first, or what replaced its rows.
                               if (isReplaced || isFocusNew)
                                   tellSoon();
                               else
                                   tellCurrentRow();
                           }),
                   connect(view.selectionModel(), &QItemSelectionModel::selectionChanged, this,
                           &AccessibleTable::selectionChanged)};
}

// What a row is

quint64 AccessibleTable::currentKey() const
{
    const int row = view.currentRow();
    return model && row >= 0 && row < model->rowCount() ? model->stableIdAt(row) : 0;
}

quint64 AccessibleTable::keyAtPoint(QPoint point) const
{
    const QModelIndex index = view.indexAt(view.viewport()->mapFrom(&view, point));
    const bool isTold = index.isValid() && model->kindOf(index.row()) != RowKind::Separator;
    return isTold ? model->stableIdAt(index.row()) : 0;
}

int AccessibleTable::firstRowInSight() const
{
    return std::max(view.indexAt({0, 0}).row(), 0);
}

std::vector<quint64> AccessibleTable::keysInSight() const
{
    std::vector<quint64> keys;
    for (int row = firstRowInSight(); model && row < model->rowCount(); ++row) {
        if (view.visualRect(model->index(row)).top() >= view.viewport()->height())
            break;
        keys.push_back(model->stableIdAt(row));
    }
    return keys;
}

/// Mostly it is the current row that is asked for, or one in sight; all rows are looked through only for
/// another one, once after each change.
int AccessibleTable::rowOfKey(quint64 key) const
{
    if (!model || key == 0)
        return -1;
    if (key == currentKey())
        return view.currentRow();
    const int first = firstRowInSight();
    const std::vector<quint64> seen = areRowsOld ? keysInSight() : std::vector<quint64>();
    if (const auto found = std::ranges::find(seen, key); found != seen.end())
        return first + static_cast<int>(found - seen.begin());
    if (std::exchange(areRowsOld, false)) {
        cachedRows.clear();
        for (const int row : order().rows)
            cachedRows.insert(model->stableIdAt(row), row);
    }
    return cachedRows.value(key, -1);
}

const AccessibleTable::Order &AccessibleTable::order() const
{
    static const Order none;
    if (!model)
        return none;
    if (!std::exchange(isOrderOld, false))
        return cachedOrder;
    cachedOrder = {};
    for (int row = 0; row < model->rowCount(); ++row) {
        const RowKind kind = model->kindOf(row);
        if (kind != RowKind::Separator)
            cachedOrder.rows.push_back(row);
        if (kind == RowKind::Header)
            cachedOrder.headers.push_back(row);
    }
    return cachedOrder;
}

int AccessibleTable::placeOfRow(int row) const
{
    const std::vector<int> &rows = order().rows;
    const auto found = std::ranges::lower_bound(rows, row);
    return found == rows.end() || *found != row ? -1 : static_cast<int>(found - rows.begin());
}

/// Which of the items it is, and below which header.
QString AccessibleTable::placeInWords(int row) const
{
    const std::vector<int> &headers = order().headers;
    const auto next = std::ranges::upper_bound(headers, row);
    const int above = static_cast<int>(next - headers.begin());
    const QString place = localized(u"%1 of %2"_s).arg(placeOfRow(row) - above + 1).arg(order().itemCount());
    return above == 0
               ? place
               : model->index(*std::prev(next)).data(Qt::AccessibleTextRole).toString() + u", "_s + place;
}

/// Selects a row, and says where it stands then: what selecting asks of the user may change the rows. -1 if
/// it is not selected.
int AccessibleTable::selectKey(quint64 key) const
{
    if (const int row = rowOfKey(key); row >= 0)
        view.selectRow(row);
    const int row = rowOfKey(key);
    return row >= 0 && view.selectionModel()->isSelected(model->index(row)) ? row : -1;
}

std::vector<AccessibleAction> AccessibleTable::actionsOf(quint64 key, bool isTickable) const
{
    TableViewExtended *const list = &view;
    std::vector<AccessibleAction> actions;
    const auto add = [&](const QString &name, std::function<void()> perform, const QString &keys) {
        actions.push_back({name, std::move(perform), keys});
    };
    add(
        QAccessibleActionInterface::pressAction(),
        [this, list, key] {
            if (const int row = selectKey(key); row >= 0)
                Q_EMIT list->doubleAction(row);
        },
        u"Return"_s);
    if (isTickable)
        add(
            QAccessibleActionInterface::toggleAction(),
            [this, list, key] { Q_EMIT list->checkToggled({rowOfKey(key)}); }, u"Space"_s);
    // Where the keys come from a field beside the list, they stay there.
    if (view.focusPolicy() != Qt::NoFocus)
        add(QAccessibleActionInterface::setFocusAction(),
            [this, list, key] {
                list->setFocus();
                if (const int row = selectKey(key); row >= 0)
                    list->scrollToRow(row);
            },
            {});
    if (view.hasMenu())
        add(
            QAccessibleActionInterface::showMenuAction(),
            [this, list, key] {
                const int former = rowOfKey(key);
                const bool isSelected = list->selectionModel()->isSelected(list->tableModel()->index(former));
                const int row = isSelected ? former : selectKey(key);
                if (row < 0)
                    return;
                list->scrollToRow(row);
                const QPoint middle = list->visualRect(list->tableModel()->index(row)).center();
                Q_EMIT list->menuRequested(list->viewport()->mapToGlobal(middle));
            },
            u"Menu"_s);
    if (!view.canMoveRows())
        return actions;
    for (const int direction : {-1, 1})
        add(
            localized(direction < 0 ? u"Move up"_s : u"Move down"_s),
            [this, list, key, direction] {
                if (selectKey(key) >= 0)
                    Q_EMIT list->moveRequested(direction);
            },
            direction < 0 ? u"Alt+Up"_s : u"Alt+Down"_s);
    return actions;
}

AccessiblePart AccessibleTable::partOf(quint64 key) const
{
    const int row = rowOfKey(key);
    if (row < 0)
        return {};
    const QModelIndex index = model->index(row);
    AccessiblePart part{.name = index.data(Qt::AccessibleTextRole).toString()};
    const QRect inViewport = view.visualRect(index);
    part.place = {view.viewport()->mapTo(&view, inViewport.topLeft()), inViewport.size()};
    part.state.offscreen = !inViewport.intersects(view.viewport()->rect());
    if (model->kindOf(row) == RowKind::Header) {
        part.role = QAccessible::Heading;
        return part;
    }
    const QVariant tick = index.data(Qt::CheckStateRole);
    part.role = tick.isValid() ? QAccessible::CheckBox : QAccessible::ListItem;
    // Without headers the place among the children says as much.
    part.description = hasHeaders() ? placeInWords(row) : QString();
    part.state.checkable = tick.isValid();
    part.state.checked = tick.toInt() == Qt::Checked;
    part.state.selectable = true;
    part.state.selected = view.selectionModel()->isSelected(index);
    part.state.focusable = true;
    part.state.focused = view.hasFocus() && row == view.currentRow();
    part.actions = actionsOf(key, tick.isValid());
    return part;
}

// What happens

void AccessibleTable::rowsStandElsewhere()
{
    isOrderOld = true;
    areRowsOld = true;
    tellSoon();
}

/// Gaps are no rows for a reader.
void AccessibleTable::noteRows(int first, int last, std::vector<quint64> &keys)
{
    for (int row = first; row <= last && keys.size() <= mostSteps && Accessibility::isHeard(); ++row) {
        if (model->kindOf(row) != RowKind::Separator)
            keys.push_back(model->stableIdAt(row));
    }
}

void AccessibleTable::rowsInserted(int first, int last)
{
    noteRows(first, last, came);
    rowsStandElsewhere();
}

void AccessibleTable::rowsGoing(int first, int last)
{
    noteRows(first, last, went);
}

void AccessibleTable::rowsMoved(int first, int last, int target)
{
    const int top = target > first ? target - (last - first + 1) : target;
    noteRows(top, top + last - first, moved);
    rowsStandElsewhere();
}

void AccessibleTable::reset()
{
    isReplaced = isReplaced || Accessibility::isHeard();
    rowsStandElsewhere();
}

/// A reader may stand on a row that is not in sight. Of very many rows, those in sight are enough.
void AccessibleTable::rowsSayOther(int first, int last)
{
    const bool areFew = last - first < static_cast<int>(mostChanged) && changed.size() < mostChanged;
    for (int row = first; row <= last && areFew && Accessibility::isHeard(); ++row)
        changed.insert(model->stableIdAt(row));
    tellSoon();
}

void AccessibleTable::tellCount()
{
    isCountDue = true;
    isReplaced = true;
    tellSoon();
}

void AccessibleTable::selectionChanged(const QItemSelection &selected, const QItemSelection &deselected)
{
    if (!Accessibility::isHeard())
        return;
    const auto note = [this](const QItemSelection &selection, bool isSelected) {
        for (const QItemSelectionRange &range : selection) {
            for (int row = range.top(); row <= range.bottom() && !isSelectionLarge; ++row) {
                if (model->isItem(row))
                    reselected.emplace_back(model->stableIdAt(row), isSelected);
                isSelectionLarge = reselected.size() > mostSelected;
            }
        }
    };
    note(deselected, false);
    note(selected, true);
    tellSoon();
}

void AccessibleTable::tellSoon()
{
    if (Accessibility::isHeard() && !soon.isActive())
        soon.start();
}

/// Qt tells that the list has the keys only after the event; the row has them after the list.
bool AccessibleTable::eventFilter(QObject *watched, QEvent *event)
{
    if (!Accessibility::isHeard())
        return false;
    if (event->type() == QEvent::FocusIn) {
        isFocusNew = true;
        tellSoon();
    } else if (event->type() == QEvent::Show) {
        tellCount();
    }
    return QObject::eventFilter(watched, event);
}

void AccessibleTable::tellCurrentRow()
{
    if (!Accessibility::isHeard())
        return;
    toldCurrent = currentKey();
    toldRow = view.currentRow();
    if (view.hasFocus())
        Accessibility::focusMoved(view);
    else if (toldCurrent != 0)
        Accessibility::announce(view, partOf(toldCurrent).name);
}

void AccessibleTable::tellNow()
{
    if (!model)
        return;
    const bool areMany = came.size() + went.size() + moved.size() > mostSteps;
    // What was selected before is so again.
    if (isReplaced)
        reselected.clear();
    if (isReplaced || areMany)
        tellAsAWhole();
    else
        tellSteps();
    came.clear();
    went.clear();
    moved.clear();
    isReplaced = false;
    formerRowCount = model->rowCount();
    tellSelection();
    Accessibility::partsChanged(view, std::exchange(changed, {}));
    if (const bool isNew = std::exchange(isFocusNew, false);
        view.hasFocus() && (isNew || currentKey() != toldCurrent))
        tellCurrentRow();
    toldRow = view.currentRow();
}

void AccessibleTable::tellSelection()
{
    const auto rows = std::exchange(reselected, {});
    if (!std::exchange(isSelectionLarge, false)) {
        for (const auto &[key, isSelected] : rows)
            Accessibility::partSelected(view, key, isSelected);
    } else if (view.selectedCount() > 1) {
        Accessibility::announce(view, localizedCount(u"%1 selected"_s, view.selectedCount()));
    }
}

/// A row that went and came again, or has only moved, was never gone.
void AccessibleTable::tellSteps()
{
    const quint64 current = currentKey();
    for (const quint64 key : went) {
        Accessibility::partWent(view, key);
        if (std::ranges::find(came, key) == came.end())
            Accessibility::partForgotten(view, key);
    }
    for (const quint64 key : moved) {
        Accessibility::partWent(view, key);
        Accessibility::partCame(view, key);
    }
    for (const quint64 key : came)
        Accessibility::partCame(view, key);
    if (std::ranges::find(moved, current) != moved.end() && view.hasFocus())
        Accessibility::announce(view, placeInWords(view.currentRow()));
}

/// A row that the user moved is told by its new place; nobody wants to hear what stays.
void AccessibleTable::tellAsAWhole()
{
    Accessibility::partsReplaced(view);
    const bool isMoved = view.hasFocus() && currentKey() == toldCurrent && view.currentRow() != toldRow;
    if (!view.isVisible())
        return;
    if (std::exchange(isCountDue, false) || model->rowCount() != formerRowCount)
        Accessibility::announce(view, model->countInWords(order().itemCount()));
    else if (isMoved && toldCurrent != 0)
        Accessibility::announce(view, placeInWords(view.currentRow()));
}
