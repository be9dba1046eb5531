// The user finds the way through the lists.

#include "filters/MVContactGroup.h"
#include "records/DetailStack.h"
#include "store/state/NotificationNames.h"
#include "ui/support/ShellTest.h"
#include "widgets/MVSegmentView.h"

#include <QAbstractItemModelTester>
#include <QLineEdit>

using namespace Qt::Literals::StringLiterals;

class SidebarTest : public ShellTest
{
protected:
    QString selected()
    {
        const QModelIndexList indexes = outline().selectionModel()->selectedIndexes();
        return indexes.isEmpty() ? QString() : indexes.first().data().toString();
    }
    Badge badgeOf(SidebarItem item)
    {
        const QModelIndex index = sidebar().indexOf(item);
        return {index.data(SidebarModel::BadgeLeftRole).toInt(),
                index.data(SidebarModel::BadgeRightRole).toInt()};
    }
    void sidebarKey(Qt::Key pressed) { QTest::keyClick(&outline(), pressed); }
};

TEST_F(SidebarTest, TheProgramBeginsOnHomeUnlessTheUserWasFaster)
{
    EXPECT_TRUE(QTest::qWaitFor([&] { return selected() == u"Home"_s; }));
}

TEST_F(SidebarTest, AQuickUserIsNotTakenBackToHome)
{
    pressSidebar(SidebarItem::Calendar);
    QTest::qWait(400);
    EXPECT_EQ(selected(), u"Calendar"_s);
}

TEST_F(SidebarTest, PressingTasksOpensItOnTheInboxAndPressingAgainClosesIt)
{
    pressSidebar(SidebarItem::Tasks);
    EXPECT_TRUE(outline().isExpanded(sidebar().indexOf(SidebarItem::Tasks)));
    EXPECT_EQ(selected(), u"Inbox"_s);
    EXPECT_EQ(screen().type(), ListType::Inbox);
    pressSidebar(SidebarItem::Tasks);
    EXPECT_FALSE(outline().isExpanded(sidebar().indexOf(SidebarItem::Tasks)));
    EXPECT_EQ(screen().type(), ListType::Inbox);
}

TEST_F(SidebarTest, ACommandGoesToAListAndGivesItTheKeys)
{
    addInbox({u"First"_s, u"Second"_s});
    outline().setFocus();
    run(ActionId::ShowInbox);
    EXPECT_EQ(QApplication::focusWidget(), &list());
    EXPECT_EQ(selectedTitles(), QStringList(u"First"_s));
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Down);
    EXPECT_EQ(selectedTitles(), QStringList(u"Second"_s));
    // A row can be current without being selected, as when the window comes back to the front.
    list().clearSelection();
    list().selectionModel()->setCurrentIndex(list().model()->index(0, 0), QItemSelectionModel::NoUpdate);
    key(Qt::Key_Home);
    EXPECT_EQ(selectedTitles(), QStringList(u"First"_s));
    outline().setFocus();
    run(ActionId::ShowCompanies);
    EXPECT_EQ(QApplication::focusWidget()->objectName(), u"tableViewCompanies"_s) << "also if it is empty";
}

TEST_F(SidebarTest, TheKeysReachEveryRowAndHeadingsAreNeverSelected)
{
    pressSidebar(SidebarItem::Projects);
    sidebarKey(Qt::Key_Down);
    sidebarKey(Qt::Key_Down);
    EXPECT_EQ(outline().currentIndex(), sidebar().indexOf(SidebarItem::Tasks));
    EXPECT_EQ(selected(), u"Projects"_s);
    sidebarKey(Qt::Key_Space);
    EXPECT_EQ(selected(), u"Inbox"_s);
    sidebarKey(Qt::Key_Down);
    EXPECT_EQ(screen().type(), ListType::Today);
    sidebarKey(Qt::Key_End);
    EXPECT_EQ(selected(), u"Calendar"_s);
    sidebarKey(Qt::Key_S);
    EXPECT_EQ(selected(), u"Scheduled"_s);
}

TEST_F(SidebarTest, RowsAreAsHighAsTheirLevelAsksFor)
{
    controller().showList(SidebarItem::Today);
    EXPECT_EQ(outline().visualRect(sidebar().indexOf(SidebarItem::Home)).height(), 45);
    EXPECT_EQ(outline().visualRect(sidebar().indexOf(SidebarItem::Today)).height(), 33);
}

