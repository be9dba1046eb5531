#include "eventkit/eds/EdsTimeLimit.h"

#include "eventkit/eds/EdsBus.h"

#include <condition_variable>
#include <mutex>

static void cancelAfter(std::chrono::milliseconds limit, const std::stop_token &stop, GCancellable *signal)
{
    std::mutex mutex;
    std::condition_variable_any condition;
    std::unique_lock lock(mutex);
    condition.wait_for(lock, stop, limit, [] { return false; });
    if (!stop.stop_requested())
        g_cancellable_cancel(signal);
}

EdsTimeLimit::EdsTimeLimit(std::chrono::milliseconds limit)
    : signal(g_cancellable_new())
    , watch([limit, target = signal.get()](const std::stop_token &stop) { cancelAfter(limit, stop, target); })
{}

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
