// Projects: a list beside which the selected one is read and edited, with its filter, its tasks and its
// people.

#include "filters/FilterEntries.h"
#include "filters/SavedFilter.h"
#include "foundation/Clock.h"
#include "records/DetailStack.h"
#include "records/DraftKeeper.h"
#include "records/RecordListScreen.h"
#include "records/RecordPane.h"
#include "records/RecordWindow.h"
#include "records/dates/MVDate.h"
#include "shell/projects/ProjectDetailViewController.h"
#include "shell/tasks/AddCurrentTasksWindow.h"
#include "shell/tasks/LinkedTasksView.h"
#include "shell/tasks/TaskDetailViewController.h"
#include "ui/support/ShellTest.h"
#include "widgets/CheckList.h"
#include "widgets/GrowingTextField.h"

#include <QApplication>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QScrollBar>
#include <QToolButton>

using namespace Qt::Literals::StringLiterals;

class ProjectsTest : public ShellTest
{
protected:
    ProjectsTest()
    {
        SavedFilter::ofProjects().storePristine();
        project(u"Boat"_s, localDate(2026, 12, 24));
        project(u"House"_s, localDate(2027, 5, 1));
        project(u"Tree"_s, {});
        run(ActionId::ShowProjects);
        settle();
    }
    ProjectPtr project(const QString &title, OptionalDate due)
    {
        const auto made = context().insert<EntityProject>();
        made->setTitle(title);
        made->setDueDate(due);
        made->setStatus(TaskStatus::Open);
        made->setPriority(Priority::None);
        EXPECT_FALSE(DBWorker::saveContext());
        return made;
    }
    static ProjectPtr stored(const QString &title)
    {
        for (const ProjectPtr found : DBWorker::allProjects())
            if (found->title() == title)
                return found;
        return nullptr;
    }
    RecordListScreen &projects() { return static_cast<RecordListScreen &>(*controller().currentScreen()); }
    QStringList rows(int role = Qt::DisplayRole)
    {
        QStringList shown;
        const QAbstractItemModel &model = *projects().table()->model();
        for (int row = 0; row < model.rowCount(); ++row)
            shown.append(model.index(row, 0).data(role).toString());
        return shown;
    }
    DetailViewController *top() { return controller().detailStack()->top(); }
    RecordPane *pane() { return dynamic_cast<RecordPane *>(top()); }
    QString title() { return find<GrowingTextField>(*pane(), "textFieldTitle").text(); }
    void press(const QWidget &in, const char *button)
    {
        QTest::mouseClick(&find<QAbstractButton>(in, button), Qt::LeftButton);
        settle();
    }
    void select(const QString &title)
    {
        projects().table()->selectRow(static_cast<int>(rows().indexOf(title)));
        settle();
        ASSERT_TRUE(pane());
        EXPECT_EQ(this->title(), title);
    }
};

TEST_F(ProjectsTest, AreListedReadAndEdited)
{
    EXPECT_EQ(rows(), (QStringList{u"Boat"_s, u"House"_s, u"Tree"_s})) << "the first due first";
    EXPECT_TRUE(rows(Qt::AccessibleTextRole).at(2).endsWith(u"No date"_s));
    EXPECT_EQ(title(), u"Boat"_s);
    EXPECT_TRUE(pane()->isEmbedded());
    select(u"House"_s);
    press(*pane(), "buttonEdit");
    auto &status = find<QComboBox>(*pane(), "popUpButtonStatus");
    status.setFocus();
    QTest::keyClick(&status, Qt::Key_End);
    auto &field = find<GrowingTextField>(*pane(), "textFieldTitle");
    field.selectAll();
    QTest::keyClicks(&field, u"Castle"_s);
    press(*pane(), "buttonEdit");
    const ProjectPtr castle = stored(u"Castle"_s);
    ASSERT_TRUE(castle);
    EXPECT_EQ(castle->expirationDate(), Clock::now());
    EXPECT_TRUE(rows(Qt::AccessibleTextRole).join(u';').contains(u"Castle, Done, Until"_s));
    run(ActionId::Undo);
    settle();
    EXPECT_EQ(title(), u"House"_s);
    EXPECT_FALSE(castle->expirationDate());

    // A search finds one from elsewhere.
    showList(SidebarItem::Inbox);
    controller().searchSelectItem(stored(u"Tree"_s));
    settle();
    ASSERT_TRUE(pane());
    EXPECT_EQ(title(), u"Tree"_s);
}

