#include "CoreTest.h"
#include "TaskModel.h"

#include "calendarsync/CalendarEvent.h"
#include "records/DatePickerState.h"
#include "records/TaskManager.h"
#include "store/state/NotificationNames.h"

#include <random>

#include <sqlite3.h>

namespace {

using Copy = TaskModel::Copy;
using Row = TaskModel::Row;
using Picker = DatePickerState::Type;

QString shown(const QString &text)
{
    return text.isEmpty() ? u"-"_qs : text;
}
QString shown(OptionalDate date)
{
    return date ? QString::number(date->referenceSeconds(), 'f', 0) : u"-"_qs;
}
template <typename T>
QString shown(std::optional<T> number)
{
    return number ? QString::number(*number) : u"-"_qs;
}

const QString rowColumns =
    u"title, details, repeat, calendarID, project, delegateToUser, type, status, priority, "
    "position, dueSomeDay, wasCreatedOffCalendar, startDate, dueDate, alert, "
    "secondAlert, endRepeat, creationDate, lastModificationDate, expirationDate"_qs;

QString line(const Row &row)
{
    return QStringList({shown(row.title),
                        shown(row.details),
                        shown(row.repeat),
                        shown(row.calendarID),
                        shown(row.project),
                        shown(row.delegateToUser),
                        shown(numberOf(row.type)),
                        shown(numberOf(row.status)),
                        shown(numberOf(row.priority)),
                        shown(row.position),
                        shown(row.dueSomeDay),
                        shown(row.wasCreatedOffCalendar),
                        shown(row.startDate),
                        shown(row.dueDate),
                        shown(row.alert),
                        shown(row.secondAlert),
                        shown(row.endRepeat),
                        shown(row.creationDate),
                        shown(row.lastModificationDate),
                        shown(row.expirationDate)})
        .join(u'|');
}

QStringList lines(const TaskModel::Organiser &organiser)
{
    QStringList all;
    for (const auto &[id, row] : organiser.tasks)
        all.append(id + u'|' + line(row));
    for (const auto &[id, project] : organiser.projects) {
        all.append(id);
        for (const QString &member : project.members)
            all.append(id + u'|' + member);
    }
    all.sort();
    return all;
}

/// Random days of one month, replayed by the program and by the model, which have to agree after every step.
class Replay : public CoreTest, public testing::WithParamInterface<int>
{
protected:
    Replay()
        : random(testSeed() + static_cast<unsigned>(GetParam()))
    {
        NotificationCenter &center = NotificationCenter::defaultCenter();
        observations.push_back(center.addObserver(notifications::taskChange, [this](const TaskPtr &task) {
            posts.append(u"TaskChange "_qs + (task ? task->identifier() : u"-"_qs));
        }));
        observations.push_back(center.addObserver(notifications::coreDataAddNewTask,
                                                  [this] { posts.append(u"CoreDataAddNewTask -"_qs); }));
        sqlite3_open(storePath().toUtf8().constData(), &file);
        const std::vector<std::pair<OptionalDate, OptionalDate>> spans = {
            {{}, {}},
            {month + Seconds(5 * 86400), month + Seconds(20 * 86400 + 3600)},
            {month + Seconds(10 * 86400), {}},
            {{}, month + Seconds(15 * 86400)}};
        for (const auto &[start, due] : spans) {
            const auto project = context().insert<EntityProject>();
            project->setStartDate(start);
            project->setDueDate(due);
            model.live.projects[project->identifier()] = {start, due, {}};
        }
        for (int number = 0; number < 2; ++number)
            contacts.push_back(context().insert<EntityContacts>());
        EXPECT_FALSE(DBWorker::saveContext());
        model.saved = model.live;
        CalendarEvent::resetMessageForBanChangeRepeat();
    }
    ~Replay() override
    {
        CalendarEvent::resetMessageForBanChangeRepeat();
        sqlite3_close(file);
    }

