#include "CoreTest.h"

#include "records/ProjectForm.h"
#include "records/ProjectManager.h"
#include "records/dates/MVDate.h"
#include "store/entities/MainContext.h"
#include "support/FullDisk.h"

namespace {

class ProjectForms : public CoreTest
{
protected:
    ContactPtr contact(const QString &name)
    {
        const auto made = context().insert<EntityContacts>();
        made->setFirstName(name);
        return made;
    }
    ProjectPtr project(const QString &title)
    {
        const auto made = context().insert<EntityProject>();
        made->setTitle(title);
        made->setStatus(TaskStatus::Open);
        made->setPriority(Priority::None);
        return made;
    }
    static void choose(ProjectForm &form, int row, const QString &word)
    {
        const auto choices = form.choices(row);
        const auto found = std::ranges::find(choices, word, &FormChoice::text);
        ASSERT_NE(found, choices.end()) << qPrintable(word);
        form.choose(row, static_cast<int>(found - choices.begin()));
        if (!form.links(row).empty())
            return;
        EXPECT_EQ(form.chosen(row), static_cast<int>(found - choices.begin()));
    }
    static void pick(ProjectForm &form, int row, Date date)
    {
        DatePickerState state = form.openPicker(row);
        ASSERT_TRUE(state.showPopover);
        form.acceptDate(row, state, date);
    }
};

TEST_F(ProjectForms, ANewOneIsStoredWithAllThatWasPutIn)
{
    const ContactPtr ann = contact(u"Ann"_qs);
    const ContactPtr bob = contact(u"Bob"_qs);
    ProjectForm form;
    EXPECT_FALSE(form.isTouched());
    EXPECT_FALSE(form.save()) << "A title is missing";
    EXPECT_EQ(form.text(ProjectForm::StatusRow), u"Open"_qs);
    form.setText(ProjectForm::Title, u"House"_qs);
    form.setText(ProjectForm::Details, u"with a garden"_qs);
    choose(form, ProjectForm::StatusRow, u"Done"_qs);
    choose(form, ProjectForm::PriorityRow, u"High"_qs);
    pick(form, ProjectForm::StartDate, localDate(2026, 12, 1, 15));
    pick(form, ProjectForm::DueDate, localDate(2026, 12, 24, 8));
    choose(form, ProjectForm::Contacts, u"Bob"_qs);
    choose(form, ProjectForm::Contacts, u"Ann"_qs);
    EXPECT_TRUE(form.choices(ProjectForm::Contacts).empty()) << "Both take part already";
    ASSERT_EQ(form.links(ProjectForm::Contacts).size(), 2u);
    EXPECT_EQ(form.links(ProjectForm::Contacts).front().record, ann);
    form.unlink(ProjectForm::Contacts, ann);
    ASSERT_TRUE(form.save());

    const auto stored = std::static_pointer_cast<EntityProject>(form.record());
    EXPECT_EQ(stored->title(), u"House"_qs);
    EXPECT_EQ(stored->details(), u"with a garden"_qs);
    EXPECT_EQ(stored->priority(), Priority::High);
    EXPECT_EQ(stored->expirationDate(), Clock::now()) << "Done is done now";
    EXPECT_EQ(stored->startDate(), localDate(2026, 12, 1));
    EXPECT_EQ(stored->dueDate(), MVDate::getEndOfDay(localDate(2026, 12, 24)));
    EXPECT_EQ(stored->delegateToUser(), std::vector{bob});
    EXPECT_EQ(stored->creationDate(), Clock::now());
    choose(form, ProjectForm::StatusRow, u"Pending"_qs);
    EXPECT_FALSE(form.currentProject().expirationDate) << "What is left open again was not done";
}

TEST_F(ProjectForms, ATitleOfBlanksIsNone)
{
    ProjectForm form;
    form.setText(ProjectForm::Title, u" \n"_qs);
    EXPECT_FALSE(form.canSave() || form.save());
    form.setText(ProjectForm::Title, u" House "_qs);
    ASSERT_TRUE(form.save());
    const auto house = std::static_pointer_cast<EntityProject>(form.record());
    EXPECT_EQ(house->title(), u"House"_qs);
    // What another program wrote stays while nobody edits it, and blanks are as no title.
    house->setTitle(u"House "_qs);
    ASSERT_FALSE(DBWorker::saveContext());
    ProjectForm edit(house);
    edit.setText(ProjectForm::Details, u"old"_qs);
    ASSERT_TRUE(edit.save());
    EXPECT_EQ(house->title(), u"House "_qs);
    edit.setText(ProjectForm::Title, u"  "_qs);
    ASSERT_TRUE(edit.save());
    EXPECT_EQ(house->title(), ProjectManager::titleForWant());
}

TEST_F(ProjectForms, AnEditFollowsWhatItDoesNotTouch)
{
    const ProjectPtr house = project(u"House"_qs);
    ProjectForm form(house);
    EXPECT_FALSE(form.isChanged());
    form.setText(ProjectForm::Title, u"Castle"_qs);
    const TaskPtr task = context().insert<EntityTask>();
    task->setProject(house);
    house->setTitle(u"Hut"_qs);
    house->setPriority(Priority::Low);
    house->setStatus(TaskStatus::Done);
    house->setExpirationDate(localDate(2026, 11, 1));
    EXPECT_EQ(form.finishEdit(), FormModel::EditEnd::Saved);
    EXPECT_EQ(house->title(), u"Castle"_qs);
    EXPECT_EQ(house->priority(), Priority::Low);
    EXPECT_EQ(house->expirationDate(), localDate(2026, 11, 1));
    EXPECT_EQ(house->task(), std::vector{task}) << "A task that came meanwhile stays";
    EXPECT_EQ(form.finishEdit(), FormModel::EditEnd::Unchanged);
    form.setText(ProjectForm::Title, {});
    form.rollback();
    EXPECT_EQ(form.title(), u"Castle"_qs);

    // The rules of projects stop it.
    task->setStartDate(localDate(2026, 6, 1));
    pick(form, ProjectForm::StartDate, localDate(2026, 7, 1));
    {
        const ScriptedAlerts told({Alert::firstButton});
        EXPECT_EQ(form.finishEdit(), FormModel::EditEnd::Refused);
        EXPECT_EQ(told.asked().size(), 1u);
    }
    EXPECT_EQ(house->startDate(), OptionalDate());
    EXPECT_EQ(form.date(ProjectForm::StartDate).date, localDate(2026, 7, 1)) << "What was picked stays";
    form.clear(ProjectForm::StartDate);
    EXPECT_FALSE(form.isChanged());
}

TEST_F(ProjectForms, MembersWhoComeAndGoMeanwhileAreMergedWithThoseOfTheEdit)
{
    const ContactPtr ann = contact(u"Ann"_qs);
    const ContactPtr bob = contact(u"Bob"_qs);
    const ContactPtr cher = contact(u"Cher"_qs);
    const ContactPtr dora = contact(u"Dora"_qs);
    const ProjectPtr house = project(u"House"_qs);
    house->setDelegateToUser({ann, dora});
    ProjectForm form(house);
    choose(form, ProjectForm::Contacts, u"Cher"_qs);
    house->setDelegateToUser({ann, bob});
    EXPECT_EQ(form.finishEdit(), FormModel::EditEnd::Saved);
    EXPECT_THAT(house->delegateToUser(), testing::UnorderedElementsAre(ann, bob, cher));
    form.unlink(ProjectForm::Contacts, ann);
    house->setDelegateToUser({ann, bob, cher, dora});
    EXPECT_EQ(form.finishEdit(), FormModel::EditEnd::Saved);
    EXPECT_THAT(house->delegateToUser(), testing::UnorderedElementsAre(bob, cher, dora));
}

TEST_F(ProjectForms, WhatWasPutInComesBackFromADraft)
{
    const ContactPtr ann = contact(u"Ann"_qs);
    contact(u"Ann"_qs);
    const ProjectPtr house = project(u"House"_qs);
    ASSERT_FALSE(DBWorker::saveContext());
    ProjectForm left(house);
    EXPECT_TRUE(left.encodedDraft().isEmpty());
    left.setText(ProjectForm::Details, u"of stone"_qs);
    choose(left, ProjectForm::StatusRow, u"Done"_qs);
    choose(left, ProjectForm::PriorityRow, u"Medium"_qs);
    pick(left, ProjectForm::DueDate, localDate(2026, 12, 24));
    left.choices(ProjectForm::Contacts);
    left.choose(ProjectForm::Contacts, 0);
    const auto draft = RecordDraft::decoded(left.encodedDraft());
    ASSERT_TRUE(draft);
    ProjectForm form(house);
    form.resume(*draft);
    for (const FormRow &row : form.rows())
        EXPECT_EQ(form.kept(row.id), left.kept(row.id)) << qPrintable(row.name);
    EXPECT_EQ(form.title(), u"House"_qs);
    EXPECT_TRUE(form.isChanged());
}

TEST_F(ProjectForms, ADraftOfOneThatIsGoneHasAllAndOfOneThatIsThereWhatWasEdited)
{
    const ContactPtr ann = contact(u"Ann"_qs);
    const ProjectPtr house = project(u"House"_qs);
    house->setPriority(Priority::Low);
    house->setDueDate(localDate(2026, 12, 24));
    house->setDelegateToUser({ann});
    ASSERT_FALSE(DBWorker::saveContext());
    ProjectForm left(house);
    left.setText(ProjectForm::Details, u"of stone"_qs);
    const auto early = RecordDraft::decoded(left.encodedDraft());
    ASSERT_TRUE(early);

    house->setTitle(u"Hut"_qs);
    house->setPriority(Priority::High);
    house->setDelegateToUser({});
    ASSERT_FALSE(DBWorker::saveContext());
    ProjectForm present(house);
    present.resume(*early);
    EXPECT_EQ(present.text(ProjectForm::Details), u"of stone"_qs);
    EXPECT_EQ(present.title(), u"Hut"_qs) << "Another device has changed it";
    EXPECT_EQ(present.currentProject().priority, Priority::High);
    EXPECT_TRUE(present.links(ProjectForm::Contacts).empty());

    context().deleteObject(house);
    ASSERT_FALSE(DBWorker::saveContext());
    EXPECT_EQ(left.finishEdit(), FormModel::EditEnd::Gone);
    const auto late = RecordDraft::decoded(left.encodedDraft());
    ASSERT_TRUE(late);
    ProjectForm anew;
    anew.resume(*late);
    for (const FormRow &row : anew.rows())
        EXPECT_EQ(anew.kept(row.id), left.kept(row.id)) << qPrintable(row.name);
    EXPECT_EQ(anew.title(), u"House"_qs);
    EXPECT_EQ(anew.links(ProjectForm::Contacts).size(), 1u);
    ASSERT_TRUE(anew.save());
    EXPECT_EQ(std::static_pointer_cast<EntityProject>(anew.record())->dueDate(), localDate(2026, 12, 24));
}

TEST_F(ProjectForms, WhatTheDiskDidNotTakeIsTriedAgainOrGivenUp)
{
    ProjectForm form;
    form.setText(ProjectForm::Title, u"House"_qs);
    {
        const FullDisk disk;
        const ScriptedAlerts told({Alert::firstButton});
        EXPECT_FALSE(form.save());
    }
    EXPECT_EQ(form.title(), u"House"_qs);
    form.giveUp();
    EXPECT_EQ(context().count(EntityProject::fetchRequest()), 0);
    ProjectForm other;
    other.setText(ProjectForm::Title, u"Boat"_qs);
    {
        const FullDisk disk;
        const ScriptedAlerts told({Alert::firstButton});
        EXPECT_FALSE(other.save());
    }
    EXPECT_TRUE(other.save());
    EXPECT_EQ(context().count(EntityProject::fetchRequest()), 1);
}

} // namespace
