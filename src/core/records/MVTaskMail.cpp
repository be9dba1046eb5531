#include "foundation/DateFormatter.h"
#include "records/MVTask.h"
#include "workspace/PlatformConfiguration.h"

#include <QStringList>

#include <algorithm>

// A task as a mail draft.

namespace {

/// What an HTML reader would show of a text that ASCII can hold: tags are dropped, a line break ends a line, references to
/// characters are resolved. A text that ASCII cannot hold shows nothing.
QString plainText(const QString &html)
{
    const bool isAscii = std::all_of(html.begin(), html.end(), [](QChar c) { return c.unicode() < 128; });
    if (!isAscii)
        return {};
    QString text;
    for (qsizetype place = 0; place < html.size(); ++place) {
        if (html.at(place) != u'<') {
            text += html.at(place);
            continue;
        }
        const qsizetype end = html.indexOf(u'>', place);
        const QString tag = html.mid(place + 1, end - place - 1);
        if (tag.startsWith(QStringLiteral("br")))
            text += u'\n';
        place = end < 0 ? html.size() : end;
    }
    return text;
}

/// Every byte as "%XX", letters and digits too.
QString fullyEncoded(const QString &text)
{
    QString encoded;
    for (const char byte : text.toUtf8())
        encoded += QStringLiteral("%%1").arg(static_cast<quint8>(byte), 2, 16, QLatin1Char('0')).toUpper();
    return encoded;
}

QString line(const QString &label, const QString &value)
{
    return QStringLiteral("<span><b>%1:</b> %2 </span><br>").arg(label, value);
}

QString recipientsOf(const ContactPtr &contact)
{
    QStringList addresses;
    if (contact) {
        for (const auto &email : contact->email())
            addresses.append(email->mail());
    }
    return addresses.join(u',');
}

QString footer()
{
    const QString address = PlatformConfiguration().text(QStringLiteral("productPage"));
    return QStringLiteral("<span><br><span>Sent with Morvane. Available for your Mac - <a href=\"%1\">%1</a></span></span>")
        .arg(address);
}

} // namespace

QString MVTask::htmlBody() const
{
    const auto timeStyle = isToDo() ? DateFormatter::Style::None : DateFormatter::Style::Short;
    const auto shown = [timeStyle](Date date) { return DateFormatter::string(date, DateFormatter::Style::Short, timeStyle); };
    QString html = QStringLiteral("<html><body><br/>") +
                   line(QStringLiteral("Project"), project ? project->title() : QString()) +
                   QStringLiteral("<span><b>Task:</b> %1 <span><br>").arg(title);
    if (startDate)
        html += line(QStringLiteral("Start date"), shown(*startDate));
    if (dueDate)
        html += QStringLiteral("<span><b>Due date:</b> %1 </span><br/><br>").arg(shown(*dueDate));
    if (!details.isEmpty())
        html += line(QStringLiteral("Details"), details);
    html += footer() + QStringLiteral("</body></html>");
    return QStringLiteral("mailto:%1?subject=%2&body=%3")
        .arg(recipientsOf(delegateToUser), fullyEncoded(plainText(QStringLiteral("Morvane"))),
             fullyEncoded(plainText(html)));
}
