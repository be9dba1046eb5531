#include "foundation/Alert.h"
#include "foundation/Localization.h"
#include "foundation/Log.h"
#include "foundation/MainLoop.h"
#include "store/entities/MainContext.h"
#include "store/queries/DBWorker.h"
#include "store/state/CoreContext.h"

#include <map>
#include <utility>

// What the query layer writes: saves, and the few changes that are its own.

static void logFailure(const Error &error)
{
    Log::line(QStringLiteral("Unresolved error %1, %2").arg(error.message, error.domain));
    // Rows changed elsewhere are merged while they are written, so that no conflict is ever left over.
    Log::line(QStringLiteral("conflict array: (null)"));
}

OptionalError DBWorker::saveContext()
{
    ManagedObjectContext *context = CoreContext::current().store();
    if (!context)
        return std::nullopt;
    OptionalError error = context->save();
    if (error)
        logFailure(*error);
    return error;
}

namespace {

/// What the user has heard of failures.
struct Told
{
    bool sinceLastSuccess = false;
    bool byThisCommand = false;
};

Told &told()
{
    static Told heard;
    return heard;
}

bool tell(const OptionalError &error, DBWorker::Occasion occasion)
{
    const ManagedObjectContext *context = CoreContext::current().openedStore();
    if (!error) {
        if (!context || !context->hasChanges())
            told().sinceLastSuccess = false;
        return true;
    }
    logFailure(*error);
    const bool isOfCommand = occasion == DBWorker::Occasion::Command;
    const bool isKnown = isOfCommand ? told().byThisCommand : told().sinceLastSuccess;
    if (isKnown)
        return false;
    told() = {true, true};
    Alert::run({localized(QStringLiteral("Your changes could not be saved")),
                localized(QStringLiteral("Your changes could not be saved")),
                error->message + QStringLiteral("\n\n") +
                    localized(QStringLiteral("They are kept, and saved as soon as that is possible.")),
                {localized(QStringLiteral("OK"))}});
    // The command ends before the main loop comes round.
    MainLoop::performDelayed(Seconds(0), [] { told().byThisCommand = false; });
    return false;
}

} // namespace

bool DBWorker::saveOrTell(Occasion occasion)
{
    ManagedObjectContext *context = CoreContext::current().store();
    return !context || tell(context->save(), occasion);
}

bool DBWorker::saveStep(const QString &name)
{
    ManagedObjectContext *context = CoreContext::current().store();
    if (!context)
        return true;
    Transaction step(*context, ChangeAuthor::User, name);
    return tellOfFailure(step.commit());
}

bool DBWorker::tellOfFailure(const OptionalError &error)
{
    const ManagedObjectContext *context = CoreContext::current().openedStore();
    const ChangeAuthor author = context ? context->author() : ChangeAuthor::User;
    const bool isOfUser =
        author == ChangeAuthor::User || author == ChangeAuthor::Undo || author == ChangeAuthor::Import;
    return tell(error, isOfUser ? Occasion::Command : Occasion::Program);
}

namespace {

/// Moves the tasks at some places to the place of a target. What lay below the target pushes it down by one
/// as it is taken out; what lay behind it is put in at it, one by one.
void moveTo(std::vector<TaskPtr> &tasks, const std::set<size_t> &places, size_t target)
{
    size_t offset = 0;
    for (auto place = places.rbegin(); place != places.rend(); ++place) {
        const bool isBefore = *place < target;
        const auto taken = tasks.begin() + static_cast<std::ptrdiff_t>(isBefore ? *place : *place + offset);
        TaskPtr task = *taken;
        tasks.erase(taken);
        if (isBefore)
            --target;
        else
            ++offset;
        tasks.insert(tasks.begin() + static_cast<std::ptrdiff_t>(target), std::move(task));
    }
}

} // namespace

void DBWorker::newPositionInboxTask(const std::set<int> &rows, int toIndex,
                                    const std::vector<TaskPtr> &currentTasks)
{
    if (currentTasks.empty() || toIndex < 0)
        return;
    const size_t targetRow = std::min(static_cast<size_t>(toIndex), currentTasks.size() - 1);
    const TaskList inbox = allInboxTasks();
    const auto placeOf = [&inbox](const TaskPtr &task) { return task ? inbox.indexOf(*task) : -1; };
    const int target = placeOf(currentTasks[targetRow]);
    if (target < 0)
        return;
    std::set<size_t> places;
    for (const int row : rows) {
        const bool isRow = row >= 0 && static_cast<size_t>(row) < currentTasks.size();
        const int place = isRow ? placeOf(currentTasks[static_cast<size_t>(row)]) : -1;
        if (place >= 0)
            places.insert(static_cast<size_t>(place));
    }
    std::vector<TaskPtr> tasks;
    for (TaskPtr task : inbox)
        tasks.push_back(std::move(task));
    moveTo(tasks, places, static_cast<size_t>(target));
    for (size_t place = 0; place < tasks.size(); ++place)
        tasks[place]->setPosition(static_cast<int>(place) + 1);
    saveStep(QStringLiteral("Change Order"));
}

std::shared_ptr<EntityLocation> DBWorker::locationOf(const QString &title)
{
    return mainContext().fetchFirst<EntityLocation>(
        EntityLocation::fetchRequest().where(Predicate::format("title = %@", title)));
}

std::shared_ptr<EntityLocation> DBWorker::saveLocation(const QString &title, std::optional<double> latitude,
                                                       std::optional<double> longitude)
{
    auto location = locationOf(title);
    if (location)
        return location;
    location = mainContext().insert<EntityLocation>();
    location->setTitle(title);
    location->setLatitude(latitude);
    location->setLongitude(longitude);
    saveOrTell();
    return location;
}

void DBWorker::allSearchObjRemove()
{
    mainContext().deleteRows(EntitySearchIndex::fetchRequest());
    saveOrTell();
}

void DBWorker::setNilForCalendarIDTasks()
{
    std::map<QString, TaskPtr> kept;
    for (const TaskPtr &task : getAllTasksWithOnlyCalendarIDs()) {
        if (task && !kept.try_emplace(task->calendarID(), task).second)
            mainContext().deleteObject(task);
    }
    for (const auto &[identifier, task] : kept) {
        task->setCalendarID(QString());
        task->setTypeCalendarID(QString());
        task->setRepeat(QString());
        task->setEndRepeat(std::nullopt);
    }
    saveOrTell();
}
