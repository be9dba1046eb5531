#include "records/RecordRemoval.h"

#include "calendarsync/RecordsTransaction.h"
#include "foundation/Localization.h"
#include "records/Categories.h"
#include "records/ProjectManager.h"
#include "store/entities/MainContext.h"
#include "store/queries/DBWorker.h"

#include <algorithm>
#include <map>
#include <set>

using namespace Qt::Literals::StringLiterals;

namespace {

/// The key of how many there are of one kind; empty for kinds that are counted as items.
QString countOf(std::string_view entity)
{
    static const std::map<std::string_view, QString> counts = {{EntityTask::entityName, u"%1 tasks"_s},
                                                               {EntityProject::entityName, u"%1 projects"_s},
                                                               {EntityContacts::entityName, u"%1 people"_s},
                                                               {EntityCompany::entityName, u"%1 companies"_s},
                                                               {EntityNote::entityName, u"%1 notes"_s}};
    const auto count = counts.find(entity);
    return count == counts.end() ? u"%1 items"_s : count->second;
}

QString countInWords(const std::vector<ObjectPtr> &records)
{
    const auto isOfOneKind = [&records](const ObjectPtr &record) {
        return record->entity().name() == records.front()->entity().name();
    };
    const QString key =
        std::ranges::all_of(records, isOfOneKind) ? countOf(records.front()->entity().name()) : u"%1 items"_s;
    return localizedCount(key, static_cast<qint64>(records.size()));
}

} // namespace

QString RecordRemoval::titleOf(const ObjectPtr &record)
{
    constexpr int longest = 60;
    QString title;
    const auto take = [&title](const auto &titled) {
        if (titled)
            title = titled->title();
    };
    if (const auto contact = std::dynamic_pointer_cast<EntityContacts>(record))
        title = contact->fullName();
    take(std::dynamic_pointer_cast<EntityTask>(record));
    if (const auto project = std::dynamic_pointer_cast<EntityProject>(record))
        title = ProjectManager::shownTitle(*project);
    take(std::dynamic_pointer_cast<EntityCompany>(record));
    take(std::dynamic_pointer_cast<EntityNote>(record));
    if (const auto category = std::dynamic_pointer_cast<EntityCategory>(record))
        title = Categories::shownTitle(category);
    take(std::dynamic_pointer_cast<EntityLocation>(record));
    take(std::dynamic_pointer_cast<EntityContactGroup>(record));
    title = title.simplified();
    return title.size() > longest ? title.first(longest - 1) + u'…' : title;
}

QString RecordRemoval::inWords(const std::vector<ObjectPtr> &records)
{
    constexpr size_t mostTitles = 3;
    if (records.empty())
        return {};
    QStringList titles;
    for (const ObjectPtr &record : records) {
        if (const QString title = titleOf(record); !title.isEmpty() && titles.size() < qsizetype(mostTitles))
            titles << u"“%1”"_s.arg(title);
    }
    if (records.size() == 1 && !titles.isEmpty())
        return titles.front();
    QString some = titles.join(u", "_s);
    const auto left = static_cast<qsizetype>(records.size()) - titles.size();
    if (left > 0 && !some.isEmpty())
        some = localized(u"%1 and %2 more"_s).arg(some).arg(left);
    return some.isEmpty() ? countInWords(records) : countInWords(records) + u": "_s + some;
}

/// What was linked to the records that go, and does not go with them: tasks of projects and people, people of
/// companies.
static QString whatStays(const std::vector<ObjectPtr> &records)
{
    const std::set<ObjectPtr> gone(records.begin(), records.end());
    const auto countStaying = [&gone](const auto &linked) {
        return std::ranges::count_if(linked, [&gone](const auto &one) { return !gone.contains(one); });
    };
    qint64 ofProjects = 0;
    qint64 ofPeople = 0;
    qint64 employees = 0;
    qint64 ofCompanies = 0;
    for (const ObjectPtr &record : records) {
        if (const auto project = std::dynamic_pointer_cast<EntityProject>(record))
            ofProjects += countStaying(project->task());
        else if (const auto person = std::dynamic_pointer_cast<EntityContacts>(record))
            ofPeople += countStaying(person->task());
        else if (const auto company = std::dynamic_pointer_cast<EntityCompany>(record)) {
            employees += countStaying(company->contact());
            ofCompanies += countStaying(company->task());
        }
    }
    QString lines;
    const auto tell = [&lines](qint64 count, const QString &sentence) {
        if (count > 0)
            lines += u'\n' + localizedCount(sentence, count);
    };
    tell(ofProjects, u"%1 tasks stay, without a project."_s);
    tell(ofPeople, u"%1 tasks stay, without a delegate."_s);
    tell(ofCompanies, u"%1 tasks stay, without a company."_s);
    tell(employees, u"%1 people stay, without a company."_s);
    return lines;
}

bool RecordRemoval::isWanted(const std::vector<ObjectPtr> &records)
{
    const QString message = records.size() == 1 ? u"Are you sure you want to delete the selected item?"_s
                                                : u"Are you sure you want to delete the selected items?"_s;
    return Alert::run({.message = localized(message),
                       .informativeText = inWords(records) + whatStays(records),
                       .buttons = {localized(u"Delete"_s), localized(u"Cancel"_s)},
                       .takingAway = {0}}) == Alert::firstButton;
}

void RecordRemoval::remove(const std::vector<ObjectPtr> &records, const std::function<void()> &removed,
                           const StepBlock &step)
{
    if (!isWanted(records))
        return;
    RecordsTransaction transaction(u"Delete"_s);
    for (const ObjectPtr &record : records) {
        // It may have gone while the user was asked.
        if (!record->isDeleted() && record->context())
            mainContext().deleteObject(record);
        if (step && !step())
            break;
    }
    DBWorker::tellOfFailure(transaction.commit());
    removed();
}
