#include "store/queries/TaskRowsUpdate.h"

#include <algorithm>
#include <unordered_set>

using tasklists::OrderKey;
using tasklists::OrderKeys;
using tasklists::PlacedRow;

void TaskRowsUpdate::run(const std::set<RowId> &changed, const std::set<RowId> &held)
{
    changedRows = changed;
    heldRows = held;
    const std::vector<PlacedRow> placed = wanted();
    if (isReset(placed))
        return;
    removeLeavers(placed);
    openGroups(placed);
    std::vector<std::vector<RowId>> members(rows.groups.size());
    for (const PlacedRow &one : placed)
        members[groupOf(one.group)].push_back(one.row);
    std::vector<Target> targets;
    for (size_t group = 0; group < members.size(); ++group)
        targets.push_back(targetOf(rows.groups[group], std::move(members[group])));
    findPlaces(targets);
    for (size_t group = 0; group < targets.size(); ++group)
        settle(group, targets[group]);
    closeEmptyGroups();
    for (const PlacedRow &one : placed)
        watcher.rowChanged(rowAt(*placeOf(one.row)));
}

/// The changed tasks that the list has, in its order.
std::vector<PlacedRow> TaskRowsUpdate::wanted() const
{
    std::vector<PlacedRow> placed = query.placed({changedRows.begin(), changedRows.end()});
    if (query.groupedBy != GroupedBy::Nothing)
        std::erase_if(placed, [this](const PlacedRow &one) { return !query.headerOf(one.group); });
    return placed;
}

/// A list that was empty, or becomes so, has other rows than tasks: what it says then, and its end.
bool TaskRowsUpdate::isReset(const std::vector<PlacedRow> &placed)
{
    const bool hasRest = std::ranges::any_of(rows.groups, [this](const TaskRows::Group &group) {
        return std::ranges::any_of(group.tasks.rows(),
                                   [this](RowId row) { return !changedRows.contains(row); });
    });
    if (hasRest || (rows.taskCount() > 0 && !placed.empty()))
        return false;
    if (rows.taskCount() == 0 && placed.empty())
        return true;
    watcher.willReset();
    rows = query.rowsOf(placed);
    watcher.didReset();
    return true;
}

void TaskRowsUpdate::removeLeavers(const std::vector<PlacedRow> &placed)
{
    std::unordered_set<RowId> leaving(changedRows.begin(), changedRows.end());
    for (const PlacedRow &one : placed)
        leaving.erase(one.row);
    for (size_t group = rows.groups.size(); group-- > 0;) {
        for (size_t index = rows.groups[group].tasks.rows().size(); index-- > 0;) {
            if (!leaving.contains(rows.groups[group].tasks.rows()[index]))
                continue;
            const int row = rowAt({group, index});
            watcher.willRemove(row, row);
            eraseAt({group, index});
            watcher.didRemove();
        }
    }
}

// Groups

size_t TaskRowsUpdate::groupOf(const GroupKey &key) const
{
    if (query.groupedBy == GroupedBy::Nothing)
        return 0;
    const auto found = std::ranges::find_if(
        rows.groups, [&key](const TaskRows::Group &group) { return keyOf(*group.header) == key; });
    return static_cast<size_t>(found - rows.groups.begin());
}

void TaskRowsUpdate::openGroups(const std::vector<PlacedRow> &placed)
{
    for (const PlacedRow &one : placed) {
        if (groupOf(one.group) == rows.groups.size())
            openGroup(*query.headerOf(one.group));
    }
}

/// A header comes with a gap that parts it from its neighbour, and without a task as yet.
void TaskRowsUpdate::openGroup(const GroupHeader &header)
{
    const auto next = std::ranges::find_if(rows.groups, [&](const TaskRows::Group &group) {
        return standsBelow(keyOf(*group.header), keyOf(header));
    });
    const int first = next == rows.groups.begin() ? 0 : (next - 1)->endRow();
    watcher.willInsert(first, first + 1);
    rows.groups.insert(next, {header, tasklists::list({}), 0});
    rows.renumber();
    watcher.didInsert();
}

