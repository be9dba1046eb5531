#include "records/dates/MVDate.h"

#include "foundation/Calendar.h"
#include "foundation/Clock.h"
#include "foundation/DateFormatter.h"
#include "foundation/Localization.h"
#include "foundation/RelativeDates.h"

#include <QHash>

#include <cmath>

using DateStyle = DateFormatter::Style;

static QString word(QStringView key)
{
    return localized(key.toString());
}

/// The date in the language of the words around it.
static QString shown(Date date, const QString &pattern)
{
    return DateFormatter::string(date, pattern, DateFormatter::Language::OfWords);
}

static QString shown(Date date, DateStyle dateStyle, DateStyle timeStyle)
{
    return DateFormatter::string(date, dateStyle, timeStyle, DateFormatter::Language::OfWords);
}

static QString joined(const QString &one, const QString &other)
{
    return one + QLatin1Char(' ') + other;
}

/// The words that lead a label: by themselves, and before a date.
struct LeadWords
{
    QString alone;
    QString beforeDate;
};

static LeadWords leadWords(bool isStart)
{
    return isStart ? LeadWords{word(u"Start"), word(u"Start Date on")}
                   : LeadWords{word(u"Due"), word(u"Due on")};
}

static QString atTime(Date date)
{
    return QLatin1Char(' ') + joined(word(u"at"), shown(date, DateStyle::None, DateStyle::Short));
}

static QString dateInWords(Date date, bool considerTime)
{
    if (!considerTime)
        return shown(date, DateStyle::Medium, DateStyle::None);
    const QString monthAndDay =
        DateFormatter::patternFromTemplate(QStringLiteral("MMMM d"), DateFormatter::Language::OfWords);
    return shown(date, monthAndDay) + atTime(date) + shown(date, QStringLiteral("',' yyyy"));
}

/// Other languages have an order of their own, and write the names of near days small within a sentence.
static bool isEnglish()
{
    return languageOfWords() == QLatin1String("en");
}

static QString dateInOrderOfLanguage(Date date, bool considerTime)
{
    if (!considerTime)
        return shown(date, DateStyle::Medium, DateStyle::None);
    return shown(date, DateFormatter::patternFromTemplate(QStringLiteral("yMMMMdjm"),
                                                          DateFormatter::Language::OfWords));
}

static QString dayWithinSentence(const QString &nearDay)
{
    const int away = nearDay == QLatin1String("Today") ? 0 : nearDay == QLatin1String("Tomorrow") ? 1 : -1;
    if (isEnglish())
        return localized(nearDay);
    // Each row of a list asks.
    thread_local QHash<QString, QString> known;
    const QString key = languageOfWords() + QString::number(away);
    auto word = known.constFind(key);
    if (word == known.constEnd())
        word = known.insert(key, RelativeDates::day(languageOfWords(), away));
    return word->isEmpty() ? localized(nearDay) : *word;
}

/// "Yesterday", "Today", "Tomorrow" or nothing. Two midnights make neighbours only if exactly 86400 seconds
/// lie between them, so beside a day of 23 or 25 hours the date itself is shown.
static QString nameOfNearDay(Date date)
{
    static constexpr qint64 day = 86400;
    const Calendar calendar = Calendar::current();
    const Seconds distance = calendar.startOfDay(date) - calendar.startOfDay(Clock::now());
    const double seconds = std::trunc(distance.count());
    if (seconds == 0)
        return QStringLiteral("Today");
    if (seconds == -day)
        return QStringLiteral("Yesterday");
    return seconds == day ? QStringLiteral("Tomorrow") : QString();
}

QString MVDate::getLabelText(OptionalDate date, bool considerTime, bool inOrderToStartDate, bool isEmailCall)
{
    if (!date)
        return {};
    const LeadWords lead = leadWords(inOrderToStartDate || isEmailCall);
    const QString nearDay = nameOfNearDay(*date);
    if (nearDay.isEmpty())
        return joined(lead.beforeDate, isEnglish() ? dateInWords(*date, considerTime)
                                                   : dateInOrderOfLanguage(*date, considerTime));
    if (!considerTime)
        return joined(lead.alone, dayWithinSentence(nearDay));
    const bool isToday = nearDay == QLatin1String("Today");
    return (isToday ? lead.alone : joined(lead.alone, dayWithinSentence(nearDay))) + atTime(*date);
}

static QString creationLabelOfFarDay(Date date)
{
    const QString day = shown(date, QStringLiteral("d MMMM"));
    const QString timeAndYear = shown(date, QStringLiteral("HH:mm, yyyy"));
    return QStringLiteral("%1 %2 %3 %4").arg(word(u"Due Date on"), day, word(u"at"), timeAndYear);
}

std::optional<QString> MVDate::noteCreationLabel(OptionalDate creationDate)
{
    if (!creationDate)
        return std::nullopt;
    const Calendar calendar = Calendar::current();
    if (calendar.isDateInTomorrow(*creationDate))
        return QStringLiteral("%1, %2").arg(word(u"Due Date Tomorrow"),
                                            shown(*creationDate, QStringLiteral("yyyy")));
    if (calendar.isDateInYesterday(*creationDate))
        return QStringLiteral("%1 %2 %3")
            .arg(word(u"Due"), word(u"at"), shown(*creationDate, QStringLiteral("d MMMM yyyy")));
    return calendar.isDateInToday(*creationDate) ? word(u"Due Today") : creationLabelOfFarDay(*creationDate);
}
