#include "fuzz/Targets.h"

#include "eventkit/EventReading.h"
#include "eventkit/ItemMerge.h"
#include "eventkit/SeriesEditing.h"

#include <algorithm>

namespace {

constexpr std::size_t mostOccurrences = 200;

const DateWindow &window()
{
    static const DateWindow year{Date::fromUnixSeconds(1'790'000'000), Date::fromUnixSeconds(1'821'536'000)};
    return year;
}

/// The lines that an edit of a title leaves alone, sorted.
std::vector<QByteArray> otherLines(const IcalComponent &component)
{
    static const std::set<QByteArray> changing = {"SUMMARY", "DTSTAMP", "LAST-MODIFIED", "SEQUENCE"};
    std::vector<QByteArray> lines;
    for (const ContentLine *line : component.allLines()) {
        if (!changing.contains(line->name()))
            lines.push_back(line->name() + ' ' + line->value());
    }
    for (const IcalComponent *child : component.children()) {
        lines.push_back("BEGIN " + child->name());
        const auto inner = otherLines(*child);
        lines.insert(lines.end(), inner.begin(), inner.end());
    }
    std::sort(lines.begin(), lines.end());
    return lines;
}

QString lossOf(const CalendarItem &former, const CalendarItem &item)
{
    const auto before = otherLines(former.document().calendar());
    const auto after = otherLines(item.document().calendar());
    std::vector<QByteArray> lost;
    std::set_difference(before.begin(), before.end(), after.begin(), after.end(), std::back_inserter(lost));
    return lost.empty() ? QString() : QStringLiteral("an edit loses ") + QString::fromUtf8(lost.front());
}

std::vector<std::pair<Date, Date>> timesOf(const ItemOccurrences &occurrences)
{
    std::vector<std::pair<Date, Date>> times;
    for (const ItemOccurrence &one : occurrences.found)
        times.emplace_back(one.start, one.end);
    return times;
}

QString disorder(const ItemOccurrences &occurrences)
{
    for (std::size_t place = 0; place < occurrences.found.size(); ++place) {
        const ItemOccurrence &one = occurrences.found[place];
        if (!window().overlaps(one.start, one.end))
            return QStringLiteral("an occurrence outside of the window");
        if (place > 0 && one.start < occurrences.found[place - 1].start)
            return QStringLiteral("occurrences out of order");
    }
    return {};
}

/// What is wrong with a text that an edit made.
QString problemOf(const QByteArray &text, const CalendarItem &former,
                  const std::optional<std::vector<std::pair<Date, Date>>> &wanted, bool isWhole)
{
    const auto item = CalendarItem::fromText(text);
    if (!item || !item.value())
        return QStringLiteral("what an edit wrote is not understood: ") + QString::fromUtf8(text);
    if (!wanted)
        return {};
    if (isWhole) {
        const QString loss = lossOf(former, *item.value());
        if (!loss.isEmpty())
            return loss;
    }
    return timesOf(ItemExpansion::occurrences(*item.value(), window(), mostOccurrences)) == *wanted
               ? QString()
               : QStringLiteral("an edit moves other occurrences: ") + QString::fromUtf8(text);
}

QString problemOfMerge(const CalendarItem &item, const QByteArray &after)
{
    ItemChange change;
    change.uid = item.uid();
    change.before = item.text();
    change.after = after;
    const auto merged = itemmerge::merged(item.text(), change);
    return merged && itemmerge::isSame(*merged, after)
               ? QString()
               : QStringLiteral("an edit is not merged into the text that it was made of");
}

QString problemOfEdits(const CalendarItemPointer &item, const ItemOccurrences &occurrences, std::size_t place)
{
    const ItemOccurrence &occurrence = occurrences.found[place];
    const EKEvent before = eventOf(item, occurrence, EKCalendar());
    EKEvent after = before;
    after.title = before.title + QStringLiteral("!");
    const auto times = timesOf(occurrences);
    const auto alone = SeriesEditing::withOccurrence(*item, occurrence, before, after);
    const auto future = SeriesEditing::from(*item, occurrence, before, after, QStringLiteral("new"));
    QString problem = problemOf(alone.text, *item, times, true) + problemOf(future.text, *item, {}, false) +
                      problemOfMerge(*item, alone.text);
    if (!item->isSeries())
        return problem; // It is removed as a whole.
    // All components that stand for the occurrence go with it.
    ItemOccurrences others = occurrences;
    std::erase_if(others.found, [&](const ItemOccurrence &one) { return one.key == occurrence.key; });
    if (const auto rest = SeriesEditing::without(*item, occurrence.key))
        problem += problemOf(*rest, *item, timesOf(others), false);
    if (const auto earlier = SeriesEditing::upTo(*item, occurrence.key))
        problem += problemOf(*earlier, *item, {}, false);
    return problem;
}

} // namespace

QString contradictionInCalendar(const QByteArray &bytes)
{
    const auto read = CalendarItem::fromText(bytes);
    if (!read || !read.value())
        return {};
    const CalendarItemPointer item = read.value();
    if (item->document().text() != bytes)
        return QStringLiteral("the text is not kept");
    if (item->entityType() != EKEntityType::Event)
        return {};
    const auto occurrences = ItemExpansion::occurrences(*item, window(), mostOccurrences);
    const QString problem = disorder(occurrences);
    if (!problem.isEmpty() || occurrences.found.empty() || !occurrences.isWhole)
        return problem;
    return problemOfEdits(item, occurrences, std::size_t(bytes.size()) % occurrences.found.size());
}
