#include "FilterSteps.h"

#include "filters/ContactGroups.h"
#include "filters/FilterContact.h"
#include "records/people/GroupMembers.h"
#include "store/state/NotificationNames.h"

namespace {

class ContactFilters : public FilterTest
{
protected:
    using Names = QStringList;
    template <typename List>
    static Names names(const List &contacts)
    {
        Names result;
        for (const ContactPtr &contact : contacts)
            result.append(contact->firstName());
        return result;
    }
    Names filtered() { return names(DBWorker::allDelegateds(&filter.dictionaryComponent())); }
    /// Whom a screen shows, which is told in two ways.
    static Names shown(const EntityContactGroup *group)
    {
        const std::vector<ContactPtr> contacts = ContactGroups::contactsOf(group);
        std::vector<RowId> rows;
        for (const ContactPtr &contact : contacts)
            rows.push_back(contact->rowId());
        EXPECT_EQ(ContactGroups::rowsOf(group), rows);
        return names(contacts);
    }
    static QVariant value(const QString &key)
    {
        return criterion(defaults().object(settings::contactsFilters).toMap(), key).value(u"Value"_qs);
    }

    std::vector<MVContactGroup> told;
    Observation newGroups = NotificationCenter::defaultCenter().addObserver(
        notifications::saveNewContactGroup, [this](const MVContactGroup &group) { told.push_back(group); });

