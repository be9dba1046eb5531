#include "foundation/Clock.h"
#include "foundation/Log.h"
#include "foundation/Region.h"
#include "fuzz/Targets.h"

#include <cstdio>
#include <cstdlib>
#include <string_view>

namespace {

const FuzzTarget &target()
{
    static const FuzzTarget *const found =
        std::find_if(fuzzTargets.begin(), fuzzTargets.end(),
                     [](const FuzzTarget &one) { return std::string_view(one.name) == MORVANE_FUZZ_TARGET; });
    return *found;
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int *, char ***)
{
    Region::setZone("UTC");
    Clock::setSource([] { return Date::fromUnixSeconds(1'795'254'900); });
    Log::setSink([](const QString &) {});
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QByteArray bytes(reinterpret_cast<const char *>(data), qsizetype(size));
    const QString contradiction = target().contradictionIn(bytes);
    if (contradiction.isEmpty())
        return 0;
    std::fprintf(stderr, "%s\n", qPrintable(contradiction));
    std::abort();
}
