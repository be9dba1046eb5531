#pragma once

#include <QString>

class QByteArray;

/// Asks the address `updateFeed` of the configuration whether there is a newer version, and says what came of
/// it. The answer is a JSON object with "version", such as "1.2.0", and "page", the address where it is told
/// of. Nothing is ever downloaded or installed.
namespace UpdateCheck {

/// Asks, and tells the user when the answer is there. Without such an address nothing happens.
void run();

/// Compares versions part by part as numbers: "1.10" is newer than "1.9", "1.0" is the same as "1".
bool isNewer(const QString &version, const QString &than);

} // namespace UpdateCheck
