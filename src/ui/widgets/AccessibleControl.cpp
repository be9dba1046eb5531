#include "widgets/AccessibleControl.h"

#include "widgets/AccessiblePartInterface.h"
#include "widgets/Popover.h"

#include <QApplication>
#include <QMenu>
#include <QPointer>

namespace {

QHash<const QObject *, AccessibleSubject *> &subjects()
{
    static QHash<const QObject *, AccessibleSubject *> all;
    return all;
}

/// The window that a bubble belongs to, or null.
QWidget *windowUnder(const QWidget &bubble)
{
    return qobject_cast<const Popover *>(&bubble) && bubble.parentWidget() ? bubble.parentWidget()->window()
                                                                           : nullptr;
}

/// The bubbles over a window, and the menu that a widget shows.
QList<QWidget *> popupsOf(const QWidget &widget)
{
    QList<QWidget *> popups;
    if (!QApplication::activePopupWidget())
        return popups;
    for (QWidget *other : QApplication::topLevelWidgets()) {
        const bool isItsMenu = qobject_cast<QMenu *>(other) && other->parentWidget() == &widget;
        if (other->isVisible() && (isItsMenu || windowUnder(*other) == &widget))
            popups << other;
    }
    return popups;
}

void send(QAccessibleInterface &element, QAccessible::Event type)
{
    QAccessibleEvent event(&element, type);
    QAccessible::updateAccessibility(&event);
}

} // namespace

// What was said of a control

AccessibleSubject::AccessibleSubject(QWidget &widget, AccessibleDescription description)
    : QObject(&widget)
    , what(std::move(description))
    , type(widget.metaObject())
{
    subjects().insert(&widget, this);
}

AccessibleSubject::~AccessibleSubject()
{
    subjects().remove(parent());
    if (control)
        control->forgetSubject();
}

AccessibleSubject *AccessibleSubject::of(const QObject &object)
{
    return subjects().value(&object);
}

// The control

AccessibleControl::AccessibleControl(QWidget &described, AccessibleSubject *describedSubject)
    : QAccessibleWidget(&described)
    , subject(describedSubject)
{
    if (subject)
        subject->control = this;
}

AccessibleControl::~AccessibleControl()
{
    if (subject)
        subject->control = nullptr;
    for (const Known &one : std::as_const(known))
        QAccessible::deleteAccessibleInterface(one.id);
}

bool AccessibleControl::isWhole() const
{
    return subject && object() && object()->metaObject()->inherits(subject->type);
}

bool AccessibleControl::isValid() const
{
    return QAccessibleWidget::isValid() && (!subject || isWhole());
}

const AccessibleParts &AccessibleControl::parts() const
{
    return subject->what.parts;
}

bool AccessibleControl::isCell(quint64 key) const
{
    return columnCount() > 0 && (!parts().rows || placeOf(key) < parts().rows() * columnCount());
}

int AccessibleControl::columnCount() const
{
    return hasParts() && parts().columns ? static_cast<int>(parts().columns().size()) : 0;
}

quint64 AccessibleControl::keyAt(int place) const
{
    if (place < 0 || place >= partCount())
        return 0;
    return parts().keyAt ? parts().keyAt(place) : static_cast<quint64>(place) + 1;
}

int AccessibleControl::placeOf(quint64 key) const
{
    if (!hasParts() || key == 0)
        return -1;
    if (parts().placeOf)
        return parts().placeOf(key);
    return key <= static_cast<quint64>(partCount()) ? static_cast<int>(key) - 1 : -1;
}

bool AccessibleControl::exists(quint64 key) const
{
    if (!hasParts() || key == 0)
        return false;
    return parts().exists ? parts().exists(key) : placeOf(key) >= 0;
}

QAccessibleInterface *AccessibleControl::partOf(quint64 key) const
{
    if (key == 0)
        return nullptr;
    Known &one = known[key];
    if (QAccessibleInterface *made = one.id ? QAccessible::accessibleInterface(one.id) : nullptr)
        return made;
    auto *part = new AccessiblePartInterface(*this, key);
    one.id = QAccessible::registerAccessibleInterface(part);
    return part;
}

