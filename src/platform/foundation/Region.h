#pragma once

#include "foundation/Date.h"

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QTimeZone>

/// The time zone and the locale of the process: one place that knows them, so that all conversions between
/// wall clock and instant agree.
///
/// The zone comes from `TZ` or the system's setting, the locale from `LC_ALL`, `LC_TIME` or `LANG`, both at
/// first use. The zone rules are those of the system's zone data. Any thread may ask.
class Region
{
public:
    /// The IANA name of the zone, for example "Europe/Berlin"; a POSIX `TZ` rule if that is what is set.
    static QByteArray zoneIdentifier();
    static QTimeZone timeZone();

    /// The locale of dates and sorting as an ICU identifier without keywords, for example "de_DE".
    static QString localeIdentifier();

    /// Changes the zone of the process. An unknown name is logged and changes nothing.
    static void setZone(const QByteArray &identifier);

    /// Changes the locale of dates, sorting and words. Takes ICU ("de_DE") and POSIX ("de_DE.UTF-8") forms.
    static void setLocale(const QString &identifier);

    /// Reads zone and locale from the environment and the system again, for a user who has moved them while
    /// the program ran. What `setZone` and `setLocale` have set is given up.
    static void reload();

    /// A number that changes whenever the zone or the locale does; caches of derived values key on it.
    static quint64 generation();

    /// The user's languages for words, best first and always ending with "en": "de", "ja", "zh-Hans". The
    /// first is the language of the messages (`LANGUAGE`, `LC_ALL`, `LC_MESSAGES`, `LANG`).
    static QStringList preferredLocalizations();

    /// Seconds to add to UTC for the wall clock at that instant, in the process's zone.
    static int secondsFromGMT(Date at);

    /// The same for a zone by name; 0 for an unknown name.
    static int secondsFromGMT(Date at, const QByteArray &zone);
};
