#include "Waiting.h"

#include <QElapsedTimer>
#include <QEventLoop>
#include <QTimer>

bool waitUntil(const std::function<bool()> &isTrue)
{
    constexpr int mostMilliseconds = 10'000;
    constexpr int stepMilliseconds = 10;
    QElapsedTimer waited;
    waited.start();
    while (!isTrue() && waited.elapsed() < mostMilliseconds) {
        QEventLoop loop;
        QTimer::singleShot(stepMilliseconds, &loop, &QEventLoop::quit);
        loop.exec();
    }
    return isTrue();
}
