#include "widgets/LookOfProgram.h"

#include "foundation/Localization.h"
#include "foundation/UserDefaults.h"
#include "widgets/Appearance.h"

#include <QApplication>

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace {

const QString schemeKey = u"appearanceScheme"_s;
const QString contrastKey = u"appearanceContrast"_s;
const QString densityKey = u"appearanceDensity"_s;
// What the desktop wanted last.
const QString lastSchemeKey = u"desktopScheme"_s;
const QString lastContrastKey = u"desktopContrast"_s;
const QString lastAccentKey = u"desktopAccent"_s;
const QString lastTextScaleKey = u"desktopTextScale"_s;

template <typename Choice>
Choice choiceOf(const QString &key, Choice greatest)
{
    const qint64 number = UserDefaults::standard().integer(key);
    return number >= 0 && number <= qint64(greatest) ? Choice(number) : Choice(0);
}

Theme::Scheme schemeOf(bool isDark, bool hasHighContrast)
{
    if (hasHighContrast)
        return isDark ? Theme::Scheme::DarkContrast : Theme::Scheme::LightContrast;
    return isDark ? Theme::Scheme::Dark : Theme::Scheme::Light;
}

} // namespace

LookOfProgram::LookOfProgram(QObject *parent)
    : QObject(parent)
{
    connect(&desktop, &DesktopAppearance::changed, this, [this] {
        remember(*desktop.look());
        show(*desktop.look());
    });
}

void LookOfProgram::followDesktop()
{
    desktop.start();
}

void LookOfProgram::showRemembered()
{
    show(remembered());
}

void LookOfProgram::show(const DesktopLook &look)
{
    const SchemeChoice scheme = schemeChoice();
    const ContrastChoice contrast = contrastChoice();
    const bool isDark = scheme == SchemeChoice::Dark ||
                        (scheme == SchemeChoice::AsDesktop && look.scheme == DesktopLook::Scheme::Dark);
    const bool isHigh =
        contrast == ContrastChoice::High || (contrast == ContrastChoice::AsDesktop && look.hasHighContrast);
    std::optional<QColor> accent;
    if (look.accent)
        accent =
            QColor::fromRgbF(float((*look.accent)[0]), float((*look.accent)[1]), float((*look.accent)[2]));
    Appearance::shared().setTextScale(look.textScale);
    Appearance::shared().setCompact(densityChoice() == DensityChoice::Compact);
    Appearance::shared().show(schemeOf(isDark, isHigh), accent);
}

LookOfProgram::SchemeChoice LookOfProgram::schemeChoice()
{
    return choiceOf(schemeKey, SchemeChoice::Dark);
}

LookOfProgram::ContrastChoice LookOfProgram::contrastChoice()
{
    return choiceOf(contrastKey, ContrastChoice::High);
}

LookOfProgram::DensityChoice LookOfProgram::densityChoice()
{
    return choiceOf(densityKey, DensityChoice::Compact);
}

void LookOfProgram::choose(DensityChoice choice)
{
    UserDefaults::standard().setObject(densityKey, qint64(choice));
    showRemembered();
}

void LookOfProgram::choose(SchemeChoice choice)
{
    UserDefaults::standard().setObject(schemeKey, qint64(choice));
    showRemembered();
}

void LookOfProgram::choose(ContrastChoice choice)
{
    UserDefaults::standard().setObject(contrastKey, qint64(choice));
    showRemembered();
}

QStringList LookOfProgram::schemeTitles()
{
    return {localized(u"As the desktop"_s), localized(u"Light"_s), localized(u"Dark"_s)};
}

QStringList LookOfProgram::contrastTitles()
{
    return {localized(u"As the desktop"_s), localized(u"Normal"_s), localized(u"High"_s)};
}

QStringList LookOfProgram::densityTitles()
{
    return {localized(u"Comfortable"_s), localized(u"Compact"_s)};
}

DesktopLook LookOfProgram::remembered()
{
    const UserDefaults &defaults = UserDefaults::standard();
    DesktopLook look;
    look.scheme = choiceOf(lastSchemeKey, DesktopLook::Scheme::Light);
    look.hasHighContrast = defaults.boolean(lastContrastKey);
    if (const QColor accent(defaults.string(lastAccentKey)); accent.isValid())
        look.accent = {double(accent.redF()), double(accent.greenF()), double(accent.blueF())};
    if (const double scale = defaults.number(lastTextScaleKey); scale > 0)
        look.textScale = std::clamp(scale, 0.75, 3.0);
    return look;
}

void LookOfProgram::remember(const DesktopLook &look)
{
    UserDefaults &defaults = UserDefaults::standard();
    const auto keep = [&defaults](const QString &key, const QVariant &value) {
        if (defaults.object(key) != value)
            defaults.setObject(key, value);
    };
    keep(lastSchemeKey, qint64(look.scheme));
    keep(lastContrastKey, look.hasHighContrast);
    keep(lastTextScaleKey, look.textScale);
    if (look.accent)
        keep(lastAccentKey,
             QColor::fromRgbF(float((*look.accent)[0]), float((*look.accent)[1]), float((*look.accent)[2]))
                 .name());
    else if (defaults.contains(lastAccentKey))
        defaults.removeObject(lastAccentKey);
}
