// What a commit changed is changed in the rows that are shown; all others are left alone.

#include "calendarsync/RecordsTransaction.h"
#include "records/Categories.h"
#include "shell/tasks/TaskListModel.h"
#include "store/state/NotificationNames.h"
#include "support/OtherProgram.h"
#include "ui/support/CalendarAccess.h"
#include "ui/support/ShellTest.h"
#include "usernotifications/UserNotificationCenter.h"

#include <QAbstractItemModelTester>
#include <QApplication>
#include <QFile>
#include <QScrollBar>
#include <QSignalSpy>

#include <random>

using namespace Qt::Literals::StringLiterals;

namespace {

/// Draws the same numbers each time.
class Dice
{
public:
    int below(int count) { return std::uniform_int_distribution<>(0, count - 1)(random); }
    bool oneIn(int count) { return below(count) == 0; }
    template <typename T>
    const T &of(const std::vector<T> &choices)
    {
        return choices[static_cast<size_t>(below(static_cast<int>(choices.size())))];
    }

private:
    std::mt19937 random{testSeed()};
};

/// A list with a model of it that follows all changes.
struct Followed
{
    QString name;
    std::function<TaskListQuery()> query;
    std::unique_ptr<TaskListModel> model;
};

} // namespace

class GeneratedRowsTest : public ShellTest
{
protected:
    GeneratedRowsTest()
    {
        for (const QString &title : {u"b"_s, u"a"_s, u"c"_s}) {
            const auto project = context().insert<EntityProject>();
            project->setTitle(title);
            projects.push_back(project);
            const auto contact = context().insert<EntityContacts>();
            contact->setFirstName(title);
            contacts.push_back(contact);
        }
        EXPECT_FALSE(DBWorker::saveContext());
        categories = DBWorker::allCategories();
        categories.push_back(nullptr);
        projects.push_back(nullptr);
        contacts.push_back(nullptr);
    }

    void follow(const QString &name, ListType type, std::function<TaskListQuery()> query)
    {
        auto model = std::make_unique<TaskListModel>(type);
        model->setQuery(query);
        model->fetch();
        testers.push_back(std::make_unique<QAbstractItemModelTester>(
            model.get(), QAbstractItemModelTester::FailureReportingMode::Warning));
        lists.push_back({name, std::move(query), std::move(model)});
    }
    void followAll()
    {
        const std::pair<QString, tasklists::Definition (*)()> definitions[] = {
            {u"Today"_s, tasklists::today},
            {u"Scheduled"_s, tasklists::scheduled},
            {u"Someday"_s, tasklists::someday},
            {u"Not Done"_s, tasklists::notDone}};
        for (const auto &[name, definition] : definitions) {
            for (int by = -1; by <= 2; ++by)
                follow(u"%1 by %2"_s.arg(name).arg(by), ListType::Today, [definition = definition, by] {
                    return TaskListQuery::of(definition(), static_cast<Grouping>(by));
                });
        }
        follow(u"Inbox"_s, ListType::Inbox, [] {
            return TaskListQuery{tasklists::inbox(), {}, GroupedBy::Nothing, ListEnd::GapAlways};
        });
        follow(u"Delegated"_s, ListType::Delegated, [] { return TaskListQuery::delegated(); });
        follow(u"Done"_s, ListType::Done, [] { return TaskListQuery::doneByDay(); });
        follow(u"Category"_s, ListType::Categories, [this] { return Categories::query(categories.front()); });
        follow(u"No category"_s, ListType::Categories, [] { return Categories::query(nullptr); });
        follow(u"Filtered"_s, ListType::NotDone, [] {
            return TaskListQuery{tasklists::notDone(), {Predicate::format("title contains[cd] %@", u"1"_s)}};
        });
    }

