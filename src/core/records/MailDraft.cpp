#include "records/MailDraft.h"

#include <QUrl>

/// Every byte as "%XX", letters and digits too.
static QString fullyEncoded(const QString &text)
{
    QString encoded;
    for (const char byte : text.toUtf8())
        encoded += QStringLiteral("%%1").arg(static_cast<quint8>(byte), 2, 16, QLatin1Char('0')).toUpper();
    return encoded;
}

QString MailDraft::encodedAddress(const QString &mail)
{
    QString address = mail.trimmed();
    address.removeIf([](QChar c) { return c.category() == QChar::Other_Control; });
    return QString::fromLatin1(QUrl::toPercentEncoding(address, "@"));
}

QString MailDraft::url() const
{
    QStringList addresses;
    for (const QString &mail : recipients)
        addresses.append(encodedAddress(mail));
    addresses.removeAll(QString());
    // RFC 6068, section 5.
    QString lines = body;
    lines.replace(u'\n', QStringLiteral("\r\n"));
    return QStringLiteral("mailto:%1?subject=%2&body=%3")
        .arg(addresses.join(u','), fullyEncoded(subject), fullyEncoded(lines));
}
