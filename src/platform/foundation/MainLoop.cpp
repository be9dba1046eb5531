#include "foundation/MainLoop.h"

#include <QCoreApplication>
#include <QTimer>

using Milliseconds = std::chrono::milliseconds;

static Milliseconds rounded(Seconds length)
{
    return std::max(std::chrono::round<Milliseconds>(length), Milliseconds::zero());
}

static double pace = 1;

void MainLoop::setPace(double timesFaster)
{
    pace = timesFaster;
}

void MainLoop::performDelayed(Seconds delay, std::function<void()> block)
{
    if (auto *application = QCoreApplication::instance())
        QTimer::singleShot(rounded(delay / pace), application, std::move(block));
}

class RepeatingTimer::Timer : public QTimer
{};

RepeatingTimer::RepeatingTimer(Seconds interval, std::function<void()> block)
    : timer(std::make_unique<Timer>())
{
    QObject::connect(timer.get(), &QTimer::timeout, timer.get(), std::move(block));
    timer->start(rounded(interval));
}

RepeatingTimer::~RepeatingTimer() = default;
RepeatingTimer::RepeatingTimer(RepeatingTimer &&other) noexcept = default;
RepeatingTimer &RepeatingTimer::operator=(RepeatingTimer &&other) noexcept = default;
