#include "replication/Cipher.h"

#include <sodium.h>

namespace {

using replication::KeyTerms;

constexpr auto nonceLength = qsizetype(crypto_aead_xchacha20poly1305_ietf_NPUBBYTES);
constexpr auto tagLength = qsizetype(crypto_aead_xchacha20poly1305_ietf_ABYTES);
constexpr auto keyLength = qsizetype(crypto_aead_xchacha20poly1305_ietf_KEYBYTES);
constexpr auto saltLength = qsizetype(crypto_pwhash_SALTBYTES);
/// Terms come from a shared folder, and must not stop the program for long.
constexpr quint64 mostWork = 16;
constexpr quint64 mostMemory = quint64(1) << 30;

const unsigned char *bytesIn(const QByteArray &bytes)
{
    return reinterpret_cast<const unsigned char *>(bytes.constData());
}

unsigned char *roomIn(QByteArray &bytes)
{
    return reinterpret_cast<unsigned char *>(bytes.data());
}

class SodiumCipher final : public replication::Cipher
{
public:
    KeyTerms newTerms() const override
    {
        QByteArray salt(saltLength, '\0');
        randombytes_buf(salt.data(), size_t(saltLength));
        return {salt, crypto_pwhash_OPSLIMIT_MODERATE, crypto_pwhash_MEMLIMIT_MODERATE,
                crypto_pwhash_ALG_ARGON2ID13};
    }

    QByteArray keyOf(const QByteArray &passphrase, const KeyTerms &terms) const override
    {
        if (terms.salt.size() != saltLength || terms.opsLimit > mostWork || terms.memLimit > mostMemory ||
            terms.algorithm != crypto_pwhash_ALG_ARGON2ID13)
            return {};
        QByteArray key(keyLength, '\0');
        const int code =
            crypto_pwhash(roomIn(key), quint64(keyLength), passphrase.constData(), quint64(passphrase.size()),
                          bytesIn(terms.salt), terms.opsLimit, size_t(terms.memLimit), terms.algorithm);
        return code == 0 ? key : QByteArray();
    }

    QByteArray encrypt(const QByteArray &bytes, const QByteArray &others,
                       const QByteArray &key) const override
    {
        QByteArray nonce(nonceLength, '\0');
        randombytes_buf(nonce.data(), size_t(nonceLength));
        return encryptWith(nonce, bytes, others, key);
    }

    QByteArray encryptAlike(const QByteArray &bytes, const QByteArray &others,
                            const QByteArray &key) const override
    {
        if (key.size() != keyLength)
            return {};
        // The nonce follows from all that is encrypted, by a key of its own: other bytes have another one.
        static const QByteArray purpose = "nonce of a file that is alike";
        QByteArray ofNonces(keyLength, '\0');
        crypto_generichash(roomIn(ofNonces), size_t(keyLength), bytesIn(purpose), quint64(purpose.size()),
                           bytesIn(key), size_t(key.size()));
        const auto length = quint64(others.size());
        QByteArray nonce(nonceLength, '\0');
        crypto_generichash_state state;
        crypto_generichash_init(&state, bytesIn(ofNonces), size_t(keyLength), size_t(nonceLength));
        crypto_generichash_update(&state, reinterpret_cast<const unsigned char *>(&length), sizeof length);
        crypto_generichash_update(&state, bytesIn(others), length);
        crypto_generichash_update(&state, bytesIn(bytes), quint64(bytes.size()));
        crypto_generichash_final(&state, roomIn(nonce), size_t(nonceLength));
        return encryptWith(nonce, bytes, others, key);
    }

    std::optional<QByteArray> decrypt(const QByteArray &bytes, const QByteArray &others,
                                      const QByteArray &key) const override
    {
        if (key.size() != keyLength || bytes.size() < nonceLength + tagLength)
            return std::nullopt;
        QByteArray content(bytes.size() - nonceLength - tagLength, '\0');
        const unsigned char *nonce = bytesIn(bytes);
        const int code = crypto_aead_xchacha20poly1305_ietf_decrypt(
            roomIn(content), nullptr, nullptr, nonce + nonceLength, quint64(bytes.size() - nonceLength),
            bytesIn(others), quint64(others.size()), nonce, bytesIn(key));
        return code == 0 ? std::optional(content) : std::nullopt;
    }

private:
    static QByteArray encryptWith(const QByteArray &nonce, const QByteArray &bytes, const QByteArray &others,
                                  const QByteArray &key)
    {
        if (key.size() != keyLength)
            return {};
        QByteArray outcome = nonce + QByteArray(bytes.size() + tagLength, '\0');
        unsigned char *room = roomIn(outcome);
        crypto_aead_xchacha20poly1305_ietf_encrypt(room + nonceLength, nullptr, bytesIn(bytes),
                                                   quint64(bytes.size()), bytesIn(others),
                                                   quint64(others.size()), nullptr, room, bytesIn(key));
        return outcome;
    }
};

} // namespace

Q_DECL_EXPORT const replication::Cipher *morvaneSealingCipher()
{
    static const SodiumCipher cipher;
    return sodium_init() >= 0 ? &cipher : nullptr;
}
