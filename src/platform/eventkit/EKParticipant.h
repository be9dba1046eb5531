#pragma once

#include <QString>

enum class EKParticipantRole { Unknown, Required, Optional, Chair, NonParticipant };
enum class EKParticipantStatus {
    Unknown,
    Pending,
    Accepted,
    Declined,
    Tentative,
    Delegated,
    Completed,
    InProcess
};

/// The organiser or a guest of an event (RFC 5545, sections 3.8.4.1 and 3.8.4.3).
struct EKParticipant
{
    /// Empty where only the address is known.
    QString name;
    /// Mostly "mailto:" and a mail address.
    QString url;
    EKParticipantRole participantRole = EKParticipantRole::Unknown;
    EKParticipantStatus participantStatus = EKParticipantStatus::Unknown;
    /// Whether it is the owner of the calendar; false where nobody knows.
    bool isCurrentUser = false;

    bool operator==(const EKParticipant &) const = default;
};