    void change(const TaskPtr &task)
    {
        const std::vector<OptionalDate> dates = {std::nullopt,
                                                 localDate(2026, 11, 3, 8),
                                                 localDate(2026, 11, 20, 23, 59),
                                                 localDate(2026, 11, 21),
                                                 localDate(2026, 11, 21, 17),
                                                 localDate(2026, 11, 22, 9),
                                                 localDate(2026, 11, 30, 12)};
        switch (dice.below(9)) {
        case 0:
            return task->setTitle(u"%1"_s.arg(dice.below(30), 2, 10, QLatin1Char('0')));
        case 1:
            return task->setDueDate(dice.of(dates));
        case 2:
            return task->setStartDate(dice.of(dates));
        case 3:
            task->setStatus(dice.oneIn(3) ? TaskStatus::Done : TaskStatus::Open);
            return task->setExpirationDate(
                OptionalDate(localDate(2026, 11, 18 + dice.below(3), dice.below(24))));
        case 4:
            return task->setCategory(dice.of(categories));
        case 5:
            return task->setProject(dice.of(projects));
        case 6:
            return task->setDelegateToUser(dice.of(contacts));
        case 7:
            task->setPriority(static_cast<Priority>(dice.below(5)));
            return task->setPosition(dice.below(10));
        default:
            task->setType(static_cast<TaskType>(dice.below(3)));
            return task->setDueSomeDay(dice.oneIn(3));
        }
    }
    void changeSome()
    {
        const TaskList all = context().fetch<EntityTask>(EntityTask::fetchRequest());
        for (int count = 1 + dice.below(6); count > 0; --count) {
            if (all.isEmpty() || dice.oneIn(4)) {
                const auto task = context().insert<EntityTask>();
                task->setDueSomeDay(false);
                task->setStatus(TaskStatus::Open);
                for (int times = 0; times < 9; ++times)
                    change(task);
            } else if (const TaskPtr task = all.at(dice.below(all.size()))) {
                if (dice.oneIn(6))
                    context().deleteObject(task);
                else
                    change(task);
            }
        }
    }

    /// All that orders and groups rows, a line for each; rows that are equal in that may stand either way.
    static QStringList lines(const TaskRows &rows)
    {
        const auto date = [](OptionalDate one) { return one ? wallClock(*one) : u"-"_s; };
        QStringList texts;
        for (int row = 0; row < rows.size(); ++row) {
            const TaskRow element = rows.at(row);
            if (const auto *header = std::get_if<GroupHeader>(&element))
                texts << u"= "_s + TaskListModel::headerText(*header);
            else if (const auto *task = std::get_if<TaskPtr>(&element))
                texts << (*task ? u"%1 %2 %3 %4 %5 %6 %7"_s
                                      .arg((*task)->title(), date((*task)->dueDate()),
                                           date((*task)->startDate()), date((*task)->expirationDate()))
                                      .arg((*task)->position().value_or(-1))
                                      .arg(static_cast<int>((*task)->type().value_or(TaskType::ToDo)))
                                      .arg((*task)->dueSomeDay().value_or(false))
                                : u"gone"_s);
            else
                texts << u"-"_s;
        }
        return texts;
    }
    static std::vector<RowId> sortedIds(const TaskRows &rows)
    {
        std::vector<RowId> ids;
        for (int row = 0; row < rows.size(); ++row)
            ids.push_back(rows.identifierAt(row));
        std::ranges::sort(ids);
        return ids;
    }
    /// The same groups of the same tasks, and no task above one that belongs above it.
    static testing::AssertionResult isAsFetched(const TaskListQuery &query, const TaskRows &rows)
    {
        const TaskRows fresh = query.fetch();
        const auto failure = [&] {
            return testing::AssertionFailure() << "shown:\n"
                                               << qPrintable(lines(rows).join(u'\n')) << "\nfetched:\n"
                                               << qPrintable(lines(fresh).join(u'\n'));
        };
        if (rows.size() != fresh.size())
            return failure();
        std::vector<RowId> ids = sortedIds(rows);
        if (ids != sortedIds(fresh))
            return failure();
        const tasklists::OrderKeys keys = tasklists::orderKeys(query.definition, ids);
        for (int row = 0; row < rows.size(); ++row) {
            if (rows.kindOf(row) != fresh.kindOf(row))
                return failure();
            if (rows.kindOf(row) == TaskRows::Kind::Header && rows.at(row) != fresh.at(row))
                return failure();
            if (rows.kindOf(row) != TaskRows::Kind::Task)
                continue;
            const auto &shown = keys.at(rows.identifierAt(row));
            const auto &fetched = keys.at(fresh.identifierAt(row));
            if (tasklists::isBefore(query.definition, shown, fetched) ||
                tasklists::isBefore(query.definition, fetched, shown))
                return failure();
        }
        return testing::AssertionSuccess();
    }

