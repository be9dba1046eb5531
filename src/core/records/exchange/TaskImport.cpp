#include "records/exchange/TaskImport.h"

#include "calendarsync/CalendarEvent.h"
#include "calendarsync/RecordsTransaction.h"
#include "calendarsync/SeriesRows.h"
#include "eventkit/EKRecurrenceRule.h"
#include "eventkit/IcalText.h"
#include "eventkit/IcalZones.h"
#include "eventkit/UtcDateTime.h"
#include "foundation/Calendar.h"
#include "foundation/Localization.h"
#include "records/Categories.h"
#include "records/Functional.h"
#include "records/TaskManager.h"
#include "records/copies/MVTask.h"
#include "records/dates/MTDates.h"
#include "records/dates/MVDate.h"
#include "records/exchange/ImportedTask.h"
#include "store/entities/MainContext.h"
#include "store/queries/DBWorker.h"

#include <QUuid>

#include <algorithm>
#include <set>

using namespace Qt::Literals::StringLiterals;

namespace {

QString someTitles(const QStringList &titles)
{
    constexpr int most = 5;
    const QString some = titles.mid(0, most).join(u", "_s);
    return titles.size() > most ? localized(u"%1 and %2 more"_s).arg(some).arg(titles.size() - most) : some;
}

template <typename Entity>
std::shared_ptr<Entity> titled(const QString &title)
{
    return title.isEmpty() ? nullptr
                           : mainContext().fetchFirst<Entity>(
                                 Entity::fetchRequest().where(Predicate::format("title = %@", title)));
}

template <typename Entity>
std::shared_ptr<Entity> titledOrNew(const QString &title)
{
    auto found = titled<Entity>(title);
    if (!found && !title.isEmpty()) {
        found = mainContext().insert<Entity>();
        found->setTitle(title);
    }
    return found;
}

ContactPtr personNamed(const QString &name)
{
    if (name.isEmpty())
        return nullptr;
    const qsizetype blank = name.lastIndexOf(u' ');
    const QString first = name.left(blank < 0 ? name.size() : blank);
    const QString last = blank < 0 ? QString() : name.mid(blank + 1);
    for (const auto &[given, family] : {std::pair(first, last), std::pair(last, first)}) {
        if (const ContactPtr found = EntityContacts::firstName(given, family))
            return found;
    }
    return nullptr;
}

/// Somebody whom this program named in another store.
ContactPtr personOrNew(const QString &name)
{
    ContactPtr person = personNamed(name);
    if (person || name.isEmpty())
        return person;
    const qsizetype blank = name.lastIndexOf(u' ');
    person = mainContext().insert<EntityContacts>();
    person->setFirstName(name.left(blank < 0 ? name.size() : blank));
    person->setLastName(blank < 0 ? u""_s : name.mid(blank + 1));
    return person;
}

/// By its title in English or in the user's language.
CategoryPtr categoryNamed(const QString &title)
{
    for (const CategoryPtr &category : DBWorker::allCategories())
        if (title.compare(category->title(), Qt::CaseInsensitive) == 0 ||
            title.compare(localized(category->title()), Qt::CaseInsensitive) == 0)
            return category;
    return nullptr;
}

std::shared_ptr<EntityLocation> placeNamed(const QString &title, const std::optional<GeoLocation> &position)
{
    if (title.isEmpty())
        return nullptr;
    auto request = EntityLocation::fetchRequest();
    if (position)
        request.where(Predicate::format("title = %@ and latitude = %@ and longitude = %@", title,
                                        position->latitude, position->longitude));
    else
        request.where(Predicate::format("title = %@", title));
    if (auto known = mainContext().fetchFirst<EntityLocation>(request))
        return known;
    const auto made = mainContext().insert<EntityLocation>();
    made->setTitle(title);
    if (position) {
        made->setLatitude(position->latitude);
        made->setLongitude(position->longitude);
    }
    return made;
}

/// Whether two texts are the same rule, their ends aside.
bool isSameRule(const QString &one, const QString &other)
{
    auto rule = EKRecurrenceRule::recurrenceRuleFromString(one);
    auto otherRule = EKRecurrenceRule::recurrenceRuleFromString(other);
    for (auto *each : {&rule, &otherRule})
        if (*each)
            (*each)->setRecurrenceEnd(std::nullopt);
    return one.isEmpty() == other.isEmpty() && rule == otherRule;
}

ProjectPtr projectOf(const ImportedTask &task)
{
    if (!task.projectUid.isEmpty()) {
        const ObjectPtr project =
            mainContext().object(EntityProject::entityName, TaskImport::identifierOf(task.projectUid));
        if (project)
            return std::static_pointer_cast<EntityProject>(project);
    }
    return titledOrNew<EntityProject>(task.project);
}

/// Whether a task may belong to a project by its dates.
bool fitsInto(const EntityProject &project, OptionalDate start, OptionalDate due)
{
    const OptionalDate end =
        project.dueDate() ? OptionalDate(MTDates::endOfCurrentDay(*project.dueDate())) : std::nullopt;
    return Functional::dateValidationsMainStartDate(project.startDate(), end, start, due) == 0;
}

void fillCategoryAndTags(MVTask &copy, const ImportedTask &task)
{
    QStringList tags = task.tags;
    copy.category = nullptr;
    if (task.hasOwnCategory) {
        copy.category = categoryNamed(task.category);
        const auto color = copy.category || task.category.isEmpty() ? std::nullopt : Categories::next();
        if (color)
            copy.category = Categories::add(task.category, *color);
        // With the most that there can be, the word stays at least.
        if (!copy.category && !task.category.isEmpty())
            tags.append(task.category);
    } else {
        for (const QString &title : task.tags) {
            copy.category = categoryNamed(title);
            if (copy.category) {
                tags.removeOne(title);
                break;
            }
        }
    }
    copy.tags.clear();
    for (const QString &tag : tags)
        copy.tags.push_back(titledOrNew<EntityTags>(tag));
}

void fillWords(MVTask &copy, const ImportedTask &task)
{
    copy.title = task.title.isEmpty() ? localized(u"No Title"_s) : task.title;
    copy.details = task.details;
    copy.priority = task.priority;
    copy.status = task.status;
    copy.location = placeNamed(task.place, task.position);
    copy.company = titledOrNew<EntityCompany>(task.company);
    copy.delegateToUser =
        task.contactWords.isEmpty() ? personOrNew(task.person) : personNamed(task.contactWords);
    const QString words = localized(u"Contacts"_s) + u": "_s + task.contactWords;
    if (!copy.delegateToUser && !task.contactWords.isEmpty() && !copy.details.contains(words))
        copy.details += (copy.details.isEmpty() ? u""_s : u"\n"_s) + words;
    fillCategoryAndTags(copy, task);
}

void fillDates(MVTask &copy, const ImportedTask &task)
{
    // Seconds are no part of a task's dates: rows have some or none.
    const auto take = [](OptionalDate &date, OptionalDate said) {
        if (!date || !said || !Functional::sameMinute(*date, *said))
            date = said;
    };
    copy.type = task.type;
    take(copy.startDate, task.start);
    take(copy.dueDate, task.due);
    copy.dueSomeDay = task.isSomeday;
    const auto alertAt = [&](std::size_t place) {
        return place < task.alerts.size() ? OptionalDate(task.alerts[place]) : std::nullopt;
    };
    copy.alert = alertAt(0);
    copy.secondAlert = alertAt(1);
}

void fillRule(MVTask &copy, const ImportedTask &task)
{
    if (!isSameRule(copy.repeat, task.rule))
        copy.repeat = task.rule;
    copy.endRepeat = task.ruleEnd;
}

/// Of a copy that has a row: whether it says anything else.
bool isOther(const MVTask &copy)
{
    const auto setOf = [](const auto &tags) {
        return std::set<std::shared_ptr<EntityTags>>(tags.begin(), tags.end());
    };
    return copy.isChangedTask() || setOf(copy.tags) != setOf(copy.task()->tags());
}

OptionalDate baseDateOf(const EntityTask &row)
{
    return row.type() == TaskType::EmailCall || !row.startDate() ? row.dueDate() : row.startDate();
}

/// Imports the objects of the files, one after the other.
class Importer
{
public:
    explicit Importer(RecordsTransaction &openTransaction)
        : transaction(openTransaction)
    {}

