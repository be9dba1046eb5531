#pragma once

#include <QMainWindow>

#include <functional>

class OutlineViewExtended;
class RightToolBar;
class SplitPanes;

/// The one main window: the sidebar on the left, the toolbar and the content on the right.
class MainWindow : public QMainWindow
{
    Q_OBJECT
public:
    MainWindow();

    /// Puts something quiet below the rows of the sidebar.
    void addToSidebarFoot(QWidget *foot);
    OutlineViewExtended *outlineViewListItem() const { return outline; }
    SplitPanes *splitViewMain() const { return split; }
    RightToolBar *rightToolBarMain() const { return toolBar; }
    QWidget *rightContentView() const { return content; }

    /// Asked before the window closes; false keeps it open.
    void setCloseQuestion(std::function<bool()> question) { closeQuestion = std::move(question); }

Q_SIGNALS:
    /// The window is seen for the first time.
    void firstPainted();
    void closed();
    /// The window takes the keys.
    void didBecomeKey();
    /// It became large or small, or filled the screen, by whomever.
    void stateChanged();
    /// Files that can be imported were dropped anywhere in the window.
    void filesDropped(const QStringList &paths);

protected:
    void paintEvent(QPaintEvent *event) override;
    void changeEvent(QEvent *event) override;
    void closeEvent(QCloseEvent *event) override;
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dropEvent(QDropEvent *event) override;

private:
    QWidget *makeSidebar();
    QWidget *makeRightSide();

    SplitPanes *split;
    OutlineViewExtended *outline;
    RightToolBar *toolBar;
    QWidget *content;
    std::function<bool()> closeQuestion;
    bool wasPainted = false;
};
