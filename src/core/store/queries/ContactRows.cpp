#include "store/queries/ContactRows.h"

#include "store/entities/FullName.h"
#include "store/entities/MainContext.h"

#include <algorithm>
#include <string>
#include <string_view>

namespace {

/// A name in a long text of all names. Its first bytes, as a number, settle nearly every comparison.
struct NamedContact
{
    quint64 head;
    std::size_t begin;
    std::size_t length;
    RowId row;
};

quint64 headOf(std::string_view name)
{
    quint64 head = 0;
    for (std::size_t place = 0; place < sizeof(head); ++place)
        head = head << 8 | (place < name.size() ? static_cast<unsigned char>(name[place]) : 0u);
    return head;
}

/// The contacts in their order, and all their names one after the other.
struct NamedContacts
{
    std::string names;
    std::vector<NamedContact> contacts;
};

NamedContacts sortedContacts(const FetchRequest &request)
{
    const bool isFirstNameFirst = preferredNameOrder() == NameOrder::FirstNameFirst;
    NamedContacts found;
    std::string &names = found.names;
    mainContext().visit(
        request, {isFirstNameFirst ? "firstName" : "lastName", isFirstNameFirst ? "lastName" : "firstName"},
        [&](const RowReader &row) {
            const std::size_t begin = names.size();
            names += row.utf8(0);
            if (names.size() > begin && !row.utf8(1).empty())
                names += ' ';
            names += row.utf8(1);
            const auto name = std::string_view(names).substr(begin);
            found.contacts.push_back({headOf(name), begin, name.size(), row.rowId()});
        });
    // The bytes of UTF-8 stand in the order of the characters.
    const std::string_view all = names;
    std::ranges::sort(found.contacts, [all](const NamedContact &one, const NamedContact &other) {
        if (one.head != other.head)
            return one.head < other.head;
        const int order = all.substr(one.begin, one.length).compare(all.substr(other.begin, other.length));
        return order == 0 ? one.row < other.row : order < 0;
    });
    return found;
}

} // namespace

std::vector<RowId> ContactRows::byFullName(const FetchRequest &request)
{
    std::vector<RowId> rows;
    const NamedContacts sorted = sortedContacts(request);
    rows.reserve(sorted.contacts.size());
    for (const NamedContact &contact : sorted.contacts)
        rows.push_back(contact.row);
    return rows;
}

std::vector<ContactRows::Named> ContactRows::named(const FetchRequest &request)
{
    std::vector<Named> rows;
    const NamedContacts sorted = sortedContacts(request);
    rows.reserve(sorted.contacts.size());
    for (const NamedContact &contact : sorted.contacts)
        rows.push_back({contact.row, QString::fromUtf8(sorted.names.data() + contact.begin,
                                                       static_cast<qsizetype>(contact.length))});
    return rows;
}
