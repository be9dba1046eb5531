#pragma once

#include "objectstore/ManagedObjectContext.h"
#include "replication/ReplicaExchange.h"

#include <QSet>

#include <memory>

/// The user's store as one of several: in step with those of the other devices, through the folder that they
/// share. Main thread only.
class Replication
{
public:
    using Imported = std::function<void(const StoreChanges &)>;

    /// Begins it for a store, if there is a shared folder; else gives null. A store that cannot take part is
    /// told of in the log, and is used alone.
    /// \param imported hears of each commit that brought in something from the others.
    /// \param onlooker looks on while that comes in; null for nobody.
    static std::unique_ptr<Replication> start(ManagedObjectContext &context, Imported imported,
                                              std::unique_ptr<replication::Onlooker> onlooker = nullptr);

    /// Looks for what is new on both sides soon.
    void look();
    /// Sends what was saved; for the end of the program.
    void finish();
    /// While it rests, nothing goes out or comes in; what is saved is sent afterwards.
    void setResting(bool isOn) { exchange->setResting(isOn); }

    /// Whether another device has told of the calendar item of a row, and it has never been seen here: it may
    /// be still on its way, or lie in a calendar of that device only.
    bool awaitsCalendarItem(const ManagedObject &row, const QString &item);
    /// The same, and that device takes part still.
    bool isCalendarItemElsewhere(const ManagedObject &row, const QString &item);
    /// Items that are in the calendars of this device.
    void sawCalendarItems(const QSet<QString> &items);
    /// Tells the other devices which calendars this one has, by names that these know, too.
    void tellCalendars(const QStringList &names);
    /// Tells with the next commit, until `tellCalendars`, that this device has these beside what it has told
    /// of. For a commit that says of calendars that have gone what only who has them may say.
    void answerForCalendars(const QStringList &names);
    /// Whether another device that takes part may have a calendar of one of these names: it has told so, or
    /// has not told of its calendars yet. Who was removed, or not heard of for ninety days, takes no part.
    bool isCalendarElsewhere(const QStringList &names) const;

    /// A row that stays in the place of its doubles counts as changed by the next commit: another device may
    /// be joining them into another one.
    void keep(const ManagedObject &row);

    /// References to rows of an entity that have gone, with the text that those had in an attribute.
    std::vector<replication::Replica::Orphan> orphansOf(std::string_view entity,
                                                        std::string_view attribute) const;

    /// What the rows of an entity say in an attribute, each text once.
    QStringList textsIn(std::string_view entity, std::string_view attribute) const;

    /// The library that seals, without its suffix; to be set before the start. Without it, sealed folders
    /// cannot be used.
    static void setSealingLibrary(const QString &path);
    /// How the folder is sealed that the devices share now; null without one. For any thread from then on.
    static std::shared_ptr<const replication::Sealing> sharedSealing();
    /// Seals what the devices exchange, with a passphrase that the other devices then need. It takes a
    /// second. The error says why the folder stays open.
    OptionalError seal(const QString &passphrase);
    /// Gives this device the passphrase of a sealed folder. It takes a second. The error says that it is
    /// another one, or why it cannot be used.
    OptionalError enterPassphrase(const QString &passphrase);
    /// Seals with a new passphrase from now on, which the other devices then need. It takes a second. The
    /// error says why the former one stays.
    OptionalError changePassphrase(const QString &passphrase);
    /// Opens the folder for all devices. The error says why it stays sealed.
    OptionalError endSealing();
    /// Removes another device that is gone for good, for all devices. The error says why it stays.
    OptionalError removeDevice(const replication::DeviceId &device);

    replication::Health health() const { return exchange->health(); }
    /// Whether nothing is under way between the store and the folder.
    bool isAtRest() const { return exchange->isAtRest(); }
    /// Where the devices meet.
    static QString contentFolder();

private:
    Replication(ManagedObjectContext &context, std::unique_ptr<replication::Replica> opened,
                Imported imported, std::unique_ptr<replication::Onlooker> looking);

    ManagedObjectContext &store;
    std::unique_ptr<replication::Onlooker> onlooker;
    std::unique_ptr<replication::Replica> replica;
    OptionalError sealingChanged(OptionalError error);
    replication::DeviceId namerOf(const ManagedObject &row, const QString &item);

    std::shared_ptr<const replication::Sealing> sealing;
    std::unique_ptr<replication::ReplicaExchange> exchange;
};
