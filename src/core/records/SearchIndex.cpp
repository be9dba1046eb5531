#include "records/SearchIndex.h"

#include "foundation/Localization.h"
#include "records/copies/TaskColumns.h"
#include "store/entities/Entities.h"
#include "store/entities/FullName.h"
#include "store/entities/MainContext.h"

#include <QSet>
#include <QStringList>

#include <algorithm>
#include <unordered_set>
#include <utility>

namespace {

template <typename T>
QString titleOf(const std::shared_ptr<T> &object)
{
    return object ? object->title() : QString();
}

/// A category that came with the program has a key for a title: it is found by what is shown.
template <typename T>
QString shownTitleOf(const std::shared_ptr<T> &category)
{
    return localized(titleOf(category));
}

template <typename T>
void addTitles(QStringList &texts, const std::vector<std::shared_ptr<T>> &objects)
{
    for (const auto &object : objects)
        texts.append(object->title());
}

/// The titles of the tasks that name a record, which can be thousands, without making objects of them.
void addTaskTitles(QStringList &texts, const char *condition, const ObjectPtr &record)
{
    mainContext().visit(EntityTask::fetchRequest().where(Predicate::format(condition, record)), {"title"},
                        [&texts](const RowReader &row) { texts.append(row.text(0)); });
}

template <typename T>
ObjectPtr shared(const T &record)
{
    return std::const_pointer_cast<ManagedObject>(record.shared_from_this());
}

void addNames(QStringList &texts, const std::vector<ContactPtr> &contacts)
{
    for (const ContactPtr &contact : contacts)
        texts.append(contact->fullName());
}

/// The people of a company can be thousands, too.
void addNamesOfPeople(QStringList &texts, const EntityCompany &company)
{
    mainContext().visit(
        EntityContacts::fetchRequest().where(Predicate::format("company = %@", shared(company))),
        {"firstName", "lastName"},
        [&texts](const RowReader &row) { texts.append(fullNameWith(row.text(0), row.text(1))); });
}

/// Numbers, addresses and links of a contact or a company.
template <typename Holder>
void addDetails(QStringList &texts, const Holder &holder)
{
    for (const auto &phone : holder.phone())
        texts.append(phone->number());
    for (const auto &email : holder.email())
        texts.append(email->mail());
    for (const auto &url : holder.url())
        texts.append(url->url());
    for (const auto &address : holder.address())
        texts.append(
            {address->city(), address->country(), address->state(), address->street1(), address->zip()});
}

QStringList textsOf(const EntityTask &task)
{
    const ContactPtr delegate = task.delegateToUser();
    return {task.details(),
            task.title(),
            shownTitleOf(task.category()),
            titleOf(task.project()),
            delegate ? delegate->fullName() : QString(),
            titleOf(task.company()),
            titleOf(task.location())};
}

QStringList textsOf(const EntityProject &project)
{
    QStringList texts = {project.details(), project.title(), shownTitleOf(project.category())};
    addTaskTitles(texts, "project = %@", shared(project));
    addNames(texts, project.delegateToUser());
    return texts;
}

QStringList textsOf(const EntityContacts &contact)
{
    QStringList texts = {contact.fullName()};
    addTaskTitles(texts, "delegateToUser = %@", shared(contact));
    texts.append(titleOf(contact.company()));
    addTitles(texts, contact.project());
    texts.append(shownTitleOf(contact.contactCategory()));
    for (const auto &note : contact.note())
        texts.append({note->detail(), note->title()});
    addDetails(texts, contact);
    return texts;
}

QStringList textsOf(const EntityCompany &company)
{
    QStringList texts = {company.title()};
    addTaskTitles(texts, "company = %@", shared(company));
    addNamesOfPeople(texts, company);
    addDetails(texts, company);
    return texts;
}

QStringList textsOf(const EntityNote &note)
{
    const ContactPtr contact = note.contact();
    const CompanyPtr company = note.company();
    return {note.detail(), note.title(), contact ? contact->fullName() : QString(),
            company ? company->title() : QString()};
}

QStringList textsOf(const ManagedObject &object)
{
    if (const auto *task = dynamic_cast<const EntityTask *>(&object))
        return textsOf(*task);
    if (const auto *project = dynamic_cast<const EntityProject *>(&object))
        return textsOf(*project);
    if (const auto *contact = dynamic_cast<const EntityContacts *>(&object))
        return textsOf(*contact);
    if (const auto *company = dynamic_cast<const EntityCompany *>(&object))
        return textsOf(*company);
    if (const auto *note = dynamic_cast<const EntityNote *>(&object))
        return textsOf(*note);
    return {};
}

bool isIndexed(const ManagedObject &object)
{
    return object.entity().followsLinks();
}

template <typename Detail>
ObjectPtr holderOf(const ManagedObject &object)
{
    const auto *detail = dynamic_cast<const Detail *>(&object);
    if (!detail)
        return nullptr;
    if (const ContactPtr contact = detail->contact())
        return contact;
    return detail->company();
}

/// The record that is found by the texts of a changed one: itself, or the contact or company to which a
/// number, address or link belongs.
ObjectPtr foundBy(const ObjectPtr &changed)
{
    if (isIndexed(*changed))
        return changed;
    for (const auto &holder :
         {holderOf<EntityPhone>, holderOf<EntityEmail>, holderOf<EntityURL>, holderOf<EntityAddress>}) {
        if (const ObjectPtr record = holder(*changed))
            return record;
    }
    return nullptr;
}

/// Whether the texts of a task can have changed; those of other records hang on more than their columns.
bool canHaveOtherTexts(const StoreChanges::Update &update)
{
    if (update.columns.none() || update.object->entity().name() != EntityTask::entityName)
        return true;
    return taskcolumns::concern(update, taskcolumns::FollowedBy::Search);
}

FetchRequest rowsOf(const QString &uri)
{
    return EntitySearchIndex::fetchRequest().where(Predicate::format("objectId = %@", uri));
}

/// Many records at a time cost one statement.
void deleteRowsOf(const std::vector<ObjectPtr> &objects)
{
    constexpr size_t atOnce = 500;
    std::vector<QString> uris;
    const auto deleteThem = [&uris] {
        if (!uris.empty())
            mainContext().deleteRows(
                EntitySearchIndex::fetchRequest().where(Predicate::format("objectId in %@", uris)));
        uris.clear();
    };
    for (const ObjectPtr &object : objects) {
        if (isIndexed(*object))
            uris.push_back(mainContext().uriOf(*object));
        if (uris.size() == atOnce)
            deleteThem();
    }
    deleteThem();
}

/// Adds the rows that a record lacks, and those that it should not have to `stale`.
void bringUpToDate(const ObjectPtr &object, std::vector<RowId> &stale)
{
    if (!object || !object->context() || !isIndexed(*object))
        return;
    const QString uri = object->uri();
    const QStringList texts = textsOf(*object);
    std::unordered_map<QString, int> missing;
    for (const QString &text : texts)
        ++missing[text];
    mainContext().visit(rowsOf(uri), {"string"}, [&](const RowReader &row) {
        const auto found = missing.find(row.text(0));
        if (found == missing.end() || found->second == 0)
            stale.push_back(row.rowId());
        else
            --found->second;
    });
    for (const QString &text : texts) {
        if (missing[text]-- > 0)
            SearchIndex::insertEntitySearchIndexString(text, uri);
    }
}

void takeOut(std::vector<RowId> stale)
{
    if (!stale.empty())
        mainContext().deleteRows(EntitySearchIndex::fetchRequest().among(std::move(stale)));
}

/// Records by their identifiers that were indexed before their commit.
struct IndexedAhead
{
    /// By a command that goes on.
    QSet<QString> now;
    /// Companies that were given the names of those among them that belong to them.
    QSet<QString> companies;
    /// By one whose commit failed: they wait for the next save, and may have changed by then.
    QSet<QString> doubtful;
};

IndexedAhead &indexedAhead()
{
    static IndexedAhead all;
    return all;
}

/// The target of a to-one relationship; nothing if there is none.
QString identifierIn(const Value &value)
{
    const auto *identifier = std::get_if<QString>(&value);
    return identifier ? *identifier : QString();
}

/// The companies of which nothing is new but people that were indexed ahead. To read all of a company's
/// people at each part of an import takes the longer the more there are.
QSet<QString> companiesUpToDate(const StoreChanges &changes)
{
    QSet<QString> companies = indexedAhead().companies;
    const bool isSomethingGone =
        !changes.deleted.empty() ||
        std::ranges::any_of(changes.updated, [](const StoreChanges::Update &update) {
            return update.columns.any() && update.object->entity().relationship("company");
        });
    if (companies.isEmpty() || isSomethingGone)
        return {};
    for (const ObjectPtr &object : changes.inserted) {
        if (object->entity().relationship("company") && !indexedAhead().now.contains(object->identifier()))
            companies.remove(identifierIn(object->valueForKey("company")));
    }
    return companies;
}

} // namespace

