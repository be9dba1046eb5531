#pragma once

#include <QString>
#include <QStringList>

/// The pages about the program on the web, by the value `helpPages` of the configuration: the address of the
/// guide, or an object with the addresses of "default", "fr", "zh-Hant", "zh-Hans" and "videos".
namespace HelpAddresses {

/// The guide for the first of the user's languages: the French page for "fr" and "fr-CA", the Chinese ones
/// for their scripts, else the default one. Empty if no address is configured.
QString guide(const QStringList &preferredLocalizations);
/// The page with the videos, or an empty text.
QString videos();

} // namespace HelpAddresses
