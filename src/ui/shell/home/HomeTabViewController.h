#pragma once

#include "foundation/NotificationCenter.h"
#include "objectstore/StoreChanges.h"
#include "records/TabsViewController.h"
#include "shell/home/HomeBlockView.h"

#include <QTimer>

#include <functional>

class CalendarItemCommands;
class CaptureBar;
class DayCalendarViewController;
class HomeHeading;

/// The first screen of a start: the day, what is overdue, and the next seven days.
class HomeTabViewController : public TabsViewController
{
    Q_OBJECT
public:
    /// Makes the pane about a project.
    using MakeProjectPane = std::function<DetailViewController *(const ObjectPtr &project)>;

    explicit HomeTabViewController(MakeProjectPane makeProjectPane, QWidget *parent = nullptr);
    ~HomeTabViewController() override;

    TableViewExtended *overdueTableView() const { return overdue->table(); }
    TableViewExtended *weekEventsTableView() const { return week->table(); }

    void loadOverdueTasks() { overdue->reload(); }
    void loadWeekEvents() { week->reload(); }
    /// Shows today's calendar, made anew.
    void showDayCalendar();
    /// Nothing is selected in the lists, since something is selected in the calendar.
    void eventViewSelectedItem();

    void reloadData() override;
    void updateRows() override;
    bool hasSelection() const override;
    void selectRecords(const std::vector<ObjectPtr> &records) override;
    QWidget *taskLine() const override;
    void takeLines(const QStringList &lines) override;
    bool hasSelectedText() const override;
    QString selectedText() const override;
    /// The tasks of the list that commands are about.
    bool canExport() const override;
    ExportRecords::Offer exportOffer() const override;
    bool canPrint() const override { return true; }
    void print(QPrinter &printer) override;
    bool hasRows() const override;
    void removeSelection() override;
    void selectAll() override;
    DetailPlace detailPlace() const override;
    void detailOnTop(const ObjectPtr &record) override;
    void takeKeysBack() override;
    void clearController() override;
    void selectItem(const ObjectPtr &record) override;
    TaskPtr selectedTask() const override;
    QRect placeOf(const TaskPtr &task) const override;

protected:
    void resizeEvent(QResizeEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void showEvent(QShowEvent *event) override;

private:
    HomeBlockView *addBlock(HomeListModel::List list, const QString &title, const QString &tableName);
    QWidget *makeDayColumn();
    void observe();
    void storeChanged(const StoreChanges &changes);
    void reloadSoon();
    void lookAtClock();
    void showDay();
    void showToday();
    void load();
    HomeBlockView *activeBlock() const;
    TaskPtr selectedEvent() const;
    void blockSelected(HomeBlockView *block);
    void open(HomeBlockView &block, const ObjectPtr &record);
    bool showDetail(const ObjectPtr &record);
    void selectTop();
    void showNew(const std::vector<TaskPtr> &tasks);
    bool hasRow(const ObjectPtr &record) const;
    void notePanes();
    void closePanesWithoutRow();

    MakeProjectPane projectPane;
    HomeHeading *labelDay = nullptr;
    HomeHeading *labelWeekday = nullptr;
    HomeHeading *labelMonth = nullptr;
    /// What shows the hours of the day.
    DayCalendarViewController *dayCalendar = nullptr;
    QWidget *dayColumn;
    HomeBlockView *overdue;
    HomeBlockView *week;
    HomeBlockView *lastActive;
    CalendarItemCommands *eventCommands;
    CaptureBar *capture;
    /// Something is being selected in the calendar, for which the lists give way.
    bool isEventSelected = false;
    /// Nothing was fetched yet: the window is to be painted first.
    bool waitsForPaint = false;
    /// The day on which all of it was fetched.
    OptionalDate shownDay;
    QTimer clockTimer;
    /// The records that had both a pane and a row before the rows were fetched.
    std::vector<ObjectPtr> recordsInPanes;
    std::vector<Observation> observations;
};
