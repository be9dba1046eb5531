#include "shell/MainMenu.h"

#include "foundation/Localization.h"
#include "records/HelpAddresses.h"
#include "workspace/PlatformConfiguration.h"

#include <QMenuBar>

using namespace Qt::Literals::StringLiterals;

const std::vector<MainMenu::Description> &MainMenu::menus()
{
    using enum ActionId;
    constexpr auto separator = std::nullopt;
    static const std::vector<Description> all = {
        {u"Morvane", {About, CheckUpdates, separator, ActionId::Preferences, Calendars, separator, Quit}},
        {u"File",
         {NewTask, AddInLine, separator, NewProject, NewContact, NewCompany, NewNote, separator, Save,
          separator, OpenMainWindow, CloseWindow, separator, Import, Export, Print}},
        {u"Edit",
         {Undo, Redo, separator, Cut, Copy, CopyTable, Paste, Duplicate, Delete, SelectAll, separator, Search,
          FilterTasks, ClearFilter, WhyIsItHere, ShowHistory}},
        {u"View", {ShowHome,    ShowProjects,   separator,     ShowPeople,     ShowCompanies,
                   ShowNotes,   separator,      ShowInbox,     ShowToday,      ShowScheduled,
                   ShowSomeday, ShowCategories, ShowDelegated, ShowWaitingFor, ShowNotDone,
                   ShowDone,    separator,      ShowCalendar,  separator,      FullScreen}},
        {u"Plan",
         {PlanToday, PlanTomorrow, PlanWeekend, PlanNextWeek, PlanSomeday, separator, PlanOtherDay},
         Search},
        {u"Calendar View",
         {CalendarToday, CalendarGoToDate, CalendarDay, CalendarWeek, CalendarMonth, CalendarNext,
          CalendarPrevious, separator, CalendarBirthdays},
         FullScreen},
        {u"Help",
         {UserGuide, HelpHere, KeyboardShortcuts, ShortcutsHere, separator, Feedback, HowTo, separator,
          Welcome}},
    };
    return all;
}

static void fillMenu(QMenu *menu, Actions &actions, const MainMenu::Description &description)
{
    for (const std::optional<ActionId> &entry : description.entries) {
        if (entry)
            menu->addAction(actions.action(*entry));
        else
            menu->addSeparator();
    }
    QObject::connect(menu, &QMenu::aboutToShow, &actions, &Actions::update);
}

/// A menu inside of the one that has a certain entry, above that entry.
static void insertInside(QMenuBar &menuBar, Actions &actions, const MainMenu::Description &description)
{
    QAction *const entry = actions.action(*description.before);
    for (QAction *title : menuBar.actions()) {
        if (!title->menu()->actions().contains(entry))
            continue;
        auto *inner = new QMenu(localized(QString::fromUtf16(description.title)), title->menu());
        fillMenu(inner, actions, description);
        title->menu()->insertMenu(entry, inner);
        title->menu()->insertSeparator(entry);
    }
}

/// What leads to pages of the web is there where somebody has set up such pages.
static void showConfigured(const Actions &actions)
{
    const bool hasFeed = !PlatformConfiguration().text(u"updateFeed"_s).isEmpty();
    actions.action(ActionId::CheckUpdates)->setVisible(hasFeed);
    actions.action(ActionId::HowTo)->setVisible(!HelpAddresses::videos().isEmpty());
}

void MainMenu::fill(QMenuBar &menuBar, Actions &actions)
{
    for (const Description &description : menus()) {
        const QString title = localized(QString::fromUtf16(description.title));
        if (description.before) {
            insertInside(menuBar, actions, description);
            continue;
        }
        // Alt with the first letter opens the menu.
        QMenu *menu = menuBar.addMenu(u'&' + title);
        fillMenu(menu, actions, description);
        QObject::connect(menu, &QMenu::aboutToShow, &actions, [&actions] { showConfigured(actions); });
    }
    QObject::connect(actions.action(ActionId::Menu), &QAction::triggered, &menuBar, [&menuBar] {
        menuBar.setFocus(Qt::MenuBarFocusReason);
        menuBar.setActiveAction(menuBar.actions().constFirst());
    });
}
