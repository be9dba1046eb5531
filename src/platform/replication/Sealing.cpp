#include "replication/Sealing.h"

#include "foundation/AtomicFile.h"
#include "foundation/PrivateFiles.h"

#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRandomGenerator>

namespace replication {

namespace {

const QByteArray sealMark = "MVSEALED";
constexpr qsizetype keyMarkLength = 8;
constexpr int keyFormat = 1;
/// What the check value holds.
const QByteArray checkText = "Morvane";
const QString checkName = QStringLiteral("key");

namespace field {
const QString format = QStringLiteral("format");
const QString salt = QStringLiteral("salt");
const QString opsLimit = QStringLiteral("opsLimit");
const QString memLimit = QStringLiteral("memLimit");
const QString algorithm = QStringLiteral("algorithm");
const QString check = QStringLiteral("check");
const QString folder = QStringLiteral("folder");
const QString terms = QStringLiteral("terms");
const QString key = QStringLiteral("key");
} // namespace field

Error sealingError(const char *why)
{
    return {QStringLiteral("sealing"), 0, QString::fromUtf8(why)};
}

QByteArray bytesOf(const QJsonValue &value)
{
    return QByteArray::fromBase64(value.toString().toLatin1());
}

QString base64(const QByteArray &bytes)
{
    return QString::fromLatin1(bytes.toBase64());
}

/// The same letters typed on another system may be other bytes.
QByteArray bytesOfPassphrase(const QString &passphrase)
{
    return passphrase.normalized(QString::NormalizationForm_C).toUtf8();
}

const char *const noLibrary = "The part of Morvane that opens sealed files is not installed";
const char *const noKey = "The folder is sealed, and its passphrase was not entered on this computer";
const char *const badKeyFile = "The file \"key\" of the folder cannot be read";

} // namespace

// One key.

Sealer::Sealer(const Cipher &with, QByteArray sealingKey, const QByteArray &salt)
    : cipher(with)
    , key(std::move(sealingKey))
    , mark(salt.left(keyMarkLength))
{}

qsizetype Sealer::headLength()
{
    return sealMark.size() + keyMarkLength;
}

bool Sealer::isSealed(const QByteArray &head)
{
    return head.startsWith(sealMark);
}

bool Sealer::isOwnSeal(const QByteArray &head) const
{
    return head.startsWith(sealMark + mark);
}

Result<QByteArray> Sealer::seal(const QByteArray &bytes, const QString &name) const
{
    const QByteArray head = sealMark + mark;
    const QByteArray sealed = cipher.encrypt(bytes, head + name.toUtf8(), key);
    if (sealed.isEmpty())
        return sealingError("It cannot be sealed");
    return head + sealed;
}

Result<QByteArray> Sealer::open(const QByteArray &bytes, const QString &name) const
{
    if (!isSealed(bytes))
        return sealingError("It is not sealed");
    if (!isOwnSeal(bytes))
        return sealingError("It is sealed with another passphrase");
    const auto content =
        cipher.decrypt(bytes.mid(headLength()), bytes.left(headLength()) + name.toUtf8(), key);
    if (!content)
        return sealingError("It is sealed, and was changed or is not complete");
    return *content;
}

// The key of a folder.

/// What lies in the folder.
struct Sealing::KeyFile
{
    KeyTerms terms;
    QByteArray check;

