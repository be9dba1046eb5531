#include "contacts/VCardReader.h"

#include <QIODevice>

#include <algorithm>
#include <cstring>
#include <utility>

namespace {

constexpr qint64 chunkSize = 64 * 1024;

/// Whether a line is "BEGIN:VCARD" or "END:VCARD", whatever its case and blanks.
bool isMark(const QByteArray &line, const char *word)
{
    constexpr qsizetype longest = 64;
    // Nearly all lines are known by their first letter.
    const char first = line.isEmpty() ? '\0' : char(line.front() | 0x20);
    const bool mayBe = first == char(*word | 0x20) || first < 'a' || first > 'z';
    if (line.size() > longest || !mayBe)
        return false;
    QByteArray plain = line.trimmed();
    if (plain.startsWith("\xEF\xBB\xBF"))
        plain = plain.mid(3);
    const qsizetype colon = plain.indexOf(':');
    return colon > 0 && plain.left(colon).trimmed().compare(word, Qt::CaseInsensitive) == 0 &&
           plain.mid(colon + 1).trimmed().compare("VCARD", Qt::CaseInsensitive) == 0;
}

bool isBegin(const QByteArray &line)
{
    return isMark(line, "BEGIN");
}

bool isEnd(const QByteArray &line)
{
    return isMark(line, "END");
}

bool isBlank(char letter)
{
    return letter == ' ' || letter == '\t';
}

std::optional<QStringDecoder> wideDecoderFor(const QByteArray &beginning)
{
    const auto begins = [&](const char *bytes) {
        return beginning.size() >= 2 && std::memcmp(beginning.constData(), bytes, 2) == 0;
    };
    if (begins("\xFF\xFE") || begins("B\0") || begins("b\0"))
        return QStringDecoder(QStringDecoder::Utf16LE);
    if (begins("\xFE\xFF") || begins("\0B") || begins("\0b"))
        return QStringDecoder(QStringDecoder::Utf16BE);
    return std::nullopt;
}

} // namespace

VCardReader::VCardReader(QIODevice &source)
    : device(source)
{}

bool VCardReader::fill()
{
    QByteArray bytes;
    // A few bytes of UTF-16 may yet be no letter.
    do {
        bytes = device.read(chunkSize);
        if (bytes.isEmpty())
            return false;
        taken += bytes.size();
        if (!std::exchange(isBegun, true))
            wide = wideDecoderFor(bytes);
        if (wide)
            bytes = QString((*wide)(bytes)).toUtf8();
    } while (bytes.isEmpty());
    buffer = bytes;
    place = 0;
    return true;
}

std::optional<VCardReader::Line> VCardReader::readPhysicalLine()
{
    Line line;
    bool isAnything = false;
    while (place < buffer.size() || fill()) {
        if (std::exchange(isLineFeedDue, false) && buffer[place] == '\n') {
            ++place;
            continue;
        }
        isAnything = true;
        const char *begin = buffer.constData() + place;
        const char *end = buffer.constData() + buffer.size();
        const char *stop = std::find_if(begin, end, [](char one) { return one == '\n' || one == '\r'; });
        if (line.bytes.size() + (stop - begin) > mostBytes)
            line.isTooLong = true;
        else
            line.bytes.append(begin, stop - begin);
        place = stop - buffer.constData();
        if (stop == end)
            continue;
        isLineFeedDue = *stop == '\r';
        ++place;
        ++lineNumber;
        return line;
    }
    if (!isAnything)
        return std::nullopt;
    ++lineNumber;
    return line;
}

const VCardReader::Line *VCardReader::peek()
{
    if (!ahead)
        ahead = readPhysicalLine();
    return ahead ? &*ahead : nullptr;
}

std::optional<VCardReader::Line> VCardReader::takeLine()
{
    peek();
    return std::exchange(ahead, std::nullopt);
}

