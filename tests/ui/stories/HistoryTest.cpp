// What was changed in a record, in its window, and how a former value comes back.

#include "calendarsync/RecordsTransaction.h"
#include "cloud/IcloudManager.h"
#include "records/HistoryWindow.h"
#include "records/ProjectForm.h"
#include "records/RecordHistory.h"
#include "ui/support/ShellTest.h"
#include "widgets/CheckList.h"

#include <QPushButton>

using namespace Qt::Literals::StringLiterals;

class HistoryTest : public ShellTest
{
protected:
    HistoryWindow &open()
    {
        run(ActionId::ShowHistory);
        settle();
        return find<HistoryWindow>(window(), "HistoryWindow");
    }
    static CheckList &list(HistoryWindow &history) { return find<CheckList>(history, "tableHistory"); }
    static QStringList lines(HistoryWindow &history)
    {
        QStringList texts;
        for (int line = 0; line < list(history).lineCount(); ++line)
            texts << list(history).textOf(line);
        return texts;
    }
    /// Marks the line and presses the button.
    void restore(HistoryWindow &history, const QString &line)
    {
        const int row = static_cast<int>(lines(history).indexOf(line));
        ASSERT_GE(row, 0) << lines(history).join(u'\n').toStdString();
        QTest::mouseClick(list(history).viewport(), Qt::LeftButton, {},
                          list(history).visualRect(list(history).model()->index(row, 0)).center());
        QTest::mouseClick(&find<QPushButton>(history, "buttonRestore"), Qt::LeftButton);
        settle();
    }
    template <typename Change>
    void at(int hour, ChangeAuthor author, Change change)
    {
        Clock::setSource([hour] { return localDate(2026, 11, 21, hour, 0); });
        RecordsTransaction transaction(author == ChangeAuthor::User ? u"Edit Task"_s : QString(), author);
        change();
        ASSERT_FALSE(transaction.commit());
    }
};

TEST_F(HistoryTest, AFormerValueOfATaskComesBackByItsRulesAndGoesAgain)
{
    const TaskPtr task = add(u"Call the bank"_s, [](MVTask &copy) {
        copy.startDate = localDate(2026, 11, 24, 0, 0);
        copy.dueDate = localDate(2026, 11, 24, 23, 59) + Seconds(59);
    });
    at(10, ChangeAuthor::User, [&] { task->setTitle(u"Call the new bank"_s); });
    at(11, ChangeAuthor::Pass, [&] {
        task->setStartDate(localDate(2026, 11, 28, 0, 0));
        task->setDueDate(localDate(2026, 11, 28, 23, 59) + Seconds(59));
        task->setCalendarID(u"unseen"_s);
    });
    showList(SidebarItem::NotDone);
    clickRow(0);
    HistoryWindow &history = open();
    EXPECT_EQ(history.windowTitle(), u"History of Call the new bank"_s);
    const QStringList shown = lines(history);
    ASSERT_EQ(shown.size(), 7) << shown.join(u'\n').toStdString();
    EXPECT_TRUE(shown[0].endsWith(u" · Calendar"_s)) << shown[0].toStdString();
    EXPECT_TRUE(shown[1].startsWith(u"Start Date: Nov 24, 2026"_s)) << shown[1].toStdString();
    EXPECT_TRUE(shown[3].endsWith(u" · You · Edit Task"_s)) << shown[3].toStdString();
    EXPECT_EQ(shown[4], u"Title: Call the bank → Call the new bank"_s);
    EXPECT_EQ(shown[6], u"Created"_s);
    EXPECT_FALSE(find<QPushButton>(history, "buttonRestore").isEnabled());
    // One date brings the other along, or the task would start after it is due.
    restore(history, shown[2]);
    EXPECT_EQ(task->startDate(), localDate(2026, 11, 24, 0, 0));
    EXPECT_EQ(task->dueDate(), localDate(2026, 11, 24, 23, 59));
    restore(history, shown[4]);
    EXPECT_EQ(task->title(), u"Call the bank"_s);
    EXPECT_TRUE(lines(history).contains(u"Title: Call the new bank → Call the bank"_s)) << "It follows";
    // What is in force already cannot be put back.
    const int former = static_cast<int>(lines(history).indexOf(shown[4]));
    QTest::mouseClick(list(history).viewport(), Qt::LeftButton, {},
                      list(history).visualRect(list(history).model()->index(former, 0)).center());
    EXPECT_FALSE(find<QPushButton>(history, "buttonRestore").isEnabled());
    QTest::keyClick(&list(history), Qt::Key_Escape);
    settle();
    run(ActionId::Undo);
    EXPECT_EQ(task->title(), u"Call the new bank"_s);
}

