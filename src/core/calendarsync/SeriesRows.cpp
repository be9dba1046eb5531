#include "calendarsync/SeriesRows.h"

#include "calendarsync/EventReader.h"
#include "eventkit/CalendarError.h"
#include "records/copies/TaskColumns.h"
#include "records/dates/MTDates.h"
#include "records/dates/MVDate.h"
#include "store/entities/MainContext.h"
#include "store/state/CoreContext.h"

#include <algorithm>

namespace series {

namespace {

using taskcolumns::InSeries;

constexpr Seconds secondsPerDay{86400};

bool isOfType(const EntityTask &task, TaskType type)
{
    return task.type().value_or(TaskType::ToDo) == type;
}

Date withTimeOf(Date date, Date time)
{
    return MVDate::setHour(static_cast<unsigned>(MTDates::hourOfDay(time)),
                           static_cast<unsigned>(MTDates::minuteOfHour(time)), date);
}

Date withDayOf(Date date, Date day)
{
    return MVDate::setDay(static_cast<unsigned>(MTDates::dayOfMonth(day)),
                          static_cast<unsigned>(MTDates::monthOfYear(day)),
                          static_cast<unsigned>(MTDates::year(day)), date);
}

/// A row that has become done and does not say when was done now.
void noteWhenDone(EntityTask &row)
{
    if (row.status() == TaskStatus::Done && !row.expirationDate())
        row.setExpirationDate(MVDate::date());
}

void copyFields(const EntityTask &from, EntityTask &row)
{
    taskcolumns::forEach([&from, &row](const auto &column) {
        if (column.inSeries == InSeries::Shared || column.inSeries == InSeries::KeptByCalendar)
            column.set(row, column.of(from));
    });
    noteWhenDone(row);
}

bool isOfSharedFields(InSeries inSeries)
{
    return inSeries == InSeries::Shared || inSeries == InSeries::NamesSeries;
}

void copyTimeOfMoment(const EntityTask &from, EntityTask &row)
{
    if (!from.dueDate())
        return;
    OptionalDate due = row.dueDate();
    if (due)
        due = withTimeOf(*due, *from.dueDate());
    if (due && row.startDate())
        due = withDayOf(*due, *row.startDate());
    row.setDueDate(due);
}

void copyTimesOfAppointment(const EntityTask &from, EntityTask &row)
{
    if (!row.startDate())
        return;
    if (row.dueDate() && from.dueDate())
        row.setDueDate(withDayOf(withTimeOf(*row.dueDate(), *from.dueDate()), *row.startDate()));
    if (from.startDate())
        row.setStartDate(withTimeOf(*row.startDate(), *from.startDate()));
}

void copyLengthOfToDo(const EntityTask &from, EntityTask &row)
{
    if (!row.startDate())
        return;
    const int days =
        from.startDate() && from.dueDate() ? MTDates::daysSinceDate(*from.dueDate(), *from.startDate()) : 0;
    row.setDueDate(*row.startDate() + secondsPerDay * days);
}

/// What the rows of a series said before an edit of one of them.
class CommonWords
{
public:
    explicit CommonWords(const std::vector<TaskPtr> &rows)
    {
        for (const TaskPtr &row : rows) {
            if (row->repeat().isEmpty())
                continue;
            ++titles[row->title()];
            ++details[row->details()];
        }
    }
    bool isOwnTitle(const QString &title) const { return isOfFew(title, titles); }
    bool areOwnDetails(const QString &text) const { return isOfFew(text, details); }

private:
    /// Whether more rows agree on something else.
    static bool isOfFew(const QString &words, const QHash<QString, int> &all)
    {
        return std::ranges::any_of(all, [&](int count) { return count > all.value(words); });
    }

