#include "foundation/DateFormatter.h"
#include "foundation/Localization.h"
#include "records/copies/MVTask.h"
#include "workspace/PlatformConfiguration.h"

#include <QStringList>
#include <QUrl>

// A task as a mail draft.

namespace {

/// Every byte as "%XX", letters and digits too.
QString fullyEncoded(const QString &text)
{
    QString encoded;
    for (const char byte : text.toUtf8())
        encoded += QStringLiteral("%%1").arg(static_cast<quint8>(byte), 2, 16, QLatin1Char('0')).toUpper();
    return encoded;
}

/// One line of the draft. The value stands as it was written, also where it looks like markup.
QString line(const QString &label, const QString &value)
{
    return QStringLiteral("%1: %2 \n").arg(label, value);
}

/// An address can name no further recipients and no header.
QString encodedAddress(const QString &mail)
{
    QString address = mail.trimmed();
    address.removeIf([](QChar c) { return c.category() == QChar::Other_Control; });
    return QString::fromLatin1(QUrl::toPercentEncoding(address, "@"));
}

QString recipientsOf(const ContactPtr &contact)
{
    QStringList addresses;
    if (contact) {
        for (const auto &email : contact->email())
            addresses.append(encodedAddress(email->mail()));
    }
    addresses.removeAll(QString());
    return addresses.join(u',');
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
    return QStringLiteral("mailto:%1?subject=%2&body=%3")
        .arg(recipientsOf(delegateToUser), fullyEncoded(QStringLiteral("Morvane")),
             // RFC 6068, section 5.
             fullyEncoded(body.replace(u'\n', QStringLiteral("\r\n"))));
}
