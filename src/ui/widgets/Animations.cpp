#include "widgets/Animations.h"

#include <QApplication>
#include <QStyle>

static bool &enabledFlag()
{
    static bool isOn = true;
    return isOn;
}

void Animations::setEnabled(bool enabled)
{
    enabledFlag() = enabled;
}

bool Animations::isEnabled()
{
    return enabledFlag() && QApplication::style()->styleHint(QStyle::SH_Widget_Animation_Duration) != 0;
}

int Animations::duration(std::chrono::milliseconds length)
{
    return isEnabled() ? static_cast<int>(length.count()) : 0;
}

void Animations::start(QAbstractAnimation *animation)
{
    animation->start(QAbstractAnimation::DeleteWhenStopped);
}
