#pragma once

#include "eventkit/EKEvent.h"
#include "foundation/Error.h"
#include "objectstore/ObjectList.h"
#include "objectstore/Predicate.h"
#include "objectstore/SortDescriptor.h"
#include "store/entities/Entities.h"
#include "store/queries/TaskRows.h"

#include <QVariantMap>

#include <set>

class HomeRows;

/// The saved filter of one list, as it stands in the defaults.
using FilterEntry = QVariantMap;

/// By what a task list is grouped. Any other number gives an empty list.
enum class Grouping { None = -1, Category = 0, Project = 1, Priority = 2 };

/// The two numbers beside a sidebar row; the left one counts what is overdue.
struct Badge
{
    int left = 0;
    int right = 0;
    bool operator==(const Badge &) const = default;
};

/// The badges of the task rows of the sidebar.
struct TaskBadges
{
    Badge inbox, today, scheduled, someday, categories, delegated, notDone, done;
    bool operator==(const TaskBadges &) const = default;
};

/// One of the counts that the badges are made of, along a range of an index. Several add up to one number.
struct BadgePart
{
    Badge TaskBadges::*badge;
    int Badge::*number;
    FetchRequest request;

    int &of(TaskBadges &badges) const { return badges.*badge.*number; }
};

/// Some days in a row, told by a moment of the first and of the last one.
struct DaySpan
{
    Date first;
    Date last;
};

/// The query layer: every list on the screen is one of its fetches. Stateless; main thread only.
///
/// Lists of tasks leave out what lies on calendars that the user cannot see, except in the sample store. A
/// fetch that fails is an empty list, with a line in the log.
class DBWorker
{
public:
    DBWorker() = delete;

    // The store.
    /// Whether the sample store is in use.
    static bool isSample();
    /// Saves the main context. Gives the error of the save, or nothing; it stands in the log, too.
    [[nodiscard]] static OptionalError saveContext();
    /// What a save follows from: a command of the user, or what the program does by itself.
    enum class Occasion { Command, Program };
    /// Saves the main context. If that does not reach the disk, the user is told; the changes wait for the
    /// next save. Each command tells it once, what the program does by itself only if it was not told since
    /// the last save that succeeded. Whether it was saved.
    static bool saveOrTell(Occasion occasion = Occasion::Command);
    /// The same for what the user did, by the English name of the undo step.
    static bool saveStep(const QString &name);
    /// The same for the result of a commit of the open transaction, whose author tells the occasion.
    static bool tellOfFailure(const OptionalError &error);
    /// The permanent URI of an object, or an empty text for null.
    static QString getIdFromObject(const ObjectPtr &object);
    /// The object of a URI, or null if there is none (any more).
    static ObjectPtr getObjectFromId(const QString &uri);

    // Task lists. A filter may be null.
    static TaskList allInboxTasks(const FilterEntry *filter = nullptr);
    static TaskList allTodayTasks(const FilterEntry *filter = nullptr);
    static TaskList allScheduledTasks(const FilterEntry *filter = nullptr);
    static TaskList allSomedayTasks(const FilterEntry *filter = nullptr);
    static TaskList allNotDoneTasks(const FilterEntry *filter = nullptr);
    /// Done tasks by the day on which they were done, the oldest day first; nothing at all if there are none.
    static std::optional<TaskRows> allDoneTasks();
    /// All open tasks under the contact they are delegated to, those without one last.
    static TaskRows allTasksWithDelegates();

    // Grouped task lists.
    static TaskRows allTodayTasksGrouped(Grouping grouping);
    static TaskRows allScheduledTasksGrouped(Grouping grouping);
    static TaskRows allSomedayTasksGrouped(Grouping grouping);
    static TaskRows allNotDoneTasksGrouped(Grouping grouping);
    static TaskRows allDoneTasksGrouped(Grouping grouping);

