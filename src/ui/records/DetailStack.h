#pragma once

#include "records/DetailViewController.h"

#include <QObject>
#include <QPointer>

#include <vector>

class QVariantAnimation;
class TabsViewController;

/// The detail panes over the screen that is shown, the last one on top. They slide in from the trailing edge
/// of the content area, and a list below them makes room.
class DetailStack : public QObject
{
    Q_OBJECT
public:
    /// Panes lie in `rightContentView`, which has to outlive the stack.
    explicit DetailStack(QWidget &rightContentView);
    ~DetailStack() override;

    bool isEmpty() const { return panes.empty(); }
    /// Whether the content area can be seen; not before the window has been opened.
    bool isSeen() const { return content.isVisible(); }
    /// The pane on top, or null.
    DetailViewController *top() const;
    /// What panes are about.
    std::vector<ObjectPtr> shownRecords() const;
    /// The uppermost pane about a record, or null.
    DetailViewController *paneOf(const ObjectPtr &record) const;

    /// Slides a pane in, which is owned by the stack from now on. `controller` is the screen or the pane that
    /// opens it; only a screen below an empty stack says where it lies, any other pane covers the top one
    /// exactly. False, and nothing is shown, if the user wants to go on with what the pane on top holds.
    bool showDetail(DetailViewController *detail, QWidget *controller);
    /// Puts a pane beside the list of a screen in the place of all others, without taking the keys. It lies
    /// at the bottom of the stack, so that others cover it. False as above.
    bool embed(DetailViewController *detail, TabsViewController &screen);
    /// Brings a pane that lies lower in the stack to the top. False as above.
    bool showAgain(DetailViewController *detail);
    /// Slides the pane out and drops it; what lies below is active again.
    void goBack(DetailViewController *detail);

    void setNotActiveLastDeteil();
    void setActiveLastDeteil();

    /// Whether something was typed in a pane that would be lost.
    bool hasChanges() const;
    /// Asks about every pane with something typed, which comes to the top for that. False if one of them is
    /// to stay.
    bool mayLeave();
    /// The same about the panes of some records.
    bool mayLeave(const std::vector<ObjectPtr> &records);
    /// The same as a part of a larger question.
    void addTo(LeaveGate &gate);

    /// Drops all panes at once, without a question.
    void removeAllDetail();
    /// Drops the panes about these records, wherever they lie in the stack.
    void removeAllDetailFrom(const std::vector<ObjectPtr> &records);

Q_SIGNALS:
    /// What was typed for a record that is no more lies in this file.
    void textLeft(const QString &draftFile);
    /// The user wants to see another record from a pane.
    void recordWanted(const ObjectPtr &record, DetailViewController *from);
    /// The user wants to write a task down from a pane.
    void newTaskWanted(const NewTaskRequest &request);
    void commandsChanged();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    bool mayBeCovered();
    void add(DetailViewController *detail);
    void bringUp(DetailViewController *detail);
    void requestBack(DetailViewController *detail);
    QRect restingPlace() const;
    QPoint outsidePlace() const;
    void slideIn(DetailViewController &detail);
    void settle();
    void hideCovered();
    bool drop(DetailViewController *detail);
    void leave();
    void setListSpace(int width);
    void moveListSpace(int width, int duration);
    template <typename Matches>
    void removeWhere(Matches matches);

    QWidget &content;
    QPointer<TabsViewController> screen;
    DetailPlace place;
    int listSpace = 0;
    QPointer<QVariantAnimation> listMove;
    std::vector<DetailViewController *> panes;
};
