// The badges, counted on another thread.

#include "CoreTest.h"

#include "store/queries/BackgroundBadges.h"
#include "support/Becomes.h"

#include <QCoreApplication>

namespace {

class Badges : public CoreTest
{
protected:
    std::vector<TaskBadges> told;
    std::unique_ptr<BackgroundBadges> badges =
        std::make_unique<BackgroundBadges>([this](const TaskBadges &counted) { told.push_back(counted); });
};

TEST_F(Badges, AreThoseOfTheLastSaveHoweverOftenTheyAreWanted)
{
    add(u"inbox"_qs);
    add(u"late"_qs, TaskType::Appointment, localDate(2026, 11, 20, 9), localDate(2026, 11, 20, 10));
    badges->count();
    // While that runs: one more wish stands for all of them.
    const TaskPtr done = add(u"done"_qs);
    done->setStatus(TaskStatus::Done);
    done->setExpirationDate(localDate(2026, 11, 21));
    EXPECT_FALSE(DBWorker::saveContext());
    for (int wish = 0; wish < 5; ++wish)
        badges->count();
    ASSERT_TRUE(becomes([this] { return told.size() == 2; }));
    EXPECT_EQ(told.back(), DBWorker::taskBadges());
    EXPECT_EQ(told.back().today, (Badge{1, 1}));
    EXPECT_EQ(told.back().done, (Badge{0, 1}));
    QCoreApplication::processEvents(QEventLoop::AllEvents, 50);
    EXPECT_EQ(told.size(), 2u);
}

TEST_F(Badges, OfAStoreThatIsNotInUseAnyMoreAreNotTold)
{
    add(u"own"_qs);
    badges->count();
    UserDefaults::standard().setObject(settings::valueSwitchDatabase, 1);
    const TaskBadges sample = DBWorker::taskBadges();
    badges->count();
    ASSERT_TRUE(becomes([this] { return !told.empty(); }));
    EXPECT_EQ(told, std::vector({sample}));
    badges->count();
    badges.reset();
    QCoreApplication::processEvents(QEventLoop::AllEvents, 50);
    EXPECT_EQ(told.size(), 1u) << "nobody hears it";
    UserDefaults::standard().setObject(settings::valueSwitchDatabase, 0);
}

} // namespace
