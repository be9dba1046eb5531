#pragma once

#include "shell/tasks/TaskRowsScreen.h"

/// The screen of everything that others were given to do and have not done yet, what waits longest first.
class WaitingForViewController : public TaskRowsScreen
{
    Q_OBJECT
public:
    explicit WaitingForViewController(QWidget *parent = nullptr);

private:
    /// Asks each of their delegates about the selected tasks.
    void askAboutSelected();
};
