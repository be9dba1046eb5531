#pragma once

#include "records/PlainRecordScreen.h"

/// The screen of everything that others were given to do and have not done yet, what waits longest first.
class WaitingForViewController : public PlainRecordScreen
{
    Q_OBJECT
public:
    explicit WaitingForViewController(QWidget *parent = nullptr);

    TaskPtr selectedTask() const override;

protected:
    DetailViewController *makePane(const ObjectPtr &record) override;
    void showMenu(const QPoint &globalPosition) override;

private:
    /// Asks each of their delegates about the selected tasks.
    void askAboutSelected();
};
