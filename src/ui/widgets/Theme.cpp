#include "widgets/Theme.h"

#include <QGuiApplication>

using namespace Qt::Literals::StringLiterals;

static QFont scaled(double factor, QFont::Weight weight)
{
    QFont font = QGuiApplication::font();
    font.setPointSizeF(font.pointSizeF() * factor);
    font.setWeight(weight);
    return font;
}

QFont Theme::font(FontRole role)
{
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

QFont Theme::applicationFont()
{
    QFont font = QGuiApplication::font();
    font.setFamilies({u"Inter"_s, u"Cantarell"_s, u"Noto Sans"_s, font.family()});
    font.setPointSizeF(std::max(font.pointSizeF(), 10.0));
    return font;
}

static void setDisabled(QPalette &palette, QPalette::ColorRole role)
{
    palette.setColor(QPalette::Disabled, role, Theme::disabledText);
}

QPalette Theme::palette()
{
    QPalette palette(card, content);
    palette.setColor(QPalette::Window, content);
    palette.setColor(QPalette::WindowText, text);
    palette.setColor(QPalette::Base, card);
    palette.setColor(QPalette::AlternateBase, content);
    palette.setColor(QPalette::Text, text);
    palette.setColor(QPalette::Button, control);
    palette.setColor(QPalette::ButtonText, text);
    palette.setColor(QPalette::PlaceholderText, placeholderText);
    palette.setColor(QPalette::Highlight, accent);
    palette.setColor(QPalette::HighlightedText, textOnAccent);
    palette.setColor(QPalette::Link, accent);
    palette.setColor(QPalette::ToolTipBase, text);
    palette.setColor(QPalette::ToolTipText, card);
    palette.setColor(QPalette::Mid, controlBorder);
    palette.setColor(QPalette::Light, card);
    palette.setColor(QPalette::Midlight, divider);
    palette.setColor(QPalette::Dark, secondaryText);
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        setDisabled(palette, role);
    return palette;
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
