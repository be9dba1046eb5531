#include "shell/ShortcutTips.h"

#include "calendarviews/DaysControllerButton.h"
#include "shell/Actions.h"
#include "widgets/KeyTip.h"
#include "widgets/MVSegmentView.h"
#include "widgets/ToolBarButton.h"

#include <map>

using namespace Qt::Literals::StringLiterals;

namespace {

struct Control
{
    QStringView name;
    ActionId command;
};

constexpr std::array controls = {
    Control{u"buttonFilter", ActionId::FilterTasks},  Control{u"cancelFilterView", ActionId::ClearFilter},
    Control{u"buttonCalendars", ActionId::Calendars}, Control{u"captureField", ActionId::AddInLine},
    Control{u"searchField", ActionId::Search},
};

/// A control of parts, each with a command.
struct PartedControl
{
    QStringView name;
    std::array<ActionId, 3> commands;
};

constexpr PartedControl calendarKinds{
    u"calendarSegment", {ActionId::CalendarDay, ActionId::CalendarWeek, ActionId::CalendarMonth}};
constexpr PartedControl calendarPages{
    u"daysCalendarController", {ActionId::CalendarPrevious, ActionId::CalendarToday, ActionId::CalendarNext}};

QString tipOf(ActionId command)
{
    return keytip::of(Actions::textOf(command), Actions::shortcutOf(command));
}

template <typename Control>
void putOnParts(const QWidget &part, const PartedControl &control)
{
    QStringList tips;
    for (const ActionId command : control.commands)
        tips << tipOf(command);
    for (auto *widget : part.findChildren<Control *>(control.name.toString()))
        widget->setPartTips(tips);
}

} // namespace

void ShortcutTips::put(const QWidget &part)
{
    for (const Control &control : controls) {
        for (QWidget *widget : part.findChildren<QWidget *>(control.name.toString()))
            widget->setToolTip(tipOf(control.command));
    }
    // Each list adds its own kind.
    static const std::map<ToolBarButton::ActionType, ActionId> additions = {
        {ToolBarButton::NewTask, ActionId::NewTask},       {ToolBarButton::NewProject, ActionId::NewProject},
        {ToolBarButton::NewContact, ActionId::NewContact}, {ToolBarButton::NewCompany, ActionId::NewCompany},
        {ToolBarButton::NewNote, ActionId::NewNote},
    };
    for (auto *button : part.findChildren<ToolBarButton *>(u"buttonAdd"_s)) {
        const auto command = additions.find(button->actionType());
        if (command != additions.end())
            button->setToolTip(tipOf(command->second));
    }
    putOnParts<MVSegmentView>(part, calendarKinds);
    putOnParts<DaysControllerButton>(part, calendarPages);
}
