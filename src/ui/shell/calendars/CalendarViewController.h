#pragma once

#include "calendarviews/CalendarPage.h"
#include "records/TabsViewController.h"

class CalendarItemCommands;
class CalendarTitle;
class DaysControllerButton;
class MVSegmentView;

/// The screen of a day, a week or a month: its title, the choice among the three, and back, today and on.
class CalendarViewController : public TabsViewController
{
    Q_OBJECT
public:
    explicit CalendarViewController(QWidget *parent = nullptr);
    ~CalendarViewController() override;

    enum class CalendarType { Day = 0, Week = 1, Month = 2 };

    Date currentDate() const { return shownDate; }
    CalendarType currentTypeCalendar() const { return type; }
    CalendarPage *calendarPage() const { return page; }

    void showCalendar(CalendarType wanted);
    /// One page back (-1) or on (1), which slides, or to the present one (0). Nothing while a slide runs.
    void daysControllerSelectButton(int number);
    void calendarToday() { daysControllerSelectButton(0); }
    void calendarGoToDate(Date date);

    bool canPrint() const override { return true; }
    void print(QPrinter &printer) override;
    void reloadData() override;
    void updateRows() override { reloadData(); }
    void clearController() override;
    NewTaskRequest newTaskRequest() const override;
    void selectItem(const ObjectPtr &record) override;
    /// The first of them that is on the page.
    void selectRecords(const std::vector<ObjectPtr> &records) override;
    TaskPtr selectedTask() const override;
    bool hasSelectedText() const override { return hasSelection(); }
    QString selectedText() const override { return selectedTask()->title(); }
    bool hasSelection() const override { return selectedTask() != nullptr; }
    void removeSelection() override;
    void takeKeysBack() override;

private:
    void setDate(Date date);
    void setTitleDate();
    QString titleOnPaper() const;
    void makePage();
    void store() const;
    void dayWanted(Date day);
    void wentTo(Date date, const TaskPtr &task);

    CalendarType type = CalendarType::Day;
    Date shownDate;
    CalendarTitle *title;
    MVSegmentView *calendarSegment;
    DaysControllerButton *daysCalendarController;
    CalendarPage *page = nullptr;
    CalendarItemCommands *commands;
    QTimer lock;
};
