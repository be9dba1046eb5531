#pragma once

#include <QObject>

#include <chrono>
#include <functional>

class QWidget;

/// Some calls wait for the user in the middle: they handle events until a question is answered or a menu
/// closes, and then go on with the screen or the pane that they came from. It has to be there still.
namespace Waiting {

/// Between two looks at whether a wait is over.
constexpr auto lookInterval = std::chrono::milliseconds(30);

/// Whether a question stands or work shows how far it is.
bool isForAnswer();
/// Whether there is that, or a menu or a bubble is open.
bool isForUser();
/// Calls once `isWaiting` says no any more, after the calls that waited have ended; never, if `context` goes
/// before.
void afterwards(bool (*isWaiting)(), QObject *context, std::function<void()> call);
/// Hides a widget and deletes it: at once, or as soon as no call waits.
void remove(QWidget *widget);

} // namespace Waiting
