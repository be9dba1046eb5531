#include "CoreTest.h"

#include "records/SearchIndex.h"
#include "records/SearchViewController.h"
#include "store/state/NotificationNames.h"

#include <QCoreApplication>
#include <QDeadlineTimer>

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
            lines.append(row.isHeading() ? row.heading : u"- "_qs + row.name);
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
        notifications::clickTableSearch, [&](const ObjectPtr &one) { clicked.push_back(one); });
    search(u"Ltd"_qs);
    EXPECT_FALSE(results.doubleClick(0));
    EXPECT_FALSE(results.doubleClick(7));
    EXPECT_TRUE(results.doubleClick(1));
    EXPECT_EQ(clicked, std::vector<ObjectPtr>({results.rows().at(1).record()}));
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
    const auto house = titled<EntityProject>(u"House"_qs);
    house->setCategory(EntityCategory::title(u"HomeCategory"_qs));
    const auto title = DBWorker::allContactCategories().first();
    title->setTitle(u"HomeCategory"_qs);
    ann->setContactCategory(title);
    EXPECT_FALSE(DBWorker::saveContext());
    EXPECT_EQ(search(u"312) 5"_qs), QStringList({u"CONTACT"_qs, u"- Ann"_qs, u"COMPANY"_qs, u"- Ltd"_qs}));
    const QStringList both{u"CONTACT"_qs, u"- Ann"_qs, u"COMPANY"_qs, u"- Ltd"_qs};
    for (const QString &typed : {u"1312555"_qs, u"0312-555"_qs, u"001 312 555"_qs, u"+1312/555"_qs})
        EXPECT_EQ(search(typed), both) << qPrintable(typed);
    for (const QString &other : {u"555312"_qs, u"13125556"_qs, u"room 12555"_qs, u"( ) 0"_qs})
        EXPECT_TRUE(search(other).isEmpty()) << qPrintable(other);
    EXPECT_EQ(search(u"home"_qs), QStringList({u"TASK"_qs, u"- lamp"_qs, u"PROJECT"_qs, u"- House"_qs,
                                               u"CONTACT"_qs, u"- Ann"_qs}));
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

/// The answer of a search that runs beside the main loop.
class SearchingLater : public Searching
{
protected:
    template <typename Condition>
    static bool waitFor(Condition condition)
    {
        const QDeadlineTimer end(5000);
        while (!condition()) {
            if (end.hasExpired())
                return false;
            QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents, 20);
        }
        return true;
    }
    QStringList searchLater(const QString &text)
    {
        bool isDone = false;
        results.changeFileterStringLater(text, [&isDone] { isDone = true; });
        EXPECT_TRUE(waitFor([&] { return isDone; }));
        return shown(results);
    }
};

TEST_F(SearchingLater, FindsWhatASearchAtOnceFinds)
{
    const auto ann = context().insert<EntityContacts>();
    ann->setFirstName(u"Ann"_qs);
    ann->setLastName(u"Blüebell"_qs);
    titled<EntityCompany>(u"Blue/Ltd"_qs);
    titled<EntityNote>(u"blue"_qs);
    titled<EntityProject>(u"Blue house"_qs);
    titled<EntityProject>(u"a blue boat"_qs);
    const TaskPtr twice = add(u"Blue"_qs);
    twice->setDetails(u"all blue"_qs);
    SearchIndex::insertEntitySearchIndexString(u"blue"_qs, u"x-morvane://other/EntityTask/none"_qs);
    SearchIndex::insertEntitySearchIndexString(
        u"blue"_qs, u"x-morvane://%1/EntityTask/none"_qs.arg(context().storeIdentifier()));
    EXPECT_FALSE(DBWorker::saveContext());
    const QStringList found = search(u"blue"_qs);
    EXPECT_EQ(found.size(), 11);
    EXPECT_EQ(searchLater(u"blue"_qs), found);
    EXPECT_EQ(results.rows().at(1).record(), twice);
    for (const QString &text : {u"b"_qs, u"ue"_qs, u"E/L"_qs, u"nowhere"_qs, u""_qs})
        EXPECT_EQ(searchLater(text), search(text)) << qPrintable(text);
    UserDefaults::standard().setObject(settings::contactDisplayOrder, 1);
    EXPECT_EQ(searchLater(u"bell"_qs), search(u"bell"_qs));
}

TEST_F(SearchingLater, AnswersOnlyTheLastOfSeveralSearches)
{
    add(u"apple"_qs);
    add(u"banana"_qs);
    QStringList answers;
    for (const QString &text : {u"app"_qs, u"ban"_qs, u"apple"_qs, u"banana"_qs})
        results.changeFileterStringLater(text, [&answers, text] { answers << text; });
    EXPECT_TRUE(results.isSearching());
    EXPECT_TRUE(waitFor([&] { return !results.isSearching(); }));
    results.changeFileterStringLater(u"apple"_qs, [&answers] { answers << u"given up"_qs; });
    results.changeFileterStringLater({}, [&answers] { answers << u"empty"_qs; });
    EXPECT_FALSE(results.isSearching());
    {
        SearchViewController closed;
        closed.changeFileterStringLater(u"apple"_qs, [&answers] { answers << u"closed"_qs; });
    }
    const QDeadlineTimer late(300);
    waitFor([&] { return late.hasExpired(); });
    EXPECT_EQ(answers, QStringList({u"banana"_qs, u"empty"_qs}));
    EXPECT_TRUE(results.rows().empty());
}

} // namespace
