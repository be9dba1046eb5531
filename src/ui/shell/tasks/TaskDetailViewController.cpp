#include "shell/tasks/TaskDetailViewController.h"

#include "foundation/Localization.h"
#include "records/DetailStack.h"
#include "records/RepeatBan.h"
#include "records/ShellAlerts.h"
#include "shell/tasks/TaskFormView.h"
#include "store/state/NotificationNames.h"
#include "widgets/Animations.h"
#include "workspace/Workspace.h"

#include <QToolButton>

using namespace Qt::Literals::StringLiterals;

/// Below this width the mail button is its icon alone.
constexpr int roomForWords = 420;

TaskDetailViewController::TaskDetailViewController(const TaskPtr &task, QWidget *parent)
    : TaskDetailViewController(new TaskFormState(task), parent)
{}

TaskDetailViewController::TaskDetailViewController(TaskFormState *newForm, QWidget *parent)
    : RecordPane(u"TaskDetailViewController"_s, std::unique_ptr<FormModel>(newForm),
                 new TaskFormView(*newForm), parent)
    , form(*newForm)
    , buttonSendEmail(makeHeaderButton(u"buttonSendEmail"_s, u"mail"_s, localized(u"Send Email"_s)))
{
    addToHeader(buttonSendEmail);
    connect(buttonSendEmail, &QToolButton::clicked, this, &TaskDetailViewController::clickButtonSendEmail);
    observe(NotificationCenter::defaultCenter().addObserver(notifications::taskChange,
                                                            [this](const TaskPtr &task) {
                                                                if (!task || shows(task))
                                                                    refreshSoon();
                                                            }));
    invitationTimer.setSingleShot(true);
    connect(&invitationTimer, &QTimer::timeout, this, [this] { form.findInvitation(); });
    findInvitationSoon();
}

bool TaskDetailViewController::showTask(const TaskPtr &task, QWidget &controller, DetailStack &stack)
{
    if (DetailViewController *open = stack.paneOf(task))
        return stack.showAgain(open);
    return stack.showDetail(new TaskDetailViewController(task), &controller);
}

void TaskDetailViewController::resume(const Drafts::Found &found)
{
    adoptDraft(found.file);
    form.resume(found.draft);
    if (form.isEdited())
        beginEdit();
    else
        dropDraft();
}

/// Who is invited can change while the pane is open. Once it stands still, nobody sees that the calendar
/// takes its time.
void TaskDetailViewController::findInvitationSoon()
{
    invitationTimer.start(isVisible() ? 0 : Animations::duration(Animations::detailSlideIn));
}

bool TaskDetailViewController::mayEdit()
{
    const bool isBarred = RepeatBan::concerns(form.currentTask());
    if (isBarred)
        RepeatBan::tell();
    return !isBarred;
}

void TaskDetailViewController::editRefused()
{
    ShellAlerts::alertEditingEvent(localized(form.currentTask().calendarTitle));
}

void TaskDetailViewController::tick(bool done)
{
    if (mayEdit())
        form.changeStatusNow(done);
}

void TaskDetailViewController::clickButtonSendEmail()
{
    Workspace::openUrl(form.currentTask().htmlBody());
}

void TaskDetailViewController::resizeEvent(QResizeEvent *event)
{
    RecordPane::resizeEvent(event);
    buttonSendEmail->setToolButtonStyle(width() < roomForWords ? Qt::ToolButtonIconOnly
                                                               : Qt::ToolButtonTextBesideIcon);
}
