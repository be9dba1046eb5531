#include "records/exchange/RecordImporter.h"

#include "calendarsync/SeriesRows.h"
#include "eventkit/IcalText.h"
#include "eventkit/UtcDateTime.h"
#include "foundation/Calendar.h"
#include "foundation/Localization.h"
#include "records/TaskManager.h"
#include "records/dates/MTDates.h"
#include "records/dates/MVDate.h"
#include "records/exchange/ImportFields.h"
#include "records/exchange/PersonName.h"
#include "records/exchange/ProjectName.h"
#include "records/people/NoteWords.h"
#include "store/entities/MainContext.h"
#include "store/queries/DBWorker.h"

#include <algorithm>
#include <map>

using namespace Qt::Literals::StringLiterals;
using namespace importfields;

namespace {

/// The row that stands for an object: the one that it was imported to or exported from, else the first open
/// one of its event.
TaskPtr rowOf(const QString &uid)
{
    if (const ObjectPtr row = mainContext().object(EntityTask::entityName, TaskImport::identifierOf(uid)))
        return std::static_pointer_cast<EntityTask>(row);
    return mainContext().fetchFirst<EntityTask>(
        EntityTask::fetchRequest()
            .where(Predicate::format("calendarID = %@ and status != %d", uid, int(TaskStatus::Done)))
            .sortedBy({ascending("startDate"), ascending("dueDate")}));
}

/// Whether a project says something else than a file. When it was changed is not kept.
bool isOtherProject(const EntityProject &project, const ImportedTask &task)
{
    const Calendar calendar = Calendar::current();
    const auto isOtherDay = [&](OptionalDate one, OptionalDate other) {
        return one.has_value() != other.has_value() ||
               (one && calendar.dayNumber(*one) != calendar.dayNumber(*other));
    };
    return project.title() != task.title || project.details() != task.details ||
           project.status().value_or(TaskStatus::Open) != task.status ||
           isOtherDay(project.startDate(), task.start) || isOtherDay(project.dueDate(), task.due);
}

/// What a form does not write: when it was made, changed and done, and since when somebody has it.
void writeStamps(EntityTask &row, const ImportedTask &task)
{
    if (task.created)
        row.setCreationDate(task.created);
    if (task.revised)
        row.setLastModificationDate(std::min(*task.revised, MVDate::date()));
    if (task.done)
        row.setExpirationDate(task.done);
    if (task.delegatedSince)
        row.setDelegatedSince(task.delegatedSince);
    if (task.lastAsked)
        row.setLastAsked(task.lastAsked);
    // Without its event a done task would lose the rule that it once had.
    if (task.status == TaskStatus::Done && !task.rule.isEmpty()) {
        row.setRepeat(task.rule);
        row.setEndRepeat(task.ruleEnd);
    }
}

} // namespace

RecordImporter::RecordImporter(RecordsTransaction &openTransaction)
    : transaction(openTransaction)
    , lastPosition(DBWorker::maxPositionTaskInbox())
{}

void RecordImporter::take(const CalendarFile::Object &object)
{
    const auto children = object.calendar.children();
    const auto record =
        std::ranges::find_if(children, [](const IcalComponent *one) { return one->name() != "VTIMEZONE"; });
    if (record == children.end())
        return;
    if ((*record)->name() == "VJOURNAL")
        takeNote(object);
    else if ((*record)->value("X-MORVANE-KIND").trimmed().toUpper() == "PROJECT")
        takeProject(object);
    else
        takeTask(object);
}

void RecordImporter::takeTask(const CalendarFile::Object &object)
{
    const auto task = ImportedTask::of(object);
    if (!task) {
        const auto children = object.calendar.children();
        const QString title = IcalText::decoded(children.back()->value("SUMMARY")).simplified();
        account.refused.append(
            localized(u"\"%1\" in line %2 has no date that can be read."_s).arg(title).arg(object.line));
        return;
    }
    if (task->isCancelled) {
        account.refused.append(localized(u"\"%1\" was called off."_s).arg(task->title));
        return;
    }
    const TaskPtr row = rowOf(object.uid);
    if (!row) {
        add(object.uid, *task);
        return;
    }
    // The dates of a series move on here, so that only its words are followed.
    MVTask copy(row);
    fillWords(copy, *task);
    if (row->repeat().isEmpty()) {
        fillDates(copy, *task);
        fillRule(copy, *task);
    } else {
        copy.status = row->status();
    }
    const OptionalDate here = row->lastModificationDate();
    if (!isOther(copy))
        ++account.same;
    else if (!task->revised || (here && *here >= *task->revised))
        account.newerHere.append(row->title());
    else
        follow(row, *task);
}

