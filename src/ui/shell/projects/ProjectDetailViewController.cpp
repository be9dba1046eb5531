#include "shell/projects/ProjectDetailViewController.h"

#include "records/MVProject.h"
#include "shell/tasks/AddCurrentTasksWindow.h"
#include "shell/tasks/LinkedTasksView.h"

static std::vector<TaskPtr> tasksOf(const ProjectPtr &project)
{
    if (!project || project->isDeleted() || !project->context())
        return {};
    return MVProject(project).sortedTasks();
}

ProjectDetailViewController::ProjectDetailViewController(std::unique_ptr<FormModel> form, FormView *formView,
                                                         QWidget *parent)
    : RecordPane(name, std::move(form), formView, parent)
    , tasks(
          new LinkedTasksView([this] { return tasksOf(std::static_pointer_cast<EntityProject>(record())); }))
{
    tasks->setShowProject(false);
    addToBody(tasks);
    connect(tasks, &LinkedTasksView::opened, this, &DetailViewController::recordWanted);
    connect(tasks, &LinkedTasksView::newTaskWanted, this, [this] {
        Q_EMIT newTaskWanted({.createWithProject = std::static_pointer_cast<EntityProject>(record())});
    });
    connect(tasks, &LinkedTasksView::currentTasksWanted, this, &ProjectDetailViewController::addCurrentTasks);
}

void ProjectDetailViewController::addCurrentTasks()
{
    if (const ObjectPtr project = record(); project && project->context())
        (new AddCurrentTasksWindow(project, window()))->showWindow();
}
