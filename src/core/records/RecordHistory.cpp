#include "records/RecordHistory.h"

#include "calendarsync/RecordsTransaction.h"
#include "cloud/IcloudManager.h"
#include "foundation/Alert.h"
#include "foundation/DateFormatter.h"
#include "foundation/Localization.h"
#include "records/Categories.h"
#include "records/Functional.h"
#include "records/MVProject.h"
#include "records/ProjectManager.h"
#include "records/TaskManager.h"
#include "records/copies/TaskColumns.h"
#include "records/dates/MVDate.h"
#include "records/people/LoosePictures.h"
#include "recurrence/RRule.h"
#include "recurrence/RecurrenceSentence.h"
#include "store/entities/Entities.h"
#include "store/entities/MainContext.h"
#include "store/queries/DBWorker.h"

#include <QFileInfo>

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace {

/// How a value is told.
enum class Told { Text, Moment, Day, Birthday, YesOrNo, Type, Status, Priority, Picture, Record, Rule };
/// With which others it is put back: the dates of a task go together, and a rule with its end.
enum class Restored { Never, Alone, WithDates, WithRule };

/// A value that a user knows, by the entity and key that hold it.
struct Known
{
    std::string_view entity;
    std::string_view key;
    const char16_t *label;
    Told told = Told::Text;
    Restored restored = Restored::Alone;
};

constexpr auto ofTask = EntityTask::entityName;
constexpr auto ofProject = EntityProject::entityName;
constexpr auto ofContact = EntityContacts::entityName;
constexpr auto ofCompany = EntityCompany::entityName;
constexpr auto ofNote = EntityNote::entityName;

constexpr auto knownValues = std::to_array<Known>({
    {ofTask, "title", u"Title"},
    {ofTask, "details", u"Details"},
    {ofTask, "type", u"Type", Told::Type, Restored::WithDates},
    {ofTask, "status", u"Status", Told::Status},
    {ofTask, "priority", u"Priority", Told::Priority},
    {ofTask, "startDate", u"Start Date", Told::Moment, Restored::WithDates},
    {ofTask, "dueDate", u"Due Date", Told::Moment, Restored::WithDates},
    {ofTask, "dueSomeDay", u"Someday", Told::YesOrNo, Restored::WithDates},
    {ofTask, "alert", u"Alert", Told::Moment, Restored::WithDates},
    {ofTask, "secondAlert", u"Second Alert", Told::Moment, Restored::WithDates},
    {ofTask, "calendarTitle", u"Calendar", Told::Text, Restored::Never},
    {ofTask, "category", u"Category", Told::Record},
    {ofTask, "project", u"Project", Told::Record},
    {ofTask, "delegateToUser", u"Delegate", Told::Record},
    {ofTask, "company", u"Company", Told::Record},
    {ofTask, "location", u"Location", Told::Record},
    {ofTask, "tags", u"Tags", Told::Record},
    {ofTask, "repeat", u"Repeat", Told::Rule, Restored::WithRule},
    {ofTask, "endRepeat", u"End Repeat", Told::Day, Restored::WithRule},
    {ofProject, "title", u"Title"},
    {ofProject, "details", u"Details"},
    {ofProject, "status", u"Status", Told::Status},
    {ofProject, "priority", u"Priority", Told::Priority},
    {ofProject, "startDate", u"Start Date", Told::Day, Restored::WithDates},
    {ofProject, "dueDate", u"Due Date", Told::Day, Restored::WithDates},
    {ofProject, "category", u"Category", Told::Record},
    {ofProject, "delegateToUser", u"Contacts", Told::Record},
    {ofContact, "firstName", u"First Name"},
    {ofContact, "lastName", u"Last Name"},
    {ofContact, "birthday", u"Birthday", Told::Birthday},
    {ofContact, "company", u"Company", Told::Record},
    {ofContact, "contactCategory", u"Job Title", Told::Record},
    {ofContact, "project", u"Projects", Told::Record},
    {ofContact, "photoName", u"Photo", Told::Picture},
    {ofCompany, "title", u"Title"},
    {ofCompany, "details", u"Details"},
    {ofCompany, "contact", u"Contacts", Told::Record},
    {ofCompany, "photoName", u"Photo", Told::Picture},
    {ofNote, "title", u"Title"},
    {ofNote, "detail", u"Details"},
    {ofNote, "contact", u"Contact", Told::Record},
    {ofNote, "company", u"Company", Told::Record},
    {EntityPhone::entityName, "number", u"Phone"},
    {EntityEmail::entityName, "mail", u"Email"},
    {EntityURL::entityName, "url", u"URL"},
    {EntityAddress::entityName, "street1", u"Street"},
    {EntityAddress::entityName, "street2", u"Street"},
    {EntityAddress::entityName, "city", u"City"},
    {EntityAddress::entityName, "state", u"State"},
    {EntityAddress::entityName, "zip", u"ZIP"},
    {EntityAddress::entityName, "country", u"Country"},
    {EntityPhone::entityName, "type", u"Phone type", Told::Record},
    {EntityEmail::entityName, "type", u"Email type", Told::Record},
    {EntityURL::entityName, "type", u"URL type", Told::Record},
    {EntityAddress::entityName, "addressType", u"Address type", Told::Record},
});

const Known *knownOf(const RowChange &row, const RowChange::Field &field)
{
    const auto found = std::ranges::find_if(knownValues, [&](const Known &one) {
        return one.entity == row.entity->name() && one.key == field.key;
    });
    return found == knownValues.end() ? nullptr : &*found;
}

bool isPicture(const RowChange &row, const RowChange::Field &field)
{
    const Known *known = knownOf(row, field);
    return known && known->told == Told::Picture;
}

/// The object that a value of a relationship names, or null.
ObjectPtr namedBy(const RowChange &row, const RowChange::Field &field, const Value &value)
{
    const RelationshipDescription *relationship = row.entity->relationship(field.key);
    const auto *identifier = std::get_if<QString>(&value);
    return relationship && identifier ? mainContext().object(relationship->destination, *identifier)
                                      : nullptr;
}

QString titleOf(const ManagedObject &object)
{
    if (const auto *person = dynamic_cast<const EntityContacts *>(&object))
        return person->fullName();
    if (const auto *shownProject = dynamic_cast<const EntityProject *>(&object))
        return ProjectManager::shownTitle(*shownProject);
    const auto *title = std::get_if<QString>(&object.valueForKey("title"));
    return title ? *title : QString();
}

/// What an entry of a contact is called, such as "home": it goes with its entry.
bool isType(const RowChange &row, const RowChange::Field &field)
{
    return row.entity->relationship(field.key) && (field.key == "type" || field.key == "addressType");
}

/// Empty for a rule that cannot be read.
QString ruleInWords(const QString &text)
{
    const auto rule = text.isEmpty() ? std::nullopt : RRule::ruleFromString(text);
    return rule ? RecurrenceSentence::of(*rule, RecurrencePickerLanguages::current()) : QString();
}

QString recordInWords(const RowChange &row, const RowChange::Field &field, const Value &value)
{
    const ObjectPtr object = namedBy(row, field, value);
    if (!object)
        return isAbsent(value) ? QString() : localized(u"(deleted since)"_s);
    if (const auto category = std::dynamic_pointer_cast<EntityCategory>(object))
        return Categories::shownTitle(category);
    return isType(row, field) ? localized(titleOf(*object)) : titleOf(*object);
}

QString inWords(const Known &known, const RowChange &row, const RowChange::Field &field, const Value &value)
{
    using Style = DateFormatter::Style;
    const int number = static_cast<int>(numberOf(value).value_or(0));
    const auto *date = std::get_if<Date>(&value);
    if (known.told == Told::Record)
        return recordInWords(row, field, value);
    if (isAbsent(value))
        return {};
    switch (known.told) {
    case Told::Moment:
    case Told::Day:
        return date ? DateFormatter::string(*date, Style::Medium,
                                            known.told == Told::Day ? Style::None : Style::Short,
                                            DateFormatter::Language::OfWords)
                    : QString();
    case Told::Birthday:
        return date ? DateFormatter::string(MVDate::getNearestDay(*date), Style::Medium, Style::None,
                                            DateFormatter::Language::OfWords)
                    : QString();
    case Told::YesOrNo:
        return localized(number != 0 ? u"Yes"_s : u"No"_s);
    case Told::Type:
        return Functional::typeStringFromType(static_cast<TaskType>(number));
    case Told::Status:
        return Functional::statusStringFromType(static_cast<TaskStatus>(number));
    case Told::Priority:
        return Functional::priorityStringFromType(static_cast<Priority>(number));
    default:
        break;
    }
    const auto *text = std::get_if<QString>(&value);
    if (known.told == Told::Picture)
        return text && !text->isEmpty() ? localized(u"a picture"_s) : QString();
    if (known.told == Told::Rule)
        return text ? ruleInWords(*text) : QString();
    return text ? text->simplified() : QString();
}

QString inWords(ChangeAuthor author)
{
    switch (author) {
    case ChangeAuthor::User:
        return localized(u"You"_s);
    case ChangeAuthor::Undo:
        return localized(u"Undo or redo"_s);
    case ChangeAuthor::Pass:
        return localized(u"Calendar"_s);
    case ChangeAuthor::Import:
        return localized(u"Imported"_s);
    case ChangeAuthor::Program:
        return u"Morvane"_s;
    case ChangeAuthor::Replication:
        break;
    }
    return localized(u"Another device"_s);
}

bool isThere(const ObjectPtr &object)
{
    return object && object->context() && !object->isDeleted();
}

} // namespace

