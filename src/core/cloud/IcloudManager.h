#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <functional>

/// What the cloud means for this run, and the image store: the folder of the pictures of contacts and
/// companies. Locations are paths.
///
/// A picture is known by its file name alone. A name that is no plain one, such as "../x" or an absolute
/// path, names no picture: it is neither read nor written nor removed.
class IcloudManager
{
public:
    /// Makes the folders of the pictures in the cloud, if there is one.
    IcloudManager();

    // State.
    /// Whether the folder that the devices share can be reached. This alone decides where things lie.
    static bool connectIcloud();
    /// -1 the sample store is in use, 0 the user's store with the cloud, 1 the user's store alone.
    static int stateDB();

    // The image store.
    static QString sampleImagesUrl();
    static QString localImagesUrl();
    static QString iCloudImagesUrl();
    /// Of this device, for pictures that cannot go into a sealed folder without its passphrase.
    static QString waitingImagesUrl();
    /// The one of the first three that the state asks for.
    static QString imageUrl();
    /// Without the cloud all names of the local folder; with it those of the pictures that are on this
    /// machine already.
    static QStringList listImageName();
    /// The paths of what the folder in use holds, hidden files left out.
    static QStringList listImageURL();
    /// Where a picture of that name lies or would lie; a null text for a name that is no plain one. What lies
    /// there may be sealed.
    static QString pathOfImage(const QString &name);
    /// The bytes of a picture; empty if it is missing or cannot be read.
    static QByteArray imageData(const QString &name);
    /// What reads a picture by its path, on any thread: its bytes, which are never written anywhere; empty if
    /// it cannot be read.
    static std::function<QByteArray()> imageReader(const QString &path);
    /// Writes a picture, whole or not at all, over one of the same name. In a sealed folder it is sealed;
    /// without the passphrase, or where the folder does not take it, it waits on this device. Whether that
    /// worked; the log says why not.
    static bool saveImageWithData(const QByteArray &data, const QString &name);
    /// Whether there was a picture of that name and it is gone.
    static bool removeImage(const QString &name);
    /// Gives the devices that share a folder those of some pictures that lie on this one alone, as after it
    /// was joined. They wait for the next look at the folder.
    static void shareImages(const QStringList &names);
    /// Copies what the shared folder has here, as before it is left. What cannot be read stays out.
    static void keepImages();
    static bool existenceFile(const QString &url);

    // The account behind the cloud. Its token is kept in the defaults.
    static QByteArray currentiCloudToken();
    /// Keeps the present token, or forgets the kept one if there is none.
    static void icloudToken();
    /// -1 if the account is not the kept one, else 1 or 0 as `canUseICloud` says. Keeps the present token.
    static int iCloudState();
    /// Whether there is an account and the kept value, read as a boolean, is true. Bytes never are.
    static bool canUseICloud();
    /// Whether a token is kept that is not the present one.
    static bool iCloudOut();
};
