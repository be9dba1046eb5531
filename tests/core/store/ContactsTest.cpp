#include "CoreTest.h"

#include "foundation/Region.h"
#include "records/Functional.h"

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
