#include "eventkit/ItemMerge.h"

#include "eventkit/CalendarItem.h"
#include "eventkit/IcalDocument.h"

#include <algorithm>
#include <map>
#include <set>

namespace itemmerge {

namespace {

using Bytes = QByteArray;
using Names = std::vector<Bytes>;

/// Properties that only make sense together.
const Names timeNames = {"DTSTART", "DTEND", "DURATION"};

bool isNoteOfWriter(const Bytes &name)
{
    static const std::set<Bytes> notes = {"DTSTAMP", "LAST-MODIFIED", "CREATED", "SEQUENCE"};
    return notes.contains(name);
}

/// What stores add by themselves.
bool isAddedByStores(const Bytes &name)
{
    static const std::set<Bytes> added = {"TRANSP", "CLASS", "PRIORITY", "STATUS"};
    return isNoteOfWriter(name) || added.contains(name) || name.startsWith("X-");
}

bool standsSeveralTimes(const Bytes &name)
{
    static const std::set<Bytes> several = {"EXDATE",  "RDATE",     "ATTENDEE", "CATEGORIES", "COMMENT",
                                            "CONTACT", "RESOURCES", "ATTACH",   "RELATED-TO"};
    return several.contains(name);
}

/// The parts of a rule stand in any order, and stores write them in their own.
Bytes normalRule(const Bytes &value)
{
    QByteArrayList parts = value.toUpper().split(';');
    parts.removeAll("INTERVAL=1");
    std::ranges::sort(parts);
    return parts.join(';');
}

/// A line as it is compared: its parameters in any order.
Bytes normal(const ContentLine &line)
{
    if (line.name() == "RRULE" || line.name() == "EXRULE")
        return line.name() + ':' + normalRule(line.value());
    QByteArrayList parts = line.head().split(';');
    std::sort(parts.begin() + 1, parts.end());
    return parts.join(';').toUpper() + ':' + line.value();
}

std::vector<Bytes> normalLines(const IcalComponent &component, const Bytes &name)
{
    std::vector<Bytes> lines;
    for (const ContentLine *line : component.lines(name))
        lines.push_back(normal(*line));
    std::ranges::sort(lines);
    return lines;
}

bool isAlarm(const IcalComponent &component)
{
    return component.name() == "VALARM";
}

/// What an alarm does and when; stores give alarms names of their own.
std::vector<Bytes> alarmsOf(const IcalComponent &component)
{
    std::vector<Bytes> alarms;
    for (const IcalComponent *child : component.children()) {
        if (!isAlarm(*child))
            continue;
        Bytes alarm;
        for (const char *name : {"ACTION", "TRIGGER", "DESCRIPTION", "REPEAT", "DURATION", "ATTACH"}) {
            for (const Bytes &line : normalLines(*child, name))
                alarm += line + '\n';
        }
        alarms.push_back(alarm);
    }
    std::ranges::sort(alarms);
    return alarms;
}

/// One object, taken apart.
struct Object
{
    IcalDocument document;
    CalendarItemPointer item;

    static std::optional<Object> of(const Bytes &text)
    {
        auto document = IcalDocument::fromText(text);
        auto item = CalendarItem::fromText(text);
        if (!document || !item || !item.value())
            return std::nullopt;
        return Object{std::move(document.value()), item.value()};
    }
    /// What tells parts apart: which occurrence they begin with, none for the series itself, and whether they
    /// are edits of the later ones too.
    using PartKey = std::pair<std::optional<qint64>, bool>;
    std::map<PartKey, const ItemPart *> parts() const
    {
        std::map<PartKey, const ItemPart *> found;
        if (item->master())
            found[{std::nullopt, false}] = item->master();
        for (const ItemPart *part : item->edits())
            found[{part->key, part->coversFuture}] = part;
        return found;
    }
};

/// One component with the meaning of its times.
struct Part
{
    const IcalComponent &component;
    const ItemPart &meaning;

