#include "widgets/TextLabel.h"

#include <QLabel>

QString readablePart(const QString &text)
{
    constexpr qsizetype mostCharacters = 1200;
    constexpr int longestWord = 60;
    constexpr char16_t breakingPlace = u'\u200B';
    QString part;
    int lengthOfWord = 0;
    for (const QChar character : text.left(mostCharacters)) {
        lengthOfWord = character.isSpace() ? 0 : lengthOfWord + 1;
        // Both halves of a character stay together.
        if (lengthOfWord > longestWord && !character.isLowSurrogate()) {
            part += breakingPlace;
            lengthOfWord = 1;
        }
        part += character;
    }
    if (text.size() <= mostCharacters)
        return part;
    if (part.back().isHighSurrogate())
        part.chop(1);
    return part + u'…';
}

QLabel *makeTextLabel(const QString &text, Theme::FontRole role, const QColor &color)
{
    auto *label = new QLabel(text);
    label->setFont(Theme::font(role));
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    QPalette palette = label->palette();
    palette.setColor(QPalette::WindowText, color);
    label->setPalette(palette);
    return label;
}
