#include "cloud/Replication.h"

#include "cloud/IcloudManager.h"
#include "foundation/ApplicationPaths.h"
#include "foundation/Log.h"
#include "replication/Clearing.h"
#include "store/entities/Entities.h"
#include "store/state/NotificationNames.h"
#include "ubiquity/UbiquityContainer.h"

#include <QCryptographicHash>
#include <QFileInfo>
#include <QSysInfo>

#include <algorithm>

namespace {

/// Tells this computer, and this place of the store on it, from others.
QByteArray machineOf(const ManagedObjectContext &context)
{
    const QByteArray place = QFileInfo(context.path()).canonicalFilePath().toUtf8();
    return QCryptographicHash::hash(QSysInfo::machineUniqueId() + ' ' + place, QCryptographicHash::Sha256)
        .toHex();
}

QString &sealingLibrary()
{
    static QString path;
    return path;
}

} // namespace

Replication::Replication(ManagedObjectContext &context, std::unique_ptr<replication::Replica> opened,
                         Imported imported, std::unique_ptr<replication::Onlooker> looking)
    : store(context)
    , onlooker(std::move(looking))
    , replica(std::move(opened))
    , sealing(sharedSealing())
    , exchange(std::make_unique<replication::ReplicaExchange>(
          *replica, replication::ReplicaFolder(contentFolder()), std::move(imported), sealing))
{
    replica->setOnlooker(onlooker.get());
    replica->outsideItems().nameBy(context.model().entity(EntityTask::entityName)->table(), "calendarID");
    exchange->setListener([] { NotificationCenter::defaultCenter().post(notifications::sharingChanged); });
    exchange->setFilesBeside({IcloudManager::iCloudImagesUrl(), IcloudManager::waitingImagesUrl()});
}

std::shared_ptr<const replication::Sealing> Replication::sharedSealing()
{
    static std::shared_ptr<const replication::Sealing> current;
    static QStringList madeFor;
    if (UbiquityContainer::path().isEmpty())
        return nullptr;
    const QStringList places{contentFolder(),
                             ApplicationPaths::configFolder() + QStringLiteral("/Morvane/sealing.key"),
                             sealingLibrary()};
    if (std::exchange(madeFor, places) != places)
        current = std::make_shared<replication::Sealing>(places[0], places[1], places[2]);
    return current;
}

void Replication::setSealingLibrary(const QString &path)
{
    sealingLibrary() = path;
}

OptionalError Replication::seal(const QString &passphrase)
{
    return sealingChanged(sealing->begin(passphrase));
}

OptionalError Replication::enterPassphrase(const QString &passphrase)
{
    return sealingChanged(sealing->enter(passphrase));
}

OptionalError Replication::changePassphrase(const QString &passphrase)
{
    return sealingChanged(sealing->change(passphrase));
}

OptionalError Replication::endSealing()
{
    return sealingChanged(sealing->end());
}

OptionalError Replication::sealingChanged(OptionalError error)
{
    exchange->sealingChanged();
    // Pictures that could not be opened can be now.
    if (!error)
        NotificationCenter::defaultCenter().post(notifications::iCloudChange);
    return error;
}

OptionalError Replication::removeDevice(const replication::DeviceId &device)
{
    const OptionalError error = replica->remove(device);
    exchange->lookSoon();
    return error;
}

QString Replication::contentFolder()
{
    return UbiquityContainer::path() + QStringLiteral("/Orrelin/Orrelin CoreData");
}

std::unique_ptr<Replication> Replication::start(ManagedObjectContext &context, Imported imported,
                                                std::unique_ptr<replication::Onlooker> onlooker)
{
    if (UbiquityContainer::path().isEmpty()) {
        if (const OptionalError error = replication::Replica::keepForLater(context))
            Log::line(error->message);
        return nullptr;
    }
    auto replica = replication::Replica::open(context, QSysInfo::machineHostName(), machineOf(context));
    if (!replica) {
        Log::line(replica.error().message);
        return nullptr;
    }
    return std::unique_ptr<Replication>(
        new Replication(context, std::move(*replica), std::move(imported), std::move(onlooker)));
}

void Replication::look()
{
    exchange->lookSoon();
}

void Replication::finish()
{
    exchange->sendNow();
}

bool Replication::awaitsCalendarItem(const ManagedObject &row, const QString &item)
{
    return !namerOf(row, item).isEmpty();
}

bool Replication::isCalendarItemElsewhere(const ManagedObject &row, const QString &item)
{
    const replication::DeviceId namer = namerOf(row, item);
    return !namer.isEmpty() &&
           std::ranges::any_of(replica->devices(), [&namer](const replication::Device &device) {
               return device.id == namer && replication::isExpected(device);
           });
}

replication::DeviceId Replication::namerOf(const ManagedObject &row, const QString &item)
{
    return replica->outsideItems().namedBy({row.entity().table(), row.identifier()}, item, replica->device());
}

void Replication::sawCalendarItems(const QSet<QString> &items)
{
    replica->outsideItems().witness(items);
}

void Replication::tellCalendars(const QStringList &names)
{
    replica->hold(names);
    if (replica->owesAcknowledgement())
        exchange->lookSoon();
}

void Replication::answerForCalendars(const QStringList &names)
{
    for (const replication::Device &device : replica->devices()) {
        // Who has told of nothing is taken to have everything.
        if (device.isOwn && device.holdings)
            replica->hold(*device.holdings + names);
    }
}

bool Replication::isCalendarElsewhere(const QStringList &names) const
{
    const auto isAmong = [&names](const QStringList &held) {
        return std::ranges::any_of(names, [&held](const QString &name) { return held.contains(name); });
    };
    return std::ranges::any_of(replica->devices(), [&isAmong](const replication::Device &device) {
        return replication::isExpected(device) && (!device.holdings || isAmong(*device.holdings));
    });
}

void Replication::keep(const ManagedObject &row)
{
    replica->keep({row.entity().table(), row.identifier()});
}

std::vector<replication::Replica::Orphan> Replication::orphansOf(std::string_view entity,
                                                                 std::string_view attribute) const
{
    const auto bytes = [](std::string_view text) {
        return QByteArray(text.data(), static_cast<qsizetype>(text.size()));
    };
    return replica->orphansOf(bytes(entity), bytes(attribute));
}

QStringList Replication::textsIn(std::string_view entity, std::string_view attribute) const
{
    const auto name = [](std::string_view text) {
        return '"' + QByteArray(text.data(), static_cast<qsizetype>(text.size())) + '"';
    };
    QStringList texts;
    sqlite::Statement all =
        store.connection().prepare("SELECT DISTINCT " + name(attribute) + " FROM " + name(entity) +
                                   " WHERE " + name(attribute) + " IS NOT NULL");
    while (all.step())
        texts.append(all.text(0));
    return texts;
}
