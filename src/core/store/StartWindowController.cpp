#include "store/StartWindowController.h"

#include "filters/FilterEntries.h"
#include "foundation/UserDefaults.h"
#include "records/dates/MVDate.h"
#include "store/entities/Entities.h"
#include "store/entities/MainContext.h"
#include "store/queries/DBWorker.h"
#include "store/state/SettingsKeys.h"

#include <initializer_list>
#include <set>

namespace {

struct SeededColor
{
    const char *title;
    int red;
    int green;
    int blue;
};

constexpr double fullComponent = 255.0;

/// The titles that an entity has rows of; one query instead of a count for each seed.
template <typename Entity>
std::set<QString> presentTitles()
{
    std::set<QString> titles;
    mainContext().visit(Entity::fetchRequest(), {"title"},
                        [&titles](const RowReader &row) { titles.insert(row.text(0)); });
    return titles;
}

template <typename Type>
void seedTypes(std::initializer_list<const char *> titles)
{
    const std::set<QString> present = presentTitles<Type>();
    int index = 0;
    for (const char *word : titles) {
        const QString title = QString::fromLatin1(word);
        if (present.count(title) == 0) {
            const auto type = mainContext().insert<Type>();
            type->setTitle(title);
            type->setIndex(index);
            type->setCreationDate(MVDate::date());
        }
        // A title that is there already leaves its place free.
        ++index;
    }
}

template <typename Category>
std::shared_ptr<Category> insertColored(const SeededColor &seed)
{
    auto category = mainContext().insert<Category>();
    category->setTitle(QString::fromLatin1(seed.title));
    category->setColorR(seed.red / fullComponent);
    category->setColorG(seed.green / fullComponent);
    category->setColorB(seed.blue / fullComponent);
    category->setColorA(1.0);
    category->setCreationDate(MVDate::date());
    return category;
}

constexpr SeededColor taskCategories[] = {{"Sport", 64, 92, 196},
                                          {"Personal", 140, 193, 82},
                                          {"HomeCategory", 243, 156, 18},
                                          {"Work", 233, 87, 63},
                                          {"General", 74, 137, 220}};

constexpr SeededColor contactCategories[] = {
    {"Administrative", 218, 68, 83}, {"Classmate", 233, 87, 63},  {"Client", 140, 193, 82},
    {"Competitor", 218, 174, 220},   {"Coworker", 241, 106, 107}, {"Employee", 246, 187, 66},
    {"Friend", 59, 175, 218},        {"Lead", 110, 220, 188},     {"Personal", 64, 92, 196},
    {"Vendor", 26, 188, 156},        {"Owner", 46, 204, 113},     {"Trainer", 52, 152, 219}};

} // namespace

void StartWindowController::saveCustomType()
{
    seedTypes<EntityURLType>({"home", "work", "Facebook", "Twitter", "LinkedIn", "other"});
    seedTypes<EntityPhoneType>(
        {"home", "work", "iPhone", "mobile", "main", "home fax", "work fax", "pager", "other"});
    seedTypes<EntityEmailType>({"home", "work", "iCloud", "other"});
    seedTypes<EntityAddressType>({"home", "work", "other"});
}

void StartWindowController::saveCustomCategory()
{
    const QString general = QStringLiteral("General");
    const std::set<QString> present = presentTitles<EntityCategory>();
    int index = 0;
    for (const SeededColor &seed : taskCategories) {
        ++index;
        const QString title = QString::fromLatin1(seed.title);
        if (present.count(title) != 0)
            continue;
        const CategoryPtr category = insertColored<EntityCategory>(seed);
        category->setIndex(index);
        if (title == general)
            category->setDefaultCategory(false);
    }
    // Nothing is marked by this: a fresh store has no default category until the user picks one.
    const CategoryPtr marked = EntityCategory::getCustom() ? nullptr : EntityCategory::title(general);
    if (marked)
        marked->setCustom();
}

void StartWindowController::saveCustomCategoryContacts()
{
    const std::set<QString> present = presentTitles<EntityContactCategory>();
    for (const SeededColor &seed : contactCategories) {
        if (present.count(QString::fromLatin1(seed.title)) == 0)
            insertColored<EntityContactCategory>(seed);
    }
}

void StartWindowController::startValueUserDefaults()
{
    UserDefaults &defaults = UserDefaults::standard();
    if (!defaults.contains(settings::firstRun))
        defaults.setObject(settings::firstRun, QVariant::fromValue(MVDate::date()));
    {
        Transaction seeding(mainContext(), ChangeAuthor::Program);
        saveCustomType();
        saveCustomCategory();
        saveCustomCategoryContacts();
        DBWorker::tellOfFailure(seeding.commit());
    }
    filters::seedDefaults();
    defaults.synchronize();
}
