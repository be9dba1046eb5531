#include "eventkit/IcalDocument.h"

#include "eventkit/CalendarError.h"
#include "eventkit/IcalEntry.h"

namespace {

constexpr std::size_t deepestNesting = 16;

Error unreadable(const QString &reason)
{
    return CalendarError::make(CalendarError::Unreadable, reason);
}

/// The first line from a place on, with the folds that belong to it.
QByteArray lineAt(const QByteArray &text, qsizetype begin)
{
    qsizetype end = begin;
    do {
        const qsizetype lineFeed = text.indexOf('\n', end);
        end = lineFeed < 0 ? text.size() : lineFeed + 1;
    } while (end < text.size() && (text[end] == ' ' || text[end] == '\t'));
    return text.mid(begin, end - begin);
}

/// Puts components together out of lines.
class Parser
{
public:
    std::optional<Error> take(const ContentLine &line)
    {
        if (line.name() == "BEGIN")
            return begin(line);
        if (line.name() == "END")
            return end(line);
        if (!open.empty())
            open.back().append({line});
        else if (!root)
            before += line.raw();
        else
            after += line.raw();
        return std::nullopt;
    }

    QByteArray before;
    std::optional<IcalComponent> root;
    QByteArray after;
    std::vector<IcalComponent> open;

private:
    std::optional<Error> begin(const ContentLine &line)
    {
        IcalComponent component(line);
        if (open.empty() && (root || component.name() != "VCALENDAR"))
            return unreadable(root ? QStringLiteral("it holds more than one calendar")
                                   : QStringLiteral("it begins with something other than a calendar"));
        if (open.size() >= deepestNesting)
            return unreadable(QStringLiteral("its components are nested too deeply"));
        open.push_back(std::move(component));
        return std::nullopt;
    }

    std::optional<Error> end(const ContentLine &line)
    {
        if (open.empty() || line.value().trimmed().toUpper() != open.back().name())
            return unreadable(QStringLiteral("its components do not end as they begin"));
        IcalComponent closed = std::move(open.back());
        open.pop_back();
        closed.close(line);
        if (open.empty())
            root = std::move(closed);
        else
            open.back().append({std::move(closed)});
        return std::nullopt;
    }
};

} // namespace

Result<IcalDocument> IcalDocument::fromText(const QByteArray &text)
{
    static const QByteArray byteOrderMark = QByteArrayLiteral("\xEF\xBB\xBF");
    Parser parser;
    qsizetype place = 0;
    if (text.startsWith(byteOrderMark)) {
        parser.before = byteOrderMark;
        place = byteOrderMark.size();
    }
    while (place < text.size()) {
        const QByteArray line = lineAt(text, place);
        place += line.size();
        if (auto error = parser.take(ContentLine(line)))
            return *error;
    }
    if (!parser.open.empty())
        return unreadable(QStringLiteral("it is cut off"));
    if (!parser.root)
        return unreadable(QStringLiteral("there is no calendar in it"));
    IcalDocument document(std::move(*parser.root));
    document.before = parser.before;
    document.after = parser.after;
    return document;
}

IcalDocument IcalDocument::create()
{
    IcalComponent calendar("VCALENDAR", "\r\n");
    calendar.setValue("VERSION", "2.0");
    calendar.setValue("PRODID", "-//Halvern//Morvane//EN");
    return IcalDocument(std::move(calendar));
}

QByteArray IcalDocument::text() const
{
    QByteArray written = before;
    root.writeTo(written);
    return written + after;
}
