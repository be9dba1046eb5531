#include "store/queries/BackgroundBadges.h"

#include "foundation/Log.h"
#include "foundation/MainLoop.h"
#include "objectstore/StoreReader.h"
#include "store/entities/MainContext.h"

BackgroundBadges::BackgroundBadges(Counted counted)
    : told(std::move(counted))
    , self(std::make_shared<BackgroundBadges *>(this))
{
    thread.setMaxThreadCount(1);
}

BackgroundBadges::~BackgroundBadges()
{
    isCancelled = true;
    thread.waitForDone();
}

/// Absent if the store cannot be read, or the count was cancelled.
static std::optional<TaskBadges> counted(const QString &path, const ManagedObjectModel &model,
                                         const std::vector<BadgePart> &parts,
                                         const std::atomic<bool> &isCancelled)
{
    auto reader = StoreReader::open(path, model, isCancelled);
    if (!reader) {
        Log::line(QStringLiteral("Cannot count: %1").arg(reader.error().message));
        return std::nullopt;
    }
    TaskBadges badges;
    for (const BadgePart &part : parts) {
        const auto rows = (*reader)->count(part.request);
        if (!rows)
            return std::nullopt;
        part.of(badges) += *rows;
    }
    return badges;
}

void BackgroundBadges::count()
{
    isWantedAgain = isRunning;
    if (std::exchange(isRunning, true))
        return;
    const ManagedObjectContext &context = mainContext();
    thread.start([this, living = std::weak_ptr(self), path = context.path(), &model = context.model(),
                  parts = DBWorker::badgeParts()] {
        const auto badges = counted(path, model, parts, isCancelled);
        MainLoop::performDelayed(Seconds(0), [living, path, badges] {
            if (const auto alive = living.lock())
                (*alive)->finish(path, badges);
        });
    });
}

void BackgroundBadges::finish(const QString &path, const std::optional<TaskBadges> &badges)
{
    isRunning = false;
    if (badges && path == mainContext().path())
        told(*badges);
    if (std::exchange(isWantedAgain, false))
        count();
}