TEST_F(HistoryTest, TheKeysBringAValueBack)
{
    const TaskPtr task = add(u"Call the bank"_s);
    at(10, ChangeAuthor::User, [&] { task->setTitle(u"Call the new bank"_s); });
    showList(SidebarItem::Inbox);
    clickRow(0);
    HistoryWindow &history = open();
    const auto row = static_cast<int>(lines(history).indexOf(u"Title: Call the bank → Call the new bank"_s));
    ASSERT_GE(row, 0);
    list(history).setCurrentIndex(list(history).model()->index(row, 0));
    QTest::keyClick(&list(history), Qt::Key_Return);
    EXPECT_TRUE(find<QPushButton>(history, "buttonRestore").isEnabled()) << "the first one marks";
    EXPECT_EQ(task->title(), u"Call the new bank"_s);
    QTest::keyClick(&list(history), Qt::Key_Return);
    EXPECT_EQ(task->title(), u"Call the bank"_s);
}

TEST_F(HistoryTest, TagsRulesAndTypesAreToldAndComeBack)
{
    const TaskPtr task = add(u"Run"_s, [](MVTask &copy) {
        copy.startDate = localDate(2026, 11, 24, 0, 0);
        copy.dueDate = localDate(2026, 11, 24, 23, 59);
    });
    std::shared_ptr<EntityTags> tag;
    ContactPtr ann;
    std::shared_ptr<EntityPhone> phone;
    at(9, ChangeAuthor::User, [&] {
        tag = context().insert<EntityTags>();
        tag->setTitle(u"sport"_s);
        task->setTags({tag});
        task->setRepeat(u"RRULE:FREQ=DAILY;INTERVAL=2"_s);
        ann = context().insert<EntityContacts>();
        ann->setFirstName(u"Ann"_s);
        phone = context().insert<EntityPhone>();
        phone->setNumber(u"1"_s);
        phone->setContact(ann);
        phone->setType(DBWorker::allPhoneType().at(0));
    });
    at(10, ChangeAuthor::User, [&] {
        task->setTags({});
        task->setRepeat(QString());
        phone->setType(DBWorker::allPhoneType().at(1));
    });
    const auto restore = [](RecordHistory &history, const QString &wanted) {
        QStringList all;
        for (std::size_t line = 0; line < history.entries()[0].lines.size(); ++line) {
            const RecordHistory::Line &one = history.entries()[0].lines[line];
            all << one.label + u": "_s + one.before + u" > "_s + one.after;
            if (all.last() == wanted)
                return history.restore(0, line);
        }
        ADD_FAILURE() << all.join(u'\n').toStdString();
        return false;
    };
    RecordHistory ofContact(ann);
    EXPECT_TRUE(restore(ofContact, u"Phone type: home > work"_s));
    EXPECT_EQ(phone->type(), DBWorker::allPhoneType().at(0));
    {
        RecordHistory ofTask(task);
        EXPECT_TRUE(restore(ofTask, u"Tags: sport > "_s));
        EXPECT_EQ(task->tags(), std::vector{tag});
    }
    Clock::setSource([] { return localDate(2026, 11, 21, 10, 0); });
    RecordHistory again(task);
    std::size_t entry = 0;
    std::size_t line = 0;
    for (std::size_t one = 0; one < again.entries().size(); ++one)
        for (std::size_t place = 0; place < again.entries()[one].lines.size(); ++place)
            if (again.entries()[one].lines[place].label == u"Repeat"_s &&
                again.entries()[one].lines[place].after.isEmpty()) {
                entry = one;
                line = place;
            }
    EXPECT_EQ(again.entries()[entry].lines[line].before, u"Repeats every 2 days"_s);
    EXPECT_TRUE(again.restore(entry, line));
    EXPECT_TRUE(task->repeat().contains(u"FREQ=DAILY"_s));
}

