#pragma once

#include "objectstore/Sqlite.h"
#include "replication/ChangeFile.h"

#include <map>
#include <vector>

namespace replication {

/// The saves of the device that a store was, and that the others do not have under its name: they were not
/// sent yet, or other saves are out under their numbers, since the store was put back from a copy. They go on
/// as saves of the device that the store becomes, in whose transaction all of this happens.
class FormerSaves
{
public:
    /// \param kept the last save that the others have as this store has it; absent if those that were sent
    /// are. A store that was nobody yet has none at all.
    FormerSaves(sqlite::Database &connection, std::optional<qint64> kept);

    bool isEmpty() const { return files.empty(); }
    /// Reads them, and forgets them as saves of the former device.
    OptionalError take();
    /// What is known with the former device only as far as the others have it from it.
    void lower(VersionVector &known) const;
    /// They follow the save `last` of the new device. Gives them in order.
    Result<std::vector<ChangeFile>> renamed(const DeviceId &own, qint64 last);

private:
    bool renameStates(const DeviceId &own);
    qint64 numberFor(qint64 former) const;
    OptionalError failure() const;

    sqlite::Database &database;
    DeviceId former;
    qint64 kept = 0;
    std::vector<ChangeFile> files;
    /// The new numbers by the former ones.
    std::map<qint64, qint64> numbers;
};

} // namespace replication
