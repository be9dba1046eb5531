#include "records/exchange/TaskComponents.h"

#include "calendarsync/CalendarEvent.h"
#include "calendarsync/SeriesRows.h"
#include "eventkit/AlarmComponents.h"
#include "eventkit/EKItemOrigin.h"
#include "eventkit/EventPeriod.h"
#include "eventkit/EventWriting.h"
#include "eventkit/IcalText.h"
#include "eventkit/RecurrenceExpander.h"
#include "eventkit/RuleLines.h"
#include "eventkit/UtcDateTime.h"
#include "foundation/Calendar.h"
#include "foundation/Region.h"
#include "records/exchange/PersonName.h"
#include "store/queries/DBWorker.h"

#include <algorithm>
#include <map>

namespace {

const QByteArray lineEnd = QByteArrayLiteral("\r\n");

TaskType typeOf(const EntityTask &task)
{
    return task.type().value_or(TaskType::ToDo);
}

/// What is not an appointment, or has no start to be one, is something to do.
bool isEvent(const EntityTask &task)
{
    return typeOf(task) == TaskType::Appointment && task.startDate();
}

/// The moment from which a task repeats.
OptionalDate baseOf(const EntityTask &task)
{
    return typeOf(task) == TaskType::EmailCall || !task.startDate() ? task.dueDate() : task.startDate();
}

IcalTime formOf(const EntityTask &task)
{
    return isMoment(task.type()) ? timeFormOfZone(Region::zoneIdentifier())
                                 : IcalTime{{}, IcalTime::Form::Date};
}

void addTime(IcalComponent &component, const QByteArray &name, const IcalTime &time)
{
    component.addLine(time.line(name, component.lineEnd()));
}

// The rows of the store

void putTimes(IcalComponent &component, const EntityTask &task, bool isRepeated)
{
    const IcalTime form = formOf(task);
    if (isEvent(task)) {
        EKEvent event;
        event.startDate = task.startDate();
        event.endDate = task.dueDate() ? task.dueDate() : task.startDate();
        EventPeriod::of(event, form).writeTo(component);
        return;
    }
    // A rule counts from DTSTART.
    const OptionalDate start = isRepeated ? baseOf(task) : task.startDate();
    if (start)
        addTime(component, "DTSTART", IcalTime::of(*start, form));
    if (task.dueDate())
        addTime(component, "DUE", IcalTime::of(*task.dueDate(), form));
}

void putWordsAndAlarms(IcalComponent &component, const EntityTask &task)
{
    EKEvent shown;
    shown.title = task.title();
    shown.notes = task.details();
    if (const auto place = task.location(); place && !place->title().isEmpty()) {
        shown.location = place->title();
        shown.structuredLocation = EKStructuredLocation::locationWithTitle(place->title());
        if (place->latitude() && place->longitude())
            shown.structuredLocation->geoLocation = GeoLocation{*place->latitude(), *place->longitude()};
    }
    // Without a start there is nothing that an alarm could count from.
    const bool hasStart = component.line("DTSTART") != nullptr;
    const auto offsets = series::AlertOffsets::of(task);
    const auto addAlarm = [&](OptionalDate alert, double offset) {
        if (alert)
            shown.alarms.push_back(hasStart ? EKAlarm::alarmWithRelativeOffset(offset)
                                            : EKAlarm::alarmWithAbsoluteDate(*alert));
    };
    addAlarm(task.alert(), offsets.alert);
    addAlarm(task.secondAlert(), offsets.secondAlert);
    writeFields(component, {}, shown);
}

/// What no calendar keeps of a task.
void putOwnFields(IcalComponent &component, const EntityTask &task)
{
    TaskComponents::putProgress(component, task.status(), task.priority(), task.expirationDate());
    QList<QByteArray> tags;
    for (const auto &tag : task.tags())
        if (tag && !tag->title().isEmpty())
            tags << IcalText::encoded(tag->title());
    const CategoryPtr category = task.category();
    TaskComponents::putCategories(component, category ? category->title() : QString(), tags);
    if (const ContactPtr person = task.delegateToUser()) {
        TaskComponents::putText(component, "CONTACT", person->fullName());
        TaskComponents::putText(component, "X-MORVANE-PERSON", personname::written(*person));
    }
    const auto putMoment = [&component](const QByteArray &name, OptionalDate moment) {
        if (moment)
            component.setValue(name, UtcDateTime::string(*moment).toLatin1());
    };
    putMoment("X-MORVANE-DELEGATED", task.delegatedSince());
    putMoment("X-MORVANE-ASKED", task.lastAsked());
    if (const CompanyPtr company = task.company())
        TaskComponents::putText(component, "X-MORVANE-COMPANY", company->title());
    if (const ProjectPtr project = task.project())
        TaskComponents::putText(component, "X-MORVANE-PROJECT", project->title());
    if (typeOf(task) == TaskType::EmailCall)
        component.setValue("X-MORVANE-TYPE", "EMAIL-CALL");
    if (task.dueSomeDay().value_or(false))
        component.setValue("X-MORVANE-SOMEDAY", "TRUE");
    if (task.position())
        component.setValue("X-MORVANE-POSITION", QByteArray::number(*task.position()));
}

IcalComponent componentOfRow(const EntityTask &task, const QString &uid, bool isRepeated)
{
    IcalComponent component(isEvent(task) ? "VEVENT" : "VTODO", lineEnd);
    TaskComponents::putIdentity(component, uid, task.creationDate(), task.lastModificationDate());
    putTimes(component, task, isRepeated);
    putWordsAndAlarms(component, task);
    putOwnFields(component, task);
    return component;
}

std::optional<EKRecurrenceRule> ruleOfRow(const EntityTask &task)
{
    auto rule = EKRecurrenceRule::recurrenceRuleFromString(task.repeat());
    if (rule && task.endRepeat())
        rule->setRecurrenceEnd(EKRecurrenceEnd::recurrenceEndWithEndDate(*task.endRepeat()));
    return rule;
}

/// The open rows of a task's series, by day.
std::map<int, TaskPtr> rowsByDay(const EntityTask &task)
{
    const Calendar calendar = Calendar::current();
    std::map<int, TaskPtr> days;
    for (const TaskPtr &row : series::otherRows(task))
        if (const OptionalDate base = baseOf(*row); base && row->status() != TaskStatus::Done)
            days.emplace(calendar.dayNumber(*base), row);
    return days;
}

/// Whether a row says what the first one of its series says, but for the day.
bool isLikeFirst(const EntityTask &row, const EntityTask &first, Date expected)
{
    const auto lengthOf = [](const EntityTask &task) {
        return task.startDate() && task.dueDate() ? *task.dueDate() - *task.startDate() : Seconds(0);
    };
    return row.title() == first.title() && row.details() == first.details() &&
           row.location() == first.location() && baseOf(row) == expected && lengthOf(row) == lengthOf(first);
}

/// A series that only the store knows: the first row has the rule. What the rule gives and the store does
/// not have is excluded; a row on another day is a date of its own.
TaskObject seriesOfRows(const EntityTask &task, const EKRecurrenceRule &rule)
{
    const Calendar calendar = Calendar::current();
    const TaskPtr itself = std::static_pointer_cast<EntityTask>(DBWorker::getObjectFromId(task.uri()));
    std::map<int, TaskPtr> rows = rowsByDay(task);
    if (itself)
        rows.insert_or_assign(calendar.dayNumber(*baseOf(task)), itself);
    const EntityTask &first = rows.empty() ? task : *rows.begin()->second;
    const Date start = *baseOf(first);
    const QString uid = TaskComponents::uidOf(task);
    TaskObject object{uid, {componentOfRow(first, uid, true)}, nullptr};
    const IcalTime form = formOf(first);
    IcalComponent &master = object.components.front();
    master.addLine(master.makeLine("RRULE", textOfRule(rule, IcalTime::of(start, form))));
    if (rows.size() < 2)
        return object;
    const Date last = *baseOf(*rows.rbegin()->second);
    std::vector<IcalComponent> edited;
    const auto addEdit = [&](const EntityTask &row, Date expected) {
        IcalComponent component = componentOfRow(row, object.uid, true);
        addTime(component, "RECURRENCE-ID", IcalTime::of(expected, form));
        edited.push_back(component);
    };
    const auto found = RecurrenceExpander(rule.pattern(), start, calendar)
                           .instances({.from = start, .to = calendar.startOfNextDay(last)});
    for (const RecurrenceInstance &instance : found) {
        const auto row = rows.find(calendar.dayNumber(instance.date));
        if (row == rows.end()) {
            addTime(master, "EXDATE", IcalTime::of(instance.date, form));
            continue;
        }
        if (!isLikeFirst(*row->second, first, instance.date))
            addEdit(*row->second, instance.date);
        rows.erase(row);
    }
    rows.erase(calendar.dayNumber(start));
    for (const auto &[day, row] : rows) {
        const Date base = *baseOf(*row);
        addTime(master, "RDATE", IcalTime::of(base, form));
        if (!isLikeFirst(*row, first, base))
            addEdit(*row, base);
    }
    object.components.insert(object.components.end(), edited.begin(), edited.end());
    return object;
}

// The calendars

/// The object of a calendar that has the event of a task; null if there is none, or none can be read now.
CalendarItemPointer itemOf(const EntityTask &task)
{
    if (task.calendarID().isEmpty() || !CalendarEvent::hasAccesToCalendar())
        return nullptr;
    const auto events = CalendarEvent::eventStore().calendarItemsWithExternalIdentifier(task.calendarID());
    if (!events)
        return nullptr;
    CalendarItemPointer found;
    for (const EKEvent &event : events.value()) {
        const bool isOfTask =
            event.calendar && CalendarEvent::identifierOfCalendar(*event.calendar) == task.typeCalendarID();
        if (event.origin && (isOfTask || !found))
            found = event.origin->item;
        if (isOfTask)
            break;
    }
    return found && found->master() ? found : nullptr;
}

/// The VTODO that says what a VEVENT says.
IcalComponent todoOf(const IcalComponent &event, const ItemTimes &times, bool isRepeated)
{
    IcalComponent todo("VTODO", event.lineEnd());
    for (const ContentLine *line : event.allLines()) {
        const QByteArray &name = line->name();
        if (name != "DTEND" && name != "DURATION" && name != "TRANSP" && name != "STATUS" &&
            name != "DTSTART" && name != "DUE")
            todo.addLine(*line);
    }
    const IcalTime &start = times.start;
    // The last day of whole days.
    const IcalTime due = start.isDate() ? start.shifted((times.days() - 1) * secondsOfADay) : start;
    if (start.isDate() || isRepeated)
        addTime(todo, "DTSTART", start);
    addTime(todo, "DUE", due);
    if (start.isDate() || isRepeated) {
        for (const IcalComponent *child : event.children())
            todo.addChild(*child);
        return todo;
    }
    // Without a start there is nothing that an alarm could count from.
    std::vector<EKAlarm> alarms;
    for (const EKAlarm &alarm : AlarmComponents::read(event, 0))
        alarms.push_back(alarm.absoluteDate() ? alarm
                                              : EKAlarm::alarmWithAbsoluteDate(
                                                    start.instant() + Seconds(alarm.relativeOffset())));
    AlarmComponents::write(todo, alarms, 0);
    return todo;
}

TaskObject objectOfItem(const EntityTask &task, const CalendarItemPointer &item)
{
    TaskObject object{item->uid(), {}, item};
    const auto add = [&](const ItemPart &part) {
        const IcalComponent &event = item->component(part);
        IcalComponent component = isEvent(task) ? event : todoOf(event, part.times, item->isSeries());
        putOwnFields(component, task);
        object.components.push_back(component);
    };
    add(*item->master());
    for (const ItemPart *part : item->edits())
        add(*part);
    return object;
}

} // namespace

