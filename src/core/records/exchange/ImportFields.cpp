#include "records/exchange/ImportFields.h"

#include "calendarsync/CalendarEvent.h"
#include "eventkit/EKRecurrenceRule.h"
#include "foundation/Localization.h"
#include "records/Categories.h"
#include "records/Functional.h"
#include "records/TaskManager.h"
#include "records/dates/MTDates.h"
#include "records/exchange/PersonName.h"
#include "records/exchange/TableWords.h"
#include "store/entities/MainContext.h"
#include "store/queries/DBWorker.h"

#include <algorithm>
#include <set>

using namespace Qt::Literals::StringLiterals;

namespace {

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

} // namespace

CategoryPtr importfields::categoryNamed(const QString &title)
{
    return tablewords::namedAmong(DBWorker::allCategories(), title);
}

bool importfields::isSameRule(const QString &one, const QString &other)
{
    auto rule = EKRecurrenceRule::recurrenceRuleFromString(one);
    auto otherRule = EKRecurrenceRule::recurrenceRuleFromString(other);
    for (auto *each : {&rule, &otherRule})
        if (*each)
            (*each)->setRecurrenceEnd(std::nullopt);
    return one.isEmpty() == other.isEmpty() && rule == otherRule;
}

bool importfields::fitsInto(const EntityProject &project, OptionalDate start, OptionalDate due)
{
    const OptionalDate end =
        project.dueDate() ? OptionalDate(MTDates::endOfCurrentDay(*project.dueDate())) : std::nullopt;
    return Functional::dateValidationsMainStartDate(project.startDate(), end, start, due) == 0;
}

void importfields::fillCategoryAndTags(MVTask &copy, const ImportedTask &task)
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

CompanyPtr importfields::companyTitled(const QString &title)
{
    return titledOrNew<EntityCompany>(title);
}

void importfields::fillWords(MVTask &copy, const ImportedTask &task)
{
    copy.title = task.title.isEmpty() ? localized(u"No Title"_s) : task.title;
    copy.details = task.details;
    copy.priority = task.priority;
    copy.status = task.status;
    copy.location = placeNamed(task.place, task.position);
    copy.company = companyTitled(task.company);
    copy.delegateToUser = task.contactWords.isEmpty() ? personname::foundOrMade(task.person)
                                                      : personname::found(task.contactWords);
    const QString words = localized(u"Contacts"_s) + u": "_s + task.contactWords;
    if (!copy.delegateToUser && !task.contactWords.isEmpty() && !copy.details.contains(words))
        copy.details += (copy.details.isEmpty() ? u""_s : u"\n"_s) + words;
    fillCategoryAndTags(copy, task);
}

void importfields::fillDates(MVTask &copy, const ImportedTask &task)
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
        return place < task.alerts.size() ? task.alerts[place] : std::nullopt;
    };
    copy.alert = alertAt(0);
    copy.secondAlert = alertAt(1);
}

void importfields::fillRule(MVTask &copy, const ImportedTask &task)
{
    if (!isSameRule(copy.repeat, task.rule))
        copy.repeat = task.rule;
    copy.endRepeat = task.ruleEnd;
}

bool importfields::fillCalendar(MVTask &copy, const ImportedTask &task)
{
    if (task.calendar.isEmpty() || !CalendarEvent::hasAccesToCalendar())
        return true;
    const auto calendars = CalendarEvent::getAllAccessCalendars();
    const auto named = std::ranges::find_if(calendars, [&task](const EKCalendar &one) {
        return one.title == task.calendar && one.allowsContentModifications;
    });
    if (named == calendars.end())
        return false;
    copy.typeCalendarID = CalendarEvent::identifierOfCalendar(*named);
    TaskManager::takeValues(copy, *named);
    return true;
}

bool importfields::isOther(const MVTask &copy)
{
    const auto setOf = [](const auto &tags) {
        return std::set<std::shared_ptr<EntityTags>>(tags.begin(), tags.end());
    };
    return copy.isChangedTask() || setOf(copy.tags) != setOf(copy.task()->tags());
}

OptionalDate importfields::baseDateOf(const EntityTask &row)
{
    return row.type() == TaskType::EmailCall || !row.startDate() ? row.dueDate() : row.startDate();
}