TEST_F(SidebarTest, BadgesFollowTheStoreAndShowWhatIsOverdueOnTheLeft)
{
    add(u"late"_s, [](MVTask &task) {
        task.startDate = localDate(2026, 11, 19);
        task.dueDate = localDate(2026, 11, 19, 23, 59);
    });
    add(u"today"_s, [](MVTask &task) {
        task.startDate = localDate(2026, 11, 21);
        task.dueDate = localDate(2026, 11, 21, 23, 59);
    });
    EXPECT_TRUE(QTest::qWaitFor([&] { return badgeOf(SidebarItem::Today) == Badge{1, 2}; }));
    EXPECT_EQ(badgeOf(SidebarItem::NotDone), (Badge{0, 2}));
    EXPECT_EQ(badgeOf(SidebarItem::People), Badge{});
}

TEST_F(SidebarTest, GroupsOfContactsStandBelowCompaniesAndCanBeDeleted)
{
    const auto group = addGroup(u"Book club"_s);
    const QModelIndex index = sidebar().indexOfGroup(*group);
    ASSERT_TRUE(index.isValid());
    EXPECT_EQ(index.row(), 2);
    outline().selectIndex(index);
    ScriptedAlerts alerts({Alert::firstButton});
    sidebarKey(Qt::Key_Delete);
    EXPECT_EQ(sidebar().rowCount(sidebar().indexOf(SidebarItem::Contacts)), 2);
    EXPECT_EQ(selected(), u"People"_s);
}

TEST_F(SidebarTest, ANewGroupIsNamedInItsRowAndRenamedLater)
{
    MVContactGroup values;
    values.title = u"New group"_s;
    values.useGeneralFilter = false;
    NotificationCenter::defaultCenter().post(notifications::saveNewContactGroup, values);
    const auto field = [this] { return outline().findChild<QLineEdit *>(u"fieldGroupTitle"_s); };
    ASSERT_TRUE(QTest::qWaitFor([&] { return field() && field()->hasFocus(); }, 3000));
    EXPECT_EQ(field()->selectedText(), u"New group"_s);
    const auto title = [] { return DBWorker::allContactPrivateGroup().first()->title(); };
    const auto type = [&](const QString &text, Qt::Key last) {
        QTest::keyClicks(field(), text);
        QTest::keyClick(field(), last);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        EXPECT_TRUE(QTest::qWaitFor([&] { return !field(); }));
        // A row that was renamed finds its place after the field has gone.
        QTest::qWait(20);
    };
    type(u"Choir"_s, Qt::Key_Return);
    EXPECT_EQ(title(), u"Choir"_s);
    EXPECT_TRUE(QTest::qWaitFor([this] { return selected() == u"Choir"_s; }));
    sidebarKey(Qt::Key_F2);
    type(u"   "_s, Qt::Key_Return);
    sidebarKey(Qt::Key_F2);
    type(u"given up"_s, Qt::Key_Escape);
    EXPECT_EQ(title(), u"Choir"_s);
    const QModelIndex row = outline().currentIndex();
    QTest::mouseDClick(window().windowHandle(), Qt::LeftButton, {},
                       outline().viewport()->mapTo(&window(), outline().visualRect(row).center()));
    ASSERT_NE(field(), nullptr);
    type(u"Band"_s, Qt::Key_Return);
    EXPECT_EQ(title(), u"Band"_s);
    controller().showList(SidebarItem::People);
    sidebarKey(Qt::Key_F2);
    EXPECT_EQ(field(), nullptr);
}

