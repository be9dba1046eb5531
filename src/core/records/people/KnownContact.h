#pragma once

#include "contacts/CNContact.h"
#include "store/entities/Entities.h"

#include <QSet>

#include <optional>
#include <vector>

/// What is known of somebody who is there, to be compared with a card.
struct KnownContact
{
    QSet<QString> phones = {};
    QSet<QString> emails = {};
    QSet<QString> urls = {};
    QSet<QString> addresses = {};
    QString words = {};
    /// With its year.
    std::optional<CNBirthday> birthday = {};
    QString company = {};
    QString jobTitle = {};
    bool hasPicture = false;
    QSet<QString> groups = {};
};

/// What a card brings to somebody who is there.
enum class CardVerdict {
    Nothing,
    /// Something that is missing there.
    More,
    /// Nothing but another phone and mail, as somebody else of the same name has.
    OtherPerson,
};

/// Compares the cards of an import with who is there.
namespace knowncontacts {

/// What a card says of somebody.
KnownContact from(const CNContact &card);
/// What the store has of contacts, or of companies; absent for a row that is gone.
std::vector<std::optional<KnownContact>> ofContacts(const std::vector<RowId> &rows);
std::vector<std::optional<KnownContact>> ofCompanies(const std::vector<RowId> &rows);

CardVerdict verdictOn(const CNContact &card, const KnownContact &known);

/// A project of a person, which is linked, where other words stand in a note.
bool isLink(const CNContact &card, const CNLabeledValue<QString> &words);
/// What stands in one line of a form; empty, and not absent, for nothing.
QString oneLine(const QString &text);

} // namespace knowncontacts
