#include "objectstore/Outbox.h"

#include <QDataStream>
#include <QIODevice>
#include <QtEndian>

namespace outbox {

namespace {

constexpr auto format = QDataStream::Qt_6_4;

void write(QDataStream &stream, const std::optional<QByteArray> &text)
{
    stream << text.has_value() << text.value_or(QByteArray());
}

std::optional<QByteArray> read(QDataStream &stream)
{
    bool isThere = false;
    QByteArray text;
    stream >> isThere >> text;
    return isThere ? std::optional(text) : std::nullopt;
}

/// The size that compressed bytes give for what they hold cannot be taken on trust: so much is allocated.
bool isPlausible(const QByteArray &bytes)
{
    constexpr qsizetype bytesOfSize = 4;
    constexpr qint64 highestRatio = 1032; // Of the algorithm.
    return bytes.size() > bytesOfSize &&
           qFromBigEndian<quint32>(bytes.constData()) <= bytes.size() * highestRatio;
}

} // namespace

QByteArray toBytes(const std::vector<OutboxEntry> &entries)
{
    QByteArray bytes;
    if (entries.empty())
        return bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream.setVersion(format);
    for (const OutboxEntry &entry : entries) {
        stream << qint32(entry.group) << entry.place << entry.key;
        write(stream, entry.before);
        write(stream, entry.after);
    }
    return qCompress(bytes);
}

Result<std::vector<OutboxEntry>> fromBytes(const QByteArray &bytes)
{
    std::vector<OutboxEntry> entries;
    if (bytes.isEmpty())
        return entries;
    const Error failure{QStringLiteral("journal"), 0,
                        QStringLiteral("What goes with the undo journal cannot be read")};
    const QByteArray plain = isPlausible(bytes) ? qUncompress(bytes) : QByteArray();
    if (plain.isEmpty())
        return failure;
    QDataStream stream(plain);
    stream.setVersion(format);
    while (!stream.atEnd()) {
        OutboxEntry entry;
        qint32 group = 0;
        stream >> group >> entry.place >> entry.key;
        entry.group = group;
        entry.before = read(stream);
        entry.after = read(stream);
        if (stream.status() != QDataStream::Ok)
            return failure;
        entries.push_back(std::move(entry));
    }
    return entries;
}

std::vector<OutboxEntry> inverted(const std::vector<OutboxEntry> &entries)
{
    std::vector<OutboxEntry> back;
    back.reserve(entries.size());
    for (auto entry = entries.rbegin(); entry != entries.rend(); ++entry)
        back.push_back({0, entry->group, entry->place, entry->key, entry->after, entry->before, true});
    return back;
}

void append(std::vector<OutboxEntry> &entries, const std::vector<OutboxEntry> &others)
{
    int firstFree = 0;
    for (const OutboxEntry &entry : entries)
        firstFree = std::max(firstFree, entry.group + 1);
    for (OutboxEntry entry : others) {
        entry.group += firstFree;
        entries.push_back(std::move(entry));
    }
}

} // namespace outbox
