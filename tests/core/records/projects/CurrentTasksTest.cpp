#include "CoreTest.h"

#include "records/CurrentTasks.h"
#include "store/state/NotificationNames.h"

namespace {

class LinkingTasks : public CoreTest
{
protected:
    LinkingTasks()
        : house(context().insert<EntityProject>())
    {
        house->setTitle(u"House"_qs);
    }
    TaskPtr task(const QString &title, OptionalDate start = {}, OptionalDate due = {})
    {
        const TaskPtr made = context().insert<EntityTask>();
        made->setTitle(title);
        made->setStatus(TaskStatus::Open);
        made->setStartDate(start);
        made->setDueDate(due);
        return made;
    }
    static QStringList shown(const CurrentTasks &tasks)
    {
        QStringList texts;
        const auto &rows = tasks.list().rows();
        for (int row = 0; row < static_cast<int>(rows.size()); ++row)
            texts.append(rows[static_cast<std::size_t>(row)].text +
                         (tasks.list().isMarked(row) ? u" x"_qs : QString()));
        return texts;
    }
    QStringList titles() const
    {
        QStringList found;
        const CurrentTasks tasks(house);
        for (const MarkedRows::Row &row : tasks.list().rows())
            if (!row.isHeading())
                found.append(row.text);
        return found;
    }
    static void toggle(CurrentTasks &tasks, const QString &title)
    {
        const auto &rows = tasks.list().rows();
        const auto row = std::ranges::find(rows, title, &MarkedRows::Row::text);
        ASSERT_NE(row, rows.end()) << qPrintable(title);
        tasks.list().toggle(static_cast<int>(row - rows.begin()));
    }

