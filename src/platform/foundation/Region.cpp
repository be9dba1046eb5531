#include "foundation/Region.h"

#include "foundation/Calendar.h"
#include "foundation/IcuDate.h"
#include "foundation/Log.h"
#include "foundation/RegionState.h"
#include "foundation/ZoneRules.h"

#include <QDateTime>

#include <atomic>
#include <mutex>

using StatePointer = std::shared_ptr<const RegionState>;

static std::mutex stateMutex;
static std::atomic<quint64> currentGeneration{1};

static QByteArray firstSet(std::initializer_list<const char *> variables)
{
    for (const char *variable : variables)
        if (const QByteArray value = qgetenv(variable); !value.isEmpty())
            return value;
    return {};
}

static QByteArray zoneOfSystem()
{
    const QByteArray identifier = QTimeZone::systemTimeZoneId();
    return QTimeZone(identifier).isValid() ? identifier : QByteArrayLiteral("UTC");
}

static void append(QStringList &languages, const QString &language)
{
    if (!language.isEmpty() && !languages.contains(language))
        languages.append(language);
}

/// The names of `LANGUAGE` come first, as gettext has it, but not where the locale is "C".
static QStringList languagesOfEnvironment()
{
    const auto messages = gregorianLocale(firstSet({"LC_ALL", "LC_MESSAGES", "LANG"}));
    QStringList languages;
    if (qstrcmp(messages.getVariant(), "POSIX") != 0)
        for (const QByteArray &name : qgetenv("LANGUAGE").split(':'))
            if (!name.isEmpty())
                append(languages, languageOf(gregorianLocale(name)));
    append(languages, languageOf(messages));
    append(languages, QStringLiteral("en"));
    return languages;
}

static RegionState withLocale(RegionState state, const icu::Locale &locale)
{
    state.locale = locale;
    state.localeIdentifier = QString::fromLatin1(locale.getBaseName());
    return state;
}

static RegionState stateOfEnvironment()
{
    RegionState state;
    state.zoneIdentifier = zoneOfSystem();
    state.languages = languagesOfEnvironment();
    return withLocale(std::move(state), gregorianLocale(firstSet({"LC_ALL", "LC_TIME", "LANG"})));
}

static StatePointer &stateStorage()
{
    static StatePointer state = std::make_shared<RegionState>(stateOfEnvironment());
    return state;
}

StatePointer currentRegionState()
{
    const std::lock_guard lock(stateMutex);
    return stateStorage();
}

static void replaceState(RegionState state)
{
    const std::lock_guard lock(stateMutex);
    const auto &old = stateStorage();
    if (old->zoneIdentifier == state.zoneIdentifier && old->locale == state.locale &&
        old->languages == state.languages)
        return;
    stateStorage() = std::make_shared<RegionState>(std::move(state));
    ++currentGeneration;
}

QByteArray Region::zoneIdentifier()
{
    return currentRegionState()->zoneIdentifier;
}

QTimeZone Region::timeZone()
{
    return QTimeZone(zoneIdentifier());
}

QString Region::localeIdentifier()
{
    return currentRegionState()->localeIdentifier;
}

void Region::setZone(const QByteArray &identifier)
{
    if (!QTimeZone(identifier).isValid()) {
        Log::line(QStringLiteral("Cannot set the time zone: the system knows none named \"%1\".")
                      .arg(QString::fromUtf8(identifier)));
        return;
    }
    RegionState state = *currentRegionState();
    state.zoneIdentifier = identifier;
    replaceState(std::move(state));
}

void Region::setLocale(const QString &identifier)
{
    const auto locale = gregorianLocale(identifier.toUtf8());
    RegionState state = withLocale(*currentRegionState(), locale);
    state.languages.clear();
    append(state.languages, languageOf(locale));
    append(state.languages, QStringLiteral("en"));
    replaceState(std::move(state));
}

void Region::reload()
{
    replaceState(stateOfEnvironment());
}

quint64 Region::generation()
{
    return currentGeneration.load(std::memory_order_acquire);
}

QStringList Region::preferredLocalizations()
{
    return currentRegionState()->languages;
}

int Region::secondsFromGMT(Date at)
{
    return Calendar::current().secondsFromGMT(at);
}

int Region::secondsFromGMT(Date at, const QByteArray &zone)
{
    const QTimeZone rules(zone);
    const auto instant = QDateTime::fromSecsSinceEpoch(static_cast<qint64>(boundedUnixSeconds(at)), Qt::UTC);
    return rules.isValid() ? rules.offsetFromUtc(instant) : 0;
}