    bool hasSameTimes(const Part &other) const
    {
        const ItemTimes &own = meaning.times;
        const ItemTimes &others = other.meaning.times;
        return own.isAllDay() == others.isAllDay() && own.start.instant() == others.start.instant() &&
               own.endOf(own.start) == others.endOf(others.start);
    }
};

std::set<Bytes> namesOf(const IcalComponent &component, const IcalComponent &other)
{
    std::set<Bytes> names;
    for (const IcalComponent *one : {&component, &other}) {
        for (const ContentLine *line : one->allLines())
            names.insert(line->name());
    }
    names.erase(Bytes());
    return names;
}

bool isSamePart(const Part &one, const Part &other)
{
    if (!one.hasSameTimes(other) || alarmsOf(one.component) != alarmsOf(other.component))
        return false;
    const auto names = namesOf(one.component, other.component);
    return std::ranges::all_of(names, [&](const Bytes &name) {
        return isAddedByStores(name) || std::ranges::find(timeNames, name) != timeNames.end() ||
               name == "RECURRENCE-ID" ||
               normalLines(one.component, name) == normalLines(other.component, name);
    });
}

/// Brings one change of a component to the present one.
class PartMerge
{
public:
    PartMerge(IcalComponent &presentComponent, const Part &presentPart, const Part &beforePart,
              const Part &afterPart, bool isYielding)
        : target(presentComponent)
        , present(presentPart)
        , before(beforePart)
        , after(afterPart)
        , yields(isYielding)
    {}

    /// Whether anything was changed.
    bool run()
    {
        mergeTimes();
        mergeAlarms();
        for (const Bytes &name : namesOf(before.component, after.component)) {
            if (isNoteOfWriter(name) || name == "RECURRENCE-ID" || name == "UID" ||
                std::ranges::find(timeNames, name) != timeNames.end())
                continue;
            standsSeveralTimes(name) ? mergeLines(name) : mergeField(name);
        }
        if (isChanged)
            noteChange();
        return isChanged;
    }

private:
    void copy(const Bytes &name)
    {
        std::vector<ContentLine> lines;
        for (const ContentLine *line : after.component.lines(name))
            lines.push_back(*line);
        target.replaceLines(name, lines);
        isChanged = true;
    }
    void mergeTimes()
    {
        const bool isWanted = !after.hasSameTimes(before) && !present.hasSameTimes(after);
        if (!isWanted || (yields && !present.hasSameTimes(before)))
            return;
        for (const Bytes &name : timeNames)
            copy(name);
    }
    void mergeAlarms()
    {
        const auto former = alarmsOf(before.component);
        const auto wanted = alarmsOf(after.component);
        const auto current = alarmsOf(present.component);
        if (wanted == former || wanted == current || (yields && current != former))
            return;
        std::vector<IcalComponent> alarms;
        for (const IcalComponent *child : after.component.children()) {
            if (isAlarm(*child))
                alarms.push_back(*child);
        }
        target.replaceChildren(isAlarm, alarms);
        isChanged = true;
    }
    void mergeField(const Bytes &name)
    {
        const auto former = normalLines(before.component, name);
        const auto wanted = normalLines(after.component, name);
        const auto current = normalLines(present.component, name);
        if (wanted != former && wanted != current && !(yields && current != former))
            copy(name);
    }
    void mergeLines(const Bytes &name)
    {
        const auto former = normalLines(before.component, name);
        const auto wanted = normalLines(after.component, name);
        if (wanted == former)
            return;
        const auto stands = [](const std::vector<Bytes> &lines, const Bytes &line) {
            return std::ranges::find(lines, line) != lines.end();
        };
        std::vector<ContentLine> lines;
        std::vector<Bytes> kept;
        bool isOther = false;
        for (const ContentLine *line : target.lines(name)) {
            const Bytes text = normal(*line);
            if (stands(former, text) && !stands(wanted, text)) {
                isOther = true;
                continue;
            }
            lines.push_back(*line);
            kept.push_back(text);
        }
        for (const ContentLine *line : after.component.lines(name)) {
            const Bytes text = normal(*line);
            if (stands(former, text) || stands(kept, text))
                continue;
            lines.push_back(*line);
            isOther = true;
        }
        if (!isOther)
            return;
        target.replaceLines(name, lines);
        isChanged = true;
    }
    /// The text is newer than all that were written before, also where it says again what a former one said.
    void noteChange()
    {
        for (const char *name : {"DTSTAMP", "LAST-MODIFIED"}) {
            const Bytes newest = std::max(after.component.value(name), before.component.value(name));
            if (!newest.isEmpty() && newest > target.value(name))
                target.setValue(name, newest);
        }
        const int newest =
            std::max({before.component.value("SEQUENCE").toInt(), after.component.value("SEQUENCE").toInt(),
                      target.value("SEQUENCE").toInt()});
        if (newest > 0 || yields)
            target.setValue("SEQUENCE", Bytes::number(newest + (yields ? 1 : 0)));
    }

