// Notes: a list beside which the selected one is read and edited, all of it made from a description.

#include "foundation/Clock.h"
#include "records/DetailStack.h"
#include "records/DraftKeeper.h"
#include "records/RecordListScreen.h"
#include "records/RecordPane.h"
#include "records/RecordWindow.h"
#include "records/TaskFormChoices.h"
#include "store/state/SettingsKeys.h"
#include "support/FullDisk.h"
#include "support/OtherProgram.h"
#include "ui/support/ShellTest.h"
#include "widgets/GrowingTextField.h"

#include <QComboBox>
#include <QPushButton>
#include <QToolButton>

using namespace Qt::Literals::StringLiterals;

/// Lists that have nothing yet.
class FirstRecordTest : public ShellTest
{};

TEST_F(FirstRecordTest, HasTheKeysInItsListOnceItIsSaved)
{
    const std::vector<std::tuple<ActionId, ToolBarButton::ActionType, QString>> kinds = {
        {ActionId::ShowNotes, ToolBarButton::NewNote, u"WindowAddNewNote"_s},
        {ActionId::ShowProjects, ToolBarButton::NewProject, u"WindowNewProjects"_s}};
    for (const auto &[show, add, name] : kinds) {
        run(show);
        settle();
        outline().setFocus();
        Q_EMIT controller().currentScreen()->buttonAdd(add);
        auto *form = window().findChild<RecordWindow *>(name);
        ASSERT_TRUE(form);
        QTest::keyClicks(&find<GrowingTextField>(*form, "textFieldTitle"), u"first"_s);
        QTest::mouseClick(&find<QPushButton>(*form, "buttonSave"), Qt::LeftButton);
        settle();
        const auto &list = static_cast<RecordListScreen &>(*controller().currentScreen());
        EXPECT_EQ(list.table()->firstSelectedRow(), 0) << qPrintable(name);
        EXPECT_EQ(window().focusWidget(), list.table()) << qPrintable(name);
    }
}

class NotesTest : public ShellTest
{
protected:
    NotesTest()
    {
        ann = context().insert<EntityContacts>();
        ann->setFirstName(u"Ann"_s);
        for (const QString &title : {u"alpha"_s, u"beta"_s, u"gamma"_s})
            note(title);
        run(ActionId::ShowNotes);
        settle();
    }
    std::shared_ptr<EntityNote> note(const QString &title)
    {
        const auto made = context().insert<EntityNote>();
        made->setTitle(title);
        made->setDetail(u"about "_s + title);
        made->setCreationDate(Clock::now());
        EXPECT_FALSE(DBWorker::saveContext());
        return made;
    }
    static std::shared_ptr<EntityNote> stored(const QString &title)
    {
        for (auto found : DBWorker::allNote())
            if (found->title() == title)
                return found;
        return nullptr;
    }
    RecordListScreen &notes() { return static_cast<RecordListScreen &>(*controller().currentScreen()); }
    QStringList titles()
    {
        QStringList shown;
        const QAbstractItemModel &model = *notes().table()->model();
        for (int row = 0; row < model.rowCount(); ++row)
            shown.append(model.index(row, 0).data().toString());
        return shown;
    }
    RecordPane *pane() { return static_cast<RecordPane *>(controller().detailStack()->top()); }
    GrowingTextField &title() { return find<GrowingTextField>(*pane(), "textFieldTitle"); }
    QPushButton &buttonEdit() { return find<QPushButton>(*pane(), "buttonEdit"); }
    void select(int row)
    {
        notes().table()->selectRow(row);
        settle();
    }
    void edit(const QString &text)
    {
        QTest::mouseClick(&buttonEdit(), Qt::LeftButton);
        title().selectAll();
        text.isEmpty() ? QTest::keyClick(&title(), Qt::Key_Delete) : QTest::keyClicks(&title(), text);
    }

    ContactPtr ann;
};

TEST_F(NotesTest, TheSelectedOneIsReadBesideTheList)
{
    EXPECT_EQ(titles(), (QStringList{u"alpha"_s, u"beta"_s, u"gamma"_s}));
    EXPECT_EQ(notes().table()->tableModel()->countInWords(3), u"3 notes"_s);
    EXPECT_TRUE(!outline().selectionModel()->hasSelection());
    ASSERT_TRUE(pane() && pane()->isEmbedded());
    EXPECT_EQ(title().text(), u"alpha"_s);
    EXPECT_TRUE(notes().table()->hasFocus()) << "the keys stay in the list";
    QTest::keyClick(notes().table(), Qt::Key_Down);
    settle();
    EXPECT_EQ(title().text(), u"beta"_s);
    EXPECT_TRUE(pane()->isActive());
    const QWidget &content = *window().rightContentView();
    EXPECT_EQ(pane()->geometry().right(), content.rect().right());
    EXPECT_EQ(notes().table()->width() + pane()->width(), content.width());
    EXPECT_FALSE(find<QToolButton>(*pane(), "buttonBack").isVisible());
    notes().table()->selectAll();
    settle();
    EXPECT_EQ(pane(), nullptr);
    showList(SidebarItem::Inbox);
    EXPECT_TRUE(controller().detailStack()->isEmpty());
    EXPECT_EQ(shownTitles(), QStringList());
}

