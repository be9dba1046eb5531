#pragma once

#include <QByteArray>

#include <optional>

namespace replication {

/// How a key is made from a passphrase. All of it may be known to everybody.
struct KeyTerms
{
    /// 16 random bytes.
    QByteArray salt;
    /// How much work it is.
    quint64 opsLimit = 0;
    /// How much memory it takes, in bytes.
    quint64 memLimit = 0;
    /// The algorithm by its number in the library.
    int algorithm = 0;
};

/// What the library for sealing offers. It is stateless; any thread.
class Cipher
{
public:
    virtual ~Cipher() = default;

    /// Terms for a new key, with a fresh salt. They cost about a second and 256 MB.
    virtual KeyTerms newTerms() const = 0;
    /// The key of 32 bytes; empty if the terms are not usable or the memory is not there.
    /// \param passphrase in UTF-8.
    virtual QByteArray keyOf(const QByteArray &passphrase, const KeyTerms &terms) const = 0;
    /// Encrypts bytes and protects them, together with others that are not part of the outcome. The outcome
    /// is another each time. Empty if the key is none.
    virtual QByteArray encrypt(const QByteArray &bytes, const QByteArray &others,
                               const QByteArray &key) const = 0;
    /// The same, but with the same outcome each time for the same bytes, others and key.
    virtual QByteArray encryptAlike(const QByteArray &bytes, const QByteArray &others,
                                    const QByteArray &key) const = 0;
    /// What was encrypted; absent if it, the others or the key are not the same.
    virtual std::optional<QByteArray> decrypt(const QByteArray &bytes, const QByteArray &others,
                                              const QByteArray &key) const = 0;
};

} // namespace replication

extern "C" {

/// The one cipher of the library; null if the system has no source of random numbers. It is built together
/// with the program that loads it.
const replication::Cipher *morvaneSealingCipher();
}
