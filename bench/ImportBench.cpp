#include "BenchContacts.h"
#include "BenchHome.h"
#include "Ratio.h"

namespace {

void importContacts(benchmark::State &state)
{
    BenchHome::shared();
    QByteArray text;
    compare(
        state,
        [&] {
            text = BenchContacts::cards();
            if (BenchContacts::import(text).added != BenchContacts::count)
                state.SkipWithError("Not all were imported");
        },
        [&] { BenchContacts::bareImport(text); });
}
BENCHMARK(importContacts)->Unit(benchmark::kMillisecond)->Iterations(5);

} // namespace
