#include "records/people/NoteWords.h"

#include "store/entities/EntityContacts.h"
#include "store/entities/FullName.h"
#include "store/entities/SmallEntities.h"

#include <QStringList>

#include <algorithm>

bool notewords::isNameOf(const EntityContacts &contact, const QString &title)
{
    return isNameOf(contact.firstName(), contact.lastName(), title);
}

bool notewords::isNameOf(const QString &firstName, const QString &lastName, const QString &title)
{
    return title == fullNameIn(NameOrder::FirstNameFirst, firstName, lastName) ||
           title == fullNameIn(NameOrder::LastNameFirst, firstName, lastName);
}

using Notes = std::vector<std::shared_ptr<EntityNote>>;

static Notes sorted(Notes notes)
{
    std::ranges::sort(notes, {}, [](const auto &note) {
        return std::pair(note->creationDate().value_or(Date()).referenceSeconds(), note->title());
    });
    return notes;
}

Notes notewords::inOrder(const EntityContacts &contact)
{
    const auto notes = contact.note();
    return sorted({notes.begin(), notes.end()});
}

QString notewords::of(const EntityContacts &contact)
{
    return of(contact, inOrder(contact));
}

QString notewords::of(const EntityContacts &contact, std::vector<std::shared_ptr<EntityNote>> notes)
{
    QStringList words;
    for (const auto &note : sorted(std::move(notes))) {
        if (!isNameOf(contact, note->title()))
            words << note->title();
        words << note->detail();
    }
    words.removeAll(QString());
    return words.join(u'\n');
}

static QStringList linesOf(const QString &text)
{
    QStringList lines;
    for (const QString &line : text.split(u'\n'))
        if (const QString words = line.trimmed(); !words.isEmpty())
            lines.append(words);
    lines.sort();
    return lines;
}

bool notewords::areSame(const QString &one, const QString &other)
{
    return linesOf(one) == linesOf(other);
}
