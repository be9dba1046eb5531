#include "replication/KeyFile.h"

#include "foundation/AtomicFile.h"
#include "foundation/PrivateFiles.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QMessageAuthenticationCode>
#include <QRandomGenerator>
#include <QRegularExpression>

#include <algorithm>
#include <tuple>

namespace replication {

namespace {

constexpr int keyFormat = 1;
/// What the check value begins with.
const QByteArray checkText = "Morvane";
const QString firstName = QStringLiteral("key");

namespace field {
const QString format = QStringLiteral("format");
const QString generation = QStringLiteral("generation");
const QString salt = QStringLiteral("salt");
const QString opsLimit = QStringLiteral("opsLimit");
const QString memLimit = QStringLiteral("memLimit");
const QString algorithm = QStringLiteral("algorithm");
const QString check = QStringLiteral("check");
const QString end = QStringLiteral("end");
const QString ended = QStringLiteral("ended");
const QString disclosed = QStringLiteral("disclosed");
const QString mark = QStringLiteral("mark");
const QString key = QStringLiteral("key");
} // namespace field

QString base64(const QByteArray &bytes)
{
    return QString::fromLatin1(bytes.toBase64());
}

QByteArray disclosureOf(const QByteArray &key)
{
    return QMessageAuthenticationCode::hash("The sealing ends", key, QCryptographicHash::Sha256);
}

QByteArray digestOf(const QByteArray &disclosure)
{
    return QCryptographicHash::hash(disclosure, QCryptographicHash::Sha256);
}

bool isNameOfKeyFile(const QString &name)
{
    static const QRegularExpression later(QStringLiteral("^key-[1-9][0-9]{0,8}-([0-9a-f]{16}|open)$"));
    return name == firstName || later.match(name).hasMatch();
}

} // namespace

Error sealingError(const char *why)
{
    return {QStringLiteral("sealing"), 0, QString::fromUtf8(why)};
}

QByteArray bytesIn(const QJsonValue &value)
{
    return QByteArray::fromBase64(value.toString().toLatin1());
}

bool KeyFile::isWhole() const
{
    if (generation < 1)
        return false;
    return isEnd() ? generation > 1 && !disclosed.isEmpty()
                   : terms.salt.size() >= SealingKey::markLength && !check.isEmpty();
}

QString KeyFile::name() const
{
    if (generation == 1)
        return firstName;
    return QStringLiteral("key-%1-%2")
        .arg(QString::number(generation),
             isEnd() ? QStringLiteral("open") : QString::fromLatin1(mark().toHex()));
}

QJsonObject KeyFile::toJson() const
{
    if (isEnd())
        return {{field::format, keyFormat},
                {field::generation, generation},
                {field::ended, base64(ended)},
                {field::disclosed, base64(disclosed)}};
    return {{field::format, keyFormat},
            {field::generation, generation},
            {field::salt, base64(terms.salt)},
            {field::opsLimit, qint64(terms.opsLimit)},
            {field::memLimit, qint64(terms.memLimit)},
            {field::algorithm, terms.algorithm},
            {field::check, base64(check)},
            {field::end, base64(digestOfEnd)}};
}

KeyFile KeyFile::fromJson(const QJsonObject &json)
{
    if (json.value(field::format).toInt() != keyFormat)
        return {};
    return {.generation = json.value(field::generation).toInt(1),
            .terms = {bytesIn(json.value(field::salt)), quint64(json.value(field::opsLimit).toInteger()),
                      quint64(json.value(field::memLimit).toInteger()), json.value(field::algorithm).toInt()},
            .check = bytesIn(json.value(field::check)),
            .digestOfEnd = bytesIn(json.value(field::end)),
            .ended = bytesIn(json.value(field::ended)),
            .disclosed = bytesIn(json.value(field::disclosed))};
}

Result<KeyFile> KeyFile::ofKey(const Cipher &cipher, int generation, const KeyTerms &terms,
                               const QByteArray &key, const std::vector<SealingKey> &before)
{
    KeyFile file{.generation = generation, .terms = terms, .digestOfEnd = digestOf(disclosureOf(key))};
    QByteArray content = checkText;
    if (!before.empty()) {
        QJsonArray list;
        for (const SealingKey &one : before)
            list.append(QJsonObject{{field::mark, base64(one.mark)}, {field::key, base64(one.key)}});
        content += QJsonDocument(list).toJson(QJsonDocument::Compact);
    }
    // It is bound to its name, and with it to its generation.
    auto sealed = Sealer(cipher, {{file.mark(), key}}).seal(content, file.name());
    if (!sealed)
        return sealed.error();
    file.check = *sealed;
    return file;
}

std::optional<std::vector<SealingKey>> KeyFile::keysWith(const Cipher &cipher, const QByteArray &key) const
{
    auto content = Sealer(cipher, {{mark(), key}}).open(check, name());
    if (!content || !content->startsWith(checkText))
        return std::nullopt;
    std::vector<SealingKey> keys{{mark(), key}};
    for (const QJsonValue &one : QJsonDocument::fromJson(content->mid(checkText.size())).array())
        keys.push_back(
            {bytesIn(one.toObject().value(field::mark)), bytesIn(one.toObject().value(field::key))});
    return keys;
}

KeyFile KeyFile::endedWith(const QByteArray &key) const
{
    return {.generation = generation + 1, .ended = mark(), .disclosed = disclosureOf(key)};
}

bool KeyFile::isEndedBy(const KeyFile &end, const QByteArray &key) const
{
    if (isEnd() || end.ended != mark() || end.generation != generation + 1)
        return false;
    return digestOfEnd.isEmpty() ? !key.isEmpty() && end.disclosed == disclosureOf(key)
                                 : digestOf(end.disclosed) == digestOfEnd;
}

QByteArray keyOfMark(const std::vector<SealingKey> &keys, const QByteArray &mark)
{
    const auto found = std::ranges::find(keys, mark, &SealingKey::mark);
    return found == keys.end() ? QByteArray() : found->key;
}

const KeyFile *currentKeyFile(const KeyFiles &files, const std::vector<SealingKey> &keys)
{
    const auto counts = [&](const KeyFile &file) {
        if (file.isEnd())
            return std::ranges::any_of(files, [&](const auto &one) {
                return one.second.isEndedBy(file, keyOfMark(keys, file.ended));
            });
        // A key that was followed by another one does not come back.
        return std::ranges::none_of(files, [&](const auto &one) {
            return one.second.generation < file.generation && one.second.mark() == file.mark();
        });
    };
    const auto rank = [](const KeyFile &file) {
        return std::tuple(file.generation, !file.isEnd(), file.mark());
    };
    const KeyFile *current = nullptr;
    for (const auto &[name, file] : files) {
        if (counts(file) && (!current || rank(file) > rank(*current)))
            current = &file;
    }
    return current;
}

Result<KeyFiles> keyfiles::readFrom(const QString &folder)
{
    KeyFiles files;
    const QDir place(folder);
    for (const QString &name : place.entryList({firstName + u'*'}, QDir::Files | QDir::System)) {
        if (!isNameOfKeyFile(name))
            continue;
        QFile file(place.filePath(name));
        const bool isOpen = file.open(QIODevice::ReadOnly);
        KeyFile content =
            isOpen ? KeyFile::fromJson(QJsonDocument::fromJson(file.readAll()).object()) : KeyFile();
        if (!content.isWhole() || content.name() != name)
            return sealingError("The file \"key\" of the folder cannot be read");
        files.insert_or_assign(name, std::move(content));
    }
    return files;
}

OptionalError keyfiles::publish(const QString &folder, const KeyFile &file)
{
    const QString path = folder + u'/' + file.name();
    const QString draft =
        folder + QStringLiteral("/.key.") + QString::number(QRandomGenerator::system()->generate64(), 16);
    PrivateFiles::makeFolder(folder);
    if (auto error = writeFileAtomically(draft, QJsonDocument(file.toJson()).toJson()))
        return error;
    // It does not replace a file that is there.
    if (QFile::rename(draft, path))
        return std::nullopt;
    QFile::remove(draft);
    return QFile::exists(path)
               ? sealingError("Another computer has sealed the folder. Please enter its passphrase")
               : sealingError("The folder cannot be written to");
}

} // namespace replication
