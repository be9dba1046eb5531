#pragma once

#include "store/queries/DBWorker.h"

#include <QThreadPool>

#include <atomic>
#include <functional>
#include <memory>

/// Counts the badges of the last save on another thread: with a million tasks that takes longer than a key
/// press or the first picture may wait. Main thread only.
class BackgroundBadges
{
public:
    using Counted = std::function<void(const TaskBadges &)>;

    /// \param counted is called from the main loop after each count.
    explicit BackgroundBadges(Counted counted);
    /// Ends what runs.
    ~BackgroundBadges();
    BackgroundBadges(const BackgroundBadges &) = delete;
    BackgroundBadges &operator=(const BackgroundBadges &) = delete;

    /// Counts what the store in use holds now. While a count runs, one more is remembered and follows it.
    void count();

private:
    void finish(const QString &path, const std::optional<TaskBadges> &badges);

    Counted told;
    QThreadPool thread;
    std::atomic<bool> isCancelled = false;
    bool isRunning = false;
    bool isWantedAgain = false;
    /// Lives as long as this does.
    std::shared_ptr<BackgroundBadges *> self;
};
