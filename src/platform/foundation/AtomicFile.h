#pragma once

#include "foundation/Error.h"

#include <QByteArray>
#include <QString>

#include <functional>

/// Asked when all is written and the new file is about to take the place of the former one; an error stops
/// that.
using LastCheck = std::function<OptionalError()>;

/// Writes a file whole or not at all: on an error, such as a full disk, the former file stays as it was and
/// nothing else is left. A new file is for its owner only (0600), one that is there keeps its mode. The error
/// ("files") says why, without the path. The folder must exist.
[[nodiscard]] OptionalError writeFileAtomically(const QString &path, const QByteArray &contents,
                                                const LastCheck &lastCheck = {});
