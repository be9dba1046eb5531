#include "SampleLife.h"

#include "SamplePictures.h"
#include "objectstore/ManagedObjectContext.h"
#include "records/dates/MTDates.h"

#include <QDate>

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr Seconds minute(60);

Date plusDays(Date date, int days)
{
    return MTDates::dateByAddingYears(date, 0, 0, 0, days, 0, 0, 0);
}

/// A ToDo is due in the last minute of its day.
Date endOfDay(Date date)
{
    return MTDates::endOfCurrentDay(date) - Seconds(59);
}

Priority priorityOf(const QString &word)
{
    static const QHash<QString, Priority> all = {
        {u"high"_s, Priority::High}, {u"medium"_s, Priority::Medium}, {u"low"_s, Priority::Low}};
    return all.value(word, Priority::None);
}

TaskStatus statusOf(const QString &word)
{
    static const QHash<QString, TaskStatus> all = {{u"in progress"_s, TaskStatus::InProgress},
                                                   {u"pending"_s, TaskStatus::Pending},
                                                   {u"done"_s, TaskStatus::Done}};
    return all.value(word, TaskStatus::Open);
}

TaskType typeOf(const QString &word)
{
    static const QHash<QString, TaskType> all = {{u"appointment"_s, TaskType::Appointment},
                                                 {u"call"_s, TaskType::EmailCall}};
    return all.value(word, TaskType::ToDo);
}

OptionalDate dateOf(const QString &text)
{
    const QDate date = QDate::fromString(text, Qt::ISODate);
    return date.isValid() ? OptionalDate(MTDates::dateFromYear(date.year(), date.month(), date.day()))
                          : std::nullopt;
}

} // namespace

SampleLife::SampleLife(ManagedObjectContext &context, const QJsonObject &description, QString folder)
    : store(context)
    , life(description)
    , pictures(std::move(folder))
    , firstDay(dateOf(description.value(u"firstDay"_s).toString()).value_or(Date()))
{}

QStringList SampleLife::write()
{
    forEach(u"places"_s, &SampleLife::writePlace);
    forEach(u"companies"_s, &SampleLife::writeCompany);
    forEach(u"people"_s, &SampleLife::writePerson);
    forEach(u"groups"_s, &SampleLife::writeGroup);
    forEach(u"lists"_s, &SampleLife::writeGroup);
    forEach(u"projects"_s, &SampleLife::writeProject);
    for (const QJsonValue told : life.value(u"tasks"_s).toArray())
        writeTask(told.toObject());
    forEach(u"series"_s, &SampleLife::writeSeries);
    forEach(u"notes"_s, &SampleLife::writeNote);
    return faults;
}

void SampleLife::forEach(const QString &list, void (SampleLife::*writeOne)(const QJsonObject &))
{
    for (const QJsonValue told : life.value(list).toArray())
        (this->*writeOne)(told.toObject());
}

template <typename Entity>
std::shared_ptr<Entity> SampleLife::byTitle(const QString &title)
{
    const auto found =
        store.fetchFirst<Entity>(Entity::fetchRequest().where(Predicate::format("title = %@", title)));
    if (!found)
        faults.append(u"Nothing is called \"%1\""_s.arg(title));
    return found;
}

template <typename Entity>
std::shared_ptr<Entity> SampleLife::known(const QHash<QString, std::shared_ptr<Entity>> &all,
                                          const QJsonObject &told, const QString &key)
{
    const QString name = told.value(key).toString();
    if (!name.isEmpty() && !all.contains(name))
        faults.append(u"Nothing is called \"%1\""_s.arg(name));
    return all.value(name);
}

Date SampleLife::dayOf(const QJsonObject &told) const
{
    return plusDays(firstDay, told.value(u"day"_s).toInt());
}

QString SampleLife::picture(const QString &name)
{
    if (name.isEmpty())
        return {};
    const QString file = u"sample-%1.png"_s.arg(name);
    if (!SamplePictures::draw(name).save(pictures + u'/' + file))
        faults.append(u"The picture \"%1\" cannot be drawn"_s.arg(name));
    return file;
}