std::optional<VCardReader::Line> VCardReader::readLogicalLine(VCard::Version version)
{
    using Encoding = VCardAttribute::Encoding;
    std::optional<Line> line = takeLine();
    if (!line)
        return line;
    constexpr qsizetype longestHead = 10'000;
    std::optional<Encoding> known;
    bool hasHead = false;
    const auto encoding = [&] {
        if (!known) {
            const qsizetype colon = VCardAttribute::colonOf(line->bytes);
            hasHead = colon >= 0;
            known = VCardAttribute::encodingOf(line->bytes.left(std::max<qsizetype>(colon, 0)));
        }
        return *known;
    };
    const auto append = [&](const QByteArray &bytes, qsizetype from) {
        if (line->bytes.size() + bytes.size() > mostBytes)
            line->isTooLong = true;
        else
            line->bytes.append(bytes.constData() + from, bytes.size() - from);
    };
    while (const Line *next = peek()) {
        const QByteArray &bytes = next->bytes;
        line->isTooLong = line->isTooLong || next->isTooLong;
        if (bytes.isEmpty()) {
            // One ends a picture of 2.1, and says nothing anywhere else.
        } else if (line->bytes.endsWith('=') && encoding() == Encoding::QuotedPrintable && !isEnd(bytes)) {
            line->bytes.chop(1);
            append(bytes, 0);
        } else if (isBlank(bytes.front())) {
            // In 2.1 a line is folded before a blank, later ones get a blank for the fold.
            append(bytes, version == VCard::Version::V21 ? 0 : 1);
            // What stands behind the colon says nothing of the encoding, and a head of that length has none.
            if (!hasHead && line->bytes.size() < longestHead)
                known.reset();
        } else if (encoding() == Encoding::Base64 && !bytes.contains(':')) {
            append(bytes, 0);
        } else {
            break;
        }
        ahead.reset();
    }
    return line;
}

/// Its BEGIN has been read.
void VCardReader::skipNestedCard()
{
    int depth = 1;
    while (depth > 0) {
        const auto line = takeLine();
        if (!line)
            return;
        depth += isBegin(line->bytes) ? 1 : isEnd(line->bytes) ? -1 : 0;
    }
}

/// To the end of a card of which nothing is wanted.
void VCardReader::skipRest()
{
    while (const Line *line = peek()) {
        if (isBegin(line->bytes))
            return;
        if (isEnd(takeLine()->bytes))
            return;
    }
}

std::optional<VCard> VCardReader::next()
{
    while (const auto line = takeLine()) {
        if (!isBegin(line->bytes))
            continue;
        VCard card;
        card.line = lineNumber;
        readInto(card);
        return card;
    }
    return std::nullopt;
}

void VCardReader::readInto(VCard &card)
{
    qsizetype size = 0;
    bool isAgentOpen = false;
    while (const Line *following = peek()) {
        if (isBegin(following->bytes) && !isAgentOpen)
            break;
        std::optional<Line> line = readLogicalLine(card.version);
        if (isBegin(line->bytes)) {
            isAgentOpen = false;
            skipNestedCard();
            continue;
        }
        if (isEnd(line->bytes))
            return;
        size += line->bytes.size();
        if (line->isTooLong || size > mostBytes || card.attributes.size() >= mostAttributes)
            card.state = VCard::State::TooLarge;
        if (card.state == VCard::State::TooLarge) {
            card.attributes.clear();
            skipRest();
            return;
        }
        auto attribute = VCardAttribute::fromLine(line->bytes);
        if (!attribute)
            continue;
        isAgentOpen = attribute->name() == "AGENT" && attribute->rawValue().trimmed().isEmpty();
        if (attribute->name() == "VERSION") {
            const QByteArray version = attribute->rawValue().trimmed();
            card.version = version.startsWith("2")   ? VCard::Version::V21
                           : version.startsWith("4") ? VCard::Version::V40
                                                     : VCard::Version::V30;
        }
        card.attributes.push_back(std::move(*attribute));
    }
    if (card.state == VCard::State::Whole)
        card.state = VCard::State::CutOff;
}
