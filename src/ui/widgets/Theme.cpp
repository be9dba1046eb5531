#include "widgets/Theme.h"

#include <QGuiApplication>

#include <algorithm>
#include <cmath>
#include <map>

using namespace Qt::Literals::StringLiterals;

namespace {

double luminance(const QColor &colour)
{
    const auto linear = [](float part) {
        return part <= 0.04045F ? double(part) / 12.92 : std::pow((double(part) + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(colour.redF()) + 0.7152 * linear(colour.greenF()) +
           0.0722 * linear(colour.blueF());
}

QColor lightened(const QColor &colour, float by)
{
    const QColor hsl = colour.toHsl();
    return QColor::fromHslF(std::max(0.0F, hsl.hslHueF()), hsl.hslSaturationF(),
                            std::clamp(hsl.lightnessF() + by, 0.0F, 1.0F))
        .toRgb();
}

QColor translucent(QColor colour, int alpha)
{
    colour.setAlpha(alpha);
    return colour;
}

/// The ground of a chosen row: no stronger than its quiet words can bear.
QColor selectionOf(const QColor &fill, Theme::Scheme scheme, int alpha)
{
    constexpr int step = 2;
    const auto canBeRead = [scheme](const QColor &ground) {
        return Theme::contrast(Theme::secondaryText.of(scheme),
                               Theme::mixed(ground, Theme::card.of(scheme))) >= Theme::leastTextContrast;
    };
    while (alpha > step && !canBeRead(translucent(fill, alpha)))
        alpha -= step;
    return translucent(fill, alpha);
}

bool isDarkScheme(Theme::Scheme scheme)
{
    return scheme == Theme::Scheme::Dark || scheme == Theme::Scheme::DarkContrast;
}

bool isContrastScheme(Theme::Scheme scheme)
{
    return scheme == Theme::Scheme::LightContrast || scheme == Theme::Scheme::DarkContrast;
}

/// What an accent must be at least, to be read on a selected row, too.
double leastContrastOf(Theme::Scheme scheme)
{
    return isContrastScheme(scheme) ? 8 : 5.2;
}

Theme::Shown &present()
{
    static Theme::Shown state(Theme::Scheme::Light);
    return state;
}

} // namespace

Theme::Shown::Shown(Scheme wanted, std::optional<QColor> accent)
    : scheme(wanted)
{
    for (size_t part = 0; part < accents.size(); ++part)
        accents[part] = accentOf(wanted, static_cast<Accent>(part), accent);
}

const Theme::Shown &Theme::shown()
{
    return present();
}

void Theme::setShown(const Shown &wanted)
{
    present() = wanted;
}

Theme::Scheme Theme::scheme()
{
    return shown().scheme;
}

bool Theme::isDark()
{
    return isDarkScheme(scheme());
}

QColor Theme::accentOf(Scheme scheme, Accent part, std::optional<QColor> accent)
{
    const bool dark = isDarkScheme(scheme);
    const bool strong = isContrastScheme(scheme);
    const QColor own = dark ? QColor(122, 168, 255) : QColor(43, 99, 201);
    // Of all grounds the one that is nearest to it.
    const QColor ground = dark ? control.of(scheme) : content.of(scheme);
    const QColor fill = readable(accent.value_or(own), ground, leastContrastOf(scheme));
    switch (part) {
    case Accent::Fill:
        return fill;
    case Accent::FillHover:
        return lightened(fill, dark ? 0.04F : -0.03F);
    case Accent::FillPressed:
        return lightened(fill, dark ? -0.06F : -0.09F);
    case Accent::Ink:
        return readable(fill, ground, strong ? 10 : 7);
    case Accent::TextOnFill:
        return dark ? QColor(10, 18, 32) : QColor(255, 255, 255);
    case Accent::Selection:
        return selectionOf(fill, scheme, strong ? 60 : dark ? 46 : 30);
    case Accent::SelectionStrong:
        return translucent(fill, strong ? 90 : dark ? 72 : 48);
    case Accent::Ring:
        return translucent(fill, strong ? 255 : 210);
    case Accent::Count:
        break;
    }
    return {};
}

Theme::Role::operator QColor() const
{
    const Shown &now = shown();
    return part == Accent::Count ? shades[static_cast<size_t>(now.scheme)]
                                 : now.accents[static_cast<size_t>(part)];
}

QColor Theme::Role::of(Scheme wanted) const
{
    return part == Accent::Count ? shades[static_cast<size_t>(wanted)] : accentOf(wanted, part);
}

QColor Theme::mixed(const QColor &above, const QColor &below)
{
    const float alpha = above.alphaF();
    const auto mix = [alpha](float one, float other) { return one * alpha + other * (1 - alpha); };
    return QColor::fromRgbF(mix(above.redF(), below.redF()), mix(above.greenF(), below.greenF()),
                            mix(above.blueF(), below.blueF()));
}

double Theme::contrast(const QColor &ink, const QColor &ground)
{
    const double one = luminance(mixed(ink, ground));
    const double other = luminance(ground);
    return (std::max(one, other) + 0.05) / (std::min(one, other) + 0.05);
}

QColor Theme::readable(const QColor &colour, const QColor &other, double leastContrast)
{
    QColor changed = colour.toHsl();
    // What stands on a dark colour becomes lighter, else darker.
    constexpr double middle = 0.18;
    const float step = luminance(other) > middle ? -0.01F : 0.01F;
    for (float lightness = changed.lightnessF(); contrast(changed, other) < leastContrast;) {
        lightness += step;
        if (lightness < 0 || lightness > 1)
            break;
        changed.setHslF(std::max(0.0F, changed.hslHueF()), changed.hslSaturationF(), lightness);
    }
    return changed.toRgb();
}

static QFont scaled(double factor, QFont::Weight weight)
{
    QFont font = QGuiApplication::font();
    font.setPointSizeF(font.pointSizeF() * factor);
    font.setWeight(weight);
    return font;
}

static QFont madeFor(Theme::FontRole role)
{
    using FontRole = Theme::FontRole;
    switch (role) {
    case FontRole::Body:
        return scaled(1, QFont::Normal);
    case FontRole::BodyStrong:
        return scaled(1, QFont::DemiBold);
    case FontRole::Small:
        return scaled(0.88, QFont::Normal);
    case FontRole::SmallStrong:
        return scaled(0.82, QFont::DemiBold);
    case FontRole::Title:
        return scaled(1.55, QFont::DemiBold);
    case FontRole::Large:
        return scaled(1.15, QFont::Medium);
    case FontRole::SidebarTop:
        return scaled(1, QFont::DemiBold);
    case FontRole::SidebarChild:
        return scaled(0.95, QFont::Normal);
    }
    return QGuiApplication::font();
}

/// Whoever asks gets the same one each time: a font finds its letters at its first use, which takes its time.
QFont Theme::font(FontRole role)
{
    static QFont base;
    static std::map<FontRole, QFont> made;
    if (const QFont present = QGuiApplication::font(); !(present == base) || made.empty()) {
        base = present;
        made.clear();
    }
    const auto known = made.find(role);
    return known != made.end() ? known->second : made.emplace(role, madeFor(role)).first->second;
}

QFont Theme::applicationFont(double scale)
{
    static const QFont ofDesktop = QGuiApplication::font();
    QFont font = ofDesktop;
    font.setFamilies({u"Inter"_s, u"Cantarell"_s, u"Noto Sans"_s, font.family(), u"Noto Color Emoji"_s});
    font.setPointSizeF(std::max(font.pointSizeF(), 10.0) * scale);
    return font;
}

QPalette Theme::palette()
{
    const std::pair<QPalette::ColorRole, Role> colours[] = {
        {QPalette::Window, content},
        {QPalette::WindowText, text},
        {QPalette::Base, card},
        {QPalette::AlternateBase, content},
        {QPalette::Text, text},
        {QPalette::Button, control},
        {QPalette::ButtonText, text},
        {QPalette::BrightText, text},
        {QPalette::PlaceholderText, placeholderText},
        {QPalette::Highlight, accent},
        {QPalette::HighlightedText, textOnAccent},
        {QPalette::Link, selectedText},
        {QPalette::LinkVisited, selectedText},
        {QPalette::ToolTipBase, text},
        {QPalette::ToolTipText, card},
        {QPalette::Mid, edge},
        {QPalette::Light, card},
        {QPalette::Midlight, divider},
        {QPalette::Dark, secondaryText},
        {QPalette::Shadow, shadow},
    };
    QPalette palette;
    for (const auto &[role, colour] : colours)
        palette.setColor(QPalette::All, role, colour);
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        palette.setColor(QPalette::Disabled, role, disabledText);
    return palette;
}

QColor Theme::dotEdge(const QColor &colour)
{
    return readable(colour, card, leastMarkContrast);
}

QColor Theme::priority(Priority priority)
{
    switch (priority) {
    case Priority::High:
        return priorityHigh;
    case Priority::Medium:
        return priorityMedium;
    case Priority::Low:
        return priorityLow;
    default:
        return {};
    }
}
