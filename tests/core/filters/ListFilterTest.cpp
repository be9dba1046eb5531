#include "FilterSteps.h"

#include "filters/FilterPeriod.h"
#include "filters/FilterProject.h"
#include "filters/TasksFilter.h"
#include "foundation/Region.h"

namespace {

const QString all = filters::allMarker;
const QString none = filters::noneMarker;

class ListFilters : public FilterTest
{
protected:
    ~ListFilters() override { Region::setLocale(u"en_US"_qs); }

    /// The rows of a popover as "tag key label".
    static QStringList rowsOf(const ListFilter &filter)
    {
        QStringList rows;
        for (const FilterRow &row : filter.enabledRows())
            rows.append(u"%1 %2 %3"_qs.arg(QString::number(row.tag), row.key, row.label));
        return rows;
    }
    /// Which item is selected for a value that is stored.
    int selected(const QString &key, const QVariant &value)
    {
        inbox.changeValueForKey(value, key);
        TasksFilter opened(0);
        return opened.popUp(key).selectedIndex;
    }
    /// What an item writes.
    QVariant written(const QString &key, int item)
    {
        inbox.popUp(key);
        inbox.chooseItem(item, key);
        return criterion(taskEntry(u"0"_qs), key).value(u"Value"_qs);
    }

    TasksFilter inbox{0};
};

TEST_F(ListFilters, ShowTheirRowsInOrder)
{
    EXPECT_EQ(
        rowsOf(inbox),
        QStringList({u"1 Title "_qs, u"2 Type Type"_qs, u"3 Category Category"_qs, u"4 Status Status"_qs,
                     u"5 Priority Priority"_qs, u"6 Period Period"_qs, u"7 Location Location"_qs,
                     u"8 Delegate Delegate"_qs, u"9 Company Company"_qs, u"10 Project Project"_qs}));
    EXPECT_EQ(rowsOf(FilterProject()),
              QStringList({u"1 Title Title"_qs, u"2 Category Category"_qs, u"3 Status Status"_qs,
                           u"4 Priority Priority"_qs, u"5 Period Period"_qs, u"6 Delegate Delegate"_qs}));
    EXPECT_TRUE(rowsOf(TasksFilter(7)).isEmpty()) << "Done tasks have no filter";
}

TEST_F(ListFilters, WriteEachChangeAtOnceAndOnlyThere)
{
    const FilterEntry today = taskEntry(u"1"_qs);
    std::vector<FilterEntry> taken;
    inbox.setReloadBlock([&taken](const FilterEntry &entry) { taken.push_back(entry); });
    inbox.changeValueForKey(u"c"_qs, u"Title"_qs);
    inbox.changeValueForKey(u"ca"_qs, u"Title"_qs);
    ASSERT_EQ(taken.size(), 2u);
    EXPECT_EQ(taken[1], taskEntry(u"0"_qs));
    EXPECT_EQ(taken[1], inbox.dictionaryComponent());
    EXPECT_EQ(criterion(taken[1], u"Title"_qs),
              (QVariantMap{{u"Key"_qs, u"Title"_qs}, {u"Value"_qs, u"ca"_qs}, {u"Enabled"_qs, 1}}));
    EXPECT_TRUE(SavedFilter::isEnabled(taken[1]));
    EXPECT_EQ(taskEntry(u"1"_qs), today);
    EXPECT_EQ(TasksFilter(0).dictionaryComponent(), taken[1]) << "It survives a restart";

    inbox.changeValueForKey(5, u"Unknown"_qs);
    EXPECT_EQ(taken.size(), 3u);
    EXPECT_EQ(taken[2], taken[1]);
    inbox.setTasksType(1);
    EXPECT_EQ(inbox.dictionaryComponent(), today);
    inbox.changeValueForKey(all, u"Type"_qs);
    EXPECT_TRUE(SavedFilter::isEnabled(taskEntry(u"1"_qs)))
        << "A control set back to All keeps the filter on";
    inbox.clear();
    EXPECT_EQ(taskEntry(u"1"_qs), filters::pristineTaskEntry());
    EXPECT_EQ(taken.size(), 4u) << "Clearing tells nobody";
}

TEST_F(ListFilters, OfTheSampleStoreAreItsOwn)
{
    inbox.changeValueForKey(u"mine"_qs, u"Title"_qs);
    const FilterEntry mine = inbox.dictionaryComponent();
    defaults().setObject(settings::valueSwitchDatabase, 1);
    TasksFilter sample(0);
    EXPECT_FALSE(SavedFilter::isEnabled(sample.dictionaryComponent()));
    sample.changeValueForKey(u"of the sample"_qs, u"Title"_qs);
    const FilterEntry ofSample = sample.dictionaryComponent();
    EXPECT_EQ(criterion(ofSample, u"Title"_qs).value(u"Value"_qs), u"of the sample"_qs);
    EXPECT_EQ(TasksFilter(0).dictionaryComponent(), ofSample);
    defaults().setObject(settings::valueSwitchDatabase, 0);
    EXPECT_EQ(TasksFilter(0).dictionaryComponent(), mine);
    defaults().removeObject(settings::taskFilters + u"OfSample"_qs);
}

TEST_F(ListFilters, RestoreAndWriteThePopUpsOfWords)
{
    EXPECT_EQ(inbox.popUp(u"Type"_qs).items,
              QStringList({u"All"_qs, u"ToDo"_qs, u"Appointment"_qs, u"Email/Call"_qs}));
    EXPECT_EQ(inbox.popUp(u"Status"_qs).items,
              QStringList({u"All"_qs, u"Open"_qs, u"In Progress"_qs, u"Pending"_qs, u"Done"_qs}));
    EXPECT_EQ(inbox.popUp(u"Priority"_qs).items,
              QStringList({u"All"_qs, u"No Priority"_qs, u"High"_qs, u"Medium"_qs, u"Low"_qs}));
    for (const QString &language : {u"en_US"_qs, u"de_DE"_qs}) {
        Region::setLocale(language);
        EXPECT_EQ(selected(u"Type"_qs, 2), 3);
        EXPECT_EQ(selected(u"Type"_qs, u"2"_qs), 0) << "A text selects All, whatever it says";
        EXPECT_EQ(selected(u"Type"_qs, 9), 0);
        EXPECT_EQ(selected(u"Status"_qs, 0), 1);
        EXPECT_EQ(selected(u"Priority"_qs, 3), 1);
        EXPECT_EQ(selected(u"Priority"_qs, 0), 2);
        EXPECT_EQ(selected(u"Priority"_qs, all), 0);
        EXPECT_EQ(written(u"Type"_qs, 1), 0);
        EXPECT_EQ(written(u"Status"_qs, 4), 3);
        EXPECT_EQ(written(u"Priority"_qs, 1), 3);
        EXPECT_EQ(written(u"Priority"_qs, 4), 2);
        EXPECT_EQ(written(u"Priority"_qs, 0), all);
        EXPECT_EQ(written(u"Priority"_qs, 5), all) << "There is no such item";
        EXPECT_EQ(written(u"Priority"_qs, -1), all);
    }
}

TEST_F(ListFilters, RestoreAndWriteThePopUpsOfObjects)
{
    const CategoryPtr sport = EntityCategory::title(u"Sport"_qs);
    const auto own = context().insert<EntityCategory>();
    own->setTitle(u"Sport"_qs);
    own->setIndex(6);
    for (const QString &title : {u"Zoo"_qs, u"Office"_qs})
        DBWorker::saveLocation(title, 0, 0);
    const auto house = context().insert<EntityProject>();
    house->setTitle(u"House"_qs);

    const FilterPopUp categories = inbox.popUp(u"Category"_qs);
    EXPECT_EQ(categories.items.first(), u"All"_qs);
    EXPECT_EQ(categories.items.filter(u"Sport"_qs), QStringList({u"Sport"_qs, u"Sport "_qs}));
    EXPECT_TRUE(categories.items.contains(u"Home"_qs)) << "Seeded ones go by their word";
    const auto place = std::find(categories.objects.begin(), categories.objects.end(), sport);
    const int item = 1 + static_cast<int>(place - categories.objects.begin());
    EXPECT_EQ(selected(u"Category"_qs, sport->uri()), item);
    EXPECT_EQ(written(u"Category"_qs, item), sport->uri());
    EXPECT_EQ(selected(u"Category"_qs, all), 0);
    EXPECT_EQ(selected(u"Category"_qs, none), -1) << "It has no item None";
    EXPECT_EQ(selected(u"Category"_qs, u"x-morvane://gone/EntityCategory/1"_qs), 0);

    EXPECT_EQ(inbox.popUp(u"Location"_qs).items,
              QStringList({u"All"_qs, u"None"_qs, u"Office"_qs, u"Zoo"_qs}));
    const QString zoo = DBWorker::allLocations().at(1)->uri();
    EXPECT_EQ(selected(u"Location"_qs, zoo), 3);
    EXPECT_EQ(selected(u"Location"_qs, none), 1);
    EXPECT_EQ(written(u"Location"_qs, 3), zoo);
    EXPECT_EQ(written(u"Project"_qs, 1), none);
    EXPECT_EQ(written(u"Project"_qs, 2), house->uri());
    EXPECT_EQ(written(u"Project"_qs, 0), all);
    EXPECT_EQ(selected(u"Project"_qs, zoo), 0) << "What is no project selects nothing of them";
    house->setTitle(u"NewProject"_qs);
    EXPECT_EQ(inbox.popUp(u"Project"_qs).items.last(), u"New Project"_qs);

    // The items keep their meaning while the popover is open.
    inbox.popUp(u"Location"_qs);
    DBWorker::saveLocation(u"Attic"_qs, 0, 0);
    inbox.chooseItem(3, u"Location"_qs);
    EXPECT_EQ(inbox.value(u"Location"_qs), zoo);
}

TEST_F(ListFilters, PickSeveral)
{
    EXPECT_EQ(FilterSelection::popUpTitle(true, 3), u"All"_qs);
    EXPECT_EQ(FilterSelection::popUpTitle(false, 0), u"None"_qs);
    EXPECT_EQ(FilterSelection::popUpTitle(false, 1), u"\u0421hoose 1 item"_qs);
    EXPECT_EQ(FilterSelection::popUpTitle(false, 2), u"\u0421hoose 2 items"_qs);

    Region::setLocale(u"de_DE"_qs);
    EXPECT_EQ(FilterSelection::popUpTitle(false, 2), u"Ausgewählt: 2 Einträge"_qs);
    Region::setLocale(u"en_US"_qs);

    const ContactPtr ann = person(u"Ann"_qs);
    const TaskPtr delegated = add(u"delegated"_qs);
    delegated->setDelegateToUser(ann);
    add(u"own"_qs);
    const auto found = [this] { return titles(DBWorker::allInboxTasks(&inbox.dictionaryComponent())); };
    EXPECT_TRUE(inbox.selection(u"Delegate"_qs).selectedAll);
    inbox.toPopUp(u"Delegate"_qs, {false, {ann}});
    EXPECT_EQ(inbox.value(u"Delegate"_qs), QVariantList({ann->uri()}));
    EXPECT_EQ(TasksFilter(0).selection(u"Delegate"_qs).objects, std::vector<ObjectPtr>({ann}));
    EXPECT_EQ(found(), QStringList(u"delegated"_qs));
    inbox.toPopUp(u"Delegate"_qs, {false, {}});
    EXPECT_EQ(inbox.selection(u"Delegate"_qs).title(), u"None"_qs);
    EXPECT_EQ(found(), QStringList(u"own"_qs)) << "Nobody marked asks for tasks of nobody";
    const ContactPtr bob = person(u"Bob"_qs);
    EXPECT_FALSE(DBWorker::saveContext());
    context().deleteObject(bob);
    inbox.toPopUp(u"Delegate"_qs, {false, {ann, bob}});
    EXPECT_EQ(inbox.value(u"Delegate"_qs), QVariantList({ann->uri()}));
    EXPECT_FALSE(DBWorker::saveContext());
    inbox.toPopUp(u"Delegate"_qs, {false, {bob}});
    EXPECT_EQ(inbox.selection(u"Delegate"_qs).title(), u"None"_qs);
    EXPECT_EQ(found(), QStringList(u"own"_qs)) << "as if the one that has gone had not been marked";
    inbox.toPopUp(u"Delegate"_qs, {true, {ann}});
    EXPECT_EQ(inbox.value(u"Delegate"_qs), all);
    EXPECT_EQ(found().size(), 2);
}

TEST_F(ListFilters, KeepAPeriodWithinItsLimits)
{
    const Date from = localDate(2026, 11, 1, 8);
    const Date to = localDate(2026, 11, 9, 20);
    inbox.setDateFrom(from);
    EXPECT_FALSE(SavedFilter::isEnabled(taskEntry(u"0"_qs))) << "The pickers were not filled yet";

    const FilterPeriodPickers &pickers = inbox.setDataPeriod();
    EXPECT_EQ(pickers.from, filters::firstRun());
    EXPECT_EQ(pickers.to, Clock::now());
    EXPECT_EQ(pickers.minimumOfTo, pickers.from);
    EXPECT_EQ(pickers.maximumOfFrom, Clock::now());
    inbox.setDateFrom(from);
    EXPECT_EQ(pickers.minimumOfTo, from);
    inbox.setDateTo(to);
    EXPECT_EQ(pickers.maximumOfFrom, to);
    const QVariantMap stored = criterion(taskEntry(u"0"_qs), u"Period"_qs);
    EXPECT_EQ(stored.value(u"From"_qs).value<Date>(), from);
    EXPECT_EQ(stored.value(u"To"_qs).value<Date>(), to);
    EXPECT_EQ(stored.value(u"Enabled"_qs), 1);
    EXPECT_TRUE(SavedFilter::isEnabled(taskEntry(u"0"_qs)));
    TasksFilter opened(0);
    EXPECT_EQ(opened.setDataPeriod().from, from);
    EXPECT_EQ(opened.periodPickers().maximumOfFrom, to);

    int calls = 0;
    inbox.setReloadBlock([&calls](const FilterEntry &) { ++calls; });
    inbox.buttonClearPeriod();
    EXPECT_EQ(calls, 1);
    EXPECT_EQ(
        criterion(taskEntry(u"0"_qs), u"Period"_qs),
        (QVariantMap{{u"Key"_qs, u"Period"_qs}, {u"From"_qs, all}, {u"To"_qs, all}, {u"Enabled"_qs, 0}}));
    EXPECT_TRUE(SavedFilter::isEnabled(taskEntry(u"0"_qs))) << "The entry stays as it was";
    EXPECT_EQ(pickers.to, Clock::now());
}

TEST_F(ListFilters, KeepTheDaysOfAPeriodAroundNewYear)
{
    EXPECT_EQ(filters::dateOfValue(u"2026-06-15 12:30:00 +0000"_qs), utcDate(2026, 6, 15, 12, 30));
    EXPECT_EQ(filters::dateOfValue(u"2026-12-30 12:30:00 +0000"_qs), utcDate(2026, 12, 30, 12, 30));
    EXPECT_EQ(filters::dateOfValue(QVariant::fromValue(localDate(2026, 12, 30, 12))),
              localDate(2026, 12, 30, 12));
    EXPECT_EQ(filters::dateOfValue(QVariantList()), std::nullopt);
}

TEST_F(ListFilters, FilterProjectsByRawInstants)
{
    const auto project = [this](const QString &title, OptionalDate due) {
        const auto made = context().insert<EntityProject>();
        made->setTitle(title);
        made->setDueDate(due);
        made->setStatus(TaskStatus::InProgress);
        return made;
    };
    project(u"dated"_qs, localDate(2026, 6, 9, 23, 59, 59));
    project(u"undated"_qs, {})->setCategory(EntityCategory::title(u"Work"_qs));
    FilterProject filter;
    const auto found = [&filter] {
        QStringList result;
        for (const ProjectPtr &one : DBWorker::allProjectsSortDueDate(&filter.dictionaryComponent()))
            result.append(one->title());
        result.sort();
        return result;
    };
    filter.chooseItem(0, u"Status"_qs);
    EXPECT_TRUE(SavedFilter::isEnabled(defaults().object(settings::projectsFilters).toMap()));
    EXPECT_EQ(found().size(), 2) << "All criteria at their defaults";
    filter.setDataPeriod();
    filter.setDateFrom(localDate(2026, 6, 1));
    filter.setDateTo(localDate(2026, 6, 9, 12));
    EXPECT_EQ(found(), QStringList()) << "Due later on the last day";
    filter.setDateTo(localDate(2026, 6, 10));
    EXPECT_EQ(found(), QStringList(u"dated"_qs));
    filter.buttonClearPeriod();
    filter.changeValueForKey(none, u"Category"_qs);
    EXPECT_EQ(found(), QStringList(u"dated"_qs));
    filter.changeValueForKey(all, u"Category"_qs);
    filter.chooseItem(3, u"Status"_qs);
    EXPECT_EQ(found(), QStringList());
    filter.chooseItem(2, u"Status"_qs);
    filter.changeValueForKey(u"UN"_qs, u"Title"_qs);
    EXPECT_EQ(found(), QStringList(u"undated"_qs));
}

} // namespace