TEST_F(ProjectsTest, FollowTheColourOfTheirCategory)
{
    class Paints : public QObject
    {
    public:
        int count = 0;

    protected:
        bool eventFilter(QObject *, QEvent *event) override
        {
            count += event->type() == QEvent::Paint ? 1 : 0;
            return false;
        }
    };
    const CategoryPtr category = EntityCategory::title(u"Work"_s);
    stored(u"Boat"_s)->setCategory(category);
    EXPECT_FALSE(DBWorker::saveContext());
    Paints paints;
    projects().table()->viewport()->installEventFilter(&paints);
    settle();
    paints.count = 0;
    settle();
    ASSERT_EQ(paints.count, 0) << "nothing else paints it";
    category->setColorR(1);
    EXPECT_FALSE(DBWorker::saveContext());
    settle();
    EXPECT_GT(paints.count, 0);
}

TEST_F(ProjectsTest, ANewOneIsMadeInItsWindowFromAnyScreen)
{
    showList(SidebarItem::Inbox);
    auto &buttonAdd = find<ToolBarButton>(window(), "buttonAdd");
    QTest::mouseClick(&buttonAdd, Qt::LeftButton, {}, {buttonAdd.width() - 5, buttonAdd.height() / 2});
    auto *menu = buttonAdd.findChild<QMenu *>();
    ASSERT_TRUE(menu);
    for (QAction *action : menu->actions())
        if (action->text() == ToolBarButton::titleOf(ToolBarButton::NewProject)) {
            EXPECT_TRUE(action->isEnabled());
            action->trigger();
        }
    menu->close();
    auto *form = window().findChild<RecordWindow *>(u"WindowNewProjects"_s);
    ASSERT_TRUE(form && form->isVisible());
    EXPECT_FALSE(find<QPushButton>(*form, "buttonSave").isEnabled());
    QTest::keyClicks(&find<GrowingTextField>(*form, "textFieldTitle"), u"Garden"_s);
    press(*form, "buttonSave");
    ASSERT_TRUE(stored(u"Garden"_s));
    EXPECT_EQ(stored(u"Garden"_s)->category(), EntityCategory::getCustom());
    EXPECT_EQ(stored(u"Garden"_s)->priority(), Priority::None);
}

TEST_F(ProjectsTest, DeletingAsksOnceAndTheNextIsRead)
{
    const TaskPtr task = add(u"sand the hull"_s);
    task->setProject(stored(u"House"_s));
    ASSERT_FALSE(DBWorker::saveContext());
    settle();
    select(u"House"_s);
    {
        const ScriptedAlerts yes({Alert::firstButton});
        run(ActionId::Delete);
        ASSERT_EQ(yes.asked().size(), 1u);
        EXPECT_EQ(yes.asked().front().message, u"Are you sure you want to delete the selected item?"_s);
        EXPECT_EQ(yes.asked().front().informativeText, u"“House”\n1 task stays, without a project."_s);
    }
    settle();
    EXPECT_EQ(rows(), (QStringList{u"Boat"_s, u"Tree"_s}));
    EXPECT_EQ(title(), u"Tree"_s);
    EXPECT_FALSE(task->project()) << "its tasks stay";
    run(ActionId::Undo);
    settle();
    EXPECT_EQ(rows(), (QStringList{u"Boat"_s, u"House"_s, u"Tree"_s}));
}

