#pragma once

#include "records/SearchHits.h"

#include <QThreadPool>

#include <atomic>
#include <functional>
#include <memory>

/// Searches the last save of the store on another thread, so that keys and pictures never wait for it. Only
/// the last search counts: a new one ends the one before. Main thread only.
class BackgroundSearch
{
public:
    using Found = std::function<void(std::vector<SearchHit> hits)>;

    BackgroundSearch();
    /// Ends what runs.
    ~BackgroundSearch();
    BackgroundSearch(const BackgroundSearch &) = delete;
    BackgroundSearch &operator=(const BackgroundSearch &) = delete;

    /// Calls `found` from the main loop once it is done, unless another search or `cancel` comes before. A
    /// search that fails finds nothing, with a line in the log.
    void find(const QString &text, Found found);
    void cancel();

private:
    QThreadPool thread;
    std::shared_ptr<std::atomic<bool>> isCancelled;
};