    Dice dice;
    std::vector<CategoryPtr> categories;
    std::vector<ProjectPtr> projects;
    std::vector<ContactPtr> contacts;
    std::vector<Followed> lists;
    std::vector<std::unique_ptr<QAbstractItemModelTester>> testers;
};

TEST_F(GeneratedRowsTest, AfterGeneratedChangesTheRowsAreThoseOfAFreshFetch)
{
    followAll();
    std::set<RowId> changed;
    const Observation hearer = NotificationCenter::defaultCenter().addObserver(
        notifications::contextDidSave, [&changed](const StoreChanges &changes) {
            for (const auto *objects : {&changes.inserted, &changes.deleted}) {
                for (const ObjectPtr &object : *objects)
                    if (object->entity().name() == EntityTask::entityName)
                        changed.insert(object->rowId());
            }
            for (const StoreChanges::Update &update : changes.updated)
                if (update.object->entity().name() == EntityTask::entityName)
                    changed.insert(update.object->rowId());
        });
    for (int round = 0; round < 150; ++round) {
        if (round > 3 && dice.oneIn(8)) {
            EXPECT_FALSE(context().undo());
        } else if (dice.oneIn(5)) {
            Transaction pass(context(), ChangeAuthor::Pass);
            changeSome();
            EXPECT_FALSE(pass.commit());
        } else {
            changeSome();
            EXPECT_FALSE(DBWorker::saveContext());
        }
        const bool isSeveral = dice.oneIn(3);
        if (isSeveral)
            continue;
        for (const Followed &list : lists) {
            // Some rows, though changed, stay until the user has seen it; then they go, too.
            std::set<RowId> first;
            std::set<RowId> held;
            for (const RowId row : changed) {
                const bool isThere =
                    !context().fetchObjects(EntityTask::fetchRequest().among({row})).isEmpty();
                (isThere && dice.oneIn(4) ? held : first).insert(row);
            }
            list.model->update(first, held);
            list.model->update(held, {});
            ASSERT_TRUE(isAsFetched(list.query(), list.model->rows()))
                << qPrintable(list.name) << " in round " << round;
        }
        changed.clear();
    }
}

class RowsInPlaceTest : public ShellTest
{
protected:
    /// Titles in a list that is longer than the window.
    void fillInbox(int count)
    {
        for (int number = 0; number < count; ++number)
            make(u"Task %1"_s.arg(number, 3, 10, QLatin1Char('0')), 2 * number);
        EXPECT_FALSE(DBWorker::saveContext());
        showList(SidebarItem::Inbox);
    }
    void make(const QString &title, int position)
    {
        const auto task = context().insert<EntityTask>();
        task->setTitle(title);
        task->setType(TaskType::ToDo);
        task->setStatus(TaskStatus::Open);
        task->setDueSomeDay(false);
        task->setPosition(position);
    }
    void save()
    {
        EXPECT_FALSE(DBWorker::saveContext());
        QCoreApplication::processEvents();
    }
    void insert(const QString &title, int position)
    {
        const TaskPtr task = add(title);
        task->setPosition(position);
    }
};

