#pragma once

#include <QCoreApplication>
#include <QElapsedTimer>

/// Handles events until a condition holds, for five seconds at most. Whether it holds.
template <typename Condition>
bool becomes(Condition condition)
{
    constexpr qint64 mostMilliseconds = 5000;
    QElapsedTimer timer;
    timer.start();
    while (!condition()) {
        if (timer.elapsed() >= mostMilliseconds)
            return false;
        QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents, 20);
    }
    return true;
}
