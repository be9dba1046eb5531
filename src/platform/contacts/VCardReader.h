#pragma once

#include "contacts/VCard.h"

#include <QStringDecoder>

class QIODevice;

/// Reads the vCards of a text one after the other, however many there are: it holds no more than one card.
///
/// It takes what programs write: UTF-8, UTF-16 or 8-bit texts, any line ends, folds in the middle of a
/// letter, soft breaks of quoted-printable, pictures in base64 without a fold, cards inside of cards (which
/// are passed over), cards without an end, and anything between cards.
class VCardReader
{
public:
    /// More than this is no card: it is told as `TooLarge`.
    static constexpr qsizetype mostBytes = 64 * 1024 * 1024;
    static constexpr std::size_t mostAttributes = 20'000;

    /// \param source must be open for reading, and outlive the reader.
    explicit VCardReader(QIODevice &source);

    /// The next card; absent at the end of the text.
    std::optional<VCard> next();
    /// How many bytes of the source the cards so far have taken.
    qint64 position() const { return taken - (buffer.size() - place); }

private:
    struct Line
    {
        QByteArray bytes;
        bool isTooLong = false;
    };
    bool fill();
    std::optional<Line> readPhysicalLine();
    /// The next line, which stays.
    const Line *peek();
    std::optional<Line> takeLine();
    /// A line with its folds and soft breaks undone.
    std::optional<Line> readLogicalLine(VCard::Version version);
    void skipNestedCard();
    void skipRest();
    void readInto(VCard &card);

    QIODevice &device;
    std::optional<QStringDecoder> wide;
    QByteArray buffer;
    qsizetype place = 0;
    qint64 taken = 0;
    qint64 lineNumber = 0;
    bool isBegun = false;
    /// The line end before was a CR: a LF right behind it belongs to it.
    bool isLineFeedDue = false;
    std::optional<Line> ahead;
};