ProjectPtr RecordImporter::projectOf(const ImportedTask &task)
{
    const QString identifier =
        task.projectUid.isEmpty() ? QString() : TaskImport::identifierOf(task.projectUid);
    if (!identifier.isEmpty())
        if (const ObjectPtr project = mainContext().object(EntityProject::entityName, identifier))
            return std::static_pointer_cast<EntityProject>(project);
    if (task.project.isEmpty())
        return nullptr;
    // Of two projects of one title in a file each is its own; one that was here before is meant by its title.
    const ProjectPtr titled = projectname::found(task.project);
    if (titled && (identifier.isEmpty() || !newProjects.contains(titled->identifier())))
        return titled;
    const ProjectPtr made = projectname::made(task.project, identifier);
    newProjects.insert(made->identifier());
    return made;
}

TaskPtr RecordImporter::add(const QString &uid, const ImportedTask &task)
{
    MVTask copy;
    copy.newIdentifier = TaskImport::identifierOf(uid);
    fillWords(copy, task);
    fillDates(copy, task);
    fillRule(copy, task);
    if (!fillCalendar(copy, task) && !account.otherCalendars.contains(task.calendar))
        account.otherCalendars.append(task.calendar);
    const ProjectPtr project = projectOf(task);
    bool isPartial = task.isPartial;
    if (project && fitsInto(*project, copy.startDate, copy.dueDate))
        copy.project = project;
    else
        isPartial = isPartial || project;
    if (TaskManager::saveTaskTemp(transaction, copy) != SaveEnd::Saved) {
        account.refused.append(localized(u"\"%1\" breaks a rule for dates."_s).arg(copy.title));
        return nullptr;
    }
    const TaskPtr row = copy.task();
    if (row) {
        writeStamps(*row, task);
        if (task.placeInInbox)
            row->setPosition(lastPosition + *task.placeInInbox);
    }
    ++account.added;
    if (isPartial)
        account.partial.append(copy.title);
    if (row && !task.rule.isEmpty() && !(task.excluded.empty() && task.edits.empty()))
        takeOccurrences(row, task);
    return row;
}

/// The dates of a series move on here, so that only its words are followed.
bool RecordImporter::follow(const TaskPtr &row, const ImportedTask &task)
{
    MVTask copy(row);
    const bool isSeries = !row->repeat().isEmpty();
    fillWords(copy, task);
    if (isSeries) {
        copy.status = row->status();
    } else {
        fillDates(copy, task);
        fillRule(copy, task);
    }
    const ProjectPtr project = projectOf(task);
    if (project && fitsInto(*project, copy.startDate, copy.dueDate))
        copy.project = project;
    const OptionalDate formerDate = baseDateOf(*row);
    if (isSeries) {
        TaskManager::saveMemberOfSeries(transaction, copy, formerDate, Span::FutureTasks);
    } else if (TaskManager::saveTaskTemp(transaction, copy) != SaveEnd::Saved) {
        account.refused.append(localized(u"\"%1\" breaks a rule for dates."_s).arg(copy.title));
        return false;
    } else if (copy.task()) {
        ImportedTask stamps = task;
        // It was changed just now.
        stamps.revised.reset();
        writeStamps(*copy.task(), stamps);
    }
    account.changed.append(copy.title);
    return true;
}