template <typename Owner>
void SampleLife::writeDetails(const std::shared_ptr<Owner> &owner, const QJsonObject &told)
{
    constexpr bool isPerson = std::is_same_v<Owner, EntityContacts>;
    const auto give = [&owner](const auto &detail) {
        if constexpr (isPerson)
            detail->setContact(owner);
        else
            detail->setCompany(owner);
    };
    const auto text = [&told](const QString &key) { return told.value(key).toString(); };
    if (!text(u"phone"_s).isEmpty()) {
        const auto phone = store.insert<EntityPhone>();
        phone->setNumber(text(u"phone"_s));
        phone->setType(byTitle<EntityPhoneType>(isPerson ? u"mobile"_s : u"work"_s));
        give(phone);
    }
    if (!text(u"mail"_s).isEmpty()) {
        const auto mail = store.insert<EntityEmail>();
        mail->setMail(text(u"mail"_s));
        mail->setType(byTitle<EntityEmailType>(u"work"_s));
        give(mail);
    }
    if (!text(u"url"_s).isEmpty()) {
        const auto page = store.insert<EntityURL>();
        page->setUrl(text(u"url"_s));
        page->setType(byTitle<EntityURLType>(u"work"_s));
        give(page);
    }
    if (!text(u"street"_s).isEmpty()) {
        const auto address = store.insert<EntityAddress>();
        address->setStreet1(text(u"street"_s));
        address->setCity(text(u"city"_s));
        address->setZip(text(u"zip"_s));
        address->setCountry(u"United Kingdom"_s);
        address->setAddressType(byTitle<EntityAddressType>(isPerson ? u"home"_s : u"work"_s));
        give(address);
    }
}

void SampleLife::writePlace(const QJsonObject &told)
{
    const auto place = store.insert<EntityLocation>();
    place->setTitle(told.value(u"title"_s).toString());
    place->setLatitude(told.value(u"latitude"_s).toDouble());
    place->setLongitude(told.value(u"longitude"_s).toDouble());
    places.insert(place->title(), place);
}

void SampleLife::writeCompany(const QJsonObject &told)
{
    const auto company = store.insert<EntityCompany>();
    company->setTitle(told.value(u"title"_s).toString());
    company->setDetails(told.value(u"details"_s).toString());
    company->setPhotoName(picture(told.value(u"logo"_s).toString()));
    writeDetails(company, told);
    companies.insert(company->title(), company);
}

void SampleLife::writePerson(const QJsonObject &told)
{
    const auto person = store.insert<EntityContacts>();
    person->setFirstName(told.value(u"first"_s).toString());
    person->setLastName(told.value(u"last"_s).toString());
    person->setBirthday(dateOf(told.value(u"birthday"_s).toString()));
    person->setPhotoName(picture(told.value(u"photo"_s).toString()));
    person->setContactCategory(byTitle<EntityContactCategory>(told.value(u"category"_s).toString()));
    person->setCompany(known(companies, told, u"company"_s));
    writeDetails(person, told);
    people.insert(person->firstName() + u' ' + person->lastName(), person);
    if (!told.value(u"note"_s).toString().isEmpty())
        writeNote({{u"title"_s, u"About %1"_s.arg(person->firstName())},
                   {u"text"_s, told.value(u"note"_s)},
                   {u"person"_s, person->firstName() + u' ' + person->lastName()}});
}

/// One with people is picked by hand, one with criteria follows them.
void SampleLife::writeGroup(const QJsonObject &told)
{
    const auto group = store.insert<EntityContactGroup>();
    const QJsonArray members = told.value(u"people"_s).toArray();
    group->setTitle(told.value(u"title"_s).toString());
    group->setUseGeneralFilter(members.isEmpty());
    group->setCriteria(told.value(u"criteria"_s).toInt());
    group->setAllCompanies(true);
    group->setAllCategories(true);
    std::vector<ContactPtr> contacts;
    for (const QJsonValue member : members) {
        if (const ContactPtr person = known(people, {{u"person"_s, member}}, u"person"_s))
            contacts.push_back(person);
    }
    group->setContacts(contacts);
}

void SampleLife::writeProject(const QJsonObject &told)
{
    const auto project = store.insert<EntityProject>();
    project->setTitle(told.value(u"title"_s).toString());
    project->setDetails(told.value(u"details"_s).toString());
    project->setCategory(byTitle<EntityCategory>(told.value(u"category"_s).toString()));
    project->setPriority(priorityOf(told.value(u"priority"_s).toString()));
    project->setStatus(statusOf(told.value(u"status"_s).toString()));
    project->setStartDate(dayOf(told));
    project->setDueDate(endOfDay(plusDays(dayOf(told), told.value(u"days"_s).toInt())));
    project->setCreationDate(dayOf(told));
    if (project->status() == TaskStatus::Done)
        project->setExpirationDate(project->dueDate());
    std::vector<ContactPtr> contacts;
    for (const QJsonValue member : told.value(u"people"_s).toArray()) {
        if (const ContactPtr person = known(people, {{u"person"_s, member}}, u"person"_s))
            contacts.push_back(person);
    }
    project->setDelegateToUser(contacts);
    projects.insert(project->title(), project);
}

