#include "eventkit/UtcDateTime.h"

#include "foundation/IcuDate.h"
#include "foundation/IcuText.h"

#include <unicode/gregocal.h>
#include <unicode/smpdtfmt.h>

static const icu::SimpleDateFormat &format()
{
    static const auto shared = [] {
        UErrorCode status = U_ZERO_ERROR;
        auto made = std::make_unique<icu::SimpleDateFormat>(icu::UnicodeString("yyyyMMdd'T'HHmmss'Z'"),
                                                            icu::Locale::getEnglish(), status);
        // iCalendar counts in the Gregorian calendar at all times, ICU in the Julian one before 1582.
        auto calendar = std::make_unique<icu::GregorianCalendar>(*icu::TimeZone::getGMT(),
                                                                 icu::Locale::getEnglish(), status);
        calendar->setGregorianChange(-furthestSeconds * 1000, status);
        made->adoptCalendar(calendar.release());
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
    UErrorCode status = U_ZERO_ERROR;
    const Date date = dateFromIcu(format().parse(icuText(text), status));
    // The formatter takes a text that ends before the "Z" or goes on behind it.
    return U_SUCCESS(status) && string(date) == text ? OptionalDate(date) : std::nullopt;
}
