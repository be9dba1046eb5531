#include "shell/TaskDrops.h"

#include "foundation/Clock.h"
#include "foundation/Localization.h"
#include "records/Categories.h"
#include "records/DatePickerState.h"
#include "records/ProjectManager.h"
#include "records/TaskBatch.h"
#include "records/TaskFormChoices.h"
#include "shell/tasks/TaskRowCommands.h"
#include "store/queries/DBWorker.h"
#include "widgets/CategoryIcon.h"
#include "widgets/DatePickerPopover.h"
#include "widgets/LongWork.h"

#include <QMenu>

using namespace Qt::Literals::StringLiterals;

using Tasks = std::vector<TaskPtr>;

namespace {

template <typename Change, typename... Value>
void change(const Tasks &tasks, Change how, const Value &...value)
{
    LongWork work(tasks.size(), localized(u"Changing the selected tasks"_s));
    how(tasks, value..., [&work] { return work.step(); });
}

/// A menu of records, one of which the tasks get.
class RecordMenu : public QMenu
{
public:
    explicit RecordMenu(QWidget &parent)
        : QMenu(&parent)
    {
        setObjectName(u"taskDropMenu"_s);
        setAttribute(Qt::WA_DeleteOnClose);
    }

    QAction *addRecord(const QString &title, std::function<void()> chosen)
    {
        return addAction(QString(title).replace(u'&', u"&&"_s), this, std::move(chosen));
    }
};

void askForCategory(const Tasks &tasks, QWidget &sidebar, const QPoint &place)
{
    auto *menu = new RecordMenu(sidebar);
    for (const CategoryPtr &category : DBWorker::allCategories())
        menu->addRecord(Categories::shownTitle(category),
                        [tasks, category] { change(tasks, &TaskBatch::setCategory, category); })
            ->setIcon(CategoryIcon::of(*category));
    menu->popup(place);
}

void askForProject(const Tasks &tasks, QWidget &sidebar, const QPoint &place)
{
    auto *menu = new RecordMenu(sidebar);
    for (const ProjectPtr &project : TaskFormChoices::projects(nullptr))
        menu->addRecord(ProjectManager::shownTitle(*project),
                        [tasks, project] { change(tasks, &TaskBatch::setProject, project); });
    if (menu->isEmpty())
        menu->addAction(localized(u"No Projects"_s))->setEnabled(false);
    menu->popup(place);
}

void askForDay(const Tasks &tasks, QWidget &sidebar, const QRect &row)
{
    DatePickerState state(DatePickerState::Type::StartDate);
    state.titlePopover = localized(u"Plan for a Day"_s);
    state.showClock = false;
    state.dateValue = quickdays::dayOf(QuickDay::Tomorrow, Clock::now());
    auto *popover = new DatePickerPopover(state, &sidebar);
    popover->setAttribute(Qt::WA_DeleteOnClose);
    QObject::connect(popover, &DatePickerPopover::doneClicked, popover,
                     [tasks](Date day) { change(tasks, &TaskBatch::planOn, day); });
    popover->showBeside(sidebar, row);
}

} // namespace

bool TaskDrops::areTakenBy(SidebarItem item)
{
    switch (item) {
    case SidebarItem::Today:
    case SidebarItem::Scheduled:
    case SidebarItem::Someday:
    case SidebarItem::Categories:
    case SidebarItem::Projects:
    case SidebarItem::Done:
        return true;
    default:
        return false;
    }
}

void TaskDrops::drop(const Tasks &tasks, SidebarItem item, QWidget &sidebar, const QRect &row)
{
    if (!TaskRowCommands::canChange(tasks))
        return;
    const QPoint beside = sidebar.mapToGlobal(row.bottomLeft());
    switch (item) {
    case SidebarItem::Today:
        return change(tasks, &TaskBatch::plan, QuickDay::Today);
    case SidebarItem::Someday:
        return change(tasks, &TaskBatch::plan, QuickDay::Someday);
    case SidebarItem::Done:
        return change(tasks, &TaskBatch::setStatus, TaskStatus::Done);
    case SidebarItem::Scheduled:
        return askForDay(tasks, sidebar, row);
    case SidebarItem::Categories:
        return askForCategory(tasks, sidebar, beside);
    case SidebarItem::Projects:
        return askForProject(tasks, sidebar, beside);
    default:
        return;
    }
}
