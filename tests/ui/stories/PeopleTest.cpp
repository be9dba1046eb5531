// People and companies: lists beside which the selected one is read and edited, with pictures, links, tasks
// and groups.

#include "cloud/IcloudManager.h"
#include "records/DetailStack.h"
#include "records/FormItems.h"
#include "records/PortraitField.h"
#include "records/RecordListScreen.h"
#include "records/RecordWindow.h"
#include "records/people/ContactForm.h"
#include "shell/people/ContactViewController.h"
#include "shell/people/PeopleDetailViewControllers.h"
#include "shell/tasks/LinkedTasksView.h"
#include "shell/tasks/TaskDetailViewController.h"
#include "store/state/SettingsKeys.h"
#include "support/OtherProgram.h"
#include "ui/support/ShellTest.h"
#include "widgets/DatePickerPopover.h"
#include "widgets/GrowingTextField.h"
#include "widgets/MonthGrid.h"
#include "widgets/RowItemView.h"
#include "workspace/Workspace.h"

#include <QApplication>
#include <QBuffer>
#include <QClipboard>
#include <QComboBox>
#include <QDragEnterEvent>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMimeData>
#include <QPushButton>
#include <QTemporaryDir>
#include <QToolButton>

using namespace Qt::Literals::StringLiterals;

namespace {

class PeopleTest : public ShellTest
{
protected:
    PeopleTest()
    {
        works = company(u"Works"_s);
        ann = contact(u"Ann"_s, u"Lee"_s);
        bob = contact(u"Bob"_s, u"Kay"_s);
        cleo = contact(u"Cleo"_s, {});
        Workspace::setUrlOpener([this](const QString &url) {
            opened.append(url);
            return isAnythingOpened;
        });
    }
    ~PeopleTest() override { Workspace::setUrlOpener({}); }

    ContactPtr contact(const QString &firstName, const QString &lastName)
    {
        const auto made = context().insert<EntityContacts>();
        made->setFirstName(firstName);
        made->setLastName(lastName);
        save();
        return made;
    }
    CompanyPtr company(const QString &title)
    {
        const auto made = context().insert<EntityCompany>();
        made->setTitle(title);
        save();
        return made;
    }
    static void save()
    {
        EXPECT_FALSE(DBWorker::saveContext());
        settle();
    }
    void go(SidebarItem item)
    {
        controller().goToList(item);
        settle();
    }
    RecordListScreen &people() { return static_cast<RecordListScreen &>(*controller().currentScreen()); }
    QStringList rows(int role = Qt::DisplayRole)
    {
        QStringList shown;
        const QAbstractItemModel &model = *people().table()->model();
        for (int row = 0; row < model.rowCount(); ++row)
            shown.append(model.index(row, 0).data(role).toString());
        return shown;
    }
    void select(const QString &title)
    {
        people().table()->selectRow(static_cast<int>(rows().indexOf(title)));
        settle();
    }
    DetailViewController *top() { return controller().detailStack()->top(); }
    RecordPane &pane() { return *dynamic_cast<RecordPane *>(top()); }
    QString name() { return find<QLabel>(pane(), "labelName").text(); }
    QLineEdit &line(const char *controlName) { return find<QLineEdit>(pane(), controlName); }
    void press(const QWidget &in, const char *button)
    {
        QTest::mouseClick(&find<QAbstractButton>(in, button), Qt::LeftButton);
        settle();
    }
    void pressAdd()
    {
        auto &button = find<ToolBarButton>(window(), "buttonAdd");
        QTest::mouseClick(&button, Qt::LeftButton, {}, {button.height() / 2, button.height() / 2});
        settle();
    }
    void edit() { press(pane(), "buttonEdit"); }
    /// The fields of a row that can be seen.
    static QList<QLineEdit *> fields(const QWidget &in, const QString &row)
    {
        QList<QLineEdit *> shown;
        for (auto *field : in.findChild<QWidget *>(u"items"_s + row)->findChildren<QLineEdit *>(u"field"_s))
            if (field->isVisible())
                shown.append(field);
        return shown;
    }
    QList<QLabel *> links(const QString &row)
    {
        QList<QLabel *> shown;
        const auto *items = pane().findChild<QWidget *>(u"items"_s + row);
        for (auto *label : items->findChildren<QLabel *>(u"labelLink"_s))
            if (label->isVisible())
                shown.append(label);
        return shown;
    }
    /// Those whose rows are seen, by their names.
    static QString shownRows(const QWidget &in)
    {
        QStringList shown;
        for (const auto *row : in.findChildren<RowItemView *>())
            if (!row->isRowHidden())
                shown.append(row->objectName().mid(3));
        return shown.join(u' ');
    }
    static QByteArray png(const QColor &colour, int width = 40, int height = 30)
    {
        QImage image(width, height, QImage::Format_RGB32);
        image.fill(colour);
        QByteArray bytes;
        QBuffer buffer(&bytes);
        buffer.open(QIODevice::WriteOnly);
        image.save(&buffer, "PNG");
        return bytes;
    }