bool TaskRowsUpdate::standsBelow(const GroupKey &one, const GroupKey &other)
{
    if (query.groupedBy == GroupedBy::DayDone)
        return std::get<Date>(one) > std::get<Date>(other);
    if (headerOrder.empty()) {
        for (const GroupHeader &header : query.headers())
            headerOrder.push_back(keyOf(header));
    }
    return std::ranges::find(headerOrder, one) > std::ranges::find(headerOrder, other);
}

void TaskRowsUpdate::closeEmptyGroups()
{
    if (query.groupedBy == GroupedBy::Nothing)
        return;
    for (size_t group = rows.groups.size(); group-- > 0;) {
        if (!rows.groups[group].tasks.isEmpty())
            continue;
        const int first = group == 0 ? 0 : rows.groups[group - 1].endRow();
        watcher.willRemove(first, first + 1);
        rows.groups.erase(rows.groups.begin() + static_cast<std::ptrdiff_t>(group));
        rows.renumber();
        watcher.didRemove();
    }
}

// Places

TaskRowsUpdate::Target TaskRowsUpdate::targetOf(const TaskRows::Group &group,
                                                std::vector<RowId> members) const
{
    Target target;
    if (members.empty())
        return target;
    for (const RowId row : members)
        target.members.push_back({row});
    for (const RowId row : group.tasks.rows()) {
        if (!changedRows.contains(row) && !heldRows.contains(row))
            target.rest.push_back(row);
    }
    return target;
}

void TaskRowsUpdate::findPlaces(std::vector<Target> &targets)
{
    std::vector<RowId> asked;
    for (size_t number = 0; number < targets.size(); ++number) {
        // Most tasks stay where they are: their neighbours can tell.
        Target &target = targets[number];
        for (Member &member : target.members) {
            asked.push_back(member.row);
            const auto place = placeOf(member.row);
            if (!place || place->group != number)
                continue;
            const std::span<const RowId> all = rows.groups[number].tasks.rows();
            member.rest = static_cast<size_t>(std::count_if(
                all.begin(), all.begin() + static_cast<std::ptrdiff_t>(place->index),
                [this](RowId row) { return !changedRows.contains(row) && !heldRows.contains(row); }));
            member.isSettled = true;
            if (member.rest > 0)
                asked.push_back(target.rest[member.rest - 1]);
            if (member.rest < target.rest.size())
                asked.push_back(target.rest[member.rest]);
        }
    }
    if (asked.empty())
        return;
    const OrderKeys keys = tasklists::orderKeys(query.definition, std::move(asked));
    for (size_t number = 0; number < targets.size(); ++number)
        keepSettled(targets[number], keys);
    searchPlaces(targets);
    for (size_t number = 0; number < targets.size(); ++number)
        sortMembers(targets[number], rows.groups[number]);
}

/// A task between neighbours that it may stand between is not looked for elsewhere.
void TaskRowsUpdate::keepSettled(Target &target, const OrderKeys &keys) const
{
    const auto isOrdered = [&](RowId upper, RowId lower) {
        const auto above = keys.find(upper);
        const auto below = keys.find(lower);
        return above == keys.end() || below == keys.end() ||
               !tasklists::isBefore(query.definition, below->second, above->second);
    };
    for (Member &member : target.members) {
        if (!member.isSettled)
            continue;
        const bool isBelow = member.rest == 0 || isOrdered(target.rest[member.rest - 1], member.row);
        const bool isAbove =
            member.rest == target.rest.size() || isOrdered(member.row, target.rest[member.rest]);
        member.isSettled = isBelow && isAbove;
    }
}

