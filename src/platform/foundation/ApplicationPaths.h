#pragma once

#include <QString>

/// The user's folders as freedesktop.org lays them out (XDG base directories). The environment is read at
/// each call; a variable that is unset, empty or a relative path means the default below the home folder.
/// Folders need not exist.
class ApplicationPaths
{
public:
    /// `$XDG_DATA_HOME`, default "~/.local/share".
    static QString dataFolder();
    /// `$XDG_CONFIG_HOME`, default "~/.config".
    static QString configFolder();
    /// `$XDG_CACHE_HOME`, default "~/.cache".
    static QString cacheFolder();
};
