#include "shell/Actions.h"

#include "foundation/Localization.h"
#include "shell/tasks/TaskPopupMenu.h"

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

constexpr std::array actionTable = {
    ActionDescription{ActionId::NewTask, u"actionNewTask", u"New Task", u"Ctrl+N"},
    ActionDescription{ActionId::AddInLine, u"actionAddInLine", u"Add a Task in a Line", u"Ctrl+L"},
    ActionDescription{ActionId::NewProject, u"actionNewProject", u"New Project", u"Ctrl+Alt+1"},
    ActionDescription{ActionId::NewContact, u"actionNewContact", u"New Contact", u"Ctrl+Alt+2"},
    ActionDescription{ActionId::NewCompany, u"actionNewCompany", u"New Company", u"Ctrl+Alt+3"},
    ActionDescription{ActionId::NewNote, u"actionNewNote", u"New Note", u"Ctrl+Alt+4"},
    ActionDescription{ActionId::Save, u"actionSave", u"Save", u"Ctrl+S"},
    ActionDescription{ActionId::OpenMainWindow, u"actionOpenMainWindow", u"Open Main Window",
                      u"Ctrl+Shift+N"},
    ActionDescription{ActionId::Calendars, u"actionCalendars", u"Calendars…", u"Ctrl+Shift+C"},
    ActionDescription{ActionId::Preferences, u"actionPreferences", u"Preferences", u"Ctrl+,"},
    ActionDescription{ActionId::CloseWindow, u"actionClose", u"Close", u"Ctrl+W"},
    ActionDescription{ActionId::Print, u"actionPrint", u"Print...", u"Ctrl+P"},
    ActionDescription{ActionId::Import, u"actionImport", u"Import…", u"Ctrl+Shift+I"},
    ActionDescription{ActionId::Export, u"actionExport", u"Export…", u"Ctrl+Shift+E"},
    ActionDescription{ActionId::Quit, u"actionQuit", u"Quit", u"Ctrl+Q"},
    ActionDescription{ActionId::Undo, u"actionUndo", u"Undo", u"Ctrl+Z"},
    ActionDescription{ActionId::Redo, u"actionRedo", u"Redo", u"Ctrl+Shift+Z"},
    ActionDescription{ActionId::Cut, u"actionCut", u"Cut", u"Ctrl+X"},
    ActionDescription{ActionId::Copy, u"actionCopy", u"Copy", u"Ctrl+C"},
    ActionDescription{ActionId::CopyTable, u"actionCopyTable", u"Copy as Table", u"Ctrl+Alt+C"},
    ActionDescription{ActionId::Paste, u"actionPaste", u"Paste", u"Ctrl+V"},
    ActionDescription{ActionId::Delete, u"actionDelete", u"Delete", u"Del"},
    ActionDescription{ActionId::SelectAll, u"actionSelectAll", u"Select All", u"Ctrl+A"},
    ActionDescription{ActionId::Duplicate, u"actionDuplicate", u"Duplicate", taskkeys::duplicate},
    ActionDescription{ActionId::PlanToday, u"actionPlanToday", u"Plan for Today", taskkeys::plan[0]},
    ActionDescription{ActionId::PlanTomorrow, u"actionPlanTomorrow", u"Plan for Tomorrow", taskkeys::plan[1]},
    ActionDescription{ActionId::PlanWeekend, u"actionPlanWeekend", u"Plan for the Weekend",
                      taskkeys::plan[2]},
    ActionDescription{ActionId::PlanNextWeek, u"actionPlanNextWeek", u"Plan for Next Week",
                      taskkeys::plan[3]},
    ActionDescription{ActionId::PlanSomeday, u"actionPlanSomeday", u"Put Off for Some Day",
                      taskkeys::plan[4]},
    ActionDescription{ActionId::PlanOtherDay, u"actionPlanOtherDay", u"Plan for Another Day…",
                      taskkeys::planOnOther},
    ActionDescription{ActionId::Search, u"actionSearch", u"Search Morvane", u"Ctrl+F"},
    ActionDescription{ActionId::FilterTasks, u"actionFilterTasks", u"Filter…", u"Ctrl+Shift+F"},
    ActionDescription{ActionId::ClearFilter, u"actionClearFilter", u"Clear filter", u"Ctrl+Shift+Backspace"},
    ActionDescription{ActionId::WhyIsItHere, u"actionWhyIsItHere", u"Why Is It Here?", u"Ctrl+I"},
    ActionDescription{ActionId::ShowHistory, u"actionShowHistory", u"History", u"Ctrl+Shift+H"},
    ActionDescription{ActionId::ShowHome, u"actionShowHome", u"Home", u"Ctrl+1", SidebarItem::Home},
    ActionDescription{ActionId::ShowInbox, u"actionShowInbox", u"Inbox", u"Ctrl+2", SidebarItem::Inbox},
    ActionDescription{ActionId::ShowToday, u"actionShowToday", u"Today", u"Ctrl+3", SidebarItem::Today},
    ActionDescription{ActionId::ShowScheduled, u"actionShowScheduled", u"Scheduled", u"Ctrl+4",
                      SidebarItem::Scheduled},
    ActionDescription{ActionId::ShowSomeday, u"actionShowSomeday", u"Someday", u"Ctrl+5",
                      SidebarItem::Someday},
    ActionDescription{ActionId::ShowCategories, u"actionShowCategories", u"Categories", u"Ctrl+6",
                      SidebarItem::Categories},
    ActionDescription{ActionId::ShowDelegated, u"actionShowDelegated", u"Delegated", u"Ctrl+7",
                      SidebarItem::Delegated},
    ActionDescription{ActionId::ShowNotDone, u"actionShowNotDone", u"Not Done", u"Ctrl+8",
                      SidebarItem::NotDone},
    ActionDescription{ActionId::ShowDone, u"actionShowDone", u"Done", u"Ctrl+9", SidebarItem::Done},
    ActionDescription{ActionId::ShowProjects, u"actionShowProjects", u"Projects", u"Ctrl+Shift+1",
                      SidebarItem::Projects},
    ActionDescription{ActionId::ShowPeople, u"actionShowPeople", u"People", u"Ctrl+Shift+2",
                      SidebarItem::People},
    ActionDescription{ActionId::ShowCompanies, u"actionShowCompanies", u"Companies", u"Ctrl+Shift+3",
                      SidebarItem::Companies},
    ActionDescription{ActionId::ShowCalendar, u"actionShowCalendar", u"Calendar", u"Ctrl+0",
                      SidebarItem::Calendar},
    ActionDescription{ActionId::ShowNotes, u"actionShowNotes", u"Notes", u"Ctrl+Shift+4", SidebarItem::Notes},
    ActionDescription{ActionId::ShowWaitingFor, u"actionShowWaitingFor", u"Waiting For", u"Ctrl+Shift+8",
                      SidebarItem::WaitingFor},
    ActionDescription{ActionId::CalendarToday, u"actionCalendarToday", u"Today", u"Ctrl+T"},
    ActionDescription{ActionId::CalendarGoToDate, u"actionCalendarGoToDate", u"Go To Date", u"Ctrl+Shift+T"},
    ActionDescription{ActionId::CalendarBirthdays, u"actionCalendarBirthdays", u"Hide Birthdays",
                      u"Ctrl+Shift+B"},
    ActionDescription{ActionId::CalendarDay, u"actionCalendarDay", u"Day", u"Ctrl+Shift+5"},
    ActionDescription{ActionId::CalendarWeek, u"actionCalendarWeek", u"Week", u"Ctrl+Shift+6"},
    ActionDescription{ActionId::CalendarMonth, u"actionCalendarMonth", u"Month", u"Ctrl+Shift+7"},
    ActionDescription{ActionId::CalendarNext, u"actionCalendarNext", u"Next", u"Ctrl+Shift+PgDown"},
    ActionDescription{ActionId::CalendarPrevious, u"actionCalendarPrevious", u"Previous", u"Ctrl+Shift+PgUp"},
    ActionDescription{ActionId::FullScreen, u"actionFullScreen", u"Enter Full Screen", u"F11"},
    ActionDescription{ActionId::Menu, u"actionMenu", u"Open the Menu", u"F10"},
    ActionDescription{ActionId::About, u"actionAbout", u"About Morvane", u""},
    ActionDescription{ActionId::CheckUpdates, u"actionCheckUpdates", u"Check for Updates...", u""},
    ActionDescription{ActionId::Welcome, u"actionWelcome", u"Welcome to Morvane", u""},
    ActionDescription{ActionId::HelpHere, u"actionHelpHere", u"Help on This Screen", u"F1"},
    ActionDescription{ActionId::UserGuide, u"actionUserGuide", u"User Guide", u""},
    ActionDescription{ActionId::KeyboardShortcuts, u"actionKeyboardShortcuts", u"Keyboard Shortcuts",
                      u"Shift+F1"},
    ActionDescription{ActionId::ShortcutsHere, u"actionShortcutsHere", u"Shortcuts of This Window",
                      u"Ctrl+F1"},
    ActionDescription{ActionId::Feedback, u"actionFeedback", u"Feedback", u""},
    ActionDescription{ActionId::HowTo, u"actionHowTo", u"How-To videos", u""},
};

