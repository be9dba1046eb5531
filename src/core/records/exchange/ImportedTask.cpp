#include "records/exchange/ImportedTask.h"

#include "eventkit/AlarmComponents.h"
#include "eventkit/EKRecurrenceRule.h"
#include "eventkit/IcalText.h"
#include "eventkit/IcalZones.h"
#include "eventkit/RecurrenceExpander.h"
#include "eventkit/UtcDateTime.h"
#include "foundation/Calendar.h"
#include "records/dates/MTDates.h"

#include <cmath>

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr std::size_t mostAlerts = 2;

QString textOf(const IcalComponent &component, const QByteArray &name)
{
    return IcalText::decoded(component.value(name)).trimmed();
}

QString lineOf(const IcalComponent &component, const QByteArray &name)
{
    return textOf(component, name).simplified();
}

/// The texts of a list; a comma in one of them is escaped.
QStringList listOf(const IcalComponent &component, const QByteArray &name)
{
    QStringList all;
    for (const ContentLine *line : component.lines(name)) {
        QByteArray part;
        const QByteArray value = line->value();
        for (qsizetype place = 0; place <= value.size(); ++place) {
            const bool isEnd = place == value.size() || value[place] == ',';
            if (!isEnd) {
                part += value[place];
                if (value[place] == '\\' && place + 1 < value.size())
                    part += value[++place];
                continue;
            }
            all.append(IcalText::decoded(part).simplified());
            part.clear();
        }
    }
    all.removeAll(QString());
    all.removeDuplicates();
    return all;
}

OptionalDate momentOf(const IcalComponent &component, const QByteArray &name)
{
    return UtcDateTime::date(QString::fromLatin1(component.value(name).trimmed()));
}

std::optional<GeoLocation> positionOf(const QByteArray &value)
{
    const QList<QByteArray> parts = value.split(';');
    bool isLatitude = false;
    bool isLongitude = false;
    if (parts.size() != 2)
        return std::nullopt;
    const GeoLocation position{parts[0].trimmed().toDouble(&isLatitude),
                               parts[1].trimmed().toDouble(&isLongitude)};
    const bool isOnEarth = std::abs(position.latitude) <= 90 && std::abs(position.longitude) <= 180;
    return isLatitude && isLongitude && isOnEarth ? std::optional(position) : std::nullopt;
}

TaskStatus statusOf(const IcalComponent &component)
{
    const QByteArray own = component.value("X-MORVANE-STATUS").trimmed().toUpper();
    const QByteArray said = own.isEmpty() ? component.value("STATUS").trimmed().toUpper() : own;
    if (said == "COMPLETED" || (component.name() == "VTODO" && component.line("COMPLETED")))
        return TaskStatus::Done;
    if (said == "PENDING")
        return TaskStatus::Pending;
    return said == "IN-PROCESS" ? TaskStatus::InProgress : TaskStatus::Open;
}

/// From 1, the highest, to 9; 0 says nothing (RFC 5545, section 3.8.1.9).
Priority priorityOf(const QByteArray &value)
{
    constexpr int medium = 5;
    const int number = value.trimmed().toInt();
    if (number <= 0 || number > 9)
        return Priority::None;
    return number < medium ? Priority::High : number == medium ? Priority::Medium : Priority::Low;
}

void takeWords(ImportedTask &task, const IcalComponent &component)
{
    task.title = lineOf(component, "SUMMARY");
    task.details = IcalText::decoded(component.value("DESCRIPTION"));
    const QString address = lineOf(component, "URL");
    if (!address.isEmpty() && !task.details.contains(address))
        task.details += (task.details.isEmpty() ? u""_s : u"\n"_s) + address;
    task.place = lineOf(component, "LOCATION");
    task.position = positionOf(component.value("GEO"));
    task.person = lineOf(component, "X-MORVANE-PERSON");
    task.delegatedSince = momentOf(component, "X-MORVANE-DELEGATED");
    task.lastAsked = momentOf(component, "X-MORVANE-ASKED");
    if (task.person.isEmpty())
        task.contactWords = lineOf(component, "CONTACT");
    task.company = lineOf(component, "X-MORVANE-COMPANY");
    task.project = lineOf(component, "X-MORVANE-PROJECT");
    task.projectUid = lineOf(component, "RELATED-TO");
    task.hasOwnCategory = component.line("X-MORVANE-CATEGORY") || component.line("X-MORVANE-TAGS");
    task.category = lineOf(component, "X-MORVANE-CATEGORY");
    task.tags = listOf(component, task.hasOwnCategory ? "X-MORVANE-TAGS" : "CATEGORIES");
}