SearchIndex::Ahead::Ahead() = default;

SearchIndex::Ahead::~Ahead()
{
    indexedAhead().doubtful.unite(std::exchange(indexedAhead().now, {}));
    indexedAhead().companies.clear();
}

void SearchIndex::Ahead::add(const ObjectPtr &object)
{
    addIndexWithObject(object);
    indexedAhead().now.insert(object->identifier());
    const auto *contact = dynamic_cast<const EntityContacts *>(object.get());
    const CompanyPtr company = contact ? contact->company() : nullptr;
    // One that is new itself gets all of its texts at the commit.
    if (!company || company->isInserted())
        return;
    insertEntitySearchIndexString(contact->fullName(), company->uri());
    indexedAhead().companies.insert(company->identifier());
}

void SearchIndex::Ahead::committed()
{
    indexedAhead().now.clear();
    indexedAhead().companies.clear();
}

void SearchIndex::follow(const StoreChanges &changes)
{
    std::vector<RowId> stale;
    for (const ObjectPtr &object : changes.inserted) {
        if (indexedAhead().now.contains(object->identifier()))
            continue;
        if (indexedAhead().doubtful.contains(object->identifier()))
            bringUpToDate(object, stale);
        else
            addIndexWithObject(object);
    }
    deleteRowsOf(changes.deleted);
    // A record is looked at once: a second look would not see the rows that the first one adds.
    std::unordered_set<const ManagedObject *> seen;
    for (const ObjectPtr &object : changes.inserted)
        seen.insert(object.get());
    const QSet<QString> upToDate = companiesUpToDate(changes);
    for (const StoreChanges::Update &update : changes.updated) {
        if (update.columns.none() && upToDate.contains(update.object->identifier()))
            continue;
        const ObjectPtr record = canHaveOtherTexts(update) ? foundBy(update.object) : nullptr;
        if (record && seen.insert(record.get()).second)
            bringUpToDate(record, stale);
    }
    takeOut(std::move(stale));
}

void SearchIndex::insertEntitySearchIndexString(const QString &string, const QString &atObjectId)
{
    if (string.isEmpty())
        return;
    const auto row = mainContext().insert<EntitySearchIndex>();
    row->setString(string);
    row->setObjectId(atObjectId);
}

void SearchIndex::addIndexWithObject(const ObjectPtr &object)
{
    if (!object || !object->context() || !isIndexed(*object))
        return;
    const QString uri = object->uri();
    for (const QString &text : textsOf(*object))
        insertEntitySearchIndexString(text, uri);
}

void SearchIndex::deleteIndexWithObjects(const ObjectPtr &object)
{
    if (!object || !isIndexed(*object))
        return;
    mainContext().deleteRows(rowsOf(mainContext().uriOf(*object)));
}

void SearchIndex::updateIndexWithObject(const ObjectPtr &object)
{
    std::vector<RowId> stale;
    bringUpToDate(object, stale);
    takeOut(std::move(stale));
}