TEST_F(RowsInPlaceTest, WhatIsSelectedCurrentAndSeenStaysSoWhenOthersComeAndGo)
{
    fillInbox(100);
    const QSignalSpy resets(list().model(), &QAbstractItemModel::modelReset);
    list().selectRows({50, 52});
    list().scrollToRow(60);
    const QStringList selected = selectedTitles();
    const int y = list().visualRect(list().model()->index(51, 0)).y();
    ASSERT_GT(list().verticalScrollBar()->value(), 0);
    insert(u"above"_s, 1);
    context().deleteObject(stored(u"Task 002"_s));
    context().deleteObject(stored(u"Task 003"_s));
    stored(u"Task 052"_s)->setPosition(7);
    save();
    EXPECT_EQ(resets.count(), 0);
    EXPECT_EQ(selectedTitles(), (QStringList{u"Task 052"_s, u"Task 050"_s})) << "the moved row has gone up";
    EXPECT_EQ(shownTitles().indexOf(u"Task 052"_s), 3);
    EXPECT_EQ(shownTitles()[list().currentRow()], u"Task 050"_s);
    EXPECT_EQ(
        list()
            .visualRect(list().model()->index(static_cast<int>(shownTitles().indexOf(u"Task 051"_s)), 0))
            .y(),
        y);
    EXPECT_TRUE(list().hasFocus());

    list().verticalScrollBar()->setValue(0);
    stored(u"Task 090"_s)->setPosition(-1);
    save();
    EXPECT_EQ(shownTitles().front(), u"Task 090"_s);
    EXPECT_EQ(list().verticalScrollBar()->value(), 0) << "what comes first is seen";
    EXPECT_EQ(resets.count(), 0);
}

TEST_F(RowsInPlaceTest, WhereAllThatWasSelectedGoesItsNeighbourIsSelected)
{
    fillInbox(3);
    clickRow(1);
    context().deleteObject(stored(u"Task 001"_s));
    save();
    EXPECT_EQ(selectedTitles(), QStringList{u"Task 002"_s});
    context().deleteObject(stored(u"Task 002"_s));
    save();
    EXPECT_EQ(selectedTitles(), QStringList{u"Task 000"_s});
}

TEST_F(RowsInPlaceTest, RowsOutOfSightGoWhenAnUndoOrARedoDeletesTheirTasks)
{
    fillInbox(150);
    const int all = list().model()->rowCount();
    make(u"far below"_s, 1000);
    save();
    ASSERT_EQ(list().model()->rowCount(), all + 1);
    run(ActionId::Undo);
    QCoreApplication::processEvents();
    EXPECT_EQ(list().model()->rowCount(), all);

    {
        const ScriptedAlerts alerts({Alert::firstButton});
        list().setFocus();
        run(ActionId::SelectAll);
        key(Qt::Key_Delete);
    }
    QCoreApplication::processEvents();
    ASSERT_EQ(inboxTitles(), QStringList());
    run(ActionId::Undo);
    QCoreApplication::processEvents();
    ASSERT_EQ(list().model()->rowCount(), all);
    run(ActionId::Redo);
    QCoreApplication::processEvents();
    EXPECT_EQ(shownTitles(), QStringList());
}

TEST_F(RowsInPlaceTest, WhatTheListDoesNotShowTouchesNoOtherRow)
{
    fillInbox(20);
    const QSignalSpy changes(list().model(), &QAbstractItemModel::dataChanged);
    const QSignalSpy moves(list().model(), &QAbstractItemModel::rowsMoved);
    stored(u"Task 005"_s)->setDetails(u"more of it"_s);
    save();
    ASSERT_EQ(changes.count(), 1);
    EXPECT_EQ(changes.front().front().toModelIndex().row(), 5);
    EXPECT_EQ(changes.front()[1].toModelIndex().row(), 5);
    EXPECT_EQ(moves.count(), 0);
    add(u"some day"_s, [](MVTask &task) { task.dueSomeDay = true; });
    context().insert<EntityNote>()->setTitle(u"a note"_s);
    save();
    EXPECT_EQ(changes.count(), 1);
}

