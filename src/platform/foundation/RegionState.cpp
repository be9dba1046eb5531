#include "foundation/RegionState.h"

/// "sr_RS" with the script "Latn" is "sr_Latn_RS".
static QByteArray withScript(const QByteArray &base, const QByteArray &script)
{
    const auto parts = base.split('_');
    return (QByteArrayList{parts.front(), script} + parts.mid(1)).join('_');
}

/// A POSIX name as ICU spells it. ICU's own keywords after the "@" stay; of POSIX's modifiers only those of
/// the script carry a meaning today.
static QByteArray icuName(const QByteArray &name)
{
    const QByteArray beforeModifier = name.split('@').front();
    const QByteArray modifier = name.mid(beforeModifier.size() + 1);
    const QByteArray base = beforeModifier.split('.').front();
    if (base.isEmpty() || base == "C" || base == "POSIX")
        return "en_US_POSIX";
    if (modifier == "latin")
        return withScript(base, "Latn");
    if (modifier == "cyrillic")
        return withScript(base, "Cyrl");
    return modifier.contains('=') ? base + '@' + modifier : base;
}

icu::Locale gregorianLocale(const QByteArray &name)
{
    auto locale = icu::Locale::createCanonical(icuName(name).constData());
    UErrorCode status = U_ZERO_ERROR;
    locale.setKeywordValue("calendar", "gregorian", status);
    return locale;
}

QString languageOf(const icu::Locale &locale)
{
    QString language = QString::fromLatin1(locale.getLanguage());
    QByteArray script = locale.getScript();
    if (language == QLatin1String("zh") && script.isEmpty()) {
        icu::Locale likely(locale);
        UErrorCode status = U_ZERO_ERROR;
        likely.addLikelySubtags(status);
        script = likely.getScript();
    }
    // Written Norwegian and Portuguese are at hand in one form each.
    if (language == QLatin1String("no") || language == QLatin1String("nn"))
        return QStringLiteral("nb");
    if (language == QLatin1String("pt"))
        return QStringLiteral("pt-PT");
    return script.isEmpty() ? language : language + QLatin1Char('-') + QString::fromLatin1(script);
}
