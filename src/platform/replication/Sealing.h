#pragma once

#include "foundation/Error.h"
#include "replication/Cipher.h"

#include <QLibrary>
#include <QString>

#include <memory>
#include <mutex>

namespace replication {

/// Seals files with one key, so that nobody without it can read or change them. It hides neither their sizes
/// nor their names. Any thread.
class Sealer
{
public:
    /// \param cipher must outlive it.
    Sealer(const Cipher &cipher, QByteArray sealingKey, const QByteArray &salt);

    /// \param name of the file; it can be opened under this name only. The error says why it cannot be
    /// sealed.
    Result<QByteArray> seal(const QByteArray &bytes, const QString &name) const;
    /// What was sealed. The error says why the bytes cannot be opened: not sealed, sealed with another key,
    /// changed, cut off, or the file of another name.
    Result<QByteArray> open(const QByteArray &bytes, const QString &name) const;
    /// Tells the key from others, and tells nothing of it.
    const QByteArray &keyMark() const { return mark; }

    /// How many bytes of a file say under which key it is sealed.
    static qsizetype headLength();
    /// Whether a file that begins so is a sealed one.
    static bool isSealed(const QByteArray &head);
    /// Whether a file that begins so is sealed with this key.
    bool isOwnSeal(const QByteArray &head) const;

private:
    const Cipher &cipher;
    QByteArray key;
    QByteArray mark;
};

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
    /// Why nothing can be exchanged, in words; empty if it can.
    QString problem = {};
    bool canExchange() const { return problem.isEmpty(); }
};

/// Whether the folder that the devices share is sealed, and the key of this device.
///
/// A folder is sealed once it holds a file `key`, which is written once: how the key is made from the
/// passphrase, and a check value that only the right key opens. Each device keeps the key itself, but not the
/// passphrase, in a file for its owner only. Only the saves in the folder are sealed; pictures, which lie in
/// a folder beside it, are not. A folder for which this device has a key never counts as open again, even if
/// the file `key` has gone: it is then written anew.
///
/// All files are read at each call. Any thread.
class Sealing
{
public:
    /// \param contentFolder where the devices exchange their saves.
    /// \param keptKeyPath where this device keeps the key.
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

private:
    struct KeyFile;
    struct KeptKey;
    const Cipher *cipher() const;
    QString keyFilePath() const { return folder + QStringLiteral("/key"); }
    Result<std::optional<KeyFile>> keyFile() const;
    OptionalError publish(const KeyFile &file) const;
    std::optional<KeptKey> keptKey() const;
    OptionalError keep(const KeyFile &file, const QByteArray &key) const;

    QString folder;
    QString keptPath;
    mutable std::mutex libraryMutex;
    mutable QLibrary library;
};

} // namespace replication
