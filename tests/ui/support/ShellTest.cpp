#include "ui/support/ShellTest.h"

#include "foundation/UserDefaults.h"
#include "shell/Shell.h"
#include "store/state/SettingsKeys.h"
#include "widgets/Animations.h"

#include <QApplication>
#include <QDir>
#include <QEvent>

/// What comes up as a window gets the commands of a window. Something that goes into another one after it was
/// shown keeps them, and none of the shortcuts that both have works there any more.
class WindowWatch : public QObject
{
public:
    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (event->type() == QEvent::ParentChange && watched->isWidgetType() &&
            !static_cast<QWidget *>(watched)->isWindow() && watched->property("morvaneCommands").toBool())
            ADD_FAILURE() << watched->metaObject()->className() << ' ' << watched->objectName().toStdString()
                          << " was a window for a moment";
        return false;
    }
};

static void prepareOnce()
{
    static const bool isPrepared = [] {
        static WindowWatch watch;
        qApp->installEventFilter(&watch);
        Shell::prepareApplication();
        Animations::setEnabled(false);
        return true;
    }();
    Q_UNUSED(isPrepared)
    Alert::setPresenter(nullptr);
}

ShellTest::ShellTest()
{
    prepareOnce();
    if (!qEnvironmentVariableIsSet("MORVANE_TEST_HOME"))
        QDir(qEnvironmentVariable("XDG_DATA_HOME") + QStringLiteral("/Morvane")).removeRecursively();
    for (const QString &setting :
         {settings::valueSwitchDatabase, settings::firstRun, settings::taskGrouped,
          QStringLiteral("windowPlaces"), QStringLiteral("sidebarWidth"), QStringLiteral("sidebarOpen"),
          QStringLiteral("hintsSince"), QStringLiteral("hintsUsed")})
        UserDefaults::standard().removeObject(setting);
    auto made = std::make_unique<Shell>();
    shell = made.get();
    delegate = std::make_unique<AppDelegate>(std::move(made));
    delegate->applicationWillFinishLaunching();
    delegate->applicationDidFinishLaunching();
    EXPECT_TRUE(QTest::qWaitForWindowActive(&window()));
    // The screen of the tests is smaller than that of a desk.
    window().resize(1080, 700);
}

ShellTest::~ShellTest()
{
    delegate->applicationWillTerminate();
    delegate.reset();
}

MainWindowController &ShellTest::controller()
{
    return *shell->mainWindow();
}

TabTaskViewController &ShellTest::screen()
{
    return *qobject_cast<TabTaskViewController *>(controller().currentScreen());
}

static QStringList titlesOf(const TableViewExtended &list, const std::set<int> &rows)
{
    QStringList titles;
    for (const int row : rows)
        titles << list.tableModel()->index(row).data().toString();
    return titles;
}

QStringList ShellTest::shownTitles()
{
    std::set<int> rows;
    for (int row = 0; row < list().tableModel()->rowCount(); ++row) {
        if (list().tableModel()->kindOf(row) != RowKind::Separator)
            rows.insert(row);
    }
    return titlesOf(list(), rows);
}

QStringList ShellTest::selectedTitles()
{
    return titlesOf(list(), list().selectedRows());
}

WindowNewTask *ShellTest::newTaskWindow()
{
    return window().findChild<WindowNewTask *>();
}

void ShellTest::showList(SidebarItem item)
{
    controller().showList(item);
    list().setFocus();
}

void ShellTest::pressSidebar(SidebarItem item)
{
    const QModelIndex index = sidebar().indexOf(item);
    QTest::mouseClick(outline().viewport(), Qt::LeftButton, {}, outline().visualRect(index).center());
}

QPoint ShellTest::middleOf(int row)
{
    return list().visualRect(list().tableModel()->index(row)).center();
}

QPoint ShellTest::checkBoxOf(int row)
{
    return {50, middleOf(row).y()};
}

void ShellTest::clickRow(int row, Qt::KeyboardModifiers modifiers)
{
    QTest::mouseClick(list().viewport(), Qt::LeftButton, modifiers, middleOf(row));
}

void ShellTest::drag(int row, QPoint to)
{
    QWidget *viewport = list().viewport();
    QTest::mousePress(viewport, Qt::LeftButton, {}, middleOf(row));
    QTest::mouseMove(viewport, middleOf(row) + QPoint(0, 30));
    QTest::mouseMove(viewport, to);
    QTest::mouseRelease(viewport, Qt::LeftButton, {}, to);
}

void ShellTest::run(ActionId id)
{
    window().activateWindow();
    EXPECT_TRUE(QTest::qWaitFor([this] { return QApplication::activeWindow() == &window(); }));
    const QKeySequence keys = controller().commands()->action(id)->shortcut();
    QTest::keySequence(&window(), keys);
}

WindowNewTask &ShellTest::openNewTask()
{
    run(ActionId::NewTask);
    EXPECT_NE(newTaskWindow(), nullptr);
    EXPECT_TRUE(QTest::qWaitFor([this] { return QApplication::activeWindow() == newTaskWindow(); }));
    return *newTaskWindow();
}

TaskPtr ShellTest::add(const QString &title, const std::function<void(MVTask &)> &fill)
{
    MVTask task;
    task.title = title;
    task.type = TaskType::ToDo;
    task.status = TaskStatus::Open;
    task.priority = Priority::None;
    task.dueSomeDay = false;
    task.allowsContentModifications = true;
    if (fill)
        fill(task);
    task.save();
    EXPECT_FALSE(DBWorker::saveContext());
    return task.task();
}

void ShellTest::addInbox(const QStringList &titles)
{
    for (const QString &title : titles)
        add(title);
    showList(SidebarItem::Inbox);
    screen().reloadData();
}

std::shared_ptr<EntityContactGroup> ShellTest::addGroup(const QString &title)
{
    const auto group = context().insert<EntityContactGroup>();
    group->setTitle(title);
    group->setUseGeneralFilter(false);
    EXPECT_FALSE(DBWorker::saveContext());
    controller().loadContactsGroup();
    return group;
}

QStringList ShellTest::inboxTitles()
{
    QStringList titles;
    for (const TaskPtr &task : DBWorker::allInboxTasks())
        titles << task->title();
    return titles;
}

TaskPtr ShellTest::stored(const QString &title)
{
    for (const TaskPtr &task : context().fetch<EntityTask>(EntityTask::fetchRequest())) {
        if (task->title() == title)
            return task;
    }
    return nullptr;
}

void ShellTest::settle()
{
    constexpr int mostSteps = 5;
    for (int step = 0; step < mostSteps; ++step)
        QTest::qWait(1);
}
