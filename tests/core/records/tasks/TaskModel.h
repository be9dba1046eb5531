#pragma once

#include "foundation/Alert.h"
#include "foundation/Date.h"
#include "store/entities/TaskValues.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <optional>
#include <set>
#include <vector>

/// The rules of tasks once more, as plainly as they can be told, over structs that are copied at will: what a
/// program without calendars must do. All days have 24 hours, so it holds within a month without a change of
/// clocks.
class TaskModel
{
public:
    struct Row
    {
        QString title, details, repeat, calendarID, project, delegateToUser;
        std::optional<TaskType> type;
        std::optional<TaskStatus> status;
        std::optional<Priority> priority;
        std::optional<int> position;
        std::optional<bool> dueSomeDay, wasCreatedOffCalendar;
        OptionalDate startDate, dueDate, alert, secondAlert, endRepeat;
        OptionalDate creationDate, lastModificationDate, expirationDate;
        bool operator==(const Row &) const = default;
    };
    struct Project
    {
        OptionalDate startDate, dueDate;
        std::set<QString> members;
        bool operator==(const Project &) const = default;
    };
    struct Organiser
    {
        std::map<QString, Row> tasks;
        std::map<QString, Project> projects;
        bool operator==(const Organiser &) const = default;
    };
    /// A working copy; `id` is empty until it has a row.
    struct Copy : Row
    {
        QString id;
        bool isNew = false;
    };
    /// What a step did besides changing rows. A notification is its name, a blank and the row.
    struct Effects
    {
        std::vector<AlertQuestion> alerts;
        QStringList posts;
        QStringList log;
    };

    explicit TaskModel(Date startOfMonth)
        : month(startOfMonth)
    {}

    Organiser live;
    Organiser saved;
    Effects effects;
    bool isBanned = false;
    static QString newRow() { return QStringLiteral("new"); }

    void startStep(Date moment, int answerToAll)
    {
        now = moment;
        answer = answerToAll;
        effects = {};
    }
    Copy copyOf(const QString &id) const { return {live.tasks.at(id), id, false}; }
    bool canUndo() const { return !undoable.empty(); }
    bool canRedo() const { return !redoable.empty() && live == saved; }

    bool saveTaskTemp(Copy &copy);
    void changeStatus(Copy &copy, TaskStatus status);
    bool deleteTasks(const QStringList &selection);
    void saveStartDate(OptionalDate date, Copy &copy);
    void saveDueDate(OptionalDate date, Copy &copy);
    Date startOfDay(Date date) const { return month + day * std::floor((date - month) / day); }
    Date endOfDay(Date date) const { return startOfDay(date) + day - Seconds(1); }
    static Date wholeMinute(Date date)
    {
        return Date::fromReferenceSeconds(std::floor(date.referenceSeconds() / 60) * 60);
    }

    void commit()
    {
        if (live == saved)
            return;
        undoable.push_back(std::exchange(saved, live));
        redoable.clear();
    }
    void undo() { step(undoable, redoable); }
    void redo() { step(redoable, undoable); }

private:
    static constexpr Seconds day{86400};
    static constexpr TaskType toDo = TaskType::ToDo, appointment = TaskType::Appointment,
                              emailCall = TaskType::EmailCall;
    static constexpr TaskStatus done = TaskStatus::Done;

    void step(std::vector<Organiser> &from, std::vector<Organiser> &to)
    {
        commit();
        to.push_back(std::exchange(saved, from.back()));
        from.pop_back();
        live = saved;
    }
    void post(const QString &name, const QString &id)
    {
        effects.posts.append(name + u' ' + (id.isEmpty() ? QStringLiteral("-") : id));
    }
    bool says(const QString &title, const QString &message)
    {
        effects.alerts.push_back({title, title, message, {QStringLiteral("OK")}});
        return true;
    }
    void asks(const QString &message, const QStringList &buttons, const std::optional<QString> &about = {})
    {
        // All but the last button delete.
        QList<int> takingAway;
        for (int button = 0; about && button + 1 < buttons.size(); ++button)
            takingAway.append(button);
        effects.alerts.push_back({{}, message, about.value_or(QString()), buttons, takingAway});
    }
    /// What a question about deleting says of records.
    QString named(const QStringList &ids);
    QString whatStays(const QStringList &tasks, const QStringList &projects) const;
    QString refusal(const Copy &copy);
    bool leavesProject(const Copy &copy);
    void write(Copy &copy);
    void spread(const QString &id, bool isThisOnly);
    void copyEdit(const Row &from, Row &to) const;
    void removeFrom(const QString &id, bool withFuture);
    bool isSameMinute(const Copy &copy, OptionalDate start, OptionalDate due);

    Date month;
    Date now;
    int answer = 0;
    std::vector<Organiser> undoable;
    std::vector<Organiser> redoable;
};