RecordHistory::RecordHistory(ObjectPtr changed)
    : record(std::move(changed))
{
    reload();
}

QString RecordHistory::title() const
{
    return titleOf(*record);
}

bool RecordHistory::isConcernedBy(const StoreChanges &changes) const
{
    const EntityDescription &entity = record->entity();
    return changes.concerns(entity.name()) ||
           std::ranges::any_of(entity.relationships(), [&](const RelationshipDescription &one) {
               return one.deleteRule == DeleteRule::Cascade && changes.concerns(one.destination);
           });
}

void RecordHistory::reload()
{
    saves = mainContext().historyOf(*record);
    shown.clear();
    placesOfLines.clear();
    for (std::size_t number = 0; number < saves.size(); ++number) {
        const RecordedSave &save = saves[number];
        Entry entry{.when = save.savedAt, .who = inWords(save.author), .what = {}, .lines = {}};
        if (!save.name.isEmpty())
            entry.who += u" · "_s + localized(save.name);
        if (save.isUndone)
            entry.who += u", "_s + localized(u"taken back"_s);
        std::vector<Place> places;
        addLines(number, entry, places);
        if (entry.lines.empty() && entry.what.isEmpty())
            continue;
        shown.push_back(std::move(entry));
        placesOfLines.push_back(std::move(places));
    }
}

