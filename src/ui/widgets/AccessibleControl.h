#pragma once

#include "widgets/Accessibility.h"

#include <QAccessibleWidget>
#include <QHash>
#include <QObject>

#include <optional>
#include <set>

class AccessibleControl;

/// What was said of a control, for as long as it exists.
class AccessibleSubject : public QObject
{
public:
    AccessibleSubject(QWidget &widget, AccessibleDescription description);
    ~AccessibleSubject() override;
    /// What was said of an object, or null.
    static AccessibleSubject *of(const QObject &object);

    const AccessibleDescription what;
    /// The class that described itself: while a destructor runs, an object is of a class before it.
    const QMetaObject *const type;
    /// Null until somebody asks for it.
    AccessibleControl *control = nullptr;
};

/// A widget of our own as assistive technology sees it: as it was described, with its painted parts as its
/// children, and with the bubbles over it as the last children of a window.
class AccessibleControl : public QAccessibleWidget
{
public:
    /// \param subject null for a widget that was not described.
    AccessibleControl(QWidget &described, AccessibleSubject *subject);
    ~AccessibleControl() override;
    Q_DISABLE_COPY_MOVE(AccessibleControl)

    bool isValid() const override;
    int childCount() const override;
    QAccessibleInterface *child(int index) const override;
    int indexOfChild(const QAccessibleInterface *child) const override;
    QAccessibleInterface *childAt(int x, int y) const override;
    QAccessibleInterface *focusChild() const override;
    QAccessibleInterface *parent() const override;
    QString text(QAccessible::Text kind) const override;
    QAccessible::Role role() const override;
    QAccessible::State state() const override;
    QStringList actionNames() const override;
    void doAction(const QString &name) override;
    QStringList keyBindingsForAction(const QString &name) const override;

    QWidget &control() const { return *widget(); }
    const AccessibleParts &parts() const;
    bool hasParts() const { return isWhole() && parts().count; }
    virtual int columnCount() const;
    /// Whether a part is a cell of a grid, not one of the others beside its cells.
    bool isCell(quint64 key) const;
    int partCount() const { return hasParts() ? parts().count() : 0; }
    quint64 keyAt(int place) const;
    int placeOf(quint64 key) const;
    bool exists(quint64 key) const;
    /// The interface of a part, which is made when it is first asked for.
    QAccessibleInterface *partOf(quint64 key) const;
    /// The same, or null if nobody has asked for it yet.
    QAccessibleInterface *knownPart(quint64 key) const;
    /// What is told of a part. What was told first, or as a change, is remembered.
    AccessiblePart tellPart(quint64 key) const;
    /// Does it once the present call has been answered, for it may ask the user something.
    void perform(quint64 key, const QString &action);

    /// What was said of the control holds no longer.
    void forgetSubject() { subject = nullptr; }
    void announced(const QString &sentence) { lastSentence = sentence; }
    /// It was told of a part that it is selected, or not.
    void toldSelected(quint64 key, bool isSelected);
    /// Tells what differs from what was told, of the parts in sight, the one with the keys, and those given.
    void tellChanges(const std::set<quint64> &outOfSight);
    void forget(quint64 key);
    void forgetAll();
    /// Forgets the parts that are gone, once so many were asked for that it is worth looking.
    void forgetGone();

private:
    bool isWhole() const;
    QList<QWidget *> extraWidgets() const;
    std::vector<AccessibleAction> actions() const;

    struct Known
    {
        QAccessible::Id id = 0;
        /// What was told last; absent before anybody asked.
        std::optional<AccessiblePart> told;
    };
    AccessibleSubject *subject;
    mutable QHash<quint64, Known> known;
    QString lastSentence;
};
