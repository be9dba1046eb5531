#pragma once

#include "contacts/VCardContact.h"
#include "contacts/VCardWriter.h"
#include "store/entities/Entities.h"

/// What the card of a contact says in lines that only this program reads: its projects, and its notes one by
/// one, which stand together in the line that every program reads.
namespace owncardlines {

std::vector<VCardWriter::OwnLine> of(const EntityContacts &contact);

/// The contact of a card with what these lines say. Where the notes say something else than the line for all
/// programs, which somebody may have written anew, that line alone counts.
CNContact contactFrom(VCard card, CardImage image);

} // namespace owncardlines
