#include "workspace/DesktopAppearance.h"
#include "SettingsPortal.h"
#include "support/TestSupport.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

using Scheme = DesktopLook::Scheme;

void write(const QString &path, const QByteArray &text)
{
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(text);
}

/// Lets the bus do its work until a look is there, or for so long that it cannot come any more.
bool becomes(const DesktopAppearance &desktop, const std::function<bool(const DesktopLook &)> &wanted)
{
    const QDeadlineTimer patience(5'000);
    while (!patience.hasExpired()) {
        if (desktop.look() && wanted(*desktop.look()))
            return true;
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
    }
    return false;
}

const QString appearance = QStringLiteral("org.freedesktop.appearance");

} // namespace

TEST(DesktopAppearanceTest, FollowsThePortalAlsoOneThatComesLater)
{
    DesktopAppearance desktop;
    desktop.start();
    EXPECT_TRUE(becomes(desktop, [](const DesktopLook &look) { return look == DesktopLook(); }))
        << "without a portal there is no wish";

    SettingsPortal portal;
    portal.settings[appearance] = {
        {QStringLiteral("color-scheme"), 1U},
        {QStringLiteral("accent-color"), QVariant::fromValue(PortalColour{0.25, 0.5, 1})}};
    portal.settings[QStringLiteral("org.gnome.desktop.interface")] = {
        {QStringLiteral("text-scaling-factor"), 1.25}};
    portal.appear();
    EXPECT_TRUE(becomes(desktop, [](const DesktopLook &look) {
        return look == DesktopLook{Scheme::Dark, false, std::array{0.25, 0.5, 1.0}, 1.25};
    }));

    portal.change(appearance, QStringLiteral("color-scheme"), 2U);
    portal.change(appearance, QStringLiteral("contrast"), 1U);
    // What stands for no choice, and what would make the screens unusable.
    portal.change(appearance, QStringLiteral("accent-color"), QVariant::fromValue(PortalColour{-1, -1, -1}));
    portal.change(QStringLiteral("org.gnome.desktop.interface"), QStringLiteral("text-scaling-factor"), 99.0);
    EXPECT_TRUE(becomes(desktop, [](const DesktopLook &look) {
        return look == DesktopLook{Scheme::Light, true, std::nullopt, 3};
    }));

    portal.change(appearance, QStringLiteral("contrast"), 0U);
    portal.change(QStringLiteral("org.gnome.desktop.interface"), QStringLiteral("gtk-theme"),
                  QStringLiteral("HighContrastInverse"));
    portal.change(appearance, QStringLiteral("color-scheme"), QStringLiteral("a text"));
    EXPECT_TRUE(becomes(desktop, [](const DesktopLook &look) {
        return look.hasHighContrast && look.scheme == Scheme::Dark;
    })) << "the theme of the older desktops says it, too";
}

TEST(DesktopAppearanceTest, LooksElsewhereForWhatThePortalDoesNotTell)
{
    const QTemporaryDir home;
    const QByteArray former = qgetenv("XDG_CONFIG_HOME");
    qputenv("XDG_CONFIG_HOME", home.path().toUtf8());
    write(home.filePath(QStringLiteral("gtk-3.0/settings.ini")), "[Settings]\ngtk-theme-name=Adwaita-dark\n");
    SettingsPortal portal;
    portal.settings[QStringLiteral("org.gnome.desktop.interface")] = {
        {QStringLiteral("text-scaling-factor"), 1.5}};
    portal.appear();
    DesktopAppearance desktop;
    desktop.start();
    const auto shows = [&desktop](Scheme scheme) {
        return becomes(desktop, [scheme](const DesktopLook &look) {
            return look.scheme == scheme && look.textScale == 1.5;
        });
    };
    EXPECT_TRUE(shows(Scheme::Dark)) << "as the file of the theme";
    const QString theme = QStringLiteral("gtk-theme");
    portal.change(QStringLiteral("org.gnome.desktop.interface"), theme, QStringLiteral("Adwaita"));
    EXPECT_TRUE(shows(Scheme::NoWish)) << "the portal knows better which theme it is";
    portal.change(QStringLiteral("org.gnome.desktop.interface"), theme, QStringLiteral("Arc-Dark"));
    EXPECT_TRUE(shows(Scheme::Dark));
    portal.change(appearance, QStringLiteral("color-scheme"), 2U);
    EXPECT_TRUE(shows(Scheme::Light)) << "a wish comes before a name";
    qputenv("XDG_CONFIG_HOME", former);
}

TEST(DesktopAppearanceTest, ReadsTheFilesOfGtkAndOfPlasma)
{
    const QTemporaryDir folder;
    const QString gtk3 = folder.filePath(QStringLiteral("gtk-3.0/settings.ini"));
    const QString gtk4 = folder.filePath(QStringLiteral("gtk-4.0/settings.ini"));
    const QString plasma = folder.filePath(QStringLiteral("kdeglobals"));
    const auto look = [&folder](const char *desktops = "XFCE") {
        return DesktopAppearance::lookOfFiles(folder.path(), QString::fromLatin1(desktops));
    };
    EXPECT_EQ(look(), DesktopLook());
    write(gtk3, "[Settings]\ngtk-theme-name=Adwaita-dark\n");
    EXPECT_EQ(look().scheme, Scheme::Dark);
    write(gtk4, "[Settings]\ngtk-theme-name=HighContrast\ngtk-application-prefer-dark-theme=false\n");
    EXPECT_EQ(look(), (DesktopLook{Scheme::NoWish, true})) << "the newer file counts";
    write(gtk4, "[Settings]\ngtk-application-prefer-dark-theme=1\n");
    EXPECT_EQ(look().scheme, Scheme::Dark);

    write(plasma, "[General]\nAccentColor=255,0,51\nColorScheme=BreezeLight\n\n"
                  "[Colors:Window]\nBackgroundNormal=32,35,38\n");
    EXPECT_EQ(look().scheme, Scheme::Dark) << "only Plasma asks this file";
    EXPECT_EQ(look("KDE"), (DesktopLook{Scheme::Dark, false, std::array{1.0, 0.0, 0.2}}))
        << "what windows look like says more than a name";
    write(plasma, "[General]\nAccentColor=red\nColorScheme=BreezeLight\n");
    EXPECT_EQ(look("GNOME:KDE"), (DesktopLook{Scheme::Light}));
    write(plasma, QByteArray("\0\xff[[[", 5));
    EXPECT_EQ(look("KDE"), DesktopLook());
}