    QHash<QString, int> titles;
    QHash<QString, int> details;
};

OptionalDate moved(OptionalDate base, OptionalDate alert, double offset)
{
    return base && alert ? OptionalDate(*base + Seconds(offset)) : std::nullopt;
}

OptionalDate onDayOf(OptionalDate alert, Date day)
{
    return alert ? OptionalDate(withDayOf(*alert, day)) : std::nullopt;
}

} // namespace

AlertOffsets AlertOffsets::of(const EntityTask &task)
{
    return {MVTask::timeIntervalAlertOfTask(task), MVTask::timeIntervalSecondAlertOfTask(task)};
}

void copyAlerts(const EntityTask &from, EntityTask &row, const AlertOffsets &offsets)
{
    if (!isOfType(from, TaskType::ToDo)) {
        const OptionalDate base = isOfType(from, TaskType::Appointment) ? row.startDate() : row.dueDate();
        row.setAlert(moved(base, from.alert(), offsets.alert));
        row.setSecondAlert(moved(base, from.secondAlert(), offsets.secondAlert));
    } else if (row.startDate()) {
        row.setAlert(onDayOf(from.alert(), *row.startDate()));
        row.setSecondAlert(onDayOf(from.secondAlert(), *row.startDate()));
    }
}

SharedFields::SharedFields(const EntityTask &task)
{
    taskcolumns::forEach([this, &task](const auto &column) {
        if (isOfSharedFields(column.inSeries))
            values.*column.member = column.of(task);
    });
}

void SharedFields::writeTo(EntityTask &row) const
{
    taskcolumns::forEach([this, &row](const auto &column) {
        if (isOfSharedFields(column.inSeries))
            column.set(row, values.*column.member);
    });
    noteWhenDone(row);
}

std::vector<TaskPtr> otherRows(const EntityTask &task)
{
    if (task.calendarID().isEmpty())
        return {};
    std::vector<TaskPtr> rows;
    const FetchRequest request =
        EntityTask::fetchRequest().where(Predicate::format("calendarID == %@", task.calendarID()));
    for (const TaskPtr &row : mainContext().fetch<EntityTask>(request)) {
        if (row && row.get() != &task)
            rows.push_back(row);
    }
    return rows;
}

Result<std::vector<EKEvent>> eventsOf(const EntityTask &task, OptionalDate formerDate)
{
    if (task.calendarID().isEmpty())
        return std::vector<EKEvent>();
    const OptionalDate date = task.startDate() ? task.startDate() : task.dueDate();
    auto events = EventReader::eventsOfRow(task.calendarID(), task.typeCalendarID(), {date, formerDate});
    // Two computers can each have a calendar of the same name. The event is with the other one.
    if (events && events.value().empty() &&
        CoreContext::current().isCalendarItemElsewhere(task, task.calendarID()))
        return CalendarError::make(CalendarError::Storage,
                                   QStringLiteral("The event has not come to this computer."));
    return events;
}

bool isLater(const EntityTask &row, const EntityTask &task)
{
    if (row.startDate() && task.startDate()) {
        if (*row.startDate() != *task.startDate())
            return *row.startDate() > *task.startDate();
        return row.dueDate() && task.dueDate() && *row.dueDate() >= *task.dueDate();
    }
    return row.dueDate() && task.dueDate() && *row.dueDate() > *task.dueDate();
}

void copyEdit(const EntityTask &from, EntityTask &row, const AlertOffsets &offsets)
{
    copyFields(from, row);
    if (isOfType(from, TaskType::EmailCall))
        copyTimeOfMoment(from, row);
    else if (isOfType(from, TaskType::Appointment))
        copyTimesOfAppointment(from, row);
    else
        copyLengthOfToDo(from, row);
    copyAlerts(from, row, offsets);
}

void copyEditToOthers(const EntityTask &from)
{
    const std::vector<TaskPtr> others = otherRows(from);
    const auto offsets = AlertOffsets::of(from);
    const CommonWords common(others);
    for (const TaskPtr &row : others) {
        const QString title = row->title();
        const QString details = row->details();
        copyEdit(from, *row, offsets);
        const bool isAlone = row->repeat().isEmpty();
        if (isAlone || common.isOwnTitle(title))
            row->setTitle(title);
        if (isAlone || common.areOwnDetails(details))
            row->setDetails(details);
    }
}

} // namespace series