    void take(const CalendarFile::Object &object);
    TaskImportAccount account;

private:
    void takeTask(const CalendarFile::Object &object);
    void takeProject(const CalendarFile::Object &object);
    void takeNote(const CalendarFile::Object &object);
    void add(const QString &uid, const ImportedTask &task);
    void follow(const TaskPtr &row, const ImportedTask &task);
    void takeOccurrences(const TaskPtr &row, const ImportedTask &task);
    void edit(const TaskPtr &row, const ImportedTask &task);

    RecordsTransaction &transaction;
};

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

void Importer::take(const CalendarFile::Object &object)
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

void Importer::takeTask(const CalendarFile::Object &object)
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
    if (row)
        follow(row, *task);
    else
        add(object.uid, *task);
}

void Importer::add(const QString &uid, const ImportedTask &task)
{
    MVTask copy;
    copy.newIdentifier = TaskImport::identifierOf(uid);
    fillWords(copy, task);
    fillDates(copy, task);
    fillRule(copy, task);
    const ProjectPtr project = projectOf(task);
    bool isPartial = task.isPartial;
    if (project && fitsInto(*project, copy.startDate, copy.dueDate))
        copy.project = project;
    else
        isPartial = isPartial || project;
    if (TaskManager::saveTaskTemp(transaction, copy) != SaveEnd::Saved) {
        account.refused.append(localized(u"\"%1\" breaks a rule for dates."_s).arg(copy.title));
        return;
    }
    const TaskPtr row = copy.task();
    if (row && task.created)
        row->setCreationDate(task.created);
    if (row && task.done)
        row->setExpirationDate(task.done);
    if (row && task.delegatedSince)
        row->setDelegatedSince(task.delegatedSince);
    if (row && task.lastAsked)
        row->setLastAsked(task.lastAsked);
    ++account.added;
    if (isPartial)
        account.partial.append(copy.title);
    if (row && !task.rule.isEmpty() && !(task.excluded.empty() && task.edits.empty()))
        takeOccurrences(row, task);
}

