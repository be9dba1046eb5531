#include "records/exchange/CalendarFile.h"

#include "eventkit/IcalDocument.h"
#include "eventkit/IcalText.h"

#include <QHash>
#include <QIODevice>
#include <QUuid>

namespace {

constexpr qint64 longestLine = CalendarFile::mostBytes;

bool isRecord(const QByteArray &name)
{
    return name == "VEVENT" || name == "VTODO" || name == "VJOURNAL";
}

/// The component that a line begins or ends, in capitals; empty for any other line.
QByteArray componentOf(const QByteArray &line, const char *word)
{
    const QByteArray trimmed = line.trimmed().toUpper();
    const bool isFold = line.startsWith(' ') || line.startsWith('\t');
    return !isFold && trimmed.startsWith(word) ? trimmed.mid(qsizetype(qstrlen(word))) : QByteArray();
}

QByteArray calendarText(const QByteArray &zones, const QByteArray &records)
{
    return "BEGIN:VCALENDAR\r\nVERSION:2.0\r\n" + zones + records + "END:VCALENDAR\r\n";
}

/// The next line, its end with it; a part of one that is longer than anything sensible.
QByteArray nextLine(QIODevice &device)
{
    QByteArray line = device.readLine(longestLine);
    if (!line.isEmpty() && !line.endsWith('\n'))
        line += "\r\n";
    return line;
}

} // namespace

CalendarFile CalendarFile::read(QIODevice &device)
{
    CalendarFile file;
    std::vector<Piece> pieces;
    Piece open{};
    QByteArray name;
    bool isTooLarge = false;
    const auto cutOff = [&] {
        if (isRecord(name))
            file.faults.push_back({Fault::CutOff, open.line});
        name.clear();
    };
    const auto finish = [&] {
        if (isTooLarge)
            file.faults.push_back({Fault::TooLarge, open.line});
        else if (isRecord(name))
            pieces.push_back(open);
        else
            file.zones += open.text;
        name.clear();
    };
    qint64 number = 0;
    while (!device.atEnd()) {
        QByteArray line = nextLine(device);
        if (line.isEmpty())
            break;
        ++number;
        if (number == 1 && line.startsWith("\xEF\xBB\xBF"))
            line.remove(0, 3);
        const QByteArray begun = componentOf(line, "BEGIN:");
        file.hasBegun = file.hasBegun || begun == "VCALENDAR";
        const QByteArray ended = componentOf(line, "END:");
        if (isRecord(begun) || begun == "VTIMEZONE" || begun == "VCALENDAR" || ended == "VCALENDAR") {
            cutOff();
            if (pieces.size() >= mostComponents) {
                file.hasMore = true;
                break;
            }
            isTooLarge = false;
            open = {number, {}};
            if (begun != "VCALENDAR")
                name = begun;
        }
        if (name.isEmpty())
            continue;
        isTooLarge = isTooLarge || open.text.size() + line.size() > mostBytes;
        if (!isTooLarge)
            open.text += line;
        if (ended == name)
            finish();
    }
    cutOff();
    if (!IcalDocument::fromText(calendarText(file.zones, {})))
        file.zones.clear();
    file.join(pieces);
    return file;
}

/// Edited occurrences may stand before their series, and far from it.
void CalendarFile::join(const std::vector<Piece> &pieces)
{
    struct Parts
    {
        Piece whole;
        QByteArray edits;
    };
    std::vector<Parts> objects;
    QHash<QString, std::size_t> places;
    for (const Piece &piece : pieces) {
        const auto document = IcalDocument::fromText(calendarText({}, piece.text));
        const auto children =
            document ? document.value().calendar().children() : std::vector<const IcalComponent *>();
        if (children.size() != 1) {
            faults.push_back({Fault::Unreadable, piece.line});
            continue;
        }
        QString uid = IcalText::fromBytes(children.front()->value("UID")).trimmed();
        // The same words make the same identifier, so that the file can be read twice.
        if (uid.isEmpty())
            uid = QUuid::createUuidV5(QUuid(), piece.text).toString(QUuid::WithoutBraces);
        const auto known = places.constFind(uid);
        if (known == places.constEnd()) {
            places.insert(uid, objects.size());
            found.push_back({uid, piece.line, IcalComponent("VCALENDAR", "\r\n")});
            objects.push_back({});
        }
        Parts &parts = objects[places.value(uid)];
        if (children.front()->line("RECURRENCE-ID"))
            parts.edits += piece.text;
        else
            parts.whole = piece;
    }
    for (std::size_t place = 0; place < objects.size(); ++place) {
        const Parts &parts = objects[place];
        const auto document = IcalDocument::fromText(calendarText(zones, parts.whole.text + parts.edits));
        if (document)
            found[place].calendar = document.value().calendar();
    }
}
