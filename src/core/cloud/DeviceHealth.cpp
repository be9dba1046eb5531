#include "cloud/DeviceHealth.h"

#include "cloud/IcloudManager.h"
#include "foundation/DateFormatter.h"
#include "foundation/Localization.h"
#include "store/state/CoreContext.h"
#include "workspace/PlatformConfiguration.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>

using replication::Device;
using replication::Health;
using replication::SealingState;

namespace {

const QString folderKey = QStringLiteral("cloudFolder");

QString lastHeard(const Device &device)
{
    if (!device.lastSave)
        return localized(QStringLiteral("Nothing was changed there yet"));
    return localized(QStringLiteral("Last change: %1"))
        .arg(DateFormatter::string(*device.lastSave, DateFormatter::Style::Medium,
                                   DateFormatter::Style::Short));
}

/// How many saves of this device another one has not told of yet.
qint64 behind(const Device &own, const Device &other)
{
    return std::max(qint64(0), own.number - other.seen.of(own.id));
}

DeviceHealth::Line lineOf(const Device &device, const Device &own)
{
    const QString name = device.name.isEmpty() ? QString::fromUtf8(device.id) : device.name;
    DeviceHealth::Line line{name, lastHeard(device), device.isOwn, device.id, name};
    if (device.heard && !device.isOwn)
        line.detail += QStringLiteral(" · ") +
                       localized(QStringLiteral("arrived here: %1"))
                           .arg(DateFormatter::string(*device.heard, DateFormatter::Style::Medium,
                                                      DateFormatter::Style::Short));
    if (device.isOwn)
        line.title = localized(QStringLiteral("%1 (this computer)")).arg(line.title);
    else if (const qint64 count = behind(own, device); count > 0)
        line.detail +=
            QStringLiteral(" · ") +
            localized(QStringLiteral("changes it has not told of having: %1")).arg(QString::number(count));
    if (device.isClockAhead)
        line.detail += QStringLiteral(" · ") +
                       localized(QStringLiteral("its clock is ahead of the one here, please check both"));
    return line;
}

QString sealingIn(const Health &health)
{
    switch (health.sealing) {
    case SealingState::Open:
        return localized(QStringLiteral("The folder is open: whoever reads it reads your records."));
    case SealingState::Sealed:
        return localized(QStringLiteral("The folder is sealed. What other computers wrote before is sealed "
                                        "once they have the passphrase."));
    case SealingState::NeedsPassphrase:
    case SealingState::Unusable:
        break;
    }
    return localized(health.sealingProblem) + u'.';
}

/// What is wrong and what waits, a sentence each; if nothing, that all is well.
QStringList summaryOf(const Health &health)
{
    QStringList sentences;
    const auto tell = [&sentences](const QString &sentence, const QString &about) {
        sentences.append(localized(sentence).arg(about));
    };
    const bool isBlocked = !health.sealingProblem.isEmpty();
    if (!health.folderProblem.isEmpty())
        tell(QStringLiteral("The shared folder cannot be used: %1"), health.folderProblem);
    else if (isBlocked)
        tell(QStringLiteral("Nothing goes out or comes in. Changes that wait here: %1"),
             QString::number(health.unsent));
    if (!health.problems.empty())
        sentences.append(localized(QStringLiteral("Some files cannot be read yet.")));
    if (health.unsent > 0 && !isBlocked)
        tell(QStringLiteral("Changes that are still to be written: %1"), QString::number(health.unsent));
    if (health.waiting > 0)
        tell(QStringLiteral("Changes that wait for others that have not come yet: %1"),
             QString::number(health.waiting));
    if (!sentences.isEmpty())
        return sentences;
    return {health.devices.size() < 2 ? localized(QStringLiteral("No other device has been heard of yet."))
                                      : localized(QStringLiteral("Everything that has come is taken in."))};
}

} // namespace

DeviceHealth DeviceHealth::of(const Replication *replication)
{
    if (replication)
        return of(replication->health());
    DeviceHealth health;
    if (CoreContext::current().isSample && !sharedfolder::path().isEmpty()) {
        health.summary = localized(QStringLiteral("Sharing rests while you look at the sample."));
        return health;
    }
    health.summary =
        sharedfolder::path().isEmpty()
            ? localized(QStringLiteral("Your records are on this computer only."))
            : localized(QStringLiteral("The shared folder cannot be used: %1")).arg(sharedfolder::path());
    health.isCutOff = !sharedfolder::path().isEmpty() && !sharedfolder::isWaitingForStart();
    return health;
}

DeviceHealth DeviceHealth::of(const Health &health)
{
    DeviceHealth words;
    const auto own = std::ranges::find_if(health.devices, &Device::isOwn);
    std::vector<Device> devices = health.devices;
    std::ranges::stable_sort(devices, [](const Device &one, const Device &other) {
        if (one.isOwn != other.isOwn)
            return one.isOwn;
        return one.lastSave.value_or(Date()) > other.lastSave.value_or(Date());
    });
    for (const Device &device : devices) {
        if (own != health.devices.end())
            words.devices.push_back(lineOf(device, *own));
    }
    for (const Health::Problem &problem : health.problems)
        words.problems.push_back({QFileInfo(problem.path).fileName(), localized(problem.reason)});
    words.sealing = sealingIn(health);
    words.canSeal = health.sealing == SealingState::Open;
    words.isSealed = health.sealing == SealingState::Sealed;
    words.needsPassphrase = health.sealing == SealingState::NeedsPassphrase;
    words.isCutOff = !health.folderProblem.isEmpty() || !health.sealingProblem.isEmpty();
    words.summary = summaryOf(health).join(u'\n');
    return words;
}

namespace sharedfolder {

QString path()
{
    return PlatformConfiguration().text(folderKey);
}

static QString &pathInUse()
{
    static QString inUse = path();
    return inUse;
}

OptionalError choose(const QString &path)
{
    // The one that the program began with is remembered before it is another.
    pathInUse();
    const QFileInfo folder(path);
    if (!path.isEmpty() && !(folder.isDir() && folder.isWritable() && QDir::isAbsolutePath(path)))
        return Error{QStringLiteral("files"), 0,
                     localized(QStringLiteral("Morvane cannot write to the folder %1")).arg(path)};
    if (path != sharedfolder::path())
        IcloudManager::keepImages();
    PlatformConfiguration::setText(folderKey, path);
    return std::nullopt;
}

void noteStart()
{
    pathInUse() = path();
}

bool isWaitingForStart()
{
    return path() != pathInUse();
}

} // namespace sharedfolder
