#pragma once

#include "foundation/Date.h"
#include "store/entities/TaskValues.h"

#include <QString>
#include <QStringList>
#include <QVariant>

#include <functional>
#include <memory>
#include <optional>

class EntityLocation;

/// A colour of the palette of custom categories; components from 0 to 1.
struct CategoryColor
{
    double r = 0;
    double g = 0;
    double b = 0;
    double a = 1;
    /// Its place in the palette, 6 to 20.
    int index = 0;

    bool operator==(const CategoryColor &) const = default;
};

/// Small operations that the rules share: words of the stored numbers, days and minutes of dates, messages.
/// No state.
class Functional
{
public:
    /// The word of a status in the user's language; empty for a number that has no name.
    static QString statusStringFromType(TaskStatus status);
    /// The status of a word; Open for an unknown one.
    static TaskStatus statusTypeFromString(const QString &text);

    /// The word of a priority; empty for a number that has no name.
    static QString priorityStringFromType(Priority priority);
    /// The priority of the number 0, 1 or 2, and None for all else.
    static Priority priorityTypeFromNumber(int number);
    /// The priority of a word; High for an unknown one.
    static Priority priorityTypeFromString(const QString &text);

    /// The word of a task type; empty for an absent type or a number that has no name.
    static QString typeStringFromType(std::optional<TaskType> type);
    /// The type of a word; ToDo for an unknown one.
    static TaskType taskTypeFromString(const QString &text);

    /// The title, with one blank appended if the titles hold it already. That too may be among them.
    static QString getUnicalCategoryTitleWithArray(const QStringList &titles, const QString &newTitle);

    /// The colour of a custom category; absent for an index outside 6 to 20.
    static std::optional<CategoryColor> getCategoryColorByIndex(int index);

    /// Replaces the first map of the list whose "Value" is `object` by one of "Value" and "Status"; gives the
    /// list.
    static QVariantList changeStatusElement(QVariantList elements, const QString &object,
                                            const QVariant &status);

    /// The date down to its minute, in absolute time.
    static Date dateWithZeroSeconds(Date date);
    /// The start of the date's day.
    static Date dateWithoutTimeOfDate(Date date);
    /// Whether two dates fall in the same minute.
    static bool sameMinute(Date one, Date other);

    /// Whether the dates of a part (a task) leave those of the whole (its project). Each test is made only if
    /// both of its dates are present, and the first that is true answers: 1 the whole starts after the part's
    /// start, 2 the whole is due before the part's start, 4 the whole is due before the part is, 3 the whole
    /// starts after the part is due. 0 if none is.
    static int dateValidationsMainStartDate(OptionalDate mainStartDate, OptionalDate mainDueDate,
                                            OptionalDate additionalStartDate, OptionalDate addationalDueDate);

    /// Whether a photo is that of exactly one contact.
    static bool testOrPhotosNameUsed(const QString &photoName);

    /// A modal message with the one button "OK". The texts are keys of the words and are looked up here.
    static void messageAlertWithTitle(const QString &title, const QString &message);

    /// The address of the page in the web that shows a place on a map.
    static QString mapPageOf(const QString &place);
    /// Shows a place on a map in the web, by its title; nothing without one.
    static void openLocationWithEntityLocation(const std::shared_ptr<EntityLocation> &location);

    /// Runs the block once on the main loop after that many seconds.
    static void performDelayed(double seconds, std::function<void()> block);
};
