#include "CalendarBackends.h"
#include "CommandLine.h"
#include "ContactBackends.h"
#include "cloud/Replication.h"
#include "shell/ApplicationLife.h"
#include "shell/Shell.h"
#include "shell/SingleInstance.h"
#include "store/AppDelegate.h"

#include <QApplication>

int main(int argc, char *argv[])
{
    if (const auto code = CommandLine::answer(argc, argv))
        return *code;
    if (const auto code = CommandLine::refuse(argc, argv))
        return *code;
    // Qt looks only once, at the start, whether assistive technology is there; it may come later.
    if (!qEnvironmentVariableIsSet("QT_LINUX_ACCESSIBILITY_ALWAYS_ON"))
        qputenv("QT_LINUX_ACCESSIBILITY_ALWAYS_ON", "1");
    QApplication application(argc, argv);
    SingleInstance instance;
    if (!instance.isFirst())
        return instance.activateOther() ? 0 : 1;
    Shell::prepareApplication();
    connectCalendars();
    connectContacts();
    Replication::setSealingLibrary(QCoreApplication::applicationDirPath() +
                                   QStringLiteral("/" MORVANE_LIBRARIES "/morvane-sealing"));
    AppDelegate delegate(std::make_unique<Shell>());
    ApplicationLife life(delegate, &instance);
    delegate.applicationWillFinishLaunching();
    delegate.applicationDidFinishLaunching();
    return QApplication::exec();
}
