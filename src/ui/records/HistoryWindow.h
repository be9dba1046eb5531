#pragma once

#include "foundation/NotificationCenter.h"
#include "records/RecordHistory.h"

#include <QTimer>
#include <QWidget>

#include <vector>

class CheckList;
class QLabel;
class QPushButton;

/// The window that tells what was changed in a record: each save under who made it and when, with its values
/// before and after. One of them is marked, and a button puts its former value back.
class HistoryWindow : public QWidget
{
    Q_OBJECT
public:
    HistoryWindow(const ObjectPtr &record, QWidget *parent);

    void showWindow();

protected:
    void keyPressEvent(QKeyEvent *event) override;

private:
    /// The line of a save, by the line of the list.
    struct Place
    {
        std::size_t entry;
        std::size_t line;
    };
    void showHistory();
    void mark(int row);
    void restore();

    RecordHistory history;
    /// Absent for headings, and for saves of which nothing but themselves is told.
    std::vector<std::optional<Place>> places;
    int marked = -1;
    CheckList *table;
    QLabel *labelEmpty;
    QPushButton *buttonRestore;
    QTimer soon;
    std::vector<Observation> observations;
};
