#include "shell/tasks/TaskPopupMenu.h"

#include "foundation/Localization.h"
#include "records/Categories.h"
#include "records/Functional.h"
#include "store/queries/DBWorker.h"
#include "widgets/CategoryIcon.h"
#include "widgets/Icons.h"
#include "widgets/Theme.h"

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

/// The keys stand beside the words; those of the window are who hears them.
static QString withKeys(const QString &words, const char16_t *keys)
{
    return words + u'\t' +
           QKeySequence(QString::fromUtf16(keys), QKeySequence::PortableText)
               .toString(QKeySequence::NativeText);
}

TaskPopupMenu::TaskPopupMenu(QWidget *parent)
    : QMenu(parent)
    , categoryMenu(addMenu(localized(u"Category"_s)))
    , statusMenu(addMenu(localized(u"Status"_s)))
    , priorityMenu(addMenu(localized(u"Priority"_s)))
    , dayMenu(addMenu(localized(u"Plan"_s)))
{
    setObjectName(u"taskPopupMenu"_s);
    addDays();
    addStatuses();
    addPriorities();
    addSeparator();
    duplicateAction = addAction(withKeys(localized(u"Duplicate"_s), taskkeys::duplicate), this,
                                &TaskPopupMenu::duplicateChosen);
    whyAction = addAction(Icons::icon(u"info"_s, Theme::text), localized(u"Why Is It Here?"_s), this,
                          &TaskPopupMenu::whyChosen);
    deleteAction = addAction(Icons::icon(u"trash"_s, Theme::text), localized(u"Delete"_s), this,
                             &TaskPopupMenu::deleteChosen);
}

static QAction *addChoice(QMenu &menu, const QString &text, const QVariant &value)
{
    // The sign would be taken for the mark of a key.
    QAction *action = menu.addAction(QString(text).replace(u'&', u"&&"_s));
    action->setCheckable(true);
    action->setData(value);
    return action;
}

void TaskPopupMenu::addDays()
{
    for (const QuickDay day : quickdays::all) {
        dayMenu->addAction(withKeys(quickdays::title(day), taskkeys::plan.at(static_cast<size_t>(day))), this,
                           [this, day] { Q_EMIT dayChosen(day); });
    }
    dayMenu->addSeparator();
    dayMenu->addAction(withKeys(localized(u"Other Day…"_s), taskkeys::planOnOther), this,
                       &TaskPopupMenu::otherDayWanted);
}

void TaskPopupMenu::addStatuses()
{
    for (const TaskStatus status : allTaskStatuses) {
        QAction *action =
            addChoice(*statusMenu, Functional::statusStringFromType(status), static_cast<int>(status));
        connect(action, &QAction::triggered, this, [this, status] { Q_EMIT statusChosen(status); });
    }
}

void TaskPopupMenu::addPriorities()
{
    for (const Priority priority : {Priority::None, Priority::High, Priority::Medium, Priority::Low}) {
        QAction *action = addChoice(*priorityMenu, Functional::priorityStringFromType(priority),
                                    static_cast<int>(priority));
        action->setIcon(CategoryIcon::circle(Theme::priority(priority)));
        connect(action, &QAction::triggered, this, [this, priority] { Q_EMIT priorityChosen(priority); });
    }
}

void TaskPopupMenu::rebuildCategories()
{
    categoryMenu->clear();
    for (const CategoryPtr &category : DBWorker::allCategories()) {
        QAction *action = addChoice(*categoryMenu, Categories::shownTitle(category), category->identifier());
        action->setIcon(CategoryIcon::of(*category));
        connect(action, &QAction::triggered, this, [this, category] { Q_EMIT categoryChosen(category); });
    }
}

/// The value that all tasks share; an invalid one if they differ.
template <typename ValueOf>
static QVariant shared(const std::vector<TaskPtr> &tasks, ValueOf valueOf)
{
    QVariant common;
    for (const TaskPtr &task : tasks) {
        const QVariant value = valueOf(*task);
        if (common.isValid() && common != value)
            return {};
        common = value;
    }
    return common;
}

static void tick(QMenu &menu, const QVariant &value)
{
    for (QAction *action : menu.actions())
        action->setChecked(value.isValid() && action->data() == value);
}

void TaskPopupMenu::setTasks(const std::vector<TaskPtr> &tasks)
{
    rebuildCategories();
    whyAction->setEnabled(tasks.size() == 1);
    const bool isAnyWritable = std::ranges::any_of(
        tasks, [](const TaskPtr &task) { return task->allowsContentModifications().value_or(true); });
    for (QAction *change : {dayMenu->menuAction(), categoryMenu->menuAction(), statusMenu->menuAction(),
                            priorityMenu->menuAction(), deleteAction})
        change->setEnabled(isAnyWritable);
    tick(*categoryMenu, shared(tasks, [](const EntityTask &task) {
        const CategoryPtr category = task.category();
        return QVariant(category ? category->identifier() : QString());
    }));
    tick(*statusMenu, shared(tasks, [](const EntityTask &task) {
        return QVariant(static_cast<int>(task.status().value_or(TaskStatus::Open)));
    }));
    tick(*priorityMenu, shared(tasks, [](const EntityTask &task) {
        return QVariant(static_cast<int>(task.priority().value_or(Priority::None)));
    }));
}
