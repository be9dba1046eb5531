#include "records/Functional.h"

#include "foundation/Localization.h"

#include <algorithm>
#include <array>

static constexpr std::array<QStringView, 4> statusWords = {u"Open", u"In Progress", u"Pending", u"Done"};
static constexpr std::array<QStringView, 4> priorityWords = {u"High", u"Medium", u"Low", u"No Priority"};
static constexpr std::array<QStringView, 3> typeWords = {u"ToDo", u"Appointment", u"Email/Call"};

template <typename Words>
static QString wordOf(const Words &words, int number)
{
    if (number < 0 || number >= static_cast<int>(words.size()))
        return {};
    return localized(words[static_cast<std::size_t>(number)].toString());
}

template <typename Words>
static int numberOf(const Words &words, const QString &text)
{
    const auto found = std::find_if(words.begin(), words.end(),
                                    [&](QStringView word) { return localized(word.toString()) == text; });
    return found == words.end() ? 0 : static_cast<int>(found - words.begin());
}

QString Functional::statusStringFromType(int status)
{
    return wordOf(statusWords, status);
}

int Functional::statusTypeFromString(const QString &text)
{
    return numberOf(statusWords, text);
}

QString Functional::priorityStringFromType(int priority)
{
    return wordOf(priorityWords, priority);
}

int Functional::priorityTypeFromNumber(int number)
{
    static constexpr int noPriority = 3;
    return number >= 0 && number < noPriority ? number : noPriority;
}

int Functional::priorityTypeFromString(const QString &text)
{
    return numberOf(priorityWords, text);
}

QString Functional::typeStringFromType(std::optional<int> type)
{
    return type ? wordOf(typeWords, *type) : QString();
}

int Functional::taskTypeFromString(const QString &text)
{
    return numberOf(typeWords, text);
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
static constexpr std::array<PaletteEntry, 15> palette = {{
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
    if (place < 0 || place >= static_cast<int>(palette.size()))
        return std::nullopt;
    const PaletteEntry &entry = palette[static_cast<std::size_t>(place)];
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
