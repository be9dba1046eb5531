#include "foundation/Log.h"

#include <cstdio>
#include <mutex>

// The log is used until the very end of the process, so its state is never destroyed.
static std::mutex &logMutex()
{
    static auto *mutex = new std::mutex;
    return *mutex;
}

static Log::Sink &currentSink()
{
    static auto *sink = new Log::Sink;
    return *sink;
}

static void writeToStandardError(const QString &text)
{
    const QByteArray line = text.toUtf8() + '\n';
    std::fwrite(line.constData(), 1, static_cast<std::size_t>(line.size()), stderr);
}

void Log::line(const QString &text)
{
    Sink sink;
    {
        const std::lock_guard lock(logMutex());
        sink = currentSink();
    }
    sink ? sink(text) : writeToStandardError(text);
}

void Log::setSink(Sink sink)
{
    const std::lock_guard lock(logMutex());
    currentSink() = std::move(sink);
}
