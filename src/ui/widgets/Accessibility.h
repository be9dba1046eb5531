#pragma once

#include <QAccessible>
#include <QList>
#include <QRect>

#include <functional>
#include <set>
#include <vector>

class QListView;
class QWidget;

/// Something that assistive technology, such as a screen reader, can do with a control or a part of it.
struct AccessibleAction
{
    /// A name of `QAccessibleActionInterface`, or words of our own.
    QString name;
    std::function<void()> perform;
    /// The key that does the same; empty for none.
    QString keys = {};
};

/// One part of a painted control: a row of a list, a segment, a day.
struct AccessiblePart
{
    QString name;
    QString description = {};
    QAccessible::Role role = QAccessible::ListItem;
    QAccessible::State state = {};
    /// In the coordinates of the control.
    QRect place = {};
    std::vector<AccessibleAction> actions = {};
};

/// The parts of a painted control. Each has a key that stays while it exists, wherever it goes; without the
/// functions for keys, a key is the place plus one.
struct AccessibleParts
{
    std::function<int()> count;
    /// What is told of a part that exists.
    std::function<AccessiblePart(quint64 key)> part;
    std::function<quint64(int place)> keyAt = {};
    /// -1 for a part that is gone.
    std::function<int(quint64 key)> placeOf = {};
    /// Cheaper than the place, where there is something cheaper.
    std::function<bool(quint64 key)> exists = {};
    /// The part that has the keyboard; 0 for none.
    std::function<quint64()> focused = {};
    /// The part at a point of the control; 0 for none. Without it all parts are asked.
    std::function<quint64(QPoint)> at = {};
    /// The parts that can be seen, where there may be very many others.
    std::function<std::vector<quint64>()> inSight = {};
    /// What stands beside the parts, such as the field in which one is renamed.
    std::function<QList<QWidget *>()> widgets = {};
    /// The names of the columns of a grid; empty for anything else.
    std::function<QStringList()> columns = {};
    /// How many rows a grid has, where other parts come after its cells; else all parts are cells.
    std::function<int()> rows = {};
};

/// How a control is told to assistive technology. What is left out is as for any widget.
struct AccessibleDescription
{
    QAccessible::Role role = QAccessible::NoRole;
    std::function<QString()> name = {};
    std::function<QString()> description = {};
    std::function<std::vector<AccessibleAction>()> actions = {};
    AccessibleParts parts = {};
    std::function<bool()> isMultiSelectable = {};
};

/// What assistive technology is told of our own controls, and of what happens in them. While nobody listens,
/// telling costs nothing.
namespace Accessibility {

/// Lets our interfaces be found. Once, before the first window.
void install();

/// Says what a control is. A control of our own calls it as the first thing in its constructor; the functions
/// are not called after its destructor.
void describe(QWidget &control, AccessibleDescription description);
/// The same for a list view whose rows are ticked or opened by a press. `moreActions` gives what else can be
/// done with a row.
void describeList(QListView &list, std::function<void(int row)> press,
                  std::function<std::vector<AccessibleAction>(int row)> moreActions = {});

/// Whether somebody listens.
bool isHeard();
/// Says a sentence about a window or control, such as "12 tasks".
void announce(QWidget &about, const QString &sentence);
/// The name of the control, not that of a part, is another one.
void nameChanged(QWidget &control);
/// Parts may be called otherwise, or be ticked or selected otherwise: tells what differs from what was told.
/// Where there are very many parts, those in sight are looked at, the one with the keys, and `outOfSight`.
void partsChanged(QWidget &control, const std::set<quint64> &outOfSight = {});
/// The keyboard is on another part.
void focusMoved(QWidget &control);
/// A part was selected, or is no longer.
void partSelected(QWidget &control, quint64 key, bool isSelected);
/// A part was opened or closed.
void expandedChanged(QWidget &control, quint64 key, bool isExpanded);
/// A part is new. Not for many at once: then `partsReplaced`.
void partCame(QWidget &control, quint64 key);
/// A part that somebody has asked for is no longer where it was.
void partWent(QWidget &control, quint64 key);
/// A part is gone for good.
void partForgotten(QWidget &control, quint64 key);
/// Parts were replaced by others, without a word about each.
void partsReplaced(QWidget &control);
/// The same where a key is a place, which another part has now: what was told before holds no longer.
void placesRefilled(QWidget &control);
/// A bubble was shown, or is about to go.
void bubbleOpened(QWidget &bubble);
void bubbleCloses(QWidget &bubble);

/// The keys of an action of that name; none if there are none.
QStringList keysOf(const std::vector<AccessibleAction> &actions, const QString &name);

} // namespace Accessibility
