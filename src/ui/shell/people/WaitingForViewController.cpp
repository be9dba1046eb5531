#include "shell/people/WaitingForViewController.h"

#include "foundation/Localization.h"
#include "records/TaskManager.h"
#include "records/people/WaitingFor.h"
#include "shell/people/WaitingStrip.h"
#include "shell/tasks/TaskDetailViewController.h"

#include <QMenu>

using namespace Qt::Literals::StringLiterals;

static std::vector<ListedRecord> rowsOfWaiting()
{
    std::vector<ListedRecord> listed;
    for (const RowId row : WaitingFor::rows())
        listed.push_back({row});
    return listed;
}

static RecordLook lookOfWaiting(const ManagedObject &record)
{
    const auto &task = static_cast<const EntityTask &>(record);
    RecordLook shown{.title = task.title(), .detail = WaitingFor::inWords(task)};
    if (const ContactPtr contact = task.delegateToUser())
        shown.portrait = Portrait::of(*contact);
    return shown;
}

static QString waitingInWords(int tasks)
{
    if (tasks == 0)
        return localized(u"No Tasks"_s);
    return localizedCount(u"%1 tasks"_s, tasks);
}

static RecordKind waitingFor()
{
    RecordKind kind;
    kind.list = {.title = localized(u"Waiting For"_s),
                 .icon = u"delegated"_s,
                 .entity = EntityTask::entityName,
                 .tableName = u"tableViewWaiting"_s,
                 .toldOf = {EntityContacts::entityName},
                 .emptySentence = localized(u"What you have given to others and wait for."_s),
                 .offersFirst = false,
                 .deletingSentence = localized(u"Deleting the selected tasks"_s),
                 .rowHeights = {.item = 56},
                 .exports = {ExportFormat::ICalendar, ExportFormat::Csv}};
    kind.rows = [](const FilterEntry *) { return rowsOfWaiting(); };
    kind.look = lookOfWaiting;
    kind.countInWords = waitingInWords;
    kind.remove = TaskManager::deleteTasks;
    return kind;
}

WaitingForViewController::WaitingForViewController(QWidget *parent)
    : PlainRecordScreen(waitingFor(), parent)
{}

TaskPtr WaitingForViewController::selectedTask() const
{
    return std::dynamic_pointer_cast<EntityTask>(selectedRecord());
}

DetailViewController *WaitingForViewController::makePane(const ObjectPtr &record)
{
    return new TaskDetailViewController(std::static_pointer_cast<EntityTask>(record));
}

void WaitingForViewController::showMenu(const QPoint &globalPosition)
{
    auto *menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->addAction(localized(u"Ask Again"_s), this, &WaitingForViewController::askAboutSelected)
        ->setObjectName(u"actionAskAgain"_s);
    menu->popup(globalPosition);
}

void WaitingForViewController::askAboutSelected()
{
    std::map<QString, std::vector<TaskPtr>> byContact;
    for (const ObjectPtr &record : recordsAt(table()->selectedRows())) {
        const auto task = std::static_pointer_cast<EntityTask>(record);
        if (const ContactPtr contact = task->delegateToUser())
            byContact[contact->fullName() + contact->identifier()].push_back(task);
    }
    std::vector<TaskPtr> asked;
    for (const auto &[name, tasks] : byContact) {
        if (openAskingMail(tasks.front()->delegateToUser(), tasks))
            asked.insert(asked.end(), tasks.begin(), tasks.end());
    }
    if (!asked.empty())
        WaitingFor::noteAsking(asked);
}