TEST_F(ProjectsTest, TheQuestionBeforeDeletingCountsTheTasksThatStay)
{
    for (const QString &of : {u"House"_s, u"House"_s, u"Boat"_s}) {
        const TaskPtr task = add(u"work"_s);
        task->setProject(stored(of));
        task->setStatus(of == u"Boat"_s ? TaskStatus::Done : TaskStatus::Open);
    }
    ASSERT_FALSE(DBWorker::saveContext());
    settle();
    const std::vector<std::pair<std::set<int>, QString>> cases = {
        {{2}, u"“Tree”"_s},
        {{1}, u"“House”\n2 tasks stay, without a project."_s},
        {{0, 1}, u"2 projects: “Boat”, “House”\n3 tasks stay, without a project."_s}};
    for (const auto &[selected, sentence] : cases) {
        const ScriptedAlerts no({Alert::secondButton});
        projects().table()->selectRows(selected);
        settle();
        run(ActionId::Delete);
        ASSERT_EQ(no.asked().size(), 1u);
        EXPECT_EQ(no.asked().front().informativeText, sentence);
    }
}

TEST_F(ProjectsTest, AFilterHidesOthersAndClosesTheirPanes)
{
    select(u"House"_s);
    run(ActionId::FilterTasks);
    auto *field = QApplication::activePopupWidget()->findChild<QLineEdit *>(u"fieldTitle"_s);
    ASSERT_TRUE(field);
    EXPECT_EQ(field->placeholderText(), u"Type project title"_s);
    EXPECT_EQ(field->toolTip(), u"Finds titles that begin with this"_s);
    QTest::keyClicks(field, u"b"_s);
    EXPECT_TRUE(QTest::qWaitFor([this] { return rows() == QStringList{u"Boat"_s}; }));
    settle();
    EXPECT_EQ(title(), u"Boat"_s) << "the pane of a hidden project goes";
    QApplication::activePopupWidget()->close();
    // It stands at the next visit.
    showList(SidebarItem::Inbox);
    run(ActionId::ShowProjects);
    settle();
    EXPECT_EQ(rows(), QStringList{u"Boat"_s});
    EXPECT_TRUE(projects().canClearFilter());
    projects().clearFilter();
    EXPECT_EQ(rows().size(), 3);
    EXPECT_EQ(title(), u"Boat"_s);
}

TEST_F(ProjectsTest, WhatTheFilterHidesIsShownToWhoAsksForIt)
{
    run(ActionId::FilterTasks);
    QTest::keyClicks(QApplication::activePopupWidget()->findChild<QLineEdit *>(u"fieldTitle"_s), u"b"_s);
    ASSERT_TRUE(QTest::qWaitFor([this] { return rows() == QStringList{u"Boat"_s}; }));
    QApplication::activePopupWidget()->close();
    showList(SidebarItem::Inbox);
    controller().searchSelectItem(stored(u"House"_s));
    settle();
    ASSERT_TRUE(pane());
    EXPECT_EQ(title(), u"House"_s);
    EXPECT_EQ(rows(), QStringList{u"Boat"_s});

    // So is what was left typed for one.
    press(*pane(), "buttonEdit");
    find<GrowingTextField>(*pane(), "textFieldTitle").selectAll();
    QTest::keyClicks(&find<GrowingTextField>(*pane(), "textFieldTitle"), u"Castle"_s);
    DraftKeeper::finishAll();
    controller().detailStack()->removeAllDetail();
    {
        const ScriptedAlerts alerts({Alert::firstButton});
        controller().openDrafts();
        EXPECT_EQ(alerts.asked().size(), 1u);
    }
    settle();
    EXPECT_FALSE(window().findChild<RecordWindow *>(u"WindowNewProjects"_s));
    ASSERT_TRUE(pane());
    EXPECT_TRUE(pane()->isEditing());
    press(*pane(), "buttonEdit");
    EXPECT_TRUE(stored(u"Castle"_s));
    EXPECT_EQ(rows(), QStringList{u"Boat"_s});

    // And a new one.
    run(ActionId::NewProject);
    auto *form = window().findChild<RecordWindow *>(u"WindowNewProjects"_s);
    ASSERT_TRUE(form);
    QTest::keyClicks(&find<GrowingTextField>(*form, "textFieldTitle"), u"Garden"_s);
    press(*form, "buttonSave");
    EXPECT_EQ(title(), u"Garden"_s);
    EXPECT_EQ(rows(), QStringList{u"Boat"_s});
}

// The tasks of a project

