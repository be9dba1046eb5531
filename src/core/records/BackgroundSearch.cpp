#include "records/BackgroundSearch.h"

#include "foundation/Log.h"
#include "foundation/MainLoop.h"
#include "objectstore/StoreReader.h"
#include "store/entities/MainContext.h"

BackgroundSearch::BackgroundSearch()
{
    thread.setMaxThreadCount(1);
}

BackgroundSearch::~BackgroundSearch()
{
    cancel();
    thread.waitForDone();
}

void BackgroundSearch::cancel()
{
    if (isCancelled)
        *isCancelled = true;
}

void BackgroundSearch::letGo(SearchRows rows)
{
    thread.start([held = std::move(rows)]() mutable { held.reset(); });
}

namespace {

struct Search
{
    QString path;
    const ManagedObjectModel &model;
    searchhits::Query query;
    std::shared_ptr<const std::atomic<bool>> isCancelled;

    SearchRows run() const
    {
        auto reader = StoreReader::open(path, model, *isCancelled);
        if (!reader) {
            Log::line(QStringLiteral("Cannot search: %1").arg(reader.error().message));
            return searchhits::rows({}, query.headings);
        }
        auto hits = searchhits::read(**reader, query);
        if (!hits && !*isCancelled)
            Log::line(QStringLiteral("Cannot search the store"));
        return searchhits::rows(hits ? std::move(*hits) : std::vector<SearchHit>(), query.headings);
    }
};

} // namespace

void BackgroundSearch::find(const QString &text, Found found)
{
    cancel();
    isCancelled = std::make_shared<std::atomic<bool>>(false);
    const ManagedObjectContext &context = mainContext();
    const Search search{context.path(),
                        context.model(),
                        {context.storeIdentifier(), text, preferredNameOrder(), searchhits::headings()},
                        isCancelled};
    thread.start([search, found = std::move(found)] {
        if (*search.isCancelled)
            return;
        const SearchRows rows = search.run();
        MainLoop::performDelayed(Seconds(0), [isGivenUp = search.isCancelled, found, rows] {
            if (!*isGivenUp)
                found(rows);
        });
    });
}
