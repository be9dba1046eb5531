#include "foundation/ClockWatch.h"

#include <QSocketNotifier>

#include <sys/timerfd.h>
#include <unistd.h>

#include <cstdint>

ClockWatch::ClockWatch(std::function<void()> block)
    : timer(timerfd_create(CLOCK_REALTIME, TFD_NONBLOCK | TFD_CLOEXEC))
{
    if (timer < 0)
        return;
    notifier = std::make_unique<QSocketNotifier>(timer, QSocketNotifier::Read);
    QObject::connect(notifier.get(), &QSocketNotifier::activated, notifier.get(),
                     [this, told = std::move(block)] {
                         // It answers that it was cancelled, and stays so until it is armed again.
                         std::uint64_t expirations = 0;
                         [[maybe_unused]] const auto answer = read(timer, &expirations, sizeof expirations);
                         arm();
                         told();
                     });
    arm();
}

ClockWatch::~ClockWatch()
{
    notifier.reset();
    if (timer >= 0)
        close(timer);
}

/// The kernel cancels a timer that waits for a time of day when that clock jumps; the time itself never
/// comes.
void ClockWatch::arm() const
{
    constexpr time_t in2255 = 9'000'000'000;
    itimerspec never = {};
    never.it_value.tv_sec = in2255;
    timerfd_settime(timer, TFD_TIMER_ABSTIME | TFD_TIMER_CANCEL_ON_SET, &never, nullptr);
}
