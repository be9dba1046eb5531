#include "foundation/Clock.h"
#include "foundation/Log.h"
#include "foundation/Region.h"
#include "fuzz/RecurrenceText.h"

#include <cstdio>
#include <cstdlib>

extern "C" int LLVMFuzzerInitialize(int *, char ***)
{
    Region::setZone("UTC");
    Clock::setSource([] { return Date::fromUnixSeconds(1'795'254'900); });
    Log::setSink([](const QString &) {});
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QString text = QString::fromUtf8(reinterpret_cast<const char *>(data), qsizetype(size));
    const QString contradiction = contradictionIn(text);
    if (contradiction.isEmpty())
        return 0;
    std::fprintf(stderr, "%s\n", qPrintable(contradiction));
    std::abort();
}
