#include "store/queries/ContactRows.h"

#include "store/entities/FullName.h"
#include "store/entities/MainContext.h"

#include <algorithm>
#include <optional>
#include <set>
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

/// Whose names are read, and which comes first.
void appendName(NamedContacts &found, const RowReader &row)
{
    std::string &names = found.names;
    const std::size_t begin = names.size();
    names += row.utf8(0);
    if (names.size() > begin && !row.utf8(1).empty())
        names += ' ';
    names += row.utf8(1);
    const auto name = std::string_view(names).substr(begin);
    found.contacts.push_back({headOf(name), begin, name.size(), row.rowId()});
}

std::vector<std::string> nameColumns(NameOrder order)
{
    return order == NameOrder::FirstNameFirst ? std::vector<std::string>{"firstName", "lastName"}
                                              : std::vector<std::string>{"lastName", "firstName"};
}

/// The bytes of UTF-8 stand in the order of the characters.
bool isBefore(std::string_view all, const NamedContact &one, const NamedContact &other)
{
    if (one.head != other.head)
        return one.head < other.head;
    const int order = all.substr(one.begin, one.length).compare(all.substr(other.begin, other.length));
    return order == 0 ? one.row < other.row : order < 0;
}

void sort(NamedContacts &found)
{
    std::ranges::sort(found.contacts, [&all = found.names](const auto &one, const auto &other) {
        return isBefore(all, one, other);
    });
    found.names.shrink_to_fit();
    found.contacts.shrink_to_fit();
}

NamedContacts sortedContacts(const FetchRequest &request)
{
    NamedContacts found;
    mainContext().visit(request, nameColumns(preferredNameOrder()),
                        [&](const RowReader &row) { appendName(found, row); });
    sort(found);
    return found;
}

/// The names of all contacts, which are read once; then only of those that were changed.
class AllContacts
{
public:
    const NamedContacts &sorted();
    bool readSome();

private:
    /// What was read of them before they were asked for.
    struct Ahead
    {
        NamedContacts found;
        std::vector<RowId> rows;
        std::size_t next = 0;
        NameOrder order;
        quint64 revision;
    };
    bool follow(const std::vector<ChangedObjects::Change> &changes);

    NamedContacts known;
    NameOrder order = NameOrder::FirstNameFirst;
    /// Of the last change that they know of; 0 before they were read.
    quint64 revision = 0;
    std::optional<Ahead> ahead;
};

AllContacts &allContacts()
{
    static AllContacts all;
    return all;
}

/// What was changed since it began is read again when it is asked for.
bool AllContacts::readSome()
{
    // So many are not felt.
    constexpr std::size_t atOnce = 10'000;
    ManagedObjectContext &context = mainContext();
    const ChangedObjects &changed = context.changedObjects(EntityContacts::entityName);
    const bool isKnown = order == preferredNameOrder() && changed.since(revision);
    if (isKnown || context.hasChanges() || context.transaction()) {
        ahead.reset();
        return false;
    }
    if (!ahead || ahead->order != preferredNameOrder() || !changed.since(ahead->revision)) {
        const auto all = context.fetchObjects(EntityContacts::fetchRequest());
        ahead.emplace(
            Ahead{{}, {all.rows().begin(), all.rows().end()}, 0, preferredNameOrder(), changed.revision()});
    }
    const std::size_t end = std::min(ahead->next + atOnce, ahead->rows.size());
    FetchRequest request = EntityContacts::fetchRequest();
    request.candidates = std::vector<RowId>(ahead->rows.begin() + static_cast<std::ptrdiff_t>(ahead->next),
                                            ahead->rows.begin() + static_cast<std::ptrdiff_t>(end));
    context.visit(request, nameColumns(ahead->order),
                  [this](const RowReader &row) { appendName(ahead->found, row); });
    ahead->next = end;
    if (end < ahead->rows.size())
        return true;
    sort(ahead->found);
    known = std::move(ahead->found);
    order = ahead->order;
    revision = ahead->revision;
    ahead.reset();
    return false;
}

const NamedContacts &AllContacts::sorted()
{
    ManagedObjectContext &context = mainContext();
    // Any query sees whether another program has written; this one has few rows to count.
    context.count(EntityContactCategory::fetchRequest());
    const ChangedObjects &changed = context.changedObjects(EntityContacts::entityName);
    const NameOrder wantedOrder = preferredNameOrder();
    const auto changes = wantedOrder == order ? changed.since(revision) : std::nullopt;
    if (!changes || !follow(*changes))
        known = sortedContacts(EntityContacts::fetchRequest());
    order = wantedOrder;
    revision = changed.revision();
    return known;
}

/// False if there are so many that all are read as quickly.
bool AllContacts::follow(const std::vector<ChangedObjects::Change> &changes)
{
    constexpr std::size_t most = 1000;
    std::set<RowId> rows;
    for (const ChangedObjects::Change &change : changes) {
        RowId row = change.row;
        // One that was new has got its row since.
        if (row == 0) {
            const ObjectPtr object = mainContext().object(EntityContacts::entityName, change.identifier);
            row = object ? object->rowId() : 0;
        }
        if (row == 0 && mainContext().hasChanges())
            return false;
        rows.insert(row);
    }
    rows.erase(0);
    // What is renamed leaves its former name behind.
    const bool isWasteful = known.names.size() > 2 * known.contacts.size() * sizeof(NamedContact);
    if (rows.size() > most || isWasteful)
        return false;
    if (rows.empty())
        return true;
    std::erase_if(known.contacts, [&](const NamedContact &one) { return rows.contains(one.row); });
    FetchRequest request = EntityContacts::fetchRequest();
    request.candidates = std::vector<RowId>(rows.begin(), rows.end());
    const auto others = static_cast<std::ptrdiff_t>(known.contacts.size());
    mainContext().visit(request, nameColumns(order), [&](const RowReader &row) { appendName(known, row); });
    const auto isEarlier = [&all = known.names](const NamedContact &left, const NamedContact &right) {
        return isBefore(all, left, right);
    };
    const auto came = known.contacts.begin() + others;
    std::sort(came, known.contacts.end(), isEarlier);
    std::inplace_merge(known.contacts.begin(), came, known.contacts.end(), isEarlier);
    return true;
}

/// What a request gives; `read` is for those that pass a condition.
const NamedContacts &contactsOf(const FetchRequest &request, NamedContacts &read)
{
    const bool isForAll = request.predicate.isAlwaysTrue() && !request.candidates && request.limit < 0;
    if (isForAll)
        return allContacts().sorted();
    read = sortedContacts(request);
    return read;
}

} // namespace

bool ContactRows::readAhead()
{
    return allContacts().readSome();
}

std::vector<RowId> ContactRows::byFullName(const FetchRequest &request)
{
    std::vector<RowId> rows;
    NamedContacts read;
    const NamedContacts &sorted = contactsOf(request, read);
    rows.reserve(sorted.contacts.size());
    for (const NamedContact &contact : sorted.contacts)
        rows.push_back(contact.row);
    return rows;
}

std::vector<ContactRows::Named> ContactRows::named(const FetchRequest &request)
{
    std::vector<Named> rows;
    NamedContacts read;
    const NamedContacts &sorted = contactsOf(request, read);
    rows.reserve(sorted.contacts.size());
    for (const NamedContact &contact : sorted.contacts)
        rows.push_back({contact.row, QString::fromUtf8(sorted.names.data() + contact.begin,
                                                       static_cast<qsizetype>(contact.length))});
    return rows;
}
