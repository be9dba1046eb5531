#pragma once

#include "cloud/Replication.h"

#include <QString>
#include <QStringList>

#include <vector>

/// How the exchange with the user's other devices stands, in words.
struct DeviceHealth
{
    struct Line
    {
        QString title;
        QString detail;
        bool isOwn = false;
        /// Of a device; empty for a file.
        replication::DeviceId device = {};
        /// What the user calls the device.
        QString name = {};

        bool canBeRemoved() const { return !device.isEmpty() && !isOwn; }
    };

    /// One sentence for all of it.
    QString summary;
    /// Nothing goes out or comes in until the user does something.
    bool isCutOff = false;
    /// This device first, then the others, who was heard of last first.
    std::vector<Line> devices;
    /// Files that could not be taken in, with the reason.
    std::vector<Line> problems;
    /// Whether what lies in the shared folder is sealed, in a sentence; empty without a folder in use.
    QString sealing;
    /// What the user can do about it.
    bool canSeal = false;
    bool needsPassphrase = false;
    bool isSealed = false;

    /// \param replication null without a shared folder.
    static DeviceHealth of(const Replication *replication);
    static DeviceHealth of(const replication::Health &health);
};

/// The folder that the user's devices share.
namespace sharedfolder {

/// Its path as it is set; empty for none.
QString path();
/// Sets it, or none by an empty path; the pictures of the one before are kept here. It is used from the next
/// start on. The error says why it cannot be used.
OptionalError choose(const QString &path);
/// The program begins with the one that is set.
void noteStart();
/// Whether another one is set than the program uses.
bool isWaitingForStart();

} // namespace sharedfolder
