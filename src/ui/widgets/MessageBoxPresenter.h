#pragma once

#include "foundation/Alert.h"

/// Shows alerts as message boxes over the active window.
class MessageBoxPresenter : public AlertPresenter
{
public:
    int present(const AlertQuestion &question) override;
};
