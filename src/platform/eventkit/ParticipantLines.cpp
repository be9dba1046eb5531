#include "eventkit/ParticipantLines.h"

#include "eventkit/IcalText.h"

#include <QHash>

namespace {

EKParticipantRole roleOf(const QByteArray &text)
{
    static const QHash<QByteArray, EKParticipantRole> roles = {
        {"CHAIR", EKParticipantRole::Chair},
        {"REQ-PARTICIPANT", EKParticipantRole::Required},
        {"OPT-PARTICIPANT", EKParticipantRole::Optional},
        {"NON-PARTICIPANT", EKParticipantRole::NonParticipant}};
    return text.isEmpty() ? EKParticipantRole::Required : roles.value(text, EKParticipantRole::Unknown);
}

EKParticipantStatus statusOf(const QByteArray &text)
{
    static const QHash<QByteArray, EKParticipantStatus> states = {
        {"NEEDS-ACTION", EKParticipantStatus::Pending}, {"ACCEPTED", EKParticipantStatus::Accepted},
        {"DECLINED", EKParticipantStatus::Declined},    {"TENTATIVE", EKParticipantStatus::Tentative},
        {"DELEGATED", EKParticipantStatus::Delegated},  {"COMPLETED", EKParticipantStatus::Completed},
        {"IN-PROCESS", EKParticipantStatus::InProcess}};
    return text.isEmpty() ? EKParticipantStatus::Pending : states.value(text, EKParticipantStatus::Unknown);
}

QString addressOf(const QString &url)
{
    static const QString mailto = QStringLiteral("mailto:");
    return url.startsWith(mailto, Qt::CaseInsensitive) ? url.mid(mailto.size()) : url;
}

EKParticipant participantOf(const ContentLine &line, const QStringList &ownAddresses)
{
    EKParticipant participant;
    participant.url = IcalText::fromBytes(line.value()).trimmed();
    participant.name = IcalText::fromBytes(line.parameter("CN"));
    participant.isCurrentUser = ownAddresses.contains(addressOf(participant.url), Qt::CaseInsensitive);
    return participant;
}

} // namespace

std::optional<EKParticipant> organizerOf(const IcalComponent &component, const QStringList &ownAddresses)
{
    const ContentLine *line = component.line("ORGANIZER");
    return line ? std::optional(participantOf(*line, ownAddresses)) : std::nullopt;
}

std::vector<EKParticipant> attendeesOf(const IcalComponent &component, const QStringList &ownAddresses)
{
    std::vector<EKParticipant> attendees;
    for (const ContentLine *line : component.lines("ATTENDEE")) {
        EKParticipant attendee = participantOf(*line, ownAddresses);
        attendee.participantRole = roleOf(line->parameter("ROLE").toUpper());
        attendee.participantStatus = statusOf(line->parameter("PARTSTAT").toUpper());
        attendees.push_back(std::move(attendee));
    }
    return attendees;
}
