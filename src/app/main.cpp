#include "CalendarBackends.h"
#include "shell/ApplicationLife.h"
#include "shell/Shell.h"
#include "shell/SingleInstance.h"
#include "store/AppDelegate.h"

#include <QApplication>

#include <cstdio>
#include <cstring>

static bool isVersionAsked(int argc, char *argv[])
{
    return argc == 2 && std::strcmp(argv[1], "--version") == 0;
}

int main(int argc, char *argv[])
{
    if (isVersionAsked(argc, argv)) {
        std::printf("Morvane %s\n", qPrintable(AppDelegate::version()));
        return 0;
    }
    QApplication application(argc, argv);
    SingleInstance instance;
    if (!instance.isFirst())
        return instance.activateOther() ? 0 : 1;
    Shell::prepareApplication();
    connectCalendars();
    AppDelegate delegate(std::make_unique<Shell>());
    ApplicationLife life(delegate, &instance);
    delegate.applicationWillFinishLaunching();
    delegate.applicationDidFinishLaunching();
    return QApplication::exec();
}
