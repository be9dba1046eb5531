#pragma once

#include <QFont>
#include <QString>
#include <QTextLayout>

/// Single lines of text as they are painted: shaped once and kept, since shaping is what painting words
/// costs. Main thread only.
namespace TextLines {

/// The line of a text in a font, cut with an ellipsis where it is wider than some pixels. Emoji that ask for
/// their picture have it. It is there until the next call.
const QTextLayout &line(const QFont &font, const QString &text, int width);
/// How many pixels a line needs that is not cut.
int width(const QFont &font, const QString &text);

} // namespace TextLines
