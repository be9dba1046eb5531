#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <optional>

/// The folders of the program and the files in them. Locations are paths.
class FileManager
{
public:
    FileManager() = delete;

    /// "Morvane" in the user's data folder: stores, pictures and calendars lie in it.
    static QString appFolderURL();
    /// Makes the application folder if it is missing. True only if it was made now.
    static bool createAppFolder();
    /// Takes away what other accounts of the computer may read of the program's files. Called at start: files
    /// of former versions, and those that other programs have put there, may be open to all.
    static void keepFromOthers();
    /// The same as `createAppFolder` for a folder inside it.
    static bool createFolder(const QString &name);

    static bool fileExists(const QString &url);
    /// Whether it is a folder.
    static bool isDictionary(const QString &url);
    /// Removes a file; whether that worked.
    static bool deleteFileFromPath(const QString &path);

    /// The folder of the pictures in use, and what it holds, hidden files left out.
    static QString imageFolderURL();
    static QStringList listFileDevice();
    /// The name of the picture that is the same byte for byte, or nothing if there is none. Pictures that
    /// cannot be read are passed over.
    static std::optional<QString> existPhotoData(const QByteArray &data);
};
