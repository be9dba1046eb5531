#include "records/capture/CaptureOffers.h"

#include "foundation/TextFolding.h"
#include "records/Categories.h"
#include "records/ProjectManager.h"
#include "store/entities/FullName.h"
#include "store/entities/MainContext.h"
#include "store/queries/DBWorker.h"

#include <algorithm>

namespace {

/// So many people are looked at, of which the names that go on are the first.
constexpr int mostPeople = 200;

/// The place of the sign of the word that ends at the cursor; -1 for none.
int signBefore(const QString &line, int cursor)
{
    const auto isWordLetter = [&line](int place) {
        return place >= 0 && place < line.size() && line.at(place).isLetterOrNumber();
    };
    if (cursor > line.size() || (isWordLetter(cursor) && isWordLetter(cursor - 1)))
        return -1;
    for (int place = cursor - 1; place >= 0; --place) {
        const bool isSign = QStringView(u"#+@").contains(line.at(place));
        if (isSign && (place == 0 || line.at(place - 1).isSpace()))
            return place;
    }
    return -1;
}

/// Inside of quotation marks nothing is understood.
bool isQuoted(const QString &line, int place)
{
    return line.left(place).count(u'"') % 2 == 1;
}

QStringList categoriesWith(const QString &folded)
{
    QStringList names;
    for (const CategoryPtr &category : DBWorker::allCategories()) {
        if (const QString title = Categories::shownTitle(category); beginsWithFolded(title, folded))
            names.append(title);
    }
    return names;
}

/// Those that are finished are reached by their whole names only.
QStringList projectsWith(const QString &beginning)
{
    FetchRequest request = EntityProject::fetchRequest();
    if (!beginning.isEmpty())
        request.where(Predicate::format("title beginswith[cd] %@", beginning));
    QStringList names;
    for (const ProjectPtr &project : mainContext().fetch<EntityProject>(request)) {
        if (project && project->status() != TaskStatus::Done)
            names.append(ProjectManager::shownTitle(*project));
    }
    return names;
}

/// By first, last or both names, as they are shown.
QStringList peopleWith(const QString &beginning, const QString &folded)
{
    QStringList names;
    const QString first = beginning.section(u' ', 0, 0);
    if (first.isEmpty())
        return names;
    const auto request = EntityContacts::fetchRequest()
                             .where(Predicate::format(
                                 "firstName beginswith[cd] %@ or lastName beginswith[cd] %@", first, first))
                             .limitedTo(mostPeople);
    for (const ContactPtr &person : mainContext().fetch<EntityContacts>(request)) {
        if (!person)
            continue;
        const auto isIn = [&](NameOrder order) {
            return beginsWithFolded(fullNameIn(order, person->firstName(), person->lastName()), folded);
        };
        if (isIn(NameOrder::FirstNameFirst) || isIn(NameOrder::LastNameFirst))
            names.append(person->fullName());
    }
    return names;
}

QStringList namesWith(QChar sign, const QString &beginning)
{
    const QString folded = foldedForSearch(beginning);
    if (sign == u'#')
        return categoriesWith(folded);
    return sign == u'+' ? projectsWith(beginning) : peopleWith(beginning, folded);
}

} // namespace

std::optional<CaptureOffer> CaptureOffer::at(const QString &line, int cursor, const std::set<int> &literal)
{
    const int sign = signBefore(line, cursor);
    if (sign < 0 || literal.contains(sign) || isQuoted(line, sign))
        return std::nullopt;
    CaptureOffer offer{line.at(sign), sign + 1, cursor - sign - 1, {}};
    const QString beginning = line.mid(offer.from, offer.length);
    if (beginning.startsWith(u' '))
        return std::nullopt;
    for (const QString &name : namesWith(offer.sign, beginning)) {
        const QString shown = name.simplified();
        if (!shown.isEmpty() && !offer.names.contains(shown, Qt::CaseInsensitive))
            offer.names.append(shown);
    }
    std::ranges::stable_sort(offer.names, [](const QString &one, const QString &other) {
        return localizedCaseInsensitiveCompare(one, other) < 0;
    });
    const QString whole = foldedForSearch(beginning.simplified());
    const auto own = std::ranges::find(offer.names, whole, foldedForSearch);
    offer.isName = own != offer.names.end();
    if (offer.isName)
        offer.names.erase(own);
    offer.names = offer.names.mid(0, mostNames);
    return offer.names.isEmpty() ? std::nullopt : std::optional(std::move(offer));
}
