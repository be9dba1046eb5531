#pragma once

#include <QString>
#include <QStringList>

/// A mail that the user is about to write.
struct MailDraft
{
    /// Addresses; what is no address names no further recipient and no header.
    QStringList recipients;
    QString subject;
    /// Lines end with "\n".
    QString body;

    /// The draft as a "mailto:" address (RFC 6068), every byte of the texts encoded.
    QString url() const;
    /// A mail address as it stands in such an address, where it can name no further recipient and no header.
    static QString encodedAddress(const QString &mail);
};
