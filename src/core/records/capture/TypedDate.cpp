#include "records/capture/TypedDate.h"

#include "foundation/Clock.h"
#include "records/capture/CaptureLine.h"
#include "records/capture/CaptureWords.h"

using namespace Qt::Literals::StringLiterals;

namespace {

std::optional<TypedDate> readWith(const CaptureWords &dictionary, const QString &text)
{
    const CaptureLine::Names none{[](QStringView) { return std::pair(CategoryPtr(), 0); },
                                  [](QStringView) { return std::pair(ProjectPtr(), 0); },
                                  [](QStringView) { return std::pair(ContactPtr(), 0); }};
    const Capture capture = CaptureLine(dictionary, none, Clock::now()).readDate(text);
    const bool isOneDay = capture.isSomeday || (capture.day && !capture.lastDay);
    const bool isMore =
        capture.repeat || capture.priority || !capture.place.isEmpty() || capture.lastMinute.has_value();
    if (!isOneDay || isMore || !capture.title.trimmed().isEmpty())
        return std::nullopt;
    if (capture.isSomeday)
        return TypedDate{.isSomeday = true};
    return TypedDate{*capture.day, capture.minute};
}

} // namespace

std::optional<TypedDate> TypedDate::read(const QString &text)
{
    if (const auto date = readWith(CaptureWords::ofUser(), text))
        return date;
    // Where all of it must be a date, words of the other language that is known best do no harm.
    static const CaptureWords german({u"de"_s});
    return readWith(german, text);
}
