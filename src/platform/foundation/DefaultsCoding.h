#pragma once

#include "foundation/Date.h"

#include <QJsonValue>
#include <QVariant>

/// How the values of the settings stand in JSON. A date is {"$date": "2026-11-21T09:00:00Z"} (ISO 8601, UTC,
/// with as many decimals of a second as the date needs), bytes are {"$data": "<base64>"}; inside lists and
/// maps too.
QJsonValue jsonFromVariant(const QVariant &value);

/// The opposite. Objects of another shape are maps; a date or base64 that cannot be read stays the map that
/// it is.
QVariant variantFromJson(const QJsonValue &json);

/// A date before the year 1 or after 9999 is written and read as the first or last second of these years.
QString iso8601FromDate(Date date);
OptionalDate dateFromIso8601(const QString &text);
