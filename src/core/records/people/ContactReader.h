#pragma once

#include "contacts/VCardContact.h"

#include <memory>
#include <optional>

class QIODevice;

/// Reads the contacts of one origin one after the other, however many there are.
class ContactReader
{
public:
    struct Entry
    {
        CNContact contact;
        VCard::State state = VCard::State::Whole;
        /// The number of the line that it begins in, from 1 on.
        qint64 line = 0;
    };
    /// How the contacts are written.
    enum class Form {
        VCards,
        /// A table with titles, of comma-separated values.
        Table,
    };

    /// \param source must be open for reading, and outlive the reader.
    static std::unique_ptr<ContactReader> of(Form form, QIODevice &source);
    virtual ~ContactReader() = default;

    /// The next contact; absent at the end.
    virtual std::optional<Entry> next(CardImage image) = 0;
    /// How many bytes of the source the contacts so far have taken.
    virtual qint64 position() const = 0;
    /// False for a table of which no title means names, so that nothing can be read from it.
    virtual bool isUnderstood() const { return true; }
};
