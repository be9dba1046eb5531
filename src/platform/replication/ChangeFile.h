#pragma once

#include "foundation/Date.h"
#include "foundation/Error.h"
#include "replication/RowDelta.h"

#include <QStringList>

#include <optional>

namespace replication {

/// One save of one device, as it travels. It never changes.
struct ChangeFile
{
    /// Of the model that its tables belong to. A reader that knows less waits until it knows more.
    int schema = 0;
    Dot dot;
    /// The stamp of its values, by the hybrid clock.
    qint64 time = 0;
    /// What the clock of its device showed, in milliseconds since 1970; 0 if that is not known.
    qint64 wall = 0;
    /// What its device knew before.
    VersionVector seen = {};
    /// How the user calls the device.
    QString deviceName = {};
    TableColumns tables = {};
    QByteArray changeset = {};
    /// Rows that count as changed because a detail of theirs was.
    std::vector<RowKey> touched = {};
    /// Devices that the user has removed, each with its last save that was known. One that saves more takes
    /// part again.
    VersionVector removed = {};
    /// What its device has outside of the store; absent if it does not say.
    std::optional<QStringList> holdings = {};
    /// Items outside of the store that rows of it stand for, and that its device has never seen.
    QStringList unseen = {};

    /// What it says, row by row; absent if the changeset is damaged.
    std::optional<std::vector<RowDelta>> deltas(const ManagedObjectModel &model) const;
    /// What the touched rows have to say.
    void addTouched(const ManagedObjectModel &model, std::vector<RowDelta> &list) const;
    /// A mark of eight letters, the SHA-256 of what follows, and that: a map in CBOR (RFC 8949).
    QByteArray toBytes() const;
    /// The error says why they are not such a file: cut off, changed, or of another kind.
    static Result<ChangeFile> fromBytes(const QByteArray &bytes);
};

} // namespace replication
