#pragma once

#include <QAbstractAnimation>

#include <chrono>

/// How long things move, by name, and the one switch that lets them end at once.
namespace Animations {

using namespace std::chrono_literals;
inline constexpr auto detailSlideIn = 600ms;
inline constexpr auto detailSlideOut = 700ms;
inline constexpr auto calendarSlide = 400ms;
inline constexpr auto rowCollapse = 160ms;
inline constexpr auto hoverFade = 120ms;

/// Off: every animation ends at once. The desktop's own wish to have none is always followed.
void setEnabled(bool enabled);
bool isEnabled();

/// The length in milliseconds as an animation takes it; 0 while animations are off.
int duration(std::chrono::milliseconds length);

/// Starts an animation that deletes itself; with animations off it is at its end when this returns.
void start(QAbstractAnimation *animation);

} // namespace Animations