    IcalComponent &target;
    const Part &present;
    const Part &before;
    const Part &after;
    bool yields;
    bool isChanged = false;
};

class ObjectMerge
{
public:
    ObjectMerge(Object &presentObject, const Object &beforeObject, const Object &afterObject, bool isYielding)
        : present(presentObject)
        , before(beforeObject)
        , after(afterObject)
        , yields(isYielding)
    {}

    /// Whether anything was changed.
    bool run()
    {
        const auto current = present.parts();
        const auto former = before.parts();
        const auto wanted = after.parts();
        std::set<Object::PartKey> keys;
        for (const auto *parts : {&former, &wanted}) {
            for (const auto &[key, part] : *parts)
                keys.insert(key);
        }
        const auto partOf = [](const auto &parts, const auto &key) {
            const auto found = parts.find(key);
            return found == parts.end() ? nullptr : found->second;
        };
        for (const auto &key : keys)
            mergePart(partOf(current, key), partOf(former, key), partOf(wanted, key));
        present.document.calendar().removeChildrenAt(removed);
        for (const IcalComponent &component : added)
            present.document.calendar().addChild(component);
        if (isChanged)
            addZones();
        return isChanged;
    }

private:
    static Part whole(const Object &object, const ItemPart &part)
    {
        return {object.item->component(part), part};
    }
    void mergePart(const ItemPart *current, const ItemPart *former, const ItemPart *wanted)
    {
        if (former && wanted && current) {
            IcalComponent &target = *present.document.calendar().childAt(current->childIndex);
            isChanged = PartMerge(target, whole(present, *current), whole(before, *former),
                                  whole(after, *wanted), yields)
                            .run() ||
                        isChanged;
        } else if (wanted && !current) {
            // Edited here and taken out elsewhere: an edit brings it back, what is taken back does not.
            const bool isEdit = !former || !isSamePart(whole(before, *former), whole(after, *wanted));
            if (!isEdit || (former && yields))
                return;
            added.push_back(after.item->component(*wanted));
            isChanged = true;
        } else if (wanted && current) {
            if (yields || isSamePart(whole(present, *current), whole(after, *wanted)))
                return;
            removed.insert(current->childIndex);
            added.push_back(after.item->component(*wanted));
            isChanged = true;
        } else if (former && current) {
            if (yields && !isSamePart(whole(present, *current), whole(before, *former)))
                return;
            removed.insert(current->childIndex);
            isChanged = true;
        }
    }
    /// The zones that the new times name.
    void addZones()
    {
        const auto identifiersOf = [](const IcalDocument &document) {
            std::set<Bytes> identifiers;
            for (const IcalComponent *child : document.calendar().children()) {
                if (child->name() == "VTIMEZONE")
                    identifiers.insert(child->value("TZID"));
            }
            return identifiers;
        };
        const auto known = identifiersOf(present.document);
        for (const IcalComponent *child : after.document.calendar().children()) {
            if (child->name() == "VTIMEZONE" && !known.contains(child->value("TZID")))
                present.document.calendar().prependChild(*child);
        }
    }

