#include "records/TaskManager.h"

std::optional<PaletteColor> TaskManager::priorityColor(Priority priority)
{
    switch (priority) {
    case Priority::High:
        return PaletteColor::ofBytes(255, 93, 85);
    case Priority::Medium:
        return PaletteColor::ofBytes(255, 191, 41);
    case Priority::Low:
        return PaletteColor::ofBytes(38, 206, 63);
    case Priority::None:
        return palette::colorNone;
    }
    return std::nullopt;
}
