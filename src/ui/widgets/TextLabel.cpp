#include "widgets/TextLabel.h"

#include "widgets/Appearance.h"

#include <QLabel>

QString firstPart(const QString &text)
{
    constexpr qsizetype mostCharacters = 1200;
    if (text.size() <= mostCharacters)
        return text;
    // Both halves of a character stay together.
    const bool isInside = text.at(mostCharacters - 1).isHighSurrogate();
    return text.left(mostCharacters - (isInside ? 1 : 0)) + u'…';
}

QString readablePart(const QString &text)
{
    constexpr int longestWord = 60;
    constexpr char16_t breakingPlace = u'\u200B';
    QString part;
    int lengthOfWord = 0;
    for (const QChar character : firstPart(text)) {
        lengthOfWord = character.isSpace() ? 0 : lengthOfWord + 1;
        if (lengthOfWord > longestWord && !character.isLowSurrogate()) {
            part += breakingPlace;
            lengthOfWord = 1;
        }
        part += character;
    }
    return part;
}

QLabel *makeTextLabel(const QString &text, Theme::FontRole role, Theme::Role colour)
{
    auto *label = new QLabel(text);
    Appearance::setFont(*label, role);
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    Appearance::colourText(*label, colour);
    return label;
}