QAccessibleInterface *AccessibleControl::knownPart(quint64 key) const
{
    const QAccessible::Id id = known.value(key).id;
    return id ? QAccessible::accessibleInterface(id) : nullptr;
}

AccessiblePart AccessibleControl::tellPart(quint64 key) const
{
    AccessiblePart part = parts().part(key);
    // What has been asked for meanwhile is still to be told as a change.
    if (std::optional<AccessiblePart> &told = known[key].told; !told)
        told = part;
    return part;
}

// Children

/// What stands beside the parts, or over a widget.
QList<QWidget *> AccessibleControl::extraWidgets() const
{
    if (hasParts())
        return parts().widgets ? parts().widgets() : QList<QWidget *>();
    return popupsOf(*widget());
}

int AccessibleControl::childCount() const
{
    const int first = hasParts() ? partCount() : QAccessibleWidget::childCount();
    return first + static_cast<int>(extraWidgets().size());
}

QAccessibleInterface *AccessibleControl::child(int index) const
{
    const int first = hasParts() ? partCount() : QAccessibleWidget::childCount();
    if (index < first)
        return hasParts() ? partOf(keyAt(index)) : QAccessibleWidget::child(index);
    QWidget *extra = extraWidgets().value(index - first);
    return extra ? QAccessible::queryAccessibleInterface(extra) : nullptr;
}

int AccessibleControl::indexOfChild(const QAccessibleInterface *child) const
{
    const auto *part = dynamic_cast<const AccessiblePartInterface *>(child);
    if (part)
        return part->control() == this ? placeOf(part->partKey()) : -1;
    const auto extra = child ? extraWidgets().indexOf(qobject_cast<QWidget *>(child->object())) : -1;
    if (extra >= 0)
        return static_cast<int>(extra) + (hasParts() ? partCount() : QAccessibleWidget::childCount());
    return hasParts() ? -1 : QAccessibleWidget::indexOfChild(child);
}

QAccessibleInterface *AccessibleControl::childAt(int x, int y) const
{
    if (!hasParts())
        return QAccessibleWidget::childAt(x, y);
    const QPoint point = widget()->mapFromGlobal(QPoint(x, y));
    if (!widget()->rect().contains(point))
        return nullptr;
    for (QWidget *extra : extraWidgets()) {
        if (QRect(extra->mapTo(widget(), QPoint(0, 0)), extra->size()).contains(point))
            return QAccessible::queryAccessibleInterface(extra);
    }
    if (parts().at)
        return partOf(parts().at(point));
    for (int place = 0; place < partCount(); ++place) {
        if (parts().part(keyAt(place)).place.contains(point))
            return partOf(keyAt(place));
    }
    return nullptr;
}

QAccessibleInterface *AccessibleControl::focusChild() const
{
    if (hasParts() && parts().focused && parts().focused() != 0)
        return partOf(parts().focused());
    return QAccessibleWidget::focusChild();
}

/// A window belongs to the program, and a bubble to the window that it is over.
QAccessibleInterface *AccessibleControl::parent() const
{
    if (!widget()->isWindow())
        return QAccessibleWidget::parent();
    QWidget *const under = windowUnder(*widget());
    return QAccessible::queryAccessibleInterface(under ? static_cast<QObject *>(under) : qApp);
}

// What it is

QString AccessibleControl::text(QAccessible::Text kind) const
{
    if (kind == QAccessible::Name && isWhole() && subject->what.name)
        return subject->what.name();
    if (kind == QAccessible::Description && isWhole() && subject->what.description)
        return subject->what.description();
    if (kind == QAccessible::UserText)
        return lastSentence;
    return QAccessibleWidget::text(kind);
}

QAccessible::Role AccessibleControl::role() const
{
    if (subject && subject->what.role != QAccessible::NoRole)
        return subject->what.role;
    // A pane with a name is read as one.
    const bool isNamedPane = !widget()->accessibleName().isEmpty() && widget()->focusPolicy() == Qt::NoFocus;
    if (!widget()->isWindow())
        return isNamedPane ? QAccessible::Grouping : QAccessibleWidget::role();
    return widget()->parentWidget() ? QAccessible::Dialog : QAccessible::Window;
}

