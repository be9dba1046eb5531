#include "shell/MainMenu.h"

#include "foundation/Localization.h"
#include "shell/Actions.h"

#include <QMenuBar>

#include <initializer_list>
#include <optional>

using namespace Qt::Literals::StringLiterals;

/// Nothing in place of a command is a separator.
using Entries = std::initializer_list<std::optional<ActionId>>;

static QMenu *fillMenu(QMenu *menu, Actions &actions, Entries entries)
{
    for (const std::optional<ActionId> &entry : entries) {
        if (entry)
            menu->addAction(actions.action(*entry));
        else
            menu->addSeparator();
    }
    QObject::connect(menu, &QMenu::aboutToShow, &actions, &Actions::update);
    return menu;
}

static QMenu *addMenu(QMenuBar &menuBar, Actions &actions, const QString &title, Entries entries)
{
    // Alt with the first letter opens the menu.
    return fillMenu(menuBar.addMenu(u'&' + localized(title)), actions, entries);
}

void MainMenu::fill(QMenuBar &menuBar, Actions &actions)
{
    constexpr auto separator = std::nullopt;
    addMenu(
        menuBar, actions, u"Morvane"_s,
        {ActionId::About, separator, ActionId::Preferences, ActionId::Calendars, separator, ActionId::Quit});
    addMenu(menuBar, actions, u"File"_s,
            {ActionId::NewTask, separator, ActionId::Save, separator, ActionId::OpenMainWindow,
             ActionId::CloseWindow, separator, ActionId::Export, ActionId::Print});
    addMenu(menuBar, actions, u"Edit"_s,
            {ActionId::Undo, ActionId::Redo, separator, ActionId::Cut, ActionId::Copy, ActionId::Paste,
             ActionId::Delete, ActionId::SelectAll, separator, ActionId::Search, ActionId::FilterTasks,
             ActionId::ClearFilter, ActionId::WhyIsItHere, ActionId::ShowHistory});
    QMenu *view = addMenu(menuBar, actions, u"View"_s,
                          {ActionId::ShowHome,
                           ActionId::ShowProjects,
                           separator,
                           ActionId::ShowPeople,
                           ActionId::ShowCompanies,
                           ActionId::ShowNotes,
                           separator,
                           ActionId::ShowInbox,
                           ActionId::ShowToday,
                           ActionId::ShowScheduled,
                           ActionId::ShowSomeday,
                           ActionId::ShowCategories,
                           ActionId::ShowDelegated,
                           ActionId::ShowWaitingFor,
                           ActionId::ShowNotDone,
                           ActionId::ShowDone,
                           separator,
                           ActionId::ShowCalendar,
                           separator,
                           ActionId::FullScreen});
    auto *calendar = new QMenu(localized(u"Calendar"_s), view);
    fillMenu(calendar, actions,
             {ActionId::CalendarToday, ActionId::CalendarGoToDate, ActionId::CalendarDay,
              ActionId::CalendarWeek, ActionId::CalendarMonth, ActionId::CalendarNext,
              ActionId::CalendarPrevious, std::nullopt, ActionId::CalendarBirthdays});
    view->insertMenu(actions.action(ActionId::FullScreen), calendar);
    view->insertSeparator(actions.action(ActionId::FullScreen));
}