    // Other fetches of tasks.
    static TaskList allTasks();
    static TaskList getAllTasks();
    static TaskList allDoneTasksNoGroup();
    static TaskList allTasksWithDelegatesNoGroup();
    static TaskList allTasksWithCategoryNoGroup();
    static TaskList getTasksWithoutCategories();
    static TaskList tasksHaveReminder();
    static TaskList getAllTasksWithAlert();
    static TaskPtr getFirstTaskByTitle(const QString &title);
    static TaskList getSampleNotDoneTask();
    static TaskList getAllTaskWithType(TaskType type, Date atDay, bool includeDoneTasks);
    static TaskList allDelayTasks();

    // What the calendars show. Done tasks are included unless it says otherwise.
    /// The ToDos that have the day among theirs, by title from the last to the first.
    static TaskList calendarDayAllDayTasks(Date date);
    /// The ToDos that have one of some days among theirs, each once, in the same order.
    static TaskList calendarAllDayTasks(Date firstDay, int days);
    /// The Appointments, mails and calls due on a day, in no order of dates.
    static TaskList calendarDayOtherTasks(Date date);
    /// The same of each of some days that follow one another.
    static std::vector<TaskList> calendarOtherTasks(Date firstDay, int days);
    /// What `calendarDayOtherTasks` gives, for the search for collisions.
    static TaskList getTimeItemsForDate(Date date);
    /// What some days of a month show, the longest task first and those without a start last: open ToDos that
    /// overlap the days and open Appointments that lie inside of them, unless they are for some day, and
    /// every mail and call that is due on them.
    static TaskList calendarMonthTasks(Date startDate, Date endDate);
    /// The same of each of several spans, which reads the tasks once.
    static std::vector<TaskList> calendarMonthTasks(const std::vector<DaySpan> &spans);

    // What Home shows. Either is never empty: without a task or project it is the one row that says so.
    /// The open tasks that were due before today, the longest overdue first, without headers. A ToDo without
    /// a start date is not among them.
    static HomeRows getOverdueBlockData();
    /// Today and the six days that follow by 24 hours each, under their headers where they show something:
    /// projects that begin or end there by title, then tasks by time. Done tasks stay on their days.
    static HomeRows getWeekBlockData();

    // Tasks and the calendars.
    /// The row of an event: of its title or identifier, not done, and at its times within a minute.
    static TaskPtr getTaskByEvent(const EKEvent &event);
    /// Visible rows of one identifier, or of any, by start.
    static TaskList getAllTasksWithCalendarID(const std::optional<QString> &calendarID);
    static TaskList getAllTasksWithOnlyCalendarIDs();
    /// In spite of its name: those that do lie on a calendar.
    static TaskList getAllTasksWithTypeCalendarIDIsNil();
    static TaskList getAllTasksWithCalendarTitle(const QString &title);
    /// Groups of one identifier, each by start. A dated row without an identifier is a group of its own.
    static std::vector<std::vector<TaskPtr>>
    getTasksGroupedCalendarIDfromTasks(const std::vector<TaskPtr> &tasks);
    /// With access to calendars only those that may be changed.
    static std::vector<TaskPtr> getAllModifyTasksFromTasks(const std::vector<TaskPtr> &tasks);
    /// Deletes the rows of a calendar whose events the store no longer has, and saves. Rows that were no
    /// events there stay, on no calendar.
    static void removeAllTasksByCalendarIdentifier(const QString &identifier);
    /// Unlinks all rows from the calendars; of a series one row stays.
    static void setNilForCalendarIDTasks();
    static ObjectList<EntityLocation> getLocationsByLatitude(double latitude, double andLongitude,
                                                             const QString &andTitle);