/// What a new record began with is told by what was changed of it later.
void RecordHistory::addLines(std::size_t number, Entry &entry, std::vector<Place> &places) const
{
    const std::vector<RowChange> &rows = saves[number].rows;
    for (std::size_t place = 0; place < rows.size(); ++place) {
        const RowChange &row = rows[place];
        const bool isRecord = row.identifier == record->identifier();
        if (isRecord && row.kind != RowChange::Kind::Changed) {
            entry.what = localized(row.kind == RowChange::Kind::Made ? u"Created"_s : u"Deleted"_s);
            continue;
        }
        for (std::size_t field = 0; field < row.fields.size(); ++field) {
            const RowChange::Field &changed = row.fields[field];
            const Known *known = knownOf(row, changed);
            if (!known || (row.kind != RowChange::Kind::Changed && isType(row, changed)))
                continue;
            Line line{.label = localized(QString::fromUtf16(known->label)),
                      .before = inWords(*known, row, changed, changed.before),
                      .after = inWords(*known, row, changed, changed.after),
                      .canRestore = known->restored != Restored::Never && isRestorable(row, changed)};
            if (known->told == Told::Picture && !line.before.isEmpty() && line.before == line.after)
                line.after = localized(u"another picture"_s);
            if (line.before == line.after)
                continue;
            entry.lines.push_back(std::move(line));
            places.push_back({number, place, field});
        }
    }
}

