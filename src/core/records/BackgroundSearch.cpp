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

namespace {

struct Search
{
    QString path;
    const ManagedObjectModel &model;
    QString storeIdentifier;
    QString text;
    NameOrder order;
    std::shared_ptr<const std::atomic<bool>> isCancelled;

    std::vector<SearchHit> run() const
    {
        auto reader = StoreReader::open(path, model, *isCancelled);
        if (!reader) {
            Log::line(QStringLiteral("Cannot search: %1").arg(reader.error().message));
            return {};
        }
        auto hits = searchhits::read(**reader, storeIdentifier, text, order);
        if (!hits && !*isCancelled)
            Log::line(QStringLiteral("Cannot search the store"));
        return hits.value_or(std::vector<SearchHit>());
    }
};

} // namespace

void BackgroundSearch::find(const QString &text, Found found)
{
    cancel();
    isCancelled = std::make_shared<std::atomic<bool>>(false);
    const ManagedObjectContext &context = mainContext();
    const Search search{context.path(), context.model(),      context.storeIdentifier(),
                        text,           preferredNameOrder(), isCancelled};
    thread.start([search, found = std::move(found)] {
        if (*search.isCancelled)
            return;
        auto hits = std::make_shared<std::vector<SearchHit>>(search.run());
        MainLoop::performDelayed(Seconds(0), [search, found, hits] {
            if (!*search.isCancelled)
                found(std::move(*hits));
        });
    });
}
