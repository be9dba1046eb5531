#include "records/capture/CaptureLine.h"

#include "foundation/Clock.h"
#include "records/capture/CaptureReader.h"
#include "records/capture/CaptureWords.h"

CaptureLine::CaptureLine(const CaptureWords &dictionary, Names knownNames, Date now)
    : words(dictionary)
    , names(std::move(knownNames))
    , moment(now)
{}

CaptureLine CaptureLine::ofUser()
{
    return {CaptureWords::ofUser(), Names::ofStore(), Clock::now()};
}

Capture CaptureLine::read(const QString &line, const std::set<int> &literal) const
{
    return CaptureReader(words, names, moment, line, literal).read();
}

Capture CaptureLine::readDate(const QString &text) const
{
    return CaptureReader(words, names, moment, text, {}, true).read();
}