/// Whether something that belongs to the record says the same as what is gone.
bool RecordHistory::hasPart(const RowChange &row, const RowChange::Field &field) const
{
    for (const RelationshipDescription &one : record->entity().relationships()) {
        if (one.deleteRule != DeleteRule::Cascade || one.destination != row.entity->name())
            continue;
        const std::vector<ObjectPtr> parts = record->relatedObjects(one.name);
        if (std::ranges::any_of(
                parts, [&](const ObjectPtr &part) { return part->valueForKey(field.key) == field.before; }))
            return true;
    }
    return false;
}

/// What belonged to the record and is gone comes back whole; what came with a save goes by undo only.
bool RecordHistory::isRestorable(const RowChange &row, const RowChange::Field &field) const
{
    if (!isThere(record) || row.kind == RowChange::Kind::Made)
        return false;
    const RelationshipDescription *relationship = row.entity->relationship(field.key);
    if (relationship && !isAbsent(field.before) && !isThere(namedBy(row, field, field.before)))
        return false;
    const ObjectPtr object = mainContext().object(row.entity->name(), row.identifier);
    if (row.kind == RowChange::Kind::Deleted)
        return !isThere(object) && !hasPart(row, field);
    if (!isThere(object))
        return false;
    // The files of former pictures go after a while.
    const auto *picture = isPicture(row, field) ? std::get_if<QString>(&field.before) : nullptr;
    if (picture && !picture->isEmpty() && !QFileInfo(IcloudManager::pathOfImage(*picture)).isFile())
        return false;
    if (row.entity->columnOf(field.key) >= 0)
        return object->valueForKey(field.key) != field.before;
    // Of a pair, the one that came goes again, and the one that went comes back.
    const ObjectPtr other = namedBy(row, field, isAbsent(field.before) ? field.after : field.before);
    const std::vector<ObjectPtr> linked = object->relatedObjects(field.key);
    return isThere(other) && (std::ranges::find(linked, other) != linked.end()) == isAbsent(field.before);
}

bool RecordHistory::restore(std::size_t entry, std::size_t line)
{
    const Place place = placesOfLines.at(entry).at(line);
    const RowChange &row = saves[place.save].rows[place.row];
    const RowChange::Field &field = row.fields[place.field];
    if (!isRestorable(row, field))
        return false;
    const std::string_view entity = row.entity->name();
    const bool isPair = row.entity->columnOf(field.key) < 0;
    const bool isDone = isPair                                ? restoreValue(row, field)
                        : entity == EntityTask::entityName    ? restoreTask(row, field)
                        : entity == EntityProject::entityName ? restoreProject(row, field)
                                                              : restoreValue(row, field);
    reload();
    return isDone;
}

template <typename Kept>
static void put(Kept &kept, const Value &value)
{
    if constexpr (std::is_same_v<Kept, QString>) {
        const auto *text = std::get_if<QString>(&value);
        kept = text ? *text : QString();
    } else if constexpr (std::is_same_v<Kept, OptionalDate>) {
        const auto *date = std::get_if<Date>(&value);
        kept = date ? OptionalDate(*date) : std::nullopt;
    } else if constexpr (requires { typename Kept::element_type; }) {
        const auto *identifier = std::get_if<QString>(&value);
        using Entity = typename Kept::element_type;
        kept = identifier
                   ? std::dynamic_pointer_cast<Entity>(mainContext().object(Entity::entityName, *identifier))
                   : nullptr;
    } else if constexpr (requires { kept.has_value(); }) {
        const auto number = numberOf(value);
        kept = number ? Kept(static_cast<typename Kept::value_type>(*number)) : std::nullopt;
    }
}