    Object &present;
    const Object &before;
    const Object &after;
    bool yields;
    bool isChanged = false;
    std::set<std::size_t> removed;
    std::vector<IcalComponent> added;
};

/// Of an object that was changed meanwhile.
Bytes mergedText(const Bytes &present, const Bytes &before, const Bytes &after, bool yields)
{
    auto current = Object::of(present);
    const auto former = Object::of(before);
    const auto wanted = Object::of(after);
    if (!current || !former || !wanted)
        return current || yields ? present : after;
    const bool isChanged = ObjectMerge(*current, *former, *wanted, yields).run();
    return isChanged ? current->document.text() : present;
}

} // namespace

bool isSame(const QByteArray &one, const QByteArray &other)
{
    if (one == other)
        return true;
    const auto first = Object::of(one);
    const auto second = Object::of(other);
    if (!first || !second)
        return false;
    const auto parts = first->parts();
    const auto others = second->parts();
    return std::ranges::equal(parts, others, [&](const auto &part, const auto &otherPart) {
        return part.first == otherPart.first &&
               isSamePart({first->item->component(*part.second), *part.second},
                          {second->item->component(*otherPart.second), *otherPart.second});
    });
}

std::optional<QByteArray> merged(const std::optional<QByteArray> &present, const ItemChange &change)
{
    const auto &[before, after] = std::tie(change.before, change.after);
    if (!after) {
        // It goes, unless it is to be taken back and is another than what was made.
        const bool isKept = change.yields && present && before && !isSame(*present, *before);
        return isKept ? present : std::nullopt;
    }
    if (!present)
        return before && change.yields ? std::nullopt : after;
    if (!before || *present == *after)
        return present;
    if (*present == *before && !change.yields)
        return after;
    return mergedText(*present, *before, *after, change.yields);
}

namespace {

/// One change of several that belong together.
struct Member
{
    const ItemChange &change;
    ItemText present;
    ItemText wanted;
    /// For what moves: the other half.
    Member *partner = nullptr;

    bool isAddition() const { return !change.before && change.after; }
    bool isRemoval() const { return change.before && !change.after; }
};

/// From one calendar to another. What others have changed in the former place comes along, also where an
/// earlier attempt has come half way.
void mergeMove(Member &addition, Member &removal)
{
    addition.partner = &removal;
    removal.partner = &addition;
    const ItemChange edit = {
        0, 0, {}, addition.change.uid, removal.change.before, addition.change.after, addition.change.yields};
    removal.wanted = std::nullopt;
    if (!removal.present) {
        // It is there already; or somebody has removed it, and what is taken back does not bring it back.
        addition.wanted = addition.present || edit.yields ? addition.present : addition.change.after;
        return;
    }
    const ItemText text = merged(removal.present, edit);
    addition.wanted = addition.present
                          ? merged(addition.present, {0, 0, {}, edit.uid, addition.change.after, text, false})
                          : text;
}

std::vector<Bytes> rulesOf(const ItemText &text)
{
    const auto object = text ? Object::of(*text) : std::nullopt;
    const ItemPart *series = object ? object->item->master() : nullptr;
    return series ? normalLines(object->item->component(*series), "RRULE") : std::vector<Bytes>();
}

/// Whether it did not become what it was to be, so that the others may not either.
bool hasFailed(const Member &member)
{
    const ItemChange &change = member.change;
    if (member.isRemoval())
        return !member.partner && member.wanted;
    if (!member.wanted)
        return true;
    const auto wanted = rulesOf(change.after);
    return change.before && wanted != rulesOf(change.before) && rulesOf(member.wanted) != wanted;
}

} // namespace

std::vector<ItemText> mergedTogether(const std::vector<ItemText> &present,
                                     std::span<const ItemChange> changes)
{
    std::vector<Member> members;
    for (std::size_t place = 0; place < changes.size(); ++place)
        members.push_back({changes[place], present[place], merged(present[place], changes[place])});
    for (Member &addition : members) {
        const auto removal = std::ranges::find_if(members, [&addition](const Member &one) {
            return addition.isAddition() && one.isRemoval() && one.change.uid == addition.change.uid;
        });
        if (removal != members.end())
            mergeMove(addition, *removal);
    }
    const auto isOther = [&changes](const ItemChange &one) { return one.uid != changes.front().uid; };
    const bool isOfSeveral = changes.front().yields && std::ranges::any_of(changes, isOther);
    const bool staysAsItIs = isOfSeveral && std::ranges::any_of(members, hasFailed);
    std::vector<ItemText> texts;
    for (const Member &member : members)
        texts.push_back(staysAsItIs ? member.present : member.wanted);
    return texts;
}

std::size_t countTogether(std::span<const ItemChange> changes)
{
    std::set<std::pair<QString, QString>> objects;
    const ItemChange &first = changes.front();
    const auto end = std::ranges::find_if(changes, [&](const ItemChange &one) {
        return one.group != first.group || one.yields != first.yields ||
               !objects.emplace(one.calendarIdentifier, one.uid).second;
    });
    return static_cast<std::size_t>(end - changes.begin());
}

} // namespace itemmerge
