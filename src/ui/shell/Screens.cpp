#include "shell/Screens.h"

#include "filters/ContactGroups.h"
#include "foundation/Localization.h"
#include "records/RecordKind.h"
#include "records/RecordPane.h"
#include "shell/calendars/CalendarViewController.h"
#include "shell/categories/CategoriesViewController.h"
#include "shell/home/HomeTabViewController.h"
#include "shell/notes/NoteKind.h"
#include "shell/people/PeopleKinds.h"
#include "shell/people/WaitingForViewController.h"
#include "shell/projects/ProjectKind.h"
#include "shell/tasks/TaskScreens.h"

#include <array>

using namespace Qt::Literals::StringLiterals;

template <typename Screen>
static TabsViewController *makeNew()
{
    return new Screen;
}

static TabsViewController *makeHome()
{
    return new HomeTabViewController([](const ObjectPtr &project) -> DetailViewController * {
        return Screens::kindOf(EntityProject::entityName)->makePane(project);
    });
}

using Item = SidebarItem;

static const std::array screens = {
    ScreenDescription{Item::Home, u"Home", u"home", makeHome},
    ScreenDescription{Item::Projects, u"Projects", u"project", nullptr, EntityProject::entityName,
                      ProjectKind::description, ToolBarButton::NewProject},
    ScreenDescription{Item::Contacts, u"Contacts", u"contacts"},
    ScreenDescription{Item::Tasks, u"Tasks", u"tasks"},
    ScreenDescription{Item::Calendar, u"Calendar", u"calendar", makeNew<CalendarViewController>},
    ScreenDescription{Item::People, u"People", u"people", nullptr, EntityContacts::entityName,
                      PeopleKinds::contacts, ToolBarButton::NewContact},
    ScreenDescription{Item::Companies, u"Companies", u"company", nullptr, EntityCompany::entityName,
                      PeopleKinds::companies, ToolBarButton::NewCompany},
    ScreenDescription{Item::ContactGroup, u"", u"group"},
    ScreenDescription{Item::Inbox, u"Inbox", u"inbox", makeNew<InboxViewController>},
    ScreenDescription{Item::Today, u"Today", u"today", makeNew<TodayViewController>},
    ScreenDescription{Item::Scheduled, u"Scheduled", u"scheduled", makeNew<ScheduledViewController>},
    ScreenDescription{Item::Someday, u"Someday", u"tasks", makeNew<SomedayViewController>},
    ScreenDescription{Item::Categories, u"Categories", u"categories", makeNew<CategoriesViewController>},
    ScreenDescription{Item::Delegated, u"Delegated", u"delegated", makeNew<UserDelegateViewController>},
    ScreenDescription{Item::NotDone, u"Not Done", u"notdone", makeNew<NotDoneViewController>},
    ScreenDescription{Item::Done, u"Done", u"done", makeNew<DoneViewController>},
    ScreenDescription{Item::WaitingFor, u"Waiting For", u"delegated", makeNew<WaitingForViewController>},
    ScreenDescription{Item::Notes, u"Notes", u"note", nullptr, EntityNote::entityName, NoteKind::description,
                      ToolBarButton::NewNote},
};

const ScreenDescription &Screens::of(SidebarItem item)
{
    return *std::ranges::find(screens, item, &ScreenDescription::item);
}

const ScreenDescription *Screens::showing(std::string_view entity)
{
    const auto found = std::ranges::find(screens, entity, &ScreenDescription::shows);
    return entity.empty() || found == screens.end() ? nullptr : &*found;
}

static RecordKind described(const ScreenDescription &screen)
{
    RecordKind kind = screen.describe();
    kind.list.title = localized(QString::fromUtf16(screen.title));
    kind.list.icon = QString::fromUtf16(screen.icon);
    kind.list.entity = screen.shows;
    kind.list.addType = screen.adds;
    return kind;
}

TabsViewController *Screens::makeOfGroup(const std::shared_ptr<EntityContactGroup> &group)
{
    RecordKind people = described(of(Item::People));
    people.list.title = group->title();
    people.list.placeKey = group->identifier();
    people.list.icon = QString::fromUtf16(of(Item::ContactGroup).icon);
    const bool isGroup = ContactGroups::isGroup(*group);
    people.list.emptySentence =
        localized(isGroup ? u"Nobody is in this group yet."_s : u"Nobody is on this list."_s);
    people.list.firstTitle = localized(isGroup ? u"Edit contacts group"_s : u"Filter…"_s);
    return PeopleKinds::screenOfGroup(people, group);
}

TabsViewController *Screens::make(SidebarItem item)
{
    const ScreenDescription &screen = of(item);
    return screen.describe ? described(screen).makeScreen() : screen.make();
}

QList<ToolBarButton::ActionType> Screens::addable()
{
    QList<ToolBarButton::ActionType> types = {ToolBarButton::NewTask};
    for (const ScreenDescription &screen : screens) {
        if (screen.describe)
            types.append(screen.adds);
    }
    return types;
}

std::optional<RecordKind> Screens::kindAddedBy(ToolBarButton::ActionType type)
{
    const auto found = std::ranges::find_if(
        screens, [type](const ScreenDescription &screen) { return screen.describe && screen.adds == type; });
    return found == screens.end() ? std::nullopt : std::optional(described(*found));
}

std::optional<RecordKind> Screens::kindOf(std::string_view entity)
{
    const ScreenDescription *screen = showing(entity);
    return screen && screen->describe ? std::optional(described(*screen)) : std::nullopt;
}
