#include "workspace/DesktopAppearance.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusServiceWatcher>
#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QStandardPaths>

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace {

const QString portalService = u"org.freedesktop.portal.Desktop"_s;
const QString portalPath = u"/org/freedesktop/portal/desktop"_s;
const QString portalInterface = u"org.freedesktop.portal.Settings"_s;
const QString appearanceSpace = u"org.freedesktop.appearance"_s;
const QString interfaceSpace = u"org.gnome.desktop.interface"_s;
const QString accessibilitySpace = u"org.gnome.desktop.a11y.interface"_s;

constexpr int portalPatience = 3'000;
/// What a desktop may ask for without making the screens unusable.
constexpr double leastTextScale = 0.75;
constexpr double mostTextScale = 3;

QVariant unwrapped(QVariant value)
{
    while (value.userType() == qMetaTypeId<QDBusVariant>())
        value = value.value<QDBusVariant>().variant();
    return value;
}

/// Absent for a value of another type, and for one out of range, which stands for no choice.
std::optional<std::array<double, 3>> accentOf(const QVariant &value)
{
    if (value.userType() != qMetaTypeId<QDBusArgument>())
        return {};
    const auto argument = value.value<QDBusArgument>();
    if (argument.currentSignature() != u"(ddd)"_s)
        return {};
    std::array<double, 3> parts{};
    argument.beginStructure();
    for (double &part : parts)
        argument >> part;
    argument.endStructure();
    const bool isColour = std::ranges::all_of(parts, [](double part) { return part >= 0 && part <= 1; });
    return isColour ? std::optional(parts) : std::nullopt;
}

bool isNameOfHighContrast(const QString &theme)
{
    return theme.startsWith(u"HighContrast"_s, Qt::CaseInsensitive);
}

bool isNameOfDark(const QString &theme)
{
    return theme.contains(u"dark"_s, Qt::CaseInsensitive) ||
           theme.compare(u"HighContrastInverse"_s, Qt::CaseInsensitive) == 0;
}

/// A colour as Plasma writes it: "12,34,56".
std::optional<std::array<double, 3>> colourOf(const QStringList &numbers)
{
    if (numbers.size() < 3)
        return {};
    std::array<double, 3> parts{};
    for (int place = 0; place < 3; ++place) {
        bool isNumber = false;
        parts[size_t(place)] = numbers.at(place).toDouble(&isNumber) / 255;
        if (!isNumber || parts[size_t(place)] < 0 || parts[size_t(place)] > 1)
            return {};
    }
    return parts;
}

/// The values of a settings file by "Section/Key". `QSettings` has its own ideas about the names of sections.
QHash<QString, QString> settingsIn(const QString &path)
{
    QHash<QString, QString> settings;
    QFile file(path);
    constexpr qint64 mostBytes = 1 << 20;
    if (!file.open(QIODevice::ReadOnly))
        return settings;
    QString section;
    for (const QString &raw : QString::fromUtf8(file.read(mostBytes)).split(u'\n')) {
        const QString line = raw.trimmed();
        if (line.startsWith(u'[') && line.endsWith(u']'))
            section = line.mid(1, line.size() - 2);
        else if (const auto equals = line.indexOf(u'='); equals > 0 && !line.startsWith(u'#'))
            settings.insert(section + u'/' + line.left(equals).trimmed(), line.mid(equals + 1).trimmed());
    }
    return settings;
}

DesktopLook lookOfPlasma(const QString &file)
{
    DesktopLook look;
    const QHash<QString, QString> settings = settingsIn(file);
    look.accent = colourOf(settings.value(u"General/AccentColor"_s).split(u','));
    const QString scheme = settings.value(u"General/ColorScheme"_s);
    constexpr double middle = 0.5;
    if (const auto window = colourOf(settings.value(u"Colors:Window/BackgroundNormal"_s).split(u',')))
        look.scheme = *std::ranges::max_element(*window) < middle ? DesktopLook::Scheme::Dark
                                                                  : DesktopLook::Scheme::Light;
    else if (!scheme.isEmpty())
        look.scheme = isNameOfDark(scheme) ? DesktopLook::Scheme::Dark : DesktopLook::Scheme::Light;
    look.hasHighContrast = scheme.contains(u"HighContrast"_s, Qt::CaseInsensitive);
    return look;
}

DesktopLook lookOfGtk(const QString &file)
{
    DesktopLook look;
    const QHash<QString, QString> settings = settingsIn(file);
    const QString theme = settings.value(u"Settings/gtk-theme-name"_s);
    const QString prefersDark = settings.value(u"Settings/gtk-application-prefer-dark-theme"_s).toLower();
    if (isNameOfDark(theme) || prefersDark == u"1"_s || prefersDark == u"true"_s)
        look.scheme = DesktopLook::Scheme::Dark;
    look.hasHighContrast = isNameOfHighContrast(theme);
    return look;
}

QString plasmaFile(const QString &folder)
{
    return folder + u"/kdeglobals"_s;
}

QStringList gtkFiles(const QString &folder)
{
    return {folder + u"/gtk-4.0/settings.ini"_s, folder + u"/gtk-3.0/settings.ini"_s};
}

} // namespace

DesktopLook DesktopAppearance::lookOfFiles(const QString &configurationFolder, const QString &desktops)
{
    if (desktops.split(u':').contains(u"KDE"_s) && QFileInfo::exists(plasmaFile(configurationFolder)))
        return lookOfPlasma(plasmaFile(configurationFolder));
    for (const QString &file : gtkFiles(configurationFolder)) {
        if (QFileInfo::exists(file))
            return lookOfGtk(file);
    }
    return {};
}