TEST_F(HistoryTest, WhatBelongedToAContactComesBack)
{
    ContactPtr contact;
    std::shared_ptr<EntityPhone> phone;
    ProjectPtr project;
    at(10, ChangeAuthor::Import, [&] {
        contact = context().insert<EntityContacts>();
        contact->setFirstName(u"Ada"_s);
        phone = context().insert<EntityPhone>();
        phone->setNumber(u"+49 30 1234"_s);
        phone->setContact(contact);
        project = context().insert<EntityProject>();
        project->setTitle(u"House"_s);
        project->setDelegateToUser({contact});
    });
    at(11, ChangeAuthor::User, [&] { context().deleteObject(phone); });
    at(12, ChangeAuthor::User, [&] { project->setDelegateToUser({}); });
    RecordHistory ofContact(contact);
    ASSERT_EQ(ofContact.entries().size(), 3u);
    EXPECT_EQ(ofContact.entries()[2].who, u"Imported"_s);
    ASSERT_EQ(ofContact.entries()[1].lines.size(), 1u);
    EXPECT_EQ(ofContact.entries()[1].lines[0].before, u"+49 30 1234"_s);
    EXPECT_TRUE(ofContact.restore(1, 0));
    ASSERT_EQ(contact->phone().size(), 1u);
    EXPECT_EQ(contact->phone()[0]->number(), u"+49 30 1234"_s);
    for (std::size_t entry = 0; entry < ofContact.entries().size(); ++entry) {
        for (std::size_t line = 0; line < ofContact.entries()[entry].lines.size(); ++line) {
            const bool isLink = ofContact.entries()[entry].lines[line].label == u"Projects"_s;
            EXPECT_FALSE(!isLink && ofContact.restore(entry, line)) << "It comes back once";
        }
    }

    RecordHistory ofProject(project);
    ASSERT_EQ(ofProject.entries()[0].lines.size(), 1u);
    EXPECT_EQ(ofProject.entries()[0].lines[0].before, u"Ada"_s);
    EXPECT_TRUE(ofProject.restore(0, 0));
    EXPECT_EQ(project->delegateToUser(), std::vector<ContactPtr>({contact}));
    // Who is gone cannot be linked again.
    at(13, ChangeAuthor::User, [&] { project->setDelegateToUser({}); });
    at(14, ChangeAuthor::User, [&] { context().deleteObject(contact); });
    ofProject.reload();
    EXPECT_EQ(ofProject.entries()[0].lines[0].before, u"(deleted since)"_s);
    EXPECT_FALSE(ofProject.entries()[0].lines[0].canRestore);
    EXPECT_FALSE(ofProject.restore(0, 0));
}

TEST_F(HistoryTest, WhatTheFormsOfPeopleLinkIsToldAndComesBack)
{
    ContactPtr ann;
    ProjectPtr house;
    CompanyPtr works;
    CompanyPtr mill;
    at(9, ChangeAuthor::User, [&] {
        ann = context().insert<EntityContacts>();
        ann->setFirstName(u"Ann"_s);
        house = context().insert<EntityProject>();
        house->setTitle(u"House"_s);
        works = context().insert<EntityCompany>();
        works->setTitle(u"Works"_s);
        mill = context().insert<EntityCompany>();
        mill->setTitle(u"Mill"_s);
    });
    at(10, ChangeAuthor::User, [&] {
        ann->setProject({house});
        works->setContact({ann});
    });
    at(11, ChangeAuthor::User, [&] {
        ann->setProject({});
        mill->setContact({ann});
    });
    const auto placeOf = [](const RecordHistory &history, const QString &label) {
        const auto &lines = history.entries().front().lines;
        return std::size_t(std::ranges::find(lines, label, &RecordHistory::Line::label) - lines.begin());
    };
    const auto latest = [&](const ObjectPtr &record, const QString &label) {
        const RecordHistory history(record);
        const auto &lines = history.entries().front().lines;
        const std::size_t place = placeOf(history, label);
        return place < lines.size() ? lines[place].before + u" > "_s + lines[place].after : u"-"_s;
    };
    const auto restore = [&](const ObjectPtr &record, const QString &label) {
        RecordHistory history(record);
        return history.restore(0, placeOf(history, label));
    };
    EXPECT_EQ(latest(ann, u"Company"_s), u"Works > Mill"_s);
    EXPECT_EQ(latest(ann, u"Projects"_s), u"House > "_s);
    EXPECT_EQ(latest(house, u"Contacts"_s), u"Ann > "_s);
    EXPECT_EQ(latest(works, u"Contacts"_s), u"Ann > "_s);
    EXPECT_EQ(latest(mill, u"Contacts"_s), u" > Ann"_s);
    Clock::setSource([] { return localDate(2026, 11, 21, 12, 0); });
    EXPECT_TRUE(restore(ann, u"Projects"_s));
    EXPECT_EQ(ann->project(), std::vector{house});
    EXPECT_TRUE(restore(works, u"Contacts"_s));
    EXPECT_EQ(ann->company(), works);
    EXPECT_TRUE(mill->contact().empty());
    Clock::setSource([] { return localDate(2026, 11, 21, 13, 0); });
    EXPECT_EQ(latest(mill, u"Contacts"_s), u"Ann > "_s) << "She has left it again";
    run(ActionId::Undo);
    EXPECT_EQ(ann->company(), mill);
}

