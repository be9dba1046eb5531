#pragma once

#include <QApplication>

/// Tells by the pointer, as long as it lives, that the program is at work and hears nothing else.
class BusyCursor
{
public:
    BusyCursor() { QApplication::setOverrideCursor(Qt::WaitCursor); }
    ~BusyCursor() { QApplication::restoreOverrideCursor(); }
    Q_DISABLE_COPY_MOVE(BusyCursor)
};
