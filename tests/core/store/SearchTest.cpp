#include "CoreTest.h"

#include "records/SearchIndex.h"
#include "records/SearchViewController.h"
#include "store/state/NotificationNames.h"

namespace {

class Searching : public CoreTest
{
protected:
    template <typename T>
    std::shared_ptr<T> titled(const QString &title)
    {
        const auto record = context().insert<T>();
        record->setTitle(title);
        return record;
    }
    static QStringList shown(const SearchViewController &search)
    {
        QStringList lines;
        for (const auto &row : search.rows())
            lines.append(row.isHeading() ? row.heading
                                         : u"- "_qs + SearchViewController::getStringWithObject(row.record));
        return lines;
    }
    QStringList search(const QString &text)
    {
        results.changeFileterString(text);
        return shown(results);
    }
    SearchViewController results;
};

TEST_F(Searching, GroupsWhatItFindsInAFixedOrder)
{
    titled<EntityNote>(u"Blue note"_qs);
    titled<EntityCompany>(u"Blue Ltd"_qs);
    const auto ann = context().insert<EntityContacts>();
    ann->setFirstName(u"Ann"_qs);
    ann->setLastName(u"Bluebell"_qs);
    titled<EntityProject>(u"BLUE house"_qs);
    add(u"paint it bleu, no: blüe"_qs);
    const TaskPtr twice = add(u"Blue"_qs);
    twice->setDetails(u"all blue"_qs);
    twice->setDelegateToUser(ann);
    titled<EntityCategory>(u"blue category"_qs);
    EXPECT_FALSE(DBWorker::saveContext());
    EXPECT_EQ(search(u"blue"_qs),
              QStringList({u"TASK"_qs, u"- Blue"_qs, u"- paint it bleu, no: blüe"_qs, u"PROJECT"_qs,
                           u"- BLUE house"_qs, u"CONTACT"_qs, u"- Ann Bluebell"_qs, u"COMPANY"_qs,
                           u"- Blue Ltd"_qs, u"NOTE"_qs, u"- Blue note"_qs}));
    EXPECT_EQ(results.popoverHeight(20, 30), 6 * 20 + 5 * 30);
    EXPECT_EQ(results.popoverHeight(200, 30), 466);
    EXPECT_TRUE(search(u"green"_qs).isEmpty());
    EXPECT_EQ(results.popoverHeight(20, 30), 40);

    std::vector<ObjectPtr> clicked;
    const Observation observation = NotificationCenter::defaultCenter().addObserver(
        notifications::clickTableSearch,
        [&](const Notification &one) { clicked.push_back(std::any_cast<ObjectPtr>(one.object)); });
    search(u"Ltd"_qs);
    EXPECT_FALSE(results.doubleClick(0));
    EXPECT_FALSE(results.doubleClick(7));
    EXPECT_TRUE(results.doubleClick(1));
    EXPECT_EQ(clicked, std::vector<ObjectPtr>({results.rows().at(1).record}));
}

TEST_F(Searching, KnowsNumbersAndShownCategories)
{
    const auto ann = context().insert<EntityContacts>();
    ann->setFirstName(u"Ann"_qs);
    const auto company = titled<EntityCompany>(u"Ltd"_qs);
    for (const bool isOfContact : {true, false}) {
        const auto phone = context().insert<EntityPhone>();
        phone->setNumber(u"+1 (312) 555"_qs);
        isOfContact ? phone->setContact(ann) : phone->setCompany(company);
    }
    const TaskPtr task = add(u"lamp"_qs);
    task->setCategory(EntityCategory::title(u"HomeCategory"_qs));
    EXPECT_FALSE(DBWorker::saveContext());
    EXPECT_EQ(search(u"312) 5"_qs), QStringList({u"CONTACT"_qs, u"- Ann"_qs, u"COMPANY"_qs, u"- Ltd"_qs}));
    EXPECT_EQ(search(u"home"_qs), QStringList({u"TASK"_qs, u"- lamp"_qs}));
    EXPECT_TRUE(search(u"HomeCat"_qs).isEmpty());
}

TEST_F(Searching, SkipsRowsWhoseRecordIsGone)
{
    add(u"here"_qs);
    SearchIndex::insertEntitySearchIndexString(u"here too"_qs, context().storeIdentifier());
    SearchIndex::insertEntitySearchIndexString(
        u"here too"_qs, u"x-morvane://%1/EntityTask/none"_qs.arg(context().storeIdentifier()));
    SearchIndex::insertEntitySearchIndexString(u"here"_qs, EntityCategory::title(u"HomeCategory"_qs)->uri());
    EXPECT_EQ(search(u"here"_qs), QStringList({u"TASK"_qs, u"- here"_qs}));
    EXPECT_EQ(SearchViewController::getEntityIndex(EntityCategory::title(u"HomeCategory"_qs)), 5);
    EXPECT_EQ(SearchViewController::getEntityIndex(nullptr), 5);
    DBWorker::allSearchObjRemove();
    EXPECT_TRUE(search(u"here"_qs).isEmpty());
}

} // namespace
