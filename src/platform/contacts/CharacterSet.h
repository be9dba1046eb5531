#pragma once

#include <QByteArray>
#include <QString>

/// Texts whose character set is told badly or not at all.
namespace CharacterSet {

/// Decodes bytes. \param name a charset label such as "ISO-8859-1"; an empty or unknown one, and a UTF-8 that
/// is none, leave it to the bytes: UTF-8 if they are that, else Windows-1252. Never fails.
QString decoded(const QByteArray &bytes, const QString &name);

} // namespace CharacterSet
