#pragma once

#include <QString>

/// Opens a link with the program that the desktop has for it. Where there is none the user is told, and can
/// copy the words instead. Whether it was opened.
/// \param name what the words are, such as "Phone".
bool openLink(const QString &link, const QString &name, const QString &words);
