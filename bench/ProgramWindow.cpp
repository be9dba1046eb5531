#include "CalendarBackends.h"
#include "FirstPaint.h"

#include "shell/ApplicationLife.h"
#include "shell/Shell.h"
#include "shell/SingleInstance.h"
#include "store/AppDelegate.h"

/// The program as its own main() puts it together, up to its first picture.
int main(int argc, char *argv[])
{
    QApplication application(argc, argv);
    FirstPaint firstPaint(application);
    SingleInstance instance;
    if (!instance.isFirst())
        return 1;
    Shell::prepareApplication();
    connectCalendars();
    AppDelegate delegate(std::make_unique<Shell>());
    ApplicationLife life(delegate, &instance);
    delegate.applicationWillFinishLaunching();
    delegate.applicationDidFinishLaunching();
    return QApplication::exec();
}
