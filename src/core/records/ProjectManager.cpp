#include "records/ProjectManager.h"

#include "calendarsync/RecordsTransaction.h"
#include "foundation/Localization.h"
#include "foundation/Log.h"
#include "records/Functional.h"
#include "records/MVProject.h"
#include "records/dates/MVDate.h"
#include "store/queries/DBWorker.h"

using namespace Qt::Literals::StringLiterals;

namespace {

/// What is said when the dates of a project leave out some of its tasks, by the number of the failed test.
struct EnvelopeMessage
{
    const char16_t *title;
    const char16_t *message;
};

constexpr EnvelopeMessage envelopeMessages[] = {
    {u"Invalid Start Date", u"Start Date can't be more than minimum Start Date of Tasks!"},
    {u"Invalid Due Date", u"Due Date can't be less than minimum Start Date of Tasks!"},
    {u"Invalid Start Date", u"Start Date can't be more than maximum Due Date of Tasks!"},
    {u"Invalid Due Date", u"Due Date can't be less than maximum Due Date of Tasks!"},
};

bool isDueBeforeStart(const MVProject &project)
{
    if (!project.startDate || !project.dueDate || *project.dueDate >= *project.startDate)
        return false;
    Functional::messageAlertWithTitle(QStringLiteral("Invalid Due Date"),
                                      QStringLiteral("Due Date can't be less than Start Date!"));
    return true;
}

bool leavesOutTasks(const MVProject &project)
{
    const auto [earliest, latest] = ProjectManager::findMaxAndMinDates(project.task);
    const OptionalDate end =
        project.dueDate ? OptionalDate(MVDate::getEndOfDay(*project.dueDate)) : std::nullopt;
    const int result = Functional::dateValidationsMainStartDate(project.startDate, end, earliest, latest);
    if (result == 0)
        return false;
    const EnvelopeMessage &said = envelopeMessages[result - 1];
    Functional::messageAlertWithTitle(QString::fromUtf16(said.title), QString::fromUtf16(said.message));
    return true;
}

} // namespace

QString ProjectManager::titleForWant()
{
    return QStringLiteral("NewProject");
}

QString ProjectManager::shownTitle(const EntityProject &project)
{
    return project.title() == titleForWant() ? localized(titleForWant()) : project.title();
}

bool ProjectManager::saveProjectTemp(MVProject &project)
{
    const ProjectPtr row = project.project();
    if (row && DBWorker::getObjectFromId(DBWorker::getIdFromObject(row)) != row) {
        Log::line(QStringLiteral("Can't Save Project! It was deleted."));
        return false;
    }
    if (isDueBeforeStart(project) || (!project.isNewProject() && leavesOutTasks(project)))
        return false;
    if (project.title.isEmpty())
        project.title = titleForWant();
    RecordsTransaction transaction(project.isNewProject() ? u"New Project"_s : u"Change Project"_s);
    project.save();
    if (const OptionalError error = transaction.commit()) {
        // The row keeps what was typed, for the next save.
        project.setProjectValues();
        DBWorker::tellOfFailure(error);
        Log::line(QStringLiteral("Can't Save Project! %1 %2").arg(error->message, error->domain));
        return false;
    }
    if (project.isNewProject())
        project.setProjectValues();
    return true;
}

namespace {

/// Lowers or raises a bound to a date.
void lower(OptionalDate &bound, Date date)
{
    bound = bound ? std::min(*bound, date) : date;
}

void raise(OptionalDate &bound, Date date)
{
    bound = bound ? std::max(*bound, date) : date;
}

/// A date that stands alone moves the other bound only if that is there already.
void widen(OptionalDate &earliest, OptionalDate &latest, const EntityTask &task)
{
    const OptionalDate start = task.startDate();
    const OptionalDate due = task.dueDate();
    if (start)
        lower(earliest, *start);
    else if (due && earliest)
        lower(earliest, *due);
    if (due)
        raise(latest, *due);
    else if (start && latest)
        raise(latest, *start);
}

} // namespace

std::array<OptionalDate, 2> ProjectManager::findMaxAndMinDates(const std::vector<TaskPtr> &tasks)
{
    const auto isOpen = [](const EntityTask &task) { return task.status() != TaskStatus::Done; };
    OptionalDate earliest;
    OptionalDate latest;
    OptionalDate earliestDue;
    if (!tasks.empty() && isOpen(*tasks.front())) {
        earliest = tasks.front()->startDate();
        latest = tasks.front()->dueDate();
    }
    for (const TaskPtr &task : tasks) {
        if (!isOpen(*task))
            continue;
        widen(earliest, latest, *task);
        if (task->dueDate())
            lower(earliestDue, *task->dueDate());
    }
    // Tasks of which none has a start begin when the first of them is due.
    return {earliest ? earliest : earliestDue, latest};
}