/// The dates of a series move on here, so that only its words are followed.
void Importer::follow(const TaskPtr &row, const ImportedTask &task)
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
    if (!isOther(copy)) {
        ++account.same;
        return;
    }
    const OptionalDate here = row->lastModificationDate();
    const bool isFileLater = task.revised && (!here || *here < *task.revised);
    if (!isFileLater) {
        account.newerHere.append(row->title());
        return;
    }
    const OptionalDate formerDate = baseDateOf(*row);
    if (isSeries) {
        copy.save();
        TaskManager::saveWithDate(transaction, formerDate, row, Span::FutureTasks, true);
    } else if (TaskManager::saveTaskTemp(transaction, copy) != SaveEnd::Saved) {
        account.refused.append(localized(u"\"%1\" breaks a rule for dates."_s).arg(copy.title));
        return;
    }
    account.changed.append(copy.title);
}

/// The rows of a series are there once the pass that follows its making has run.
void Importer::takeOccurrences(const TaskPtr &row, const ImportedTask &task)
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

void Importer::edit(const TaskPtr &row, const ImportedTask &task)
{
    const OptionalDate formerDate = baseDateOf(*row);
    MVTask copy(row);
    fillWords(copy, task);
    fillDates(copy, task);
    copy.save();
    TaskManager::saveWithDate(transaction, formerDate, row, Span::ThisTask, true);
}

/// Whether a project says something else than a file. When it was changed is not kept.
bool isOther(const EntityProject &project, const ImportedTask &task)
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

void Importer::takeProject(const CalendarFile::Object &object)
{
    const QString identifier = TaskImport::identifierOf(object.uid);
    const auto task = ImportedTask::of(object);
    const ObjectPtr present = mainContext().object(EntityProject::entityName, identifier);
    if (!task || present) {
        if (task && isOther(static_cast<const EntityProject &>(*present), *task))
            account.newerHere.append(static_cast<const EntityProject &>(*present).title());
        else
            ++account.same;
        return;
    }
    const auto project = std::static_pointer_cast<EntityProject>(
        mainContext().insertObject(EntityProject::entityName, identifier));
    project->setTitle(task->title);
    project->setDetails(task->details);
    project->setStatus(task->status);
    project->setPriority(task->priority);
    project->setCreationDate(task->created ? task->created : OptionalDate(MVDate::date()));
    project->setExpirationDate(task->done);
    project->setStartDate(task->start);
    project->setDueDate(task->due ? OptionalDate(MTDates::endOfCurrentDay(*task->due)) : std::nullopt);
    MVTask copy;
    fillCategoryAndTags(copy, *task);
    project->setCategory(copy.category);
    std::vector<ContactPtr> people;
    for (const IcalComponent *component : object.calendar.children())
        for (const ContentLine *line : component->lines("CONTACT"))
            people.push_back(personOrNew(IcalText::decoded(line->value()).simplified()));
    std::erase(people, nullptr);
    project->setDelegateToUser(people);
    ++account.added;
}

void Importer::takeNote(const CalendarFile::Object &object)
{
    const QString identifier = TaskImport::identifierOf(object.uid);
    const IcalComponent &journal = *object.calendar.children().back();
    const QString said = IcalText::decoded(journal.value("SUMMARY")).simplified();
    const QString title = said.isEmpty() ? localized(u"No Title"_s) : said;
    const QString detail = IcalText::decoded(journal.value("DESCRIPTION"));
    if (const ObjectPtr present = mainContext().object(EntityNote::entityName, identifier)) {
        const auto &known = static_cast<const EntityNote &>(*present);
        if (known.title().simplified() == title && known.detail() == detail)
            ++account.same;
        else
            account.newerHere.append(known.title());
        return;
    }
    const auto note =
        std::static_pointer_cast<EntityNote>(mainContext().insertObject(EntityNote::entityName, identifier));
    note->setTitle(title);
    note->setDetail(detail);
    const OptionalDate created = UtcDateTime::date(QString::fromLatin1(journal.value("CREATED").trimmed()));
    note->setCreationDate(created ? created : OptionalDate(MVDate::date()));
    note->setContact(personNamed(IcalText::decoded(journal.value("CONTACT")).simplified()));
    ++account.added;
}