    CompanyPtr works;
    ContactPtr ann;
    ContactPtr bob;
    ContactPtr cleo;
    QStringList opened;
    bool isAnythingOpened = true;
};

TEST_F(PeopleTest, AreListedReadEditedAndTakenBack)
{
    ann->setCompany(works);
    save();
    go(SidebarItem::People);
    EXPECT_EQ(rows(), (QStringList{u"Ann Lee"_s, u"Bob Kay"_s, u"Cleo"_s}));
    EXPECT_EQ(rows(Qt::AccessibleTextRole).first(), u"Ann Lee, Works"_s);
    EXPECT_EQ(name(), u"Ann Lee"_s);
    EXPECT_EQ(shownRows(pane()), u"Title Company"_s) << "what says nothing has no room";
    edit();
    EXPECT_EQ(shownRows(pane()), u"Title JobTitle Company Phones Address Emails URLs Birthday Project"_s);
    EXPECT_TRUE(line("textFieldName").hasFocus());
    EXPECT_EQ(line("textFieldLastName").placeholderText(), u"Last Name"_s);
    QTest::keyClicks(&line("textFieldName"), u"e"_s);

    // The eye goes from the name over the pop-ups to the telephones.
    QStringList met;
    for (int step = 0; step < 7; ++step) {
        QTest::keyClick(window().focusWidget(), Qt::Key_Tab);
        met.append(window().focusWidget()->objectName());
    }
    EXPECT_EQ(met.join(u' '),
              u"textFieldLastName popUpButtonJobTitle popUpButtonCompany field popUpButtonType "
              u"field field"_s);
    fields(pane(), u"Phones"_s).first()->setFocus();
    QTest::keyClicks(window().focusWidget(), u"+49 7331"_s);
    ASSERT_EQ(fields(pane(), u"Phones"_s).size(), 2) << "there is always a free one";
    EXPECT_TRUE(fields(pane(), u"Phones"_s).first()->hasFocus());
    for (int step = 0; step < 3; ++step)
        QTest::keyClick(window().focusWidget(), Qt::Key_Tab);
    EXPECT_TRUE(fields(pane(), u"Phones"_s).last()->hasFocus());
    QTest::keyClicks(window().focusWidget(), u"0171"_s);
    EXPECT_EQ(fields(pane(), u"Phones"_s).size(), 3);
    QTest::keyClicks(fields(pane(), u"Address"_s).at(1), u"Ulm"_s);
    EXPECT_EQ(fields(pane(), u"Address"_s).size(), 10);
    run(ActionId::Save);
    settle();
    EXPECT_FALSE(pane().isEditing());
    EXPECT_EQ(rows().first(), u"Anne Lee"_s);
    EXPECT_EQ(name(), u"Anne Lee"_s);
    EXPECT_EQ(shownRows(pane()), u"Title Company Phones Address"_s);
    EXPECT_EQ(ann->phone().size(), 2u);
    EXPECT_EQ(ann->address().size(), 1u);
    run(ActionId::Undo);
    settle();
    EXPECT_EQ(name(), u"Ann Lee"_s);
    EXPECT_TRUE(ann->phone().empty() && ann->address().empty());
    EXPECT_EQ(shownRows(pane()), u"Title Company"_s);

    // Elsewhere somebody changes their name, and a search finds somebody else.
    bob->setFirstName(u"Zoe"_s);
    save();
    EXPECT_EQ(rows(), (QStringList{u"Ann Lee"_s, u"Cleo"_s, u"Zoe Kay"_s}));
    go(SidebarItem::Inbox);
    controller().searchSelectItem(bob);
    settle();
    EXPECT_EQ(name(), u"Zoe Kay"_s);
    EXPECT_EQ(people().selectedRecord(), bob);
}

TEST_F(PeopleTest, APaneShowsTheNamesThatLinkedRecordsHaveNow)
{
    ann->setCompany(works);
    const auto project = context().insert<EntityProject>();
    project->setTitle(u"House"_s);
    project->setDelegateToUser({ann});
    save();
    const auto isShown = [this](const QString &text) {
        const auto says = [&](const QLabel *label) {
            return label->isVisible() && label->text().contains(text);
        };
        return std::ranges::any_of(pane().findChildren<QLabel *>(), says);
    };
    go(SidebarItem::People);
    select(u"Ann Lee"_s);
    EXPECT_TRUE(isShown(u"Works"_s) && isShown(u"House"_s));
    works->setTitle(u"Mill"_s);
    project->setTitle(u"Garden"_s);
    save();
    EXPECT_TRUE(isShown(u"Mill"_s) && isShown(u"Garden"_s));
    EXPECT_FALSE(isShown(u"Works"_s) || isShown(u"House"_s));

    go(SidebarItem::Projects);
    people().table()->selectRow(0);
    settle();
    EXPECT_TRUE(isShown(u"Ann Lee"_s));
    ann->setLastName(u"Kay"_s);
    save();
    EXPECT_TRUE(isShown(u"Ann Kay"_s));
    EXPECT_FALSE(isShown(u"Ann Lee"_s));
}

TEST_F(PeopleTest, AnEntryTakenOutIsGone)
{
    const auto phone = context().insert<EntityPhone>();
    phone->setNumber(u"12"_s);
    phone->setContact(ann);
    save();
    go(SidebarItem::People);
    edit();
    QTest::keyClicks(fields(pane(), u"Phones"_s).last(), u"34"_s);
    const auto remove = pane().findChild<QWidget *>(u"itemsPhones"_s)->findChildren<QToolButton *>();
    EXPECT_EQ(remove.first()->accessibleName(), u"Remove 12"_s);
    EXPECT_FALSE(remove.last()->isVisible()) << "the free one stays";
    QTest::mouseClick(remove.first(), Qt::LeftButton);
    settle();
    ASSERT_EQ(fields(pane(), u"Phones"_s).size(), 2);
    EXPECT_EQ(fields(pane(), u"Phones"_s).first()->text(), u"34"_s);
    EXPECT_TRUE(fields(pane(), u"Phones"_s).first()->hasFocus());
    edit();
    ASSERT_EQ(ann->phone().size(), 1u);
    EXPECT_EQ(ann->phone().front()->number(), u"34"_s);
}

TEST_F(PeopleTest, TheSecondLineOfAStreetCanBeEditedWhereThereIsOne)
{
    const auto address = context().insert<EntityAddress>();
    address->setStreet1(u"Main Street 1"_s);
    address->setStreet2(u"Rear building"_s);
    address->setCity(u"Ulm"_s);
    address->setContact(ann);
    save();
    go(SidebarItem::People);
    edit();
    QList<QLineEdit *> shown;
    for (QLineEdit *field : fields(pane(), u"Address"_s)) {
        if (field->isVisible() && field->text() == u"Rear building"_s)
            shown.append(field);
    }
    ASSERT_EQ(shown.size(), 1);
    EXPECT_EQ(shown.front()->placeholderText(), u"Street"_s);
    shown.front()->setFocus();
    shown.front()->selectAll();
    QTest::keyClick(shown.front(), Qt::Key_Delete);
    EXPECT_TRUE(shown.front()->isVisible()) << "it is being typed in";
    QTest::keyClicks(shown.front(), u"Floor 2"_s);
    edit();
    EXPECT_EQ(address->street2(), u"Floor 2"_s);
    EXPECT_EQ(address->street1(), u"Main Street 1"_s);
    address->setStreet2({});
    save();
    edit();
    EXPECT_FALSE(shown.front()->isVisible());
}

TEST_F(PeopleTest, LinksLeadToTheProgramsOfTheDesktop)
{
    ContactForm form(ann);
    form.items(PeopleForm::Phones)->setText(0, 0, u"+49 (7331) 30"_s);
    form.items(PeopleForm::Emails)->setText(0, 0, u"ann@example.org"_s);
    form.items(PeopleForm::Urls)->setText(0, 0, u"<b>example.org</b>"_s);
    form.items(PeopleForm::Addresses)->setText(0, 1, u"Ulm"_s);
    ASSERT_TRUE(form.save());
    go(SidebarItem::People);
    for (const QString &row : {u"Phones"_s, u"Emails"_s, u"URLs"_s, u"Address"_s}) {
        ASSERT_EQ(links(row).size(), 1) << row.toStdString();
        links(row).front()->setFocus(Qt::TabFocusReason);
        Q_EMIT links(row).front()->linkActivated({});
    }
    EXPECT_EQ(opened, (QStringList{u"tel:+49733130"_s, u"mailto:ann@example.org"_s,
                                   u"https://%3Cb%3Eexample.org%3C/b%3E"_s,
                                   u"https://www.openstreetmap.org/search?query=Ulm"_s}));
    EXPECT_TRUE(links(u"URLs"_s).front()->text().contains(u"&lt;b&gt;"_s));

    isAnythingOpened = false;
    const ScriptedAlerts copy({Alert::firstButton});
    Q_EMIT links(u"Phones"_s).front()->linkActivated({});
    ASSERT_EQ(copy.asked().size(), 1u);
    EXPECT_EQ(copy.asked().front().buttons.first(), u"Copy"_s);
    EXPECT_EQ(QApplication::clipboard()->text(), u"+49 (7331) 30"_s);
}

TEST_F(PeopleTest, ABirthdayIsPickedByYearsAndCleared)
{
    go(SidebarItem::People);
    edit();
    QTest::mouseClick(&find<QWidget>(pane(), "datePickerBirthday"), Qt::LeftButton);
    settle();
    auto *bubble = dynamic_cast<DatePickerPopover *>(QApplication::activePopupWidget());
    ASSERT_TRUE(bubble);
    auto *grid = bubble->findChild<MonthGrid *>();
    QTest::keyClick(grid, Qt::Key_Right);
    for (int year = 0; year < 60; ++year)
        QTest::keyClick(grid, Qt::Key_PageUp, Qt::ShiftModifier);
    QTest::mouseClick(grid, Qt::LeftButton, {}, {4, 4});
    QTest::keyClick(grid, Qt::Key_Return);
    settle();
    edit();
    EXPECT_EQ(ann->birthday(), localDate(1966, 11, 21)) << "turning the page by the mouse picks nothing";
    EXPECT_EQ(shownRows(pane()), u"Title Birthday"_s);
    edit();
    QTest::keyClick(&find<QWidget>(pane(), "datePickerBirthday"), Qt::Key_Delete);
    edit();
    EXPECT_FALSE(ann->birthday());
}

// From one to the other

TEST_F(PeopleTest, PanesLeadFromATaskToItsPersonToTheirCompanyAndBack)
{
    ann->setCompany(works);
    const TaskPtr task = add(u"call"_s);
    task->setDelegateToUser(ann);
    save();
    go(SidebarItem::Inbox);
    controller().searchSelectItem(task);
    settle();
    auto *taskPane = dynamic_cast<TaskDetailViewController *>(top());
    ASSERT_TRUE(taskPane);
    auto *row = taskPane->findChild<QWidget *>(u"rowContacts"_s);
    press(*row, "buttonGo");
    EXPECT_TRUE(QTest::qWaitFor([this] { return dynamic_cast<DetailContactViewController *>(top()); }));
    EXPECT_EQ(name(), u"Ann Lee"_s);
    EXPECT_FALSE(pane().isEmbedded());
    press(*pane().findChild<QWidget *>(u"rowCompany"_s), "buttonGo");
    ASSERT_TRUE(dynamic_cast<CompanyDetailViewController *>(top()));
    EXPECT_EQ(name(), u"Works"_s);

    // The company gets a second person, and the first one goes.
    edit();
    auto &popUp = find<QComboBox>(pane(), "popUpButtonContacts");
    ASSERT_EQ(popUp.count(), 2);
    Q_EMIT popUp.activated(0);
    settle();
    const auto unlink = pane().findChildren<QToolButton *>(u"buttonUnlink"_s);
    ASSERT_EQ(unlink.size(), 2);
    QTest::mouseClick(unlink.first(), Qt::LeftButton);
    settle();
    edit();
    EXPECT_FALSE(ann->company());
    EXPECT_EQ(bob->company(), works);
    press(pane(), "buttonBack");
    EXPECT_TRUE(QTest::qWaitFor([this] { return dynamic_cast<DetailContactViewController *>(top()); }));
    EXPECT_EQ(shownRows(pane()), u"Title"_s) << "it works there no more";
    run(ActionId::Undo);
    settle();
    EXPECT_EQ(shownRows(pane()), u"Title Company"_s);
    press(pane(), "buttonBack");
    EXPECT_TRUE(QTest::qWaitFor([&] { return top() == taskPane; }));
}

TEST_F(PeopleTest, TasksAreWrittenDownForAPersonAndACompany)
{
    ann->setCompany(works);
    save();
    go(SidebarItem::People);
    press(pane(), "buttonAddTask");
    ASSERT_TRUE(newTaskWindow());
    QTest::keyClicks(&find<GrowingTextField>(*newTaskWindow(), "textFieldTitle"), u"call"_s);
    press(*newTaskWindow(), "buttonSave");
    EXPECT_EQ(stored(u"call"_s)->delegateToUser(), ann);
    EXPECT_EQ(stored(u"call"_s)->company(), works);
    const auto *tasks = pane().findChild<LinkedTasksView *>();
    EXPECT_EQ(tasks->allTasksCount(), 1);

    go(SidebarItem::Companies);
    EXPECT_EQ(rows(Qt::AccessibleTextRole), QStringList{u"Works, 1 employee"_s});
    EXPECT_EQ(pane().findChild<LinkedTasksView *>()->allTasksCount(), 1);
    press(pane(), "buttonAddTask");
    QTest::keyClicks(&find<GrowingTextField>(*newTaskWindow(), "textFieldTitle"), u"order"_s);
    press(*newTaskWindow(), "buttonSave");
    EXPECT_EQ(stored(u"order"_s)->company(), works);
    EXPECT_FALSE(stored(u"order"_s)->delegateToUser());
    EXPECT_EQ(pane().findChild<LinkedTasksView *>()->allTasksCount(), 2);
    bob->setCompany(works);
    save();
    EXPECT_EQ(rows(Qt::AccessibleTextRole), QStringList{u"Works, 2 employees"_s});
}

TEST_F(PeopleTest, NewOnesAreMadeInTheirWindowsFromAnyScreen)
{
    go(SidebarItem::Companies);
    pressAdd();
    auto *newCompany = window().findChild<RecordWindow *>(u"WindowNewCompany"_s);
    ASSERT_TRUE(newCompany && newCompany->isVisible());
    EXPECT_EQ(shownRows(*newCompany), u"Title Details Phones Address Emails URLs Contact"_s);
    EXPECT_FALSE(find<QPushButton>(*newCompany, "buttonSave").isEnabled());
    QTest::keyClicks(newCompany->focusWidget(), u"Baker"_s);
    press(*newCompany, "buttonSave");
    EXPECT_EQ(rows(), (QStringList{u"Baker"_s, u"Works"_s}));

    go(SidebarItem::People);
    pressAdd();
    auto *newContact = window().findChild<RecordWindow *>(u"WindowNewContacts"_s);
    ASSERT_TRUE(newContact && newContact->isVisible());
    QTest::keyClicks(newContact->focusWidget(), u"Dora"_s);
    QTest::keyClicks(fields(*newContact, u"Emails"_s).first(), u"dora@example.org"_s);
    {
        const ScriptedAlerts stay({Alert::secondButton});
        press(*newContact, "buttonClose");
        EXPECT_EQ(stay.asked().size(), 1u);
    }
    press(*newContact, "buttonSave");
    EXPECT_EQ(rows().last(), u"Dora"_s);
    const auto dora = EntityContacts::firstName(u"Dora"_s, {});
    EXPECT_EQ(people().selectedRecord(), dora);
    EXPECT_EQ(name(), u"Dora"_s) << "one goes on with who is new";
    run(ActionId::Undo);
    settle();
    EXPECT_EQ(rows().size(), 3) << "with all that belongs to them";
    EXPECT_EQ(context().count(EntityEmail::fetchRequest()), 0);
}

// What others do meanwhile

TEST_F(PeopleTest, WhatWasTypedForSomebodyWhoIsDeletedOpensAsNew)
{
    go(SidebarItem::People);
    edit();
    QTest::keyClicks(&line("textFieldLastName"), u"-Kim"_s);
    QTest::keyClicks(fields(pane(), u"Phones"_s).first(), u"12"_s);
    const QByteArray sql = "DELETE FROM EntityContacts WHERE id = '" + ann->identifier().toUtf8() + "'";
    writeElsewhere(context().path(), sql.constData());
    context().lookForChangesFromElsewhere();
    EXPECT_TRUE(QTest::qWaitFor([this] { return window().findChild<RecordWindow *>() != nullptr; }));
    settle();
    auto *left = window().findChild<RecordWindow *>();
    ASSERT_TRUE(left);
    EXPECT_EQ(left->findChild<QLineEdit *>(u"textFieldLastName"_s)->text(), u"Lee-Kim"_s);
    EXPECT_EQ(fields(*left, u"Phones"_s).first()->text(), u"12"_s);
    EXPECT_EQ(rows(), (QStringList{u"Bob Kay"_s, u"Cleo"_s}));
}

TEST_F(PeopleTest, WhatIsTypedStaysWhileOthersChangeTheRest)
{
    go(SidebarItem::People);
    edit();
    QTest::keyClicks(fields(pane(), u"Phones"_s).first(), u"typed"_s);
    const auto phone = context().insert<EntityPhone>();
    phone->setNumber(u"imported"_s);
    phone->setContact(ann);
    ann->setLastName(u"Lea"_s);
    save();
    EXPECT_EQ(line("textFieldLastName").text(), u"Lea"_s);
    ASSERT_EQ(fields(pane(), u"Phones"_s).size(), 3);
    {
        const ScriptedAlerts stay({Alert::secondButton});
        select(u"Bob Kay"_s);
        EXPECT_EQ(stay.asked().size(), 1u);
        EXPECT_EQ(people().selectedRecord(), ann) << "who stays with an edit stays with its row";
    }
    const ScriptedAlerts saves({Alert::firstButton});
    go(SidebarItem::Companies);
    EXPECT_EQ(saves.asked().size(), 1u);
    EXPECT_EQ(ann->phone().size(), 2u);
}

TEST_F(PeopleTest, WhoDeletesReadsWhatStaysWithoutThem)
{
    ann->setCompany(works);
    bob->setCompany(works);
    const TaskPtr task = add(u"call"_s);
    task->setDelegateToUser(ann);
    task->setCompany(works);
    save();
    const ScriptedAlerts no({Alert::secondButton, Alert::secondButton});
    go(SidebarItem::People);
    run(ActionId::Delete);
    go(SidebarItem::Companies);
    run(ActionId::Delete);
    ASSERT_EQ(no.asked().size(), 2u);
    EXPECT_EQ(no.asked()[0].informativeText, u"“Ann Lee”\n1 task stays, without a delegate."_s);
    EXPECT_EQ(no.asked()[1].informativeText,
              u"“Works”\n1 task stays, without a company.\n2 people stay, without a company."_s);
}

TEST_F(PeopleTest, WhoIsDeletedElsewhereWhileEditedIsOfferedAnewWithAWordWhy)
{
    const TaskPtr task = add(u"call"_s);
    task->setDelegateToUser(ann);
    save();
    go(SidebarItem::People);
    edit();
    QTest::keyClicks(&find<QLineEdit>(pane(), "textFieldName"), u"e"_s);
    context().deleteObject(ann);
    save();
    settle();
    auto *anew = window().findChild<RecordWindow *>(u"WindowNewContacts"_s);
    ASSERT_TRUE(anew && anew->isVisible());
    EXPECT_TRUE(find<QLabel>(*anew, "labelReason").isVisible());
    EXPECT_TRUE(
        find<QLabel>(*anew, "labelReason").text().startsWith(u"This was deleted while you edited it."_s));
    press(*anew, "buttonSave");
    ASSERT_TRUE(task->delegateToUser());
    EXPECT_EQ(task->delegateToUser()->fullName(), u"Anne Lee"_s);
    pressAdd();
    auto *next = window().findChild<RecordWindow *>(u"WindowNewContacts"_s);
    EXPECT_FALSE(find<QLabel>(*next, "labelReason").isVisible());
    press(*next, "buttonClose");
}

// Groups

TEST_F(PeopleTest, AGroupShowsItsMembersAndFollowsThem)
{
    const auto group = addGroup(u"Choir"_s);
    group->setContacts({cleo, ann});
    save();
    outline().selectIndex(sidebar().indexOfGroup(*group));
    settle();
    EXPECT_EQ(rows(), (QStringList{u"Ann Lee"_s, u"Cleo"_s}));
    EXPECT_EQ(dynamic_cast<ContactViewController &>(people()).contactGroup(), group);
    EXPECT_EQ(name(), u"Ann Lee"_s);
    pressAdd();
    auto *newContact = window().findChild<RecordWindow *>(u"WindowNewContacts"_s);
    QTest::keyClicks(newContact->focusWidget(), u"Dora"_s);
    press(*newContact, "buttonSave");
    EXPECT_EQ(rows(), (QStringList{u"Ann Lee"_s, u"Cleo"_s, u"Dora"_s})) << "who is made here belongs here";
    EXPECT_EQ(name(), u"Dora"_s);
    run(ActionId::Undo);
    settle();
    EXPECT_EQ(rows(), (QStringList{u"Ann Lee"_s, u"Cleo"_s}));
    group->setContacts({cleo, bob});
    save();
    EXPECT_EQ(rows(), (QStringList{u"Bob Kay"_s, u"Cleo"_s}));
    EXPECT_NE(name(), u"Ann Lee"_s) << "the pane goes with the row";
    group->setUseGeneralFilter(true);
    group->setCriteria(1);
    group->setAllCompanies(true);
    group->setAllCategories(true);
    save();
    EXPECT_EQ(rows(), QStringList()) << "nobody has a task";
    add(u"call"_s)->setDelegateToUser(ann);
    save();
    EXPECT_EQ(rows(), QStringList{u"Ann Lee"_s});
}

TEST_F(PeopleTest, FamilyNamesComeFirstWhereTheUserWantsThem)
{
    UserDefaults::standard().setObject(settings::contactDisplayOrder, 1);
    go(SidebarItem::People);
    EXPECT_EQ(rows(), (QStringList{u"Cleo"_s, u"Kay Bob"_s, u"Lee Ann"_s}));
    UserDefaults::standard().removeObject(settings::contactDisplayOrder);
}

// Pictures

class PicturesTest : public PeopleTest
{
protected:
    PortraitField &portrait() { return find<PortraitField>(pane(), "imageViewAvatar"); }
    void clip(const QByteArray &bytes, const QString &format)
    {
        auto *held = new QMimeData;
        held->setData(format, bytes);
        QApplication::clipboard()->setMimeData(held);
    }
    bool saves()
    {
        return QTest::qWaitFor([this] { return canSave(); });
    }
    bool canSave()
    {
        press(pane(), "buttonEdit");
        return !pane().isEditing();
    }
    QImage imageOf(const EntityContacts &contact)
    {
        return QImage::fromData(IcloudManager::imageData(contact.photoName()));
    }
    void dropFile(const QString &file)
    {
        auto held = std::make_unique<QMimeData>();
        held->setUrls({QUrl::fromLocalFile(file)});
        QDragEnterEvent enter(QPoint(20, 20), Qt::CopyAction, held.get(), Qt::LeftButton, {});
        QApplication::sendEvent(&portrait(), &enter);
        EXPECT_TRUE(enter.isAccepted());
        QDropEvent drop(QPointF(20, 20), Qt::CopyAction, held.get(), Qt::LeftButton, {});
        QApplication::sendEvent(&portrait(), &drop);
    }
    QString write(const QString &file, const QByteArray &bytes) const
    {
        QFile written(folder.filePath(file));
        EXPECT_TRUE(written.open(QIODevice::WriteOnly) && written.write(bytes) == bytes.size());
        return written.fileName();
    }

