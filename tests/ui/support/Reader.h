#pragma once

#include <QAccessible>
#include <QStringList>

class QWidget;

/// Assistive technology, while it lives: it hears what is told, finds elements by role and name, and presses
/// them.
class Reader
{
public:
    Reader();
    ~Reader();
    Q_DISABLE_COPY_MOVE(Reader)

    /// Whether it hears anything; it does from the beginning.
    static void setListening(bool isListening);
    /// What was told since the last time, such as "focus: Tea", "ticked: Tea", "said: 2 tasks".
    QStringList heard();
    /// Waits until a line was told.
    bool hears(const QString &line);

    static QAccessibleInterface &of(QWidget &widget);
    /// The first element in `root` of a role whose name begins so; null if there is none.
    static QAccessibleInterface *find(QAccessibleInterface &root, QAccessible::Role role,
                                      const QString &name);
    static QAccessibleInterface *find(QWidget &root, QAccessible::Role role, const QString &name);
    static QStringList namesIn(QWidget &control);
    /// Acts on an element, and waits until it has been done.
    static void act(QAccessibleInterface *element, const QString &action);
    static void press(QAccessibleInterface *element);

    /// What is wrong with the controls in `root`: one without a name, without a role, a button without an
    /// action; each with the way that leads to it.
    static QStringList faultsIn(QAccessibleInterface &root, const QString &path = {});

private:
    QAccessible::UpdateHandler former;
};
