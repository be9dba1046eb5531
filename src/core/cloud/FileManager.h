#pragma once

#include <QString>

/// The folders of the program.
class FileManager
{
public:
    FileManager() = delete;

    /// "Morvane" in the user's data folder: stores, pictures and calendars lie in it.
    static QString appFolderURL();
    /// Makes the application folder if it is missing. True only if it was made now.
    static bool createAppFolder();
    /// The same for a folder inside it.
    static bool createFolder(const QString &name);
};
