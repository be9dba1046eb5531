#pragma once

#include <QByteArray>
#include <QString>

/// Values of the type TEXT (RFC 5545, section 3.3.11).
class IcalText
{
public:
    /// What bytes say: UTF-8 (RFC 5545, section 3.1.4), or else Latin-1, in which some programs write.
    static QString fromBytes(const QByteArray &bytes);
    static QString decoded(const QByteArray &value);
    /// Control characters other than line feeds and tabs are left out.
    static QByteArray encoded(const QString &text);
};
