#pragma once

#include "store/AppDelegate.h"

#include <QTemporaryDir>

#include <functional>
#include <memory>

struct sqlite3;

/// A home of its own with a store of 100,000 tasks, a launched program on it, and a bare connection to a copy
/// of the store.
class BenchHome
{
public:
    /// The one of this run, made at first use.
    static BenchHome &shared();
    ~BenchHome();

    ManagedObjectContext &context() { return delegate->managedObjectContext(); }
    /// A connection that is set up as the program's own, without anything of the program.
    sqlite3 *bare() { return connection; }
    /// Runs statements on that connection in one transaction, with a session that captures what they change.
    void runCaptured(const std::function<void(sqlite3 *)> &statements);

private:
    BenchHome();

    QTemporaryDir folder;
    std::unique_ptr<AppDelegate> delegate;
    sqlite3 *connection = nullptr;
};
