#include "records/capture/CaptureReader.h"

#include "foundation/Region.h"

#include <algorithm>

using namespace Qt::Literals::StringLiterals;
using Meaning = CaptureWords::Meaning;

CaptureReader::CaptureReader(const CaptureWords &wordsOfDates, const CaptureLine::Names &knownNames, Date at,
                             const QString &text, const std::set<int> &literalPlaces, bool isDate)
    : dictionary(wordsOfDates)
    , names(knownNames)
    , line(text)
    , literal(literalPlaces)
    , now(at)
    , today(calendar.startOfDay(at))
    , mustBeDate(isDate)
{
    split();
}

void CaptureReader::split()
{
    bool isQuoted = false;
    for (int place = 0; place < line.size();) {
        if (line.at(place).isSpace()) {
            ++place;
            continue;
        }
        int end = place;
        const bool begins = isQuoted;
        while (end < line.size() && !line.at(end).isSpace()) {
            if (line.at(end) == u'"')
                isQuoted = !isQuoted;
            ++end;
        }
        const QString text = line.mid(place, end - place);
        words.push_back({text, CaptureWords::foldedWord(text), place, begins || text.contains(u'"')});
        place = end;
    }
    for (const Word &word : words)
        folded.push_back(word.folded);
    isTaken.resize(words.size());
}

std::span<const QString> CaptureReader::from(size_t place) const
{
    size_t end = place;
    while (isFree(end))
        ++end;
    return std::span(folded).subspan(std::min(place, folded.size()), end - place);
}

std::optional<CaptureWords::Match> CaptureReader::match(size_t place,
                                                        std::initializer_list<Meaning> meanings) const
{
    return dictionary.match(from(place), meanings);
}

bool CaptureReader::isFree(size_t place) const
{
    return !isBarred(place) && !words[place].isQuoted;
}

bool CaptureReader::isBarred(size_t place) const
{
    return place >= words.size() || isTaken[place] || literal.contains(words[place].from);
}

bool CaptureReader::isBehind(size_t place, CapturePiece::Kind kind) const
{
    if (place == 0 || place >= words.size() || result.pieces.empty())
        return false;
    const CapturePiece &last = result.pieces.back();
    const int end = last.from + last.length;
    return last.kind == kind && words[place - 1].from < end && words[place].from >= end;
}

Capture CaptureReader::read()
{
    for (size_t place = 0; place < words.size();) {
        leaveSaying(place);
        const bool isUnderstood =
            (!isBarred(place) && takePlace(place)) ||
            (isFree(place) &&
             (takeName(place) || takePriority(place) || takeDayPart(place) || takeRepeat(place) ||
              takeEndOfRepeat(place) || takeDate(place) || takeTime(place) || takeLength(place)));
        if (!isUnderstood)
            ++place;
    }
    finish();
    return result;
}

void CaptureReader::note(CapturePiece::Kind kind, size_t first, size_t count)
{
    known.insert(kind);
    const Word &last = words[first + count - 1];
    // A comma behind it is none of its words.
    const int kept = int(last.text.size()) - int(last.folded.size());
    const int end = last.end() - (last.text.toCaseFolded() == last.folded ? 0 : std::max(0, kept));
    result.pieces.push_back({kind, words[first].from, end - words[first].from});
    std::fill_n(isTaken.begin() + std::ptrdiff_t(first), count, true);
}

/// "Good morning" is no time, and nobody meets "Mr Friday" on one.
void CaptureReader::leaveSaying(size_t place)
{
    size_t count = 0;
    if (const auto saying = match(place, {Meaning::Saying}))
        count = size_t(saying->count);
    else if (match(place, {Meaning::PersonTitle}) && isFree(place + 1) &&
             words[place + 1].text.front().isUpper())
        count = 2;
    for (size_t word = place; word < place + count; ++word)
        words[word].isQuoted = true;
}

// Names and marks

bool CaptureReader::takeName(size_t &place)
{
    const Word &word = words[place];
    if (word.text.size() < 2)
        return false;
    const QStringView rest = QStringView(line).mid(word.from + 1);
    const auto take = [&](CapturePiece::Kind kind, const auto &finder, auto &field) {
        if (known.contains(kind) || !finder)
            return false;
        const auto [record, letters] = finder(rest);
        if (!record || letters <= 0)
            return false;
        const int end = word.from + 1 + letters;
        // All of a word belongs to the name, but for a comma or full stop behind it.
        size_t count = 0;
        for (size_t next = place; isFree(next) && words[next].from < end; ++next) {
            ++count;
            const QString behind = words[next].text.mid(std::max(0, end - words[next].from));
            if (words[next].end() > end && behind != u","_s && behind != u"."_s && behind != u";"_s)
                return false;
        }
        if (count == 0 || words[place + count - 1].end() < end)
            return false;
        field = record;
        note(kind, place, count);
        result.pieces.back().length = end - word.from;
        place += count;
        return true;
    };
    switch (word.text.front().unicode()) {
    case u'#':
        return take(CapturePiece::Kind::Category, names.category, result.category);
    case u'+':
        return take(CapturePiece::Kind::Project, names.project, result.project);
    case u'@':
        return take(CapturePiece::Kind::Person, names.person, result.person);
    default:
        return false;
    }
}

bool CaptureReader::takePriority(size_t &place)
{
    const QString &word = words[place].folded;
    constexpr Priority priorities[] = {Priority::Low, Priority::Medium, Priority::High};
    if (known.contains(CapturePiece::Kind::Priority) || word.size() > 3 || word.count(u'!') != word.size())
        return false;
    result.priority = priorities[word.size() - 1];
    note(CapturePiece::Kind::Priority, place, 1);
    ++place;
    return true;
}

/// "place:Berlin" or, for several words, "place:"Town Hall"".
bool CaptureReader::takePlace(size_t &place)
{
    if (known.contains(CapturePiece::Kind::Place))
        return false;
    for (const QString &sign : {u"place:"_s, u"ort:"_s}) {
        const Word &word = words[place];
        if (!word.folded.startsWith(sign) || word.folded.size() == sign.size())
            continue;
        const int begin = word.from + int(sign.size());
        size_t count = 1;
        QString name = line.mid(begin, word.folded.size() - sign.size());
        if (name.startsWith(u'"')) {
            const int end = int(line.indexOf(u'"', begin + 1));
            if (end < 0)
                return false;
            name = line.mid(begin + 1, end - begin - 1).simplified();
            while (place + count < words.size() && words[place + count].from < end) {
                if (isBarred(place + count))
                    return false;
                ++count;
            }
            const QString behind = line.mid(end + 1, words[place + count - 1].end() - end - 1);
            if (name.isEmpty() || (behind.size() > 0 && behind != u","_s && behind != u";"_s))
                return false;
        } else if (word.isQuoted) {
            return false;
        }
        result.place = name;
        note(CapturePiece::Kind::Place, place, count);
        place += count;
        return true;
    }
    return false;
}
