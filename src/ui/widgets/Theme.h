#pragma once

#include "store/entities/TaskValues.h"

#include <QBrush>
#include <QColor>
#include <QFont>
#include <QPalette>

#include <array>
#include <optional>

/// Every colour, font and measure of the screens, by name.
namespace Theme {

/// How the screens look, as the desktop or the user wants it. High contrast has a set of colours for each.
enum class Scheme { Light, Dark, LightContrast, DarkContrast };
inline constexpr std::array schemes{Scheme::Light, Scheme::Dark, Scheme::LightContrast, Scheme::DarkContrast};

/// The colours that come from the accent, which a desktop can choose.
enum class Accent { Fill, FillHover, FillPressed, Ink, TextOnFill, Selection, SelectionStrong, Ring, Count };

/// The scheme that is shown. It starts as light.
Scheme scheme();
bool isDark();
/// A colour of the accent in a scheme.
/// \param accent as the desktop has it; what is too weak to be read is made stronger. Absent for our own.
QColor accentOf(Scheme scheme, Accent part, std::optional<QColor> accent = {});

/// A scheme with the colours that it makes of an accent.
struct Shown
{
    explicit Shown(Scheme wanted, std::optional<QColor> accent = {});

    Scheme scheme;
    std::array<QColor, static_cast<size_t>(Accent::Count)> accents;
};
/// What is painted with at present. Widgets are not told of another: see `Appearance`.
const Shown &shown();
void setShown(const Shown &wanted);
inline void setScheme(Scheme scheme, std::optional<QColor> accent = {})
{
    setShown(Shown(scheme, accent));
}

/// A colour by what it is for: another one in each scheme, looked up whenever it is used.
class Role
{
public:
    constexpr Role(QColor light, QColor dark, QColor lightContrast, QColor darkContrast)
        : shades{light, dark, lightContrast, darkContrast}
    {}
    /// The same in all of them.
    constexpr explicit Role(QColor always)
        : Role(always, always, always, always)
    {}
    constexpr explicit Role(Accent accentPart)
        : part(accentPart)
    {}

