#include "CoreTest.h"

#include "calendarsync/RecordsTransaction.h"
#include "foundation/Region.h"
#include "records/Functional.h"
#include "store/queries/ContactRows.h"

#include <sqlite3.h>

namespace {

class Contacts : public CoreTest
{
protected:
    ~Contacts() override { Region::setLocale(u"en_US"_qs); }

    ContactPtr person(const QString &first, const QString &last)
    {
        const ContactPtr made = context().insert<EntityContacts>();
        made->setFirstName(first);
        made->setLastName(last);
        return made;
    }
    template <typename List>
    static QStringList names(const List &contacts)
    {
        QStringList result;
        for (const ContactPtr &contact : contacts)
            result.append(contact->fullName());
        return result;
    }
    static void showLastNameFirst(bool isLastFirst)
    {
        UserDefaults::standard().setObject(settings::contactDisplayOrder, isLastFirst ? 1 : 0);
    }
};

TEST_F(Contacts, AreNamedAndSortedAsTheUserReadsNames)
{
    const ContactPtr ann = person(u"Ann"_qs, u"Young"_qs);
    const ContactPtr bob = person(u"bob"_qs, u""_qs);
    const ContactPtr lee = person(QString(), u"Lee"_qs);
    const ContactPtr nobody = person(QString(), QString());
    EXPECT_EQ(DBWorker::allDelegateds(), std::vector<ContactPtr>({nobody, ann, lee, bob}));
    EXPECT_EQ(names(DBWorker::allDelegateds()), QStringList({u""_qs, u"Ann Young"_qs, u"Lee"_qs, u"bob"_qs}));
    showLastNameFirst(true);
    EXPECT_EQ(names(DBWorker::allDelegateds()), QStringList({u""_qs, u"Lee"_qs, u"Young Ann"_qs, u"bob"_qs}));
    // Where names are always written so, the setting has no say.
    showLastNameFirst(false);
    Region::setLocale(u"ja_JP"_qs);
    EXPECT_EQ(ann->fullName(), u"Young Ann"_qs);
}

TEST_F(Contacts, AreChosenByTheCriteriaOfAGroup)
{
    const ContactPtr ann = person(u"Ann"_qs, u"Young"_qs);
    person(u"Bob"_qs, u"Old"_qs);
    const CompanyPtr acme = context().insert<EntityCompany>();
    const auto friends = context().fetchFirst<EntityContactCategory>(
        EntityContactCategory::fetchRequest().where(Predicate::format("title = %@", u"Friend"_qs)));
    ann->setCompany(acme);
    ann->setContactCategory(friends);
    add(u"call"_qs)->setDelegateToUser(ann);
    EXPECT_EQ(acme->employees(), u"1 employees"_qs);

    const auto group = context().insert<EntityContactGroup>();
    const QStringList bobAlone(u"Bob Old"_qs);
    const QStringList annAlone(u"Ann Young"_qs);
    EXPECT_EQ(names(group->allDelegateds()), bobAlone) << "without a company and without a category";
    group->setCompanies({acme});
    group->setAllCategories(true);
    EXPECT_EQ(names(group->allDelegateds()), annAlone);
    group->setAllCompanies(true);
    EXPECT_EQ(names(group->allDelegateds()), annAlone + bobAlone);
    group->setAllCategories(false);
    group->setCategories({friends});
    EXPECT_EQ(names(group->allDelegateds()), annAlone);
    group->setAllCategories(true);
    group->setCriteria(1);
    EXPECT_EQ(names(group->allDelegateds()), annAlone);
    group->setCriteria(2);
    EXPECT_EQ(names(group->allDelegateds()), bobAlone);

    // A group that does not say what it is is a list.
    EXPECT_EQ(DBWorker::allContactPrivateList().first(), group);
    group->setUseGeneralFilter(false);
    EXPECT_EQ(DBWorker::allContactPrivateGroup().first(), group);
    EXPECT_TRUE(DBWorker::allContactPrivateList().isEmpty());
}

TEST_F(Contacts, AreReadAheadInStepsAmongWhichTheyChange)
{
    const auto listed = [] {
        QStringList all;
        for (const ContactRows::Named &one : ContactRows::named(EntityContacts::fetchRequest()))
            all << one.fullName;
        return all;
    };
    constexpr int many = 25'000;
    std::vector<ContactPtr> people;
    for (int number = 0; number < many; ++number)
        people.push_back(person(u"P"_qs, QString::number(number).rightJustified(6, u'0')));
    EXPECT_FALSE(ContactRows::readAhead()) << "not while something waits to be saved";
    ASSERT_FALSE(DBWorker::saveContext());
    context().refreshAllObjects();
    ASSERT_TRUE(ContactRows::readAhead());
    people.front()->setFirstName(u"Z"_qs);
    context().deleteObject(people[1]);
    person(u"A"_qs, u"new"_qs);
    ASSERT_FALSE(DBWorker::saveContext());
    int steps = 1;
    while (ContactRows::readAhead())
        ++steps;
    EXPECT_EQ(steps, 2) << "the last one has nothing left";
    const QStringList all = listed();
    EXPECT_EQ(all.size(), many);
    EXPECT_EQ(all.first(), u"A new"_qs);
    EXPECT_EQ(all.last(), u"Z 000000"_qs);
    EXPECT_FALSE(all.contains(u"P 000001"_qs));
    EXPECT_FALSE(ContactRows::readAhead()) << "they are known";
}

/// The names are kept; whatever changes them must be seen at the next look.
TEST_F(Contacts, AreListedByTheirNamesAsTheyAreNow)
{
    const auto listed = [] {
        QStringList all;
        for (const ContactRows::Named &one : ContactRows::named(EntityContacts::fetchRequest()))
            all << one.fullName;
        return all.join(u", "_qs);
    };
    const ContactPtr ann = person(u"Ann"_qs, u"Young"_qs);
    const ContactPtr bob = person(u"Bob"_qs, u"Old"_qs);
    EXPECT_EQ(listed(), u"Ann Young, Bob Old"_qs);
    ann->setFirstName(u"Zoe"_qs);
    EXPECT_EQ(listed(), u"Bob Old, Zoe Young"_qs) << "unsaved";
    ASSERT_FALSE(DBWorker::saveContext());
    const ContactPtr cid = person(u"Cid"_qs, u"New"_qs);
    context().deleteObject(bob);
    EXPECT_EQ(listed(), u"Cid New, Zoe Young"_qs);
    context().reset();
    EXPECT_EQ(listed(), u"Bob Old, Zoe Young"_qs) << "given up";
    {
        RecordsTransaction renaming(u"Edit"_qs);
        bob->setLastName(u"Kay"_qs);
        ASSERT_FALSE(renaming.commit());
    }
    EXPECT_EQ(listed(), u"Bob Kay, Zoe Young"_qs);
    ASSERT_FALSE(context().undo());
    EXPECT_EQ(listed(), u"Bob Old, Zoe Young"_qs);
    for (int number = 0; number < 400; ++number)
        ann->setLastName(QString::number(number));
    EXPECT_EQ(listed(), u"Bob Old, Zoe 399"_qs);
    ASSERT_FALSE(DBWorker::saveContext());
    // Another program writes to the store.
    sqlite3 *other = nullptr;
    ASSERT_EQ(sqlite3_open(context().path().toUtf8().constData(), &other), SQLITE_OK);
    EXPECT_EQ(sqlite3_exec(other, "UPDATE EntityContacts SET firstName = 'Abe' WHERE firstName = 'Zoe'",
                           nullptr, nullptr, nullptr),
              SQLITE_OK);
    sqlite3_close(other);
    EXPECT_EQ(listed(), u"Abe 399, Bob Old"_qs);
    UserDefaults::standard().setObject(settings::contactDisplayOrder, 1);
    EXPECT_EQ(listed(), u"399 Abe, Old Bob"_qs);
    UserDefaults::standard().removeObject(settings::contactDisplayOrder);
}

TEST_F(Contacts, HoldAPhotoAloneOrWithOthers)
{
    const QString photo = u"face.png"_qs;
    EXPECT_FALSE(Functional::testOrPhotosNameUsed(photo));
    person(u"Ann"_qs, u"Young"_qs)->setPhotoName(photo);
    EXPECT_TRUE(Functional::testOrPhotosNameUsed(photo));
    person(u"Bob"_qs, u"Old"_qs)->setPhotoName(photo);
    EXPECT_FALSE(Functional::testOrPhotosNameUsed(photo));
}

TEST_F(Contacts, MeetAtPlacesThatAreKnownByTheirTitle)
{
    const auto cafe = DBWorker::saveLocation(u"Café"_qs, 48.1, 11.5);
    EXPECT_EQ(DBWorker::saveLocation(u"Café"_qs, 0, 0), cafe);
    EXPECT_EQ(cafe->latitude(), 48.1);
    EXPECT_EQ(DBWorker::allLocations().size(), 1);
    EXPECT_FALSE(context().hasChanges());
}

} // namespace
