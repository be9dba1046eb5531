#include "widgets/LongWork.h"

#include "foundation/Localization.h"

#include <QApplication>
#include <QProgressDialog>

using namespace Qt::Literals::StringLiterals;

/// Milliseconds of silence that nobody minds, and between two looks at what the user does.
constexpr int patience = 400;
constexpr int interval = 100;

LongWork::LongWork(std::size_t steps, QString sentence, bool canBeStopped)
    : count(static_cast<int>(steps))
    , label(std::move(sentence))
    , isStoppable(canBeStopped)
{}

LongWork::~LongWork() = default;

void LongWork::show()
{
    busy.reset();
    dialog = std::make_unique<QProgressDialog>(QApplication::activeWindow());
    dialog->setObjectName(u"longWork"_s);
    dialog->setWindowModality(Qt::ApplicationModal);
    dialog->setLabelText(label);
    dialog->setCancelButtonText(isStoppable ? localized(u"Cancel"_s) : QString());
    dialog->setRange(0, count);
    dialog->setMinimumDuration(0);
}

bool LongWork::step()
{
    ++done;
    if (!timer.isValid()) {
        timer.start();
        busy.emplace();
    }
    const qint64 now = timer.elapsed();
    if (done >= count || now < patience || now - lastShown < interval)
        return true;
    lastShown = now;
    if (!dialog)
        show();
    // Here the user's press on the button is heard.
    dialog->setValue(done);
    return !isStoppable || !dialog->wasCanceled();
}