    int pick(int count) { return static_cast<int>(random() % static_cast<unsigned>(count)); }
    template <typename Map>
    QString pickKey(const Map &map)
    {
        return map.empty() ? QString() : std::next(map.begin(), pick(static_cast<int>(map.size())))->first;
    }
    Date someDate()
    {
        constexpr int minutes[] = {0, 0, 540, 540, 600, 1439};
        return month + Seconds(86400 * pick(24) + 60 * minutes[pick(6)] + 20 * pick(3));
    }
    OptionalDate maybeDate() { return pick(4) ? OptionalDate(someDate()) : std::nullopt; }
    TaskPtr taskOf(const QString &id)
    {
        return std::static_pointer_cast<EntityTask>(context().object(EntityTask::entityName, id));
    }

    /// What stands in the file, read by a connection of its own.
    QStringList linesOfFile()
    {
        QStringList all;
        const QStringList queries = {u"SELECT id, "_qs + rowColumns + u" FROM EntityTask"_qs,
                                     u"SELECT id FROM EntityProject"_qs,
                                     u"SELECT source, target FROM EntityProject_delegateToUser"_qs};
        for (const QString &query : queries) {
            sqlite3_stmt *statement = nullptr;
            EXPECT_EQ(sqlite3_prepare_v2(file, query.toUtf8().constData(), -1, &statement, nullptr),
                      SQLITE_OK)
                << sqlite3_errmsg(file);
            while (sqlite3_step(statement) == SQLITE_ROW) {
                QStringList columns;
                for (int column = 0; column < sqlite3_column_count(statement); ++column) {
                    const int type = sqlite3_column_type(statement, column);
                    columns.append(type == SQLITE_TEXT
                                       ? shown(QString::fromUtf8(reinterpret_cast<const char *>(
                                             sqlite3_column_text(statement, column))))
                                   : type == SQLITE_NULL
                                       ? u"-"_qs
                                       : QString::number(sqlite3_column_double(statement, column), 'f', 0));
                }
                all.append(columns.join(u'|'));
            }
            sqlite3_finalize(statement);
        }
        all.sort();
        return all;
    }
    QStringList linesOfContext()
    {
        TaskModel::Organiser organiser;
        for (const TaskPtr &task : DBWorker::getAllTasks())
            organiser.tasks[task->identifier()] = rowOf(MVTask(task));
        for (const auto &project : DBWorker::allProjects()) {
            auto &made = organiser.projects[project->identifier()];
            for (const ContactPtr &contact : project->delegateToUser())
                made.members.insert(contact->identifier());
        }
        return lines(organiser);
    }
    static Row rowOf(const MVTask &task)
    {
        return {task.title,
                task.details,
                task.repeat,
                task.calendarID,
                task.project ? task.project->identifier() : QString(),
                task.delegateToUser ? task.delegateToUser->identifier() : QString(),
                task.type,
                task.status,
                task.priority,
                task.position,
                task.dueSomeDay,
                task.wasCreatedOffCalendar,
                task.startDate,
                task.dueDate,
                task.alert,
                task.secondAlert,
                task.endRepeat,
                task.creationDate,
                task.lastModificationDate,
                task.expirationDate};
    }

    /// Does a step twice and compares all that can be seen of it. `identify` gives the identifier of a row
    /// that the step made.
    template <typename Real, typename Plain>
    void compare(Real real, Plain plain, Copy *copy = nullptr, const MVTask *task = nullptr)
    {
        now = now + Seconds(61);
        Clock::setSource([moment = now] { return moment; });
        const int answer = Alert::firstButton + pick(3);
        model.startStep(now, answer);
        const bool expected = plain();
        posts.clear();
        bool result = false;
        {
            const ScriptedAlerts alerts({answer, answer, answer});
            const LogCapture log;
            result = real();
            EXPECT_EQ(log.lines(), model.effects.log);
            EXPECT_EQ(alerts.asked().size(), model.effects.alerts.size());
            EXPECT_TRUE(alerts.asked() == model.effects.alerts)
                << (alerts.asked().empty() ? "" : qPrintable(alerts.asked().back().informativeText)) << " / "
                << (model.effects.alerts.empty() ? ""
                                                 : qPrintable(model.effects.alerts.back().informativeText));
        }
        EXPECT_EQ(result, expected);
        if (copy && copy->id == TaskModel::newRow())
            nameNewRow(*copy, task->task() ? task->task()->identifier() : u"missing"_qs);
        EXPECT_EQ(posts, model.effects.posts);
        if (copy) {
            EXPECT_EQ(line(rowOf(*task)), line(*copy));
        }
        EXPECT_EQ(linesOfContext(), lines(model.live));
        EXPECT_EQ(linesOfFile(), lines(model.saved));
    }
    void nameNewRow(Copy &copy, const QString &id)
    {
        for (TaskModel::Organiser *one : {&model.live, &model.saved}) {
            auto node = one->tasks.extract(TaskModel::newRow());
            node.key() = id;
            one->tasks.insert(std::move(node));
        }
        model.effects.posts.replaceInStrings(u" new"_qs, u' ' + id);
        copy.id = id;
    }

