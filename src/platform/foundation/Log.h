#pragma once

#include <QString>

#include <functional>

/// The log: plain lines on standard error, without levels. Any thread.
class Log
{
public:
    using Sink = std::function<void(const QString &line)>;

    static void line(const QString &text);

    /// Where lines go from now on; an empty sink means standard error again.
    static void setSink(Sink sink);
};
