#include "records/Functional.h"

#include "foundation/Localization.h"

#include <algorithm>
#include <array>

// The words of the enumerators, in the order of their numbers.
static constexpr std::array<QStringView, 4> statusWords = {u"Open", u"In Progress", u"Pending", u"Done"};
static constexpr std::array<QStringView, 4> priorityWords = {u"High", u"Medium", u"Low", u"No Priority"};
static constexpr std::array<QStringView, 3> typeWords = {u"ToDo", u"Appointment", u"Email/Call"};

template <typename Words, typename Enum>
static QString wordOf(const Words &words, Enum value)
{
    const int number = static_cast<int>(value);
    if (number < 0 || number >= static_cast<int>(words.size()))
        return {};
    return localized(words[static_cast<std::size_t>(number)].toString());
}

template <typename Enum, typename Words>
static Enum valueOf(const Words &words, const QString &text)
{
    const auto found = std::find_if(words.begin(), words.end(),
                                    [&](QStringView word) { return localized(word.toString()) == text; });
    return static_cast<Enum>(found == words.end() ? 0 : found - words.begin());
}

QString Functional::statusStringFromType(TaskStatus status)
{
    return wordOf(statusWords, status);
}

TaskStatus Functional::statusTypeFromString(const QString &text)
{
    return valueOf<TaskStatus>(statusWords, text);
}

QString Functional::priorityStringFromType(Priority priority)
{
    return wordOf(priorityWords, priority);
}

Priority Functional::priorityTypeFromNumber(int number)
{
    const auto priority = static_cast<Priority>(number);
    return priority >= Priority::High && priority < Priority::None ? priority : Priority::None;
}

Priority Functional::priorityTypeFromString(const QString &text)
{
    return valueOf<Priority>(priorityWords, text);
}

QString Functional::typeStringFromType(std::optional<TaskType> type)
{
    return type ? wordOf(typeWords, *type) : QString();
}

TaskType Functional::taskTypeFromString(const QString &text)
{
    return valueOf<TaskType>(typeWords, text);
}

QString Functional::getUnicalCategoryTitleWithArray(const QStringList &titles, const QString &newTitle)
{
    return titles.contains(newTitle) ? newTitle + QLatin1Char(' ') : newTitle;
}

struct PaletteEntry
{
    int red;
    int green;
    int blue;
};

static constexpr int firstCustomIndex = 6;
static constexpr std::array<PaletteEntry, 15> namedColors = {{
    {218, 68, 83},
    {218, 74, 220},
    {26, 188, 156},
    {59, 175, 218},
    {110, 220, 188},
    {241, 106, 107},
    {46, 204, 113},
    {52, 152, 219},
    {155, 89, 182},
    {52, 73, 94},
    {241, 196, 15},
    {230, 126, 34},
    {231, 76, 60},
    {149, 165, 166},
    {243, 156, 18},
}};

std::optional<CategoryColor> Functional::getCategoryColorByIndex(int index)
{
    static constexpr double full = 255;
    const int place = index - firstCustomIndex;
    if (place < 0 || place >= static_cast<int>(namedColors.size()))
        return std::nullopt;
    const PaletteEntry &entry = namedColors[static_cast<std::size_t>(place)];
    return CategoryColor{entry.red / full, entry.green / full, entry.blue / full, 1, index};
}

QVariantList Functional::changeStatusElement(QVariantList elements, const QString &object,
                                             const QVariant &status)
{
    const QString valueKey = QStringLiteral("Value");
    const auto found = std::find_if(elements.begin(), elements.end(), [&](const QVariant &element) {
        return element.toMap().value(valueKey) == QVariant(object);
    });
    if (found != elements.end())
        *found = QVariantMap{{valueKey, object}, {QStringLiteral("Status"), status}};
    return elements;
}
