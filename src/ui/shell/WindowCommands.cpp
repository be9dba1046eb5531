#include "shell/WindowCommands.h"

#include "records/RecordWindow.h"
#include "shell/MainMenu.h"
#include "shell/MainWindow.h"
#include "shell/Shortcuts.h"
#include "shell/help/HelpWindow.h"

#include <QAction>
#include <QApplication>
#include <QEvent>
#include <QMessageBox>
#include <QPrintPreviewDialog>

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr std::array inAllWindows = {
    ActionId::NewTask,           ActionId::Search,        ActionId::OpenMainWindow,
    ActionId::CloseWindow,       ActionId::Preferences,   ActionId::HelpHere,
    ActionId::KeyboardShortcuts, ActionId::ShortcutsHere, ActionId::Quit};

/// The guide searches its own pages by the same keys.
bool hasOwnUseOf(ActionId id, const QWidget &window)
{
    return id == ActionId::Search && qobject_cast<const HelpWindow *>(&window);
}

const char *const equippedMark = "morvaneCommands";

bool isEquippable(const QWidget &window)
{
    const Qt::WindowType type = window.windowType();
    return (type == Qt::Window || type == Qt::Dialog) && !qobject_cast<const MainWindow *>(&window) &&
           !qobject_cast<const QMessageBox *>(&window);
}

} // namespace

WindowCommands::WindowCommands()
{
    qApp->installEventFilter(this);
}

bool WindowCommands::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::Show && watched->isWidgetType()) {
        auto &window = static_cast<QWidget &>(*watched);
        if (window.isWindow() && isEquippable(window) && !window.property(equippedMark).toBool())
            equip(window);
    }
    return false;
}

void WindowCommands::equip(QWidget &window)
{
    window.setProperty(equippedMark, true);
    for (const ActionId id : commandsOf(window)) {
        auto *action = new QAction(Actions::textOf(id), &window);
        action->setShortcut(Actions::shortcutOf(id));
        connect(action, &QAction::triggered, this, [this, id, &window] { run(id, window); });
        window.addAction(action);
    }
}

std::vector<ActionId> WindowCommands::everywhere()
{
    return {inAllWindows.begin(), inAllWindows.end()};
}

std::vector<ActionId> WindowCommands::commandsOf(const QWidget &window)
{
    std::vector<ActionId> all;
    if (!qobject_cast<const MainWindow *>(&window)) {
        if (dynamic_cast<const RecordWindow *>(&window))
            all.push_back(ActionId::Save);
        std::ranges::copy_if(inAllWindows, std::back_inserter(all),
                             [&window](ActionId id) { return !hasOwnUseOf(id, window); });
        return all;
    }
    for (const MainMenu::Description &menu : MainMenu::menus()) {
        for (const std::optional<ActionId> &entry : menu.entries) {
            if (entry)
                all.push_back(*entry);
        }
    }
    all.push_back(ActionId::Menu);
    return all;
}

void WindowCommands::run(ActionId id, QWidget &window)
{
    if (id == ActionId::CloseWindow) {
        window.close();
    } else if (id == ActionId::Save) {
        if (auto *record = dynamic_cast<RecordWindow *>(&window))
            record->clickButtonSave();
    } else if (id == ActionId::ShortcutsHere) {
        ShortcutsOverlay::toggle(window, Shortcuts::linesOf(commandsOf(window)));
    } else if (const auto command = runs.value(id)) {
        command();
    }
}