class ProjectTasksTest : public ProjectsTest
{
protected:
    TaskPtr taskOf(const QString &project, const QString &title, TaskStatus status = TaskStatus::Open)
    {
        const TaskPtr made = add(title);
        made->setProject(ProjectsTest::stored(project));
        made->setStatus(status);
        EXPECT_FALSE(DBWorker::saveContext());
        settle();
        return made;
    }
    LinkedTasksView &tasks() { return *pane()->findChild<LinkedTasksView *>(); }
    QStringList titlesOfTasks()
    {
        QStringList shown;
        const QAbstractItemModel &model = *tasks().table()->model();
        for (int row = 0; row < model.rowCount(); ++row)
            if (model.index(row, 0).data(Qt::AccessibleTextRole).isValid())
                shown.append(model.index(row, 0).data().toString());
        return shown;
    }
    QString percent() { return find<QLabel>(tasks(), "labelPercent").text(); }
};

TEST_F(ProjectTasksTest, StandInItsPaneWithTheShareThatIsDone)
{
    EXPECT_EQ(titlesOfTasks(), QStringList{u"No Tasks"_s});
    EXPECT_EQ(percent(), QString());
    taskOf(u"Boat"_s, u"mast"_s);
    taskOf(u"Boat"_s, u"hull"_s, TaskStatus::Done);
    taskOf(u"Boat"_s, u"keel"_s);
    taskOf(u"House"_s, u"roof"_s);
    EXPECT_EQ(titlesOfTasks(), (QStringList{u"keel"_s, u"mast"_s, u"hull"_s}));
    EXPECT_EQ(percent(), u"(33 %)"_s);
    const QModelIndex first = tasks().table()->model()->index(0, 0);
    EXPECT_EQ(first.data(TaskListModel::ContentRole).value<TaskRowContent>().project, QString())
        << "whose tasks they are is said above";

    // Ticked in its row.
    tasks().table()->selectRow(0);
    tasks().table()->setFocus();
    QTest::keyClick(tasks().table(), Qt::Key_Space);
    EXPECT_EQ(ShellTest::stored(u"keel"_s)->status(), TaskStatus::Done);
    EXPECT_EQ(tasks().completedTasksCount(), 2);
    EXPECT_TRUE(QTest::qWaitFor([this] { return titlesOfTasks().first() == u"mast"_s; }));
    EXPECT_EQ(percent(), u"(66 %)"_s);
    tasks().table()->selectRow(0);
    const ScriptedAlerts yes({Alert::firstButton});
    QTest::keyClick(tasks().table(), Qt::Key_Delete);
    settle();
    EXPECT_EQ(yes.asked().size(), 1u);
    EXPECT_FALSE(ShellTest::stored(u"mast"_s));
    EXPECT_EQ(percent(), u"(100 %)"_s);
    EXPECT_EQ(title(), u"Boat"_s);
}

TEST_F(ProjectTasksTest, ArePlannedByTheKeysThatTheirMenuTells)
{
    taskOf(u"Boat"_s, u"mast"_s);
    EXPECT_FALSE(controller().commands()->action(ActionId::PlanTomorrow)->isEnabled())
        << "nothing is selected";
    tasks().table()->setFocus();
    tasks().table()->selectRow(0);
    run(ActionId::PlanTomorrow);
    EXPECT_EQ(ShellTest::stored(u"mast"_s)->startDate(), localDate(2026, 11, 22));
    run(ActionId::Duplicate);
    EXPECT_TRUE(QTest::qWaitFor([this] { return titlesOfTasks() == QStringList{u"mast"_s, u"mast"_s}; }));
    tasks().table()->clearSelection();
    EXPECT_FALSE(controller().commands()->action(ActionId::PlanTomorrow)->isEnabled());
}