    QTemporaryDir folder;
};

TEST_F(PicturesTest, ArePastedDroppedChosenAndRemoved)
{
    go(SidebarItem::People);
    clip(png(Qt::red), u"image/png"_s);
    edit();
    QTest::keyClick(&line("textFieldName"), Qt::Key_V, Qt::ControlModifier);
    ASSERT_TRUE(saves());
    EXPECT_EQ(imageOf(*ann).pixelColor(5, 5), QColor(Qt::red)) << "an image pasted in a text is the picture";
    edit();
    dropFile(write(u"b.jpg"_s, png(Qt::blue)));
    ASSERT_TRUE(saves());
    EXPECT_EQ(imageOf(*ann).pixelColor(5, 5), QColor(Qt::blue)) << "whatever the file is called";
    edit();
    QTest::keyClick(&portrait(), Qt::Key_Space);
    auto *menu = qobject_cast<QMenu *>(QApplication::activePopupWidget());
    ASSERT_TRUE(menu);
    EXPECT_EQ(menu->actions().size(), 3);
    menu->actions().first()->trigger();
    menu->close();
    settle();
    auto *dialog = portrait().findChild<QFileDialog *>();
    ASSERT_TRUE(dialog);
    Q_EMIT dialog->fileSelected(write(u"c.png"_s, png(Qt::green)));
    dialog->close();
    ASSERT_TRUE(saves());
    EXPECT_EQ(imageOf(*ann).pixelColor(5, 5), QColor(Qt::green));
    edit();
    portrait().setFocus();
    QTest::keyClick(&portrait(), Qt::Key_Delete);
    edit();
    EXPECT_EQ(ann->photoName(), QString());
    // Whoever only reads changes nothing.
    QTest::mouseClick(&portrait(), Qt::LeftButton);
    EXPECT_FALSE(QApplication::activePopupWidget());
}

TEST_F(PicturesTest, OfAnySizeAreMadeSmallWithoutAWaitAndOthersAreRefused)
{
    go(SidebarItem::People);
    edit();
    const QString file = write(u"huge.png"_s, png(Qt::red, 20000, 400));
    QElapsedTimer timer;
    timer.start();
    dropFile(file);
    EXPECT_LT(timer.elapsed(), 100);
    ASSERT_TRUE(saves());
    EXPECT_EQ(imageOf(*ann).size(), QSize(1024, 20));

    const QString before = ann->photoName();
    edit();
    for (const QString &bad :
         {write(u"text.png"_s, "no picture"), write(u"cut.png"_s, png(Qt::red, 900, 900).left(300)),
          folder.path(), folder.filePath(u"nothing.png"_s)}) {
        const ScriptedAlerts told({Alert::firstButton});
        dropFile(bad);
        EXPECT_TRUE(QTest::qWaitFor([&] { return !told.asked().empty(); })) << bad.toStdString();
    }
    edit();
    EXPECT_EQ(ann->photoName(), before);
}

TEST_F(PicturesTest, ComeBackWithThoseWhoHadThem)
{
    ContactForm form(ann);
    ASSERT_TRUE(form.setPicture(png(Qt::red)));
    ASSERT_TRUE(form.save());
    bob->setPhotoName(ann->photoName());
    save();
    const QString shared = ann->photoName();
    go(SidebarItem::People);
    for (int deleted = 0; deleted < 2; ++deleted) {
        const ScriptedAlerts yes({Alert::firstButton});
        run(ActionId::Delete);
        ASSERT_EQ(yes.asked().size(), 1u);
        EXPECT_EQ(yes.asked().front().message, u"Are you sure you want to delete the selected item?"_s);
        settle();
    }
    EXPECT_EQ(rows(), QStringList{u"Cleo"_s});
    EXPECT_EQ(name(), u"Cleo"_s) << "the next one is read";
    run(ActionId::Undo);
    settle();
    const auto back = context().fetch<EntityContacts>(
        EntityContacts::fetchRequest().where(Predicate::format("photoName = %@", shared)));
    ASSERT_EQ(back.size(), 1);
    EXPECT_EQ(imageOf(*back.first()).pixelColor(5, 5), QColor(Qt::red));
}

/// In a narrow pane, or with large letters, an address is wider than its line.
TEST_F(PeopleTest, ALongAddressGoesOnInTheNextLineAndIsCopiedAsItIs)
{
    const QStringList addresses = {u"anna@gruen.examp"_s, u"https://works.example.org/about"_s,
                                   u"anna.maria.gruen"_s};
    for (const QString &address : addresses) {
        const auto email = context().insert<EntityEmail>();
        email->setMail(address);
        email->setContact(ann);
    }
    save();
    go(SidebarItem::People);
    const auto shown = links(u"Emails"_s);
    ASSERT_EQ(shown.size(), addresses.size());
    for (QLabel *link : shown) {
        const int wide = link->fontMetrics().horizontalAdvance(u"https://works.example.org/about"_s);
        EXPECT_GT(link->heightForWidth(wide / 3), link->heightForWidth(2 * wide)) << qPrintable(link->text());
        Q_EMIT link->customContextMenuRequested({});
        auto *menu = link->findChild<QMenu *>();
        ASSERT_TRUE(menu);
        menu->actions().first()->trigger();
        EXPECT_TRUE(addresses.contains(QApplication::clipboard()->text()));
        EXPECT_FALSE(link->accessibleName().contains(u'\u200b'));
        menu->close();
    }
}

} // namespace
