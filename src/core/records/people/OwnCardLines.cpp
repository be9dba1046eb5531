#include "records/people/OwnCardLines.h"

#include "eventkit/UtcDateTime.h"
#include "records/people/ContactTable.h"
#include "records/people/NoteWords.h"
#include "store/entities/EntityCompany.h"
#include "store/entities/EntityProject.h"
#include "store/entities/SmallEntities.h"

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace {

const QByteArray projectLine = QByteArrayLiteral("X-MORVANE-PROJECT");
/// When it was made, its title, its text, and the company that it is about, which former versions left out.
const QByteArray noteLine = QByteArrayLiteral("X-MORVANE-NOTE");

/// Absent for a line that is not as it is written here.
std::optional<CNNote> noteOf(const VCardAttribute &attribute)
{
    const QStringList parts = attribute.components();
    if (parts.size() != 3 && parts.size() != 4)
        return std::nullopt;
    CNNote note{parts[1], parts[2], UtcDateTime::date(parts[0]), parts.value(3)};
    return note.created || parts[0].isEmpty() ? std::optional(note) : std::nullopt;
}

QString wordsOf(const CNContact &contact, const std::vector<CNNote> &notes)
{
    QStringList words;
    for (const CNNote &note : notes) {
        if (!notewords::isNameOf(contact.givenName, contact.familyName, note.title))
            words << note.title;
        words << note.text;
    }
    return words.join(u'\n');
}

} // namespace

std::vector<VCardWriter::OwnLine> owncardlines::of(const EntityContacts &contact)
{
    std::vector<VCardWriter::OwnLine> lines;
    for (const auto &project : contact.project())
        if (!project->title().isEmpty())
            lines.push_back({projectLine, {project->title()}});
    std::ranges::sort(lines, {}, [](const auto &line) { return line.parts.front(); });
    for (const auto &note : notewords::inOrder(contact)) {
        const OptionalDate made = note->creationDate();
        const CompanyPtr company = note->company();
        lines.push_back({noteLine,
                         {made ? UtcDateTime::string(*made) : u""_s, note->title(), note->detail(),
                          company ? company->title() : QString()}});
    }
    return lines;
}

CNContact owncardlines::contactFrom(VCard card, CardImage image)
{
    QStringList projects;
    std::vector<CNNote> notes;
    bool areWhole = true;
    std::erase_if(card.attributes, [&](const VCardAttribute &attribute) {
        if (attribute.name() == projectLine) {
            projects.append(attribute.text().simplified());
        } else if (attribute.name() == noteLine) {
            const auto note = noteOf(attribute);
            areWhole = areWhole && note;
            if (note)
                notes.push_back(*note);
        } else {
            return false;
        }
        return true;
    });
    CNContact contact = ::contactFrom(card, image);
    for (const QString &title : projects)
        if (!title.isEmpty())
            contact.otherWords.push_back({ContactTable::projects, title});
    if (areWhole && notewords::areSame(wordsOf(contact, notes), contact.note))
        contact.notes = std::move(notes);
    return contact;
}
