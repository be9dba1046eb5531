#pragma once

#include "foundation/NotificationCenter.h"
#include "objectstore/StoreChanges.h"

#include <QFrame>
#include <QTimer>

class QLabel;
class QPushButton;

/// Says for some seconds what the user has deleted, and takes it back on a press. It goes with the next
/// change of the user, after which a step back would take back that one.
class UndoNote : public QFrame
{
    Q_OBJECT
public:
    /// \param lower what it hangs over, at the lower edge.
    explicit UndoNote(QWidget &lower);

Q_SIGNALS:
    void undoWanted();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void enterEvent(QEnterEvent *event) override;
    void leaveEvent(QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    void stored(const StoreChanges &changes);
    void tell(const std::vector<ObjectPtr> &deleted);
    void place();

    QWidget &over;
    QLabel *words;
    QPushButton *button;
    QTimer going;
    QTimer staying;
    Observation observation;
};