    template <typename T, typename Held>
    static void set(T MVTask::*field, Held Row::*sameField, const Held &value, MVTask &task, Copy &copy)
    {
        task.*field = value;
        copy.*sameField = value;
    }
    void changeSomething(MVTask &task, Copy &copy)
    {
        switch (pick(10)) {
        case 0:
            return set(&MVTask::title, &Row::title, u"  title %1\n"_qs.arg(pick(100)), task, copy);
        case 1:
            return set(&MVTask::type, &Row::type, std::optional(static_cast<TaskType>(pick(3))), task, copy);
        case 2:
            return set(&MVTask::status, &Row::status, std::optional(static_cast<TaskStatus>(pick(4))), task,
                       copy);
        case 3:
        case 4:
            return set(&MVTask::startDate, &Row::startDate, maybeDate(), task, copy);
        case 5:
            return set(&MVTask::dueDate, &Row::dueDate, maybeDate(), task, copy);
        case 6:
            return set(&MVTask::dueSomeDay, &Row::dueSomeDay, std::optional<bool>(pick(2) == 0), task, copy);
        case 7:
            set(&MVTask::alert, &Row::alert, maybeDate(), task, copy);
            return set(&MVTask::secondAlert, &Row::secondAlert, maybeDate(), task, copy);
        case 8:
            copy.project = pick(3) ? pickKey(model.live.projects) : QString();
            task.project = std::static_pointer_cast<EntityProject>(
                context().object(EntityProject::entityName, copy.project));
            return;
        default:
            task.delegateToUser = pick(3) ? contacts[static_cast<size_t>(pick(2))] : nullptr;
            copy.delegateToUser = task.delegateToUser ? task.delegateToUser->identifier() : QString();
        }
    }
    void usePicker(MVTask &task, Copy &copy)
    {
        DatePickerState picker(static_cast<Picker>(pick(5)));
        const Date date = someDate();
        compare(
            [&] {
                task.datePickerClickButtonDone(picker, date);
                return true;
            },
            [&] {
                if (picker.typePicker == Picker::StartDate)
                    model.saveStartDate(date, copy);
                else if (picker.typePicker == Picker::DueDate)
                    model.saveDueDate(date, copy);
                else if (picker.typePicker == Picker::EndRepeat)
                    copy.endRepeat = model.endOfDay(date);
                else
                    (picker.typePicker == Picker::Alert ? copy.alert : copy.secondAlert) =
                        TaskModel::wholeMinute(date);
                return true;
            },
            &copy, &task);
    }
    void edit(MVTask &task, Copy &copy)
    {
        for (int changes = pick(4); changes >= 0; --changes)
            changeSomething(task, copy);
        for (int pickers = pick(3); pickers > 0; --pickers)
            usePicker(task, copy);
        for (int saves = pick(5) ? 1 : 2; saves > 0; --saves)
            compare([&] { return TaskManager::saveTaskTemp(task, pick(2)); },
                    [&] { return model.saveTaskTemp(copy); }, &copy, &task);
    }

