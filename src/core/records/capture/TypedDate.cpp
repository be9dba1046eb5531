#include "records/capture/TypedDate.h"

#include "foundation/Clock.h"
#include "records/capture/CaptureLine.h"
#include "records/capture/CaptureWords.h"

std::optional<TypedDate> TypedDate::read(const QString &text)
{
    const CaptureLine::Names none{[](QStringView) { return std::pair(CategoryPtr(), 0); },
                                  [](QStringView) { return std::pair(ProjectPtr(), 0); },
                                  [](QStringView) { return std::pair(ContactPtr(), 0); }};
    const Capture capture = CaptureLine(CaptureWords::ofUser(), none, Clock::now()).read(text);
    const bool isOneDay = capture.day && !capture.lastDay && !capture.repeat && !capture.isSomeday;
    const bool isMore = capture.priority || !capture.place.isEmpty() || capture.lastMinute;
    if (!isOneDay || isMore || !capture.title.trimmed().isEmpty())
        return std::nullopt;
    return TypedDate{*capture.day, capture.minute};
}