    const ContactPtr ann = person(u"Ann"_qs, u"Lee"_qs);
    const ContactPtr bo = person(u"Bo"_qs);
    const CompanyPtr works = company(u"Works"_qs);
    FilterContact filter;
};

TEST_F(ContactFilters, NarrowTheList)
{
    ann->setCompany(works);
    add(u"task"_qs)->setDelegateToUser(ann);
    EXPECT_EQ(filtered(), Names({u"Ann"_qs, u"Bo"_qs}));
    const std::vector<std::pair<QVariant, Names>> segments = {
        {filters::allMarker, {u"Ann"_qs, u"Bo"_qs}}, {1, {u"Ann"_qs}}, {0, {u"Bo"_qs}}};
    for (int segment = 0; segment < 3; ++segment) {
        filter.setSegmentControllerActivity(segment);
        EXPECT_EQ(value(u"Active"_qs), segments[static_cast<size_t>(segment)].first);
        EXPECT_EQ(filtered(), segments[static_cast<size_t>(segment)].second);
        EXPECT_EQ(FilterContact().segmentControllerActivity(), segment);
    }
    filter.setSegmentControllerActivity(0);
    filter.toPopUp(u"Companies"_qs, {false, {works}});
    EXPECT_EQ(filter.popUpCompanyTitle(), u"\u0421hoose 1 item"_qs);
    EXPECT_EQ(filtered(), Names({u"Ann"_qs}));
    filter.toPopUp(u"Companies"_qs, {false, {}});
    EXPECT_EQ(filtered(), Names({u"Bo"_qs}));
    EXPECT_EQ(filter.popUpCategoryTitle(), u"All"_qs);

    filter.viewWillAppear(context().insert<EntityContactGroup>().get());
    EXPECT_EQ(value(u"Companies"_qs), QVariantList());
    filter.viewWillAppear(nullptr);
    EXPECT_EQ(defaults().object(settings::contactsFilters).toMap(), filters::pristineContactEntry());
    EXPECT_EQ(filtered().size(), 2);
}

TEST_F(ContactFilters, BecomeListsAndComeBackFromThem)
{
    const MVContactGroup pristine = filter.getContactGroup();
    EXPECT_EQ(pristine.title, u"Private List"_qs);
    EXPECT_EQ(pristine.allCompanies, true);
    EXPECT_EQ(pristine.allCategories, true);
    EXPECT_EQ(pristine.criteria, 0);
    EXPECT_FALSE(pristine.useGeneralFilter);

    const auto category = DBWorker::allContactCategories().first();
    filter.setSegmentControllerActivity(2);
    filter.toPopUp(u"Companies"_qs, {false, {works}});
    filter.toPopUp(u"Categories"_qs, {false, {}});
    bool isReloaded = false;
    const auto reload = [&isReloaded] { isReloaded = true; };
    ContactGroups::saveListFilterContacts(filter.getContactGroup(), nullptr, reload);
    ASSERT_EQ(told.size(), 1u);
    EXPECT_FALSE(isReloaded);
    const auto list = ContactGroups::saveContactGroup(told[0]);
    EXPECT_FALSE(ContactGroups::isGroup(*list));
    EXPECT_EQ(list->criteria(), 2);
    EXPECT_EQ(list->allCompanies(), false);
    EXPECT_EQ(list->companies(), std::vector<CompanyPtr>({works}));
    EXPECT_EQ(DBWorker::allContactPrivateList().size(), 1);
    EXPECT_FALSE(context().hasChanges());

    filter.clear();
    filter.setFilter(*list);
    EXPECT_EQ(value(u"Active"_qs), 0);
    EXPECT_EQ(value(u"Companies"_qs), QVariantList({works->uri()}));
    EXPECT_EQ(value(u"Categories"_qs), filters::noneMarker);
    EXPECT_EQ(filter.popUpCategoryTitle(), u"None"_qs);
    EXPECT_EQ(filter.getContactGroup().allCategories, false) << "None of them is not all of them";

    filter.setSegmentControllerActivity(1);
    filter.toPopUp(u"Companies"_qs, {true, {}});
    filter.toPopUp(u"Categories"_qs, {false, {category}});
    ContactGroups::saveListFilterContacts(filter.getContactGroup(), list, reload);
    EXPECT_TRUE(isReloaded);
    EXPECT_EQ(told.size(), 1u);
    EXPECT_EQ(list->criteria(), 1);
    EXPECT_EQ(list->allCompanies(), true);
    EXPECT_TRUE(list->companies().empty());
    EXPECT_EQ(list->categories().size(), 1u);
    list->setCriteria({});
    filter.setFilter(*list);
    EXPECT_EQ(value(u"Active"_qs), filters::allMarker);
    EXPECT_EQ(value(u"Companies"_qs), filters::allMarker);
}

TEST_F(ContactFilters, ShowWhomAListOrAGroupHolds)
{
    ann->setCompany(works);
    add(u"task"_qs)->setDelegateToUser(ann);
    const auto group = context().insert<EntityContactGroup>();
    EXPECT_EQ(shown(nullptr), Names({u"Ann"_qs, u"Bo"_qs}));
    EXPECT_EQ(shown(group.get()), Names({u"Bo"_qs})) << "Nothing set: who has neither company nor category";
    bo->setContactCategory(DBWorker::allContactCategories().first());
    EXPECT_EQ(shown(group.get()), Names());
    group->setAllCategories(true);
    EXPECT_EQ(shown(group.get()), Names({u"Bo"_qs})) << "Without a company";
    group->setAllCompanies(true);
    group->setCriteria(2);
    EXPECT_EQ(shown(group.get()), Names({u"Bo"_qs}));
    group->setCriteria(1);
    EXPECT_EQ(shown(group.get()), Names({u"Ann"_qs}));
    group->setUseGeneralFilter(true);
    EXPECT_EQ(shown(group.get()), Names({u"Ann"_qs}));
    group->setUseGeneralFilter(false);
    EXPECT_EQ(shown(group.get()), Names()) << "A group has its members only";
    group->setContacts({bo});
    EXPECT_EQ(shown(group.get()), Names({u"Bo"_qs}));
}

TEST_F(ContactFilters, OrderByTheFullNameAsItIsShown)
{
    const QStringList firstNames = {u"Annabelle"_qs, QString(), u"ann"_qs,      u"Ännchen"_qs,
                                    u"Annabell"_qs,  u"𝒜nn"_qs, u"\uFFFDnn"_qs, u"Ann"_qs};
    const QStringList lastNames = {u"Lee"_qs, u"Zoe"_qs, QString(), u"Kay"_qs, u"e Lee"_qs, u"Lee-Kay"_qs};
    for (const QString &first : firstNames)
        for (const QString &last : lastNames)
            person(first, last);
    const auto group = context().insert<EntityContactGroup>();
    group->setUseGeneralFilter(false);
    group->setContacts(ContactGroups::contactsOf(nullptr));
    for (const int order : {0, 1}) {
        defaults().setObject(settings::contactDisplayOrder, order);
        EXPECT_EQ(shown(nullptr).size(), firstNames.size() * lastNames.size() + 2);
        shown(group.get());
    }
    defaults().removeObject(settings::contactDisplayOrder);
}

TEST_F(ContactFilters, SetTheButtonsOfTheBar)
{
    const auto group = context().insert<EntityContactGroup>();
    EXPECT_EQ(ContactGroups::activeFilterButtons(nullptr),
              (ContactFilterButtons{{u"Filter"_qs, true, false}, {u"Group"_qs, true, false}}));
    EXPECT_EQ(ContactGroups::activeFilterButtons(group.get()),
              (ContactFilterButtons{{u"Filtered"_qs, true, true}, {u"Group"_qs, false, false}}));
    group->setUseGeneralFilter(false);
    EXPECT_EQ(ContactGroups::activeFilterButtons(group.get()),
              (ContactFilterButtons{{u"Filter"_qs, false, false}, {u"Grouped"_qs, true, true}}));
}

TEST_F(ContactFilters, RenameAGroupButNeverToNothing)
{
    MVContactGroup values;
    values.title = u"Choir"_qs;
    const auto group = ContactGroups::saveContactGroup(values);
    EXPECT_TRUE(ContactGroups::rename(*group, u"  Band "_qs));
    EXPECT_FALSE(ContactGroups::rename(*group, u" \t"_qs));
    EXPECT_FALSE(ContactGroups::rename(*group, u"Band"_qs));
    EXPECT_EQ(group->title(), u"Band"_qs);
    EXPECT_FALSE(context().hasChanges());
}

TEST_F(ContactFilters, PickTheMembersOfAGroup)
{
    const auto press = [](GroupMembers &members, const QString &name) {
        const auto &rows = members.list().rows();
        members.list().toggle(
            static_cast<int>(std::ranges::find(rows, name, &MarkedRows::Row::text) - rows.begin()));
    };
    GroupMembers adding(nullptr);
    EXPECT_EQ(adding.title(), u"Add contacts group"_qs);
    press(adding, u"Ann Lee"_qs);
    press(adding, u"Bo"_qs);
    press(adding, u"Ann Lee"_qs);
    EXPECT_TRUE(adding.save());
    ASSERT_EQ(told.size(), 1u);
    EXPECT_EQ(told[0].title, u"Private Group"_qs);
    EXPECT_EQ(told[0].useGeneralFilter, false);
    EXPECT_EQ(told[0].contacts, std::vector<ContactPtr>({bo}));

    const auto group = ContactGroups::saveContactGroup(told[0]);
    EXPECT_EQ(DBWorker::allContactPrivateGroup().size(), 1);
    group->setTitle(u"Friends"_qs);
    GroupMembers editing(group);
    EXPECT_EQ(editing.title(), u"Edit contacts group"_qs);
    EXPECT_EQ(editing.list().marked(), std::set<RowId>({bo->rowId()}));
    press(editing, u"Ann Lee"_qs);
    context().deleteObject(bo);
    EXPECT_FALSE(DBWorker::saveContext());
    EXPECT_TRUE(editing.save());
    EXPECT_EQ(group->contacts(), std::vector<ContactPtr>({ann}));
    EXPECT_EQ(group->title(), u"Friends"_qs);
    EXPECT_EQ(told.size(), 1u);
    // Who came from elsewhere meanwhile stays; what was picked for a group that went becomes another.
    GroupMembers late(group);
    const ContactPtr cleo = person(u"Cleo"_qs);
    group->setContacts({ann, cleo});
    press(late, u"Ann Lee"_qs);
    EXPECT_TRUE(late.save());
    EXPECT_EQ(group->contacts(), std::vector<ContactPtr>({cleo}));
    context().deleteObject(group);
    EXPECT_FALSE(DBWorker::saveContext());
    EXPECT_TRUE(late.save());
    EXPECT_EQ(told.size(), 2u);
}

TEST_F(ContactFilters, StandUnderTheirInitials)
{
    person(u"Ärmel"_qs);
    person(u"anton"_qs);
    person(u"7 Up"_qs);
    GroupMembers members(nullptr);
    const auto shown = [&members] {
        QStringList texts;
        for (const MarkedRows::Row &row : members.list().rows())
            texts.append(row.isHeading() ? u"["_qs + row.text + u"]"_qs : row.text);
        return texts;
    };
    EXPECT_EQ(shown(), QStringList({u"[#]"_qs, u"7 Up"_qs, u"[A]"_qs, u"Ann Lee"_qs, u"anton"_qs, u"Ärmel"_qs,
                                    u"[B]"_qs, u"Bo"_qs}));
    members.list().search(u"LEE"_qs);
    EXPECT_EQ(shown(), QStringList({u"Ann Lee"_qs})) << "No headers while something is searched for";
}

} // namespace
