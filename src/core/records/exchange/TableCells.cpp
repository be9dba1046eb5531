#include "records/exchange/TableCells.h"

#include "eventkit/EKRecurrenceRule.h"
#include "foundation/Calendar.h"
#include "foundation/Localization.h"
#include "foundation/Region.h"
#include "records/Functional.h"
#include "records/dates/MTDates.h"
#include "records/exchange/ImportFields.h"
#include "records/exchange/TableWords.h"

#include <QDate>
#include <QLocale>
#include <QRegularExpression>

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace {

/// A vocabulary: for each number the words that mean it, in English.
using Words = std::vector<std::vector<const char16_t *>>;

const Words typeWords = {{u"ToDo", u"Task"}, {u"Appointment", u"Event"}, {u"Email/Call", u"Call", u"Email"}};
const Words statusWords = {{u"Open", u"Not Started", u"New"},
                           {u"In Progress", u"Started"},
                           {u"Pending", u"Waiting"},
                           {u"Done", u"Completed", u"Complete", u"Closed", u"Finished"}};
const Words priorityWords = {{u"High"}, {u"Medium", u"Normal"}, {u"Low"}, {u"No Priority", u"None"}};
const Words yesWords = {{u"Yes", u"True", u"x", u"1"}};
const Words noWords = {{u"No", u"False", u"0", u"-"}};

std::optional<int> numberOf(const QString &text, const Words &words)
{
    if (text.isEmpty())
        return std::nullopt;
    const auto means = [&text](const char16_t *word) {
        return tablewords::means(text, QString::fromUtf16(word));
    };
    const auto found = std::ranges::find_if(
        words, [&](const auto &ofNumber) { return std::ranges::any_of(ofNumber, means); });
    return found == words.end() ? std::nullopt : std::optional(int(found - words.begin()));
}

// Dates

/// Year, month and day; absent for no day.
std::optional<DateComponents> dayIn(const QRegularExpressionMatch &match)
{
    const auto part = [&match](QStringView name) { return match.capturedView(name).toInt(); };
    int year = part(u"year");
    int month = part(u"month");
    int day = part(u"day");
    if (match.hasCaptured(u"dottedDay")) {
        day = part(u"dottedDay");
        month = part(u"dottedMonth");
        year = part(u"dottedYear");
    } else if (match.hasCaptured(u"first")) {
        day = part(u"first");
        month = part(u"second");
        year = part(u"slashedYear");
        constexpr int months = 12;
        if (month > months || (day <= months && tablecells::isMonthFirst()))
            std::swap(day, month);
    }
    constexpr int century = 100;
    constexpr int present = 2000;
    if (year < century)
        year += present;
    if (!QDate::isValid(year, month, day))
        return std::nullopt;
    return DateComponents{.year = year, .month = month, .day = day};
}

/// Adds the time of day. False for none that there is.
bool addTime(DateComponents &at, const QRegularExpressionMatch &match)
{
    constexpr int noon = 12;
    int hour = match.capturedView(u"hour").toInt();
    const QString half = match.captured(u"half").toLower();
    if (!half.isEmpty()) {
        if (hour < 1 || hour > noon)
            return false;
        hour = hour % noon + (half.startsWith(u'p') ? noon : 0);
    }
    at.hour = hour;
    at.minute = match.capturedView(u"minute").toInt();
    at.second = match.capturedView(u"seconds").toInt();
    return QTime::isValid(hour, *at.minute, *at.second);
}

/// Seconds from GMT that a moment says; absent for one by the clock on the wall.
std::optional<int> offsetIn(const QRegularExpressionMatch &match)
{
    constexpr int minute = 60;
    const QString zone = match.captured(u"zone");
    if (zone.isEmpty())
        return std::nullopt;
    if (zone.size() == 1)
        return 0;
    const QString digits = zone.mid(1).remove(u':');
    const int minutes = digits.left(2).toInt() * minute + digits.mid(2).toInt();
    return (zone.startsWith(u'-') ? -minutes : minutes) * minute;
}

Date utcDateOf(const DateComponents &at)
{
    static const Calendar utc(CalendarSettings{.zoneIdentifier = "UTC", .localeIdentifier = u"en"_s});
    return utc.dateFromComponents(at);
}

// Cells

/// Reads cells, and keeps what cannot be read.
class Cells
{
public:
    explicit Cells(const QHash<QString, QString> &cellsOfRow)
        : cells(cellsOfRow)
    {}

    QString text(const QString &column) const { return cells.value(column).trimmed(); }
    QString raw(const QString &column) const { return cells.value(column); }
    QStringList lines(const QString &column) const
    {
        QStringList all = cells.value(column).split(u'\n');
        for (QString &line : all)
            line = line.trimmed();
        all.removeAll(QString());
        return all;
    }
    std::optional<tablecells::WrittenDate> date(const QString &column)
    {
        const QString said = text(column);
        const auto read = tablecells::dateOf(said);
        if (!read)
            keep(column);
        return read;
    }
    OptionalDate moment(const QString &column)
    {
        const auto read = date(column);
        return read ? OptionalDate(read->date) : std::nullopt;
    }
    template <typename Enum>
    Enum word(const QString &column, const Words &words, Enum otherwise)
    {
        const auto number = numberOf(text(column), words);
        if (!number)
            keep(column);
        return number ? static_cast<Enum>(*number) : otherwise;
    }
    bool yes(const QString &column)
    {
        const bool isYes = numberOf(text(column), yesWords).has_value();
        if (!isYes && !numberOf(text(column), noWords))
            keep(column);
        return isYes;
    }
    std::optional<double> number(const QString &column)
    {
        bool isNumber = false;
        const double read = text(column).replace(u',', u'.').toDouble(&isNumber);
        if (!isNumber)
            keep(column);
        return isNumber ? std::optional(read) : std::nullopt;
    }
    /// What stands in a column could not be taken over as what it should be.
    void keep(const QString &column)
    {
        const QString said = text(column);
        if (said.isEmpty())
            return;
        row.unread.append(said.simplified());
        unreadLines.append(localized(column) + u": "_s + said);
    }
    /// The row, with what could not be read and what no column means behind its details.
    ImportedRow finished()
    {
        QString &details = row.task.details;
        unreadLines += cells.value(tablecells::wordsOfUnknown).split(u'\n', Qt::SkipEmptyParts);
        for (const QString &line : unreadLines)
            if (!details.contains(line))
                details += (details.isEmpty() ? u""_s : u"\n"_s) + line;
        return row;
    }

    ImportedRow row;

private:
    const QHash<QString, QString> &cells;
    QStringList unreadLines;
};

void readProgress(Cells &cells)
{
    ImportedTask &task = cells.row.task;
    task.status = cells.word(u"Status"_s, statusWords, TaskStatus::Open);
    task.priority = cells.word(u"Priority"_s, priorityWords, Priority::None);
    task.created = cells.moment(u"Created"_s);
    // A column of ticks says whether, and not when.
    const QString done = cells.text(u"Done on"_s);
    if (numberOf(done, yesWords))
        task.status = TaskStatus::Done;
    else if (!numberOf(done, noWords))
        task.done = cells.moment(u"Done on"_s);
    if (task.done && cells.text(u"Status"_s).isEmpty())
        task.status = TaskStatus::Done;
}

QString titleOf(const Cells &cells)
{
    const QString title = cells.text(u"Title"_s);
    return title.isEmpty() ? localized(u"No Title"_s) : title;
}

/// A ToDo lies on whole days; others do where only a day is said.
void readDates(Cells &cells)
{
    ImportedTask &task = cells.row.task;
    const auto start = cells.date(u"Start"_s);
    const auto due = cells.date(u"Due"_s);
    if (start)
        task.start = start->date;
    if (due)
        task.due = due->isDay ? MTDates::endOfCurrentDay(due->date) : due->date;
    const bool hasTime = (start && !start->isDay) || (due && !due->isDay);
    const TaskType likely = !hasTime       ? TaskType::ToDo
                            : start && due ? TaskType::Appointment
                                           : TaskType::EmailCall;
    task.type = cells.word(u"Type"_s, typeWords, likely);
    task.isSomeday = cells.yes(u"Someday"_s);
    if (due && due->isDay && task.type == TaskType::EmailCall)
        task.due = due->date;
}

/// Brings dates into the order that tasks have, and tells what that takes away.
void mendDates(Cells &cells)
{
    ImportedTask &task = cells.row.task;
    if (task.start && task.due && *task.due < *task.start) {
        cells.keep(u"Start"_s);
        task.start.reset();
    }
    const bool isAtOneTime = task.start && task.due && Functional::sameMinute(*task.start, *task.due);
    const bool isLasting = task.start && task.due && !isAtOneTime;
    if (task.type == TaskType::Appointment && !isLasting)
        task.type = TaskType::EmailCall;
    if (task.type == TaskType::EmailCall && !task.due && task.start) {
        task.due = task.start;
        task.start.reset();
    }
    if (task.type == TaskType::EmailCall && isAtOneTime)
        task.start.reset();
    if (task.type == TaskType::EmailCall && !task.due && !task.isSomeday)
        task.type = TaskType::ToDo;
    if (task.type == TaskType::ToDo && task.start && !task.due && !task.isSomeday)
        task.due = MTDates::endOfCurrentDay(*task.start);
}

void readRule(Cells &cells)
{
    ImportedTask &task = cells.row.task;
    const auto end = cells.date(u"End Repeat"_s);
    if (end)
        task.ruleEnd = MTDates::endOfCurrentDay(end->date);
    const QString rule = cells.text(u"Repeat"_s);
    if (rule.isEmpty())
        return;
    if (EKRecurrenceRule::recurrenceRuleFromString(rule) && task.due)
        task.rule = rule;
    else
        cells.keep(u"Repeat"_s);
}

void readPlace(Cells &cells)
{
    ImportedTask &task = cells.row.task;
    task.place = cells.text(u"Location"_s);
    const auto latitude = cells.number(u"Latitude"_s);
    const auto longitude = cells.number(u"Longitude"_s);
    if (latitude && longitude)
        task.position = GeoLocation{*latitude, *longitude};
}

QStringList tagsOf(const Cells &cells, bool isOwn)
{
    const QStringList lines = cells.lines(u"Tags"_s);
    if (isOwn || lines.size() != 1)
        return lines;
    static const QRegularExpression separator(u"\\s*[,;]\\s*"_s);
    return lines.front().split(separator, Qt::SkipEmptyParts);
}

bool isSameDate(OptionalDate one, OptionalDate other)
{
    return one.has_value() == other.has_value() && (!one || Functional::sameMinute(*one, *other));
}

bool areSameDates(const ImportedTask &one, const ImportedTask &other)
{
    const auto alertOf = [](const ImportedTask &task, std::size_t place) {
        return place < task.alerts.size() ? task.alerts[place] : std::nullopt;
    };
    return isSameDate(one.start, other.start) && isSameDate(one.due, other.due) &&
           isSameDate(one.ruleEnd, other.ruleEnd) && isSameDate(alertOf(one, 0), alertOf(other, 0)) &&
           isSameDate(alertOf(one, 1), alertOf(other, 1)) &&
           isSameDate(one.delegatedSince, other.delegatedSince) && isSameDate(one.lastAsked, other.lastAsked);
}

QStringList sorted(QStringList list)
{
    list.sort();
    return list;
}

bool isSameWord(const QString &one, const QString &other)
{
    return one.compare(other, Qt::CaseInsensitive) == 0;
}

} // namespace

