#pragma once

#include "contacts/VCardContact.h"
#include "contacts/VCardReader.h"

#include <QBuffer>

#include <vector>

/// All cards of a text.
inline std::vector<VCard> cardsOf(QByteArray text)
{
    QBuffer device(&text);
    device.open(QIODevice::ReadOnly);
    VCardReader reader(device);
    std::vector<VCard> cards;
    while (auto card = reader.next())
        cards.push_back(std::move(*card));
    return cards;
}

/// The lines of a card of a version, with its frame around them.
inline QByteArray card(const QByteArray &lines, const QByteArray &version = "3.0")
{
    return "BEGIN:VCARD\r\nVERSION:" + version + "\r\n" + lines + "\r\nEND:VCARD\r\n";
}

/// The contact of a text of one card.
inline CNContact contactOf(const QByteArray &text)
{
    const auto cards = cardsOf(text);
    return cards.size() == 1 ? contactFrom(cards.front()) : CNContact{.givenName = u"(not one card)"_qs};
}
