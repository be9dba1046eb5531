#include "records/SearchIndexSweep.h"

#include "foundation/UserDefaults.h"
#include "objectstore/ManagedObjectContext.h"
#include "store/entities/Entities.h"
#include "store/queries/DBWorker.h"
#include "store/state/SettingsKeys.h"

#include <algorithm>
#include <set>

/// So many texts are looked at without being felt.
static constexpr std::size_t textsAtOnce = 1000;

bool SearchIndexSweep::step(ManagedObjectContext &context)
{
    UserDefaults &defaults = UserDefaults::standard();
    const QStringList swept = defaults.object(settings::sweptSearchIndexes).toStringList();
    if (swept.contains(context.storeIdentifier()) || context.transaction() || context.hasChanges())
        return false;
    if (store != context.storeIdentifier()) {
        store = context.storeIdentifier();
        position = 0;
        const auto all = context.fetchObjects(EntitySearchIndex::fetchRequest());
        rows.assign(all.rows().begin(), all.rows().end());
    }
    const std::size_t end = std::min(position + textsAtOnce, rows.size());
    std::set<QString> uris;
    context.visit(
        EntitySearchIndex::fetchRequest().among({rows.begin() + static_cast<std::ptrdiff_t>(position),
                                                 rows.begin() + static_cast<std::ptrdiff_t>(end)}),
        {"objectId"}, [&uris](const RowReader &row) { uris.insert(row.text(0)); });
    std::vector<QString> gone;
    for (const QString &uri : uris) {
        if (!context.objectForUri(uri))
            gone.push_back(uri);
    }
    if (!gone.empty()) {
        Transaction sweeping(context, ChangeAuthor::Program);
        context.deleteRows(
            EntitySearchIndex::fetchRequest().where(Predicate::format("objectId in %@", gone)));
        if (!DBWorker::tellOfFailure(sweeping.commit()))
            return false;
    }
    position = end;
    if (position < rows.size())
        return true;
    rows.clear();
    defaults.setObject(settings::sweptSearchIndexes, swept + QStringList(store));
    defaults.synchronize();
    return false;
}