TEST_F(RowsInPlaceTest, ATickedRowIsSeenWhileOthersComeAndThenGoes)
{
    fillInbox(3);
    QTest::mouseClick(list().viewport(), Qt::LeftButton, {}, checkBoxOf(1));
    insert(u"new"_s, 3);
    save();
    EXPECT_EQ(shownTitles(), (QStringList{u"Task 000"_s, u"Task 001"_s, u"new"_s, u"Task 002"_s}));
    context().deleteObject(stored(u"Task 000"_s));
    save();
    EXPECT_EQ(shownTitles(), (QStringList{u"Task 001"_s, u"new"_s, u"Task 002"_s}));
    EXPECT_TRUE(QTest::qWaitFor([&] { return shownTitles() == QStringList({u"new"_s, u"Task 002"_s}); }));
}

TEST_F(RowsInPlaceTest, OnAnotherDayTheWholeListIsAnother)
{
    add(u"today"_s, [](MVTask &task) { task.startDate = task.dueDate = localDate(2026, 11, 21); });
    add(u"tomorrow"_s, [](MVTask &task) { task.startDate = task.dueDate = localDate(2026, 11, 22); });
    showList(SidebarItem::Today);
    ASSERT_EQ(shownTitles(), QStringList{u"today"_s});
    const FrozenClock tomorrow(localDate(2026, 11, 22, 8));
    add(u"elsewhere"_s);
    QCoreApplication::processEvents();
    EXPECT_EQ(shownTitles(), (QStringList{u"today"_s, u"tomorrow"_s}));
}

TEST_F(RowsInPlaceTest, WhatAnotherProgramWritesToTheStoreIsSeenWithoutATouch)
{
    const FrozenClock evening(localDate(2026, 11, 21, 20));
    fillInbox(3);
    clickRow(1);
    writeElsewhere(context().path(),
                   "INSERT INTO EntityTask (id, title, type, status, dueSomeDay, position) VALUES ('x', "
                   "'from elsewhere', "
                   "0, 0, 0, -1); UPDATE EntityTask SET title = 'renamed' WHERE title = 'Task 002';"
                   "UPDATE EntityTask SET alert = 900000000 WHERE id = 'x'");
    EXPECT_TRUE(QTest::qWaitFor([&] {
        return shownTitles() ==
               QStringList({u"from elsewhere"_s, u"Task 000"_s, u"Task 001"_s, u"renamed"_s});
    }));
    EXPECT_EQ(selectedTitles(), QStringList{u"Task 001"_s});
    const auto &alerts = UserNotificationCenter::defaultUserNotificationCenter().scheduledNotifications();
    ASSERT_EQ(alerts.size(), 1u);
    EXPECT_EQ(alerts[0].subtitle, u"from elsewhere"_s);
    writeElsewhere(context().path(), "DELETE FROM EntityTask WHERE title <> 'renamed'");
    EXPECT_TRUE(QTest::qWaitFor([&] { return shownTitles() == QStringList{u"renamed"_s}; }));
}

TEST_F(RowsInPlaceTest, EventsThatArriveAreShownAndCountedOnceTheProgramIsEntered)
{
    const CalendarAccess access({u"Work"_s});
    showList(SidebarItem::Today);
    ASSERT_TRUE(shownTitles().isEmpty());
    const auto badge = [&] {
        return sidebar().indexOf(SidebarItem::Today).data(SidebarModel::BadgeRightRole).toInt();
    };
    delegate->applicationDidResignActive();
    access.writeEvent(u"Work"_s, u"Meeting"_s, u"20261121T160000Z"_s);
    access.writeEvent(u"Work"_s, u"Dinner"_s, u"20261121T190000Z"_s);
    delegate->applicationDidBecomeActive();
    EXPECT_TRUE(QTest::qWaitFor([&] { return shownTitles() == QStringList({u"Meeting"_s, u"Dinner"_s}); }));
    EXPECT_TRUE(QTest::qWaitFor([&] { return badge() == 2; }));
}
