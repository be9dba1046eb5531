#include "calendarsync/ChangesOfOthers.h"

#include "calendarsync/CalendarCatalogue.h"
#include "calendarsync/CalendarReferences.h"
#include "calendarsync/CalendarStoreState.h"
#include "calendarsync/OfflineChanges.h"
#include "calendarsync/TaskToEvent.h"
#include "foundation/Log.h"
#include "records/dates/MTDates.h"
#include "store/entities/Entities.h"
#include "store/queries/DBWorker.h"

#include <algorithm>
#include <tuple>
#include <utility>

namespace {

using calendarstore::BeforeArrival;
using calendarstore::state;
using replication::RowDelta;

constexpr auto itemColumn = static_cast<size_t>(EntityTask::column<"calendarID">());
constexpr auto calendarColumn = static_cast<size_t>(EntityTask::column<"typeCalendarID">());

OptionalDate dayOf(const EntityTask &row)
{
    return row.startDate() ? row.startDate() : row.dueDate();
}

ManagedObject::ColumnSet columnsOf(const RowDelta &delta, const EntityDescription &entity)
{
    ManagedObject::ColumnSet columns;
    for (const auto &[name, cell] : delta.cells) {
        const int column =
            entity.columnOf(std::string_view(name.constData(), static_cast<size_t>(name.size())));
        if (column >= 0)
            columns.set(static_cast<size_t>(column));
    }
    return columns;
}

BeforeArrival readFrom(const sqlite::Statement &row)
{
    const auto date = [&row](int column) {
        return row.isNull(column) ? std::nullopt
                                  : OptionalDate(Date::fromReferenceSeconds(row.number(column)));
    };
    const auto isOf = [&row](int column, auto wanted) {
        return !row.isNull(column) && row.integer(column) == static_cast<qint64>(wanted);
    };
    const OptionalDate start = date(2);
    const OptionalDate due = date(3);
    BeforeArrival before;
    before.item = row.text(0);
    before.calendar = row.text(1);
    before.day = start ? start : due;
    before.isOfSeries = !row.text(4).isEmpty();
    before.isOffCalendar = isOf(5, TaskStatus::Done) || !due || (!start && !isOf(6, TaskType::EmailCall));
    return before;
}

/// Whether a device that holds these has not got a calendar, whatever its name was.
bool lacks(const QStringList &holdings, const QString &calendar)
{
    const QStringList names =
        QStringList(calendar) + calendarreferences::formerOf(calendarreferences::identifierOf(calendar));
    return std::ranges::none_of(names, [&holdings](const QString &name) {
        return holdings.contains(calendarreferences::nameElsewhere(name));
    });
}

/// What has come into the rows of one calendar item.
struct OfItem
{
    struct Edit
    {
        TaskPtr row;
        BeforeArrival before;
        ManagedObject::ColumnSet columns;
    };
    /// Of a series, for all times to come.
    std::vector<Edit> edits;
    std::vector<BeforeArrival> deleted;
    std::vector<TaskPtr> returned;
};

class Posting
{
public:
    Posting(ManagedObjectContext &changed, std::map<QString, BeforeArrival> noted)
        : context(changed)
        , notes(std::move(noted))
    {}

