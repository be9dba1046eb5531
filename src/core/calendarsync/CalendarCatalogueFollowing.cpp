#include "calendarsync/CalendarCatalogue.h"
#include "calendarsync/CalendarOutbox.h"
#include "calendarsync/CalendarReferences.h"
#include "calendarsync/CalendarStoreState.h"
#include "calendarsync/EventStoreAccess.h"
#include "calendarsync/PassBrake.h"
#include "foundation/Log.h"
#include "foundation/UserDefaults.h"
#include "store/entities/MainContext.h"
#include "store/queries/DBWorker.h"
#include "store/state/CoreContext.h"
#include "store/state/SettingsKeys.h"

#include <QStringList>
#include <QVariantMap>

#include <algorithm>

// Following calendars that were renamed or removed.

namespace {

using calendarstore::separator;
using calendarstore::state;

const EKCalendar *find(const std::vector<EKCalendar> &calendars, const QString &identifier)
{
    const auto found = std::find_if(calendars.begin(), calendars.end(), [&](const EKCalendar &one) {
        return one.calendarIdentifier == identifier;
    });
    return found == calendars.end() ? nullptr : &*found;
}

std::vector<TaskPtr> rowsOf(const QString &reference)
{
    std::vector<TaskPtr> rows;
    for (const TaskPtr &row : mainContext().fetch<EntityTask>(
             EntityTask::fetchRequest().where(Predicate::format("typeCalendarID == %@", reference)))) {
        if (row)
            rows.push_back(row);
    }
    return rows;
}

/// Puts a reference in the place of another one in the settings; an empty one takes it out.
void replaceInSettings(const QString &former, const QString &present)
{
    UserDefaults &defaults = UserDefaults::standard();
    for (const QString &key :
         {settings::savedChooseCalendars, settings::defaultCalendar, settings::ownCalendarIdentifier}) {
        QStringList references = defaults.string(key).split(separator);
        if (!references.contains(former))
            continue;
        references.removeAll(present);
        references.replace(references.indexOf(former), present);
        references.removeAll(QString());
        if (references.isEmpty() && key != settings::savedChooseCalendars)
            defaults.removeObject(key);
        else
            defaults.setObject(key, references.join(separator));
    }
}

void followRenames(const std::vector<EKCalendar> &calendars, const QVariantMap &formerTitles)
{
    for (const auto &[former, present] : calendarreferences::follow(calendars)) {
        for (const TaskPtr &row : rowsOf(former))
            row->setTypeCalendarID(present);
        replaceInSettings(former, present);
    }
    for (const EKCalendar &one : calendars) {
        const QString reference = CalendarCatalogue::identifierOfCalendar(one);
        // An undo can have brought rows back that name it as it was then.
        for (const QString &former : calendarreferences::formerOf(one.calendarIdentifier)) {
            for (const TaskPtr &row : rowsOf(former)) {
                row->setTypeCalendarID(reference);
                row->setCalendarTitle(one.title);
            }
        }
        if (formerTitles.value(one.calendarIdentifier, one.title).toString() == one.title)
            continue;
        for (const TaskPtr &row : rowsOf(reference))
            row->setCalendarTitle(one.title);
    }
}

/// Whether the tasks of a calendar that has gone may go.
bool mayRemoveTasksOf(const QString &identifier, const QString &reference)
{
    return passbrake::mayDeleteRowsOfCalendar(
        identifier, rowsOf(reference).size(),
        static_cast<size_t>(
            mainContext()
                .fetch<EntityTask>(EntityTask::fetchRequest().where(Predicate::format("calendarID != nil")))
                .size()));
}

QStringList namesElsewhere(const QStringList &references)
{
    QStringList names;
    std::ranges::transform(references, std::back_inserter(names), calendarreferences::nameElsewhere);
    return names;
}

/// Whether another device still has a calendar that has gone here: its account was given up on this computer
/// alone. The rows with all that is the user's are that one's too, so that they stay until it is gone there.
bool isStillElsewhere(const QStringList &references)
{
    return CoreContext::current().isCalendarElsewhere(namesElsewhere(references));
}

/// What becomes of the tasks of calendars that have gone since their titles were last written down. Gives
/// those whose tasks are kept, by identifier: it is asked about them again.
QVariantMap followRemovals(const std::vector<EKCalendar> &calendars, const QVariantMap &known)
{
    QVariantMap missed;
    for (auto entry = known.begin(); entry != known.end(); ++entry) {
        const QString formerTitle = entry.value().toString();
        // Tasks without a calendar have an empty title there.
        if (entry.key().isEmpty() || formerTitle.isEmpty() || find(calendars, entry.key()))
            continue;
        EKCalendar gone;
        gone.calendarIdentifier = entry.key();
        gone.title = formerTitle;
        const QString reference = CalendarCatalogue::identifierOfCalendar(gone);
        const QStringList references = QStringList(reference) + calendarreferences::formerOf(entry.key());
        if (isStillElsewhere(references) || !mayRemoveTasksOf(entry.key(), reference)) {
            missed.insert(entry.key(), formerTitle);
            continue;
        }
        CalendarOutbox::forgetCalendar(mainContext(), entry.key());
        CoreContext::current().answerForCalendars(namesElsewhere(references));
        for (const QString &own : references)
            DBWorker::removeAllTasksByCalendarIdentifier(own);
        replaceInSettings(reference, QString());
    }
    return missed;
}

/// The calendars that came after a missing one of their title, each with the identifier of that. An account
/// that is set up again, and a home that moves to another computer, have the same calendars under other
/// identifiers.
QVariantMap followSuccessors(const std::vector<EKCalendar> &calendars, const QVariantMap &missed,
                             const QVariantMap &known)
{
    UserDefaults &defaults = UserDefaults::standard();
    const QVariantMap former = defaults.object(settings::calendarSuccessors).toMap();
    QVariantMap successors;
    for (const EKCalendar &one : calendars) {
        const QString &identifier = one.calendarIdentifier;
        const QStringList missedOfTitle = missed.keys(one.title);
        if (missed.contains(former.value(identifier).toString()))
            successors.insert(identifier, former.value(identifier));
        else if (!known.contains(identifier) && missedOfTitle.size() == 1)
            successors.insert(identifier, missedOfTitle.front());
    }
    defaults.setObject(settings::calendarSuccessors, successors);
    return successors;
}

/// The only calendar that came after a missing one takes its place once the user has chosen it.
void replaceMissed(const std::vector<EKCalendar> &calendars, const QVariantMap &known, QVariantMap &missed)
{
    const QVariantMap successors = followSuccessors(calendars, missed, known);
    for (const EKCalendar &one : CalendarCatalogue::getAllModifiedCalendarsFromCalendars(
             CalendarCatalogue::getAllAccessCalendars())) {
        const QVariant gone = successors.value(one.calendarIdentifier);
        if (!gone.isValid() || successors.keys(gone).size() != 1)
            continue;
        const QString own = CalendarCatalogue::identifierOfCalendar(one);
        calendarreferences::handOver(gone.toString(), one.calendarIdentifier);
        replaceInSettings(own, CalendarCatalogue::identifierOfCalendar(one));
        missed.remove(gone.toString());
    }
}

/// Former versions followed a rename in the title of a row alone, not in the name that the row has for its
/// calendar. Such rows are on no list; once, the title says whose they are.
void findLostTasks(const std::vector<EKCalendar> &calendars)
{
    UserDefaults &defaults = UserDefaults::standard();
    const QString yes = QStringLiteral("YES");
    if (calendars.empty() || defaults.string(settings::lostNamesAreFound) == yes)
        return;
    for (const TaskPtr &row : mainContext().fetch<EntityTask>(
             EntityTask::fetchRequest().where(Predicate::format("typeCalendarID != nil")))) {
        if (!row || row->typeCalendarID().isEmpty() ||
            !calendarreferences::identifierOf(row->typeCalendarID()).isEmpty())
            continue;
        const QString title = row->calendarTitle();
        const auto isMeant = [&title](const EKCalendar &one) { return one.title == title; };
        if (std::ranges::count_if(calendars, isMeant) == 1)
            row->setTypeCalendarID(
                CalendarCatalogue::identifierOfCalendar(*std::ranges::find_if(calendars, isMeant)));
    }
    defaults.setObject(settings::lostNamesAreFound, yes);
}

} // namespace

void CalendarCatalogue::handleChangedCalendars()
{
    // What the sample says of calendars is made up, and the user's own tasks cannot be followed from there.
    if (DBWorker::isSample() || !EventStoreAccess::hasAccesToCalendar())
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
    const std::vector<EKCalendar> calendars = getAllCalendars();
    QVariantMap titles = followRemovals(calendars, formerTitles);
    replaceMissed(calendars, formerTitles, titles);
    for (const EKCalendar &one : calendars)
        titles.insert(one.calendarIdentifier, one.title);
    calendarreferences::forgetOthersThan(titles.keys());
    followRenames(calendars, formerTitles);
    findLostTasks(calendars);
    defaults.setObject(settings::dictionaryCalendarsData, titles);
    DBWorker::tellOfFailure(following.commit());
    defaults.synchronize();
}
