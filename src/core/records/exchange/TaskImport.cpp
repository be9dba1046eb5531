#include "records/exchange/TaskImport.h"

#include "calendarsync/CalendarEvent.h"
#include "calendarsync/RecordsTransaction.h"
#include "foundation/Localization.h"
#include "records/exchange/RecordImporter.h"
#include "records/exchange/TableImporter.h"
#include "store/queries/DBWorker.h"

#include <QIODevice>
#include <QUuid>

#include <memory>

using namespace Qt::Literals::StringLiterals;

namespace {

QString someTitles(const QStringList &titles)
{
    constexpr int most = 5;
    const QString some = titles.mid(0, most).join(u", "_s);
    return titles.size() > most ? localized(u"%1 and %2 more"_s).arg(some).arg(titles.size() - most) : some;
}

QString problemSentence(const CalendarFile::Problem &problem, const QString &name)
{
    switch (problem.fault) {
    case CalendarFile::Fault::CutOff:
        return localized(u"What begins in line %1 of \"%2\" is cut off."_s).arg(problem.line).arg(name);
    case CalendarFile::Fault::TooLarge:
        return localized(u"What begins in line %1 of \"%2\" is too large."_s).arg(problem.line).arg(name);
    case CalendarFile::Fault::Unreadable:
        break;
    }
    return localized(u"What begins in line %1 of \"%2\" cannot be read."_s).arg(problem.line).arg(name);
}

QString problemSentence(const RecordTable::Problem &problem, const QString &name)
{
    using Calendars = CalendarFile::Fault;
    const bool isCutOff = problem.fault == RecordTable::Fault::CutOff;
    return problemSentence(
        CalendarFile::Problem{isCutOff ? Calendars::CutOff : Calendars::TooLarge, problem.line}, name);
}

} // namespace

QString TaskImport::identifierOf(const QString &uid)
{
    // Made up once, for the names of this program alone.
    static const QUuid space(u"7d1f2c0e-52f5-4a5a-9f0c-3f0b6f6a2c11"_s);
    const QUuid itself(uid);
    if (!itself.isNull() && itself.toString(QUuid::WithoutBraces) == uid)
        return uid;
    return QUuid::createUuidV5(space, uid).toString(QUuid::WithoutBraces);
}

/// A calendar says so in its first line, whatever its name is.
static bool isCalendarText(QIODevice &device)
{
    constexpr qint64 begin = 200;
    return device.peek(begin).toUpper().contains("BEGIN:VCALENDAR");
}

void TaskImport::addFile(QIODevice &device, const QString &name)
{
    if (name.endsWith(u".csv"_s, Qt::CaseInsensitive) && !isCalendarText(device))
        return addTable(device, name);
    files.push_back({name, CalendarFile::read(device), {}});
    const CalendarFile &content = files.back().content;
    for (const CalendarFile::Problem &problem : content.problems())
        problems.append(problemSentence(problem, name));
    if (content.isTooLong())
        problems.append(localized(u"\"%1\" holds more than can be imported at once."_s).arg(name));
    if (!content.isCalendar())
        problems.append(localized(u"\"%1\" is no calendar file."_s).arg(name));
    else if (content.objects().empty() && content.problems().empty())
        problems.append(localized(u"There is no task in \"%1\"."_s).arg(name));
}

void TaskImport::addTable(QIODevice &device, const QString &name)
{
    files.push_back({name, {}, RecordTable::read(device)});
    const RecordTable &table = files.back().table;
    for (const RecordTable::Problem &problem : table.problems())
        problems.append(problemSentence(problem, name));
    if (table.isTooLong())
        problems.append(localized(u"\"%1\" holds more than can be imported at once."_s).arg(name));
    if (table.kind() == RecordTable::Kind::Other || table.kind() == RecordTable::Kind::People)
        problems.append(localized(u"\"%1\" is no table of tasks, projects or notes."_s).arg(name));
    else if (table.rows().empty() && table.problems().empty())
        problems.append(localized(u"There is no task in \"%1\"."_s).arg(name));
}

void TaskImport::addUnreadable(const QString &name, const QString &reason)
{
    problems.append(localized(u"\"%1\" cannot be read: %2."_s).arg(name, reason));
}

std::size_t TaskImport::count() const
{
    std::size_t all = 0;
    for (const File &file : files)
        all += file.content.objects().size() + file.table.rows().size();
    return all;
}

