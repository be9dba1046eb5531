#pragma once

#include <QString>
#include <QStringView>

#include <unicode/unistr.h>

/// The text in ICU's type without a copy: only for as long as the text lives.
inline icu::UnicodeString icuText(QStringView text)
{
    return icu::UnicodeString(false, text.utf16(), static_cast<int>(text.size()));
}

inline QString qtText(const icu::UnicodeString &text)
{
    return QString(reinterpret_cast<const QChar *>(text.getBuffer()), text.length());
}