    void take(const StoreChanges &changes)
    {
        for (const StoreChanges::Update &update : changes.updated) {
            if (const BeforeArrival *before = noteOf(*update.object))
                takeEdit(std::static_pointer_cast<EntityTask>(update.object), *before, update.columns);
        }
        for (const ObjectPtr &object : changes.deleted) {
            const BeforeArrival *before = noteOf(*object);
            if (before && !before->item.isEmpty())
                items[before->item].deleted.push_back(*before);
        }
        for (const ObjectPtr &object : changes.inserted) {
            const BeforeArrival *before = noteOf(*object);
            const auto row = std::dynamic_pointer_cast<EntityTask>(object);
            if (before && before->isReturning && row && !row->calendarID().isEmpty())
                items[row->calendarID()].returned.push_back(row);
        }
    }
    void post()
    {
        for (auto &[item, of] : items) {
            postEdits(item, of.edits);
            postDeletions(item, of.deleted);
            postReturns(item, of.returned);
        }
    }

private:
    const BeforeArrival *noteOf(const ManagedObject &object) const
    {
        const auto note =
            object.entity().name() == EntityTask::entityName ? notes.find(object.identifier()) : notes.end();
        return note == notes.end() ? nullptr : &note->second;
    }
    void takeEdit(const TaskPtr &row, const BeforeArrival &before, ManagedObject::ColumnSet columns)
    {
        columns &= before.columns;
        const bool hasOther = !row->calendarID().isEmpty() && row->calendarID() != before.item;
        if (hasOther && columns.test(itemColumn) && !before.item.isEmpty())
            // It stands in a calendar of that device now.
            return offlinechanges::postDeletion(context,
                                                {before.item, before.calendar, Span::ThisTask, before.day});
        columns.reset(calendarColumn);
        const bool isOnAgain = before.isOffCalendar && !taskevent::isOffCalendar(*row);
        if (hasOther || !offlinechanges::concernsEvent(columns) || (before.item.isEmpty() && !isOnAgain))
            return;
        // One occurrence that was changed alone has no rule any more.
        if (!row->repeat().isEmpty() && before.isOfSeries)
            items[before.item].edits.push_back({row, before, columns});
        else
            offlinechanges::postEdit(context, *row, {before.item, {}, Span::ThisTask, before.day}, columns);
    }
    /// The rows do not say which of them the user has edited; the others have followed it. One that stood
    /// alone at another time came back to the time of all by that. Of the rest it is the one with most to
    /// say, and of equals the first.
    void postEdits(const QString &item, const std::vector<OfItem::Edit> &edits)
    {
        const auto likeIt = [&edits](const OfItem::Edit &one) {
            return std::ranges::count(edits, shiftOf(one), shiftOf);
        };
        const auto edited = std::ranges::min_element(edits, {}, [&likeIt](const OfItem::Edit &one) {
            return std::tuple(-likeIt(one), -static_cast<int>(one.columns.count()), one.before.day);
        });
        if (edited != edits.end())
            offlinechanges::postEdit(context, *edited->row, {item, {}, Span::FutureTasks, edited->before.day},
                                     edited->columns);
    }
    /// By how many minutes a row has another time of the day than before.
    static int shiftOf(const OfItem::Edit &edit)
    {
        const auto minutes = [](OptionalDate date) {
            constexpr int minutesAnHour = 60;
            return date ? static_cast<int>(MTDates::hourOfDay(*date)) * minutesAnHour +
                              static_cast<int>(MTDates::minuteOfHour(*date))
                        : 0;
        };
        return minutes(dayOf(*edit.row)) - minutes(edit.before.day);
    }
    void postDeletions(const QString &item, std::vector<BeforeArrival> &deleted)
    {
        if (deleted.empty() || isDropped(deleted.front().calendar))
            return;
        const auto left = rowsOf(item);
        // A row that was joined with its double leaves the event to that.
        std::erase_if(deleted, [&left](const BeforeArrival &one) {
            return std::ranges::any_of(left, [&one](const TaskPtr &row) {
                const OptionalDate day = dayOf(*row);
                return day == one.day || (day && one.day && MTDates::isWithinSameDay(*day, *one.day));
            });
        });
        if (deleted.empty())
            return;
        std::ranges::sort(deleted, {}, &BeforeArrival::day);
        const BeforeArrival &first = deleted.front();
        const bool isRest =
            std::ranges::none_of(left, [&first](const TaskPtr &row) { return dayOf(*row) > first.day; });
        if (first.isOfSeries && deleted.size() > 1 && isRest)
            return offlinechanges::postDeletion(context,
                                                {item, first.calendar, Span::FutureTasks, first.day});
        for (const BeforeArrival &one : deleted)
            offlinechanges::postDeletion(context, {item, one.calendar, Span::ThisTask, one.day});
    }
    void postReturns(const QString &item, const std::vector<TaskPtr> &returned)
    {
        if (returned.empty())
            return;
        const TaskPtr first =
            *std::ranges::min_element(returned, {}, [](const TaskPtr &row) { return dayOf(*row); });
        if (!first->repeat().isEmpty() && returned.size() > 1)
            return offlinechanges::postReturn(
                context, {item, first->typeCalendarID(), Span::FutureTasks, dayOf(*first)});
        for (const TaskPtr &row : returned)
            offlinechanges::postReturn(context, {item, row->typeCalendarID(), Span::ThisTask, dayOf(*row)});
    }
    std::vector<TaskPtr> rowsOf(const QString &item)
    {
        std::vector<TaskPtr> rows;
        for (const TaskPtr &row : context.fetch<EntityTask>(
                 EntityTask::fetchRequest().where(Predicate::format("calendarID == %@", item)))) {
            if (row)
                rows.push_back(row);
        }
        return rows;
    }
    /// Whether a device has dropped all that there was of a calendar. Its events are not let go for that: it
    /// can be an accident, and whoever has the calendar can remove it.
    bool isDropped(const QString &calendar)
    {
        constexpr qsizetype few = 5;
        const auto [place, isNew] = dropped.try_emplace(calendar);
        if (isNew) {
            qsizetype gone = 0;
            for (const auto &[item, of] : items)
                gone += std::ranges::count(of.deleted, calendar, &BeforeArrival::calendar);
            place->second = gone > few && context.count(EntityTask::fetchRequest().where(Predicate::format(
                                              "typeCalendarID == %@ and calendarID != nil", calendar))) == 0;
            if (place->second)
                Log::line(
                    QStringLiteral("Another device has dropped all of %1; its events stay.").arg(calendar));
        }
        return place->second;
    }