TEST_F(HistoryTest, AProjectIsOpenAgainAsIfItHadNeverBeenDone)
{
    ProjectPtr project;
    at(10, ChangeAuthor::User, [&] {
        project = context().insert<EntityProject>();
        project->setTitle(u"House"_s);
        project->setStatus(TaskStatus::Open);
    });
    at(11, ChangeAuthor::User, [&] {
        project->setStatus(TaskStatus::Done);
        project->setExpirationDate(localDate(2026, 11, 21, 11, 0));
    });
    RecordHistory history(project);
    const auto &lines = history.entries()[0].lines;
    ASSERT_EQ(lines.size(), 1u);
    EXPECT_EQ(lines[0].label, u"Status"_s);
    EXPECT_TRUE(history.restore(0, 0));
    EXPECT_EQ(project->status(), TaskStatus::Open);
    EXPECT_FALSE(project->expirationDate());
}

TEST_F(HistoryTest, AContactKeepsAName)
{
    ContactPtr contact;
    at(10, ChangeAuthor::User, [&] {
        contact = context().insert<EntityContacts>();
        contact->setFirstName(u"Ada"_s);
    });
    at(11, ChangeAuthor::User, [&] {
        contact->setLastName(u"Lovelace"_s);
        contact->setFirstName({});
    });
    RecordHistory history(contact);
    const auto &lines = history.entries()[0].lines;
    const auto lastName = std::ranges::find(lines, u"Last Name"_s, &RecordHistory::Line::label);
    ASSERT_NE(lastName, lines.end());
    const ScriptedAlerts alerts({Alert::firstButton});
    EXPECT_FALSE(history.restore(0, static_cast<std::size_t>(lastName - lines.begin())));
    EXPECT_EQ(contact->lastName(), u"Lovelace"_s);
}

TEST_F(HistoryTest, AFormerPhotoComesBackAsLongAsItsFileIsThere)
{
    for (const QString &name : {u"one.png"_s, u"two.png"_s, u"three.png"_s})
        ASSERT_TRUE(IcloudManager::saveImageWithData("picture", name));
    const auto ann = context().insert<EntityContacts>();
    ann->setFirstName(u"Ann"_s);
    ann->setPhotoName(u"one.png"_s);
    ASSERT_FALSE(DBWorker::saveContext());
    at(10, ChangeAuthor::User, [&] { ann->setPhotoName(u"two.png"_s); });
    at(11, ChangeAuthor::User, [&] { ann->setPhotoName(u"three.png"_s); });
    IcloudManager::removeImage(u"one.png"_s);
    RecordHistory history(ann);
    ASSERT_EQ(history.entries().size(), 3U);
    EXPECT_TRUE(history.entries()[0].lines.at(0).canRestore);
    EXPECT_FALSE(history.entries()[1].lines.at(0).canRestore) << "its file is gone";
    Clock::setSource([] { return localDate(2026, 11, 21, 12, 0); });
    EXPECT_TRUE(history.restore(0, 0));
    EXPECT_EQ(ann->photoName(), u"two.png"_s);
    // The one that has left can come back in turn.
    ASSERT_EQ(history.entries().size(), 4U);
    EXPECT_TRUE(history.restore(0, 0));
    EXPECT_EQ(ann->photoName(), u"three.png"_s);
}