TEST_F(NotesTest, AnEditIsSavedFollowedAndAskedAbout)
{
    select(1);
    edit(u"zeta"_s);
    auto &contact = find<QComboBox>(*pane(), "popUpButtonContact");
    EXPECT_EQ(contact.itemText(0), u"None"_s);
    contact.setFocus();
    QTest::keyClick(&contact, Qt::Key_Down);
    // Another program's words come in beside.
    stored(u"beta"_s)->setDetail(u"from elsewhere"_s);
    ASSERT_FALSE(DBWorker::saveContext());
    settle();
    QTest::mouseClick(&buttonEdit(), Qt::LeftButton);
    const auto zeta = stored(u"zeta"_s);
    ASSERT_TRUE(zeta);
    EXPECT_EQ(zeta->contact(), ann);
    EXPECT_EQ(zeta->detail(), u"from elsewhere"_s);
    settle();
    EXPECT_EQ(titles(), (QStringList{u"alpha"_s, u"gamma"_s, u"zeta"_s}));
    EXPECT_EQ(notes().selectedRecord(), zeta) << "it is selected where it stands now";
    EXPECT_EQ(title().text(), u"zeta"_s);

    edit(u"typed"_s);
    {
        const ScriptedAlerts cancel({Alert::secondButton});
        select(0);
        EXPECT_EQ(cancel.asked().size(), 1u);
    }
    EXPECT_EQ(notes().selectedRecord(), zeta) << "whoever stays with the edit finds its row selected";
    EXPECT_EQ(title().text(), u"typed"_s);
    {
        const ScriptedAlerts dont({Alert::thirdButton});
        QTest::mouseClick(&find<QToolButton>(*pane(), "buttonBack"), Qt::LeftButton);
    }
    EXPECT_FALSE(pane()->isEditing());
    EXPECT_EQ(title().text(), u"zeta"_s);

    // An emptied title is not written, and a choice can be cleared.
    edit({});
    find<QComboBox>(*pane(), "popUpButtonContact").setFocus();
    QTest::keyClick(&find<QComboBox>(*pane(), "popUpButtonContact"), Qt::Key_Delete);
    QTest::mouseClick(&buttonEdit(), Qt::LeftButton);
    EXPECT_EQ(zeta->title(), u"zeta"_s);
    EXPECT_EQ(title().text(), u"zeta"_s);
    EXPECT_EQ(zeta->contact(), nullptr);
}

TEST_F(NotesTest, ANewOneIsMadeInItsWindow)
{
    auto &buttonAdd = find<ToolBarButton>(window(), "buttonAdd");
    QTest::mouseClick(&buttonAdd, Qt::LeftButton, {}, QPoint(20, buttonAdd.height() / 2));
    auto *form = window().findChild<RecordWindow *>(u"WindowAddNewNote"_s);
    ASSERT_TRUE(form && form->isVisible());
    auto &save = find<QPushButton>(*form, "buttonSave");
    EXPECT_FALSE(save.isEnabled());
    QTest::keyClicks(&find<GrowingTextField>(*form, "textFieldTitle"), u"delta"_s);
    {
        const ScriptedAlerts cancel({Alert::secondButton});
        form->close();
        EXPECT_TRUE(form->isVisible()) << "it asks before words go";
    }
    QTest::mouseClick(&save, Qt::LeftButton);
    ASSERT_TRUE(stored(u"delta"_s));
    EXPECT_EQ(stored(u"delta"_s)->creationDate(), Clock::now());
    settle();
    EXPECT_EQ(titles(), (QStringList{u"alpha"_s, u"beta"_s, u"delta"_s, u"gamma"_s}));
    EXPECT_EQ(title().text(), u"delta"_s) << "one goes on with what is new";
}

TEST_F(NotesTest, DeletedOnesLeaveAndTheNextIsRead)
{
    select(1);
    {
        const ScriptedAlerts cancel({Alert::secondButton});
        run(ActionId::Delete);
        EXPECT_EQ(cancel.asked().front().message, u"Are you sure you want to delete the selected item?"_s);
    }
    EXPECT_TRUE(stored(u"beta"_s));
    notes().table()->selectRows({0, 1});
    {
        const ScriptedAlerts yes({Alert::firstButton});
        run(ActionId::Delete);
        EXPECT_EQ(yes.asked().front().message, u"Are you sure you want to delete the selected items?"_s);
    }
    settle();
    EXPECT_EQ(titles(), QStringList{u"gamma"_s});
    EXPECT_EQ(title().text(), u"gamma"_s);
    EXPECT_TRUE(DBWorker::searchObjectIdsWithString(u"about beta"_s).empty());
    run(ActionId::Undo);
    settle();
    EXPECT_EQ(titles(), (QStringList{u"alpha"_s, u"beta"_s, u"gamma"_s}));
    EXPECT_EQ(notes().table()->selectedRows(), (std::set<int>{0, 1})) << "what has come back is marked";
    select(2);
    settle();
    context().deleteObject(stored(u"gamma"_s));
    ASSERT_FALSE(DBWorker::saveContext());
    settle();
    EXPECT_EQ(title().text(), u"beta"_s) << "its neighbour, when another program has deleted it";
}