/// The rows of a series are there once the pass that follows its making has run.
void RecordImporter::takeOccurrences(const TaskPtr &row, const ImportedTask &task)
{
    transaction.settle();
    const Calendar calendar = Calendar::current();
    std::map<int, TaskPtr> rows;
    for (const TaskPtr &other : series::otherRows(*row))
        if (const OptionalDate base = baseDateOf(*other))
            rows.emplace(calendar.dayNumber(*base), other);
    if (const OptionalDate base = baseDateOf(*row))
        rows.emplace(calendar.dayNumber(*base), row);
    // What lies behind the last row that is there now comes with the rule.
    bool isLeftOut = false;
    for (const ImportedTask::Edit &one : task.edits) {
        const auto found = rows.find(calendar.dayNumber(one.original));
        if (found != rows.end())
            edit(found->second, one.task);
        else
            isLeftOut = true;
    }
    for (const Date date : task.excluded) {
        const auto found = rows.find(calendar.dayNumber(date));
        if (found != rows.end())
            TaskManager::deleteTask(transaction, found->second);
        else
            isLeftOut = true;
    }
    if (isLeftOut && (account.partial.isEmpty() || account.partial.last() != task.title))
        account.partial.append(task.title);
}

void RecordImporter::edit(const TaskPtr &row, const ImportedTask &task)
{
    const OptionalDate formerDate = baseDateOf(*row);
    MVTask copy(row);
    fillWords(copy, task);
    fillDates(copy, task);
    TaskManager::saveMemberOfSeries(transaction, copy, formerDate, Span::ThisTask);
}

ProjectPtr RecordImporter::addProject(const QString &identifier, const ImportedTask &task,
                                      const QStringList &people)
{
    const ProjectPtr named = projectname::knownByName(task.title);
    const ProjectPtr project = projectname::made(task.title, identifier);
    // What this import has brought is another one of that title.
    const bool isKnown = named && !newProjects.contains(named->identifier());
    newProjects.insert(identifier);
    if (isKnown) {
        project->setDelegateToUser(named->delegateToUser());
        const std::vector<TaskPtr> tasks = named->task();
        for (const TaskPtr &one : tasks)
            one->setProject(project);
        project->setRowIndex(named->rowIndex());
        mainContext().deleteObject(named);
        account.changed.append(task.title);
    } else {
        ++account.added;
    }
    fill(*project, task, people);
    return project;
}

void RecordImporter::fill(EntityProject &project, const ImportedTask &task, const QStringList &people)
{
    project.setTitle(task.title);
    project.setDetails(task.details);
    project.setStatus(task.status);
    project.setPriority(task.priority);
    project.setCreationDate(task.created ? task.created : OptionalDate(MVDate::date()));
    project.setExpirationDate(task.done);
    project.setStartDate(task.start);
    project.setDueDate(task.due ? OptionalDate(MTDates::endOfCurrentDay(*task.due)) : std::nullopt);
    MVTask copy;
    fillCategoryAndTags(copy, task);
    project.setCategory(copy.category);
    std::vector<ContactPtr> members = project.delegateToUser();
    for (const QString &name : people) {
        const ContactPtr person = personname::foundOrMade(name);
        if (person && std::ranges::count(members, person) == 0)
            members.push_back(person);
    }
    project.setDelegateToUser(members);
}

void RecordImporter::takeProject(const CalendarFile::Object &object)
{
    const QString identifier = TaskImport::identifierOf(object.uid);
    const auto task = ImportedTask::of(object);
    const ObjectPtr present = mainContext().object(EntityProject::entityName, identifier);
    QStringList people;
    for (const IcalComponent *component : object.calendar.children()) {
        // Those of other programs, and of former versions, have names for people only.
        const auto own = component->lines("X-MORVANE-PERSON");
        for (const ContentLine *line : own.empty() ? component->lines("CONTACT") : own)
            people.append(IcalText::decoded(line->value()).simplified());
    }
    if (!present) {
        if (task)
            addProject(identifier, *task, people);
        return;
    }
    auto &project = static_cast<EntityProject &>(*present);
    if (!task || !isOtherProject(project, *task)) {
        ++account.same;
        if (task && projectname::isCompletedBy(task->created, project))
            fill(project, *task, people);
    } else if (projectname::isBare(project)) {
        fill(project, *task, people);
        account.changed.append(task->title);
    } else {
        account.newerHere.append(project.title());
    }
}

void RecordImporter::addNote(const QString &identifier, const ImportedTask &task)
{
    const auto note =
        std::static_pointer_cast<EntityNote>(mainContext().insertObject(EntityNote::entityName, identifier));
    note->setTitle(task.title);
    note->setDetail(task.details);
    note->setCreationDate(task.created ? task.created : OptionalDate(MVDate::date()));
    note->setContact(personname::foundOrMade(task.person));
    note->setCompany(companyTitled(task.company));
    newNotes.insert(identifier);
    ++account.added;
}

