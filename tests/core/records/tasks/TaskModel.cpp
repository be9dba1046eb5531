#include "TaskModel.h"

#include "foundation/Calendar.h"

static QString operator""_text(const char16_t *text, size_t size)
{
    return QString::fromUtf16(text, static_cast<qsizetype>(size));
}

/// The notification of the first rule that the dates break, or nothing.
QString TaskModel::refusal(const Copy &copy)
{
    const bool lacksDue = !copy.dueDate && copy.dueSomeDay != true;
    const bool hasBoth = copy.startDate && copy.dueDate;
    if (hasBoth && *copy.dueDate < *copy.startDate) {
        says(u"Invalid Due Date"_text, u"Due Date can't be less than Start Date!"_text);
        return u"TaskChange"_text;
    }
    const bool isRefused =
        (copy.type == appointment && !copy.startDate &&
         says(u"Invalid Start Date"_text,
              u"Since task type is Appointment - Start Date can't be empty!"_text)) ||
        (copy.type == appointment && lacksDue &&
         says(u"Invalid Due Date"_text, u"Since task type is Appointment - Due Date can't be empty!"_text)) ||
        (copy.type == appointment && hasBoth && wholeMinute(*copy.startDate) == wholeMinute(*copy.dueDate) &&
         says(u"Invalid Date"_text, u"Due Date can't be the same as Start Date!"_text)) ||
        (copy.type == emailCall && lacksDue &&
         says(u"Invalid Start Date"_text,
              u"Since task type is Email/Call - Start Date can't be empty!"_text)) ||
        (copy.type == toDo && copy.startDate && lacksDue &&
         says(u"Invalid Due Date"_text, u"Since task type is ToDo and Start Date is not empty - Due Date "
                                        "can't be empty too!"_text));
    return isRefused ? u"TaskChange"_text : QString();
}

bool TaskModel::leavesProject(const Copy &copy)
{
    if (!live.projects.count(copy.project))
        return false;
    const Project &project = live.projects[copy.project];
    const OptionalDate end = project.dueDate ? OptionalDate(endOfDay(*project.dueDate)) : std::nullopt;
    const auto isBefore = [](OptionalDate one, OptionalDate other) { return one && other && *one < *other; };
    if (isBefore(copy.startDate, project.startDate))
        return says(u"Invalid Start Date"_text, u"Start Date can't be less than project Start Date!"_text);
    if (isBefore(end, copy.startDate))
        return says(u"Invalid Start Date"_text, u"Start Date can't be more than project Due Date!"_text);
    if (isBefore(end, copy.dueDate))
        return says(u"Invalid Due Date"_text, u"Due Date can't be more than project Due Date!"_text);
    return isBefore(copy.dueDate, project.startDate) &&
           says(u"Invalid Due Date"_text, u"Due Date can't be less than project Start Date!"_text);
}

bool TaskModel::saveTaskTemp(Copy &copy)
{
    copy.title = copy.title.trimmed();
    for (OptionalDate *date : {&copy.startDate, &copy.dueDate}) {
        if (*date)
            *date = wholeMinute(**date);
    }
    QString posted = refusal(copy);
    if (posted.isEmpty() && leavesProject(copy))
        posted = u"TaskChange"_text;
    if (!posted.isEmpty()) {
        post(posted, copy.id);
        return false;
    }
    bool isDelegateNew = false;
    if (!copy.delegateToUser.isEmpty() && live.projects.count(copy.project))
        isDelegateNew = live.projects[copy.project].members.insert(copy.delegateToUser).second;
    if (copy.id.isEmpty() || live.tasks[copy.id].repeat.isEmpty()) {
        write(copy);
        spread(copy.id, false);
        post(u"TaskChange"_text, copy.id);
    } else {
        asks(u"This is a repeating task."_text,
             {u"Save This Task Only"_text, u"Save All Future Tasks"_text, u"Cancel"_text});
        if (answer != Alert::thirdButton) {
            write(copy);
            spread(copy.id, answer == Alert::firstButton);
        } else if (isDelegateNew) {
            // Given up, the store is as it was.
            live.projects[copy.project].members.erase(copy.delegateToUser);
        }
    }
    commit();
    if (copy.isNew)
        post(u"CoreDataAddNewTask"_text, {});
    static_cast<Row &>(copy) = live.tasks[copy.id];
    post(u"TaskChange"_text, copy.id);
    return true;
}

void TaskModel::write(Copy &copy)
{
    copy.isNew = copy.id.isEmpty();
    Row row = copy;
    if (copy.isNew) {
        copy.id = newRow();
        row.creationDate = now;
        row.wasCreatedOffCalendar = true;
        row.position.reset();
        row.expirationDate.reset();
        if (copy.type == toDo && !copy.startDate) {
            row.position = 1;
            for (const auto &[id, other] : live.tasks) {
                if (other.type == toDo && !other.startDate)
                    row.position = std::max(row.position, std::optional(other.position.value_or(0) + 1));
            }
        }
    } else {
        const Row &former = live.tasks[copy.id];
        row.creationDate = former.creationDate;
        row.position = former.position;
        row.expirationDate = former.expirationDate;
    }
    row.lastModificationDate = now;
    if (row.status == done)
        row.expirationDate = now;
    live.tasks[copy.id] = row;
}