bool tablecells::isMonthFirst()
{
    const QString format = QLocale(Region::localeIdentifier()).dateFormat(QLocale::ShortFormat);
    return format.indexOf(u'M') < format.indexOf(u'd');
}

std::optional<tablecells::WrittenDate> tablecells::dateOf(const QString &text)
{
    static const QRegularExpression form(
        u"^(?:(?<year>\\d{4})[-/](?<month>\\d{1,2})[-/](?<day>\\d{1,2})"
        "|(?<dottedDay>\\d{1,2})\\.\\s?(?<dottedMonth>\\d{1,2})\\.\\s?(?<dottedYear>\\d{4}|\\d{2})"
        "|(?<first>\\d{1,2})[-/](?<second>\\d{1,2})[-/](?<slashedYear>\\d{4}|\\d{2}))"
        "(?:(?:T|,?\\s+)(?<hour>\\d{1,2}):(?<minute>\\d{2})(?::(?<seconds>\\d{2})(?:[.,]\\d+)?)?"
        "\\s*(?<half>[aApP]\\.?[mM]\\.?)?\\s*(?<zone>[zZ]|[+-]\\d{2}:?\\d{2})?)?$"_s);
    const auto match = form.match(text.trimmed());
    auto at = match.hasMatch() ? dayIn(match) : std::nullopt;
    if (!at)
        return std::nullopt;
    if (!match.hasCaptured(u"hour"))
        return WrittenDate{MTDates::startOfCurrentDay(Calendar::current().dateFromComponents(*at)), true};
    if (!addTime(*at, match))
        return std::nullopt;
    const auto offset = offsetIn(match);
    return WrittenDate{
        offset ? utcDateOf(*at) - Seconds(*offset) : Calendar::current().dateFromComponents(*at), false};
}

