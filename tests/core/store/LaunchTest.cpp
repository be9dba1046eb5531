#include "CoreTest.h"

#include <QProcess>

namespace {

class Launch : public CoreTest
{
protected:
    template <typename T>
    int count()
    {
        return context().count(T::fetchRequest());
    }
};

TEST_F(Launch, SeedsWhatIsMissingAndNothingElse)
{
    EXPECT_EQ(count<EntityURLType>(), 6);
    EXPECT_EQ(count<EntityPhoneType>(), 9);
    EXPECT_EQ(count<EntityEmailType>(), 4);
    EXPECT_EQ(count<EntityAddressType>(), 3);
    EXPECT_EQ(count<EntityCategory>(), 5);
    EXPECT_EQ(count<EntityContactCategory>(), 12);
    EXPECT_FALSE(EntityCategory::getCustom());
    EXPECT_EQ(EntityCategory::title(u"General"_qs)->defaultCategory(), false);
    EXPECT_FALSE(EntityCategory::title(u"Work"_qs)->defaultCategory());

    EntityCategory::title(u"Work"_qs)->setColorR(0.5);
    for (const auto &type : DBWorker::allPhoneType())
        context().deleteObject(type);
    EXPECT_FALSE(DBWorker::saveContext());
    quit();
    launch();
    EXPECT_EQ(EntityCategory::title(u"Work"_qs)->colorR(), 0.5);
    EXPECT_EQ(count<EntityCategory>(), 5);
    ASSERT_EQ(count<EntityPhoneType>(), 9);
    EXPECT_EQ(EntityPhoneType::type(u"pager"_qs)->index(), 7);
    // What the program puts in place is nothing that the user could take back; the deletion is.
    EXPECT_FALSE(context().undo());
    EXPECT_FALSE(context().canUndo());
}

TEST_F(Launch, FindsTasksThatAnotherProgramWrote)
{
    quit();
    QProcess shell;
    shell.start(u"sqlite3"_qs,
                {storePath(), u"INSERT INTO EntityTask (id, title, type, status, dueSomeDay, position) VALUES"
                              " ('from elsewhere', 'Grüße', 0, 0, 0, 1)"_qs});
    ASSERT_TRUE(shell.waitForFinished());
    ASSERT_EQ(shell.exitCode(), 0) << shell.readAllStandardError().constData();
    launch();
    const TaskList inbox = DBWorker::allInboxTasks();
    ASSERT_EQ(titles(inbox), QStringList(u"Grüße"_qs));
    const QString uri = DBWorker::getIdFromObject(inbox.first());
    EXPECT_TRUE(uri.endsWith(u"/EntityTask/from%20elsewhere"_qs));
    EXPECT_EQ(DBWorker::getObjectFromId(uri), inbox.first());
    context().deleteObject(inbox.first());
    EXPECT_FALSE(DBWorker::saveContext());
    EXPECT_EQ(DBWorker::getObjectFromId(uri), nullptr);
}

} // namespace