void TaskModel::spread(const QString &id, bool isThisOnly)
{
    Row &row = live.tasks[id];
    if (isThisOnly) {
        row.repeat.clear();
        row.endRepeat.reset();
    }
    if (row.repeat.isEmpty() || row.calendarID.isEmpty())
        return;
    const Organiser before = live;
    // Words of its own has one that left the series, and one that says what fewer say than something else.
    const auto isOwn = [&](const Row &one, QString Row::*field) {
        QMap<QString, int> sayers;
        for (const auto &[other, of] : before.tasks)
            sayers[of.*field] += other != id && of.calendarID == row.calendarID && !of.repeat.isEmpty();
        return one.repeat.isEmpty() || *std::ranges::max_element(sayers) > sayers[one.*field];
    };
    for (auto &[other, to] : live.tasks) {
        if (other == id || to.calendarID != row.calendarID)
            continue;
        copyEdit(row, to);
        const Row &former = before.tasks.at(other);
        for (QString Row::*field : {&Row::title, &Row::details}) {
            if (isOwn(former, field))
                to.*field = former.*field;
        }
    }
}

/// The others of a series take an edit, each on its own day. What has no date to be moved keeps what it has.
void TaskModel::copyEdit(const Row &from, Row &to) const
{
    to.title = from.title;
    to.details = from.details;
    to.type = from.type;
    to.status = from.status;
    to.priority = from.priority;
    to.project = from.project;
    to.delegateToUser = from.delegateToUser;
    to.lastModificationDate = from.lastModificationDate;
    if (from.status == done && !to.expirationDate)
        to.expirationDate = now;
    // What the clock shows, also where one of the days is longer.
    const auto at = [](Date ofDay, Date time) {
        const Calendar calendar = Calendar::current();
        DateComponents fields = calendar.shortComponents(time);
        const DateComponents daysFields = calendar.shortComponents(ofDay);
        fields.year = daysFields.year;
        fields.month = daysFields.month;
        fields.day = daysFields.day;
        return calendar.dateFromComponents(fields);
    };
    if (from.type == emailCall && to.dueDate && from.dueDate)
        to.dueDate = at(to.startDate.value_or(*to.dueDate), *from.dueDate);
    if (from.type == appointment && to.startDate) {
        if (to.dueDate && from.dueDate)
            to.dueDate = at(*to.startDate, *from.dueDate);
        if (from.startDate)
            to.startDate = at(*to.startDate, *from.startDate);
    }
    if (from.type == toDo && to.startDate) {
        const bool hasLength = from.startDate && from.dueDate;
        to.dueDate = *to.startDate +
                     (hasLength ? day * std::floor((*from.dueDate - *from.startDate) / day) : Seconds(0));
    }
    const auto base = [](const Row &row) { return row.type == emailCall ? row.dueDate : row.startDate; };
    const auto moved = [&](OptionalDate own) -> OptionalDate {
        if (from.type == toDo)
            return own ? OptionalDate(at(*to.startDate, *own)) : std::nullopt;
        const Seconds offset = own && base(from) ? *own - *base(from) : Seconds(0);
        return own && base(to) ? OptionalDate(*base(to) + offset) : std::nullopt;
    };
    if (from.type != toDo || to.startDate) {
        to.alert = moved(from.alert);
        to.secondAlert = moved(from.secondAlert);
    }
}

void TaskModel::changeStatus(Copy &copy, TaskStatus status)
{
    if (!copy.repeat.isEmpty() && isBanned)
        return;
    copy.status = status;
    copy.expirationDate = status == done ? OptionalDate(now) : std::nullopt;
    copy.lastModificationDate = now;
    saveTaskTemp(copy);
}

void TaskModel::removeFrom(const QString &id, bool withFuture)
{
    if (!live.tasks.count(id))
        return;
    const Row row = live.tasks[id];
    live.tasks.erase(id);
    const auto isLater = [&row](const Row &other) {
        const bool hasStarts = row.startDate && other.startDate;
        if (hasStarts && *row.startDate != *other.startDate)
            return *other.startDate > *row.startDate;
        if (!row.dueDate || !other.dueDate)
            return false;
        return hasStarts ? *other.dueDate >= *row.dueDate : *other.dueDate > *row.dueDate;
    };
    std::erase_if(live.tasks, [&](const auto &one) {
        return withFuture && !row.calendarID.isEmpty() && one.second.calendarID == row.calendarID &&
               isLater(one.second);
    });
}

