#include "records/exchange/TableWriter.h"

#include "foundation/Calendar.h"
#include "foundation/Csv.h"
#include "foundation/Localization.h"
#include "records/Functional.h"
#include "records/dates/MTDates.h"
#include "records/exchange/PersonName.h"
#include "records/people/ContactExport.h"
#include "records/people/ContactTable.h"
#include "records/people/NoteWords.h"
#include "store/entities/MainContext.h"
#include "store/entities/Model.h"

#include <QLocale>

#include <vector>

using namespace Qt::Literals::StringLiterals;

namespace {

QString digits(int number, int count)
{
    return QString::number(number).rightJustified(count, u'0');
}

QString dayText(OptionalDate date)
{
    if (!date)
        return {};
    const DateComponents at = Calendar::current().shortComponents(*date);
    return digits(at.year.value_or(0), 4) + u'-' + digits(at.month.value_or(0), 2) + u'-' +
           digits(at.day.value_or(0), 2);
}

QString momentText(OptionalDate date)
{
    if (!date)
        return {};
    const Calendar calendar = Calendar::current();
    const DateComponents at = calendar.shortComponents(*date);
    const int minutes = calendar.secondsFromGMT(*date) / 60;
    return dayText(date) + u'T' + digits(at.hour.value_or(0), 2) + u':' + digits(at.minute.value_or(0), 2) +
           u':' + digits(at.second.value_or(0), 2) + (minutes < 0 ? u'-' : u'+') +
           digits(std::abs(minutes) / 60, 2) + u':' + digits(std::abs(minutes) % 60, 2);
}

QString numberText(std::optional<double> number)
{
    return number ? QString::number(*number, 'f', QLocale::FloatingPointShortest) : QString();
}

template <typename Titled>
QString titleOf(const std::shared_ptr<Titled> &record)
{
    return record ? record->title() : QString();
}

QString nameOf(const ContactPtr &contact)
{
    return contact ? personname::written(*contact) : QString();
}

/// A day where a date is the first moment of one, or the last one for those that end.
enum class Edge { First, Last };
QString dateText(std::optional<TaskType> type, OptionalDate date, Edge edge)
{
    if (!date || isMoment(type))
        return momentText(date);
    const Date whole =
        edge == Edge::First ? MTDates::startOfCurrentDay(*date) : MTDates::endOfCurrentDay(*date);
    return Functional::sameMinute(whole, *date) ? dayText(date) : momentText(date);
}

/// Several titles, a line each, as a title may hold a comma.
template <typename List, typename Name>
QString linesOf(const List &records, Name name)
{
    QStringList lines;
    for (const auto &record : records)
        if (record)
            lines << name(record);
    lines.sort();
    return lines.join(u'\n');
}

template <typename Record>
struct TableColumn
{
    /// In English.
    const char16_t *title;
    QString (*text)(const Record &record);
};

template <typename Record>
using Columns = std::vector<TableColumn<Record>>;

const Columns<EntityTask> &columnsOf(const EntityTask *)
{
    using Task = EntityTask;
    static const Columns<Task> columns = {
        {u"Title", [](const Task &task) { return task.title(); }},
        {u"Type", [](const Task &task) { return Functional::typeStringFromType(task.type()); }},
        {u"Status",
         [](const Task &task) {
             return Functional::statusStringFromType(task.status().value_or(TaskStatus::Open));
         }},
        {u"Priority",
         [](const Task &task) {
             return Functional::priorityStringFromType(task.priority().value_or(Priority::None));
         }},
        {u"Start", [](const Task &task) { return dateText(task.type(), task.startDate(), Edge::First); }},
        {u"Due", [](const Task &task) { return dateText(task.type(), task.dueDate(), Edge::Last); }},
        {u"Someday",
         [](const Task &task) {
             return task.dueSomeDay().value_or(false) ? localized(u"Yes"_s) : QString();
         }},
        {u"Category",
         [](const Task &task) {
             const QString title = titleOf(task.category());
             return title.isEmpty() ? title : localized(title);
         }},
        {u"Project", [](const Task &task) { return titleOf(task.project()); }},
        {u"Project Identifier",
         [](const Task &task) { return task.project() ? task.project()->identifier() : QString(); }},
        {u"Delegated", [](const Task &task) { return nameOf(task.delegateToUser()); }},
        {u"Delegated since", [](const Task &task) { return momentText(task.delegatedSince()); }},
        {u"Last asked", [](const Task &task) { return momentText(task.lastAsked()); }},
        {u"Company", [](const Task &task) { return titleOf(task.company()); }},
        {u"Tags",
         [](const Task &task) { return linesOf(task.tags(), [](const auto &tag) { return tag->title(); }); }},
        {u"Location", [](const Task &task) { return titleOf(task.location()); }},
        {u"Latitude",
         [](const Task &task) { return task.location() ? numberText(task.location()->latitude()) : u""_s; }},
        {u"Longitude",
         [](const Task &task) { return task.location() ? numberText(task.location()->longitude()) : u""_s; }},
        {u"Alert", [](const Task &task) { return momentText(task.alert()); }},
        {u"Second Alert", [](const Task &task) { return momentText(task.secondAlert()); }},
        {u"Repeat", [](const Task &task) { return task.repeat(); }},
        {u"End Repeat", [](const Task &task) { return dayText(task.endRepeat()); }},
        {u"Series", [](const Task &task) { return task.calendarID(); }},
        {u"Calendar", [](const Task &task) { return task.calendarTitle(); }},
        {u"Position", [](const Task &task) { return numberText(task.position()); }},
        {u"Notes", [](const Task &task) { return task.details(); }},
        {u"Created", [](const Task &task) { return momentText(task.creationDate()); }},
        {u"Last changed", [](const Task &task) { return momentText(task.lastModificationDate()); }},
        {u"Done on", [](const Task &task) { return momentText(task.expirationDate()); }},
        {u"Identifier", [](const Task &task) { return task.identifier(); }},
    };
    return columns;
}

const Columns<EntityProject> &columnsOf(const EntityProject *)
{
    using Project = EntityProject;
    static const Columns<Project> columns = {
        {u"Title", [](const Project &project) { return project.title(); }},
        {u"Status",
         [](const Project &project) {
             return Functional::statusStringFromType(project.status().value_or(TaskStatus::Open));
         }},
        {u"Priority",
         [](const Project &project) {
             return Functional::priorityStringFromType(project.priority().value_or(Priority::None));
         }},
        {u"Start", [](const Project &project) { return dayText(project.startDate()); }},
        {u"Due", [](const Project &project) { return dayText(project.dueDate()); }},
        {u"Category",
         [](const Project &project) {
             const QString title = titleOf(project.category());
             return title.isEmpty() ? title : localized(title);
         }},
        {u"People",
         [](const Project &project) {
             return linesOf(project.delegateToUser(),
                            [](const auto &person) { return personname::written(*person); });
         }},
        {u"Tasks",
         [](const Project &project) {
             return linesOf(project.task(), [](const auto &task) { return task->title(); });
         }},
        {u"Notes", [](const Project &project) { return project.details(); }},
        {u"Created", [](const Project &project) { return momentText(project.creationDate()); }},
        {u"Done on", [](const Project &project) { return momentText(project.expirationDate()); }},
        {u"Identifier", [](const Project &project) { return project.identifier(); }},
    };
    return columns;
}

const Columns<EntityNote> &columnsOf(const EntityNote *)
{
    using Note = EntityNote;
    static const Columns<Note> columns = {
        {u"Title", [](const Note &note) { return note.title(); }},
        {u"Notes", [](const Note &note) { return note.detail(); }},
        {u"Contact", [](const Note &note) { return nameOf(note.contact()); }},
        {u"Company", [](const Note &note) { return titleOf(note.company()); }},
        {u"Created", [](const Note &note) { return momentText(note.creationDate()); }},
        {u"Identifier", [](const Note &note) { return note.identifier(); }},
    };
    return columns;
}

/// What a contact has beside the fields of an address book.
const Columns<EntityContacts> &columnsOf(const EntityContacts *)
{
    using Contact = EntityContacts;
    static const Columns<Contact> columns = {
        {u"Groups",
         [](const Contact &contact) {
             return linesOf(contact.contactGroup(), [](const auto &group) { return group->title(); });
         }},
        {u"Projects",
         [](const Contact &contact) {
             return linesOf(contact.project(), [](const auto &project) { return project->title(); });
         }},
        {u"Notes", [](const Contact &contact) { return notewords::of(contact); }},
        {u"Identifier", [](const Contact &contact) { return contact.identifier(); }},
    };
    return columns;
}

const Columns<EntityCompany> &columnsOf(const EntityCompany *)
{
    using Company = EntityCompany;
    static const Columns<Company> columns = {
        {u"Groups",
         [](const Company &company) {
             return linesOf(company.contactGroup(), [](const auto &group) { return group->title(); });
         }},
        {u"Notes", [](const Company &company) { return company.details(); }},
        {u"Identifier", [](const Company &company) { return company.identifier(); }},
    };
    return columns;
}

template <typename Record>
QHash<QString, QString> cellsOf(const Record &record)
{
    QHash<QString, QString> cells;
    for (const auto &column : columnsOf(&record))
        cells.insert(QString::fromUtf16(column.title), column.text(record));
    return cells;
}

template <typename Record>
QStringList keysOf()
{
    QStringList titles;
    for (const auto &column : columnsOf(static_cast<const Record *>(nullptr)))
        titles << QString::fromUtf16(column.title);
    return titles;
}

template <typename Record>
QStringList titlesOf()
{
    QStringList titles;
    for (const auto &column : columnsOf(static_cast<const Record *>(nullptr)))
        titles << localized(QString::fromUtf16(column.title));
    return titles;
}

template <typename Record>
QStringList fieldsOf(const Record &record)
{
    QStringList fields;
    for (const auto &column : columnsOf(&record))
        fields << column.text(record);
    return fields;
}

template <typename Record>
class PlainTableWriter : public RecordWriter
{
public:
    QByteArray head() override { return Csv::byteOrderMark + Csv::line(titlesOf<Record>()); }
    QByteArray text(const ManagedObject &record) override
    {
        return Csv::line(fieldsOf(static_cast<const Record &>(record)));
    }
};

/// The table has as many columns of phones as the contact with the most of them needs, so all are looked at
/// before the first is written.
template <typename Record>
class ContactTableWriter : public RecordWriter
{
public:
    explicit ContactTableWriter(std::span<const RowId> rows)
    {
        const ObjectListBase records(mainContext(), organiserModel().requireEntity(Record::entityName),
                                     {rows.begin(), rows.end()});
        for (int place = 0; place < records.size(); ++place)
            if (const ObjectPtr record = records.objectAt(place))
                width.widenTo(contacts.detailsOf(*record));
    }
    QByteArray head() override
    {
        return Csv::byteOrderMark + Csv::line(ContactTable::titles(width) + titlesOf<Record>());
    }
    QByteArray text(const ManagedObject &record) override
    {
        return Csv::line(ContactTable::fields(contacts.detailsOf(record), width) +
                         fieldsOf(static_cast<const Record &>(record)));
    }

private:
    ContactExport contacts;
    ContactTableWidth width;
};

} // namespace

