#include "eventkit/UtcDateTime.h"

#include "foundation/IcuDate.h"
#include "foundation/IcuText.h"

#include <unicode/smpdtfmt.h>

static const icu::SimpleDateFormat &format()
{
    static const auto shared = [] {
        UErrorCode status = U_ZERO_ERROR;
        auto made = std::make_unique<icu::SimpleDateFormat>(icu::UnicodeString("yyyyMMdd'T'HHmmss'Z'"),
                                                            icu::Locale::getEnglish(), status);
        made->adoptTimeZone(icu::TimeZone::getGMT()->clone());
        made->setLenient(false);
        return made;
    }();
    return *shared;
}

QString UtcDateTime::string(Date date)
{
    icu::UnicodeString text;
    format().format(icuDate(date), text);
    return qtText(text);
}

OptionalDate UtcDateTime::date(const QString &text)
{
    icu::ParsePosition position(0);
    const UDate instant = format().parse(icuText(text), position);
    if (position.getErrorIndex() >= 0 || position.getIndex() != static_cast<int>(text.size()))
        return std::nullopt;
    return text.isEmpty() ? std::nullopt : OptionalDate(dateFromIcu(instant));
}