static bool areEqual(const EntityNote &one, const EntityNote &other)
{
    return one.title() == other.title() && one.detail().trimmed() == other.detail().trimmed() &&
           one.company() == other.company();
}

/// The note of the file stays, as it is known by its identifier when the file comes again.
void RecordImporter::drop(const std::shared_ptr<EntityNote> &note, std::size_t insteadOf)
{
    mainContext().deleteObject(note);
    account.added -= static_cast<int>(insteadOf);
    account.same += static_cast<int>(insteadOf);
}

void RecordImporter::dropFormerNotesOf(const EntityContacts &person)
{
    std::vector<std::shared_ptr<EntityNote>> fromFile;
    std::vector<std::shared_ptr<EntityNote>> former;
    for (const auto &note : person.note())
        (newNotes.contains(note->identifier()) ? fromFile : former).push_back(note);
    // A card brings all notes of somebody as one.
    const QString words = notewords::of(person, fromFile);
    for (const auto &note : former)
        if (notewords::isNameOf(person, note->title()) && notewords::areSame(note->detail(), words))
            return drop(note, fromFile.size());
    for (const auto &note : fromFile) {
        const auto same =
            std::ranges::find_if(former, [&note](const auto &one) { return areEqual(*one, *note); });
        if (same == former.end())
            continue;
        drop(*same, 1);
        former.erase(same);
    }
}

void RecordImporter::dropFormerNotesOfNobody(const std::vector<std::shared_ptr<EntityNote>> &fromFile)
{
    QMultiHash<QString, QString> former;
    mainContext().visit(EntityNote::fetchRequest().where(Predicate::format("contact = nil")), {"id", "title"},
                        [&](const RowReader &row) {
                            if (!newNotes.contains(row.text(0)))
                                former.insert(row.text(1), row.text(0));
                        });
    for (const auto &note : fromFile)
        for (const QString &identifier : former.values(note->title())) {
            const auto one = std::static_pointer_cast<EntityNote>(
                mainContext().object(EntityNote::entityName, identifier));
            if (!one || !areEqual(*one, *note))
                continue;
            drop(one, 1);
            former.remove(note->title(), identifier);
            break;
        }
}

void RecordImporter::finish()
{
    std::vector<std::shared_ptr<EntityNote>> ofNobody;
    std::map<QString, ContactPtr> people;
    for (const QString &identifier : std::as_const(newNotes)) {
        const auto note =
            std::static_pointer_cast<EntityNote>(mainContext().object(EntityNote::entityName, identifier));
        if (const ContactPtr person = note ? note->contact() : nullptr)
            people.emplace(person->identifier(), person);
        else if (note)
            ofNobody.push_back(note);
    }
    for (const auto &[identifier, person] : people)
        dropFormerNotesOf(*person);
    if (!ofNobody.empty())
        dropFormerNotesOfNobody(ofNobody);
    newNotes.clear();
}

void RecordImporter::takeNote(const CalendarFile::Object &object)
{
    const QString identifier = TaskImport::identifierOf(object.uid);
    const IcalComponent &journal = *object.calendar.children().back();
    const QString said = IcalText::decoded(journal.value("SUMMARY")).simplified();
    ImportedTask note;
    note.title = said.isEmpty() ? localized(u"No Title"_s) : said;
    note.details = IcalText::decoded(journal.value("DESCRIPTION"));
    if (const ObjectPtr present = mainContext().object(EntityNote::entityName, identifier)) {
        const auto &known = static_cast<const EntityNote &>(*present);
        if (known.title().simplified() == note.title && known.detail() == note.details)
            ++account.same;
        else
            account.newerHere.append(known.title());
        return;
    }
    note.created = UtcDateTime::date(QString::fromLatin1(journal.value("CREATED").trimmed()));
    note.person = IcalText::decoded(journal.value("X-MORVANE-PERSON")).simplified();
    note.company = IcalText::decoded(journal.value("X-MORVANE-COMPANY")).simplified();
    // Whom other programs name is somebody of theirs, unless there is such a person.
    const QString contact = IcalText::decoded(journal.value("CONTACT")).simplified();
    if (note.person.isEmpty() && personname::found(contact))
        note.person = contact;
    addNote(identifier, note);
}
