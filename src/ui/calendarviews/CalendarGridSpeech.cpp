#include "calendarviews/CalendarGrid.h"

#include "calendarviews/SelectedTaskController.h"
#include "foundation/Localization.h"
#include "widgets/Accessibility.h"
#include "widgets/TextLabel.h"

using namespace Qt::Literals::StringLiterals;

// What assistive technology is told

constexpr quint64 itemKey = quint64(1) << 62;
constexpr int segmentBits = 4;

quint64 CalendarGrid::keyOf(const Placed &item) const
{
    return itemKey | static_cast<quint64>(eventOf(item).task()->rowId()) << segmentBits |
           static_cast<quint64>(item.segment);
}

quint64 CalendarGrid::keyOf(const Spot &where) const
{
    if (const Placed *item = where.isOnItem() ? placedOf(where) : nullptr)
        return keyOf(*item);
    return static_cast<quint64>(where.slot) + 1;
}

QString CalendarGrid::nameOf(const EventCalendarView &event) const
{
    QStringList words{firstPart(event.title()), event.spokenTime(), event.placeText()};
    if (event.isDone())
        words << localized(u"Done"_s);
    if (!event.event()->repeat.isEmpty())
        words << localized(u"repeats"_s);
    words.removeAll(QString());
    return words.join(u", "_s);
}

void CalendarGrid::describe()
{
    const auto slotCount = [this] { return slotRows() * columnCount(); };
    const auto placeOfKey = [this, slotCount](quint64 key) {
        if (!(key & itemKey)) {
            const int slot = static_cast<int>(key) - 1;
            return slot < slotCount() ? slot : -1;
        }
        for (size_t place = 0; place < places.size(); ++place) {
            if (keyOf(places[place]) == key)
                return slotCount() + static_cast<int>(place);
        }
        return -1;
    };
    AccessibleParts parts{
        .count = [this, slotCount] { return slotCount() + static_cast<int>(places.size()); },
        .part =
            [this, slotCount, placeOfKey](quint64 key) {
                const int place = placeOfKey(key);
                AccessiblePart part;
                part.state.focusable = true;
                part.state.focused = hasFocus() && keyOf(spot) == key;
                if (place < slotCount()) {
                    part.name = slotName(place);
                    part.role = QAccessible::Cell;
                    part.place = visual(slotFrame(place)).toAlignedRect();
                    part.actions = {{QAccessibleActionInterface::pressAction(),
                                     [this, place] { createInSlot(place); }, u"N"_s},
                                    {QAccessibleActionInterface::setFocusAction(), [this, place] {
                                         setFocus();
                                         goTo({.slot = place});
                                     }}};
                    return part;
                }
                const Placed &item = places[static_cast<size_t>(place - slotCount())];
                const TaskPtr task = eventOf(item).task();
                part.name = nameOf(eventOf(item));
                part.place = visual(item.frame).toAlignedRect();
                part.state.selectable = true;
                part.state.selected = SelectedTaskController::sharedCenter().containsTask(task);
                part.actions = {{QAccessibleActionInterface::pressAction(),
                                 [this, task] { Q_EMIT opened(task); }, u"Return"_s},
                                {QAccessibleActionInterface::setFocusAction(), [this, task] {
                                     setFocus();
                                     goToTask(task);
                                 }}};
                return part;
            },
        .keyAt = [this, slotCount](int place) -> quint64 {
            return place < slotCount() ? static_cast<quint64>(place) + 1
                                       : keyOf(places[static_cast<size_t>(place - slotCount())]);
        },
        .placeOf = placeOfKey,
        .focused = [this]() -> quint64 { return hasFocus() ? keyOf(spot) : 0; },
        .at = [this, slotCount](QPoint point) -> quint64 {
            if (const Placed *item = placedAt(logical(point)))
                return keyOf(*item);
            for (int slot = 0; slot < slotCount(); ++slot) {
                if (slotFrame(slot).contains(logical(point)))
                    return static_cast<quint64>(slot) + 1;
            }
            return 0;
        },
        .inSight = [this]() -> std::vector<quint64> {
            std::vector<quint64> keys;
            for (const Placed &item : places)
                keys.push_back(keyOf(item));
            return keys;
        },
        .columns = [this] { return columnNames(); },
        .rows = [this] { return slotRows(); }};
    Accessibility::describe(
        *this,
        {.role = QAccessible::Table, .name = [this] { return gridName(); }, .parts = std::move(parts)});
}
