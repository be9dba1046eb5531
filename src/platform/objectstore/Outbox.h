#pragma once

#include "foundation/Error.h"

#include <QByteArray>
#include <QString>

#include <optional>
#include <vector>

/// A change of something outside of the store that belongs to a commit: it is kept with the commit until it
/// was carried out, and undone with it.
struct OutboxEntry
{
    /// Its place in the order of all entries, given by the store.
    qint64 sequence = 0;
    /// Entries of one commit with the same number belong together: where one cannot be carried out, those
    /// behind it are held back.
    int group = 0;
    /// Where the thing is and what it is called there.
    QString place;
    QString key;
    /// The thing before and after; absent where it is not there.
    std::optional<QByteArray> before;
    std::optional<QByteArray> after;
    /// Of an undo or a redo: what somebody else has changed since stays.
    bool yields = false;

    bool operator==(const OutboxEntry &) const = default;
};

/// Keeps the entries in the table `ObjectStoreOutbox`, and in a form that the undo journal can hold.
namespace outbox {

/// All entries as bytes, and back. An error for bytes that are none.
QByteArray toBytes(const std::vector<OutboxEntry> &entries);
Result<std::vector<OutboxEntry>> fromBytes(const QByteArray &bytes);

/// What takes the entries back: the other way round, the last one first, and yielding.
std::vector<OutboxEntry> inverted(const std::vector<OutboxEntry> &entries);

/// Adds those of another commit, none of which belongs together with one that is there.
void append(std::vector<OutboxEntry> &entries, const std::vector<OutboxEntry> &others);

} // namespace outbox
