#include "records/Waiting.h"

#include "foundation/Alert.h"

#include <QApplication>
#include <QTimer>
#include <QWidget>

bool Waiting::isForAnswer()
{
    return Alert::isAsking() || QApplication::activeModalWidget();
}

bool Waiting::isForUser()
{
    return isForAnswer() || QApplication::activePopupWidget();
}

void Waiting::afterwards(bool (*isWaiting)(), QObject *context, std::function<void()> call)
{
    QTimer::singleShot(lookInterval, context, [=, later = std::move(call)]() mutable {
        if (isWaiting())
            afterwards(isWaiting, context, std::move(later));
        else
            later();
    });
}

void Waiting::remove(QWidget *widget)
{
    widget->hide();
    if (isForUser())
        afterwards(isForUser, widget, [widget] { delete widget; });
    else
        delete widget;
}
