#include "widgets/LongWork.h"

#include "widgets/ProgressSign.h"

#include <QApplication>

using namespace Qt::Literals::StringLiterals;

/// Milliseconds of silence that nobody minds, and between two looks at what the user does.
constexpr int patience = 400;
constexpr int interval = 100;
/// So many steps last longer than that at any rate.
constexpr int manySteps = 2'000;

LongWork::LongWork(std::size_t steps, QString sentence, bool canBeStopped)
    : count(static_cast<int>(steps))
    , label(std::move(sentence))
    , isStoppable(canBeStopped)
{}

LongWork::~LongWork() = default;

void LongWork::show()
{
    busy.reset();
    sign = std::make_unique<ProgressSign>(label, count, isStoppable, QApplication::activeWindow());
}

bool LongWork::step()
{
    ++done;
    if (!timer.isValid()) {
        timer.start();
        busy.emplace();
    }
    const qint64 now = timer.elapsed();
    const int silence = count < manySteps ? patience : interval;
    if (done >= count || now < silence || now - lastShown < interval)
        return true;
    lastShown = now;
    if (!sign)
        show();
    // Here the user's press on the button is heard.
    sign->setValue(done);
    return !sign->wasCanceled();
}
