#include "shell/Shortcuts.h"

#include "foundation/Localization.h"
#include "shell/MainMenu.h"
#include "shell/WindowCommands.h"

using namespace Qt::Literals::StringLiterals;

static QString rowOf(ActionId id)
{
    const QKeySequence keys = Actions::shortcutOf(id);
    return keys.isEmpty() ? QString()
                          : u"<tr><td width=\"60%\">%1</td><td><b>%2</b></td></tr>"_s.arg(
                                Actions::textOf(id).toHtmlEscaped(),
                                keys.toString(QKeySequence::NativeText).toHtmlEscaped());
}

static QString tableOf(const QString &heading, const QString &rows)
{
    return rows.isEmpty() ? QString()
                          : u"<h2>%1</h2><table width=\"100%\" cellpadding=\"4\">%2</table>"_s.arg(
                                heading.toHtmlEscaped(), rows);
}

QString Shortcuts::page()
{
    QString page = u"<h1>%1</h1>"_s.arg(localized(u"Keyboard Shortcuts"_s).toHtmlEscaped());
    for (const MainMenu::Description &menu : MainMenu::menus()) {
        QString rows;
        for (const std::optional<ActionId> &entry : menu.entries)
            rows += entry ? rowOf(*entry) : QString();
        page += tableOf(localized(QString::fromUtf16(menu.title)), rows);
    }
    page += u"<table width=\"100%\" cellpadding=\"4\">%1</table>"_s.arg(rowOf(ActionId::Menu));
    QString everywhere;
    for (const ActionId id : WindowCommands::everywhere())
        everywhere += rowOf(id);
    return page + tableOf(localized(u"In every window"_s), everywhere) +
           tableOf(localized(u"Where something is edited"_s), rowOf(ActionId::Save));
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
