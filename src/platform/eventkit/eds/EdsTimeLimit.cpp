#include "eventkit/eds/EdsTimeLimit.h"

#include "eventkit/eds/EdsBus.h"

#include <future>
#include <utility>

using Milliseconds = std::chrono::milliseconds;

static std::function<void(Milliseconds)> &waitListener()
{
    static std::function<void(Milliseconds)> listener;
    return listener;
}

void EdsTimeLimit::setListener(std::function<void(Milliseconds)> listener)
{
    waitListener() = std::move(listener);
}

EdsTimeLimit::EdsTimeLimit(Milliseconds limit)
    : length(limit)
    , signal(g_cancellable_new())
{}

/// The library's own calls that wait let nothing else be done on their thread.
void EdsTimeLimit::waitFor(const std::function<void()> &work) const
{
    constexpr Milliseconds step{20};
    const auto begin = std::chrono::steady_clock::now();
    const auto end = std::async(std::launch::async, work);
    while (end.wait_for(step) != std::future_status::ready) {
        const auto waited =
            std::chrono::duration_cast<Milliseconds>(std::chrono::steady_clock::now() - begin);
        if (waited >= length)
            g_cancellable_cancel(signal.get());
        if (waitListener())
            waitListener()(waited);
    }
}

bool EdsPatience::isExhausted()
{
    const auto now = std::chrono::steady_clock::now();
    if (now < until)
        return true;
    if (now < lastPulse + pulseInterval)
        return false;
    if (bus.isDaemonSilent()) {
        until = std::chrono::steady_clock::now() + shortPause;
        return true;
    }
    lastPulse = now;
    return false;
}

void EdsPatience::exhaust()
{
    until = std::chrono::steady_clock::now() + pause;
}

Error EdsPatience::error()
{
    return CalendarError::make(CalendarError::Storage,
                               QStringLiteral("The calendar service does not answer at present."));
}
