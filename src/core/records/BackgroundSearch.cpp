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

    SearchRows run(const searchhits::FirstHits &first) const
    {
        auto reader = StoreReader::open(path, model, *isCancelled);
        if (!reader) {
            Log::line(QStringLiteral("Cannot search: %1").arg(reader.error().message));
            return searchhits::rows({}, query.headings);
        }
        auto hits = searchhits::read(**reader, query, first);
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
        const auto tell = [isGivenUp = search.isCancelled, found](const SearchRows &rows) {
            MainLoop::performDelayed(Seconds(0), [isGivenUp, found, rows] {
                if (!*isGivenUp)
                    found(rows);
            });
        };
        tell(search.run([&](std::vector<SearchHit> hits) {
            tell(searchhits::rows(std::move(hits), search.query.headings));
        }));
    });
}