void takeProgress(ImportedTask &task, const IcalComponent &component)
{
    task.status = statusOf(component);
    task.priority = priorityOf(component.value("PRIORITY"));
    task.isCancelled = component.value("STATUS").trimmed().toUpper() == "CANCELLED";
    task.created = momentOf(component, "CREATED");
    task.revised = momentOf(component, "LAST-MODIFIED");
    if (!task.revised)
        task.revised = momentOf(component, "DTSTAMP");
    task.done = momentOf(component, component.line("COMPLETED") ? "COMPLETED" : "X-MORVANE-DONE");
    bool hasPlace = false;
    const int place = component.value("X-MORVANE-POSITION").trimmed().toInt(&hasPlace);
    if (hasPlace)
        task.placeInInbox = place;
}

/// A task of days: the first and the last of them.
void takeDays(ImportedTask &task, const std::optional<IcalTime> &first, const IcalTime &last)
{
    task.type = TaskType::ToDo;
    if (first)
        task.start = MTDates::startOfCurrentDay(first->day().instant());
    task.due = MTDates::endOfCurrentDay(last.day().instant());
}

/// A task of the clock: from one moment to another, or at one only.
void takeMoments(ImportedTask &task, Date start, Date end)
{
    if (end > start) {
        task.type = TaskType::Appointment;
        task.start = start;
    } else {
        task.type = TaskType::EmailCall;
    }
    task.due = std::max(start, end);
}

/// False without a start that can be read.
bool takeEventTimes(ImportedTask &task, const IcalComponent &component, const IcalZones &zones)
{
    const auto start = zones.time(component.line("DTSTART"));
    if (!start)
        return false;
    ItemTimes times{.start = *start};
    times.end = zones.time(component.line("DTEND"));
    if (!times.end)
        times.duration = IcalDuration::fromText(component.value("DURATION").trimmed());
    constexpr std::int64_t aDay = 86400;
    if (start->isDate())
        takeDays(task, start, start->shifted((times.days() - 1) * aDay));
    else
        takeMoments(task, start->instant(), times.endOf(*start));
    return true;
}

void takeTodoTimes(ImportedTask &task, const IcalComponent &component, const IcalZones &zones)
{
    const auto start = zones.time(component.line("DTSTART"));
    auto due = zones.time(component.line("DUE"));
    const auto length = IcalDuration::fromText(component.value("DURATION").trimmed());
    if (!due && start && length)
        due = start->shifted(length->totalSeconds());
    const bool isCall = component.value("X-MORVANE-TYPE").trimmed().toUpper() == "EMAIL-CALL";
    task.isSomeday = component.value("X-MORVANE-SOMEDAY").trimmed().toUpper() == "TRUE" && !due && !start;
    if (!due && !start)
        return;
    const IcalTime &last = due ? *due : *start;
    const bool isInOrder = start && start->instant() <= last.instant();
    if (last.isDate())
        takeDays(task, isInOrder ? start : std::nullopt, last);
    else if (isCall || !isInOrder || start->isDate())
        takeMoments(task, last.instant(), last.instant());
    else
        takeMoments(task, start->instant(), last.instant());
}

void takeAlarms(ImportedTask &task, const IcalComponent &component, const IcalZones &zones)
{
    const auto start = zones.time(component.line("DTSTART"));
    const OptionalDate base = start ? OptionalDate(start->instant()) : task.due;
    const double length = start && task.due ? (*task.due - start->instant()).count() : 0;
    for (const EKAlarm &alarm : AlarmComponents::read(component, length)) {
        const OptionalDate moment = alarm.absoluteDate() ? alarm.absoluteDate()
                                    : base ? OptionalDate(*base + Seconds(alarm.relativeOffset()))
                                           : std::nullopt;
        if (moment && task.alerts.size() < mostAlerts)
            task.alerts.push_back(*moment);
        else
            task.isPartial = true;
    }
}

