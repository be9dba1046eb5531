#include "shell/ShortcutTips.h"

#include "shell/Actions.h"
#include "widgets/ToolBarButton.h"

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

QString tipOf(ActionId command)
{
    return u"%1 (%2)"_s.arg(Actions::textOf(command),
                            Actions::shortcutOf(command).toString(QKeySequence::NativeText));
}

} // namespace

void ShortcutTips::put(const QWidget &part)
{
    for (const Control &control : controls) {
        for (QWidget *widget : part.findChildren<QWidget *>(control.name.toString()))
            widget->setToolTip(tipOf(control.command));
    }
    // The button that adds has the command only where it adds tasks.
    for (auto *button : part.findChildren<ToolBarButton *>(u"buttonAdd"_s)) {
        if (button->actionType() == ToolBarButton::NewTask)
            button->setToolTip(tipOf(ActionId::NewTask));
    }
}
