#pragma once

#include "replication/KeyFile.h"

#include <QLibrary>

#include <memory>
#include <mutex>
#include <set>

namespace replication {

enum class SealingState {
    /// The folder is not sealed.
    Open,
    /// It is, and this device has the key.
    Sealed,
    /// It is, and this device has not got the key.
    NeedsPassphrase,
    /// It is, and cannot be used here for another reason.
    Unusable
};

/// How it stands with the key of the shared folder.
struct SealingStatus
{
    SealingState state = SealingState::Open;
    /// Only if sealed.
    std::shared_ptr<const Sealer> sealer = {};
    /// Opens what is sealed with former keys, in a folder whose sealing ended or whose new key this device
    /// does not have; null without any.
    std::shared_ptr<const Sealer> formerSealer = {};
    /// The marks of all keys that the folder has had.
    std::set<QByteArray> marks = {};
    /// Why nothing can be exchanged, in words; empty if it can.
    QString problem = {};

    bool canExchange() const { return problem.isEmpty(); }
    /// Of the key that seals; empty if none does.
    QByteArray keyMark() const { return sealer ? sealer->keyMark() : QByteArray(); }
    /// Whether a file that begins so is as a file is to be written now.
    bool isFit(const QByteArray &head) const { return Sealer::keyMarkIn(head) == keyMark(); }
    /// What is in a file. In a sealed folder an open file is an error, in an open one a sealed file is, if
    /// its key is not known. Then the code is `unknownKey`: the folder is sealed, though nothing else says
    /// so.
    Result<QByteArray> opened(const QByteArray &bytes, const QString &name) const;
    static constexpr int unknownKey = 1;
};

/// Whether the folder that the devices share is sealed, and the key of this device.
///
/// The folder says so by key files (see `KeyFile`), which follow each other: the first brings a key, the next
/// another key or the end of the sealing. The latest counts; where two devices each wrote the next one, that
/// is the same one everywhere, and one that seals. Each key file also holds the keys before it, sealed, so
/// that who has the latest key reads all that was ever sealed. Nothing else tells the new key, so that
/// whoever knows a former passphrase, or has a stolen computer, does not read what is written afterwards.
///
/// - A device that has a former key goes on with it until the new key file arrives; what it writes, all can
///   read. Then it exchanges nothing until the new passphrase is entered, and afterwards seals its own files
///   anew. What is sealed with a key that has not arrived waits.
/// - The end discloses a value that only who had the key can know and of which the key file holds the digest,
///   so that every device, even one that never had the key, believes this end and no other. Until it arrives,
///   a device goes on sealing. Then each device rewrites its own files open.
/// - A device keeps the keys, not the passphrase, in a file for its owner only, together with the key files.
///   What it keeps stands before it is published: a change that was interrupted is finished at the next look,
///   and a key file that has gone from the folder is written again. So a sealed folder never counts as open
///   just because a file is missing.
///
/// All files are read at each call. Any thread.
class Sealing
{
public:
    /// \param contentFolder where the devices exchange their saves.
    /// \param keptKeyPath where this device keeps its keys.
    /// \param libraryPath the library that seals, without its suffix; loaded when it is needed.
    Sealing(QString contentFolder, QString keptKeyPath, const QString &libraryPath);

    /// The folder must be there.
    SealingStatus look() const;
    /// Seals a folder that is open, with a new key. It takes a second. The error says why it stays open; a
    /// folder that another device has sealed meanwhile is not sealed again.
    OptionalError begin(const QString &passphrase) const;
    /// Gives this device the key of a sealed folder. It takes a second. The error says that the passphrase is
    /// another one, or why the key cannot be made or kept.
    OptionalError enter(const QString &passphrase) const;
    /// Seals with a new key from now on. It takes a second. The error says why the former one stays.
    OptionalError change(const QString &passphrase) const;
    /// Ends the sealing for all devices. The error says why the folder stays sealed.
    OptionalError end() const;

private:
    struct Kept;
    const Cipher *cipher() const;
    SealingStatus lookNow() const;
    Result<KeyFiles> filesWith(const Kept &kept) const;
    OptionalError addKey(const QString &passphrase) const;
    OptionalError bring(const KeyFile &file, const std::vector<SealingKey> &keys) const;
    Kept kept() const;
    OptionalError keep(const Kept &kept) const;

    QString folder;
    QString keptPath;
    mutable std::mutex mutex;
    mutable QLibrary library;
};

} // namespace replication
