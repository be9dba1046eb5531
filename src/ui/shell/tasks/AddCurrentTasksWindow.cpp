#include "shell/tasks/AddCurrentTasksWindow.h"

#include "foundation/Localization.h"

using namespace Qt::Literals::StringLiterals;

AddCurrentTasksWindow::AddCurrentTasksWindow(ObjectPtr object, QWidget *parent)
    : MarkedRowsWindow(localized(u"Add tasks"_s), parent)
    , tasks(std::move(object))
{
    setObjectName(u"AddCurrentTasksWindow"_s);
    setRows(tasks.list(), {localized(u"Tasks"_s), localized(u"There is no task that could be added."_s)},
            u"tableTasks"_s);
}
