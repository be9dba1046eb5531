#include "records/Functional.h"

#include "foundation/Alert.h"
#include "foundation/Localization.h"
#include "foundation/MainLoop.h"

void Functional::messageAlertWithTitle(const QString &title, const QString &message)
{
    const QString shownTitle = localized(title);
    Alert::run({.title = shownTitle,
                .message = shownTitle,
                .informativeText = localized(message),
                .buttons = {localized(QStringLiteral("OK"))}});
}

void Functional::performDelayed(double seconds, std::function<void()> block)
{
    MainLoop::performDelayed(Seconds(seconds), std::move(block));
}
