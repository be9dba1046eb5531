#include "FilterSteps.h"

#include "filters/FilterContact.h"
#include "filters/FilterPeriod.h"
#include "filters/FilterProject.h"
#include "filters/FilterState.h"
#include "filters/TasksFilter.h"
#include "foundation/ApplicationPaths.h"
#include "foundation/DefaultsCoding.h"

#include <QJsonArray>
#include <QJsonDocument>

#include <random>

namespace {

/// Entries as another hand may have left them in the file of the defaults.
class DamagedFilters : public FilterTest
{
protected:
    DamagedFilters()
    {
        add(u"task"_qs, TaskType::ToDo, localDate(2026, 11, 25), localDate(2026, 11, 25, 23));
    }

    /// Puts a JSON value in the place of all task filters.
    static void putTaskFilters(const QByteArray &json)
    {
        const QJsonArray wrapped = QJsonDocument::fromJson("[" + json + "]").array();
        defaults().setObject(settings::taskFilters, variantFromJson(wrapped.at(0)));
    }
    static void putInboxCriteria(const QByteArray &criteria)
    {
        putTaskFilters(R"({"0": {"Enabled": 1, "Array": [)" + criteria + R"(]}, "1": "mine"})");
    }
    static size_t conditions()
    {
        const FilterEntry entry = TasksFilter(0).dictionaryComponent();
        const auto predicates = DBWorker::predicateTasks(&entry);
        DBWorker::allNotDoneTasks(&entry);
        return predicates.size();
    }
    /// Everything that a popover does with an entry.
    static void useEverything(ListFilter &filter)
    {
        for (const FilterRow &row : filter.enabledRows()) {
            filter.popUp(row.key);
            filter.selection(row.key).title();
            filter.chooseItem(1, row.key);
        }
        filter.setDataPeriod();
        filter.setDateFrom(Clock::now());
        filter.buttonClearPeriod();
    }
};

TEST_F(DamagedFilters, LetTheirCriteriaFallAway)
{
    for (const QByteArray &criterion : std::vector<QByteArray>{
             R"({"Key": "Type", "Enabled": 1})", R"({"Key": "Type", "Enabled": 1, "Value": "many"})",
             R"({"Key": "Type", "Enabled": 1, "Value": [1]})",
             R"({"Key": "Status", "Enabled": 1, "Value": null})",
             R"({"Key": "Title", "Enabled": 1, "Value": {"a": 1}})", R"({"Key": "Title", "Enabled": 1})",
             R"({"Key": "Category", "Enabled": 1, "Value": 5})", R"({"Key": "Location", "Enabled": 1})",
             R"({"Key": "Project", "Enabled": 1, "Value": "x-morvane://"})",
             R"({"Key": "Project", "Enabled": 1, "Value": ["x"]})",
             R"({"Key": "Tags", "Enabled": 1, "Value": 3})", R"({"Key": "Delegate", "Enabled": 1})",
             R"({"Key": "Company", "Enabled": 1, "Value": {"$date": "2026-01-01T00:00:00Z"}})",
             R"({"Key": "Title", "Enabled": "0", "Value": "x"})", R"({"Key": 5, "Enabled": 1, "Value": "x"})",
             R"({"Enabled": 1, "Value": "x"})", R"("Title")", R"(7, null, [1])",
             R"({"Key": "Colour", "Enabled": 1})"}) {
        putInboxCriteria(criterion);
        EXPECT_EQ(conditions(), 0u) << criterion.constData();
    }
    putInboxCriteria(R"(5, {"Key": "Type", "Enabled": "1", "Value": "2", "Extra": [1]}, {"Key": "Title",
                        "Enabled": 1, "Value": 7})");
    EXPECT_EQ(conditions(), 2u) << "Numbers as texts and texts as numbers are read";
    // Only objects that are gone: nothing is found, as nothing is theirs.
    putInboxCriteria(
        R"({"Key": "Delegate", "Enabled": 1, "Value": ["x-morvane://gone/EntityContacts/1", 4]})");
    EXPECT_EQ(conditions(), 1u);
    const FilterEntry entry = TasksFilter(0).dictionaryComponent();
    EXPECT_TRUE(DBWorker::allNotDoneTasks(&entry).isEmpty());
    EXPECT_EQ(TasksFilter(0).selection(u"Delegate"_qs).title(), u"None"_qs);
}

TEST_F(DamagedFilters, ReadPeriodsThatHoldNoDates)
{
    TasksFilter filter(0);
    for (const QByteArray &from :
         std::vector<QByteArray>{R"("soon")", "7", R"({"$date": "yesterday"})", "null"}) {
        putInboxCriteria(R"({"Key": "Period", "Enabled": 1, "From": )" + from + R"(, "To": "±#"})");
        EXPECT_EQ(conditions(), 1u);
        filter.reloadEntry();
        EXPECT_EQ(filter.setDataPeriod().from, localDate(2026, 11, 14, 9, 15)) << "A week before now";
        EXPECT_EQ(filter.periodPickers().to, Clock::now());
    }
    putInboxCriteria(
        R"({"Key": "Period", "Enabled": 1, "From": "2026-11-20 08:00:00 +0100", "To": {"$date": "2026-11-20T20:00:00Z"}})");
    filter.reloadEntry();
    EXPECT_EQ(filter.setDataPeriod().from, localDate(2026, 11, 20, 8));
    EXPECT_EQ(filter.periodPickers().to, localDate(2026, 11, 20, 21));
    const QVariant former = defaults().object(settings::firstRun);
    defaults().setObject(settings::firstRun, 12);
    EXPECT_EQ(filters::firstRun(), std::nullopt);
    defaults().setObject(settings::firstRun, former);
}

TEST_F(DamagedFilters, AreChangedWithoutLossOfTheOtherLists)
{
    TasksFilter filter(0);
    int calls = 0;
    filter.setReloadBlock([&calls](const FilterEntry &) { ++calls; });
    const QByteArray others =
        R"("1": {"Enabled": 1, "Array": [{"Key": "Title", "Value": "x"}], "More": 2}, "9": [1])";
    for (const QByteArray &own :
         std::vector<QByteArray>{R"("text")", R"({"Enabled": 1})", R"({"Array": 4})", "null",
                                 R"({"Array": [{"Key": "Title", "Also": 1}]})"}) {
        putTaskFilters(R"({"0": )" + own + ", " + others + "}");
        const QVariantMap before = defaults().object(settings::taskFilters).toMap();
        filter.reloadEntry();
        useEverything(filter);
        filter.changeValueForKey(u"a"_qs, u"Title"_qs);
        QVariantMap after = defaults().object(settings::taskFilters).toMap();
        EXPECT_EQ(after.value(u"1"_qs), before.value(u"1"_qs)) << own.constData();
        EXPECT_EQ(after.value(u"9"_qs), before.value(u"9"_qs)) << own.constData();
        filter.clear();
        EXPECT_EQ(taskEntry(u"0"_qs), filters::pristineTaskEntry()) << "Clearing mends it";
    }
    EXPECT_GT(calls, 0);
    putTaskFilters(R"({"0": {"Array": [{"Key": "Title", "Also": 1}], "More": 2}})");
    filter.reloadEntry();
    filter.changeValueForKey(u"a"_qs, u"Title"_qs);
    EXPECT_EQ(taskEntry(u"0"_qs).value(u"More"_qs), 2);
    EXPECT_EQ(criterion(taskEntry(u"0"_qs), u"Title"_qs).value(u"Also"_qs), 1);

    for (const QByteArray &everything : std::vector<QByteArray>{R"("text")", "[1, 2]", "7"}) {
        putTaskFilters(everything);
        filter.reloadEntry();
        EXPECT_TRUE(filter.enabledRows().empty());
        FilterState state(filter, [] {});
        state.filterStartSettings();
        EXPECT_FALSE(state.isCancelViewVisible());
        state.clickDeactiveFilter();
        EXPECT_EQ(taskEntry(u"0"_qs), filters::pristineTaskEntry());
    }
}

TEST_F(DamagedFilters, HarmNeitherProjectsNorContacts)
{
    for (const QVariant &odd : {QVariant(u"text"_qs), QVariant(4), QVariant(QVariantList({1})),
                                QVariant(QVariantMap({{u"Enabled"_qs, 1}}))}) {
        defaults().setObject(settings::projectsFilters, odd);
        defaults().setObject(settings::contactsFilters, odd);
        FilterProject projects;
        useEverything(projects);
        DBWorker::allProjectsSortDueDate(&projects.dictionaryComponent());
        FilterContact contacts;
        useEverything(contacts);
        EXPECT_EQ(contacts.segmentControllerActivity(), 0);
        EXPECT_EQ(contacts.getContactGroup().allCompanies, true);
        EXPECT_TRUE(DBWorker::predicateContacts(&contacts.dictionaryComponent()).empty());
    }
    defaults().setObject(settings::contactsFilters, filters::pristineContactEntry());
    FilterContact contacts;
    for (const QVariant &odd :
         {QVariant(u"often"_qs), QVariant(QVariantList({1})), QVariant(QVariantMap())}) {
        contacts.changeValueForKey(odd, u"Active"_qs);
        EXPECT_EQ(contacts.segmentControllerActivity(), 0);
        EXPECT_TRUE(DBWorker::predicateContacts(&contacts.dictionaryComponent()).empty());
    }
}

TEST_F(DamagedFilters, NameWhatIsGoneOrOfAnotherKind)
{
    const auto gone = person(u"Ann"_qs);
    const CompanyPtr firm = company(u"Firm"_qs);
    const auto project = context().insert<EntityProject>();
    project->setTitle(u"project"_qs);
    person(u"Lee"_qs);
    EXPECT_FALSE(DBWorker::saveContext());
    const QString dead = gone->uri();
    const QString category = EntityCategory::title(u"Work"_qs)->uri();
    context().deleteObject(gone);
    EXPECT_FALSE(DBWorker::saveContext());
    const auto counts = [&](const QString &key, const QVariant &value) {
        const FilterEntry entry = {
            {u"Enabled"_qs, 1},
            {u"Array"_qs,
             QVariantList{QVariantMap{{u"Key"_qs, key}, {u"Enabled"_qs, 1}, {u"Value"_qs, value}}}}};
        const TaskPtr task = DBWorker::getFirstTaskByTitle(u"task"_qs);
        const auto predicates = DBWorker::predicateTasks(&entry);
        const bool isFound = !DBWorker::allNotDoneTasks(&entry).isEmpty();
        EXPECT_EQ(Predicate::allOf(predicates).evaluate(*task), isFound) << "in memory as in the store";
        return std::tuple(isFound, DBWorker::allProjectsSortDueDate(&entry).size(),
                          DBWorker::allDelegateds(&entry).size());
    };
    EXPECT_EQ(counts(u"Category"_qs, dead), std::tuple(true, 1u, 1u)) << "no constraint";
    EXPECT_EQ(counts(u"Category"_qs, firm->uri()), std::tuple(false, 0u, 1u)) << "nobody's category";
    EXPECT_EQ(counts(u"Delegate"_qs, QVariantList{dead, category}), std::tuple(false, 0u, 1u));
    EXPECT_EQ(counts(u"Companies"_qs, QVariantList{dead}), std::tuple(true, 1u, 0u));
    EXPECT_EQ(counts(u"Categories"_qs, QVariantList()), std::tuple(true, 1u, 1u));
    EXPECT_EQ(counts(u"Status"_qs, 1e300), std::tuple(false, 0u, 1u));
}

TEST_F(DamagedFilters, WithGeneratedRubbishAnywhereAreSurvived)
{
    std::mt19937 random(testSeed());
    const auto pick = [&random](int count) {
        return static_cast<int>(random() % static_cast<unsigned>(count));
    };
    const QString category = EntityCategory::title(u"Work"_qs)->uri();
    const QVariantList values = {1,
                                 -3,
                                 1e300,
                                 true,
                                 QString(),
                                 u"±#"_qs,
                                 u"#±"_qs,
                                 category,
                                 u"x-morvane://a/b/c"_qs,
                                 QVariantList(),
                                 QVariantList({category, 4, QVariantMap()}),
                                 QVariantMap({{u"$date"_qs, u"?"_qs}}),
                                 QVariant::fromValue(localDate(2026, 1, 1)),
                                 QByteArray("bytes"),
                                 QVariant::fromValue(nullptr)};
    const QStringList keys = {u"Key"_qs, u"Value"_qs, u"Enabled"_qs, u"From"_qs, u"To"_qs};
    for (int round = 0; round < 100; ++round) {
        FilterEntry entry = filters::pristineTaskEntry();
        QVariantList array = entry.value(u"Array"_qs).toList();
        for (QVariant &one : array) {
            QVariantMap changed = one.toMap();
            changed.insert(u"Enabled"_qs, 1);
            changed.insert(keys[pick(5)], values[pick(static_cast<int>(values.size()))]);
            one = changed;
        }
        entry.insert(u"Array"_qs, array);
        entry.insert(u"Enabled"_qs, 1);
        SavedFilter::ofTasks(0).store(entry);
        conditions();
        TasksFilter filter(0);
        if (round % 10 == 0)
            useEverything(filter);
    }
    EXPECT_EQ(taskEntry(u"1"_qs), filters::pristineTaskEntry());
}

} // namespace