bool RecordHistory::restoreTask(const RowChange &row, const RowChange::Field &field)
{
    MVTask copy(std::static_pointer_cast<EntityTask>(record));
    const Restored together = knownOf(row, field)->restored;
    for (const RowChange::Field &one : row.fields) {
        const Known *known = knownOf(row, one);
        const bool goesAlong = together != Restored::Alone && known && known->restored == together;
        if (&one != &field && !goesAlong)
            continue;
        if (one.key == "status") {
            copy.changeStatusType(static_cast<TaskStatus>(static_cast<int>(numberOf(one.before).value_or(0))),
                                  false);
            continue;
        }
        taskcolumns::forEach([&](const auto &column) {
            if (column.name == one.key)
                put(copy.*column.member, one.before);
        });
    }
    return TaskManager::saveTaskOfForm(copy) == SaveEnd::Saved;
}

bool RecordHistory::restoreProject(const RowChange &row, const RowChange::Field &field)
{
    MVProject copy(std::static_pointer_cast<EntityProject>(record));
    const bool hasDates = knownOf(row, field)->restored == Restored::WithDates;
    for (const RowChange::Field &one : row.fields) {
        const Known *known = knownOf(row, one);
        if (&one != &field && !(hasDates && known && known->restored == Restored::WithDates))
            continue;
        if (one.key == "title")
            put(copy.title, one.before);
        else if (one.key == "details")
            put(copy.details, one.before);
        else if (one.key == "priority")
            put(copy.priority, one.before);
        else if (one.key == "category")
            put(copy.category, one.before);
        else if (one.key == "startDate")
            put(copy.startDate, one.before);
        else if (one.key == "dueDate")
            put(copy.dueDate, one.before);
        else if (one.key == "status")
            copy.changeStatus(Functional::statusStringFromType(
                static_cast<TaskStatus>(static_cast<int>(numberOf(one.before).value_or(0)))));
    }
    return ProjectManager::saveProjectTemp(copy);
}

bool RecordHistory::restoreValue(const RowChange &row, const RowChange::Field &field)
{
    // A contact keeps a name.
    const auto *person = dynamic_cast<const EntityContacts *>(record.get());
    const bool isFirst = field.key == "firstName";
    if (person && (isFirst || field.key == "lastName") &&
        inWords(*knownOf(row, field), row, field, field.before).isEmpty() &&
        (isFirst ? person->lastName() : person->firstName()).isEmpty()) {
        Alert::run({title(), localized(u"A contact needs a name."_s), {}, {localized(u"OK"_s)}});
        return false;
    }
    RecordsTransaction transaction(u"Restore"_s);
    const ObjectPtr object = mainContext().object(row.entity->name(), row.identifier);
    QString loose;
    if (row.kind == RowChange::Kind::Deleted) {
        bringBack(row);
    } else if (row.entity->columnOf(field.key) >= 0) {
        if (const auto *present = std::get_if<QString>(&object->valueForKey(field.key));
            present && isPicture(row, field))
            loose = *present;
        object->setValueForKey(field.key, field.before);
    } else if (const ObjectPtr added = namedBy(row, field, field.after)) {
        object->removeRelated(field.key, added);
    } else if (const ObjectPtr removed = namedBy(row, field, field.before)) {
        object->addRelated(field.key, removed);
    }
    if (!DBWorker::tellOfFailure(transaction.commit()))
        return false;
    LoosePictures::add({loose});
    return true;
}

/// As a row of its own: the former one may be known as gone elsewhere.
void RecordHistory::bringBack(const RowChange &row)
{
    const ObjectPtr part = mainContext().insertObject(row.entity->name());
    for (const RowChange::Field &field : row.fields) {
        const bool isLost =
            row.entity->relationship(field.key) && !isThere(namedBy(row, field, field.before));
        if (!isLost)
            part->setValueForKey(field.key, field.before);
    }
}
