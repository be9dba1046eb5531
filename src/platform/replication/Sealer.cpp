#include "replication/Sealer.h"

#include <algorithm>

namespace replication {

namespace {

const QByteArray sealMark = "MVSEALED";

Error sealerError(const char *why)
{
    return {QStringLiteral("sealing"), 0, QString::fromUtf8(why)};
}

/// What cannot be encrypted is empty.
Result<QByteArray> sealedFile(const QByteArray &head, const QByteArray &encrypted)
{
    return encrypted.isEmpty() ? Result<QByteArray>(sealerError("It cannot be sealed")) : head + encrypted;
}

} // namespace

Sealer::Sealer(const Cipher &with, std::vector<SealingKey> ring)
    : cipher(with)
    , keys(std::move(ring))
{}

qsizetype Sealer::headLength()
{
    return sealMark.size() + SealingKey::markLength;
}

bool Sealer::isSealed(const QByteArray &head)
{
    return head.startsWith(sealMark);
}

QByteArray Sealer::keyMarkIn(const QByteArray &head)
{
    return isSealed(head) ? head.mid(sealMark.size(), SealingKey::markLength) : QByteArray();
}

Result<QByteArray> Sealer::seal(const QByteArray &bytes, const QString &name) const
{
    const QByteArray head = sealMark + keyMark();
    return sealedFile(head, cipher.encrypt(bytes, head + name.toUtf8(), keys.front().key));
}

Result<QByteArray> Sealer::sealAlike(const QByteArray &bytes, const QString &name) const
{
    const QByteArray head = sealMark + keyMark();
    return sealedFile(head, cipher.encryptAlike(bytes, head + name.toUtf8(), keys.front().key));
}

Result<QByteArray> Sealer::open(const QByteArray &bytes, const QString &name) const
{
    if (!isSealed(bytes))
        return sealerError("It is not sealed");
    const auto found = std::ranges::find(keys, keyMarkIn(bytes), &SealingKey::mark);
    if (found == keys.end())
        return sealerError("It is sealed with another passphrase");
    const auto content =
        cipher.decrypt(bytes.mid(headLength()), bytes.left(headLength()) + name.toUtf8(), found->key);
    if (!content)
        return sealerError("It is sealed, and was changed or is not complete");
    return *content;
}

} // namespace replication
