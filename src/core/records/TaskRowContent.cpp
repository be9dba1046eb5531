#include "records/TaskRowContent.h"

#include "foundation/Localization.h"
#include "records/Categories.h"
#include "records/ProjectManager.h"
#include "records/dates/MVDate.h"
#include "store/entities/Entities.h"

namespace {

bool isOfType(const EntityTask &task, TaskType type)
{
    return task.type() == type;
}

bool isLate(const EntityTask &task, ListType list)
{
    const OptionalDate due = task.dueDate();
    if (list == ListType::Done || task.status() == TaskStatus::Done || !due)
        return false;
    const Date now = MVDate::date();
    return *due < (isMoment(task.type()) ? now : MVDate::getStartOfDay(now));
}

QString label(OptionalDate date, bool considerTime, bool inOrderToStartDate, bool isEmailCall)
{
    return MVDate::getLabelText(date, considerTime, inOrderToStartDate, isEmailCall);
}

QString labelFor(const EntityTask &task, ListType list)
{
    if (task.dueSomeDay().value_or(false))
        return localized(QStringLiteral("Due Someday"));
    if (isOfType(task, TaskType::EmailCall))
        return label(task.dueDate(), true, false, true);
    const bool hasTime = isOfType(task, TaskType::Appointment);
    if (list == ListType::Scheduled)
        return label(task.startDate(), hasTime, true, false);
    return label(task.dueDate(), hasTime, false, false);
}

} // namespace

std::vector<TaskRowDetail> TaskRowContent::detailsOf(const EntityTask &task, ListType list)
{
    using Kind = TaskRowDetail::Kind;
    std::vector<TaskRowDetail> details;
    const auto tell = [&details](Kind kind, const QString &text, const CategoryPtr &category = nullptr) {
        if (const QString words = text.simplified(); !words.isEmpty())
            details.push_back({kind, words, category});
    };
    if (const CategoryPtr category = task.category())
        tell(Kind::Category, Categories::shownTitle(category), category);
    if (const ProjectPtr project = task.project(); project && list != ListType::ProjectDetail)
        tell(Kind::Project, ProjectManager::shownTitle(*project));
    if (const ContactPtr person = task.delegateToUser())
        tell(Kind::Person, person->fullName());
    if (const CompanyPtr company = task.company())
        tell(Kind::Company, company->title());
    if (const auto place = task.location())
        tell(Kind::Place, place->title());
    return details;
}

TaskRowContent TaskRowContent::of(const EntityTask &task, ListType list)
{
    TaskRowContent content;
    content.title = task.title();
    content.dateLabel = labelFor(task, list);
    content.isOverdue = isLate(task, list);
    // A task that never met a calendar has no such mark and can be changed.
    content.hasCheckBox = task.allowsContentModifications().value_or(true);
    content.isChecked = task.status() == TaskStatus::Done;
    content.priority = content.hasCheckBox ? task.priority().value_or(Priority::None) : Priority::None;
    content.repeats = !task.repeat().isEmpty();
    content.hasNote = !task.details().trimmed().isEmpty();
    content.details = detailsOf(task, list);
    if (list == ListType::ProjectDetail && task.project())
        content.project = task.project()->title();
    return content;
}
