#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <memory>

#include <unicode/locid.h>

/// What `Region` holds, in ICU's types; never changed once made.
struct RegionState
{
    QByteArray zoneIdentifier;
    QString localeIdentifier;
    /// With the Gregorian calendar forced.
    icu::Locale locale;
    QStringList languages;
};

std::shared_ptr<const RegionState> currentRegionState();

/// An ICU locale with the Gregorian calendar from a POSIX ("de_DE.UTF-8") or ICU name ("en_US@rg=dezzzz").
icu::Locale gregorianLocale(const QByteArray &name);

/// The language of a locale as tables of words are named: "de", "zh-Hans".
QString languageOf(const icu::Locale &locale);
