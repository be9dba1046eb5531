#pragma once

#include "shell/tasks/TabTaskViewController.h"

/// New tasks, in the order that the user gives them by dragging.
class InboxViewController : public TabTaskViewController
{
    Q_OBJECT
public:
    explicit InboxViewController(QWidget *parent = nullptr);

protected:
    TaskListQuery query(Grouping grouping) const override;

private:
    void moveRows(const std::set<int> &rows, int target);
    void moveByKey(int direction);
};

/// What is due or begins by the end of today.
class TodayViewController : public TabTaskViewController
{
    Q_OBJECT
public:
    explicit TodayViewController(QWidget *parent = nullptr);

protected:
    TaskListQuery query(Grouping grouping) const override;
};

/// What begins after today.
class ScheduledViewController : public TabTaskViewController
{
    Q_OBJECT
public:
    explicit ScheduledViewController(QWidget *parent = nullptr);

protected:
    TaskListQuery query(Grouping grouping) const override;
};

/// What is to be done some day.
class SomedayViewController : public TabTaskViewController
{
    Q_OBJECT
public:
    explicit SomedayViewController(QWidget *parent = nullptr);

protected:
    TaskListQuery query(Grouping grouping) const override;
};

/// Open tasks under the people they are delegated to.
class UserDelegateViewController : public TabTaskViewController
{
    Q_OBJECT
public:
    explicit UserDelegateViewController(QWidget *parent = nullptr);

protected:
    TaskListQuery query(Grouping grouping) const override;
};

/// Everything that is open.
class NotDoneViewController : public TabTaskViewController
{
    Q_OBJECT
public:
    explicit NotDoneViewController(QWidget *parent = nullptr);

protected:
    TaskListQuery query(Grouping grouping) const override;
};

/// What is done, by day.
class DoneViewController : public TabTaskViewController
{
    Q_OBJECT
public:
    explicit DoneViewController(QWidget *parent = nullptr);

protected:
    TaskListQuery query(Grouping grouping) const override;
};
