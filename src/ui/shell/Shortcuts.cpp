#include "shell/Shortcuts.h"

#include "foundation/Localization.h"
#include "shell/MainMenu.h"

using namespace Qt::Literals::StringLiterals;

static QString rowsOf(const MainMenu::Description &menu)
{
    QString rows;
    for (const std::optional<ActionId> &entry : menu.entries) {
        const QKeySequence keys = entry ? Actions::shortcutOf(*entry) : QKeySequence();
        if (!keys.isEmpty())
            rows += u"<tr><td width=\"60%\">%1</td><td><b>%2</b></td></tr>"_s.arg(
                Actions::textOf(*entry).toHtmlEscaped(),
                keys.toString(QKeySequence::NativeText).toHtmlEscaped());
    }
    return rows;
}

QString Shortcuts::page()
{
    QString page = u"<h1>%1</h1><p>%2</p>"_s.arg(
        localized(u"Keyboard Shortcuts"_s).toHtmlEscaped(),
        localized(u"These keys work in the main window; those for help, closing, "
                  "saving and quitting work in every window."_s)
            .toHtmlEscaped());
    for (const MainMenu::Description &menu : MainMenu::menus()) {
        const QString rows = rowsOf(menu);
        if (!rows.isEmpty())
            page += u"<h2>%1</h2><table width=\"100%\" cellpadding=\"4\">%2</table>"_s.arg(
                localized(QString::fromUtf16(menu.title)).toHtmlEscaped(), rows);
    }
    return page +
           u"<table width=\"100%\" cellpadding=\"4\"><tr><td width=\"60%\">%1</td><td><b>%2</b></td></tr>"
           "</table>"_s.arg(Actions::textOf(ActionId::Menu).toHtmlEscaped(),
                            Actions::shortcutOf(ActionId::Menu).toString(QKeySequence::NativeText));
}

std::vector<ShortcutsOverlay::Line> Shortcuts::linesOf(const std::vector<ActionId> &commands)
{
    std::vector<ShortcutsOverlay::Line> lines;
    for (const ActionId id : commands) {
        const QString keys = Actions::shortcutOf(id).toString(QKeySequence::NativeText);
        if (!keys.isEmpty())
            lines.push_back({Actions::textOf(id), keys});
    }
    return lines;
}