QString TaskModel::named(const QStringList &ids)
{
    QStringList titles;
    qsizetype tasks = 0;
    for (const QString &id : ids) {
        tasks += live.tasks.count(id) ? 1 : 0;
        // Its projects have no titles.
        const QString title = live.tasks.count(id) ? live.tasks[id].title.simplified() : QString();
        if (!title.isEmpty() && titles.size() < 3)
            titles << u"“"_text + title + u"”"_text;
    }
    if (ids.isEmpty() || (ids.size() == 1 && !titles.isEmpty()))
        return titles.join(QString());
    if (ids.size() == 1)
        return tasks == 1 ? u"1 task"_text : u"1 project"_text;
    const QString kind = tasks == ids.size() ? u" tasks"_text
                         : tasks == 0        ? u" projects"_text
                                             : u" items"_text;
    QString all = QString::number(ids.size()) + kind;
    if (!titles.isEmpty())
        all += u": "_text + titles.join(u", "_text);
    if (!titles.isEmpty() && ids.size() > titles.size())
        all += u" and %1 more"_text.arg(ids.size() - titles.size());
    return all;
}

QString TaskModel::whatStays(const QStringList &tasks, const QStringList &projects) const
{
    qint64 stay = 0;
    for (const auto &[id, row] : live.tasks)
        stay += projects.contains(row.project) && !tasks.contains(id);
    if (stay == 0)
        return {};
    return stay == 1 ? u"\n1 task stays, without a project."_text
                     : u"\n%1 tasks stay, without a project."_text.arg(stay);
}

/// True if the caller was told that something was deleted.
bool TaskModel::deleteTasks(const QStringList &selection)
{
    QStringList repeating, plain, projects;
    for (const QString &id : selection) {
        if (live.projects.count(id))
            projects.append(id);
        else
            (live.tasks[id].repeat.isEmpty() ? plain : repeating).append(id);
    }
    if (repeating.isEmpty()) {
        asks(selection.size() == 1 ? u"Are you sure you want to delete the selected item?"_text
                                   : u"Are you sure you want to delete the selected items?"_text,
             {u"Delete"_text, u"Cancel"_text}, named(plain + projects) + whatStays(plain, projects));
        if (answer != Alert::firstButton)
            return false;
    } else if (!isBanned) {
        const bool isOne = repeating.size() == 1;
        asks(isOne ? u"This is a repeating task."_text : u"This is a repeating tasks."_text,
             {isOne ? u"Delete This Task Only"_text : u"Delete This Tasks Only"_text,
              u"Delete All Future Tasks"_text, u"Cancel"_text},
             named(repeating));
        if (answer == Alert::thirdButton)
            return false;
        const bool withFuture = answer == Alert::secondButton;
        const QString what = withFuture ? u"delete All Future Tasks"_text : u"delete This Task Only"_text;
        effects.log = {u"Start "_text + what, u"End "_text + what};
        for (const QString &id : repeating) {
            removeFrom(id, withFuture);
        }
    }
    for (const QString &id : projects) {
        live.projects.erase(id);
        for (auto &[task, row] : live.tasks)
            row.project = row.project == id ? QString() : row.project;
    }
    for (const QString &id : plain) {
        live.tasks.erase(id);
    }
    commit();
    return true;
}

bool TaskModel::isSameMinute(const Copy &copy, OptionalDate start, OptionalDate due)
{
    return copy.type == appointment && start && due && wholeMinute(*start) == wholeMinute(*due) &&
           says(u"Invalid Date"_text, u"Due Date can't be the same as Start Date!"_text);
}

void TaskModel::saveStartDate(OptionalDate date, Copy &copy)
{
    if (date)
        date = wholeMinute(copy.type == toDo ? startOfDay(*date) : *date);
    if (isSameMinute(copy, date, copy.dueDate))
        return;
    copy.startDate = date;
    if (copy.type == toDo && date && !copy.dueDate && copy.dueSomeDay != true)
        copy.dueDate = endOfDay(*date);
    if (copy.type == appointment && date) {
        if (copy.secondAlert && *copy.secondAlert > *date)
            copy.secondAlert.reset();
        if (copy.alert && *copy.alert > *date && copy.secondAlert)
            copy.alert = std::exchange(copy.secondAlert, std::nullopt);
    }
}

void TaskModel::saveDueDate(OptionalDate date, Copy &copy)
{
    if (date)
        date = wholeMinute(copy.type == toDo ? endOfDay(*date) : *date);
    if (isSameMinute(copy, copy.startDate, date))
        return;
    const OptionalDate alert = copy.alert;
    OptionalDate second = copy.secondAlert;
    if (copy.dueSomeDay == true) {
        copy.alert.reset();
        copy.secondAlert.reset();
    }
    copy.dueDate = date;
    if (!date)
        return;
    const Date end = copy.type == toDo ? endOfDay(*date) : *date;
    if (second && *second > end) {
        second.reset();
        copy.secondAlert.reset();
    }
    if (alert && copy.startDate && *alert > *copy.startDate) {
        copy.alert = second ? second : copy.alert;
        copy.secondAlert.reset();
    }
}
