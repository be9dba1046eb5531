#pragma once

#include "contacts/CNContact.h"
#include "contacts/VCard.h"

enum class CardImage {
    Read,
    /// The picture stays where it is, which is much quicker for a list of many contacts.
    Leave,
};

/// What a vCard says of a contact. It has neither a name nor an organization if the card gives none, or
/// describes a group or a thing.
///
/// Names come from N, else from FN, where the last word is the family name; the card of an organization gives
/// no name. A birthday without a year or with less than a month and a day is handled as the value allows.
/// Pictures are taken out of the card or read from the file that it names; nothing is fetched.
CNContact contactFrom(const VCard &card, CardImage image = CardImage::Read);