/// A binary search for all of them together: each round asks once for the keys of all rows in question.
void TaskRowsUpdate::searchPlaces(std::vector<Target> &targets)
{
    struct Search
    {
        Member *member;
        const std::vector<RowId> *rest;
        size_t from;
        size_t to;
        size_t middle() const { return from + (to - from) / 2; }
    };
    std::vector<Search> searches;
    std::vector<RowId> sought;
    for (Target &target : targets) {
        for (Member &member : target.members) {
            if (member.isSettled)
                continue;
            searches.push_back({&member, &target.rest, 0, target.rest.size()});
            sought.push_back(member.row);
        }
    }
    if (searches.empty())
        return;
    const OrderKeys own = tasklists::orderKeys(query.definition, std::move(sought));
    const auto isOpen = [](const Search &search) { return search.from < search.to; };
    while (std::ranges::any_of(searches, isOpen)) {
        std::vector<RowId> asked;
        for (const Search &search : searches) {
            if (isOpen(search))
                asked.push_back((*search.rest)[search.middle()]);
        }
        const OrderKeys keys = tasklists::orderKeys(query.definition, std::move(asked));
        for (Search &search : searches) {
            if (!isOpen(search))
                continue;
            const auto key = keys.find((*search.rest)[search.middle()]);
            const bool isAbove =
                key != keys.end() &&
                tasklists::isBefore(query.definition, own.at(search.member->row), key->second);
            (isAbove ? search.to : search.from) = isAbove ? search.middle() : search.middle() + 1;
        }
    }
    for (const Search &search : searches)
        search.member->rest = search.from;
}

/// Members come in the order of the list, so that those at one place are in order among themselves. Of those
/// that stand at their place, only an ordered part can stay.
void TaskRowsUpdate::sortMembers(Target &target, const TaskRows::Group &group) const
{
    std::ranges::stable_sort(target.members, {}, &Member::rest);
    const std::span<const RowId> all = group.tasks.rows();
    auto lastKept = all.begin();
    for (Member &member : target.members) {
        if (!member.isSettled)
            continue;
        const auto place = std::find(lastKept, all.end(), member.row);
        member.isSettled = place != all.end();
        if (member.isSettled)
            lastKept = place;
    }
}

/// From the last member up: what is to stand below one stands there already.
void TaskRowsUpdate::settle(size_t group, const Target &target)
{
    for (size_t number = target.members.size(); number-- > 0;) {
        const Member &member = target.members[number];
        if (member.isSettled)
            continue;
        const bool isAboveMember =
            number + 1 < target.members.size() && target.members[number + 1].rest == member.rest;
        const std::span<const RowId> all = rows.groups[group].tasks.rows();
        auto below = all.end();
        if (isAboveMember)
            below = std::ranges::find(all, target.members[number + 1].row);
        else if (member.rest < target.rest.size())
            below = std::ranges::find(all, target.rest[member.rest]);
        bring(member.row, {group, static_cast<size_t>(below - all.begin())});
    }
}

void TaskRowsUpdate::bring(RowId row, Place to)
{
    const int above = rowAt(to);
    const auto from = placeOf(row);
    if (!from) {
        watcher.willInsert(above, above);
        insertAt(to, row);
        return watcher.didInsert();
    }
    const bool isBelowInGroup = from->group == to.group && from->index < to.index;
    if (from->group == to.group && (from->index == to.index || from->index + 1 == to.index))
        return;
    watcher.willMove(rowAt(*from), above);
    eraseAt(*from);
    insertAt({to.group, isBelowInGroup ? to.index - 1 : to.index}, row);
    watcher.didMove();
}

// Rows

std::optional<TaskRowsUpdate::Place> TaskRowsUpdate::placeOf(RowId row) const
{
    for (size_t group = 0; group < rows.groups.size(); ++group) {
        const std::span<const RowId> all = rows.groups[group].tasks.rows();
        const auto found = std::ranges::find(all, row);
        if (found != all.end())
            return Place{group, static_cast<size_t>(found - all.begin())};
    }
    return std::nullopt;
}

int TaskRowsUpdate::rowAt(Place place) const
{
    return rows.groups[place.group].firstTaskRow() + static_cast<int>(place.index);
}

void TaskRowsUpdate::insertAt(Place place, RowId row)
{
    TaskList &tasks = rows.groups[place.group].tasks;
    std::vector<RowId> all(tasks.rows().begin(), tasks.rows().end());
    all.insert(all.begin() + static_cast<std::ptrdiff_t>(place.index), row);
    tasks = tasklists::list(std::move(all));
    rows.renumber();
}

void TaskRowsUpdate::eraseAt(Place place)
{
    TaskList &tasks = rows.groups[place.group].tasks;
    std::vector<RowId> all(tasks.rows().begin(), tasks.rows().end());
    all.erase(all.begin() + static_cast<std::ptrdiff_t>(place.index));
    tasks = tasklists::list(std::move(all));
    rows.renumber();
}