    // It stands wherever a colour does.
    operator QColor() const;                          // NOLINT(google-explicit-constructor)
    operator QBrush() const { return QColor(*this); } // NOLINT(google-explicit-constructor)
    QColor darker(int factor) const { return QColor(*this).darker(factor); }
    /// As HTML has it.
    QString name() const { return QColor(*this).name(); }
    /// In a scheme that may not be shown, with our own accent.
    QColor of(Scheme wanted) const;

private:
    std::array<QColor, schemes.size()> shades{};
    Accent part = Accent::Count;
};

// Text.
inline constexpr Role text{{15, 30, 45}, {232, 236, 241}, {0, 0, 0}, {255, 255, 255}};
inline constexpr Role secondaryText{{84, 98, 114}, {165, 174, 185}, {38, 48, 58}, {222, 228, 235}};
inline constexpr Role disabledText{{164, 173, 184}, {104, 112, 122}, {96, 104, 114}, {158, 166, 176}};
inline constexpr Role placeholderText{{98, 109, 123}, {146, 156, 168}, {64, 74, 85}, {200, 207, 216}};
inline constexpr Role selectedText{Accent::Ink};
inline constexpr Role textOnAccent{Accent::TextOnFill};
/// On what has a colour of its own in each scheme: a calendar, a category, a photo.
inline constexpr Role textOnColour{QColor{255, 255, 255}};
inline constexpr Role darkTextOnColour{QColor{15, 30, 45}};

// Surfaces.
inline constexpr Role content{{246, 247, 249}, {24, 27, 31}, {255, 255, 255}, {0, 0, 0}};
inline constexpr Role card{{255, 255, 255}, {34, 38, 43}, {255, 255, 255}, {0, 0, 0}};
inline constexpr Role cardBorder{{227, 231, 236}, {52, 57, 64}, {70, 80, 90}, {190, 198, 208}};
inline constexpr Role divider{{236, 239, 243}, {45, 50, 57}, {120, 130, 140}, {130, 138, 148}};
inline constexpr Role hover{{247, 249, 252}, {40, 45, 51}, {234, 239, 246}, {30, 36, 44}};
inline constexpr Role control{{255, 255, 255}, {43, 48, 55}, {255, 255, 255}, {0, 0, 0}};
inline constexpr Role controlPressed{{236, 240, 246}, {53, 59, 67}, {222, 229, 238}, {40, 48, 58}};
/// The edges of fields and buttons, by which they are known.
inline constexpr Role controlBorder{{130, 143, 158}, {120, 130, 142}, {60, 70, 80}, {200, 208, 218}};
/// The edges of bubbles, and lines that only divide.
inline constexpr Role edge{{208, 215, 224}, {70, 77, 87}, {60, 70, 80}, {200, 208, 218}};
inline constexpr Role shadow{{15, 30, 45, 255}, {0, 0, 0, 255}, {15, 30, 45, 255}, {0, 0, 0, 255}};
inline constexpr Role scrollHandle{
    {15, 30, 45, 60}, {255, 255, 255, 60}, {0, 0, 0, 140}, {255, 255, 255, 150}};
inline constexpr Role scrollHandleHover{
    {15, 30, 45, 110}, {255, 255, 255, 110}, {0, 0, 0, 190}, {255, 255, 255, 200}};
inline constexpr Role scrollHandleOnDark{
    {255, 255, 255, 70}, {255, 255, 255, 60}, {255, 255, 255, 150}, {255, 255, 255, 150}};
inline constexpr Role scrollHandleOnDarkHover{
    {255, 255, 255, 120}, {255, 255, 255, 110}, {255, 255, 255, 200}, {255, 255, 255, 200}};
/// Over a window that something else is shown on.
inline constexpr Role veil{QColor{20, 26, 33, 245}};
inline constexpr Role textOnVeil{QColor{255, 255, 255}};

// The accent and its weaker forms.
inline constexpr Role accent{Accent::Fill};
inline constexpr Role accentHover{Accent::FillHover};
inline constexpr Role accentPressed{Accent::FillPressed};
inline constexpr Role selection{Accent::Selection};
inline constexpr Role inactiveSelection{
    {15, 30, 45, 16}, {255, 255, 255, 20}, {15, 30, 45, 40}, {255, 255, 255, 46}};
inline constexpr Role focusRing{Accent::Ring};

// The filter of a list: its words while it is off, and while a grouping keeps it from acting.
inline constexpr Role filterOff{{100, 107, 118}, {160, 168, 179}, {40, 48, 58}, {222, 228, 235}};
inline constexpr Role filterInactive{{104, 110, 120}, {152, 160, 171}, {70, 78, 88}, {196, 203, 212}};
inline constexpr Role filterPillHover{Accent::SelectionStrong};

// Marks.
inline constexpr Role priorityHigh{{255, 93, 85}, {255, 105, 97}, {204, 20, 10}, {255, 120, 112}};
inline constexpr Role priorityMedium{{255, 191, 41}, {255, 196, 61}, {176, 108, 0}, {255, 208, 90}};
inline constexpr Role priorityLow{{38, 206, 63}, {56, 208, 82}, {0, 128, 32}, {90, 224, 112}};
inline constexpr Role overdue{{203, 46, 38}, {255, 134, 126}, {160, 10, 0}, {255, 160, 152}};
inline constexpr Role warning{{158, 92, 8}, {240, 178, 92}, {112, 62, 0}, {255, 206, 130}};
inline constexpr Role checkBox{{126, 140, 156}, {132, 143, 156}, {30, 40, 50}, {230, 236, 242}};
inline constexpr Role checkBoxDone{Accent::Fill};
inline constexpr Role emptyIcon{{122, 136, 153}, {118, 128, 141}, {60, 70, 82}, {200, 208, 218}};
inline constexpr Role emptyDisc{{235, 239, 245}, {42, 47, 54}, {235, 239, 245}, {30, 36, 44}};

// The circles with the initials of people and companies.
inline constexpr std::array portraits{Role{{214, 226, 245}, {46, 62, 90}, {214, 226, 245}, {30, 44, 70}},
                                      Role{{219, 238, 226}, {42, 70, 54}, {219, 238, 226}, {26, 52, 38}},
                                      Role{{246, 227, 214}, {86, 60, 44}, {246, 227, 214}, {66, 44, 30}},
                                      Role{{232, 222, 243}, {70, 56, 90}, {232, 222, 243}, {52, 40, 70}},
                                      Role{{212, 235, 240}, {38, 68, 76}, {212, 235, 240}, {24, 50, 58}},
                                      Role{{245, 222, 229}, {86, 52, 66}, {245, 222, 229}, {66, 38, 50}}};
inline constexpr Role portraitText{{62, 78, 97}, {220, 227, 236}, {0, 0, 0}, {255, 255, 255}};

// The calendars.
inline constexpr Role quietDay{{246, 247, 249}, {29, 32, 37}, {236, 239, 243}, {22, 26, 31}};
inline constexpr Role halfHourLine{{241, 243, 246}, {40, 44, 50}, {196, 203, 212}, {70, 77, 86}};
inline constexpr Role currentTime{{238, 80, 31}, {255, 120, 76}, {184, 44, 0}, {255, 144, 108}};
inline constexpr Role minuteLabel{{15, 30, 45}, {232, 236, 241}, {0, 0, 0}, {255, 255, 255}};
inline constexpr Role minuteLabelText{{255, 255, 255}, {20, 24, 29}, {255, 255, 255}, {0, 0, 0}};
inline constexpr Role eventShadow{{0, 0, 0, 77}, {0, 0, 0, 150}, {0, 0, 0, 77}, {0, 0, 0, 150}};
inline constexpr Role eventShadowOverOther{{0, 0, 0, 110}, {0, 0, 0, 190}, {0, 0, 0, 110}, {0, 0, 0, 190}};

// The sidebar, which is dark in each scheme: white 0.2 at 0.95 in the light one.
inline constexpr Role sidebar{{51, 51, 51, 242}, {18, 20, 23, 242}, {0, 0, 0, 255}, {0, 0, 0, 255}};
inline constexpr Role sidebarText{{226, 228, 231}, {222, 225, 229}, {255, 255, 255}, {255, 255, 255}};
inline constexpr Role sidebarQuiet{{186, 190, 196}, {172, 177, 184}, {226, 230, 235}, {226, 230, 235}};
inline constexpr Role sidebarSelection{
    {255, 255, 255, 31}, {255, 255, 255, 28}, {255, 255, 255, 64}, {255, 255, 255, 64}};
inline constexpr Role sidebarHover{
    {255, 255, 255, 13}, {255, 255, 255, 13}, {255, 255, 255, 32}, {255, 255, 255, 32}};
inline constexpr Role sidebarAccent{{126, 172, 255}, {126, 172, 255}, {160, 200, 255}, {160, 200, 255}};
inline constexpr Role sidebarWarning{{240, 178, 92}, {240, 178, 92}, {255, 206, 130}, {255, 206, 130}};
inline constexpr Role sidebarFocus{{126, 172, 255}, {126, 172, 255}, {255, 255, 255}, {255, 255, 255}};
inline constexpr Role badge{
    {255, 255, 255, 31}, {255, 255, 255, 26}, {255, 255, 255, 40}, {255, 255, 255, 40}};
inline constexpr Role badgeText{{228, 231, 234}, {216, 220, 224}, {255, 255, 255}, {255, 255, 255}};
inline constexpr Role badgeOverdue{{196, 54, 47}, {196, 54, 47}, {168, 24, 16}, {168, 24, 16}};
inline constexpr Role badgeOverdueText{QColor{255, 255, 255}};

// The start window: its dark half and its light one.
inline constexpr Role startText{{177, 193, 206}, {177, 193, 206}, {226, 234, 241}, {226, 234, 241}};
inline constexpr Role startRightText{{75, 82, 96}, {190, 198, 208}, {0, 0, 0}, {255, 255, 255}};

// Measures: all of them multiples of half the rhythm.
inline constexpr int unit = 8;
inline constexpr int cardRadius = 10;
inline constexpr int controlRadius = 7;
inline constexpr int controlHeight = 32;
inline constexpr int toolBarHeight = 64;
inline constexpr int contentMargin = 24;
inline constexpr int scrollBarWidth = 10;

enum class FontRole { Body, BodyStrong, Small, SmallStrong, Title, Large, SidebarTop, SidebarChild };

/// The font of a role. Sizes follow the application font, so a user's larger text is kept.
QFont font(FontRole role);
/// The font of the program: the families that it was drawn with, or what the desktop gives, with pictures of
/// emoji in colour.
/// \param scale by how much larger than the one that the desktop gave the program at its start.
QFont applicationFont(double scale = 1);
/// All colours of the scheme that is shown, for each state of a window.
QPalette palette();
/// How well two colours can be told apart, from 1 to 21, as the Web Content Accessibility Guidelines define
/// it. What lets something through is mixed with what is below it.
double contrast(const QColor &ink, const QColor &ground);
/// What words need at least.
inline constexpr double leastTextContrast = 4.5;
/// What has to be seen, but not read, needs at least: signs, and the edges of controls.
inline constexpr double leastMarkContrast = 3;
/// The colour itself, or the nearest of its hue, lighter or darker, that has a contrast to another one.
QColor readable(const QColor &colour, const QColor &other, double leastContrast);
/// A colour as it looks on an opaque one.
QColor mixed(const QColor &above, const QColor &below);
/// The edge of a dot, by which one of any colour is seen on a card.
QColor dotEdge(const QColor &colour);
/// The colour of the dot of a priority; invalid for none.
QColor priority(Priority priority);

} // namespace Theme
