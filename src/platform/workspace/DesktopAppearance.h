#pragma once

#include <QFileSystemWatcher>
#include <QObject>
#include <QString>
#include <QVariantMap>

#include <array>
#include <optional>

class QDBusMessage;

/// How the user wants programs to look, as told to the desktop.
struct DesktopLook
{
    enum class Scheme { NoWish, Dark, Light };

    Scheme scheme = Scheme::NoWish;
    bool hasHighContrast = false;
    /// Red, green and blue from 0 to 1 (sRGB); absent if none was chosen.
    std::optional<std::array<double, 3>> accent = {};
    /// By how much texts are to be larger, 1 for as they are.
    double textScale = 1;

    bool operator==(const DesktopLook &) const = default;
};

/// Follows the wishes for the look of programs: through the settings portal (`org.freedesktop.appearance`),
/// and where there is none through the settings files of GTK and of Plasma.
///
/// It never waits: nothing is known until the portal has answered or turned out not to be there. Main thread
/// only.
class DesktopAppearance : public QObject
{
    Q_OBJECT
public:
    explicit DesktopAppearance(QObject *parent = nullptr);

    /// Begins to read and to follow.
    void start();
    /// Absent until it is known.
    const std::optional<DesktopLook> &look() const { return current; }

    /// What settings files say; what they do not tell of is as it is without wishes.
    /// \param configurationFolder where the files of the user's settings are.
    /// \param desktops the names of the desktop, separated by colons, as in XDG_CURRENT_DESKTOP.
    static DesktopLook lookOfFiles(const QString &configurationFolder, const QString &desktops);

Q_SIGNALS:
    /// Also for the first time.
    void changed();

private Q_SLOTS:
    void settingChanged(const QDBusMessage &told);

private:
    void askPortal();
    void readFiles();
    void take(const QString &space, const QString &key, const QVariant &value);
    DesktopLook completed() const;
    void decide();

    QString folder;
    QFileSystemWatcher files;
    DesktopLook ofFiles;
    DesktopLook ofPortal;
    /// The name of the GTK theme, if the portal tells it.
    std::optional<QString> themeOfPortal;
    /// Whether the portal tells of a wish for dark or light, be it that there is none.
    bool isSchemeTold = false;
    bool hasPortal = false;
    /// Whether the portal has answered, or cannot.
    bool isSettled = false;
    std::optional<DesktopLook> current;
};