    // Other entities.
    enum CategoryKind { WithTasks = 0, WithoutTasks = 1, EveryKind = -1 };
    static std::vector<CategoryPtr> allCategories(int kind = EveryKind);
    static ObjectList<EntityContactCategory> allContactCategories(int kind = EveryKind);
    static bool categoryExists(const QString &title);
    static std::vector<ContactPtr> allDelegateds(const FilterEntry *filter = nullptr);
    static ObjectList<EntityContacts> selectContactsWithPredicates(const std::vector<Predicate> &predicates);
    static ObjectList<EntityContactGroup> allContactPrivateGroup();
    static ObjectList<EntityContactGroup> allContactPrivateList();
    static ObjectList<EntityContacts> allContactWithImageName(const QString &name);
    static ObjectList<EntityCompany> allCompany();
    static ObjectList<EntityNote> allNote();
    static ObjectList<EntityLocation> allLocations();
    static ObjectList<EntityProject> allProjects();
    static ObjectList<EntityURLType> allURLType();
    static ObjectList<EntityPhoneType> allPhoneType();
    static ObjectList<EntityAddressType> allAddressType();
    static ObjectList<EntityEmailType> allEmailType();
    static ObjectListBase allEntityWithName(const std::string &entity, const std::string &sort);
    static std::vector<ProjectPtr> allProjectsSortDueDate(const FilterEntry *filter = nullptr);
    /// The index rows whose text contains a text, case and diacritics ignored.
    static ObjectList<EntitySearchIndex> searchEntityWithString(const QString &text);
    /// The records that those rows stand for, and who has a telephone number with the digits of one that is
    /// looked for; each as often as it is found.
    static std::vector<QString> searchObjectIdsWithString(const QString &text);
    /// Nothing for an empty entity name.
    static std::optional<ObjectListBase> getAllObjectsOFEntity(const std::string &entity,
                                                               const SortDescriptors &usingSortDescriptors,
                                                               const std::vector<Predicate> &andPredicates);

    /// The location of that title; null if there is none.
    static std::shared_ptr<EntityLocation> locationOf(const QString &title);

    // Writers.
    /// The location of that title; a new one with these coordinates, absent if nobody knows them, only if
    /// there is none yet.
    static std::shared_ptr<EntityLocation> saveLocation(const QString &title, std::optional<double> latitude,
                                                        std::optional<double> longitude);
    /// Deletes all index rows and saves.
    static void allSearchObjRemove();

    // The order of the Inbox.
    static int maxPositionTaskInbox();
    /// Parts tasks of the Inbox that have one position, on every device alike; those behind them move on as
    /// far as they must. Saves nothing.
    static void makePositionsDistinct();
    /// Moves the tasks at some rows of the list on the screen to the place of the task at `toIndex` (one past
    /// the end means the last), renumbers the whole Inbox from 1, and saves.
    static void newPositionInboxTask(const std::set<int> &rows, int toIndex,
                                     const std::vector<TaskPtr> &currentTasks);

    // Counts.
    /// The number on the badge of the program: open tasks whose moment (a ToDo's day) has passed.
    static int countStaleTasks();
    /// All badges of the sidebar's task rows.
    static TaskBadges taskBadges();
    /// What they count at this moment; `BackgroundBadges` counts it on another thread.
    static std::vector<BadgePart> badgeParts();

    /// Takes out the tasks on calendars that the user cannot see.
    static std::vector<TaskPtr> hideNotAccessTasksFromArray(std::vector<TaskPtr> tasks);

    // Orders. Each leaves what it calls equal in the order in which it came.
    static std::vector<TaskPtr> sortToday(std::vector<TaskPtr> tasks);
    static std::vector<TaskPtr> dueDateArrayComparator(std::vector<TaskPtr> tasks);
    static std::vector<TaskPtr> sortNotDone(std::vector<TaskPtr> tasks);
    static std::vector<TaskPtr> dueDateWithSomedayArrayComparator(std::vector<TaskPtr> tasks);
    static std::vector<TaskPtr> sortScheduled(std::vector<TaskPtr> tasks);
    static std::vector<ProjectPtr> sortProjects(std::vector<ProjectPtr> projects);
    static std::vector<ContactPtr> sortContacta(std::vector<ContactPtr> contacts);

    // Saved filters.
    /// The conditions that an entry puts on a task; none for null or an entry that is off.
    static std::vector<Predicate> predicateTasks(const FilterEntry *filter);
    static std::vector<Predicate> predicateProjects(const FilterEntry *filter);
    static std::vector<Predicate> predicateContacts(const FilterEntry *filter);
    /// The place of the first dictionary whose "Key" is the given one, or -1.
    static int indexObject(const QString &key, const QVariantList &array);
};
