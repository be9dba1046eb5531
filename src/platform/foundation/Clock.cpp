#include "foundation/Clock.h"

#include <chrono>
#include <mutex>

static std::mutex sourceMutex;

static Clock::Source &currentSource()
{
    static Clock::Source source;
    return source;
}

static Date systemNow()
{
    const auto sinceEpoch = std::chrono::system_clock::now().time_since_epoch();
    return Date::fromUnixSeconds(std::chrono::duration<double>(sinceEpoch).count());
}

Date Clock::now()
{
    Source source;
    {
        const std::lock_guard lock(sourceMutex);
        source = currentSource();
    }
    return source ? source() : systemNow();
}

void Clock::setSource(Source source)
{
    const std::lock_guard lock(sourceMutex);
    currentSource() = std::move(source);
}
