#pragma once

#include <QString>

enum class EKSourceType { Local = 0, Exchange = 1, CalDAV = 2 };

/// An account, or the machine itself, to which calendars belong.
struct EKSource
{
    QString title;
    EKSourceType sourceType = EKSourceType::Local;
    QString sourceIdentifier;

    bool operator==(const EKSource &) const = default;
};