TEST_F(SidebarTest, AGroupThatIsTakenBackComesBackIntoTheTree)
{
    const auto group = addGroup(u"Book club"_s);
    const auto rows = [this] {
        const QModelIndex contacts = sidebar().indexOf(SidebarItem::Contacts);
        QStringList titles;
        for (int row = 0; row < sidebar().rowCount(contacts); ++row)
            titles.append(sidebar().index(row, 0, contacts).data().toString());
        return titles;
    };
    ASSERT_TRUE(rows().contains(u"Book club"_s));
    outline().setExpanded(sidebar().indexOf(SidebarItem::Contacts), true);
    outline().selectIndex(sidebar().indexOfGroup(*group));
    const ScriptedAlerts alerts({Alert::firstButton});
    sidebarKey(Qt::Key_Delete);
    EXPECT_FALSE(rows().contains(u"Book club"_s));
    run(ActionId::Undo);
    EXPECT_TRUE(rows().contains(u"Book club"_s));
    EXPECT_EQ(selected(), u"People"_s);
    run(ActionId::Redo);
    EXPECT_FALSE(rows().contains(u"Book club"_s));
}

TEST_F(SidebarTest, AChangeOfTheStoreKeepsTheRowOrGoesToPeople)
{
    const auto group = addGroup(u"Book club"_s);
    outline().selectIndex(sidebar().indexOfGroup(*group));
    controller().changeDataBase();
    QTRY_COMPARE(selected(), u"Book club"_s);
    context().deleteObject(group);
    ASSERT_FALSE(DBWorker::saveContext());
    controller().changeDataBase();
    QTRY_COMPARE(selected(), u"People"_s);

    addInbox({u"kept"_s});
    showList(SidebarItem::Inbox);
    screen().selectItem(stored(u"kept"_s));
    ASSERT_FALSE(controller().detailStack()->isEmpty());
    controller().changeDataBase();
    EXPECT_TRUE(controller().detailStack()->isEmpty());
    QTRY_COMPARE(selected(), u"Inbox"_s);
    EXPECT_EQ(shownTitles(), QStringList{u"kept"_s});
}

TEST_F(SidebarTest, TheDeleteKeyDoesNothingToListsOfTheProgram)
{
    addInbox({u"a"_s});
    run(ActionId::SelectAll);
    outline().setFocus();
    const ScriptedAlerts alerts;
    sidebarKey(Qt::Key_Delete);
    EXPECT_TRUE(alerts.asked().empty());
    EXPECT_EQ(inboxTitles(), QStringList{u"a"_s});
}

TEST_F(SidebarTest, GroupingShowsHeadersAndIsRememberedForTheList)
{
    add(u"urgent"_s, [](MVTask &task) {
        task.dueSomeDay = true;
        task.priority = Priority::High;
    });
    add(u"idle"_s, [](MVTask &task) { task.dueSomeDay = true; });
    showList(SidebarItem::Someday);
    const auto control = [this]() -> MVSegmentView & {
        return find<MVSegmentView>(screen(), "tasksGroupedView");
    };
    const auto pressPriority = [&] {
        QTest::mouseClick(&control(), Qt::LeftButton, {},
                          control().rect().center() + QPoint(control().width() / 3, 0));
    };
    pressPriority();
    EXPECT_EQ(shownTitles(), (QStringList{u"High"_s, u"urgent"_s, u"No Priority"_s, u"idle"_s}));
    showList(SidebarItem::Inbox);
    showList(SidebarItem::Someday);
    EXPECT_EQ(control().selectedIndex(), 2);
    clickRow(1);
    pressPriority();
    EXPECT_EQ(control().selectedIndex(), -1);
    EXPECT_EQ(shownTitles().size(), 2);
    EXPECT_EQ(selectedTitles(), QStringList{u"urgent"_s});
}

TEST_F(SidebarTest, ModelsKeepTheRulesOfModels)
{
    addInbox({u"a"_s, u"b"_s});
    const QAbstractItemModelTester rows(list().model(),
                                        QAbstractItemModelTester::FailureReportingMode::Warning);
    const QAbstractItemModelTester tree(outline().model(),
                                        QAbstractItemModelTester::FailureReportingMode::Warning);
    screen().reloadData();
    controller().loadContactsGroup();
    controller().countTasksBadge();
}

TEST_F(SidebarTest, ItGivesWayInANarrowWindowAndComesBack)
{
    const int usual = outline().width();
    showList(SidebarItem::Categories);
    window().resize(window().minimumSize());
    EXPECT_TRUE(QTest::qWaitFor([&] { return outline().width() < usual; }));
    window().resize(1080, 700);
    EXPECT_TRUE(QTest::qWaitFor([&] { return outline().width() == usual; }));
}