TEST_F(ProjectTasksTest, AllScrollWithTheirPaneAndTheKeysStayInSight)
{
    for (int number = 100; number < 160; ++number)
        add(u"task %1"_s.arg(number))->setProject(ProjectsTest::stored(u"Boat"_s));
    ASSERT_FALSE(DBWorker::saveContext());
    settle();
    TableViewExtended &table = *tasks().table();
    EXPECT_EQ(table.verticalScrollBar()->maximum(), 0) << "there is one bar, that of the pane";
    const auto isInSight = [&table](int row) {
        const QRect place = table.visualRect(table.model()->index(row, 0));
        const QRect seen = table.viewport()->visibleRegion().boundingRect();
        return place.top() >= seen.top() && place.bottom() <= seen.bottom();
    };
    EXPECT_FALSE(isInSight(59));
    table.setFocus();
    for (const auto &[pressed, row] : {std::pair(Qt::Key_End, 59), std::pair(Qt::Key_Home, 0)}) {
        QTest::keyClick(&table, pressed);
        EXPECT_EQ(table.currentRow(), row);
        EXPECT_TRUE(QTest::qWaitFor([&] { return isInSight(row); })) << row;
    }
    for (int step = 0; step < 20; ++step)
        QTest::keyClick(&table, Qt::Key_Down);
    EXPECT_TRUE(isInSight(20));
    // A page is what is seen of them.
    QTest::keyClick(&table, Qt::Key_PageDown);
    EXPECT_GT(table.currentRow(), 21);
    EXPECT_LT(table.currentRow(), 50);
    EXPECT_TRUE(isInSight(table.currentRow()));
}

TEST_F(ProjectTasksTest, OpenOverThePane)
{
    const TaskPtr mast = taskOf(u"Boat"_s, u"mast"_s);
    tasks().table()->selectRow(0);
    tasks().table()->setFocus();
    QTest::keyClick(tasks().table(), Qt::Key_Return);
    settle();
    auto *over = dynamic_cast<TaskDetailViewController *>(top());
    ASSERT_TRUE(over);
    EXPECT_EQ(over->record(), mast);
    EXPECT_FALSE(over->isEmbedded());
    mast->setTitle(u"main mast"_s);
    ASSERT_FALSE(DBWorker::saveContext());
    settle();
    EXPECT_EQ(top(), over) << "what lies beside the list follows, and this stays";
    press(*over, "buttonBack");
    EXPECT_TRUE(QTest::qWaitFor([this] { return dynamic_cast<ProjectDetailViewController *>(top()); }));
    EXPECT_EQ(titlesOfTasks(), QStringList{u"main mast"_s});
}

TEST_F(ProjectTasksTest, AreWrittenDownAndLinkedFromIt)
{
    press(*pane(), "buttonAddTask");
    ASSERT_TRUE(newTaskWindow());
    EXPECT_EQ(newTaskWindow()->taskForm()->currentTask().project, ProjectsTest::stored(u"Boat"_s));
    QTest::keyClicks(&find<GrowingTextField>(*newTaskWindow(), "textFieldTitle"), u"mast"_s);
    press(*newTaskWindow(), "buttonSave");
    EXPECT_EQ(titlesOfTasks(), QStringList{u"mast"_s});

    add(u"anchor"_s);
    taskOf(u"House"_s, u"roof"_s);
    tasks().findChild<QMenu *>()->actions().first()->trigger();
    auto *linking = window().findChild<AddCurrentTasksWindow *>();
    ASSERT_TRUE(linking && linking->isVisible());
    EXPECT_EQ(linking->windowTitle(), u"Add tasks"_s);
    auto &list = find<CheckList>(*linking, "tableTasks");
    ASSERT_EQ(list.lineCount(), 4) << "two letters and two tasks";
    EXPECT_FALSE(list.isMarked(1));
    EXPECT_TRUE(list.isMarked(3));
    QTest::keyClicks(&find<QLineEdit>(*linking, "fieldSearch"), u"anc"_s);
    ASSERT_EQ(list.lineCount(), 2);
    list.setFocus();
    QTest::keyClick(&list, Qt::Key_Space);
    EXPECT_TRUE(list.isMarked(1));
    press(*linking, "buttonDone");
    EXPECT_EQ(titlesOfTasks(), (QStringList{u"anchor"_s, u"mast"_s}));
    run(ActionId::Undo);
    settle();
    EXPECT_EQ(titlesOfTasks(), QStringList{u"mast"_s});
}

