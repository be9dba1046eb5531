#pragma once

#include <QApplication>
#include <QEvent>
#include <QTimer>
#include <QWidget>

#include <cstdio>
#include <unistd.h>

/// Writes one byte to standard output as soon as a window of the application stands painted, and then holds
/// still until its standard input is closed, so that whoever started it can look at it.
class FirstPaint : public QObject
{
public:
    explicit FirstPaint(QApplication &application) { application.installEventFilter(this); }

    bool eventFilter(QObject *object, QEvent *event) override
    {
        const auto *widget = event->type() == QEvent::Paint ? qobject_cast<QWidget *>(object) : nullptr;
        if (widget && widget->isWindow() && !isTold) {
            isTold = true;
            // The paint event is still on its way: the picture stands when the loop comes round again.
            QTimer::singleShot(0, this, [] {
                const char byte = '\n';
                const bool isHeld = write(STDOUT_FILENO, &byte, 1) == 1 && getchar() != EOF;
                std::_Exit(isHeld ? 1 : 0);
            });
        }
        return QObject::eventFilter(object, event);
    }

private:
    bool isTold = false;
};