    ProjectPtr house;
};

TEST_F(LinkingTasks, OffersWhatIsOpenAndFreeUnderItsLetters)
{
    task(u"paint"_qs);
    task(u"Ägypten"_qs);
    task(u"7 nails"_qs);
    task({});
    task(u"done"_qs)->setStatus(TaskStatus::Done);
    task(u"apple"_qs)->setProject(house);
    task(u"elsewhere"_qs)->setProject(context().insert<EntityProject>());
    CurrentTasks tasks(house);
    EXPECT_EQ(shown(tasks), (QStringList{u"#"_qs, u"7 nails"_qs, u"A"_qs, u"Ägypten"_qs, u"apple x"_qs,
                                         u"P"_qs, u"paint"_qs}));
    tasks.list().toggle(0);
    EXPECT_EQ(tasks.list().marked().size(), 1u) << "A letter has no mark";
    tasks.list().search(u"AP"_qs);
    EXPECT_EQ(shown(tasks), (QStringList{u"A"_qs, u"apple x"_qs}));
    tasks.list().search(u"agypt"_qs);
    EXPECT_EQ(shown(tasks), (QStringList{u"A"_qs, u"Ägypten"_qs}));
    tasks.list().search({});
    EXPECT_EQ(shown(tasks).size(), 7);
}

TEST_F(LinkingTasks, OffersNothingOutsideOfTheDatesOfAProject)
{
    const auto june = [](int day, int hour = 12) { return localDate(2026, 6, day, hour); };
    task(u"none"_qs);
    task(u"before"_qs, june(1), june(2));
    task(u"across"_qs, june(9), june(11));
    task(u"first"_qs, june(10, 0), june(10));
    task(u"inside"_qs, june(12), june(13));
    task(u"last"_qs, june(20), june(20, 23));
    task(u"late"_qs, june(20), june(21, 0));
    task(u"starts late"_qs, june(21));
    task(u"due early"_qs, {}, june(9));
    house->setStartDate(june(10));
    house->setDueDate(june(20));
    EXPECT_EQ(titles(), (QStringList{u"first"_qs, u"inside"_qs, u"last"_qs, u"none"_qs}));
    house->setDueDate({});
    EXPECT_EQ(titles(), (QStringList{u"first"_qs, u"inside"_qs, u"last"_qs, u"late"_qs, u"none"_qs,
                                     u"starts late"_qs}));
    house->setStartDate({});
    house->setDueDate(june(20));
    EXPECT_EQ(titles(), (QStringList{u"across"_qs, u"before"_qs, u"due early"_qs, u"first"_qs, u"inside"_qs,
                                     u"last"_qs, u"none"_qs}));
    house->setDueDate({});
    EXPECT_EQ(titles().size(), 9);
}

TEST_F(LinkingTasks, WritesOnlyWhatChanged)
{
    const TaskPtr kept = task(u"kept"_qs);
    const TaskPtr left = task(u"left"_qs);
    const TaskPtr done = task(u"done"_qs);
    const TaskPtr added = task(u"added"_qs);
    const TaskPtr gone = task(u"gone"_qs);
    for (const TaskPtr &one : {kept, left, done})
        one->setProject(house);
    done->setStatus(TaskStatus::Done);
    ASSERT_FALSE(DBWorker::saveContext());
    CurrentTasks tasks(house);
    toggle(tasks, u"left"_qs);
    toggle(tasks, u"added"_qs);
    toggle(tasks, u"gone"_qs);
    context().deleteObject(gone);
    ASSERT_FALSE(DBWorker::saveContext());
    std::set<ObjectPtr> written;
    const Observation commits = NotificationCenter::defaultCenter().addObserver(
        notifications::contextDidSave, [&](const StoreChanges &changes) {
            for (const StoreChanges::Update &update : changes.updated)
                if (update.object->entity().name() == EntityTask::entityName)
                    written.insert(update.object);
        });
    EXPECT_TRUE(tasks.save());
    EXPECT_EQ(written, (std::set<ObjectPtr>{left, added}));
    EXPECT_EQ(left->project(), nullptr);
    EXPECT_EQ(added->project(), house);
    EXPECT_EQ(kept->project(), house);
    EXPECT_EQ(done->project(), house) << "What was not offered stays";
    written.clear();
    EXPECT_TRUE(tasks.save());
    EXPECT_TRUE(written.empty());
}

TEST_F(LinkingTasks, OffersAllTasksToAContactAndACompany)
{
    const auto ann = context().insert<EntityContacts>();
    const auto firm = context().insert<EntityCompany>();
    const TaskPtr done = task(u"done"_qs);
    done->setStatus(TaskStatus::Done);
    done->setProject(house);
    for (const ObjectPtr &object : {ObjectPtr(ann), ObjectPtr(firm)}) {
        CurrentTasks tasks(object);
        toggle(tasks, u"done"_qs);
        EXPECT_TRUE(tasks.save());
        EXPECT_EQ(CurrentTasks(object).list().marked().size(), 1u);
    }
    const auto bob = context().insert<EntityContacts>();
    const auto detailFor = [](const ObjectPtr &object) {
        const CurrentTasks tasks(object);
        return tasks.list().rows().back().detail;
    };
    ann->setFirstName(u"Ann"_qs);
    EXPECT_EQ(detailFor(bob), u"Ann"_qs) << "whose task it is, before it is taken";
    EXPECT_EQ(detailFor(ann), QString());
    EXPECT_EQ(done->delegateToUser(), ann);
    EXPECT_EQ(done->company(), firm);
    EXPECT_EQ(done->project(), house);
}

TEST(MarkedRowsTest, MarkWhatIsShownAndLeaveWhatIsFixed)
{
    MarkedRows rows(MarkedRows::LettersInSearch::Go);
    rows.setEntries({{1, u"Bo"_qs}, {2, u"Ann"_qs}, {3, u"Åsa"_qs}, {4, u"9 lives"_qs}});
    rows.setFixed({3});
    const auto texts = [&] {
        QStringList all;
        for (const MarkedRows::Row &row : rows.rows())
            all.append(row.text);
        return all.join(u' ');
    };
    EXPECT_EQ(texts(), u"# 9 lives A Ann Åsa B Bo"_qs);
    rows.toggle(4);
    EXPECT_TRUE(rows.isMarked(4) && rows.marked().empty()) << "one that is fixed takes no press";
    rows.search(u"as"_qs);
    EXPECT_EQ(texts(), u"Åsa"_qs) << "no letters while searching";
    rows.markShown(true);
    EXPECT_TRUE(rows.marked().empty());
    EXPECT_FALSE(rows.areAllShownMarked()) << "there is nothing to mark";
    rows.search(u"n"_qs);
    rows.markShown(true);
    EXPECT_EQ(rows.marked(), std::set<qint64>{2});
    EXPECT_TRUE(rows.areAllShownMarked());
    rows.search({});
    EXPECT_FALSE(rows.areAllShownMarked());
    rows.markShown(true);
    EXPECT_EQ(rows.marked(), (std::set<qint64>{1, 2, 4}));
    rows.setEntries({{1, u"Bo"_qs}});
    EXPECT_TRUE(rows.isMarked(1)) << "marks stay with what is there again";
    rows.markShown(false);
    EXPECT_FALSE(rows.isMarked(1));
}

} // namespace
