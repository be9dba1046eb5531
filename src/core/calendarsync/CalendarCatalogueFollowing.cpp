#include "calendarsync/CalendarCatalogue.h"
#include "calendarsync/CalendarOutbox.h"
#include "calendarsync/CalendarStoreState.h"
#include "calendarsync/EventStoreAccess.h"
#include "calendarsync/PassBrake.h"
#include "foundation/Log.h"
#include "foundation/UserDefaults.h"
#include "store/entities/MainContext.h"
#include "store/queries/DBWorker.h"
#include "store/state/SettingsKeys.h"

#include <QStringList>
#include <QVariantMap>

#include <algorithm>
#include <map>

// Following calendars that were renamed or removed, and keeping the titles of writable ones apart.

namespace {

using calendarstore::isCloud;
using calendarstore::separator;
using calendarstore::state;

std::map<QString, int> countOfTitles(const std::vector<EKCalendar> &calendars)
{
    std::map<QString, int> counts;
    for (const EKCalendar &one : calendars)
        ++counts[one.title];
    return counts;
}

bool isBirthdaysOfExchange(const EKCalendar &calendar)
{
    return calendar.source.sourceType == EKSourceType::Exchange &&
           calendar.title == QStringLiteral("Birthdays");
}

void saveTitle(EKCalendar calendar, const QString &title)
{
    calendar.title = title;
    if (const auto error = EventStoreAccess::eventStore().saveCalendar(calendar, true))
        Log::line(error->message);
    state().calendars.reset();
}

/// A task names its calendar by title, so that no two writable ones may share it.
void keepTitlesApart()
{
    const std::vector<EKCalendar> calendars = CalendarCatalogue::getAllCalendars();
    std::map<QString, int> counts = countOfTitles(calendars);
    int number = 0;
    for (const EKCalendar &one : calendars) {
        if (counts[one.title] < 2 || !one.allowsContentModifications || isBirthdaysOfExchange(one))
            continue;
        if (one.source.sourceType == EKSourceType::Local || isCloud(one.source)) {
            saveTitle(one, one.title + QString::number(++number));
            counts = countOfTitles(CalendarCatalogue::getAllCalendars());
        } else {
            saveTitle(one, QStringLiteral("%1 (%2)").arg(one.title, one.source.title));
        }
    }
}

const EKCalendar *find(const std::vector<EKCalendar> &calendars, const QString &identifier)
{
    const auto found = std::find_if(calendars.begin(), calendars.end(), [&](const EKCalendar &one) {
        return one.calendarIdentifier == identifier;
    });
    return found == calendars.end() ? nullptr : &*found;
}

void followRename(const QString &formerTitle, const QString &title)
{
    for (const TaskPtr &task : DBWorker::getAllTasksWithCalendarTitle(formerTitle)) {
        if (task)
            task->setCalendarTitle(title);
    }
    UserDefaults &defaults = UserDefaults::standard();
    if (defaults.string(settings::defaultCalendar) == formerTitle)
        defaults.setObject(settings::defaultCalendar, title);
}

/// Whether the tasks of a calendar that has gone may go.
bool mayRemoveTasksOf(const QString &formerTitle)
{
    const auto countOf = [](const Predicate &predicate) {
        return static_cast<size_t>(
            mainContext().fetch<EntityTask>(EntityTask::fetchRequest().where(predicate)).size());
    };
    return passbrake::mayDeleteRowsOfCalendar(countOf(Predicate::format("typeCalendarID == %@", formerTitle)),
                                              countOf(Predicate::format("calendarID != nil")));
}

/// What became of the calendars since their titles were last written down.
struct Followed
{
    bool isChanged = false;
    /// Gone, but the user keeps their tasks; by identifier.
    QVariantMap missed;
};

Followed followCalendars(const std::vector<EKCalendar> &calendars, const QVariantMap &known)
{
    Followed followed;
    for (auto entry = known.begin(); entry != known.end(); ++entry) {
        const QString formerTitle = entry.value().toString();
        // Tasks without a calendar have an empty title there.
        if (entry.key().isEmpty() || formerTitle.isEmpty())
            continue;
        const EKCalendar *calendar = find(calendars, entry.key());
        if (!calendar && !mayRemoveTasksOf(formerTitle)) {
            followed.missed.insert(entry.key(), formerTitle);
        } else if (!calendar) {
            CalendarOutbox::forgetCalendar(mainContext(), entry.key());
            DBWorker::removeAllTasksByCalendarIdentifier(formerTitle);
            followed.isChanged = true;
        } else if (!calendar->title.isEmpty() && calendar->title != formerTitle) {
            followRename(formerTitle, calendar->title);
            followed.isChanged = true;
        }
    }
    return followed;
}

/// Of a renamed calendar the former name stands in the old text.
void rebuildChosen(const std::vector<EKCalendar> &calendars, const QVariantMap &formerTitles,
                   const QVariantMap &missed)
{
    UserDefaults &defaults = UserDefaults::standard();
    const QString former = defaults.string(settings::savedChooseCalendars);
    const QStringList formerReferences = former.split(separator);
    QStringList chosen;
    for (const EKCalendar &one : calendars) {
        const QString reference = CalendarCatalogue::identifierOfCalendar(one);
        const QString formerTitle = formerTitles.value(one.calendarIdentifier).toString();
        EKCalendar before = one;
        before.title = formerTitle;
        const bool wasChosen = !formerTitle.isEmpty() &&
                               formerReferences.contains(CalendarCatalogue::identifierOfCalendar(before));
        if (former.contains(reference) || wasChosen)
            chosen.append(reference);
    }
    for (const QVariant &title : missed) {
        if (formerReferences.contains(title.toString()))
            chosen.append(title.toString());
    }
    defaults.setObject(settings::savedChooseCalendars, chosen.join(separator));
}

} // namespace

void CalendarCatalogue::handleChangedCalendars()
{
    if (!EventStoreAccess::hasAccesToCalendar())
        return;
    // Calendars that cannot be asked for were not removed.
    state().calendars.reset();
    const auto reached = EventStoreAccess::eventStore().calendarsForEntityType(EKEntityType::Event);
    if (!reached)
        return Log::line(reached.error().message);
    UserDefaults &defaults = UserDefaults::standard();
    const QVariantMap formerTitles = defaults.object(settings::dictionaryCalendarsData).toMap();
    if (reached.value().empty() && !formerTitles.isEmpty())
        return Log::line(QStringLiteral("All calendars are gone; their tasks are kept."));
    // What other programs did is no step of the user.
    Transaction following(mainContext(), ChangeAuthor::Program);
    keepTitlesApart();
    const std::vector<EKCalendar> calendars = getAllCalendars();
    const Followed followed = followCalendars(calendars, formerTitles);
    QVariantMap titles = followed.missed;
    for (const EKCalendar &one : calendars)
        titles.insert(one.calendarIdentifier, one.title);
    defaults.setObject(settings::dictionaryCalendarsData, titles);
    if (followed.isChanged)
        rebuildChosen(calendars, formerTitles, followed.missed);
    DBWorker::tellOfFailure(following.commit());
    defaults.synchronize();
}
