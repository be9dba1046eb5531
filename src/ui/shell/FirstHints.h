#pragma once

#include "foundation/NotificationCenter.h"
#include "shell/Actions.h"

#include <QWidget>

class QLabel;
struct StoreChanges;

/// Five quiet hints of the first day, one at a time below the rows of the sidebar. A hint goes for good once
/// the user does what it says, and all of them go when the day is over or the user wants no more.
class FirstHints : public QWidget
{
    Q_OBJECT
public:
    explicit FirstHints(const Actions &actions, QWidget *parent = nullptr);

    /// Shows the first one that is left, if it is still the first day and the records are the user's own.
    void refresh();

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    void commandUsed(ActionId id);
    void lookAt(const StoreChanges &changes);
    void used(int hint);

    QLabel *words;
    Observation observation;
};
