#include "eventkit/eds/EdsTimeLimit.h"

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

Error EdsPatience::error()
{
    return CalendarError::make(CalendarError::Storage,
                               QStringLiteral("The calendar service does not answer at present."));
}
