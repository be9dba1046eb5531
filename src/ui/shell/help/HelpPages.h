#pragma once

#include <QString>
#include <QStringList>

#include <functional>
#include <string_view>

/// The pages of the user guide: files in a folder for each language, "share/morvane/help/<language>" beside
/// the folder of the program, and the page of the shortcuts, which is made from the table of commands.
namespace HelpPages {

/// The first page of the guide, with its contents, and that of the shortcuts.
inline const QString contents = QStringLiteral("index.html");
inline const QString shortcuts = QStringLiteral("shortcuts.html");

/// Where the page of the shortcuts comes from, in HTML.
void setShortcuts(std::function<QString()> page);
/// The page about records of an entity; the first page for those that have none of their own.
QString ofRecords(std::string_view entity);
/// The page about a window that is none of a record, by the name that it has among the widgets.
QString ofWindow(const QString &name);
/// The folder in the user's language, or the English one.
QString folder();
/// The names of all pages, in the order in which the first one links them.
QStringList names();
/// The text of a page in HTML, with the version and the present year filled in; a page that says so for one
/// that there is not.
QString html(const QString &name);
/// The words of a page without markup.
QString words(const QString &name);

} // namespace HelpPages