    ManagedObjectContext &context;
    std::map<QString, BeforeArrival> notes;
    std::map<QString, OfItem> items;
    std::map<QString, bool> dropped;
};

} // namespace

bool ChangesOfOthers::isHere(const QString &calendar)
{
    const auto [place, isNew] = known.try_emplace(calendar);
    if (isNew)
        place->second = !calendar.isEmpty() && CalendarCatalogue::isHere(calendar);
    return place->second;
}

void ChangesOfOthers::note(const replication::Arrival &arrival, const RowDelta &delta, sqlite::Statement &row)
{
    const EntityDescription &entity = *context.model().entity(EntityTask::entityName);
    const ManagedObject::ColumnSet columns = columnsOf(delta, entity);
    const bool isConcerned =
        !delta.deletions.empty() || columns.test(itemColumn) || offlinechanges::concernsEvent(columns);
    if (!isConcerned)
        return;
    BeforeArrival before;
    row.reset();
    if (row.bind(delta.key.id).step()) {
        before = readFrom(row);
    } else if (arrival.returning.contains(delta.key)) {
        const auto calendar = delta.cells.find("typeCalendarID");
        before.calendar =
            calendar == delta.cells.end() ? QString() : replication::textIn(calendar->second.value);
        before.isReturning = true;
    }
    const auto named = before.isReturning ? delta.cells.find("calendarID") : delta.cells.end();
    const QString item = named == delta.cells.end() ? before.item : replication::textIn(named->second.value);
    const bool isUnseen = !item.isEmpty() && arrival.unseen.contains(item);
    if (!isHere(before.calendar) ||
        (!isUnseen && !(arrival.holdings && lacks(*arrival.holdings, before.calendar))))
        return;
    // What the row was before the first of several saves.
    state().arriving.try_emplace(delta.key.id, std::move(before)).first->second.columns |= columns;
}

void ChangesOfOthers::comes(const replication::Arrival &arrival)
{
    if ((!arrival.holdings && arrival.unseen.isEmpty()) || DBWorker::isSample())
        return;
    const QByteArray table = context.model().entity(EntityTask::entityName)->table();
    // Objects of thousands of rows would be made only to be read once.
    sqlite::Statement row = context.connection().prepare(
        "SELECT \"calendarID\", \"typeCalendarID\", \"startDate\", \"dueDate\", \"repeat\", \"status\", "
        "\"type\" FROM \"" +
        table + "\" WHERE \"id\" = ?");
    for (const RowDelta &delta : arrival.deltas) {
        if (delta.key.table == table)
            note(arrival, delta, row);
    }
}

void ChangesOfOthers::ended()
{
    state().arriving.clear();
    known.clear();
}

void ChangesOfOthers::post(ManagedObjectContext &context, const StoreChanges &changes)
{
    if (changes.author != ChangeAuthor::Replication || state().arriving.empty())
        return;
    // The calendars can take it soon after the commit.
    state().isKeptForLater = true;
    Posting posting(context, std::exchange(state().arriving, {}));
    posting.take(changes);
    posting.post();
}
