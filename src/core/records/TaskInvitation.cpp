#include "records/TaskInvitation.h"

#include "calendarsync/CalendarEvent.h"
#include "records/copies/MVTask.h"
#include "store/entities/FullName.h"
#include "store/entities/MainContext.h"
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

static const QString scheme = QStringLiteral("mailto:");

static QString mailOf(const EKParticipant &participant)
{
    return participant.url.startsWith(scheme, Qt::CaseInsensitive) ? participant.url.mid(scheme.size())
                                                                   : QString();
}

static ContactPtr contactWithMail(const QString &address)
{
    if (address.isEmpty())
        return nullptr;
    const auto request =
        EntityEmail::fetchRequest().where(Predicate::format("mail beginswith[cd] %@", address));
    for (const auto &mail : mainContext().fetch<EntityEmail>(request)) {
        if (mail && mail->contact() && mail->mail().compare(address, Qt::CaseInsensitive) == 0)
            return mail->contact();
    }
    return nullptr;
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
        const QString mail = mailOf(*organizer);
        invitation.entityContactOrganizer = contactWithMail(mail);
        if (!invitation.entityContactOrganizer)
            invitation.entityContactOrganizer = contactNamed(organizer->name);
        if (invitation.entityContactOrganizer)
            return invitation;
        invitation.mailOfStranger = mail;
        const QString address = mail.isEmpty() ? organizer->url : mail;
        invitation.stringContactOrganizer = organizer->name.isEmpty() ? address : organizer->name;
    }
    return invitation;
}

bool TaskInvitation::recognize(const CNContact &card)
{
    const auto own = DBWorker::selectContactsWithPredicates(
        {Predicate::format("firstName = %@ && lastName = %@", card.givenName, card.familyName)});
    if (!own.isEmpty()) {
        entityContactOrganizer = *own.begin();
        return true;
    }
    // Who invites may be called otherwise than the user knows them.
    if (stringContactOrganizer != mailOfStranger || !card.hasName())
        return false;
    stringContactOrganizer = fullNameWith(card.givenName, card.familyName);
    return true;
}

QString TaskInvitation::organizerName() const
{
    return entityContactOrganizer ? entityContactOrganizer->fullName() : stringContactOrganizer;
}
