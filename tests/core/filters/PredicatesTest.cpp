#include "CoreTest.h"

#include "filters/FilterEntries.h"

namespace {

class FilterPredicates : public CoreTest
{
protected:
    /// A pristine entry that is on, with one criterion set.
    static FilterEntry with(const QString &key, const QVariantMap &changes)
    {
        QVariantMap entry = filters::pristineTaskEntry();
        QVariantList array = entry.value(u"Array"_qs).toList();
        const int place = DBWorker::indexObject(key, array);
        QVariantMap criterion = array.at(place).toMap();
        criterion.insert(u"Enabled"_qs, 1);
        criterion.insert(changes);
        array[place] = criterion;
        entry.insert(u"Array"_qs, array);
        entry.insert(u"Enabled"_qs, 1);
        return entry;
    }
    static QStringList filtered(const FilterEntry &entry)
    {
        return titles(DBWorker::allNotDoneTasks(&entry));
    }
    static QStringList filtered(const QString &key, const QVariant &value)
    {
        return filtered(with(key, {{u"Value"_qs, value}}));
    }
};

TEST_F(FilterPredicates, AreSeededOffAndConstrainNothing)
{
    const QVariantMap seed = UserDefaults::standard().object(settings::taskFilters).toMap();
    EXPECT_EQ(seed.keys(), QStringList({u"0"_qs, u"1"_qs, u"2"_qs, u"3"_qs, u"6"_qs}));
    EXPECT_EQ(seed.value(u"6"_qs).toMap().value(u"Array"_qs).toList().size(), 11);
    QVariantMap entry = seed.value(u"0"_qs).toMap();
    EXPECT_TRUE(DBWorker::predicateTasks(&entry).empty());
    entry.insert(u"Enabled"_qs, 1);
    EXPECT_TRUE(DBWorker::predicateTasks(&entry).empty());
    EXPECT_TRUE(DBWorker::predicateTasks(nullptr).empty());
}

TEST_F(FilterPredicates, NarrowAListByEachCriterion)
{
    const TaskPtr cafe =
        add(u"Café visit"_qs, TaskType::ToDo, localDate(2026, 11, 25), localDate(2026, 11, 25, 23, 59));
    const TaskPtr call = add(u"call"_qs, TaskType::EmailCall, {}, localDate(2026, 12, 24, 9));
    cafe->setCategory(EntityCategory::title(u"Work"_qs));
    cafe->setTags({context().insert<EntityTags>()});
    call->setCreationDate(localDate(2020, 1, 1));
    EXPECT_FALSE(DBWorker::saveContext());
    const QStringList onlyCafe(u"Café visit"_qs);
    const QStringList onlyCall(u"call"_qs);
    EXPECT_EQ(filtered(u"Title"_qs, u"cafe"_qs), onlyCafe);
    EXPECT_EQ(filtered(u"Title"_qs, u"visit"_qs), QStringList())
        << "titles are looked at from their beginning";
    FilterEntry off = with(u"Title"_qs, {{u"Value"_qs, u"cafe"_qs}});
    off.insert(u"Enabled"_qs, 0);
    EXPECT_EQ(filtered(off).size(), 2) << "an entry that is off";
    EXPECT_EQ(filtered(with(u"Title"_qs, {{u"Value"_qs, u"cafe"_qs}, {u"Enabled"_qs, 0}})).size(), 2);
    EXPECT_EQ(filtered(u"Type"_qs, 2), onlyCall);
    EXPECT_EQ(filtered(u"Type"_qs, filters::allMarker).size(), 2);
    EXPECT_EQ(filtered(u"Category"_qs, cafe->category()->uri()), onlyCafe);
    EXPECT_EQ(filtered(u"Category"_qs, filters::noneMarker), onlyCall);
    EXPECT_EQ(filtered(u"Category"_qs, u"x-morvane://gone/EntityCategory/1"_qs).size(), 2);
    EXPECT_EQ(filtered(u"Tags"_qs, QVariantList{cafe->tags().at(0)->uri()}), onlyCafe);
    EXPECT_EQ(filtered(u"Tags"_qs, QVariantList{u"x-morvane://gone/EntityTags/1"_qs}), QStringList());
    EXPECT_EQ(filtered(u"Tags"_qs, QVariantList()), onlyCall);
    EXPECT_EQ(filtered(u"Tags"_qs, u"a text"_qs).size(), 2);
    const auto period = [](Date from, Date to) {
        return with(u"Period"_qs,
                    {{u"From"_qs, QVariant::fromValue(from)}, {u"To"_qs, QVariant::fromValue(to)}});
    };
    // The start of a day counts for a ToDo that starts with it, though the period begins at noon.
    cafe->setCreationDate(localDate(2020, 1, 1));
    cafe->setDueDate(localDate(2027, 1, 1));
    EXPECT_EQ(filtered(period(localDate(2026, 11, 25, 12), localDate(2026, 11, 25, 13))), onlyCafe);
    EXPECT_EQ(filtered(period(localDate(2026, 12, 24, 9), localDate(2026, 12, 24, 9))), onlyCall);
    EXPECT_EQ(filtered(period(localDate(2026, 12, 24, 10), localDate(2026, 12, 24, 11))), QStringList());
}

TEST_F(FilterPredicates, BeginAPeriodWithTheFirstRunAndEndItToday)
{
    UserDefaults::standard().setObject(settings::firstRun, QVariant::fromValue(localDate(2026, 11, 10, 12)));
    const auto due = [this](const QString &title, Date date) {
        add(title, TaskType::ToDo, {}, date)->setCreationDate(localDate(2020, 1, 1));
    };
    due(u"before"_qs, localDate(2026, 11, 9, 23, 59));
    due(u"that morning"_qs, localDate(2026, 11, 10, 8));
    due(u"tonight"_qs, localDate(2026, 11, 21, 23, 59));
    due(u"tomorrow"_qs, localDate(2026, 11, 22, 23, 59));
    add(u"call"_qs, TaskType::EmailCall, {}, localDate(2026, 11, 10, 8))
        ->setCreationDate(localDate(2020, 1, 1));
    EXPECT_FALSE(DBWorker::saveContext());
    const auto period = [](const QVariantMap &dates) {
        QStringList found = filtered(with(u"Period"_qs, dates));
        found.sort();
        return found;
    };
    EXPECT_EQ(period({}), QStringList({u"that morning"_qs, u"tonight"_qs}))
        << "whole days count for a ToDo, and only for one";
    EXPECT_EQ(period({{u"From"_qs, QVariant::fromValue(localDate(2026, 11, 11))}}),
              QStringList(u"tonight"_qs));
    EXPECT_EQ(period({{u"To"_qs, QVariant::fromValue(localDate(2026, 11, 12))}}),
              QStringList(u"that morning"_qs));
    UserDefaults::standard().removeObject(settings::firstRun);
    EXPECT_EQ(period({}), QStringList(u"tonight"_qs)) << "a week without a first run";
}

TEST_F(FilterPredicates, OnlyNarrowWhatAListHoldsAnyway)
{
    add(u"idea"_qs);
    add(u"today"_qs, TaskType::ToDo, localDate(2026, 11, 21), localDate(2026, 11, 21, 23, 59));
    add(u"over"_qs)->setStatus(TaskStatus::Done);
    EXPECT_FALSE(DBWorker::saveContext());
    const FilterEntry over = with(u"Status"_qs, {{u"Value"_qs, 3}});
    const FilterEntry open = with(u"Status"_qs, {{u"Value"_qs, 0}});
    EXPECT_TRUE(titles(DBWorker::allInboxTasks(&over)).isEmpty());
    EXPECT_TRUE(titles(DBWorker::allTodayTasks(&over)).isEmpty());
    EXPECT_EQ(titles(DBWorker::allInboxTasks(&open)), QStringList(u"idea"_qs));
    EXPECT_EQ(titles(DBWorker::allTodayTasks(&open)), QStringList(u"today"_qs));
}

} // namespace