namespace {

/// Counts the records of an import and writes them in parts.
class ImportParts
{
public:
    ImportParts(RecordsTransaction &openTransaction, TaskImportAccount &importAccount,
                const StepBlock &stepBlock)
        : transaction(openTransaction)
        , account(importAccount)
        , step(stepBlock)
    {
        hold();
    }

    /// After each record. False once no more are wanted.
    bool next()
    {
        // To write so many is hardly felt.
        constexpr int recordsOfPart = 500;
        if (++waiting == recordsOfPart) {
            waiting = 0;
            transaction.settle();
            held.reset();
            account.isSaved = DBWorker::tellOfFailure(transaction.commitPart());
            hold();
        }
        account.wasStopped = account.isSaved && step && !step();
        return goesOn();
    }
    bool goesOn() const { return account.isSaved && !account.wasStopped; }
    void finish()
    {
        held.reset();
        if (account.isSaved)
            account.isSaved = DBWorker::tellOfFailure(transaction.commit());
    }

private:
    /// The calendars are read once for the records of a part.
    void hold()
    {
        if (CalendarEvent::hasAccesToCalendar())
            held = CalendarEvent::eventStore().holdContents();
    }

    RecordsTransaction &transaction;
    TaskImportAccount &account;
    const StepBlock &step;
    std::shared_ptr<void> held;
    int waiting = 0;
};

bool isProject(const CalendarFile::Object &object)
{
    const auto children = object.calendar.children();
    return !children.empty() && children.back()->line("X-MORVANE-KIND");
}

} // namespace

TaskImportAccount TaskImport::import(const StepBlock &step)
{
    RecordsTransaction transaction(u"Import Tasks"_s, ChangeAuthor::Import);
    RecordImporter importer(transaction);
    TaskImportAccount &account = importer.account;
    account.refused = problems;
    ImportParts parts(transaction, account, step);
    std::vector<std::unique_ptr<TableImporter>> tables;
    const auto take = [&](const File &file, bool areProjects) {
        for (const CalendarFile::Object &object : file.content.objects()) {
            if (isProject(object) != areProjects)
                continue;
            importer.take(object);
            if (!parts.next())
                return;
        }
        if ((file.table.kind() == RecordTable::Kind::Projects) != areProjects || file.table.rows().empty())
            return;
        account.unknownColumns.append(file.table.unknownTitles());
        tables.push_back(std::make_unique<TableImporter>(importer, file.table));
        for (const RecordTable::Row &row : file.table.rows()) {
            tables.back()->take(row);
            if (!parts.next())
                return;
        }
    };
    // Tasks name their projects.
    for (const bool areProjects : {true, false})
        for (const File &file : files)
            if (parts.goesOn())
                take(file, areProjects);
    importer.finish();
    parts.finish();
    for (const auto &table : tables)
        table->finish();
    return account;
}

QStringList TaskImportAccount::sentences() const
{
    QStringList all;
    all.append(added == 0 ? localized(u"Nothing new was imported."_s)
                          : localizedCount(u"%1 entries were imported."_s, added));
    if (same > 0)
        all.append(localizedCount(u"%1 were there already, just the same."_s, same));
    const auto tell = [&](const QStringList &titles, const QString &sentence) {
        if (!titles.isEmpty())
            all.append(localizedCount(sentence, titles.size()).arg(someTitles(titles)));
    };
    if (wasStopped)
        all.append(localized(u"The import was stopped; what it had done by then stays."_s));
    tell(changed, u"%1 were there and now say what the file says: %2."_s);
    tell(newerHere, u"%1 say something else here, and stay as they are: %2."_s);
    tell(partial, u"Of %1, not everything could be taken over: %2."_s);
    const auto list = [&](const QStringList &names, const QString &sentence) {
        if (!names.isEmpty())
            all.append(localized(sentence).arg(someTitles(names)));
    };
    list(unread, u"What is no date or number stands in notes: %1."_s);
    list(unknownColumns, u"Columns that mean nothing here stand in notes: %1."_s);
    list(otherCalendars, u"Calendars that are not here; what was in them goes to the usual one: %1."_s);
    list(missingTasks, u"Tasks of projects that are in no table that was imported: %1."_s);
    tell(refused, u"%1 could not be imported: %2"_s);
    return all;
}
