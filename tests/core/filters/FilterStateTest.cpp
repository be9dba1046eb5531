#include "FilterSteps.h"

#include "filters/FilterState.h"
#include "filters/TaskGrouping.h"
#include "filters/TasksFilter.h"

namespace {

class FilterStates : public FilterTest
{
protected:
    TasksFilter filter{1};
    int reloads = 0;
    FilterState state{filter, [this] { ++reloads; }};
};

TEST_F(FilterStates, FollowThePopoverAndTheClearing)
{
    state.filterStartSettings();
    EXPECT_EQ(state.filterDictionary(), nullptr);
    EXPECT_FALSE(state.isCancelViewVisible());
    EXPECT_EQ(state.labelText(), u"Filter"_qs);
    EXPECT_EQ(reloads, 0);

    filter.changeValueForKey(u"x"_qs, u"Title"_qs);
    EXPECT_EQ(reloads, 1);
    ASSERT_NE(state.filterOfList(), nullptr);
    EXPECT_EQ(*state.filterOfList(), taskEntry(u"1"_qs));
    EXPECT_EQ(state.buttonState(), 1);
    EXPECT_EQ(state.labelText(), u"Filtered"_qs);

    TasksFilter later(1);
    FilterState nextStart(later, [] {});
    nextStart.filterStartSettings();
    EXPECT_TRUE(nextStart.isCancelViewVisible());

    state.clickDeactiveFilter();
    EXPECT_EQ(reloads, 2);
    EXPECT_EQ(state.filterDictionary(), nullptr);
    EXPECT_EQ(state.buttonState(), 0);
    EXPECT_EQ(taskEntry(u"1"_qs), filters::pristineTaskEntry());
    nextStart.filterStartSettings();
    EXPECT_FALSE(nextStart.isCancelViewVisible());
}

TEST_F(FilterStates, RestWhileTheListIsGrouped)
{
    state.filterStartSettings();
    filter.changeValueForKey(u"x"_qs, u"Title"_qs);
    const FilterEntry entry = taskEntry(u"1"_qs);
    state.setSelectedIndex(0);
    EXPECT_EQ(state.filterOfList(), nullptr);
    EXPECT_NE(state.filterDictionary(), nullptr);
    EXPECT_FALSE(state.isCancelViewVisible());
    EXPECT_FALSE(state.isButtonEnabled());
    EXPECT_EQ(state.buttonState(), 0);
    EXPECT_EQ(state.labelText(), u"Filter inactive, grouping is activated"_qs);
    state.setSelectedIndex(-1);
    ASSERT_NE(state.filterOfList(), nullptr);
    EXPECT_EQ(*state.filterOfList(), entry);
    EXPECT_EQ(taskEntry(u"1"_qs), entry);
    EXPECT_EQ(state.labelText(), u"Filtered"_qs);
}

TEST_F(FilterStates, KeepTheGroupingOfEachList)
{
    const TaskGrouping today(0);
    const TaskGrouping notDone(3);
    EXPECT_EQ(today.selectedIndex(), -1);
    today.setSelectedIndex(2);
    notDone.setSelectedIndex(0);
    EXPECT_EQ(today.selectedIndex(), 2);
    EXPECT_EQ(notDone.selectedIndex(), 0);
    EXPECT_EQ(defaults().object(settings::taskGrouped).toMap(),
              (QVariantMap{{u"0"_qs, 2}, {u"1"_qs, -1}, {u"2"_qs, -1}, {u"3"_qs, 0}}));
    const TaskGrouping inbox(-1);
    inbox.setSelectedIndex(1);
    EXPECT_EQ(inbox.selectedIndex(), -1);
    EXPECT_EQ(defaults().object(settings::taskGrouped).toMap().size(), 4);
    for (const QVariant &odd : {QVariant(7), QVariant(u"x"_qs), QVariant(QVariantList({1})), QVariant(-2)}) {
        defaults().setObject(settings::taskGrouped, QVariantMap{{u"0"_qs, odd}});
        EXPECT_EQ(today.selectedIndex(), -1);
    }
    defaults().setObject(settings::taskGrouped, QVariantMap{{u"0"_qs, u"1"_qs}});
    EXPECT_EQ(today.selectedIndex(), 1);
    defaults().setObject(settings::taskGrouped, u"none"_qs);
    EXPECT_EQ(today.selectedIndex(), -1);
    today.setSelectedIndex(1);
    EXPECT_EQ(today.selectedIndex(), 1);
}

} // namespace
