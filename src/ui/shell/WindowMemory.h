#pragma once

#include <QObject>
#include <QRect>
#include <QTimer>

class MainWindow;
class SidebarModel;

/// Keeps how the user has the main window from one start to the next: its place and size for each arrangement
/// of monitors, the width of the sidebar and which of its headings are open. What the user never changed is
/// not kept.
class WindowMemory : public QObject
{
    Q_OBJECT
public:
    /// Gives a window that was not shown yet what is remembered; both outlive this.
    WindowMemory(MainWindow &remembered, const SidebarModel &rows);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void restore();
    void restoreHeadings();
    void keepPlace();
    void keepHeadings();

    MainWindow &window;
    const SidebarModel &sidebar;
    /// Where the desktop has put the window by itself.
    QRect given;
    QTimer settled;
    QTimer changed;
    QTimer headings;
};
