#pragma once

#include "eventkit/eds/EdsGlib.h"

#include <chrono>
#include <thread>

/// Lets a call that gets its `cancellable` end after a time, whatever the daemon does.
class EdsTimeLimit
{
public:
    /// For what the daemon answers out of its own memory or files.
    static constexpr std::chrono::milliseconds forReading{5'000};
    /// For what may have to reach a server.
    static constexpr std::chrono::milliseconds forWriting{30'000};

    explicit EdsTimeLimit(std::chrono::milliseconds limit);

    GCancellable *cancellable() const { return signal.get(); }
    bool isExceeded() const { return g_cancellable_is_cancelled(signal.get()); }

private:
    GlibObject<GCancellable> signal;
    std::jthread watch;
};

/// A daemon that did not answer once is not asked again for a while, so that a program with many calendars
/// does not wait for each of them in turn.
class EdsPatience
{
public:
    bool isExhausted() const { return std::chrono::steady_clock::now() < until; }
    void exhaust() { until = std::chrono::steady_clock::now() + pause; }
    static Error error();

private:
    static constexpr std::chrono::seconds pause{30};

    std::chrono::steady_clock::time_point until;
};
