#include "replication/Sealing.h"

#include "foundation/AtomicFile.h"
#include "foundation/PrivateFiles.h"

#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>

namespace replication {

namespace {

namespace keptfield {
const QString folder = QStringLiteral("folder");
const QString files = QStringLiteral("files");
const QString keys = QStringLiteral("keys");
const QString mark = QStringLiteral("mark");
const QString key = QStringLiteral("key");
/// Of files of former versions, which know one key.
const QString terms = QStringLiteral("terms");
} // namespace keptfield

/// The same letters typed on another system may be other bytes.
QByteArray bytesOfPassphrase(const QString &passphrase)
{
    return passphrase.normalized(QString::NormalizationForm_C).toUtf8();
}

const char *const noLibrary = "The part of Morvane that opens sealed files is not installed";
const char *const noKey = "The folder is sealed, and its passphrase was not entered on this computer";
const char *const otherKey =
    "The passphrase of the folder was changed, and the new one was not entered on this computer";

/// The keys that are known, with one of them first.
std::vector<SealingKey> ringOf(std::vector<SealingKey> keys, const QByteArray &first)
{
    const auto found = std::ranges::find(keys, first, &SealingKey::mark);
    if (found != keys.end())
        std::rotate(keys.begin(), found, found + 1);
    return keys;
}

void addTo(std::vector<SealingKey> &keys, const std::vector<SealingKey> &more)
{
    for (const SealingKey &one : more) {
        if (keyOfMark(keys, one.mark).isEmpty())
            keys.push_back(one);
    }
}

} // namespace

// What a status says of files.

Result<QByteArray> SealingStatus::opened(const QByteArray &bytes, const QString &name) const
{
    if (sealer)
        return sealer->open(bytes, name);
    if (!Sealer::isSealed(bytes))
        return bytes;
    if (!marks.contains(Sealer::keyMarkIn(bytes)))
        return Error{QStringLiteral("sealing"), unknownKey,
                     QStringLiteral("It is sealed, and the file \"key\" of the folder has not come yet")};
    return formerSealer ? formerSealer->open(bytes, name)
                        : sealingError("It is sealed with another passphrase");
}

// The keys of this device.

/// What this device keeps.
struct Sealing::Kept
{
    /// Empty if nothing is kept.
    QString folder = {};
    KeyFiles files = {};
    std::vector<SealingKey> keys = {};
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
    const auto make =
        reinterpret_cast<decltype(morvaneSealingCipher) *>(library.resolve("morvaneSealingCipher"));
    return make ? make() : nullptr;
}

Sealing::Kept Sealing::kept() const
{
    QFile file(keptPath);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    const QJsonObject json = QJsonDocument::fromJson(file.readAll()).object();
    Kept found{.folder = json.value(keptfield::folder).toString()};
    QJsonArray files = json.value(keptfield::files).toArray();
    if (json.contains(keptfield::terms))
        files.append(json.value(keptfield::terms));
    for (const QJsonValue &one : files) {
        KeyFile content = KeyFile::fromJson(one.toObject());
        if (content.isWhole())
            found.files.insert_or_assign(content.name(), std::move(content));
    }
    for (const QJsonValue &one : json.value(keptfield::keys).toArray())
        found.keys.push_back(
            {bytesIn(one.toObject().value(keptfield::mark)), bytesIn(one.toObject().value(keptfield::key))});
    if (json.contains(keptfield::key) && !found.files.empty())
        found.keys.push_back({found.files.begin()->second.mark(), bytesIn(json.value(keptfield::key))});
    return found.keys.empty() ? Kept() : found;
}

OptionalError Sealing::keep(const Kept &kept) const
{
    if (kept.keys.empty()) {
        QFile::remove(keptPath);
        return std::nullopt;
    }
    QJsonArray files;
    for (const auto &[name, file] : kept.files)
        files.append(file.toJson());
    QJsonArray keys;
    for (const SealingKey &one : kept.keys)
        keys.append(QJsonObject{{keptfield::mark, QString::fromLatin1(one.mark.toBase64())},
                                {keptfield::key, QString::fromLatin1(one.key.toBase64())}});
    PrivateFiles::makeFolder(QFileInfo(keptPath).path());
    const QJsonObject json{
        {keptfield::folder, kept.folder}, {keptfield::files, files}, {keptfield::keys, keys}};
    // A file that is there keeps its mode.
    PrivateFiles::narrow(keptPath);
    return writeFileAtomically(keptPath, QJsonDocument(json).toJson());
}

// The folder.

/// The key files of the folder, those included that this device alone still has: it publishes them.
Result<KeyFiles> Sealing::filesWith(const Kept &kept) const
{
    auto files = keyfiles::readFrom(folder);
    if (!files || kept.folder != folder)
        return files;
    for (const auto &[name, file] : kept.files) {
        if (files->contains(name))
            continue;
        if (auto error = keyfiles::publish(folder, file))
            return *error;
        files->insert({name, file});
    }
    return files;
}

SealingStatus Sealing::look() const
{
    const std::scoped_lock lock(mutex);
    return lookNow();
}

SealingStatus Sealing::lookNow() const
{
    Kept known = kept();
    auto files = filesWith(known);
    if (!files)
        return {.state = SealingState::Unusable, .problem = files.error().message};
    const KeyFile *current = currentKeyFile(*files, known.keys);
    if (!current)
        return {};
    const bool isEnded = current->isEnd();
    // Loading it takes a while, and an open folder has no use for it.
    const Cipher *with = cipher();
    if (!isEnded && keyOfMark(known.keys, current->mark()).isEmpty()) {
        const bool hadKey = known.folder == folder;
        SealingStatus status{.state = SealingState::NeedsPassphrase,
                             .problem = QString::fromUtf8(hadKey ? otherKey : noKey)};
        if (hadKey && with)
            status.formerSealer = std::make_shared<Sealer>(*with, known.keys);
        return status;
    }
    if (!with && !isEnded)
        return {.state = SealingState::Unusable, .problem = QString::fromUtf8(noLibrary)};
    // What came from others is kept, too, lest it be lost with the folder.
    if (known.folder == folder && known.files.size() < files->size()) {
        known.files = *files;
        if (const auto error = keep(known))
            return {.state = SealingState::Unusable, .problem = error->message};
    }
    SealingStatus status;
    for (const auto &[name, file] : *files) {
        if (!file.isEnd())
            status.marks.insert(file.mark());
    }
    if (isEnded) {
        if (with && !known.keys.empty())
            status.formerSealer = std::make_shared<Sealer>(*with, known.keys);
    } else {
        status.state = SealingState::Sealed;
        status.sealer = std::make_shared<Sealer>(*with, ringOf(known.keys, current->mark()));
    }
    return status;
}

/// What is kept comes before what is published: who is interrupted in between finishes it at the next look.
OptionalError Sealing::bring(const KeyFile &file, const std::vector<SealingKey> &keys) const
{
    const Kept before = kept();
    Kept after = before.folder == folder ? before : Kept{.folder = folder};
    if (auto files = keyfiles::readFrom(folder)) {
        for (const auto &[name, one] : *files)
            after.files.insert_or_assign(name, one);
    }
    after.files.insert_or_assign(file.name(), file);
    addTo(after.keys, keys);
    if (auto error = keep(after))
        return error;
    auto error = keyfiles::publish(folder, file);
    if (error) {
        // If that fails, too, it is published later.
        if (const auto second = keep(before))
            error->message = second->message;
    }
    return error;
}

OptionalError Sealing::addKey(const QString &passphrase) const
{
    const Cipher *with = cipher();
    if (!with)
        return sealingError(noLibrary);
    const Kept known = kept();
    auto files = filesWith(known);
    if (!files)
        return files.error();
    const KeyFile *current = currentKeyFile(*files, known.keys);
    const KeyTerms terms = with->newTerms();
    const QByteArray key = with->keyOf(bytesOfPassphrase(passphrase), terms);
    if (key.isEmpty())
        return sealingError("There is not enough memory for making the key");
    const bool hasFormer = known.folder == folder || current;
    const std::vector<SealingKey> before = hasFormer ? known.keys : std::vector<SealingKey>();
    auto file = KeyFile::ofKey(*with, current ? current->generation + 1 : 1, terms, key, before);
    if (!file)
        return file.error();
    std::vector<SealingKey> all = before;
    all.push_back({file->mark(), key});
    return bring(*file, all);
}

OptionalError Sealing::begin(const QString &passphrase) const
{
    const std::scoped_lock lock(mutex);
    if (!cipher())
        return sealingError(noLibrary);
    if (lookNow().state != SealingState::Open)
        return sealingError("The folder is sealed already");
    return addKey(passphrase);
}

OptionalError Sealing::change(const QString &passphrase) const
{
    const std::scoped_lock lock(mutex);
    const SealingStatus status = lookNow();
    if (status.state != SealingState::Sealed)
        return sealingError(status.canExchange() ? "The folder is not sealed any more" : noKey);
    return addKey(passphrase);
}

OptionalError Sealing::end() const
{
    const std::scoped_lock lock(mutex);
    const SealingStatus status = lookNow();
    if (status.state != SealingState::Sealed)
        return sealingError(status.canExchange() ? "The folder is not sealed any more" : noKey);
    const Kept known = kept();
    auto files = filesWith(known);
    if (!files)
        return files.error();
    const KeyFile *current = currentKeyFile(*files, known.keys);
    return bring(current->endedWith(keyOfMark(known.keys, current->mark())), known.keys);
}

OptionalError Sealing::enter(const QString &passphrase) const
{
    const std::scoped_lock lock(mutex);
    const Cipher *with = cipher();
    if (!with)
        return sealingError(noLibrary);
    const Kept known = kept();
    auto files = filesWith(known);
    if (!files)
        return files.error();
    const KeyFile *current = currentKeyFile(*files, known.keys);
    if (!current)
        return sealingError("The file \"key\" of the folder has not come yet");
    if (current->isEnd())
        return sealingError("The folder is not sealed any more");
    const QByteArray key = with->keyOf(bytesOfPassphrase(passphrase), current->terms);
    if (key.isEmpty())
        return sealingError("The key cannot be made: the file \"key\" is damaged, or memory is short");
    const auto keys = current->keysWith(*with, key);
    if (!keys)
        return sealingError("This is not the passphrase of the folder");
    Kept after{.folder = folder, .files = *files, .keys = *keys};
    // A key that lost against this one still opens what this device sealed with it.
    if (known.folder == folder)
        addTo(after.keys, known.keys);
    return keep(after);
}

} // namespace replication
