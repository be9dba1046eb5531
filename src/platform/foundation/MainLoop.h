#pragma once

#include "foundation/Date.h"

#include <functional>
#include <memory>

/// Work that the main loop does later.
class MainLoop
{
public:
    /// Runs the block once on the main thread, after the delay and never inside this call. May be called from
    /// any thread; without an application object nothing is run.
    static void performDelayed(Seconds delay, std::function<void()> block);
    /// From now on delays are so many times shorter: for tests, which would wait most of their time. One for
    /// what stands in the code.
    static void setPace(double timesFaster);
};

/// Runs a block on the main thread at each interval, from one interval after its making until its end.
class [[nodiscard]] RepeatingTimer
{
public:
    RepeatingTimer(Seconds interval, std::function<void()> block);
    ~RepeatingTimer();
    RepeatingTimer(RepeatingTimer &&other) noexcept;
    RepeatingTimer &operator=(RepeatingTimer &&other) noexcept;

private:
    class Timer;
    std::unique_ptr<Timer> timer;
};
