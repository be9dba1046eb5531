#pragma once

#include "shell/SidebarItem.h"

#include <QAction>
#include <QHash>
#include <QObject>

#include <functional>
#include <optional>
#include <span>

/// Every command of the program. Menus, shortcuts and tests look them up here.
enum class ActionId {
    NewTask,
    AddInLine,
    NewProject,
    NewContact,
    NewCompany,
    NewNote,
    Save,
    OpenMainWindow,
    Calendars,
    Preferences,
    Print,
    Import,
    Export,
    CloseWindow,
    Quit,
    Undo,
    Redo,
    Cut,
    Copy,
    CopyTable,
    Paste,
    Search,
    FilterTasks,
    ClearFilter,
    WhyIsItHere,
    ShowHistory,
    Delete,
    SelectAll,
    Duplicate,
    PlanToday,
    PlanTomorrow,
    PlanWeekend,
    PlanNextWeek,
    PlanSomeday,
    PlanOtherDay,
    ShowHome,
    ShowInbox,
    ShowToday,
    ShowScheduled,
    ShowSomeday,
    ShowCategories,
    ShowDelegated,
    ShowNotDone,
    ShowDone,
    ShowProjects,
    ShowPeople,
    ShowCompanies,
    ShowCalendar,
    ShowNotes,
    ShowWaitingFor,
    CalendarToday,
    CalendarGoToDate,
    CalendarBirthdays,
    CalendarDay,
    CalendarWeek,
    CalendarMonth,
    CalendarNext,
    CalendarPrevious,
    FullScreen,
    Menu,
    About,
    CheckUpdates,
    Welcome,
    HelpHere,
    UserGuide,
    KeyboardShortcuts,
    ShortcutsHere,
    Feedback,
    HowTo,
};

/// A row of the table of commands.
struct ActionDescription
{
    ActionId id;
    const char16_t *name;
    const char16_t *text;
    /// In portable form; empty for none.
    const char16_t *shortcut;
    /// The list that it shows; absent for what shows none.
    std::optional<SidebarItem> list = {};
};

class Actions : public QObject
{
    Q_OBJECT
public:
    explicit Actions(QObject *parent = nullptr);

    static std::span<const ActionDescription> table();
    static const ActionDescription &describe(ActionId id);
    /// The text of a command in the user's language.
    static QString textOf(ActionId id);
    /// Its keys, empty for none.
    static QKeySequence shortcutOf(ActionId id);

    QAction *action(ActionId id) const { return actions.value(id); }
    QList<QAction *> all() const { return actions.values(); }
    /// Says what a command does and when it can be given; without a rule it always can.
    void bind(ActionId id, const std::function<void()> &run, std::function<bool()> isPossible = {});
    /// Has the text of a command go on with what it would act on, for example the step that is taken back;
    /// an empty answer leaves the text as it is.
    void nameObject(ActionId id, std::function<QString()> object);
    /// Asks the rules again, and what the commands would act on.
    void update();
    /// From here on nothing is asked of commands: what could answer is about to go.
    void forgetRules();
    /// The user did in another way what a command does.
    void noteUse(ActionId id) { Q_EMIT used(id); }

Q_SIGNALS:
    /// A command was given, or done in another way.
    void used(ActionId id);

private:
    QHash<ActionId, QAction *> actions;
    QHash<ActionId, std::function<bool()>> rules;
    QHash<ActionId, std::function<QString()>> objects;
};
