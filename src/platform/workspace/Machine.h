#pragma once

#include <QString>

/// What the computer says of itself, read from its files.
namespace Machine {

/// The maker's name of the model, such as "20XW004AGE", from the firmware or the device tree; empty if
/// neither tells. \param root the folder that holds "sys" and "proc".
QString model(const QString &root = QStringLiteral("/"));

/// The system and its kernel, such as "Debian GNU/Linux 12 (bookworm), Linux 6.1.0".
/// \param root the folder that holds "etc" and "usr".
QString system(const QString &root = QStringLiteral("/"));

} // namespace Machine