void takeRule(ImportedTask &task, const IcalComponent &component, const IcalZones &zones)
{
    const auto rules = component.lines("RRULE");
    task.isPartial = task.isPartial || rules.size() > 1 || component.line("EXRULE");
    if (rules.empty())
        return;
    const auto pattern = RecurrencePattern::fromText(QString::fromLatin1(rules.front()->value()));
    auto rule = pattern ? EKRecurrenceRule::fromPattern(*pattern, Calendar::current()) : std::nullopt;
    // What is done, and what has no day, does not repeat.
    if (!rule || !task.due || task.status == TaskStatus::Done) {
        task.isPartial = true;
        return;
    }
    // A task says by a day when it ends, and not after how many times.
    const auto end = rule->recurrenceEnd();
    const auto start = zones.time(component.line("DTSTART"));
    OptionalDate last = end ? end->endDate() : std::nullopt;
    if (end && !last && start) {
        const auto all = RecurrenceExpander(*pattern, start->instant(), Calendar::current()).instances({});
        last = all.empty() ? start->instant() : all.back().date;
    }
    if (last)
        task.ruleEnd = MTDates::endOfCurrentDay(*last);
    rule->setRecurrenceEnd(std::nullopt);
    task.rule = rule->stringForICalendar();
    for (const ContentLine *line : component.lines("EXDATE"))
        for (const IcalTime &time : zones.times(*line))
            task.excluded.push_back(time.instant());
}

std::optional<ImportedTask> taskOf(const IcalComponent &component, const IcalZones &zones)
{
    ImportedTask task;
    takeWords(task, component);
    takeProgress(task, component);
    if (component.name() == "VTODO")
        takeTodoTimes(task, component, zones);
    else if (!takeEventTimes(task, component, zones))
        return std::nullopt;
    takeAlarms(task, component, zones);
    takeRule(task, component, zones);
    return task;
}

/// A date beside the rule stands for one that the rule gives and that is left out.
void takeDatesBesideRule(ImportedTask &task, const std::vector<Date> &dates)
{
    for (const Date date : dates) {
        if (task.excluded.empty()) {
            task.isPartial = true;
            return;
        }
        const Date instead = task.excluded.back();
        task.excluded.pop_back();
        const auto edit = std::ranges::find(task.edits, date, &ImportedTask::Edit::original);
        if (edit != task.edits.end())
            edit->original = instead;
        else
            task.edits.push_back({instead, task.movedTo(date)});
    }
}

} // namespace

std::optional<ImportedTask> ImportedTask::of(const CalendarFile::Object &object)
{
    const IcalZones zones(object.calendar);
    std::optional<ImportedTask> whole;
    std::vector<Edit> edits;
    std::vector<Date> dates;
    for (const IcalComponent *component : object.calendar.children()) {
        if (component->name() == "VTIMEZONE")
            continue;
        auto task = taskOf(*component, zones);
        if (!task)
            return std::nullopt;
        const auto original = zones.time(component->line("RECURRENCE-ID"));
        if (original && whole)
            edits.push_back({original->instant(), std::move(*task)});
        else if (!whole)
            whole = std::move(task);
        for (const ContentLine *line : component->lines("RDATE"))
            for (const IcalRecurrenceDate &date : zones.recurrenceDates(*line))
                dates.push_back(date.start.instant());
    }
    if (!whole)
        return std::nullopt;
    whole->edits = std::move(edits);
    takeDatesBesideRule(*whole, dates);
    // Without a rule there is no occurrence that they could be.
    whole->isPartial = whole->isPartial || (whole->rule.isEmpty() && !whole->edits.empty());
    return whole;
}

ImportedTask ImportedTask::movedTo(Date date) const
{
    ImportedTask task = *this;
    const OptionalDate former = task.start ? task.start : task.due;
    const Seconds length = former && task.due ? *task.due - *former : Seconds(0);
    if (task.type == TaskType::ToDo) {
        if (task.start)
            task.start = MTDates::startOfCurrentDay(date);
        task.due = MTDates::endOfCurrentDay(date + (task.start ? length : Seconds(0)));
    } else {
        if (task.start)
            task.start = date;
        task.due = date + length;
    }
    for (OptionalDate &alert : task.alerts)
        if (alert && former)
            alert = date + (*alert - *former);
    return task;
}