QString problemSentence(const CalendarFile::Problem &problem, const QString &name)
{
    switch (problem.fault) {
    case CalendarFile::Fault::CutOff:
        return localized(u"What begins in line %1 of \"%2\" is cut off."_s).arg(problem.line).arg(name);
    case CalendarFile::Fault::TooLarge:
        return localized(u"What begins in line %1 of \"%2\" is too large."_s).arg(problem.line).arg(name);
    case CalendarFile::Fault::Unreadable:
        break;
    }
    return localized(u"What begins in line %1 of \"%2\" cannot be read."_s).arg(problem.line).arg(name);
}

} // namespace

QString TaskImport::identifierOf(const QString &uid)
{
    // Made up once, for the names of this program alone.
    static const QUuid space(u"7d1f2c0e-52f5-4a5a-9f0c-3f0b6f6a2c11"_s);
    const QUuid itself(uid);
    if (!itself.isNull() && itself.toString(QUuid::WithoutBraces) == uid)
        return uid;
    return QUuid::createUuidV5(space, uid).toString(QUuid::WithoutBraces);
}

void TaskImport::addFile(QIODevice &device, const QString &name)
{
    files.push_back({name, CalendarFile::read(device)});
    const CalendarFile &content = files.back().content;
    for (const CalendarFile::Problem &problem : content.problems())
        problems.append(problemSentence(problem, name));
    if (content.isTooLong())
        problems.append(localized(u"\"%1\" holds more than can be imported at once."_s).arg(name));
    if (!content.isCalendar())
        problems.append(localized(u"\"%1\" is no calendar file."_s).arg(name));
    else if (content.objects().empty() && content.problems().empty())
        problems.append(localized(u"There is no task in \"%1\"."_s).arg(name));
}

void TaskImport::addUnreadable(const QString &name, const QString &reason)
{
    problems.append(localized(u"\"%1\" cannot be read: %2."_s).arg(name, reason));
}

std::size_t TaskImport::count() const
{
    std::size_t all = 0;
    for (const File &file : files)
        all += file.content.objects().size();
    return all;
}

TaskImportAccount TaskImport::import(const StepBlock &step)
{
    RecordsTransaction transaction(u"Import Tasks"_s, ChangeAuthor::Import);
    Importer importer(transaction);
    importer.account.refused = problems;
    // The calendars are read once for all tasks.
    const auto held =
        CalendarEvent::hasAccesToCalendar() ? CalendarEvent::eventStore().holdContents() : nullptr;
    const auto takeAll = [&](bool areProjects) {
        for (const File &file : files) {
            for (const CalendarFile::Object &object : file.content.objects()) {
                const auto children = object.calendar.children();
                const bool isProject = !children.empty() && children.back()->line("X-MORVANE-KIND");
                if (isProject != areProjects)
                    continue;
                importer.take(object);
                importer.account.wasStopped = step && !step();
                if (importer.account.wasStopped)
                    return;
            }
        }
    };
    // Tasks name their projects.
    takeAll(true);
    if (!importer.account.wasStopped)
        takeAll(false);
    importer.account.isSaved = DBWorker::tellOfFailure(transaction.commit());
    return importer.account;
}

QStringList TaskImportAccount::sentences() const
{
    QStringList all;
    all.append(added == 0 ? localized(u"Nothing new was imported."_s)
                          : localizedCount(u"%1 entries were imported."_s, added));
    if (same > 0)
        all.append(localizedCount(u"%1 were there already, just the same."_s, same));
    const auto tell = [&](const QStringList &titles, const QString &sentence) {
        if (!titles.isEmpty())
            all.append(localizedCount(sentence, titles.size()).arg(someTitles(titles)));
    };
    if (wasStopped)
        all.append(localized(u"The import was stopped; what it had done by then stays."_s));
    tell(changed, u"%1 were there and now say what the file says: %2."_s);
    tell(newerHere, u"%1 say something else here, and stay as they are: %2."_s);
    tell(partial, u"Of %1, not everything could be taken over: %2."_s);
    tell(refused, u"%1 could not be imported: %2"_s);
    return all;
}
