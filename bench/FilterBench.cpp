#include "BenchHome.h"
#include "Ratio.h"
#include "filters/FilterEntries.h"
#include "store/queries/DBWorker.h"

namespace {

/// An entry with all of its criteria set, and such that many tasks pass.
FilterEntry wholeFilter()
{
    const auto uriOfFirst = [](const auto &list) { return DBWorker::getIdFromObject(list.at(0)); };
    FilterEntry entry = filters::pristineTaskEntry();
    entry[QStringLiteral("Enabled")] = 1;
    const std::map<QString, QVariant> values = {
        {QStringLiteral("Title"), QStringLiteral("ka")},
        {QStringLiteral("Type"), 0},
        {QStringLiteral("Category"), uriOfFirst(DBWorker::allCategories())},
        {QStringLiteral("Status"), 0},
        {QStringLiteral("Priority"), 1},
        {QStringLiteral("Tags"), QVariantList()},
        {QStringLiteral("Location"), filters::noneMarker},
        {QStringLiteral("Delegate"), QVariantList{uriOfFirst(DBWorker::allDelegateds())}},
        {QStringLiteral("Company"), QVariantList()},
        {QStringLiteral("Project"), uriOfFirst(DBWorker::allProjects())}};
    QVariantList criteria = entry[QStringLiteral("Array")].toList();
    for (QVariant &one : criteria) {
        QVariantMap criterion = one.toMap();
        criterion[QStringLiteral("Enabled")] = 1;
        if (const auto value = values.find(criterion[QStringLiteral("Key")].toString());
            value != values.end())
            criterion[QStringLiteral("Value")] = value->second;
        one = criterion;
    }
    entry[QStringLiteral("Array")] = criteria;
    return entry;
}

/// All eleven criteria against the list without a filter.
void filteredList(benchmark::State &state)
{
    BenchHome::shared();
    const FilterEntry filter = wholeFilter();
    compare(
        state, [&] { benchmark::DoNotOptimize(DBWorker::allNotDoneTasks(&filter).size()); },
        [] { benchmark::DoNotOptimize(DBWorker::allNotDoneTasks().size()); });
}
BENCHMARK(filteredList)->Unit(benchmark::kMillisecond)->MinTime(0.5);

/// A filter that is on and hides next to nothing.
void filteredByPeriodList(benchmark::State &state)
{
    BenchHome::shared();
    FilterEntry filter = filters::pristineTaskEntry();
    filter[QStringLiteral("Enabled")] = 1;
    QVariantList criteria = filter[QStringLiteral("Array")].toList();
    for (QVariant &one : criteria) {
        QVariantMap criterion = one.toMap();
        if (criterion[QStringLiteral("Key")] == QStringLiteral("Period"))
            criterion[QStringLiteral("Enabled")] = 1;
        one = criterion;
    }
    filter[QStringLiteral("Array")] = criteria;
    compare(
        state, [&] { benchmark::DoNotOptimize(DBWorker::allNotDoneTasks(&filter).size()); },
        [] { benchmark::DoNotOptimize(DBWorker::allNotDoneTasks().size()); });
}
BENCHMARK(filteredByPeriodList)->Unit(benchmark::kMillisecond)->MinTime(0.5);

} // namespace
