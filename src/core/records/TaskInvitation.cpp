#include "records/TaskInvitation.h"

#include "calendarsync/CalendarEvent.h"
#include "records/MVTask.h"
#include "store/queries/DBWorker.h"

/// The last word of a name is the family name.
static ContactPtr contactNamed(const QString &name)
{
    const QString simplified = name.simplified();
    const qsizetype blank = simplified.lastIndexOf(u' ');
    if (blank < 0)
        return nullptr;
    const auto contacts = DBWorker::selectContactsWithPredicates({Predicate::format(
        "firstName = %@ && lastName = %@", simplified.left(blank), simplified.mid(blank + 1))});
    return contacts.isEmpty() ? nullptr : *contacts.begin();
}

static QString nameOrAddress(const EKParticipant &participant)
{
    static const QString scheme = QStringLiteral("mailto:");
    if (!participant.name.isEmpty())
        return participant.name;
    return participant.url.startsWith(scheme, Qt::CaseInsensitive) ? participant.url.mid(scheme.size())
                                                                   : participant.url;
}

TaskInvitation TaskInvitation::of(const MVTask &task)
{
    TaskInvitation invitation;
    if (task.calendarID.isEmpty())
        return invitation;
    const std::vector<EKEvent> events = CalendarEvent::eventsWithExternalIdentifier(task.calendarID);
    if (events.empty() || !events.front().hasAttendees())
        return invitation;
    invitation.hasAttendees = true;
    if (const auto &organizer = events.front().organizer) {
        invitation.entityContactOrganizer = contactNamed(organizer->name);
        if (!invitation.entityContactOrganizer)
            invitation.stringContactOrganizer = nameOrAddress(*organizer);
    }
    return invitation;
}

QString TaskInvitation::organizerName() const
{
    return entityContactOrganizer ? entityContactOrganizer->fullName() : stringContactOrganizer;
}