TEST_F(NotesTest, ASearchHitIsSelectedAndRead)
{
    showList(SidebarItem::Inbox);
    controller().searchSelectItem(stored(u"gamma"_s));
    settle();
    ASSERT_TRUE(pane());
    EXPECT_EQ(title().text(), u"gamma"_s);
    EXPECT_EQ(notes().selectedRecord(), stored(u"gamma"_s));
}

TEST_F(NotesTest, TypedWordsOutliveTheirNoteAndTheProgram)
{
    const auto window = [this] { return this->window().findChild<RecordWindow *>(u"WindowAddNewNote"_s); };
    const auto titleIn = [](RecordWindow &form) {
        return find<GrowingTextField>(form, "textFieldTitle").text();
    };
    select(1);
    edit(u"typed for beta"_s);
    const auto namesake = context().insert<EntityContacts>();
    namesake->setFirstName(ann->firstName());
    ASSERT_FALSE(DBWorker::saveContext());
    Q_EMIT find<QComboBox>(*pane(), "popUpButtonContact").activated(2);
    const ContactPtr second = TaskFormChoices::contactOfRow(TaskFormChoices::contactNames().at(1).row);
    DraftKeeper::finishAll();
    EXPECT_EQ(Drafts::find().drafts.size(), 1);
    // The program ended there: the words come back to their note.
    controller().detailStack()->removeAllDetail();
    {
        const ScriptedAlerts told({Alert::firstButton});
        controller().openDrafts();
    }
    settle();
    ASSERT_TRUE(pane() && pane()->isEditing());
    EXPECT_EQ(title().text(), u"typed for beta"_s);
    // Another process deletes it: they open as a new one.
    writeElsewhere(context().path(), "DELETE FROM EntityNote WHERE title = 'beta'");
    ASSERT_TRUE(QTest::qWaitFor(window));
    EXPECT_EQ(titleIn(*window()), u"typed for beta"_s);
    EXPECT_TRUE(QTest::qWaitFor([this] { return titles() == QStringList{u"alpha"_s, u"gamma"_s}; }));
    window()->clickButtonSave();
    ASSERT_TRUE(stored(u"typed for beta"_s));
    EXPECT_EQ(std::static_pointer_cast<EntityNote>(stored(u"typed for beta"_s))->contact(), second);
    EXPECT_TRUE(Drafts::find().drafts.isEmpty());
}

TEST_F(NotesTest, WhatTheDiskDidNotTakeIsTriedAgainOrGivenUp)
{
    edit(u"anew"_s);
    {
        const FullDisk disk;
        const ScriptedAlerts told({Alert::firstButton, Alert::firstButton});
        QTest::mouseClick(&buttonEdit(), Qt::LeftButton);
        QTest::mouseClick(&buttonEdit(), Qt::LeftButton);
        EXPECT_TRUE(pane()->isEditing());
    }
    QTest::mouseClick(&buttonEdit(), Qt::LeftButton);
    EXPECT_FALSE(pane()->isEditing());
    EXPECT_FALSE(context().hasChanges());

    Q_EMIT notes().buttonAdd(ToolBarButton::NewNote);
    auto &form = *window().findChild<RecordWindow *>(u"WindowAddNewNote"_s);
    QTest::keyClicks(&find<GrowingTextField>(form, "textFieldTitle"), u"unwanted"_s);
    {
        const FullDisk disk;
        const ScriptedAlerts told({Alert::firstButton});
        form.clickButtonSave();
    }
    const ScriptedAlerts dont({Alert::thirdButton});
    form.close();
    ASSERT_FALSE(DBWorker::saveContext());
    EXPECT_FALSE(stored(u"unwanted"_s));
}

TEST_F(NotesTest, StayingWithAnEditKeepsItsRowAndDeletingNothingKeepsThePane)
{
    edit(u"typed"_s);
    {
        const ScriptedAlerts cancel({Alert::secondButton});
        notes().table()->selectAll();
        settle();
    }
    EXPECT_EQ(notes().selectedRecord(), stored(u"alpha"_s));
    pane()->dropEdit();
    const ScriptedAlerts cancel({Alert::secondButton});
    run(ActionId::Delete);
    settle();
    ASSERT_TRUE(pane());
    EXPECT_EQ(title().text(), u"alpha"_s);

    // Another store has other notes.
    UserDefaults::standard().setObject(settings::valueSwitchDatabase, 1);
    controller().changeDataBase();
    EXPECT_TRUE(QTest::qWaitFor([this] {
        return dynamic_cast<RecordListScreen *>(controller().currentScreen()) && titles().isEmpty();
    }));
    UserDefaults::standard().setObject(settings::valueSwitchDatabase, 0);
}
