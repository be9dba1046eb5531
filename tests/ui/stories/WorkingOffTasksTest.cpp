// Tasks are ticked, changed in their rows and deleted.

#include "shell/tasks/TaskPopupMenu.h"
#include "store/state/NotificationNames.h"
#include "ui/support/ShellTest.h"

#include <QHelpEvent>
#include <QTextDocumentFragment>
#include <QToolTip>

using namespace Qt::Literals::StringLiterals;

class WorkingOffTasksTest : public ShellTest
{
protected:
    bool isShownTicked(int row)
    {
        return list().tableModel()->index(row).data(Qt::CheckStateRole).toInt() == Qt::Checked;
    }
    TaskPopupMenu &openMenu()
    {
        QContextMenuEvent event(QContextMenuEvent::Mouse, middleOf(list().currentRow()),
                                list().viewport()->mapToGlobal(middleOf(list().currentRow())));
        QCoreApplication::sendEvent(list().viewport(), &event);
        return find<TaskPopupMenu>(screen(), "taskPopupMenu");
    }
    /// Chooses an entry by its words, from a submenu or from the menu itself.
    static void chooseFrom(QMenu &popup, const QString &menu, const QString &entry)
    {
        QList<QMenu *> menus = popup.findChildren<QMenu *>();
        menus.prepend(&popup);
        for (QMenu *one : menus) {
            for (QAction *action : one->actions()) {
                if (one->title() == menu && action->text() == entry)
                    action->trigger();
            }
        }
        popup.close();
    }
    void choose(const QString &menu, const QString &entry) { chooseFrom(openMenu(), menu, entry); }
    /// How many commands of the menu that change something can be given.
    int possibleChanges()
    {
        const auto &popup = find<TaskPopupMenu>(screen(), "taskPopupMenu");
        return static_cast<int>(std::ranges::count_if(popup.actions(), [](const QAction *action) {
            const bool isChange = action->menu() || action->text() == u"Delete"_s;
            return isChange && action->isEnabled();
        }));
    }
};

TEST_F(WorkingOffTasksTest, TheMenuSparesTheNeighbourOfATaskThatGoesMeanwhile)
{
    const std::vector<std::pair<QString, QString>> commands = {
        {u"Status"_s, u"Pending"_s},
        {u"Priority"_s, u"High"_s},
        {u"Plan"_s, quickdays::title(QuickDay::Today) + u"\tAlt+1"_s},
        {u""_s, u"Duplicate\tCtrl+D"_s},
        {u""_s, u"Delete"_s}};
    const ScriptedAlerts alerts(std::deque<int>(commands.size(), Alert::firstButton));
    QStringList titles = {u"a"_s, u"b"_s, u"c"_s, u"d"_s, u"e"_s, u"f"_s, u"g"_s};
    addInbox(titles);
    const auto goesElsewhere = [&](const QString &title) {
        context().deleteObject(stored(title));
        ASSERT_FALSE(DBWorker::saveContext());
        titles.removeOne(title);
        ASSERT_TRUE(QTest::qWaitFor([&] { return shownTitles() == titles; }));
    };
    for (const auto &[menu, entry] : commands) {
        clickRow(0);
        TaskPopupMenu &popup = openMenu();
        goesElsewhere(titles.front());
        ASSERT_EQ(selectedTitles(), QStringList{titles.front()}) << "the selection has moved";
        chooseFrom(popup, menu, entry);
        settle();
        EXPECT_EQ(inboxTitles(), titles) << qPrintable(entry);
        const TaskPtr neighbour = stored(titles.front());
        ASSERT_TRUE(neighbour);
        EXPECT_EQ(neighbour->status(), TaskStatus::Open);
        EXPECT_EQ(neighbour->priority().value_or(Priority::None), Priority::None);
    }
    EXPECT_TRUE(alerts.asked().empty());

    list().selectRows({0, 1});
    TaskPopupMenu &popup = openMenu();
    goesElsewhere(u"f"_s);
    chooseFrom(popup, u"Status"_s, u"Pending"_s);
    EXPECT_EQ(stored(u"g"_s)->status(), TaskStatus::Pending) << "the other one is still meant";
}

TEST_F(WorkingOffTasksTest, ATickIsStoredAndSeenAtOnceAndTheRowLeavesLater)
{
    addInbox({u"a"_s, u"b"_s, u"c"_s});
    clickRow(1);
    QTest::mouseClick(list().viewport(), Qt::LeftButton, {}, checkBoxOf(1));
    EXPECT_EQ(stored(u"b"_s)->status(), TaskStatus::Done);
    EXPECT_TRUE(isShownTicked(1));
    EXPECT_EQ(shownTitles().size(), 3);
    EXPECT_TRUE(QTest::qWaitFor([&] { return shownTitles().size() == 2; }, 3000));
    EXPECT_EQ(selectedTitles(), QStringList{u"c"_s});
}

