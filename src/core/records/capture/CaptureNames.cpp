#include "records/Categories.h"
#include "records/ProjectManager.h"
#include "records/capture/CaptureLine.h"
#include "store/entities/FullName.h"
#include "store/entities/MainContext.h"
#include "store/queries/DBWorker.h"

#include <algorithm>

// The names of the store that a captured line can hold.

namespace {

/// The text up to its first space.
QString firstWordOf(QStringView text)
{
    const auto space = std::ranges::find_if(text, [](QChar letter) { return letter.isSpace(); });
    return text.left(space - text.begin()).toString();
}

/// How many letters of the text a name is, if the text begins with it and it ends there with a word; else 0.
int lettersOf(QStringView text, const QString &name)
{
    const QString trimmed = name.simplified();
    if (trimmed.isEmpty() || !text.startsWith(trimmed, Qt::CaseInsensitive))
        return 0;
    const bool isWhole = text.size() == trimmed.size() || !text.at(trimmed.size()).isLetterOrNumber();
    return isWhole ? int(trimmed.size()) : 0;
}

template <typename Pointer>
void takeLonger(std::pair<Pointer, int> &best, const Pointer &record, int letters)
{
    if (letters > best.second)
        best = {record, letters};
}

std::pair<CategoryPtr, int> categoryIn(QStringView text)
{
    std::pair<CategoryPtr, int> best{nullptr, 0};
    for (const CategoryPtr &category : DBWorker::allCategories()) {
        // As it is shown, and as it is called in the store.
        for (const QString &title : {Categories::shownTitle(category), category->title()})
            takeLonger(best, category, lettersOf(text, title));
    }
    return best;
}

std::pair<ProjectPtr, int> projectIn(QStringView text)
{
    std::pair<ProjectPtr, int> best{nullptr, 0};
    // The title of one that has none yet is shown in the language of the user.
    const auto request = EntityProject::fetchRequest().where(Predicate::format(
        "title beginswith[cd] %@ or title = %@", firstWordOf(text), ProjectManager::titleForWant()));
    for (const ProjectPtr &project : mainContext().fetch<EntityProject>(request)) {
        if (!project)
            continue;
        for (const QString &title : {ProjectManager::shownTitle(*project), project->title()})
            takeLonger(best, project, lettersOf(text, title));
    }
    return best;
}

/// By the whole name in either order, or by a first or last name where only one person has it.
std::pair<ContactPtr, int> personIn(QStringView text)
{
    std::pair<ContactPtr, int> best{nullptr, 0};
    std::pair<ContactPtr, int> byOneName{nullptr, 0};
    int ofThatName = 0;
    const QString word = firstWordOf(text);
    // A sign behind the name is no part of it.
    const auto end = std::ranges::find_if_not(word, [](QChar letter) {
        return letter.isLetterOrNumber() || letter == u'-' || letter == u'\'' || letter == u'’';
    });
    const QString beginning = word.left(end - word.begin());
    constexpr int leastLetters = 2;
    if (beginning.size() < leastLetters)
        return best;
    const auto request = EntityContacts::fetchRequest().where(
        Predicate::format("firstName beginswith[cd] %@ or lastName beginswith[cd] %@", beginning, beginning));
    for (const ContactPtr &person : mainContext().fetch<EntityContacts>(request)) {
        if (!person)
            continue;
        for (const NameOrder order : {NameOrder::FirstNameFirst, NameOrder::LastNameFirst})
            takeLonger(best, person,
                       lettersOf(text, fullNameIn(order, person->firstName(), person->lastName())));
        // Of several first names the one that somebody is called by comes first.
        int letters = std::max(lettersOf(text, person->firstName()), lettersOf(text, person->lastName()));
        letters = std::max(letters, lettersOf(text, firstWordOf(person->firstName().simplified())));
        if (letters > 0) {
            ++ofThatName;
            takeLonger(byOneName, person, letters);
        }
    }
    return best.first || ofThatName != 1 ? best : byOneName;
}

} // namespace

CaptureLine::Names CaptureLine::Names::ofStore()
{
    return {categoryIn, projectIn, personIn};
}
