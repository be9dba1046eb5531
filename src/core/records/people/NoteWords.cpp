#include "records/people/NoteWords.h"

#include "store/entities/EntityContacts.h"
#include "store/entities/FullName.h"
#include "store/entities/SmallEntities.h"

#include <QStringList>

#include <algorithm>

bool notewords::isNameOf(const EntityContacts &contact, const QString &title)
{
    return title == fullNameIn(NameOrder::FirstNameFirst, contact.firstName(), contact.lastName()) ||
           title == fullNameIn(NameOrder::LastNameFirst, contact.firstName(), contact.lastName());
}

QString notewords::of(const EntityContacts &contact)
{
    const auto notes = contact.note();
    return of(contact, {notes.begin(), notes.end()});
}

QString notewords::of(const EntityContacts &contact, std::vector<std::shared_ptr<EntityNote>> notes)
{
    std::ranges::sort(notes, {}, [](const auto &note) {
        return std::pair(note->creationDate().value_or(Date()).referenceSeconds(), note->title());
    });
    QStringList words;
    for (const auto &note : notes) {
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
