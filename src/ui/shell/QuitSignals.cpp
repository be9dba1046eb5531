#include "shell/QuitSignals.h"

#include <QSocketNotifier>

#include <array>
#include <csignal>
#include <fcntl.h>
#include <unistd.h>

/// A handler may do next to nothing, but it may write into a pipe. The ends: read, write.
static std::array<int, 2> wakeUpPipe = {-1, -1};

static void onSignal(int)
{
    const int savedError = errno;
    constexpr char byte = 1;
    // A full pipe has the wish in it already.
    [[maybe_unused]] const ssize_t written = ::write(wakeUpPipe[1], &byte, 1);
    errno = savedError;
}

static void handle(int signal, void (*handler)(int))
{
    struct sigaction action = {};
    action.sa_handler = handler;
    action.sa_flags = SA_RESTART;
    ::sigemptyset(&action.sa_mask);
    ::sigaction(signal, &action, nullptr);
}

QuitSignals::QuitSignals(QObject *parent)
    : QObject(parent)
{
    if (::pipe2(wakeUpPipe.data(), O_CLOEXEC | O_NONBLOCK) != 0)
        return;
    notifier = new QSocketNotifier(wakeUpPipe[0], QSocketNotifier::Read, this);
    connect(notifier, &QSocketNotifier::activated, this, &QuitSignals::drain);
    handle(SIGTERM, onSignal);
    handle(SIGINT, onSignal);
}

QuitSignals::~QuitSignals()
{
    handle(SIGTERM, SIG_DFL);
    handle(SIGINT, SIG_DFL);
    for (int &end : wakeUpPipe)
        ::close(std::exchange(end, -1));
}

void QuitSignals::drain()
{
    std::array<char, 16> bytes = {};
    while (::read(wakeUpPipe[0], bytes.data(), bytes.size()) > 0) {
    }
    Q_EMIT received();
}