    bool isWhole() const { return terms.salt.size() >= keyMarkLength && !check.isEmpty(); }
    QJsonObject toJson() const
    {
        return {{field::format, keyFormat},
                {field::salt, base64(terms.salt)},
                {field::opsLimit, qint64(terms.opsLimit)},
                {field::memLimit, qint64(terms.memLimit)},
                {field::algorithm, terms.algorithm},
                {field::check, base64(check)}};
    }
    static KeyFile fromJson(const QJsonObject &json)
    {
        if (json.value(field::format).toInt() != keyFormat)
            return {};
        return {{bytesOf(json.value(field::salt)), quint64(json.value(field::opsLimit).toInteger()),
                 quint64(json.value(field::memLimit).toInteger()), json.value(field::algorithm).toInt()},
                bytesOf(json.value(field::check))};
    }
};

/// What this device keeps.
struct Sealing::KeptKey
{
    QString folder;
    KeyFile file;
    QByteArray key;
};

Sealing::Sealing(QString contentFolder, QString keptKeyPath, const QString &libraryPath)
    : folder(std::move(contentFolder))
    , keptPath(std::move(keptKeyPath))
    , library(libraryPath)
{
    library.setLoadHints(QLibrary::PreventUnloadHint);
}

const Cipher *Sealing::cipher() const
{
    const std::scoped_lock lock(libraryMutex);
    const auto make =
        reinterpret_cast<decltype(morvaneSealingCipher) *>(library.resolve("morvaneSealingCipher"));
    return make ? make() : nullptr;
}

/// Absent if there is none; the error says that it cannot be read, as while it is being transferred.
Result<std::optional<Sealing::KeyFile>> Sealing::keyFile() const
{
    QFile file(keyFilePath());
    if (!file.exists())
        return std::optional<KeyFile>();
    if (!file.open(QIODevice::ReadOnly))
        return sealingError(badKeyFile);
    const auto content = KeyFile::fromJson(QJsonDocument::fromJson(file.readAll()).object());
    if (!content.isWhole())
        return sealingError(badKeyFile);
    return std::optional(content);
}

/// Writes the file of the folder, but never over one that is there.
OptionalError Sealing::publish(const KeyFile &file) const
{
    const QString draft =
        folder + QStringLiteral("/.key.") + QString::number(QRandomGenerator::system()->generate64(), 16);
    PrivateFiles::makeFolder(folder);
    if (auto error = writeFileAtomically(draft, QJsonDocument(file.toJson()).toJson()))
        return error;
    // It does not replace a file that is there.
    if (QFile::rename(draft, keyFilePath()))
        return std::nullopt;
    QFile::remove(draft);
    return QFile::exists(keyFilePath())
               ? sealingError("Another computer has sealed the folder. Please enter its passphrase")
               : sealingError("The folder cannot be written to");
}

std::optional<Sealing::KeptKey> Sealing::keptKey() const
{
    QFile file(keptPath);
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    const QJsonObject json = QJsonDocument::fromJson(file.readAll()).object();
    KeptKey kept{json.value(field::folder).toString(), KeyFile::fromJson(json.value(field::terms).toObject()),
                 bytesOf(json.value(field::key))};
    return kept.file.isWhole() && !kept.key.isEmpty() ? std::optional(std::move(kept)) : std::nullopt;
}

OptionalError Sealing::keep(const KeyFile &file, const QByteArray &key) const
{
    PrivateFiles::makeFolder(QFileInfo(keptPath).path());
    const QJsonObject json{{field::folder, folder}, {field::terms, file.toJson()}, {field::key, base64(key)}};
    // A file that is there keeps its mode.
    PrivateFiles::narrow(keptPath);
    return writeFileAtomically(keptPath, QJsonDocument(json).toJson());
}

SealingStatus Sealing::look() const
{
    const auto inFolder = keyFile();
    if (!inFolder)
        return {SealingState::Unusable, nullptr, inFolder.error().message};
    const auto kept = keptKey();
    if (!inFolder.value()) {
        if (!kept || kept->folder != folder)
            return {};
        // Without the file, other devices would take the folder for an open one.
        if (const auto error = publish(kept->file))
            return {SealingState::Unusable, nullptr, error->message};
    } else if (!kept || kept->file.terms.salt != inFolder.value()->terms.salt) {
        return {SealingState::NeedsPassphrase, nullptr, QString::fromUtf8(noKey)};
    }
    const Cipher *with = cipher();
    if (!with)
        return {SealingState::Unusable, nullptr, QString::fromUtf8(noLibrary)};
    return {SealingState::Sealed, std::make_shared<Sealer>(*with, kept->key, kept->file.terms.salt), {}};
}

OptionalError Sealing::begin(const QString &passphrase) const
{
    const Cipher *with = cipher();
    if (!with)
        return sealingError(noLibrary);
    if (look().state != SealingState::Open)
        return sealingError("The folder is sealed already");
    KeyFile file{with->newTerms(), {}};
    const QByteArray key = with->keyOf(bytesOfPassphrase(passphrase), file.terms);
    if (key.isEmpty())
        return sealingError("There is not enough memory for making the key");
    auto check = Sealer(*with, key, file.terms.salt).seal(checkText, checkName);
    if (!check)
        return check.error();
    file.check = *check;
    // If the key is not kept then, the passphrase can be entered again.
    if (auto error = publish(file))
        return error;
    return keep(file, key);
}

OptionalError Sealing::enter(const QString &passphrase) const
{
    const Cipher *with = cipher();
    if (!with)
        return sealingError(noLibrary);
    const auto file = keyFile();
    if (!file)
        return file.error();
    if (!file.value())
        return sealingError("The file \"key\" of the folder has not come yet");
    const KeyTerms &terms = file.value()->terms;
    const QByteArray key = with->keyOf(bytesOfPassphrase(passphrase), terms);
    if (key.isEmpty())
        return sealingError("The key cannot be made: the file \"key\" is damaged, or memory is short");
    const auto check = Sealer(*with, key, terms.salt).open(file.value()->check, checkName);
    if (!check || check.value() != checkText)
        return sealingError("This is not the passphrase of the folder");
    return keep(*file.value(), key);
}

} // namespace replication
