#pragma once

#include "foundation/Date.h"

#include <functional>

/// The only source of the present moment.
class Clock
{
public:
    using Source = std::function<Date()>;

    /// The present moment, or what the source that was set answers. Any thread.
    static Date now();

    /// Takes the present moment from `source` from now on; an empty source means the system's clock again.
    static void setSource(Source source);
};
