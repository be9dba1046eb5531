#pragma once

#include "foundation/Error.h"

#include <QByteArray>
#include <QString>

/// Writes a file whole or not at all: on an error, such as a full disk, the former file stays as it was and
/// nothing else is left. The error ("files") says why, without the path. The folder must exist.
[[nodiscard]] OptionalError writeFileAtomically(const QString &path, const QByteArray &contents);