TEST_F(ProjectTasksTest, SelectAllMarksWhatIsShownWhereNoTextHasTheKeys)
{
    for (const QString &title : {u"anchor"_s, u"mast"_s, u"rope"_s})
        add(title);
    tasks().findChild<QMenu *>()->actions().first()->trigger();
    auto *linking = window().findChild<AddCurrentTasksWindow *>();
    ASSERT_TRUE(linking);
    auto &list = find<CheckList>(*linking, "tableTasks");
    auto &search = find<QLineEdit>(*linking, "fieldSearch");
    const auto marked = [&list] {
        QStringList titles;
        for (int line = 0; line < list.lineCount(); ++line)
            if (list.isMarked(line))
                titles.append(list.textOf(line));
        return titles;
    };
    QTest::keyClicks(&search, u"an"_s);
    QTest::keyClick(&search, Qt::Key_A, Qt::ControlModifier);
    EXPECT_EQ(search.selectedText(), u"an"_s);
    EXPECT_TRUE(marked().isEmpty());
    list.setFocus();
    QTest::keyClick(&list, Qt::Key_A, Qt::ControlModifier);
    EXPECT_EQ(marked(), QStringList(u"anchor"_s));
    search.clear();
    QTest::keyClick(&search, Qt::Key_A, Qt::ControlModifier);
    EXPECT_EQ(marked().size(), 3) << "an empty field has nothing to select";
    press(*linking, "buttonDone");
    EXPECT_EQ(titlesOfTasks().size(), 3);
}

TEST_F(ProjectTasksTest, TheMenuOfTheButtonEndsWhereTheButtonDoes)
{
    auto &more = find<QToolButton>(tasks(), "buttonMoreTasks");
    for (const Qt::LayoutDirection direction : {Qt::LeftToRight, Qt::RightToLeft}) {
        more.setLayoutDirection(direction);
        auto *menu = more.findChild<QMenu *>();
        menu->setLayoutDirection(direction);
        menu->popup(more.mapToGlobal(QPoint(0, more.height())));
        const QRect button(more.mapToGlobal(QPoint()), more.size());
        if (direction == Qt::LeftToRight)
            EXPECT_EQ(menu->geometry().right(), button.right());
        else
            EXPECT_EQ(menu->geometry().left(), button.left());
        menu->close();
    }
}

TEST_F(ProjectTasksTest, ItsContactsAreAddedTakenOutAndAskedFor)
{
    for (const QString &name : {u"Ann"_s, u"Bob"_s})
        context().insert<EntityContacts>()->setFirstName(name);
    ASSERT_FALSE(DBWorker::saveContext());
    press(*pane(), "buttonEdit");
    auto &popUp = find<QComboBox>(*pane(), "popUpButtonContacts");
    ASSERT_EQ(popUp.count(), 2);
    popUp.setFocus();
    QTest::keyClick(&popUp, Qt::Key_B);
    settle();
    EXPECT_EQ(popUp.count(), 1) << "who takes part cannot be added again";
    EXPECT_EQ(popUp.currentIndex(), -1);
    Q_EMIT popUp.activated(0);
    settle();
    auto unlink = pane()->findChildren<QToolButton *>(u"buttonUnlink"_s);
    ASSERT_EQ(unlink.size(), 2);
    EXPECT_EQ(unlink.first()->accessibleName(), u"Remove Ann"_s);
    QTest::mouseClick(unlink.first(), Qt::LeftButton);
    settle();
    press(*pane(), "buttonEdit");
    const auto contacts = ProjectsTest::stored(u"Boat"_s)->delegateToUser();
    ASSERT_EQ(contacts.size(), 1u);
    EXPECT_EQ(contacts.front()->firstName(), u"Bob"_s);
    EXPECT_FALSE(popUp.isVisible());
    press(*pane(), "buttonGo");
    EXPECT_EQ(top()->record(), contacts.front()) << "in a pane over the one of the project";
    press(*pane(), "buttonBack");
    EXPECT_TRUE(QTest::qWaitFor([this] { return top()->record() == ProjectsTest::stored(u"Boat"_s); }));
    EXPECT_EQ(title(), u"Boat"_s);
}
