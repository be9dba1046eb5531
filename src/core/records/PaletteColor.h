#pragma once

/// A colour of the shared palette, its components from 0 to 1.
struct PaletteColor
{
    double red = 0;
    double green = 0;
    double blue = 0;
    double alpha = 1;

    static constexpr PaletteColor ofBytes(int red, int green, int blue)
    {
        return {red / 255.0, green / 255.0, blue / 255.0};
    }
    bool operator==(const PaletteColor &) const = default;
};

namespace palette {

/// Stands where a record has no colour of its own.
inline constexpr PaletteColor colorNone = PaletteColor::ofBytes(158, 170, 184);

} // namespace palette