TEST_F(WorkingOffTasksTest, TheSpaceKeyTicksAllSelectedTasksAndClearsThemAgain)
{
    addInbox({u"a"_s, u"b"_s, u"c"_s});
    clickRow(0);
    key(Qt::Key_Down, Qt::ShiftModifier);
    key(Qt::Key_Space);
    EXPECT_EQ(stored(u"a"_s)->status(), TaskStatus::Done);
    EXPECT_EQ(stored(u"b"_s)->status(), TaskStatus::Done);
    key(Qt::Key_Space);
    EXPECT_EQ(stored(u"a"_s)->status(), TaskStatus::Open);
    EXPECT_EQ(stored(u"c"_s)->status(), TaskStatus::Open);
}

TEST_F(WorkingOffTasksTest, APressBesideTheCheckBoxOnlySelects)
{
    addInbox({u"a"_s});
    clickRow(0);
    EXPECT_EQ(stored(u"a"_s)->status(), TaskStatus::Open);
    EXPECT_EQ(selectedTitles(), QStringList{u"a"_s});
}

TEST_F(WorkingOffTasksTest, DeletingAsksAndSelectsTheNewLastTaskAndNotTheEndMark)
{
    addInbox({u"a"_s, u"b"_s, u"c"_s});
    clickRow(2);
    ScriptedAlerts alerts({Alert::secondButton, Alert::firstButton});
    key(Qt::Key_Delete);
    EXPECT_EQ(inboxTitles().size(), 3);
    key(Qt::Key_Delete);
    EXPECT_EQ(inboxTitles(), (QStringList{u"a"_s, u"b"_s}));
    EXPECT_EQ(shownTitles(), inboxTitles());
    EXPECT_EQ(selectedTitles(), QStringList{u"b"_s});
    EXPECT_EQ(alerts.asked().size(), 2U);
}

TEST_F(WorkingOffTasksTest, ATaskOfAReadOnlyCalendarStaysAndSaysSoWhereNothingElseIsSelected)
{
    add(u"read only"_s, [](MVTask &task) {
        task.allowsContentModifications = false;
        task.calendarTitle = u"Holidays"_s;
    });
    addInbox({u"mine"_s});
    const int barred = static_cast<int>(shownTitles().indexOf(u"read only"_s));
    ScriptedAlerts alerts({Alert::firstButton, Alert::firstButton, Alert::firstButton});
    clickRow(barred);
    key(Qt::Key_Delete);
    ASSERT_EQ(alerts.asked().size(), 1U);
    EXPECT_TRUE(alerts.asked().front().message.contains(u"Holidays"_s));
    key(Qt::Key_Space);
    ASSERT_EQ(alerts.asked().size(), 2U);
    EXPECT_TRUE(alerts.asked().back().message.contains(u"Holidays"_s));
    run(ActionId::SelectAll);
    choose({}, {});
    EXPECT_EQ(possibleChanges(), 5) << "one of the two can be changed";
    key(Qt::Key_Delete);
    EXPECT_EQ(inboxTitles(), QStringList{u"read only"_s});
    EXPECT_EQ(alerts.asked().size(), 3U);
    QTest::mouseClick(list().viewport(), Qt::LeftButton, {}, checkBoxOf(0));
    EXPECT_EQ(stored(u"read only"_s)->status(), TaskStatus::Open);
    clickRow(0);
    choose(u"Status"_s, u"Pending"_s);
    choose(u"Priority"_s, u"High"_s);
    choose(u"Category"_s, u"Work"_s);
    EXPECT_EQ(possibleChanges(), 0);
    const TaskPtr kept = stored(u"read only"_s);
    EXPECT_EQ(kept->status(), TaskStatus::Open);
    EXPECT_EQ(kept->priority(), Priority::None);
    EXPECT_EQ(kept->category(), nullptr);
}

TEST_F(WorkingOffTasksTest, TheContextMenuChangesAllSelectedTasks)
{
    addInbox({u"a"_s, u"b"_s, u"c"_s});
    clickRow(0);
    clickRow(1, Qt::ControlModifier);
    choose(u"Priority"_s, u"High"_s);
    EXPECT_EQ(stored(u"a"_s)->priority(), Priority::High);
    EXPECT_EQ(stored(u"b"_s)->priority(), Priority::High);
    EXPECT_EQ(stored(u"c"_s)->priority(), Priority::None);
    choose(u"Status"_s, u"Pending"_s);
    EXPECT_EQ(stored(u"b"_s)->status(), TaskStatus::Pending);
    run(ActionId::Undo);
    EXPECT_EQ(stored(u"a"_s)->status(), TaskStatus::Open);
    EXPECT_EQ(stored(u"b"_s)->status(), TaskStatus::Open) << "one change, one undo";
    EXPECT_EQ(stored(u"b"_s)->priority(), Priority::High);
}

