#include "CalendarBackends.h"
#include "CommandLine.h"
#include "ContactBackends.h"
#include "cloud/Replication.h"
#include "shell/ApplicationLife.h"
#include "shell/Shell.h"
#include "shell/SingleInstance.h"
#include "store/AppDelegate.h"

#include <QApplication>

#include <cstdio>

int main(int argc, char *argv[])
{
    if (const auto code = CommandLine::answer(argc, argv))
        return *code;
    if (const auto code = CommandLine::refuse(argc, argv))
        return *code;
    // Qt looks only once, at the start, whether assistive technology is there; it may come later.
    if (!qEnvironmentVariableIsSet("QT_LINUX_ACCESSIBILITY_ALWAYS_ON"))
        qputenv("QT_LINUX_ACCESSIBILITY_ALWAYS_ON", "1");
    // Qt takes its own arguments out.
    const QStringList files = CommandLine::files(argc, argv);
    QApplication application(argc, argv);
    SingleInstance instance;
    if (!instance.isFirst() && instance.activateOther(files))
        return 0;
    if (!instance.isFirst()) {
        std::fputs("morvane: it is running already, but does not answer.\n", stderr);
        return 1;
    }
    Shell::prepareApplication();
    connectCalendars();
    connectContacts();
    Replication::setSealingLibrary(QCoreApplication::applicationDirPath() +
                                   QStringLiteral("/" MORVANE_LIBRARIES "/morvane-sealing"));
    AppDelegate delegate(std::make_unique<Shell>());
    ApplicationLife life(delegate, &instance);
    delegate.applicationWillFinishLaunching();
    delegate.applicationDidFinishLaunching();
    if (!files.isEmpty())
        life.openFiles(files);
    return QApplication::exec();
}
