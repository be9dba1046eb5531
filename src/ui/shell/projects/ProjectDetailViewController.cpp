#include "shell/projects/ProjectDetailViewController.h"

static NewTaskRequest newTaskOf(const ObjectPtr &project)
{
    return {.createWithProject = std::static_pointer_cast<EntityProject>(project)};
}

ProjectDetailViewController::ProjectDetailViewController(std::unique_ptr<FormModel> form, FormView *formView,
                                                         QWidget *parent)
    : LinkedTasksPane(name, std::move(form), formView,
                      {.tasks =
                           [](const ManagedObject &project) {
                               return static_cast<const EntityProject &>(project).task();
                           },
                       .newTask = newTaskOf,
                       .showsProject = false},
                      parent)
{}
