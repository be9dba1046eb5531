#include "shell/RestingScreen.h"

#include "foundation/Localization.h"
#include "widgets/EmptyState.h"

#include <QVBoxLayout>

using namespace Qt::Literals::StringLiterals;

namespace {

struct Resting
{
    QString icon;
    QString sentence;
};

Resting restingOf(SidebarItem item)
{
    switch (item) {
    case SidebarItem::Projects:
        return {u"project"_s, localized(u"Projects gather the tasks that belong together."_s)};
    case SidebarItem::People:
        return {u"people"_s, localized(u"The people you work and live with."_s)};
    case SidebarItem::Companies:
        return {u"company"_s, localized(u"Companies and the people who work there."_s)};
    case SidebarItem::ContactGroup:
        return {u"group"_s, localized(u"The people of this group."_s)};
    case SidebarItem::Calendar:
        return {u"calendar"_s, localized(u"Your days, weeks and months."_s)};
    default:
        return {u"home"_s, localized(u"Welcome. Choose a list, or add a new task."_s)};
    }
}

} // namespace

RestingScreen::RestingScreen(const QString &title, SidebarItem item, QWidget *parent)
    : TabsViewController(title, parent)
{
    const Resting resting = restingOf(item);
    auto *column = new QVBoxLayout(this);
    column->addWidget(new EmptyState(resting.icon, resting.sentence));
    addButton(ToolBarButton::NewTask);
    if (item == SidebarItem::Home || item == SidebarItem::Calendar)
        addButton(ToolBarButton::Calendars);
}
