#include "records/TaskManager.h"

std::optional<PaletteColor> TaskManager::priorityColor(int priority)
{
    switch (priority) {
    case static_cast<int>(Priority::High):
        return PaletteColor::ofBytes(255, 93, 85);
    case static_cast<int>(Priority::Medium):
        return PaletteColor::ofBytes(255, 191, 41);
    case static_cast<int>(Priority::Low):
        return PaletteColor::ofBytes(38, 206, 63);
    case static_cast<int>(Priority::None):
        return palette::colorNone;
    default:
        return std::nullopt;
    }
}
