#include "records/people/WaitingFor.h"

#include "calendarsync/RecordsTransaction.h"
#include "foundation/Calendar.h"
#include "foundation/Clock.h"
#include "foundation/DateFormatter.h"
#include "foundation/Localization.h"
#include "records/MailDraft.h"
#include "store/entities/MainContext.h"
#include "store/queries/DBWorker.h"
#include "store/queries/ListDefinitions.h"

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace {

struct Waiting
{
    RowId row;
    OptionalDate since;
};

/// Nobody knows how long what has no date waits: it comes first.
bool waitsLonger(const OptionalDate &one, const OptionalDate &other)
{
    return one && other ? *one < *other : !one && other;
}

QString dayInWords(Date date)
{
    return DateFormatter::string(date, DateFormatter::Style::Medium, DateFormatter::Style::None,
                                 DateFormatter::Language::OfWords);
}

/// "since October 3 (50 days)".
QString sinceInWords(OptionalDate since)
{
    if (!since)
        return {};
    const Calendar calendar = Calendar::current();
    const int days = calendar.dayNumber(Clock::now()) - calendar.dayNumber(*since);
    if (days <= 0)
        return localized(u"since today"_s);
    return days == 1 ? localized(u"since yesterday"_s)
                     : localizedCount(u"since %2 (%1 days)"_s, days).arg(dayInWords(*since));
}

QString askedInWords(OptionalDate asked)
{
    return asked ? localized(u"asked %1"_s).arg(dayInWords(*asked)) : localized(u"not asked yet"_s);
}

/// What somebody has and is not done yet, without the calendars that are not shown.
Predicate openTasksOfPeople()
{
    return Predicate::format("delegateToUser != nil and status <> %d", TaskStatus::Done) &&
           tasklists::visibleTasks();
}

} // namespace

std::vector<RowId> WaitingFor::rows()
{
    std::vector<Waiting> found;
    const FetchRequest request = EntityTask::fetchRequest().where(openTasksOfPeople());
    mainContext().visit(request, {"delegatedSince", "creationDate"}, [&](const RowReader &row) {
        const OptionalDate since = row.date(0);
        found.push_back({row.rowId(), since ? since : row.date(1)});
    });
    std::ranges::stable_sort(
        found, [](const Waiting &one, const Waiting &other) { return waitsLonger(one.since, other.since); });
    std::vector<RowId> sorted;
    sorted.reserve(found.size());
    for (const Waiting &one : found)
        sorted.push_back(one.row);
    return sorted;
}

std::vector<TaskPtr> WaitingFor::tasksOf(const EntityContacts &contact)
{
    const ObjectPtr delegate = std::const_pointer_cast<ManagedObject>(contact.shared_from_this());
    const auto found = mainContext().fetch<EntityTask>(EntityTask::fetchRequest().where(
        openTasksOfPeople() && Predicate::format("delegateToUser = %@", delegate)));
    std::vector<TaskPtr> tasks(found.begin(), found.end());
    std::ranges::stable_sort(tasks, [](const TaskPtr &one, const TaskPtr &other) {
        return waitsLonger(since(*one), since(*other));
    });
    return tasks;
}

OptionalDate WaitingFor::since(const EntityTask &task)
{
    const OptionalDate given = task.delegatedSince();
    return given ? given : task.creationDate();
}

QString WaitingFor::timesInWords(const EntityTask &task)
{
    QStringList parts{sinceInWords(since(task)), askedInWords(task.lastAsked())};
    parts.removeAll(QString());
    return parts.join(u", "_s);
}

QString WaitingFor::inWords(const EntityTask &task)
{
    const ContactPtr contact = task.delegateToUser();
    QStringList parts{contact ? contact->fullName() : QString(), timesInWords(task)};
    parts.removeAll(QString());
    return parts.join(u", "_s);
}

QString WaitingFor::inWords(const EntityContacts &contact)
{
    const std::vector<TaskPtr> tasks = tasksOf(contact);
    if (tasks.empty())
        return {};
    OptionalDate asked;
    qsizetype notAsked = 0;
    for (const TaskPtr &task : tasks) {
        if (!task->lastAsked())
            ++notAsked;
        else if (!asked || *asked < *task->lastAsked())
            asked = task->lastAsked();
    }
    const QString count = localizedCount(u"%1 open tasks"_s, static_cast<qint64>(tasks.size()));
    QStringList parts{count, sinceInWords(since(*tasks.front())), askedInWords(asked)};
    if (asked && notAsked > 0)
        parts.append(localized(u"%1 of them not asked yet"_s).arg(notAsked));
    parts.removeAll(QString());
    return parts.join(u", "_s);
}

QString WaitingFor::askingMail(const EntityContacts &contact, const std::vector<TaskPtr> &tasks)
{
    QString body = localized(u"Hello %1,"_s)
                       .arg(contact.firstName().isEmpty() ? contact.fullName() : contact.firstName()) +
                   u"\n\n"_s + localized(u"how is this coming along?"_s) + u"\n\n"_s;
    for (const TaskPtr &task : tasks) {
        body += u"- "_s + task->title().simplified();
        if (task->dueDate())
            body += u" ("_s + localized(u"due %1"_s).arg(dayInWords(*task->dueDate())) + u')';
        body += u'\n';
    }
    QStringList addresses;
    for (const auto &email : contact.email())
        addresses << email->mail();
    const QString subject =
        tasks.size() == 1 ? tasks.front()->title().simplified() : localized(u"Open tasks"_s);
    // The first address is where people are reached; the others may be old.
    return MailDraft{addresses.mid(0, 1), subject, body}.url();
}

bool WaitingFor::noteAsking(const std::vector<TaskPtr> &tasks)
{
    RecordsTransaction transaction(u"Ask Again"_s);
    for (const TaskPtr &task : tasks) {
        if (task->context() && !task->isDeleted())
            task->setLastAsked(Clock::now());
    }
    return DBWorker::tellOfFailure(transaction.commit());
}
