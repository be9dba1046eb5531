#pragma once

#include "store/entities/TaskValues.h"

#include <QColor>
#include <QFont>
#include <QPalette>

#include <array>

/// Every colour, font and measure of the screens, by name.
namespace Theme {

// Text.
inline constexpr QColor text{15, 30, 45};
inline constexpr QColor secondaryText{88, 102, 118};
inline constexpr QColor disabledText{164, 173, 184};
inline constexpr QColor placeholderText{112, 123, 137};
inline constexpr QColor selectedText{24, 74, 158};
inline constexpr QColor textOnAccent{255, 255, 255};

// Surfaces.
inline constexpr QColor content{246, 247, 249};
inline constexpr QColor card{255, 255, 255};
inline constexpr QColor cardBorder{227, 231, 236};
inline constexpr QColor divider{236, 239, 243};
inline constexpr QColor hover{247, 249, 252};
inline constexpr QColor control{255, 255, 255};
inline constexpr QColor controlPressed{236, 240, 246};
inline constexpr QColor controlBorder{208, 215, 224};
inline constexpr QColor scrollHandle{15, 30, 45, 60};
inline constexpr QColor scrollHandleHover{15, 30, 45, 110};
inline constexpr QColor scrollHandleOnDark{255, 255, 255, 70};
inline constexpr QColor scrollHandleOnDarkHover{255, 255, 255, 120};

// The accent and its weaker forms.
inline constexpr QColor accent{43, 99, 201};
inline constexpr QColor accentHover{55, 112, 216};
inline constexpr QColor accentPressed{33, 79, 166};
inline constexpr QColor selection{43, 99, 201, 30};
inline constexpr QColor inactiveSelection{15, 30, 45, 16};
inline constexpr QColor focusRing{43, 99, 201, 190};

// The filter of a list: its words while it is off, and while a grouping keeps it from acting.
inline constexpr QColor filterOff{130, 133, 140};
inline constexpr QColor filterInactive{199, 200, 203};
inline constexpr QColor filterPillHover{43, 99, 201, 48};

// Marks.
inline constexpr QColor priorityHigh{255, 93, 85};
inline constexpr QColor priorityMedium{255, 191, 41};
inline constexpr QColor priorityLow{38, 206, 63};
inline constexpr QColor overdue{203, 46, 38};
inline constexpr QColor warning{158, 92, 8};
inline constexpr QColor checkBox{126, 140, 156};
inline constexpr QColor checkBoxDone{43, 99, 201};
inline constexpr QColor emptyIcon{150, 163, 179};
inline constexpr QColor emptyDisc{235, 239, 245};

// The circles with the initials of people and companies.
inline constexpr std::array portraits{QColor{214, 226, 245}, QColor{219, 238, 226}, QColor{246, 227, 214},
                                      QColor{232, 222, 243}, QColor{212, 235, 240}, QColor{245, 222, 229}};
inline constexpr QColor portraitText{62, 78, 97};

// The sidebar: white 0.2 at 0.95.
inline constexpr QColor sidebar{51, 51, 51, 242};
inline constexpr QColor sidebarText{226, 228, 231};
inline constexpr QColor sidebarQuiet{172, 176, 182};
inline constexpr QColor sidebarSelection{255, 255, 255, 31};
inline constexpr QColor sidebarHover{255, 255, 255, 13};
inline constexpr QColor sidebarAccent{126, 172, 255};
inline constexpr QColor sidebarFocus{126, 172, 255, 200};
inline constexpr QColor sidebarFocusQuiet{255, 255, 255, 64};
inline constexpr QColor badge{255, 255, 255, 31};
inline constexpr QColor badgeText{214, 217, 221};
inline constexpr QColor badgeOverdue{214, 72, 65};

// The start window: its dark half and its light one.
inline constexpr QColor startText{177, 193, 206};
inline constexpr QColor startRightText{75, 82, 96};

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
/// The font of the program: the families that it was drawn with, or what the desktop gives.
QFont applicationFont();
QPalette palette();
/// The colour of the dot of a priority; invalid for none.
QColor priority(Priority priority);

} // namespace Theme
