#pragma once

#include "foundation/Alert.h"

/// While it lives, each question is asked once: the same one again gets the answer that it got before. For
/// work on many things of which several may raise the same question.
class AlertsOnce
{
public:
    AlertsOnce();
    ~AlertsOnce();
    AlertsOnce(const AlertsOnce &) = delete;
    AlertsOnce &operator=(const AlertsOnce &) = delete;

private:
    std::shared_ptr<AlertPresenter> former;
};
