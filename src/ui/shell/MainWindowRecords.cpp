#include "calendarsync/CalendarEvent.h"
#include "shell/MainWindow.h"
#include "shell/MainWindowController.h"
#include "shell/calendars/CalendarsAppleWindowController.h"
#include "shell/calendars/MVSetiingsCalendarController.h"
#include "shell/details/DetailStack.h"
#include "shell/tasks/WindowNewTask.h"
#include "store/AppDelegate.h"

// The windows beside the main one.

void MainWindowController::buttonAdd(ToolBarButton::ActionType type)
{
    if (type == ToolBarButton::NewTask || type == ToolBarButton::NewTaskOnStart)
        showNewTask(screen ? screen->newTaskRequest() : NewTaskRequest());
    else if (type == ToolBarButton::Calendars)
        showCalendars();
}

void MainWindowController::showNewTask(const NewTaskRequest &request)
{
    if (!windowNewTask) {
        windowNewTask = new WindowNewTask(request, mainWindow.get());
        windowNewTask->setAttribute(Qt::WA_DeleteOnClose);
    }
    windowNewTask->showWindow();
}

void MainWindowController::newTask(const MarkedSpan &dates, TimePeriod timePeriod)
{
    showNewTask(NewTaskRequest::ofCalendar(dates, timePeriod));
}

void MainWindowController::showCalendars()
{
    if (!windowCalendars) {
        windowCalendars = new CalendarsAppleWindowController(mainWindow.get());
        connect(windowCalendars, &CalendarsAppleWindowController::preferencesWanted, this,
                &MainWindowController::showSettings);
    }
    windowCalendars->showWindow();
}

void MainWindowController::showSettings()
{
    if (!windowSettings) {
        windowSettings = new MVSetiingsCalendarController(mainWindow.get());
        connect(windowSettings, &MVSetiingsCalendarController::calendarsAllowed, this,
                &MainWindowController::calendarsAllowed);
    }
    windowSettings->showWindow();
}

/// Both sides come in line at once; where no calendar was ever chosen there is one to choose.
void MainWindowController::calendarsAllowed()
{
    AppDelegate::shared()->applicationDidBecomeActive();
    if (CalendarEvent::getAllAccessCalendars().empty())
        showCalendars();
}

bool MainWindowController::closeNewWindows()
{
    return (!windowNewTask || windowNewTask->close()) && details->mayLeave();
}
