#include "store/queries/HomeRows.h"

#include "store/entities/MainContext.h"
#include "store/entities/Model.h"
#include "store/queries/ListDefinitions.h"

#include <algorithm>
#include <unordered_map>

HomeRows::HomeRows(std::vector<Place> all)
    : places(std::move(all))
{
    if (places.empty())
        places.push_back({});
}

void HomeRows::load() const
{
    if (!std::exchange(isLoadedOld, false))
        return;
    const auto identifiersOf = [this](Kind kind) {
        std::vector<RowId> identifiers;
        identifiers.reserve(places.size());
        for (const Place &place : places)
            identifiers.push_back(place.kind == kind ? place.row : 0);
        return identifiers;
    };
    tasks = tasklists::list(identifiersOf(Kind::Task));
    projects =
        ObjectList<EntityProject>(mainContext(), organiserModel().requireEntity(EntityProject::entityName),
                                  identifiersOf(Kind::Project));
}

HomeRow HomeRows::at(int row) const
{
    load();
    const Place &place = placeAt(row);
    switch (place.kind) {
    case Kind::Day:
        return DayHeader{*place.day};
    case Kind::Task:
        return tasks.at(row);
    case Kind::Project:
        return projects.at(row);
    case Kind::Notice:
        break;
    }
    return EntityNotValue{EntityNotValue::NoEvents};
}

ObjectPtr HomeRows::recordAt(int row) const
{
    load();
    switch (placeAt(row).kind) {
    case Kind::Task:
        return tasks.at(row);
    case Kind::Project:
        return projects.at(row);
    default:
        return nullptr;
    }
}

int HomeRows::rowOf(const ManagedObject &record) const
{
    const std::string_view entity = record.entity().name();
    if (entity != EntityTask::entityName && entity != EntityProject::entityName)
        return -1;
    const Kind kind = entity == EntityTask::entityName ? Kind::Task : Kind::Project;
    const auto found = std::ranges::find_if(
        places, [&](const Place &place) { return place.kind == kind && place.row == record.rowId(); });
    return found == places.end() ? -1 : static_cast<int>(found - places.begin());
}

static quint64 keyOf(const HomeRows::Place &place)
{
    constexpr int bitsOfKind = 2;
    constexpr int bitsOfDay = 3;
    const quint64 record = static_cast<quint64>(place.row) + 1;
    return (record << (bitsOfKind + bitsOfDay)) | (static_cast<quint64>(place.dayIndex) << bitsOfKind) |
           static_cast<quint64>(place.kind);
}

quint64 HomeRows::keyAt(int row) const
{
    return keyOf(placeAt(row));
}

// Changing

void HomeRows::replace(int first, int removed, std::vector<Place> added)
{
    const auto from = places.begin() + first;
    places.insert(places.erase(from, from + removed), added.begin(), added.end());
    isLoadedOld = true;
}

/// The greatest number of places that stand in ascending order, by their index in `sequence`; -1 is left out.
static std::vector<std::size_t> longestAscent(const std::vector<int> &sequence)
{
    std::vector<std::size_t> ends;
    std::vector<std::ptrdiff_t> before(sequence.size(), -1);
    for (std::size_t index = 0; index < sequence.size(); ++index) {
        if (sequence[index] < 0)
            continue;
        const auto end = std::ranges::lower_bound(ends, sequence[index], {},
                                                  [&](std::size_t one) { return sequence[one]; });
        before[index] = end == ends.begin() ? -1 : static_cast<std::ptrdiff_t>(*std::prev(end));
        if (end == ends.end())
            ends.push_back(index);
        else
            *end = index;
    }
    std::vector<std::size_t> ascent;
    for (std::ptrdiff_t index = ends.empty() ? -1 : static_cast<std::ptrdiff_t>(ends.back()); index >= 0;
         index = before[static_cast<std::size_t>(index)])
        ascent.push_back(static_cast<std::size_t>(index));
    std::ranges::reverse(ascent);
    return ascent;
}

void HomeRows::follow(const HomeRows &wanted, RowsWatcher &watcher)
{
    std::unordered_map<quint64, int> wantedRows;
    for (int row = 0; row < wanted.size(); ++row)
        wantedRows.emplace(wanted.keyAt(row), row);
    std::vector<int> goals;
    goals.reserve(places.size());
    for (const Place &place : places) {
        const auto found = wantedRows.find(keyOf(place));
        const bool isSame = found != wantedRows.end() && wanted.placeAt(found->second) == place;
        goals.push_back(isSame ? found->second : -1);
    }
    const std::vector<std::size_t> staying = longestAscent(goals);
    // Between two rows that stay, what stood there goes and what is wanted there comes; from the end, so that
    // the rows above keep their numbers.
    int oldEnd = size();
    int newEnd = wanted.size();
    std::size_t left = staying.size();
    while (newEnd >= 0) {
        const bool isTop = left == 0;
        const std::size_t stays = isTop ? 0 : staying[--left];
        const int first = isTop ? 0 : static_cast<int>(stays) + 1;
        const int goal = isTop ? 0 : goals[stays] + 1;
        if (first < oldEnd) {
            watcher.willRemove(first, oldEnd - 1);
            replace(first, oldEnd - first, {});
            watcher.didRemove();
        }
        if (goal < newEnd) {
            watcher.willInsert(first, first + newEnd - goal - 1);
            replace(first, 0, {wanted.places.begin() + goal, wanted.places.begin() + newEnd});
            watcher.didInsert();
        }
        oldEnd = first - 1;
        newEnd = isTop ? -1 : goal - 1;
    }
}
