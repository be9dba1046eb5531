#include "foundation/DateFormatter.h"
#include "foundation/Localization.h"
#include "records/MailDraft.h"
#include "records/copies/MVTask.h"
#include "workspace/PlatformConfiguration.h"

#include <QStringList>

// A task as a mail draft.

namespace {

/// One line of the draft. The value stands as it was written, also where it looks like markup.
QString line(const QString &label, const QString &value)
{
    return QStringLiteral("%1: %2 \n").arg(label, value);
}

QStringList recipientsOf(const ContactPtr &contact)
{
    QStringList addresses;
    if (contact) {
        for (const auto &email : contact->email())
            addresses.append(email->mail());
    }
    return addresses;
}

QString footer()
{
    return localized(QStringLiteral("Sent with Morvane. Available for your Mac - ")) +
           PlatformConfiguration().text(QStringLiteral("productPage"));
}

} // namespace

QString MVTask::htmlBody() const
{
    const auto timeStyle = isToDo() ? DateFormatter::Style::None : DateFormatter::Style::Short;
    // Not every mail program has a sign for the narrow blank that some languages set in a time.
    const auto shown = [timeStyle](Date date) {
        return DateFormatter::string(date, DateFormatter::Style::Short, timeStyle)
            .replace(QChar(0x202F), u' ');
    };
    QString body = u'\n' + line(QStringLiteral("Project"), project ? project->title() : QString()) +
                   line(QStringLiteral("Task"), title);
    if (startDate)
        body += line(QStringLiteral("Start date"), shown(*startDate));
    if (dueDate)
        body += line(QStringLiteral("Due date"), shown(*dueDate)) + u'\n';
    if (!details.isEmpty())
        body += line(QStringLiteral("Details"), details);
    body += u'\n' + footer();
    return MailDraft{recipientsOf(delegateToUser), QStringLiteral("Morvane"), body}.url();
}