QString TaskComponents::uidOf(const EntityTask &task)
{
    const bool isAlone = task.calendarID().isEmpty() || task.status() == TaskStatus::Done;
    return isAlone ? task.identifier() : task.calendarID();
}

TaskObject TaskComponents::of(const EntityTask &task)
{
    const QString uid = uidOf(task);
    const bool isOpen = task.status() != TaskStatus::Done;
    if (const auto item = isOpen ? itemOf(task) : nullptr)
        return objectOfItem(task, item);
    const auto rule = isOpen && baseOf(task) ? ruleOfRow(task) : std::nullopt;
    if (rule)
        return seriesOfRows(task, *rule);
    return {uid, {componentOfRow(task, uid, false)}, nullptr};
}

void TaskComponents::putText(IcalComponent &component, const QByteArray &name, const QString &text)
{
    if (!text.isEmpty())
        component.addLine(component.makeLine(name, IcalText::encoded(text)));
}

/// Other programs have one list for both.
void TaskComponents::putCategories(IcalComponent &component, const QString &category,
                                   const QList<QByteArray> &tags)
{
    QList<QByteArray> all = tags;
    if (!category.isEmpty())
        all.prepend(IcalText::encoded(category));
    if (all.isEmpty())
        return;
    component.addLine(component.makeLine("CATEGORIES", all.join(',')));
    putText(component, "X-MORVANE-CATEGORY", category);
    if (!tags.isEmpty())
        component.addLine(component.makeLine("X-MORVANE-TAGS", tags.join(',')));
}

