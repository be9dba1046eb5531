#pragma once

#include <QString>

#include <functional>

/// What the desktop does for the program.
class Workspace
{
public:
    Workspace() = delete;

    /// Opens an address with the program that the user has for it. Addresses come from records, and so from
    /// elsewhere: only "http:", "https:", "mailto:", "tel:" and "geo:" are opened, never a file or a program.
    /// False for any other, where no program is there for it, or without a screen.
    static bool openUrl(const QString &url);
    /// Who opens addresses; the program with a screen sets it at start.
    using UrlOpener = std::function<bool(const QString &)>;
    static void setUrlOpener(UrlOpener opener);
};
