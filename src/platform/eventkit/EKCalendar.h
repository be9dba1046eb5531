#pragma once

#include <QString>

/// A calendar of the desktop.
struct EKCalendar
{
    QString title;
    QString calendarIdentifier;
    bool allowsContentModifications = true;
};
