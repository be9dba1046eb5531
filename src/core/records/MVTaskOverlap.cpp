#include "foundation/Alert.h"
#include "foundation/DateFormatter.h"
#include "foundation/Localization.h"
#include "records/copies/MVTask.h"
#include "store/queries/DBWorker.h"

// Whether an appointment collides with another.

namespace {

constexpr qsizetype longestShownTitle = 500;

bool isOfType(const EntityTask &task, TaskType type)
{
    return task.type() == type;
}

QString shortTime(OptionalDate date)
{
    return date ? DateFormatter::string(*date, DateFormatter::Style::None, DateFormatter::Style::Short)
                : QString();
}

QString collisionText(const EntityTask &other)
{
    const QString title = other.title().left(longestShownTitle);
    const QString lead = localized(QStringLiteral("There is task")) + QStringLiteral("  '%1'  ").arg(title) +
                         localized(QStringLiteral("with Start Date"));
    if (isOfType(other, TaskType::EmailCall))
        return lead + QStringLiteral("  '%1'  ").arg(shortTime(other.dueDate()));
    return lead + QStringLiteral("  '%1'  ").arg(shortTime(other.startDate())) +
           localized(QStringLiteral("and Due Date")) +
           QStringLiteral(" '%1'  ").arg(shortTime(other.dueDate()));
}

} // namespace

bool MVTask::isCrossTaskAppointmentForStartDate(Date start, Date due) const
{
    const Date end = due - Seconds(1);
    for (const TaskPtr &other : DBWorker::getTimeItemsForDate(end)) {
        if (other == row || other->status() == TaskStatus::Done)
            continue;
        const Date otherEnd = *other->dueDate() - Seconds(1);
        const OptionalDate otherStart = other->startDate();
        const bool areAppointments = isAppointment() && isOfType(*other, TaskType::Appointment) && otherStart;
        const bool overlaps = areAppointments && ((start >= *otherStart && otherEnd > start) ||
                                                  (start < *otherStart && end > *otherStart));
        const bool coincides = isEmailCall() && isOfType(*other, TaskType::EmailCall) && end == otherEnd;
        if (!overlaps && !coincides)
            continue;
        const QString heading = localized(QStringLiteral("Can't save Start Date"));
        Alert::run({heading, heading, collisionText(*other), {localized(QStringLiteral("OK"))}});
        return true;
    }
    return false;
}