DesktopAppearance::DesktopAppearance(QObject *parent)
    : QObject(parent)
    , folder(QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation))
{}

void DesktopAppearance::start()
{
    readFiles();
    connect(&files, &QFileSystemWatcher::fileChanged, this, &DesktopAppearance::readFiles);
    connect(&files, &QFileSystemWatcher::directoryChanged, this, &DesktopAppearance::readFiles);
    if (qEnvironmentVariableIsEmpty("DBUS_SESSION_BUS_ADDRESS")) {
        isSettled = true;
        return decide();
    }
    QDBusConnection bus = QDBusConnection::sessionBus();
    bus.connect(portalService, portalPath, portalInterface, u"SettingChanged"_s, this,
                SLOT(settingChanged(QDBusMessage)));
    auto *watcher =
        new QDBusServiceWatcher(portalService, bus, QDBusServiceWatcher::WatchForRegistration, this);
    connect(watcher, &QDBusServiceWatcher::serviceRegistered, this, &DesktopAppearance::askPortal);
    askPortal();
}

void DesktopAppearance::askPortal()
{
    QDBusMessage call =
        QDBusMessage::createMethodCall(portalService, portalPath, portalInterface, u"ReadAll"_s);
    call << QStringList{appearanceSpace, interfaceSpace, accessibilitySpace};
    auto *watcher =
        new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(call, portalPatience), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher] {
        watcher->deleteLater();
        const QDBusMessage answer = watcher->reply();
        isSettled = true;
        if (watcher->isError() || answer.signature() != u"a{sa{sv}}"_s)
            return decide();
        ofPortal = {};
        themeOfPortal.reset();
        isSchemeTold = false;
        hasPortal = true;
        const auto spaces = answer.arguments().constFirst().value<QDBusArgument>();
        for (spaces.beginMap(); !spaces.atEnd();) {
            QString space;
            QVariantMap values;
            spaces.beginMapEntry();
            spaces >> space >> values;
            spaces.endMapEntry();
            for (auto value = values.cbegin(); value != values.cend(); ++value)
                take(space, value.key(), unwrapped(value.value()));
        }
        decide();
    });
}

void DesktopAppearance::settingChanged(const QDBusMessage &told)
{
    if (told.signature() != u"ssv"_s)
        return;
    const QVariantList parts = told.arguments();
    hasPortal = true;
    isSettled = true;
    take(parts.at(0).toString(), parts.at(1).toString(), unwrapped(parts.at(2)));
    decide();
}

void DesktopAppearance::take(const QString &space, const QString &key, const QVariant &value)
{
    if (space == appearanceSpace && key == u"color-scheme"_s) {
        const uint wish = value.toUInt();
        isSchemeTold = true;
        ofPortal.scheme = wish == 1   ? DesktopLook::Scheme::Dark
                          : wish == 2 ? DesktopLook::Scheme::Light
                                      : DesktopLook::Scheme::NoWish;
    } else if (space == appearanceSpace && key == u"accent-color"_s) {
        ofPortal.accent = accentOf(value);
    } else if ((space == appearanceSpace && key == u"contrast"_s) ||
               (space == accessibilitySpace && key == u"high-contrast"_s)) {
        ofPortal.hasHighContrast = value.toBool() || value.toUInt() == 1;
    } else if (space == interfaceSpace && key == u"gtk-theme"_s) {
        themeOfPortal = value.toString();
    } else if (space == interfaceSpace && key == u"text-scaling-factor"_s) {
        const double scale = value.toDouble();
        ofPortal.textScale = scale > 0 ? std::clamp(scale, leastTextScale, mostTextScale) : 1;
    }
}

/// An editor may write a file by putting another in its place, which ends the watch over it; so its folder is
/// watched, too.
void DesktopAppearance::readFiles()
{
    QStringList wanted = gtkFiles(folder);
    wanted.append(plasmaFile(folder));
    for (const QString &file : wanted) {
        for (const QString &path : {file, QFileInfo(file).absolutePath()}) {
            if (QFileInfo::exists(path) && !files.files().contains(path) &&
                !files.directories().contains(path))
                files.addPath(path);
        }
    }
    ofFiles = lookOfFiles(folder, qEnvironmentVariable("XDG_CURRENT_DESKTOP"));
    decide();
}

/// Older desktops tell a dark look by the name of the theme alone, and some portals tell neither.
DesktopLook DesktopAppearance::completed() const
{
    DesktopLook look = ofPortal;
    if (themeOfPortal) {
        look.hasHighContrast = look.hasHighContrast || isNameOfHighContrast(*themeOfPortal);
        if (look.scheme == DesktopLook::Scheme::NoWish && isNameOfDark(*themeOfPortal))
            look.scheme = DesktopLook::Scheme::Dark;
    } else if (!isSchemeTold) {
        look.scheme = ofFiles.scheme;
        look.hasHighContrast = look.hasHighContrast || ofFiles.hasHighContrast;
    }
    return look;
}

void DesktopAppearance::decide()
{
    if (!isSettled)
        return;
    const DesktopLook look = hasPortal ? completed() : ofFiles;
    if (look == current)
        return;
    current = look;
    Q_EMIT changed();
}
