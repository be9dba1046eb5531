#include "records/HomeRowContent.h"

#include "foundation/Calendar.h"
#include "foundation/Clock.h"
#include "foundation/DateFormatter.h"
#include "foundation/Localization.h"
#include "records/ProjectManager.h"
#include "store/entities/Entities.h"

using namespace Qt::Literals::StringLiterals;

namespace {

using DateStyle = DateFormatter::Style;

/// The lists mix dates with words, so all of it is in the language of the words.
QString inWords(Date date, DateStyle dateStyle, DateStyle timeStyle)
{
    return DateFormatter::string(date, dateStyle, timeStyle, DateFormatter::Language::OfWords);
}

QString dueInWords(const EntityTask &task)
{
    const OptionalDate due = task.dueDate();
    if (!due)
        return {};
    if (Calendar::current().isDateInYesterday(*due))
        return localized(u"Yesterday"_s);
    return inWords(*due, DateStyle::Medium, isMoment(task.type()) ? DateStyle::Short : DateStyle::None);
}

HomeRowContent contentOf(const EntityTask &task)
{
    return {.title = task.title(),
            .project = task.project() ? ProjectManager::shownTitle(*task.project()) : QString(),
            .details = TaskRowContent::detailsOf(task, ListType::ProjectDetail),
            .repeats = !task.repeat().isEmpty(),
            .hasNote = !task.details().trimmed().isEmpty(),
            .isDone = task.status() == TaskStatus::Done};
}

} // namespace

HomeRowContent HomeRowContent::ofOverdue(const EntityTask &task)
{
    HomeRowContent content = contentOf(task);
    content.dateLabel = dueInWords(task);
    content.hasCheckBox = task.allowsContentModifications().value_or(true);
    return content;
}

HomeRowContent HomeRowContent::ofWeek(const EntityTask &task)
{
    HomeRowContent content = contentOf(task);
    const OptionalDate due = task.dueDate();
    if (!due)
        return content;
    if (isMoment(task.type())) {
        const bool hasSpan = task.type() == TaskType::Appointment && task.startDate();
        content.dateLabel = inWords(hasSpan ? *task.startDate() : *due, DateStyle::None, DateStyle::Short);
    } else {
        content.dateLabel = localized(u"All day"_s);
        content.dateLook = DateLook::AllDay;
        content.dateIcon = DateIcon::ToDo;
    }
    if (*due < Clock::now() && !content.isDone)
        content.dateLook = DateLook::Late;
    return content;
}

HomeRowContent HomeRowContent::ofWeek(const EntityProject &project)
{
    return {.title = ProjectManager::shownTitle(project),
            .dateLabel = localized(u"All day"_s),
            .dateLook = DateLook::AllDay,
            .dateIcon = DateIcon::Project,
            .isDone = project.status() == TaskStatus::Done};
}

QString HomeRowContent::dayTitle(Date day)
{
    const Calendar calendar = Calendar::current();
    const QString weekday = DateFormatter::string(day, u"E"_s, DateFormatter::Language::OfWords);
    const QString date = calendar.isDateInToday(day)      ? localized(u"Today"_s)
                         : calendar.isDateInTomorrow(day) ? localized(u"Tomorrow"_s)
                                                          : inWords(day, DateStyle::Medium, DateStyle::None);
    return QString(weekday + u", "_s + date).toUpper();
}

QString HomeRowContent::spoken() const
{
    QStringList parts = {title, dateIcon == DateIcon::Project ? localized(u"Project"_s) : project, dateLabel,
                         dateLook == DateLook::Late ? localized(u"overdue"_s) : QString(),
                         isDone && !hasCheckBox ? localized(u"Done"_s) : QString()};
    for (const TaskRowDetail &detail : details)
        parts.append(detail.text);
    parts.removeAll(QString());
    return parts.join(u", "_s);
}
