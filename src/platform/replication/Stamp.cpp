#include "replication/Stamp.h"

#include <algorithm>

namespace replication {

namespace {

template <typename Take>
void readPairs(const QByteArray &text, const Take &take)
{
    for (const QByteArray &pair : text.split(' ')) {
        const qsizetype colon = pair.indexOf(':');
        bool isNumber = false;
        const qint64 number = pair.mid(colon + 1).toLongLong(&isNumber);
        if (colon > 0 && isNumber)
            take(pair.left(colon), number);
    }
}

void addPair(QByteArray &text, const DeviceId &device, qint64 number)
{
    if (!text.isEmpty())
        text += ' ';
    text += device + ':' + QByteArray::number(number);
}

} // namespace

qint64 VersionVector::of(const DeviceId &device) const
{
    const auto found = numbers.find(device);
    return found == numbers.end() ? 0 : found->second;
}

void VersionVector::add(const DeviceId &device, qint64 number)
{
    if (number > 0) {
        qint64 &known = numbers[device];
        known = std::max(known, number);
    }
}

void VersionVector::add(const VersionVector &other)
{
    for (const auto &[device, number] : other.numbers)
        add(device, number);
}

void VersionVector::lower(const DeviceId &device, qint64 number)
{
    const auto found = numbers.find(device);
    if (found == numbers.end() || found->second <= number)
        return;
    if (number > 0)
        found->second = number;
    else
        numbers.erase(found);
}

bool VersionVector::covers(const VersionVector &other) const
{
    return std::ranges::all_of(other.numbers,
                               [this](const auto &one) { return of(one.first) >= one.second; });
}

QByteArray VersionVector::text() const
{
    QByteArray text;
    for (const auto &[device, number] : numbers)
        addPair(text, device, number);
    return text;
}

VersionVector VersionVector::fromText(const QByteArray &text)
{
    VersionVector vector;
    readPairs(text, [&vector](const DeviceId &device, qint64 number) { vector.add(device, number); });
    return vector;
}

QByteArray textOf(const Dots &dots)
{
    QByteArray text;
    for (const Dot &dot : dots)
        addPair(text, dot.device, dot.number);
    return text;
}

Dots dotsOfText(const QByteArray &text)
{
    Dots dots;
    readPairs(text, [&dots](const DeviceId &device, qint64 number) { dots.insert({device, number}); });
    return dots;
}

} // namespace replication
