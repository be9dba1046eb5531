// Many tasks are changed or deleted at once, while the window keeps on listening.

#include "shell/tasks/TaskPopupMenu.h"
#include "store/state/NotificationNames.h"
#include "ui/support/CalendarAccess.h"
#include "ui/support/ShellTest.h"
#include "widgets/ProgressSign.h"

#include <QApplication>
#include <QPushButton>
#include <QThread>
#include <QTimer>

using namespace Qt::Literals::StringLiterals;

namespace {

/// Looks, whenever the program listens, for the sign that says how far the work is.
class Onlooker
{
public:
    enum class Wish { Watch, Cancel };

    explicit Onlooker(Wish wish)
    {
        QObject::connect(&timer, &QTimer::timeout, &timer, [this, wish] { look(wish); });
        timer.start(1);
    }
    int mostSeen = 0;
    QString label;

private:
    void look(Wish wish)
    {
        for (QWidget *widget : QApplication::topLevelWidgets()) {
            auto *sign = qobject_cast<ProgressSign *>(widget);
            if (!sign || !sign->isVisible())
                continue;
            label = sign->accessibleName();
            mostSeen = std::max(mostSeen, sign->value());
            if (wish == Wish::Cancel && sign->value() > 0)
                QTest::mouseClick(sign->findChild<QPushButton *>(), Qt::LeftButton);
        }
    }

    QTimer timer;
};

/// Work that takes its time for each task.
class ManyTasksTest : public ShellTest
{
protected:
    static constexpr int count = 1200;

    ManyTasksTest()
    {
        addTasks(0, count);
        showList(SidebarItem::Inbox);
        EXPECT_TRUE(QTest::qWaitFor([this] { return shownTitles().size() == count; }));
        run(ActionId::SelectAll);
        slowness = NotificationCenter::defaultCenter().addObserver(
            notifications::taskChange, [](const TaskPtr &) { QThread::msleep(1); });
    }
    void addTasks(int first, int end)
    {
        for (int number = first; number < end; ++number) {
            const auto task = context().insert<EntityTask>();
            task->setTitle(u"Task %1"_s.arg(number));
            task->setCreationDate(localDate(2026, 11, 20));
            task->setType(TaskType::ToDo);
            task->setStatus(TaskStatus::Open);
            task->setPriority(Priority::None);
            task->setPosition(number + 1);
        }
        EXPECT_FALSE(DBWorker::saveContext());
    }
    int left() { return context().count(EntityTask::fetchRequest()); }
    int important()
    {
        return context().count(EntityTask::fetchRequest().where(Predicate::format("priority = %d", 0)));
    }
    void makeImportant()
    {
        const QPoint place = middleOf(0);
        QContextMenuEvent event(QContextMenuEvent::Mouse, place, list().viewport()->mapToGlobal(place));
        QCoreApplication::sendEvent(list().viewport(), &event);
        auto &popup = find<TaskPopupMenu>(screen(), "taskPopupMenu");
        for (QAction *action : popup.findChildren<QAction *>()) {
            if (action->text() == u"High"_s)
                action->trigger();
        }
        popup.close();
    }
    /// How many rows the list shows, once it has been fetched anew.
    bool shows(int rows)
    {
        return QTest::qWaitFor([&] { return shownTitles().size() == rows; });
    }

    Observation slowness;
};

} // namespace

TEST_F(ManyTasksTest, AChangeShowsHowFarItIsAndOneUndoTakesAllOfItBack)
{
    const Onlooker onlooker(Onlooker::Wish::Watch);
    makeImportant();
    EXPECT_EQ(onlooker.label, u"Changing the selected tasks"_s);
    EXPECT_GT(onlooker.mostSeen, count / 4);
    EXPECT_EQ(important(), count);
    screen().reloadData();
    EXPECT_EQ(list().selectedCount(), count) << "and they stay selected";
    EXPECT_EQ(QGuiApplication::overrideCursor(), nullptr);
    run(ActionId::Undo);
    EXPECT_EQ(important(), 0);
}

TEST_F(ManyTasksTest, AChangeThatIsStoppedKeepsWhatIsDone)
{
    const Onlooker impatient(Onlooker::Wish::Cancel);
    makeImportant();
    EXPECT_GT(important(), 0);
    EXPECT_LT(important(), count);
    EXPECT_FALSE(context().hasChanges());
    EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
}

TEST_F(ManyTasksTest, DeletingCanBeStoppedAndTheListShowsTheRest)
{
    const ScriptedAlerts alerts({Alert::firstButton});
    const Onlooker impatient(Onlooker::Wish::Cancel);
    // For each the calendars are asked, and look again at what they could not read.
    const CalendarAccess calendars({u"Home"_s});
    calendars.writeBroken(u"Home"_s, 200);
    for (const TaskPtr &task : context().fetch<EntityTask>(EntityTask::fetchRequest()))
        task->setCalendarID(u"of "_s + task->title());
    ASSERT_FALSE(DBWorker::saveContext());
    run(ActionId::SelectAll);
    key(Qt::Key_Delete);
    EXPECT_EQ(impatient.label, u"Deleting the selected tasks"_s);
    const int rest = left();
    EXPECT_GT(rest, 0);
    EXPECT_LT(rest, count);
    EXPECT_TRUE(shows(rest));
    EXPECT_EQ(selectedTitles().size(), 1);
    run(ActionId::Undo);
    EXPECT_EQ(left(), count) << "one undo brings all of them back";
    EXPECT_TRUE(shows(count));
}
