#include "shell/projects/ProjectKind.h"

#include "filters/FilterProject.h"
#include "foundation/DateFormatter.h"
#include "foundation/Localization.h"
#include "records/Functional.h"
#include "records/ProjectForm.h"
#include "records/ProjectManager.h"
#include "records/RecordKind.h"
#include "records/TaskManager.h"
#include "shell/projects/ProjectDetailViewController.h"
#include "store/queries/DBWorker.h"
#include "widgets/CategoryIcon.h"

using namespace Qt::Literals::StringLiterals;

static std::vector<ListedRecord> rows(const FilterEntry *filter)
{
    std::vector<ListedRecord> listed;
    for (const ProjectPtr &project : DBWorker::allProjectsSortDueDate(filter))
        listed.push_back({project->rowId()});
    return listed;
}

static QString spanInWords(const EntityProject &project)
{
    using Style = DateFormatter::Style;
    const auto day = [](Date date) {
        return DateFormatter::string(date, Style::Medium, Style::None, DateFormatter::Language::OfWords);
    };
    const OptionalDate start = project.startDate();
    const OptionalDate due = project.dueDate();
    if (start && due)
        return localized(u"%1 to %2"_s).arg(day(*start), day(*due));
    if (start)
        return localized(u"From %1"_s).arg(day(*start));
    return due ? localized(u"Until %1"_s).arg(day(*due)) : localized(u"No date"_s);
}

/// The span, after the status of a project that is no longer, or not yet, just open.
static RecordLook look(const EntityProject &project)
{
    RecordLook shown{.title = ProjectManager::shownTitle(project), .detail = spanInWords(project)};
    const TaskStatus status = project.status().value_or(TaskStatus::Open);
    if (status != TaskStatus::Open)
        shown.detail = Functional::statusStringFromType(status) + u", "_s + shown.detail;
    if (const CategoryPtr category = project.category())
        shown.mark = CategoryIcon::colorOf(*category);
    return shown;
}

static QString countInWords(int projects)
{
    if (projects == 0)
        return localized(u"No Projects"_s);
    return localizedCount(u"%1 projects"_s, projects);
}

RecordKind ProjectKind::description()
{
    return {
        .list = {.tableName = u"tableViewProjects"_s,
                 .toldOf = {EntityCategory::entityName},
                 .emptySentence = localized(u"Projects gather the tasks that belong together."_s),
                 .filteredSentence = localized(u"No project passes the filter."_s),
                 .deletingSentence = localized(u"Deleting the selected projects"_s),
                 .opens = RecordListDescription::Opens::OnSelection,
                 .besideSentence = localized(u"Select a project to see it here."_s),
                 .exports = {ExportFormat::ICalendar, ExportFormat::Csv}},
        .rows = rows,
        .look = [](const ManagedObject &record) { return look(static_cast<const EntityProject &>(record)); },
        .countInWords = countInWords,
        .form =
            [](const ObjectPtr &record) {
                return record ? std::make_unique<ProjectForm>(std::static_pointer_cast<EntityProject>(record))
                              : std::make_unique<ProjectForm>();
            },
        .paneName = ProjectDetailViewController::name,
        .windowName = u"WindowNewProjects"_s,
        .windowTitle = localized(u"New Project"_s),
        .pane = [](std::unique_ptr<FormModel> form, FormView *view) -> RecordPane * {
            return new ProjectDetailViewController(std::move(form), view);
        },
        .filter = [] { return std::make_shared<FilterProject>(); },
        .remove = TaskManager::deleteTasks};
}
