#include "shell/help/HelpPages.h"

#include "foundation/Clock.h"
#include "foundation/Localization.h"
#include "records/dates/MTDates.h"
#include "store/AppDelegate.h"
#include "store/entities/Entities.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QHash>
#include <QRegularExpression>
#include <QTextDocumentFragment>

using namespace Qt::Literals::StringLiterals;

namespace {

QString linkBack()
{
    return u"<p><a href=\"%1\">%2</a></p>"_s.arg(HelpPages::contents,
                                                 localized(u"Contents"_s).toHtmlEscaped());
}

/// What stands in double braces is what the program says itself: commands are named as the menus name them.
QString withWordsOfProgram(const QString &page)
{
    static const QRegularExpression word(u"\\{\\{(.+?)\\}\\}"_s);
    QString told;
    qsizetype place = 0;
    for (auto found = word.globalMatch(page); found.hasNext();) {
        const QRegularExpressionMatch match = found.next();
        told += page.mid(place, match.capturedStart() - place) + localized(match.captured(1)).toHtmlEscaped();
        place = match.capturedEnd();
    }
    return told + page.mid(place);
}

std::function<QString()> &shortcutsSource()
{
    static std::function<QString()> source;
    return source;
}

} // namespace

void HelpPages::setShortcuts(std::function<QString()> page)
{
    shortcutsSource() = std::move(page);
}

QString HelpPages::ofRecords(std::string_view entity)
{
    if (entity == EntityTask::entityName)
        return u"tasks.html"_s;
    if (entity == EntityProject::entityName)
        return u"projects.html"_s;
    if (entity == EntityContacts::entityName || entity == EntityCompany::entityName)
        return u"people.html"_s;
    return entity == EntityNote::entityName ? u"notes.html"_s : contents;
}

QString HelpPages::ofWindow(const QString &name)
{
    static const QHash<QString, QString> pages = {{u"DevicesWindow"_s, u"devices.html"_s},
                                                  {u"ImportContactWindow"_s, u"people.html"_s},
                                                  {u"CallSheetWindow"_s, u"people.html"_s},
                                                  {u"WindowAddContactsGroup"_s, u"people.html"_s},
                                                  {u"AddCurrentTasksWindow"_s, u"projects.html"_s},
                                                  {u"RepeatWindow"_s, u"tasks.html"_s},
                                                  {u"CalendarsAppleWindow"_s, u"calendars.html"_s},
                                                  {u"PreferencesWindow"_s, u"calendars.html"_s},
                                                  {u"GoToDateWindowController"_s, u"calendar.html"_s},
                                                  {u"HistoryWindow"_s, u"undo.html"_s},
                                                  {u"StartWindow"_s, u"start.html"_s}};
    return pages.value(name, contents);
}

QString HelpPages::folder()
{
    const QString all =
        QDir::cleanPath(QCoreApplication::applicationDirPath() + u"/" MORVANE_RESOURCES u"/help"_s);
    const QString own = all + u'/' + languageOfWords();
    return QFile::exists(own + u'/' + contents) ? own : all + u"/en"_s;
}

QStringList HelpPages::names()
{
    static const QRegularExpression link(u"<li><a href=\"([a-z]+\\.html)\""_s);
    QStringList all = {contents};
    auto found = link.globalMatch(html(contents));
    while (found.hasNext())
        all.append(found.next().captured(1));
    return all;
}

QString HelpPages::html(const QString &name)
{
    if (name == shortcuts && shortcutsSource())
        return linkBack() + shortcutsSource()();
    QFile file(folder() + u'/' + name);
    if (name.contains(u'/') || !file.open(QIODevice::ReadOnly))
        return linkBack() + u"<p>%1</p>"_s.arg(localized(u"There is no such page."_s).toHtmlEscaped());
    return withWordsOfProgram(QString::fromUtf8(file.readAll()))
        .replace(u"#*VERSION*#"_s, AppDelegate::version())
        .replace(u"#*CURRENT_YEAR*#"_s, QString::number(MTDates::year(Clock::now())));
}

QString HelpPages::words(const QString &name)
{
    return QTextDocumentFragment::fromHtml(html(name)).toPlainText();
}
