#pragma once

#include "eventkit/eds/EdsGlib.h"

#include <chrono>
#include <functional>
#include <type_traits>

/// Lets a call that gets its `cancellable` end after a time, whatever the daemon does, and tells meanwhile
/// how long it has been taking.
class EdsTimeLimit
{
public:
    /// For what the daemon answers out of its own memory or files.
    static constexpr std::chrono::milliseconds forReading{5'000};
    /// For what may have to reach a server.
    static constexpr std::chrono::milliseconds forWriting{30'000};

    /// As `CalendarBackend::setWaitListener`.
    static void setListener(std::function<void(std::chrono::milliseconds)> listener);

    explicit EdsTimeLimit(std::chrono::milliseconds limit);

    /// Makes a call on a thread of its own, waits for its end and answers what it answered.
    template <typename Call>
    std::invoke_result_t<Call> run(const Call &call) const
    {
        std::invoke_result_t<Call> answer{};
        waitFor([&] { answer = call(); });
        return answer;
    }
    GCancellable *cancellable() const { return signal.get(); }
    bool isExceeded() const { return g_cancellable_is_cancelled(signal.get()); }

private:
    void waitFor(const std::function<void()> &work) const;

    std::chrono::milliseconds length;
    GlibObject<GCancellable> signal;
};

class EdsBus;

/// Keeps the program from waiting for a daemon that does not answer: before a call its pulse is felt, and
/// after a silence it is not asked again for a while, so that a program with many calendars does not wait for
/// each of them in turn.
class EdsPatience
{
public:
    explicit EdsPatience(EdsBus &sessionBus)
        : bus(sessionBus)
    {}

    /// Whether the daemon should not be asked now. To be asked before each call; it takes a tenth of a second
    /// at most, more only where the machine is so busy that nothing answers sooner.
    bool isExhausted();
    /// A call was not answered in its time.
    void exhaust();
    static Error error();

private:
    /// After a call that was not answered, for which the user has waited long.
    static constexpr std::chrono::seconds pause{30};
    /// After a pulse that was not felt.
    static constexpr std::chrono::seconds shortPause{3};
    /// A daemon that was alive so short a time ago is believed to be.
    static constexpr std::chrono::milliseconds pulseInterval{100};

    EdsBus &bus;
    std::chrono::steady_clock::time_point until;
    std::chrono::steady_clock::time_point lastPulse;
};
