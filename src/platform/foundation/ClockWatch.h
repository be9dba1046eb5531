#pragma once

#include <functional>
#include <memory>

class QSocketNotifier;

/// Notices that the system's clock was set, or that the machine has slept, which timers do not.
class [[nodiscard]] ClockWatch
{
public:
    /// Calls the block on the main thread each time, until the end of the object. Where the system has no
    /// such timer it never does.
    explicit ClockWatch(std::function<void()> block);
    ~ClockWatch();
    ClockWatch(const ClockWatch &) = delete;
    ClockWatch &operator=(const ClockWatch &) = delete;

private:
    void arm() const;

    int timer = -1;
    std::unique_ptr<QSocketNotifier> notifier;
};
