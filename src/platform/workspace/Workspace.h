#pragma once

#include <QString>

#include <functional>

/// What the desktop does for the program.
class Workspace
{
public:
    Workspace() = delete;

    /// Opens an address (for example "https:", "mailto:", "tel:") with the program that the user has for it.
    /// False if there is none, or without a screen.
    static bool openUrl(const QString &url);
    /// Who opens addresses; the program with a screen sets it at start.
    using UrlOpener = std::function<bool(const QString &)>;
    static void setUrlOpener(UrlOpener opener);
};
