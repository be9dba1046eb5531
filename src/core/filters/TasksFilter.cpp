#include "filters/TasksFilter.h"

#include "filters/FilterEntries.h"
#include "foundation/Localization.h"

namespace {

FilterRow row(int tag, const QString &key)
{
    return {tag, key, localized(key)};
}

std::vector<FilterRow> popoverRows()
{
    return {{1, QStringLiteral("Title"), {}},   row(2, QStringLiteral("Type")),
            row(3, QStringLiteral("Category")), row(4, QStringLiteral("Status")),
            row(5, QStringLiteral("Priority")), row(6, QStringLiteral("Period")),
            row(7, QStringLiteral("Location")), row(8, QStringLiteral("Delegate")),
            row(9, QStringLiteral("Company")),  row(10, QStringLiteral("Project"))};
}

} // namespace

TasksFilter::TasksFilter(int tasksType)
    : ListFilter(SavedFilter::ofTasks(tasksType), popoverRows())
    , listType(tasksType)
{}

bool TasksFilter::isFilterable(int type)
{
    return filters::seedOfTaskFilters().contains(QString::number(type));
}

void TasksFilter::setTasksType(int type)
{
    listType = type;
    setPlace(SavedFilter::ofTasks(type));
}
