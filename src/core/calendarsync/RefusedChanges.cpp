#include "calendarsync/RefusedChanges.h"

#include "calendarsync/CalendarPass.h"
#include "calendarsync/CalendarStoreState.h"
#include "calendarsync/RecordsTransaction.h"
#include "foundation/Alert.h"
#include "foundation/Localization.h"
#include "foundation/MainLoop.h"
#include "store/entities/MainContext.h"
#include "store/queries/DBWorker.h"
#include "store/state/CoreContext.h"

#include <algorithm>

namespace refusedchanges {

namespace {

using calendarstore::state;

std::vector<TaskPtr> rowsOf(const QString &uid)
{
    std::vector<TaskPtr> rows;
    for (const TaskPtr &row : mainContext().fetch<EntityTask>(
             EntityTask::fetchRequest().where(Predicate::format("calendarID == %@", uid)))) {
        if (row)
            rows.push_back(row);
    }
    return rows;
}

/// The rows of events that were not made belong to what these were to be a part of, or to no event.
void partFromMissingEvents(const std::vector<ItemChange> &group)
{
    const auto kept =
        std::ranges::find_if(group, [](const ItemChange &one) { return one.before.has_value(); });
    for (const ItemChange &change : group) {
        const bool isElsewhere = std::ranges::any_of(
            group, [&change](const ItemChange &one) { return one.before && one.uid == change.uid; });
        if (change.before || isElsewhere)
            continue;
        for (const TaskPtr &row : rowsOf(change.uid))
            row->setCalendarID(kept == group.end() ? QString() : kept->uid);
    }
}

void settleNow()
{
    QStringList titles;
    {
        RecordsTransaction transaction({}, ChangeAuthor::Pass);
        for (const auto &group : std::exchange(state().refused, {})) {
            for (const ItemChange &change : group) {
                for (const TaskPtr &row : rowsOf(change.uid))
                    titles.append(row->title());
            }
            partFromMissingEvents(group);
        }
        DBWorker::tellOfFailure(transaction.commit());
    }
    CalendarPass::syncCalendarToAppWithTask(nullptr);
    titles.removeDuplicates();
    constexpr qsizetype mostTitles = 5;
    if (titles.size() > mostTitles)
        titles = titles.first(mostTitles) + QStringList(QStringLiteral("…"));
    const QString message = localized(QStringLiteral("Your calendar did not accept a change."));
    const QString information = localized(QStringLiteral(
        "What it holds is shown again. A new task is kept here, without an entry in the calendar."));
    Alert::run({{},
                message,
                titles.isEmpty() ? information
                                 : titles.join(QStringLiteral(", ")) + QStringLiteral("\n\n") + information,
                {localized(QStringLiteral("OK"))}});
}

void settleSoon(Seconds delay)
{
    static constexpr Seconds aWhile{1};
    MainLoop::performDelayed(delay, [] {
        ManagedObjectContext *context = CoreContext::current().openedStore();
        if (state().refused.empty() || !context)
            return;
        if (Alert::isAsking() || context->transaction() || CalendarPass::isPassing())
            settleSoon(aWhile);
        else
            settleNow();
    });
}

} // namespace

void settle(std::vector<std::vector<ItemChange>> refused)
{
    if (refused.empty())
        return;
    // What stands already is told with them.
    const bool isNew = state().refused.empty();
    std::ranges::move(refused, std::back_inserter(state().refused));
    if (isNew)
        settleSoon(Seconds(0));
}

} // namespace refusedchanges
