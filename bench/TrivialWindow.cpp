#include "FirstPaint.h"

#include <QLabel>

/// The least that a program with a window can be: what the start of the program is measured against.
int main(int argc, char *argv[])
{
    QApplication application(argc, argv);
    FirstPaint firstPaint(application);
    QLabel window(QStringLiteral("Trivial"));
    window.resize(1080, 720);
    window.show();
    return QApplication::exec();
}
