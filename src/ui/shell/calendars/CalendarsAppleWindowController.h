#pragma once

#include "foundation/NotificationCenter.h"

#include <QWidget>

class CalendarListModel;
class QLabel;
class QListView;
class QPushButton;

/// The window in which the calendars are chosen that tasks are kept in step with. A choice is kept at once;
/// the tasks follow when the window is closed.
class CalendarsAppleWindowController : public QWidget
{
    Q_OBJECT
public:
    explicit CalendarsAppleWindowController(QWidget *parent = nullptr);

    /// Shows the window, or brings it to the front.
    void showWindow();

Q_SIGNALS:
    /// The user wants to change what the program may use.
    void preferencesWanted();

protected:
    void changeEvent(QEvent *event) override;
    void closeEvent(QCloseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void windowDidLoad();
    void setUpTable();
    void setUpEmptyPane();
    void showContent();
    void clickButtonEmpty();
    void reload();
    void showMenu(const QPoint &position);
    void clickSubMenuItemSetDefault(const QModelIndex &index);
    void clickButtonSave();

    CalendarListModel *model;
    QListView *table;
    QWidget *emptyPane = nullptr;
    QLabel *labelEmpty = nullptr;
    QPushButton *buttonEmpty = nullptr;
    QWidget *hint = nullptr;
    Observation calendarsChanged;
    bool isDone = false;
};
