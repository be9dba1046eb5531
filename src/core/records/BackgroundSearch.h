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
    using Found = std::function<void(SearchRows rows)>;

    BackgroundSearch();
    /// Ends what runs.
    ~BackgroundSearch();
    BackgroundSearch(const BackgroundSearch &) = delete;
    BackgroundSearch &operator=(const BackgroundSearch &) = delete;

    /// Calls `found` from the main loop once it is done, unless another search or `cancel` comes before;
    /// where there is much to find, also with the first of it. A search that fails finds nothing, with a line
    /// in the log.
    void find(const QString &text, Found found);
    void cancel();
    /// Gives up former rows elsewhere: letting go of tens of thousands takes its time too.
    void letGo(SearchRows rows);

private:
    QThreadPool thread;
    std::shared_ptr<std::atomic<bool>> isCancelled;
};
