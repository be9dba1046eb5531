#pragma once

#include "eventkit/IcalComponent.h"
#include "foundation/Error.h"

/// An iCalendar text with one VCALENDAR (RFC 5545, section 3.4), kept byte by byte: `text` gives back what
/// was read, except for what was changed through `calendar`.
class IcalDocument
{
public:
    /// The error ("calendar", Unreadable) says what is wrong: no VCALENDAR or several, components that do not
    /// end or end crosswise, or are nested beyond reason.
    static Result<IcalDocument> fromText(const QByteArray &text);
    /// An empty one, made by this program.
    static IcalDocument create();

    const IcalComponent &calendar() const { return root; }
    IcalComponent &calendar() { return root; }
    QByteArray text() const;

private:
    explicit IcalDocument(IcalComponent calendar)
        : root(std::move(calendar))
    {}

    /// What stands before and after the calendar: a byte order mark, empty lines.
    QByteArray before;
    IcalComponent root;
    QByteArray after;
};