QAccessible::State AccessibleControl::state() const
{
    QAccessible::State state = QAccessibleWidget::state();
    state.multiSelectable = isWhole() && subject->what.isMultiSelectable && subject->what.isMultiSelectable();
    state.modal = windowUnder(*widget()) || (widget()->isWindow() && widget()->isModal());
    // What hands the keyboard on does not have it. A bubble that is only read has it itself.
    state.focused = state.focused && !widget()->focusProxy();
    state.focusable = state.focusable || (widget()->isWindow() && state.focused);
    return state;
}

// What can be done

std::vector<AccessibleAction> AccessibleControl::actions() const
{
    return isWhole() && subject->what.actions ? subject->what.actions() : std::vector<AccessibleAction>();
}

QStringList AccessibleControl::actionNames() const
{
    QStringList names;
    for (const AccessibleAction &action : actions())
        names << action.name;
    return names + QAccessibleWidget::actionNames();
}

void AccessibleControl::doAction(const QString &name)
{
    const std::vector<AccessibleAction> possible = actions();
    const auto found = std::ranges::find(possible, name, &AccessibleAction::name);
    if (found == possible.end())
        return QAccessibleWidget::doAction(name);
    const auto now = [control = widget(), perform = found->perform] {
        if (control->isEnabled())
            perform();
    };
    QMetaObject::invokeMethod(widget(), now, Qt::QueuedConnection);
}

QStringList AccessibleControl::keyBindingsForAction(const QString &name) const
{
    return Accessibility::keysOf(actions(), name);
}

void AccessibleControl::perform(quint64 key, const QString &action)
{
    const QPointer<AccessibleSubject> described = subject;
    const auto now = [described, key, action] {
        const AccessibleControl *const asked = described ? described->control : nullptr;
        if (!asked || !asked->control().isEnabled() || !asked->exists(key))
            return;
        const std::vector<AccessibleAction> possible = described->what.parts.part(key).actions;
        const auto found = std::ranges::find(possible, action, &AccessibleAction::name);
        if (found != possible.end())
            found->perform();
    };
    QMetaObject::invokeMethod(widget(), now, Qt::QueuedConnection);
}

// What is told

void AccessibleControl::toldSelected(quint64 key, bool isSelected)
{
    const auto one = known.find(key);
    if (one != known.end() && one->told)
        one->told->state.selected = isSelected;
}

void AccessibleControl::tellChanges(const std::set<quint64> &outOfSight)
{
    if (!hasParts())
        return;
    std::vector<quint64> keys =
        parts().inSight ? parts().inSight() : std::vector<quint64>(known.keyBegin(), known.keyEnd());
    std::set<quint64> others = outOfSight;
    if (parts().focused)
        others.insert(parts().focused());
    for (const quint64 key : keys)
        others.erase(key);
    keys.insert(keys.end(), others.begin(), others.end());
    for (const quint64 key : keys) {
        const std::optional<AccessiblePart> before = known.value(key).told;
        if (!before || !exists(key))
            continue;
        const AccessiblePart now = parts().part(key);
        known[key].told = now;
        QAccessibleInterface &part = *partOf(key);
        if (now.name != before->name)
            send(part, QAccessible::NameChanged);
        if (now.state.checked != before->state.checked) {
            QAccessible::State changed;
            changed.checked = true;
            QAccessibleStateChangeEvent event(&part, changed);
            QAccessible::updateAccessibility(&event);
        }
        if (now.state.selected != before->state.selected)
            send(part, now.state.selected ? QAccessible::SelectionAdd : QAccessible::SelectionRemove);
    }
}

void AccessibleControl::forget(quint64 key)
{
    if (const QAccessible::Id id = known.take(key).id)
        QAccessible::deleteAccessibleInterface(id);
}

void AccessibleControl::forgetAll()
{
    for (const quint64 key : known.keys())
        forget(key);
}

void AccessibleControl::forgetGone()
{
    constexpr qsizetype many = 1000;
    if (known.size() < many)
        return;
    for (const quint64 key : known.keys()) {
        if (!exists(key))
            forget(key);
    }
}