void SampleLife::setDates(EntityTask &task, const QJsonObject &told)
{
    const Date day = dayOf(told);
    const QStringList time = told.value(u"time"_s).toString().split(u':');
    const Date moment = day + minute * (time.value(0).toInt() * 60 + time.value(1).toInt());
    switch (task.type().value_or(TaskType::ToDo)) {
    case TaskType::ToDo:
        task.setStartDate(day);
        task.setDueDate(endOfDay(plusDays(day, told.value(u"days"_s).toInt(1) - 1)));
        break;
    case TaskType::Appointment:
        task.setStartDate(moment);
        task.setDueDate(moment + minute * told.value(u"minutes"_s).toInt());
        break;
    case TaskType::EmailCall:
        task.setDueDate(moment);
        break;
    }
}

TaskPtr SampleLife::writeTask(const QJsonObject &told)
{
    const auto task = store.insert<EntityTask>();
    const bool isDated = told.contains(u"day"_s);
    const bool isDone = told.contains(u"done"_s);
    const Date written = plusDays(isDated ? std::min(dayOf(told), firstDay) : firstDay, -7);
    task->setTitle(told.value(u"title"_s).toString());
    task->setDetails(told.value(u"details"_s).toString());
    task->setType(typeOf(told.value(u"type"_s).toString()));
    task->setStatus(isDone ? TaskStatus::Done : statusOf(told.value(u"status"_s).toString()));
    task->setPriority(priorityOf(told.value(u"priority"_s).toString()));
    task->setDueSomeDay(told.value(u"someday"_s).toBool());
    task->setAllowsContentModifications(true);
    task->setCreationDate(written);
    task->setLastModificationDate(written);
    if (isDated)
        setDates(*task, told);
    else if (told.value(u"inbox"_s).toBool())
        task->setPosition(
            int(store.count(EntityTask::fetchRequest().where(Predicate::format("position != nil")))) + 1);
    if (isDone)
        task->setExpirationDate(plusDays(firstDay, -told.value(u"done"_s).toInt()) + minute * 17 * 60);
    task->setCategory(byTitle<EntityCategory>(told.value(u"category"_s).toString()));
    task->setProject(known(projects, told, u"project"_s));
    task->setCompany(known(companies, told, u"company"_s));
    task->setLocation(known(places, told, u"place"_s));
    task->setDelegateToUser(known(people, told, u"person"_s));
    if (told.contains(u"delegated"_s))
        task->setDelegatedSince(plusDays(firstDay, -told.value(u"delegated"_s).toInt()));
    if (told.contains(u"asked"_s))
        task->setLastAsked(plusDays(firstDay, -told.value(u"asked"_s).toInt()));
    std::vector<std::shared_ptr<EntityTags>> named;
    for (const QJsonValue word : told.value(u"tags"_s).toArray()) {
        auto &tag = tags[word.toString()];
        if (!tag) {
            tag = store.insert<EntityTags>();
            tag->setTitle(word.toString());
        }
        named.push_back(tag);
    }
    task->setTags(named);
    return task;
}

/// A row for each occurrence, which have their rule and an identifier in common.
void SampleLife::writeSeries(const QJsonObject &told)
{
    QJsonObject occurrence = told;
    const int first = told.value(u"day"_s).toInt();
    for (int number = 0; number < told.value(u"times"_s).toInt(); ++number) {
        occurrence.insert(u"day"_s, first + number * told.value(u"every"_s).toInt());
        const TaskPtr task = writeTask(occurrence);
        task->setRepeat(told.value(u"rule"_s).toString());
        task->setCalendarID(u"sample "_s + task->title());
    }
}

void SampleLife::writeNote(const QJsonObject &told)
{
    const auto note = store.insert<EntityNote>();
    note->setTitle(told.value(u"title"_s).toString());
    note->setDetail(told.value(u"text"_s).toString());
    note->setCreationDate(firstDay);
    note->setContact(known(people, told, u"person"_s));
}
