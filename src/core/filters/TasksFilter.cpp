#include "filters/TasksFilter.h"

#include "filters/FilterEntries.h"
#include "foundation/Localization.h"

namespace {

using Editor = FilterRow::Editor;

FilterRow row(int tag, const QString &key, Editor editor = Editor::PopUp)
{
    return {tag, key, localized(key), editor};
}

std::vector<FilterRow> popoverRows()
{
    return {{1, QStringLiteral("Title"), {}, Editor::Text, localized(QStringLiteral("Type Task title"))},
            row(2, QStringLiteral("Type")),
            row(3, QStringLiteral("Category")),
            row(4, QStringLiteral("Status")),
            row(5, QStringLiteral("Priority")),
            row(6, QStringLiteral("Period"), Editor::Period),
            row(7, QStringLiteral("Location")),
            row(8, QStringLiteral("Delegate"), Editor::Contacts),
            row(9, QStringLiteral("Company"), Editor::Companies),
            row(10, QStringLiteral("Project"))};
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