ImportedRow tablecells::taskOf(const QHash<QString, QString> &cellsOfRow, bool isOwn)
{
    Cells cells(cellsOfRow);
    ImportedTask &task = cells.row.task;
    task.title = titleOf(cells);
    task.details = cells.raw(u"Notes"_s);
    readProgress(cells);
    readDates(cells);
    mendDates(cells);
    readRule(cells);
    readPlace(cells);
    task.revised = cells.moment(u"Last changed"_s);
    task.hasOwnCategory = true;
    task.category = cells.text(u"Category"_s);
    task.tags = tagsOf(cells, isOwn);
    task.alerts = {cells.moment(u"Alert"_s), cells.moment(u"Second Alert"_s)};
    task.person = cells.text(u"Delegated"_s);
    task.delegatedSince = cells.moment(u"Delegated since"_s);
    task.lastAsked = cells.moment(u"Last asked"_s);
    task.company = cells.text(u"Company"_s);
    task.project = cells.text(u"Project"_s);
    task.projectUid = cells.text(u"Project Identifier"_s);
    task.calendar = cells.text(u"Calendar"_s);
    if (const auto place = cells.number(u"Position"_s))
        task.placeInInbox = static_cast<int>(*place);
    return cells.finished();
}

ImportedRow tablecells::projectOf(const QHash<QString, QString> &cellsOfRow)
{
    Cells cells(cellsOfRow);
    ImportedTask &task = cells.row.task;
    task.title = titleOf(cells);
    task.details = cells.raw(u"Notes"_s);
    readProgress(cells);
    task.start = cells.moment(u"Start"_s);
    if (const OptionalDate due = cells.moment(u"Due"_s))
        task.due = MTDates::endOfCurrentDay(*due);
    if (task.start && task.due && *task.due < *task.start) {
        cells.keep(u"Start"_s);
        task.start.reset();
    }
    task.hasOwnCategory = true;
    task.category = cells.text(u"Category"_s);
    cells.row.people = cells.lines(u"People"_s);
    cells.row.titlesOfTasks = cells.lines(u"Tasks"_s);
    return cells.finished();
}

ImportedRow tablecells::noteOf(const QHash<QString, QString> &cellsOfRow)
{
    Cells cells(cellsOfRow);
    ImportedTask &task = cells.row.task;
    task.title = titleOf(cells);
    task.details = cells.raw(u"Notes"_s);
    task.person = cells.text(u"Contact"_s);
    task.company = cells.text(u"Company"_s);
    task.created = cells.moment(u"Created"_s);
    return cells.finished();
}

bool tablecells::isSame(const ImportedRow &oneRow, const ImportedRow &otherRow)
{
    const ImportedTask &one = oneRow.task;
    const ImportedTask &other = otherRow.task;
    return one.title == other.title && one.details == other.details && one.type == other.type &&
           areSameDates(one, other) && one.isSomeday == other.isSomeday && one.status == other.status &&
           one.priority == other.priority && isSameWord(one.category, other.category) &&
           sorted(one.tags) == sorted(other.tags) && one.place == other.place &&
           one.position == other.position && importfields::isSameRule(one.rule, other.rule) &&
           one.person == other.person && one.company == other.company && one.project == other.project &&
           sorted(oneRow.people) == sorted(otherRow.people);
}
