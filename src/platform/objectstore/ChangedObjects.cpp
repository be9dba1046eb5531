#include "objectstore/ChangedObjects.h"

/// More are read anew with all others.
constexpr std::size_t mostChanges = 8192;

quint64 ChangedObjects::nextStart()
{
    static quint64 start = 0;
    constexpr int roomForChanges = 40;
    return ++start << roomForChanges;
}

void ChangedObjects::note(const ManagedObject &object)
{
    changes.push_back({object.identifier(), object.rowId()});
    if (changes.size() > mostChanges) {
        changes.pop_front();
        ++first;
    }
}

void ChangedObjects::noteAll()
{
    changes.clear();
    first = nextStart();
}

std::optional<std::vector<ChangedObjects::Change>> ChangedObjects::since(quint64 from) const
{
    if (from < first || from > revision())
        return std::nullopt;
    return std::vector<Change>(changes.begin() + static_cast<std::ptrdiff_t>(from - first), changes.end());
}
