#include "foundation/DateFormatter.h"
#include "records/copies/MVTask.h"
#include "workspace/PlatformConfiguration.h"

#include <QHash>
#include <QStringList>

#include <algorithm>
#include <optional>
#include <utility>

// A task as a mail draft.

namespace {

/// What a reference such as "&amp;" or "&#38;" stands for, with the place behind it; nothing if it is none.
std::optional<std::pair<QString, qsizetype>> characterReference(const QString &html, qsizetype place)
{
    static const QHash<QString, QChar> named = {
        {QStringLiteral("amp"), u'&'},   {QStringLiteral("lt"), u'<'},
        {QStringLiteral("gt"), u'>'},    {QStringLiteral("quot"), u'"'},
        {QStringLiteral("apos"), u'\''}, {QStringLiteral("nbsp"), QChar(0xA0)}};
    const qsizetype end = html.indexOf(u';', place);
    const QString name = end < 0 ? QString() : html.mid(place + 1, end - place - 1);
    if (named.contains(name))
        return std::pair(QString(named.value(name)), end + 1);
    bool isNumber = false;
    const bool isHexadecimal = name.startsWith(QStringLiteral("#x"));
    const uint code = name.startsWith(u'#')
                          ? name.mid(isHexadecimal ? 2 : 1).toUInt(&isNumber, isHexadecimal ? 16 : 10)
                          : 0;
    if (!isNumber || code == 0 || code > 0x10FFFF)
        return std::nullopt;
    return std::pair(QString::fromUcs4(reinterpret_cast<const char32_t *>(&code), 1), end + 1);
}

bool isTagStart(const QString &html, qsizetype place)
{
    const QChar next = place + 1 < html.size() ? html.at(place + 1) : QChar(u' ');
    return html.at(place) == u'<' && (next.isLetter() || next == u'/' || next == u'!');
}

/// What an HTML reader would show of a text that ASCII can hold: tags are dropped, a line break ends a line,
/// white space counts once, references to characters are resolved. A text that ASCII cannot hold shows
/// nothing.
QString plainText(const QString &html)
{
    const bool isAscii = std::all_of(html.begin(), html.end(), [](QChar c) { return c.unicode() < 128; });
    QString text;
    for (qsizetype place = 0; isAscii && place < html.size();) {
        if (isTagStart(html, place)) {
            const qsizetype end = html.indexOf(u'>', place);
            text += html.mid(place + 1).startsWith(QStringLiteral("br")) ? QStringLiteral("\n") : QString();
            place = end < 0 ? html.size() : end + 1;
            continue;
        }
        if (const auto reference = html.at(place) == u'&' ? characterReference(html, place) : std::nullopt) {
            text += reference->first;
            place = reference->second;
            continue;
        }
        const QChar shown = html.at(place++);
        if (!shown.isSpace())
            text += shown;
        else if (!text.isEmpty() && !text.back().isSpace())
            text += u' ';
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
    return QStringLiteral("<span><br><span>Sent with Morvane. Available for your Mac - <a "
                          "href=\"%1\">%1</a></span></span>")
        .arg(address);
}

} // namespace

QString MVTask::htmlBody() const
{
    const auto timeStyle = isToDo() ? DateFormatter::Style::None : DateFormatter::Style::Short;
    // Some languages set a narrow blank in a time, on which the whole draft would be lost.
    const auto shown = [timeStyle](Date date) {
        return DateFormatter::string(date, DateFormatter::Style::Short, timeStyle)
            .replace(QChar(0x202F), u' ');
    };
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