QStringList recordcolumns::titles(std::string_view entity)
{
    if (entity == EntityTask::entityName)
        return keysOf<EntityTask>();
    return entity == EntityProject::entityName ? keysOf<EntityProject>() : keysOf<EntityNote>();
}

QHash<QString, QString> recordcolumns::cells(const ManagedObject &record)
{
    if (record.entity().name() == EntityTask::entityName)
        return cellsOf(static_cast<const EntityTask &>(record));
    if (record.entity().name() == EntityProject::entityName)
        return cellsOf(static_cast<const EntityProject &>(record));
    return cellsOf(static_cast<const EntityNote &>(record));
}

std::unique_ptr<RecordWriter> makeTableWriter(const EntityDescription &entity, std::span<const RowId> rows)
{
    if (entity.name() == EntityTask::entityName)
        return std::make_unique<PlainTableWriter<EntityTask>>();
    if (entity.name() == EntityProject::entityName)
        return std::make_unique<PlainTableWriter<EntityProject>>();
    if (entity.name() == EntityNote::entityName)
        return std::make_unique<PlainTableWriter<EntityNote>>();
    if (entity.name() == EntityContacts::entityName)
        return std::make_unique<ContactTableWriter<EntityContacts>>(rows);
    if (entity.name() == EntityCompany::entityName)
        return std::make_unique<ContactTableWriter<EntityCompany>>(rows);
    return nullptr;
}
