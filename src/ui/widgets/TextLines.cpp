#include "widgets/TextLines.h"

#include <QCache>
#include <QFontMetrics>

#include <cmath>

using namespace Qt::Literals::StringLiterals;

namespace {

struct Line
{
    QFont font;
    QString text;
    /// That it is cut to; -1 for the whole line.
    int width;

    bool operator==(const Line &) const = default;
};

size_t qHash(const Line &line, size_t seed = 0)
{
    return qHashMulti(seed, line.text, line.width, line.font);
}

constexpr int mostLines = 4000;
constexpr char16_t pictureSelector = u'\uFE0F';
constexpr char16_t keyCap = u'\u20E3';

/// Characters with a picture of their own get it only from the font that has it.
QList<QTextLayout::FormatRange> picturesIn(const QString &text)
{
    QList<QTextLayout::FormatRange> pictures;
    for (qsizetype at = text.indexOf(pictureSelector); at > 0; at = text.indexOf(pictureSelector, at + 1)) {
        const qsizetype from = text.at(at - 1).isLowSurrogate() && at > 1 ? at - 2 : at - 1;
        const bool isKeyCap = at + 1 < text.size() && text.at(at + 1) == keyCap;
        QTextCharFormat format;
        format.setFontFamilies({u"Noto Color Emoji"_s});
        pictures.append({int(from), int(at - from) + (isKeyCap ? 2 : 1), format});
    }
    return pictures;
}

QTextLayout *shaped(const QFont &font, const QString &text)
{
    auto *layout = new QTextLayout(text, font);
    QTextOption option;
    option.setWrapMode(QTextOption::NoWrap);
    option.setTextDirection(text.isRightToLeft() ? Qt::RightToLeft : Qt::LeftToRight);
    // Where it stands is up to who paints it.
    option.setAlignment(Qt::AlignLeft | Qt::AlignAbsolute);
    layout->setTextOption(option);
    if (const auto pictures = picturesIn(text); !pictures.isEmpty())
        layout->setFormats(pictures);
    layout->setCacheEnabled(true);
    layout->beginLayout();
    QTextLine line = layout->createLine();
    if (line.isValid())
        line.setNumColumns(int(text.size()));
    layout->endLayout();
    return layout;
}

QCache<Line, QTextLayout> &lines()
{
    static QCache<Line, QTextLayout> kept(mostLines);
    return kept;
}

const QTextLayout &whole(const QFont &font, const QString &text)
{
    const Line key{font, text, -1};
    if (const QTextLayout *known = lines().object(key))
        return *known;
    QTextLayout *layout = shaped(font, text);
    lines().insert(key, layout);
    return *layout;
}

double widthOf(const QTextLayout &layout)
{
    return layout.lineCount() > 0 ? layout.lineAt(0).naturalTextWidth() : 0;
}

} // namespace

const QTextLayout &TextLines::line(const QFont &font, const QString &text, int width)
{
    // What is farther to the right is never seen; a title can have ten thousand letters.
    constexpr int mostLetters = 1000;
    const QString seen = text.size() > mostLetters ? text.first(mostLetters) : text;
    const QTextLayout &all = whole(font, seen);
    if (widthOf(all) <= width + 0.5 && seen.size() == text.size())
        return all;
    const Line key{font, seen, width};
    if (const QTextLayout *known = lines().object(key))
        return *known;
    QTextLayout *layout = shaped(font, QFontMetrics(font).elidedText(seen, Qt::ElideRight, width));
    lines().insert(key, layout);
    return *layout;
}

int TextLines::width(const QFont &font, const QString &text)
{
    return static_cast<int>(std::ceil(widthOf(whole(font, text))));
}
