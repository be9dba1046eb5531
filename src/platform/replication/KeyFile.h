#pragma once

#include "foundation/Error.h"
#include "replication/Sealer.h"

#include <QJsonObject>

#include <map>

namespace replication {

/// A file in a shared folder that says how its content is sealed from now on. It is written once and never
/// changes. Either it brings a key, as the way from the passphrase to it, or it ends the sealing.
struct KeyFile
{
    /// One more than that of the file that it follows; the first has 1.
    int generation = 1;

    // Of a key:
    KeyTerms terms = {};
    /// Sealed with the key: that it is the right one, and the keys before it.
    QByteArray check = {};
    /// The SHA-256 of what whoever ends the sealing discloses; empty in files of former versions.
    QByteArray digestOfEnd = {};

    // Of an end:
    /// The mark of the key that counts no more.
    QByteArray ended = {};
    /// What only who has that key can know, and everybody can compare.
    QByteArray disclosed = {};

    bool isEnd() const { return !ended.isEmpty(); }
    bool isWhole() const;
    QByteArray mark() const { return terms.salt.left(SealingKey::markLength); }
    /// Its own name in the folder: two devices that each write one at the same time write two files.
    QString name() const;
    QJsonObject toJson() const;
    /// One that is not whole if it cannot be understood.
    static KeyFile fromJson(const QJsonObject &json);

    /// A key file for a key, with the keys that were before.
    static Result<KeyFile> ofKey(const Cipher &cipher, int generation, const KeyTerms &terms,
                                 const QByteArray &key, const std::vector<SealingKey> &before);
    /// All keys, first its own; absent if the key is not that of the file.
    std::optional<std::vector<SealingKey>> keysWith(const Cipher &cipher, const QByteArray &key) const;
    /// What ends the sealing with the key of this file.
    KeyFile endedWith(const QByteArray &key) const;
    /// Whether that was written by who has the key of this file.
    /// \param key empty if it is not known.
    bool isEndedBy(const KeyFile &end, const QByteArray &key) const;
};

/// Key files by their names.
using KeyFiles = std::map<QString, KeyFile>;

/// The one that counts: of the latest generation; of several of it one that seals, and of those always the
/// same. Null if there is none. Ends that nobody with the key wrote do not count.
/// \param keys those that are known.
const KeyFile *currentKeyFile(const KeyFiles &files, const std::vector<SealingKey> &keys);

/// The key of a mark; empty if it is not among them.
QByteArray keyOfMark(const std::vector<SealingKey> &keys, const QByteArray &mark);

/// What is wrong with a seal; the sentence is a key of the translations.
Error sealingError(const char *why);
/// Bytes that stand in JSON as base64; none for anything else.
QByteArray bytesIn(const QJsonValue &value);

namespace keyfiles {

/// Those in a folder. The error says that one cannot be read, as while it is being transferred.
Result<KeyFiles> readFrom(const QString &folder);
/// Writes one, but never over one that is there.
OptionalError publish(const QString &folder, const KeyFile &file);

} // namespace keyfiles

} // namespace replication
