#pragma once

#include "foundation/Error.h"

#include <QByteArray>
#include <QString>

#include <vector>

/// An address book of the desktop.
struct CNContainer
{
    QString identifier;
    QString name;
    bool operator==(const CNContainer &) const = default;
};

/// Where the address books come from. Its functions are called on threads of their own, several at once, and
/// may take their time. Errors are of the domain "contacts".
class ContactBackend
{
public:
    virtual ~ContactBackend() = default;

    /// All address books, by name.
    virtual Result<std::vector<CNContainer>> containers() = 0;
    /// The contacts of one as vCards.
    virtual Result<std::vector<QByteArray>> cards(const CNContainer &container) = 0;
    /// Those of them that may have a mail address: all where they cannot be picked out.
    virtual Result<std::vector<QByteArray>> cardsWithMail(const CNContainer &container,
                                                          const QString &address)
    {
        Q_UNUSED(address)
        return cards(container);
    }
    /// Those of them that may have names which begin with each word of a text, in any order: all where they
    /// cannot be picked out.
    virtual Result<std::vector<QByteArray>> cardsWithName(const CNContainer &container, const QString &words)
    {
        Q_UNUSED(words)
        return cards(container);
    }
};
