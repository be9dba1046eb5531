// Several of many are marked.

#include "filters/MultiPick.h"
#include "CoreTest.h"

using namespace Qt::Literals::StringLiterals;

namespace {

class MultiPickTest : public CoreTest
{
protected:
    MultiPickTest()
    {
        const QStringList titles = {u"Ärzte"_s, u"Bank"_s, u"Bakery"_s};
        for (int number = 0; number < titles.size(); ++number) {
            objects.push_back(context().insert<EntityCompany>());
        }
        EXPECT_FALSE(context().save());
        for (std::size_t place = 0; place < objects.size(); ++place)
            entries.push_back({objects[place]->rowId(), titles[static_cast<qsizetype>(place)]});
    }
    MultiPick pickOf(const FilterSelection &selected)
    {
        const auto load = [this](RowId row) {
            const auto found = std::ranges::find(objects, row, [](const auto &one) { return one->rowId(); });
            return found == objects.end() ? nullptr : *found;
        };
        return {entries, load, selected};
    }

    std::vector<ObjectPtr> objects;
    std::vector<MultiPick::Entry> entries;
};

} // namespace

TEST_F(MultiPickTest, APressTogglesARowAndEndsTheStateOfAll)
{
    MultiPick pick = pickOf({.selectedAll = true, .objects = {}});
    EXPECT_TRUE(pick.isMarked(0) && pick.isMarked(2));
    pick.toggle(1);
    EXPECT_FALSE(pick.selectedAll());
    EXPECT_EQ(pick.selection().objects, (std::vector{objects[0], objects[2]}));
    pick.toggle(1);
    EXPECT_FALSE(pick.selection().selectedAll) << "marked one by one is not all";
    pick.toggleAll();
    EXPECT_TRUE(pick.selection().selectedAll);
    pick.toggleAll();
    EXPECT_TRUE(pick.selection().objects.empty());
}

TEST_F(MultiPickTest, ASearchNarrowsWhatIsShownAndKeepsMarksOutsideOfIt)
{
    MultiPick pick = pickOf({.selectedAll = false, .objects = {objects[0]}});
    pick.search(u"ba"_s);
    ASSERT_EQ(pick.rowCount(), 2);
    EXPECT_EQ(pick.titleOf(1), u"Bakery"_s);
    pick.toggle(1);
    pick.search(u"arz"_s);
    ASSERT_EQ(pick.rowCount(), 1);
    EXPECT_TRUE(pick.isMarked(0));
    EXPECT_EQ(pick.selection().objects, (std::vector{objects[0], objects[2]}));
    pick.search(u"zzz"_s);
    EXPECT_EQ(pick.rowCount(), 0);
    pick.search(u"ba"_s);
    pick.toggleAll();
    EXPECT_TRUE(pick.selection().selectedAll) << "all are all, also those that a search hides";
    pick.search({});
    EXPECT_TRUE(pick.isMarked(0));
    pick.search(u"ba"_s);
    pick.toggleAll();
    EXPECT_TRUE(pick.selection().objects.empty());
}