TEST_F(WorkingOffTasksTest, OpeningSeveralTasksAtOnceIsRefusedWithAMessage)
{
    addInbox({u"a"_s, u"b"_s});
    run(ActionId::SelectAll);
    ScriptedAlerts alerts({Alert::firstButton});
    key(Qt::Key_Return);
    ASSERT_EQ(alerts.asked().size(), 1U);
    EXPECT_EQ(alerts.asked().front().message, u"Select one task"_s);
}

TEST_F(WorkingOffTasksTest, TheEditMenuNamesTheStepThatItTakesBack)
{
    const auto texts = [this] {
        const Actions &commands = *controller().commands();
        controller().commands()->update();
        return QStringList{commands.action(ActionId::Undo)->text(), commands.action(ActionId::Redo)->text()};
    };
    addInbox({u"a"_s, u"b"_s});
    clickRow(0);
    choose(u"Priority"_s, u"High"_s);
    ScriptedAlerts alerts({Alert::firstButton});
    key(Qt::Key_Delete);
    EXPECT_EQ(texts(), (QStringList{u"Undo: Delete"_s, u"Redo"_s}));
    run(ActionId::Undo);
    EXPECT_EQ(texts(), (QStringList{u"Undo: Change Tasks"_s, u"Redo: Delete"_s}));
    run(ActionId::Search);
    EXPECT_EQ(texts(), (QStringList{u"Undo: Change Tasks"_s, u"Redo: Delete"_s})) << "nothing is typed yet";
    QTest::keyClicks(QApplication::focusWidget(), u"b"_s);
    EXPECT_EQ(texts(), (QStringList{u"Undo"_s, u"Redo"_s})) << "typing has no name";
}

TEST_F(WorkingOffTasksTest, UndoBringsADeletedTaskBackIntoTheList)
{
    addInbox({u"a"_s, u"b"_s});
    clickRow(0);
    ScriptedAlerts alerts({Alert::firstButton});
    key(Qt::Key_Delete);
    EXPECT_EQ(shownTitles(), QStringList{u"b"_s});
    run(ActionId::Undo);
    EXPECT_EQ(shownTitles(), (QStringList{u"a"_s, u"b"_s}));
    run(ActionId::Redo);
    EXPECT_EQ(shownTitles(), QStringList{u"b"_s});
}

TEST_F(WorkingOffTasksTest, AChangeFromElsewhereReachesTheListThatIsShown)
{
    addInbox({u"a"_s});
    add(u"b"_s);
    NotificationCenter::defaultCenter().post(notifications::iCloudChange);
    EXPECT_TRUE(QTest::qWaitFor([&] { return shownTitles().size() == 2; }));
}

TEST_F(WorkingOffTasksTest, WhoRestsOnATitleThatIsCutOffReadsAllOfIt)
{
    const QString endless = QString(u"<b>tents & lamps</b> "_s).repeated(40);
    addInbox({endless, u"short"_s});
    const auto tipOver = [&](int row) {
        QToolTip::hideText();
        QHelpEvent event(QEvent::ToolTip, middleOf(row), list().viewport()->mapToGlobal(middleOf(row)));
        QCoreApplication::sendEvent(list().viewport(), &event);
        return QTextDocumentFragment::fromHtml(QToolTip::text()).toPlainText().trimmed();
    };
    EXPECT_EQ(tipOver(0), endless.trimmed());
    tipOver(1);
    EXPECT_TRUE(QTest::qWaitFor([] { return !QToolTip::isVisible(); }));
}

TEST_F(WorkingOffTasksTest, AFlatListEndsWithAMarkAndAnEmptyOneOnlyInTheInbox)
{
    const auto kinds = [this](SidebarItem item) {
        showList(item);
        std::vector<RowKind> found;
        for (int row = 0; row < list().tableModel()->rowCount(); ++row)
            found.push_back(list().tableModel()->kindOf(row));
        return found;
    };
    const std::vector<RowKind> withOne = {RowKind::Item, RowKind::Separator};
    EXPECT_EQ(kinds(SidebarItem::Inbox), std::vector{RowKind::Separator});
    for (const SidebarItem item : {SidebarItem::Today, SidebarItem::Someday, SidebarItem::NotDone})
        EXPECT_TRUE(kinds(item).empty());
    add(u"idea"_s);
    EXPECT_EQ(kinds(SidebarItem::Inbox), withOne);
    EXPECT_EQ(kinds(SidebarItem::NotDone), withOne);
    EXPECT_TRUE(kinds(SidebarItem::Someday).empty());
}