std::span<const ActionDescription> Actions::table()
{
    return actionTable;
}

const ActionDescription &Actions::describe(ActionId id)
{
    return *std::ranges::find(actionTable, id, &ActionDescription::id);
}

QString Actions::textOf(ActionId id)
{
    return localized(QString::fromUtf16(describe(id).text));
}

QKeySequence Actions::shortcutOf(ActionId id)
{
    return QKeySequence(QString::fromUtf16(describe(id).shortcut), QKeySequence::PortableText);
}

namespace {

/// What a command acts on, as its text goes on with it.
QString objectText(const QString &object)
{
    return object.isEmpty() ? QString() : u": "_s + QString(object).replace(u'&', u"&&"_s);
}

} // namespace

Actions::Actions(QObject *parent)
    : QObject(parent)
{
    for (const ActionDescription &description : actionTable) {
        auto *action = new QAction(textOf(description.id), this);
        action->setObjectName(QString::fromUtf16(description.name));
        action->setShortcut(shortcutOf(description.id));
        connect(action, &QAction::triggered, this, [this, id = description.id] { noteUse(id); });
        actions.insert(description.id, action);
    }
}

void Actions::bind(ActionId id, const std::function<void()> &run, std::function<bool()> isPossible)
{
    connect(action(id), &QAction::triggered, this, run);
    if (isPossible)
        rules.insert(id, std::move(isPossible));
}

void Actions::nameObject(ActionId id, std::function<QString()> object)
{
    objects.insert(id, std::move(object));
}

void Actions::update()
{
    for (auto rule = rules.cbegin(); rule != rules.cend(); ++rule)
        action(rule.key())->setEnabled(rule.value()());
    for (auto object = objects.cbegin(); object != objects.cend(); ++object)
        action(object.key())->setText(textOf(object.key()) + objectText(object.value()()));
}

void Actions::forgetRules()
{
    rules.clear();
    objects.clear();
}
