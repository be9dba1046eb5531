#pragma once

#include "replication/Sealing.h"

#include <QSet>

namespace replication {

/// A file in the folder that cannot be used.
struct FileProblem
{
    QString path;
    /// Why it cannot be taken in, in words.
    QString reason;
};

/// Files that the devices share beside their saves, such as pictures, in one folder for all. In a sealed
/// folder each is sealed under its name. What is the same on two devices is sealed alike, so that both can
/// seal it without a conflict. Any thread.
namespace sealedfiles {

/// What is in a file, sealed or open: one that is open in a sealed folder was not sealed yet. The error says
/// why it cannot be read or opened.
Result<QByteArray> read(const QString &path, const SealingStatus &status);
/// Writes a file, sealed if the folder is, whole or not at all. The error says why it cannot be written; so
/// it is while the folder cannot be used, too.
OptionalError write(const QString &path, const QByteArray &bytes, const SealingStatus &status);

/// Where such files lie.
struct Place
{
    /// The folder that is shared; empty for none.
    QString folder = {};
    /// A folder of this device, for those that could not be written there.
    QString waiting = {};
};

/// Writes all files of a folder as they should be: sealed in a sealed one, open in an open one. Those that
/// wait go there, too. Gives those that cannot be opened.
/// \param fit what was found to be as it should be before, so that it is not read again; those that are now
/// are added. To be forgotten when the key changes.
std::vector<FileProblem> refit(const Place &place, const SealingStatus &status, QSet<QString> &fit);

} // namespace sealedfiles

} // namespace replication
