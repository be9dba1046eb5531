// The lines of a list view.

#include "widgets/Accessibility.h"

#include <QAccessibleActionInterface>
#include <QEvent>
#include <QListView>

using namespace Qt::Literals::StringLiterals;

/// Qt tells that the list has the keys; which line has them is told after that.
class LineFocus : public QObject
{
public:
    using QObject::QObject;

protected:
    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (event->type() == QEvent::FocusIn && Accessibility::isHeard()) {
            auto *list = static_cast<QWidget *>(watched);
            QMetaObject::invokeMethod(
                list, [list] { Accessibility::focusMoved(*list); }, Qt::QueuedConnection);
        }
        return QObject::eventFilter(watched, event);
    }
};

void Accessibility::describeList(QListView &list, std::function<void(int)> press,
                                 std::function<std::vector<AccessibleAction>(int)> moreActions)
{
    list.installEventFilter(new LineFocus(&list));
    const auto rowOf = [](quint64 key) { return static_cast<int>(key) - 1; };
    const auto part = [&list, press, moreActions, rowOf](quint64 key) {
        const int row = rowOf(key);
        const QModelIndex index = list.model()->index(row, 0);
        const QVariant name = index.data(Qt::AccessibleTextRole);
        const QVariant tick = index.data(Qt::CheckStateRole);
        AccessiblePart told{.name = name.isValid() ? name.toString() : index.data().toString()};
        told.place = list.visualRect(index);
        told.state.offscreen = !list.viewport()->rect().intersects(told.place);
        if (!index.flags().testFlag(Qt::ItemIsEnabled)) {
            told.role = QAccessible::Heading;
            return told;
        }
        told.role = tick.isValid() ? QAccessible::CheckBox : QAccessible::ListItem;
        told.state.checkable = tick.isValid();
        told.state.checked = tick.toInt() == Qt::Checked;
        const bool hasSelection = list.selectionMode() != QAbstractItemView::NoSelection;
        told.state.selectable = hasSelection;
        told.state.selected = hasSelection && list.selectionModel()->isSelected(index);
        told.state.focusable = true;
        told.state.focused = list.hasFocus() && list.currentIndex() == index;
        told.actions = {{QAccessibleActionInterface::pressAction(), [press, row] { press(row); }, u"Space"_s},
                        {QAccessibleActionInterface::setFocusAction(), [&list, row] {
                             list.setFocus();
                             list.setCurrentIndex(list.model()->index(row, 0));
                         }}};
        if (tick.isValid())
            told.actions.insert(told.actions.begin() + 1, {QAccessibleActionInterface::toggleAction(),
                                                           [press, row] { press(row); }, u"Space"_s});
        for (const AccessibleAction &more : moreActions ? moreActions(row) : std::vector<AccessibleAction>())
            told.actions.push_back(more);
        return told;
    };
    const auto inSight = [&list] {
        std::vector<quint64> keys;
        int row = std::max(list.indexAt({0, 0}).row(), 0);
        for (; list.model() && row < list.model()->rowCount(); ++row) {
            if (list.visualRect(list.model()->index(row, 0)).top() >= list.viewport()->height())
                break;
            keys.push_back(static_cast<quint64>(row) + 1);
        }
        return keys;
    };
    describe(list, {.role = QAccessible::List,
                    .parts = {.count = [&list] { return list.model() ? list.model()->rowCount() : 0; },
                              .part = part,
                              .focused = [&list]() -> quint64 {
                                  const int row = list.hasFocus() ? list.currentIndex().row() : -1;
                                  return static_cast<quint64>(row + 1);
                              },
                              .at = [&list](QPoint point) -> quint64 {
                                  const QPoint inView = list.viewport()->mapFrom(&list, point);
                                  return static_cast<quint64>(list.indexAt(inView).row() + 1);
                              },
                              .inSight = inSight}});
}
