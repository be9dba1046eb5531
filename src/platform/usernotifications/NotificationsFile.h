#pragma once

#include "foundation/Error.h"
#include "usernotifications/UserNotification.h"

#include <vector>

/// Scheduled messages in a file: a JSON list of objects, dates in ISO 8601.
namespace notificationsfile {

/// A missing file has none. An entry that cannot be read is left out; a file that cannot be read is an error.
Result<std::vector<UserNotification>> read(const QString &path);
OptionalError write(const QString &path, const std::vector<UserNotification> &notifications);

} // namespace notificationsfile
