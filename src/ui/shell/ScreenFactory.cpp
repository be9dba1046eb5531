#include "shell/ScreenFactory.h"

#include "shell/RestingScreen.h"
#include "shell/SidebarModel.h"
#include "shell/categories/CategoriesViewController.h"
#include "shell/tasks/TaskScreens.h"

TabsViewController *ScreenFactory::make(const SidebarModel &sidebar, const QModelIndex &row)
{
    const SidebarItem item = sidebar.itemAt(row);
    switch (item) {
    case SidebarItem::Inbox:
        return new InboxViewController;
    case SidebarItem::Today:
        return new TodayViewController;
    case SidebarItem::Scheduled:
        return new ScheduledViewController;
    case SidebarItem::Someday:
        return new SomedayViewController;
    case SidebarItem::Categories:
        return new CategoriesViewController;
    case SidebarItem::Delegated:
        return new UserDelegateViewController;
    case SidebarItem::NotDone:
        return new NotDoneViewController;
    case SidebarItem::Done:
        return new DoneViewController;
    default:
        return new RestingScreen(row.data().toString(), item);
    }
}
