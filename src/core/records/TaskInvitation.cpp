#include "records/TaskInvitation.h"

#include "calendarsync/CalendarEvent.h"
#include "records/copies/MVTask.h"
#include "store/queries/DBWorker.h"

/// Where the family name begins is not said: its last word is the likeliest, then the last two and so on.
static ContactPtr contactNamed(const QString &name)
{
    const QString simplified = name.simplified();
    for (qsizetype blank = simplified.lastIndexOf(u' '); blank > 0;
         blank = simplified.lastIndexOf(u' ', blank - 1)) {
        const auto contacts = DBWorker::selectContactsWithPredicates({Predicate::format(
            "firstName = %@ && lastName = %@", simplified.left(blank), simplified.mid(blank + 1))});
        if (!contacts.isEmpty())
            return *contacts.begin();
    }
    return nullptr;
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
