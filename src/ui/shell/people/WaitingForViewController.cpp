#include "shell/people/WaitingForViewController.h"

#include "foundation/Alert.h"
#include "foundation/Localization.h"
#include "records/people/WaitingFor.h"
#include "shell/people/WaitingForModel.h"
#include "shell/people/WaitingStrip.h"
#include "shell/tasks/TaskRowCommands.h"
#include "shell/tasks/TaskTableCell.h"

using namespace Qt::Literals::StringLiterals;

static RecordListDescription waitingFor()
{
    return {.title = localized(u"Waiting For"_s),
            .icon = u"delegated"_s,
            .entity = EntityTask::entityName,
            .tableName = u"tableViewWaiting"_s,
            .toldOf = {EntityContacts::entityName},
            .emptySentence = localized(u"What you have given to others and wait for."_s),
            .offersFirst = false,
            .deletingSentence = localized(u"Deleting the selected tasks"_s),
            .rowHeights = TaskTableCell::heights,
            .exports = {ExportFormat::ICalendar, ExportFormat::Csv}};
}

WaitingForViewController::WaitingForViewController(QWidget *parent)
    : TaskRowsScreen(waitingFor(), new WaitingForModel, parent)
{
    ToolBarButton *const ask = addButton(ToolBarButton::AskAgain);
    ask->setToolTip(localized(u"Opens a mail with the open tasks, and notes that you asked"_s));
    ask->disconnect(this);
    connect(ask, &ToolBarButton::buttonAdd, this, &WaitingForViewController::askAboutSelected);
    const auto showState = [this, ask] { ask->setEnabled(hasSelection()); };
    connect(this, &WaitingForViewController::commandsChanged, ask, showState);
    showState();
    rowCommands().addOwn(localized(u"Ask Again"_s), u"actionAskAgain"_s, [this] { askAboutSelected(); });
}

void WaitingForViewController::askAboutSelected()
{
    std::map<QString, std::vector<TaskPtr>> byContact;
    for (const TaskPtr &task : selectedTasks()) {
        if (const ContactPtr contact = task->delegateToUser())
            byContact[contact->fullName() + contact->identifier()].push_back(task);
    }
    // Nobody wants their screen full of mails by a slip.
    constexpr std::size_t mostAtOnce = 3;
    if (byContact.size() > mostAtOnce &&
        Alert::run({.message = localized(u"Ask %1 people again?"_s).arg(byContact.size()),
                    .informativeText = localized(u"A mail opens for each of them."_s),
                    .buttons = {localized(u"Ask Again"_s), localized(u"Cancel"_s)}}) != Alert::firstButton)
        return;
    std::vector<TaskPtr> asked;
    for (const auto &[name, tasks] : byContact) {
        if (openAskingMail(tasks.front()->delegateToUser(), tasks))
            asked.insert(asked.end(), tasks.begin(), tasks.end());
    }
    if (!asked.empty())
        WaitingFor::noteAsking(asked);
}
