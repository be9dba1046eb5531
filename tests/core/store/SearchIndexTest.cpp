#include "CoreTest.h"

#include "objectstore/Transaction.h"
#include "records/SearchIndex.h"
#include "store/state/NotificationNames.h"
#include "support/OtherProgram.h"

#include <QCoreApplication>
#include <QElapsedTimer>

namespace {

class SearchIndexOfRecords : public CoreTest
{
protected:
    QStringList textsOf(const ObjectPtr &object)
    {
        QStringList texts;
        for (const auto &row : context().fetch<EntitySearchIndex>(
                 EntitySearchIndex::fetchRequest().where(Predicate::format("objectId = %@", object->uri()))))
            texts.append(row->string());
        return texts;
    }
    QStringList sortedTextsOf(const ObjectPtr &object)
    {
        QStringList texts = textsOf(object);
        texts.sort();
        return texts;
    }
    static std::vector<ObjectPtr> found(const QString &text)
    {
        std::vector<ObjectPtr> objects;
        for (const auto &row : DBWorker::searchEntityWithString(text))
            objects.push_back(DBWorker::getObjectFromId(row->objectId()));
        return objects;
    }
};

TEST_F(SearchIndexOfRecords, FollowsSavesDeletesAndUndo)
{
    const auto contact = context().insert<EntityContacts>();
    contact->setFirstName(u"Ann"_qs);
    contact->setLastName(u"Lee"_qs);
    const auto phone = context().insert<EntityPhone>();
    phone->setNumber(u"+1 (312) 555-1212"_qs);
    phone->setContact(contact);
    MVTask copy;
    copy.title = u"Café"_qs;
    copy.details = u"with milk"_qs;
    copy.type = TaskType::ToDo;
    copy.category = EntityCategory::title(u"HomeCategory"_qs);
    copy.delegateToUser = contact;
    copy.save();
    const TaskPtr task = copy.task();
    EXPECT_FALSE(DBWorker::saveContext());
    EXPECT_EQ(textsOf(task), QStringList({u"with milk"_qs, u"Café"_qs, u"Home"_qs, u"Ann Lee"_qs}));
    EXPECT_EQ(textsOf(contact), QStringList({u"Ann Lee"_qs, u"Café"_qs, u"+1 (312) 555-1212"_qs}));
    EXPECT_EQ(found(u"cafe"_qs).size(), 2u);
    EXPECT_EQ(found(u"555-12"_qs), std::vector<ObjectPtr>({contact}));

    task->setTitle(u"Tea"_qs);
    EXPECT_FALSE(DBWorker::saveContext());
    EXPECT_EQ(found(u"tea"_qs), std::vector<ObjectPtr>({task}));
    EXPECT_FALSE(context().undo());
    EXPECT_TRUE(textsOf(task).contains(u"Café"_qs));
    const QString uri = task->uri();
    context().deleteObject(task);
    EXPECT_FALSE(DBWorker::saveContext());
    EXPECT_TRUE(found(u"milk"_qs).empty());
    EXPECT_FALSE(context().undo());
    EXPECT_EQ(found(u"milk"_qs), std::vector<ObjectPtr>({DBWorker::getObjectFromId(uri)}));
}

TEST_F(SearchIndexOfRecords, FollowsWhatIsLinkedAndUnlinked)
{
    const auto contact = context().insert<EntityContacts>();
    contact->setFirstName(u"Ann"_qs);
    const auto project = context().insert<EntityProject>();
    project->setTitle(u"House"_qs);
    const TaskPtr task = add(u"Paint"_qs);
    EXPECT_FALSE(DBWorker::saveContext());
    task->setDelegateToUser(contact);
    task->setProject(project);
    EXPECT_FALSE(DBWorker::saveContext());
    EXPECT_EQ(sortedTextsOf(contact), QStringList({u"Ann"_qs, u"Paint"_qs}));
    EXPECT_EQ(sortedTextsOf(project), QStringList({u"House"_qs, u"Paint"_qs}));
    project->setTitle(u"Garden"_qs);
    EXPECT_FALSE(DBWorker::saveContext());
    EXPECT_EQ(sortedTextsOf(task), QStringList({u"Ann"_qs, u"House"_qs, u"Paint"_qs}))
        << "another title reaches the tasks when they change themselves";
    EXPECT_FALSE(context().undo());
    EXPECT_FALSE(context().undo());
    EXPECT_EQ(sortedTextsOf(contact), QStringList({u"Ann"_qs}));
    EXPECT_FALSE(context().redo());
    EXPECT_EQ(sortedTextsOf(contact), QStringList({u"Ann"_qs, u"Paint"_qs}));
    context().deleteObject(task);
    EXPECT_FALSE(DBWorker::saveContext());
    EXPECT_EQ(sortedTextsOf(contact), QStringList({u"Ann"_qs}));
    EXPECT_EQ(sortedTextsOf(project), QStringList({u"House"_qs}));
    const auto phone = context().insert<EntityPhone>();
    phone->setNumber(u"555"_qs);
    phone->setContact(contact);
    EXPECT_FALSE(DBWorker::saveContext());
    EXPECT_EQ(sortedTextsOf(contact), QStringList({u"555"_qs, u"Ann"_qs}));
    project->setDelegateToUser({contact});
    EXPECT_FALSE(DBWorker::saveContext());
    EXPECT_EQ(sortedTextsOf(contact), QStringList({u"555"_qs, u"Ann"_qs, u"House"_qs}));
}

TEST_F(SearchIndexOfRecords, FindsAContactAndACompanyByAnEditedDetail)
{
    const auto contact = context().insert<EntityContacts>();
    contact->setFirstName(u"Ann"_qs);
    const auto company = context().insert<EntityCompany>();
    company->setTitle(u"Works"_qs);
    const auto phone = context().insert<EntityPhone>();
    phone->setContact(contact);
    const auto url = context().insert<EntityURL>();
    url->setContact(contact);
    const auto email = context().insert<EntityEmail>();
    email->setCompany(company);
    const auto address = context().insert<EntityAddress>();
    address->setCompany(company);
    const auto write = [&](const QString &text) {
        phone->setNumber(text + u" phone"_qs);
        url->setUrl(text + u" url"_qs);
        email->setMail(text + u" mail"_qs);
        address->setCity(text + u" city"_qs);
        EXPECT_FALSE(DBWorker::saveContext());
    };
    write(u"first"_qs);
    write(u"second"_qs);
    EXPECT_EQ(sortedTextsOf(contact), QStringList({u"Ann"_qs, u"second phone"_qs, u"second url"_qs}));
    EXPECT_EQ(sortedTextsOf(company), QStringList({u"Works"_qs, u"second city"_qs, u"second mail"_qs}));
    EXPECT_FALSE(context().undo());
    EXPECT_EQ(sortedTextsOf(contact), QStringList({u"Ann"_qs, u"first phone"_qs, u"first url"_qs}));
}

/// In parts, as an import writes: the names of newcomers reach their company without a look at all its
/// people.
TEST_F(SearchIndexOfRecords, FollowsACompanyThatGrowsInPartsWithWhatElseBecomesOfIt)
{
    const auto company = context().insert<EntityCompany>();
    company->setTitle(u"Works"_qs);
    const auto other = context().insert<EntityCompany>();
    other->setTitle(u"Mill"_qs);
    const auto person = [&](const QString &name, const CompanyPtr &firm) {
        const auto contact = context().insert<EntityContacts>();
        contact->setFirstName(name);
        contact->setCompany(firm);
        return contact;
    };
    const ContactPtr mover = person(u"Max"_qs, other);
    ASSERT_FALSE(DBWorker::saveContext());
    Transaction import(context(), ChangeAuthor::Import, u"Import"_qs);
    SearchIndex::Ahead ahead;
    CompanyPtr young;
    const auto part = [&](
                          const QString &name, const std::function<void()> &more = [] {}) {
        ahead.add(person(name, company));
        ahead.add(person(name, other));
        more();
        ASSERT_FALSE(import.commitPart());
        ahead.committed();
    };
    part(u"Ann"_qs);
    part(u"Ann"_qs, [&] {
        young = context().insert<EntityCompany>();
        young->setTitle(u"Start"_qs);
        ahead.add(person(u"Yve"_qs, young));
    });
    part(u"Bob"_qs, [&] {
        const auto phone = context().insert<EntityPhone>();
        phone->setNumber(u"112"_qs);
        phone->setCompany(company);
        ahead.add(person(u"Zoe"_qs, young));
    });
    part(u"Cid"_qs, [&] { mover->setCompany(company); });
    part(u"Dee"_qs, [&] { mover->setFirstName(u"Moe"_qs); });
    EXPECT_EQ(sortedTextsOf(company), QStringList({u"112"_qs, u"Ann"_qs, u"Ann"_qs, u"Bob"_qs, u"Cid"_qs,
                                                   u"Dee"_qs, u"Moe"_qs, u"Works"_qs}));
    EXPECT_EQ(sortedTextsOf(other),
              QStringList({u"Ann"_qs, u"Ann"_qs, u"Bob"_qs, u"Cid"_qs, u"Dee"_qs, u"Mill"_qs}));
    EXPECT_EQ(sortedTextsOf(young), QStringList({u"Start"_qs, u"Yve"_qs, u"Zoe"_qs}));
}

TEST_F(SearchIndexOfRecords, FindsARenamedProjectAtOnceAndItsTasksByTheOldNameUntilTheyChange)
{
    const auto project = context().insert<EntityProject>();
    project->setTitle(u"House"_qs);
    const TaskPtr task = add(u"paint"_qs);
    task->setProject(project);
    EXPECT_FALSE(DBWorker::saveContext());
    project->setTitle(u"Villa"_qs);
    EXPECT_FALSE(DBWorker::saveContext());
    EXPECT_EQ(found(u"villa"_qs), std::vector<ObjectPtr>({project}));
    EXPECT_EQ(found(u"house"_qs), std::vector<ObjectPtr>({task}));
    task->setDetails(u"white"_qs);
    EXPECT_FALSE(DBWorker::saveContext());
    EXPECT_TRUE(found(u"house"_qs).empty());
    EXPECT_EQ(found(u"villa"_qs).size(), 2U);
}

TEST_F(SearchIndexOfRecords, IsPartOfTheVeryCommitThatChangesTheRecord)
{
    const TaskPtr task = add(u"first"_qs);
    const QString uri = task->uri();
    // The first hearer of the commit ends the program, so to speak.
    const auto ended = NotificationCenter::defaultCenter().addObserver(
        notifications::contextDidSave, [this](const StoreChanges &) { context().reset(); });
    task->setTitle(u"renamed"_qs);
    EXPECT_FALSE(context().save());
    delegate.reset();
    launch();
    EXPECT_EQ(found(u"renamed"_qs), std::vector<ObjectPtr>({DBWorker::getObjectFromId(uri)}));
    EXPECT_TRUE(found(u"first"_qs).empty());
}

TEST_F(SearchIndexOfRecords, FollowsAnUndoAndARedo)
{
    const TaskPtr task = add(u"first"_qs);
    task->setTitle(u"renamed"_qs);
    EXPECT_FALSE(context().save());
    ASSERT_FALSE(context().undo());
    EXPECT_EQ(found(u"first"_qs), std::vector<ObjectPtr>({task}));
    EXPECT_TRUE(found(u"renamed"_qs).empty());
    ASSERT_FALSE(context().redo());
    EXPECT_EQ(found(u"renamed"_qs), std::vector<ObjectPtr>({task}));
}

TEST_F(SearchIndexOfRecords, IsLeftAloneWhenTheInboxIsReordered)
{
    add(u"a"_qs);
    add(u"b"_qs);
    DBWorker::allSearchObjRemove();
    const TaskList inbox = DBWorker::allInboxTasks();
    DBWorker::newPositionInboxTask({1}, 0, {inbox.at(0), inbox.at(1)});
    EXPECT_TRUE(found(u"a"_qs).empty());
    EXPECT_EQ(found(add(u"the next one"_qs)->title()).size(), 1u) << "only the reordering is left out";
    inbox.at(0)->setDetails(u"new"_qs);
    EXPECT_FALSE(DBWorker::saveContext());
    EXPECT_EQ(found(u"a"_qs).size(), 1u);
}

/// Rows that other programs write.
class SearchOfOthersRows : public SearchIndexOfRecords
{
protected:
    /// Lets the program do what it does when there is time.
    static bool waitFor(const std::function<bool()> &isSo)
    {
        QElapsedTimer timer;
        timer.start();
        while (!isSo() && timer.elapsed() < 5000)
            QCoreApplication::processEvents(QEventLoop::AllEvents, 50);
        return isSo();
    }
    static bool isFound(const QString &text, size_t count = 1)
    {
        return waitFor([&] { return found(text).size() == count; });
    }
    static constexpr const char *newTasks =
        "INSERT INTO EntityTask (id, title, type, status, dueSomeDay) VALUES ('other', 'from elsewhere', 0, "
        "0, "
        "0); INSERT INTO EntityContacts (id, firstName) VALUES ('ann', 'Ann');"
        "UPDATE EntityTask SET delegateToUser = 'ann' WHERE id = 'other'";
};

TEST_F(SearchOfOthersRows, FindsThemWhileItRuns)
{
    add(u"mine"_qs);
    int told = 0;
    const Observation commits = NotificationCenter::defaultCenter().addObserver(
        notifications::contextDidSave, [&told](const StoreChanges &changes) { told += changes.isUnknown; });
    // By then nothing is left to be done that would look at the store.
    waitFor([now = QElapsedTimer()]() mutable {
        if (!now.isValid())
            now.start();
        return now.elapsed() > 1000;
    });
    writeElsewhere(storePath(), newTasks);
    EXPECT_TRUE(waitFor([&told] { return told == 1; })) << "also while nobody asks the store anything";
    EXPECT_TRUE(isFound(u"from elsewhere"_qs, 2)) << "the task and whom it is delegated to";
    EXPECT_TRUE(isFound(u"ann"_qs, 2));
    EXPECT_EQ(told, 1);
    writeElsewhere(storePath(), "UPDATE EntityTask SET title = 'renamed' WHERE id = 'other'");
    EXPECT_TRUE(isFound(u"renamed"_qs, 2));
    EXPECT_TRUE(isFound(u"from elsewhere"_qs, 0));
    writeElsewhere(storePath(), "DELETE FROM EntityTask");
    EXPECT_TRUE(isFound(u"renamed"_qs, 0));
    EXPECT_TRUE(isFound(u"mine"_qs, 0));
    EXPECT_FALSE(context().canRedo());
}

TEST_F(SearchOfOthersRows, FindsThemWhenItIsStartedAgain)
{
    add(u"mine"_qs);
    quit();
    writeElsewhere(storePath(), newTasks);
    launch();
    EXPECT_TRUE(isFound(u"from elsewhere"_qs, 2));
    EXPECT_TRUE(isFound(u"mine"_qs));
}

TEST_F(SearchOfOthersRows, FindsWhatStandsInAStoreOfAFormerVersionAndForgetsWhatIsGone)
{
    const QString swept = settings::sweptSearchIndexes;
    add(u"kept"_qs);
    const QString gone = add(u"gone"_qs)->uri();
    quit();
    writeElsewhere(storePath(),
                   "DROP TABLE ObjectStoreElsewhere; PRAGMA user_version = 2; PRAGMA writable_schema = ON;"
                   "DELETE FROM sqlite_master WHERE name LIKE '%elsewhere%'");
    // Without the triggers.
    writeElsewhere(storePath(), "INSERT INTO EntityTask (id, title) VALUES ('odd id/%', 'from elsewhere');"
                                "DELETE FROM EntityTask WHERE title = 'gone'");
    UserDefaults::standard().removeObject(swept);
    launch();
    EXPECT_TRUE(isFound(u"from elsewhere"_qs));
    const auto texts = [&](const QString &text) {
        return context().count(
            EntitySearchIndex::fetchRequest().where(Predicate::format("string = %@", text)));
    };
    EXPECT_TRUE(waitFor([&] { return texts(u"gone"_qs) == 0; }));
    EXPECT_EQ(texts(u"kept"_qs), 1);
    EXPECT_EQ(texts(u"from elsewhere"_qs), 1);
    EXPECT_TRUE(waitFor([&] {
        return UserDefaults::standard().object(swept).toStringList().contains(context().storeIdentifier());
    })) << "a second time would find nothing";
}

} // namespace
