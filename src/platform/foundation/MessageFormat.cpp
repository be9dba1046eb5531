#include "foundation/MessageFormat.h"

#include "foundation/IcuText.h"
#include "foundation/Log.h"

#include <unicode/msgfmt.h>

static icu::Formattable formattable(const MessageFormat::Argument &argument)
{
    if (argument.isNumber)
        return {static_cast<int32_t>(argument.number)};
    return {icu::UnicodeString(icuText(argument.text))};
}

QString MessageFormat::format(const QString &pattern, const QString &locale,
                              const std::vector<Argument> &arguments)
{
    std::vector<icu::Formattable> values;
    values.reserve(arguments.size());
    for (const Argument &argument : arguments)
        values.push_back(formattable(argument));
    UErrorCode status = U_ZERO_ERROR;
    const icu::MessageFormat format(icuText(pattern), icu::Locale(locale.toUtf8().constData()), status);
    icu::UnicodeString filled;
    icu::FieldPosition position;
    if (U_SUCCESS(status))
        format.format(values.data(), static_cast<int>(values.size()), filled, position, status);
    if (U_SUCCESS(status))
        return qtText(filled);
    Log::line(
        QStringLiteral("Cannot fill in \"%1\": %2").arg(pattern, QString::fromLatin1(u_errorName(status))));
    return pattern;
}
