#pragma once

#include <QByteArray>
#include <QString>

/// Values of the type TEXT (RFC 5545, section 3.3.11).
class IcalText
{
public:
    static QString decoded(const QByteArray &value);
    /// Control characters other than line feeds and tabs are left out.
    static QByteArray encoded(const QString &text);
};
