#include "shell/tasks/WindowNewTask.h"

#include "foundation/Localization.h"
#include "shell/tasks/TaskFormView.h"

using namespace Qt::Literals::StringLiterals;

WindowNewTask::WindowNewTask(TaskFormState *newForm, QWidget *parent)
    : RecordWindow(u"WindowNewTask"_s, localized(u"New Task"_s), std::unique_ptr<FormModel>(newForm),
                   new TaskFormView(*newForm), parent)
    , form(*newForm)
{}

WindowNewTask::WindowNewTask(const NewTaskRequest &request, QWidget *parent)
    : WindowNewTask(new TaskFormState(request), parent)
{}

WindowNewTask::WindowNewTask(const Drafts::Found &found, QWidget *parent)
    : WindowNewTask(new TaskFormState(found.draft), parent)
{
    adoptDraft(found.file);
}
