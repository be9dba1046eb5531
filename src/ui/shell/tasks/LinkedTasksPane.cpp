#include "shell/tasks/LinkedTasksPane.h"

#include "records/MVProject.h"
#include "shell/tasks/AddCurrentTasksWindow.h"
#include "shell/tasks/LinkedTasksView.h"

LinkedTasksPane::LinkedTasksPane(const QString &name, std::unique_ptr<FormModel> form, FormView *formView,
                                 const Linked &linked, QWidget *parent)
    : RecordPane(name, std::move(form), formView, parent)
    , tasks(new LinkedTasksView([this, tasksOf = linked.tasks] {
        const ObjectPtr shown = record();
        const bool isThere = shown && !shown->isDeleted() && shown->context();
        return isThere ? MVProject::sorted(tasksOf(*shown)) : std::vector<TaskPtr>();
    }))
{
    tasks->setShowProject(linked.showsProject);
    tasks->setTellsWaiting(linked.tellsWaiting);
    if (linked.above)
        addToBody(linked.above(*this));
    addToBody(tasks);
    connect(tasks, &LinkedTasksView::opened, this, &DetailViewController::recordWanted);
    connect(tasks, &LinkedTasksView::newTaskWanted, this,
            [this, request = linked.newTask] { Q_EMIT newTaskWanted(request(record())); });
    connect(tasks->table(), &TableViewExtended::rowSelectionChanged, this,
            &DetailViewController::commandsChanged);
    connect(tasks, &LinkedTasksView::currentTasksWanted, this, &LinkedTasksPane::addCurrentTasks);
}

void LinkedTasksPane::addCurrentTasks()
{
    if (const ObjectPtr shown = record(); shown && shown->context())
        (new AddCurrentTasksWindow(shown, window()))->showWindow();
}