    void addTask()
    {
        MVTask task;
        Copy copy;
        set(&MVTask::type, &Row::type, std::optional(static_cast<TaskType>(pick(3))), task, copy);
        set(&MVTask::status, &Row::status, std::optional(TaskStatus::Open), task, copy);
        set(&MVTask::priority, &Row::priority, std::optional(Priority::None), task, copy);
        set(&MVTask::details, &Row::details, u"details"_qs, task, copy);
        edit(task, copy);
    }
    void editTask()
    {
        const QString id = pickKey(model.live.tasks);
        if (id.isEmpty())
            return;
        MVTask task(taskOf(id));
        Copy copy = model.copyOf(id);
        edit(task, copy);
    }
    /// Rows as a calendar made them while it could be reached.
    void addSeries()
    {
        const QString series = u"series %1"_qs.arg(pick(1000));
        const auto type = static_cast<TaskType>(pick(3));
        const int rowsOfADay = 1 + pick(2);
        for (int number = 0; number < 4; ++number) {
            const Date day = month + Seconds(86400 * (3 + 3 * (number / rowsOfADay)));
            const Seconds start(type == TaskType::ToDo ? 0 : 32400);
            Row row;
            row.title = series;
            row.calendarID = series;
            row.repeat = u"RRULE:FREQ=DAILY"_qs;
            row.type = type;
            row.status = TaskStatus::Open;
            row.startDate = type == TaskType::EmailCall ? std::nullopt : OptionalDate(day + start);
            row.dueDate = day + (type == TaskType::ToDo ? Seconds(86340) : Seconds(36000));
            const auto task = context().insert<EntityTask>();
            task->setTitle(row.title);
            task->setCalendarID(row.calendarID);
            task->setRepeat(row.repeat);
            task->setType(row.type);
            task->setStatus(row.status);
            task->setStartDate(row.startDate);
            task->setDueDate(row.dueDate);
            model.live.tasks[task->identifier()] = row;
        }
        EXPECT_FALSE(DBWorker::saveContext());
        model.commit();
    }
    void changeStatus()
    {
        const QString id = pickKey(model.live.tasks);
        if (id.isEmpty())
            return;
        MVTask task(taskOf(id));
        Copy copy = model.copyOf(id);
        const auto status = static_cast<TaskStatus>(pick(4));
        compare(
            [&] {
                task.changeStatusType(status, true);
                return true;
            },
            [&] {
                model.changeStatus(copy, status);
                return true;
            },
            &copy, &task);
    }
    void deleteSome()
    {
        QStringList selection;
        std::vector<ObjectPtr> objects;
        for (int count = pick(4); count >= 0; --count) {
            const bool isProject = pick(12) == 0;
            const QString id = isProject ? pickKey(model.live.projects) : pickKey(model.live.tasks);
            if (id.isEmpty() || selection.contains(id))
                continue;
            selection.append(id);
            objects.push_back(
                context().object(isProject ? EntityProject::entityName : EntityTask::entityName, id));
        }
        bool wasTold = false;
        compare(
            [&] {
                TaskManager::deleteTasks(objects, [&wasTold] { wasTold = true; });
                return wasTold;
            },
            [&] { return model.deleteTasks(selection); });
    }
    void undoOrRedo()
    {
        const bool isUndo = pick(3) != 0;
        if (isUndo ? !model.canUndo() : !model.canRedo())
            return;
        compare([&] { return !(isUndo ? context().undo() : context().redo()); },
                [&] {
                    isUndo ? model.undo() : model.redo();
                    return true;
                });
    }
    void changeBan()
    {
        const LogCapture quiet;
        model.isBanned = pick(4) == 0;
        CalendarEvent::resetMessageForBanChangeRepeat();
        if (model.isBanned)
            CalendarEvent::tryCreateMessageForBanEditingRepeatTask();
    }

    std::mt19937 random;
    const Date month = localDate(2026, 11, 1);
    Date now = localDate(2026, 11, 21, 9, 15);
    TaskModel model{month};
    std::vector<ContactPtr> contacts;
    std::vector<Observation> observations;
    QStringList posts;
    sqlite3 *file = nullptr;
};

TEST_P(Replay, OfGeneratedDaysAgreesWithThePlainRules)
{
    constexpr int steps = 300;
    for (int step = 0; step < steps && !HasFailure(); ++step) {
        const int kind = pick(20);
        SCOPED_TRACE("step " + std::to_string(step) + " of kind " + std::to_string(kind));
        if (kind < 5)
            addTask();
        else if (kind < 11)
            editTask();
        else if (kind < 12)
            addSeries();
        else if (kind < 14)
            changeStatus();
        else if (kind < 16)
            deleteSome();
        else if (kind < 19)
            undoOrRedo();
        else
            changeBan();
    }
    quit();
    EXPECT_EQ(linesOfFile(), lines(model.live));
}

INSTANTIATE_TEST_SUITE_P(Seeds, Replay, testing::Range(0, 3));

} // namespace
