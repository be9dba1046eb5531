#pragma once

#include "widgets/Theme.h"
#include "workspace/DesktopAppearance.h"

#include <QObject>

/// How the program looks: as the desktop wants it, or as the user has fixed it. It is kept, so that the first
/// picture of the next start is right before the desktop has answered. Main thread only.
class LookOfProgram : public QObject
{
    Q_OBJECT
public:
    /// What the user can choose. The numbers are stored.
    enum class SchemeChoice { AsDesktop = 0, Light = 1, Dark = 2 };
    enum class ContrastChoice { AsDesktop = 0, Normal = 1, High = 2 };

    enum class DensityChoice { Comfortable = 0, Compact = 1 };

    explicit LookOfProgram(QObject *parent = nullptr);

    /// Shows the look of the last run.
    static void showRemembered();
    /// Follows the desktop from now on.
    void followDesktop();

    static SchemeChoice schemeChoice();
    static ContrastChoice contrastChoice();
    static DensityChoice densityChoice();
    /// Kept, and shown at once.
    static void choose(SchemeChoice choice);
    static void choose(ContrastChoice choice);
    static void choose(DensityChoice choice);
    /// The words of the choices, in their order.
    static QStringList schemeTitles();
    static QStringList contrastTitles();
    static QStringList densityTitles();

private:
    static void show(const DesktopLook &look);
    static DesktopLook remembered();
    static void remember(const DesktopLook &look);

    DesktopAppearance desktop;
};