void TaskComponents::putIdentity(IcalComponent &component, const QString &uid, OptionalDate created,
                                 OptionalDate changed)
{
    const auto text = [](Date date) { return UtcDateTime::string(date).toLatin1(); };
    component.setValue("UID", uid.toUtf8());
    // Of an object that nobody is sent, this is when it was revised last (RFC 5545, section 3.8.7.2). So the
    // same record gives the same text each time.
    const OptionalDate stamp = changed ? changed : created;
    component.setValue("DTSTAMP", stamp ? text(*stamp) : presentUtc());
    if (created)
        component.setValue("CREATED", text(*created));
    if (changed)
        component.setValue("LAST-MODIFIED", text(*changed));
}

void TaskComponents::putProgress(IcalComponent &component, std::optional<TaskStatus> status,
                                 std::optional<Priority> priority, OptionalDate done)
{
    switch (priority.value_or(Priority::None)) {
    case Priority::High:
        component.setValue("PRIORITY", "1");
        break;
    case Priority::Medium:
        component.setValue("PRIORITY", "5");
        break;
    case Priority::Low:
        component.setValue("PRIORITY", "9");
        break;
    case Priority::None:
        break;
    }
    const bool isTodo = component.name() == "VTODO";
    switch (status.value_or(TaskStatus::Open)) {
    case TaskStatus::Open:
        if (isTodo)
            component.setValue("STATUS", "NEEDS-ACTION");
        break;
    case TaskStatus::InProgress:
        component.setValue(isTodo ? "STATUS" : "X-MORVANE-STATUS", "IN-PROCESS");
        break;
    case TaskStatus::Pending:
        if (isTodo)
            component.setValue("STATUS", "NEEDS-ACTION");
        component.setValue("X-MORVANE-STATUS", "PENDING");
        break;
    case TaskStatus::Done:
        component.setValue(isTodo ? "STATUS" : "X-MORVANE-STATUS", "COMPLETED");
        if (done)
            component.setValue(isTodo ? "COMPLETED" : "X-MORVANE-DONE",
                               UtcDateTime::string(*done).toLatin1());
        if (isTodo)
            component.setValue("PERCENT-COMPLETE", "100");
        break;
    }
    // It was done once, and is open again.
    if (done && status.value_or(TaskStatus::Open) != TaskStatus::Done)
        component.setValue("X-MORVANE-DONE", UtcDateTime::string(*done).toLatin1());
}
