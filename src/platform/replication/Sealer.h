#pragma once

#include "foundation/Error.h"
#include "replication/Cipher.h"

#include <QString>

#include <vector>

namespace replication {

/// A key, and what tells it from others without telling anything of it.
struct SealingKey
{
    QByteArray mark;
    QByteArray key;

    static constexpr qsizetype markLength = 8;
};

/// Seals files with one key, so that nobody without it can read or change them. It hides neither their sizes
/// nor their names. It opens those that were sealed with former keys, too. Any thread.
class Sealer
{
public:
    /// \param cipher must outlive it.
    /// \param ring the first key seals, and all of them open. At least one.
    Sealer(const Cipher &cipher, std::vector<SealingKey> ring);

    /// \param name of the file; it can be opened under this name only. The error says why it cannot be
    /// sealed.
    Result<QByteArray> seal(const QByteArray &bytes, const QString &name) const;
    /// The same, but bytes and name that are the same become the same sealed file, so that several devices
    /// can seal one file without a conflict. Whoever sees the file twice learns that it is the same.
    Result<QByteArray> sealAlike(const QByteArray &bytes, const QString &name) const;
    /// What was sealed. The error says why the bytes cannot be opened: not sealed, sealed with another key,
    /// changed, cut off, or the file of another name.
    Result<QByteArray> open(const QByteArray &bytes, const QString &name) const;
    /// Tells the key that seals from others, and tells nothing of it.
    const QByteArray &keyMark() const { return keys.front().mark; }

    /// How many bytes of a file say under which key it is sealed.
    static qsizetype headLength();
    /// Whether a file that begins so is a sealed one.
    static bool isSealed(const QByteArray &head);
    /// The mark of the key of a sealed file; empty if it is none.
    static QByteArray keyMarkIn(const QByteArray &head);
    /// Whether a file that begins so is sealed with the key that seals.
    bool isOwnSeal(const QByteArray &head) const { return keyMarkIn(head) == keyMark(); }

private:
    const Cipher &cipher;
    std::vector<SealingKey> keys;
};

} // namespace replication
