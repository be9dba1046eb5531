#pragma once

#include "contacts/CNContact.h"

/// Writes contacts as vCards that `contactFrom` reads back without a loss.
namespace VCardWriter {

enum class Version {
    /// RFC 2426, which every program reads.
    V30,
    /// RFC 6350.
    V40,
};

/// A line that a program writes for itself, beside what every program reads.
struct OwnLine
{
    /// In capitals, from "X-" on.
    QByteArray name;
    /// One value or several, of any number of lines.
    QStringList parts;
};

/// One card, in UTF-8 with folded lines, its last line end included. A contact without a name gets its
/// organization, a phone number or a mail address for one, since a card has to have a name.
QByteArray text(const CNContact &contact, Version version = Version::V30,
                const std::vector<OwnLine> &ownLines = {});

} // namespace VCardWriter
