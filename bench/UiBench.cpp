#include "BenchContacts.h"
#include "StoreGenerator.h"
#include "calendarviews/CalendarGrid.h"
#include "cloud/FileManager.h"
#include "objectstore/Transaction.h"
#include "records/TabsViewController.h"
#include "records/dates/MVDate.h"
#include "shell/MainWindow.h"
#include "shell/MainWindowController.h"
#include "shell/Shell.h"
#include "shell/calendars/CalendarViewController.h"
#include "shell/contactimport/ImportContactWindowController.h"
#include "store/AppDelegate.h"
#include "store/queries/DBWorker.h"
#include "widgets/Animations.h"
#include "widgets/ProgressSign.h"
#include "widgets/TableViewExtended.h"

#include <QAction>
#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QKeyEvent>
#include <QListView>
#include <QPainter>
#include <QPointer>
#include <QPushButton>
#include <QScrollBar>
#include <QStringListModel>
#include <QTemporaryDir>
#include <QTimer>

#include <algorithm>
#include <cstdio>
#include <cstdlib>

namespace {

constexpr int taskCount = 100'000;
constexpr int contactCount = 100'000;
constexpr int rounds = 60;

double measured(const std::function<void()> &work)
{
    QElapsedTimer timer;
    timer.start();
    work();
    return double(timer.nsecsElapsed()) / 1e6;
}

struct Times
{
    double median = 0;
    double longest = 0;
};

Times timesOf(const std::function<void(int)> &work)
{
    std::vector<double> times;
    for (int round = 0; round < rounds; ++round)
        times.push_back(measured([&] { work(round); }));
    std::sort(times.begin(), times.end());
    return {times[times.size() / 2], times.back()};
}

void print(const char *what, const Times &ours, const Times &bare = {})
{
    std::printf("%-34s median %7.2f ms  longest %7.2f ms", what, ours.median, ours.longest);
    if (bare.median > 0)
        std::printf("  bare %6.2f ms  ratio %4.2f", bare.median, ours.median / bare.median);
    std::printf("\n");
}

/// Paints all that a window shows, also what a change would have left as it was.
void paintWhole(QWidget &window)
{
    for (QWidget *part : window.findChildren<QWidget *>())
        part->update();
    window.repaint();
}

void press(QWidget &widget, Qt::Key key)
{
    QKeyEvent down(QEvent::KeyPress, key, Qt::NoModifier);
    QApplication::sendEvent(&widget, &down);
}

/// A frame after a key press, and one after a jump of the scroll bar.
std::pair<Times, Times> framesOf(QAbstractItemView &view)
{
    const Times keys = timesOf([&](int) {
        press(view, Qt::Key_Down);
        view.viewport()->repaint();
    });
    const Times jumps = timesOf([&](int round) {
        view.verticalScrollBar()->setValue(view.verticalScrollBar()->maximum() / rounds * round);
        view.viewport()->repaint();
    });
    return {keys, jumps};
}

/// A plain list of texts, as long as ours.
struct BareList
{
    BareList()
    {
        QStringList rows;
        for (int row = 0; row < taskCount; ++row)
            rows.append(QStringLiteral("Row number %1").arg(row));
        model.setStringList(rows);
        view.setUniformItemSizes(true);
        view.setModel(&model);
        view.resize(800, 640);
        view.show();
    }

    QStringListModel model;
    QListView view;
};

std::pair<Times, Times> framesOfBareList()
{
    BareList bare;
    QListView &view = bare.view;
    QStringListModel &model = bare.model;
    view.setCurrentIndex(model.index(0));
    QApplication::processEvents();
    return framesOf(view);
}

MainWindow &mainWindow()
{
    for (QWidget *window : QApplication::topLevelWidgets())
        if (auto *found = qobject_cast<MainWindow *>(window))
            return *found;
    std::abort();
}

/// One row changes its place among many, as a bare list of texts shows it.
Times movesOfBareList()
{
    BareList bare;
    QListView &view = bare.view;
    QStringListModel &model = bare.model;
    QApplication::processEvents();
    return timesOf([&](int round) {
        model.moveRow({}, round * 31, {}, taskCount / 2);
        QApplication::processEvents();
        view.viewport()->repaint();
    });
}

/// The badges are counted again some time after each change; `bench-core` measures that.
void waitForBadges()
{
    QElapsedTimer waited;
    waited.start();
    while (!waited.hasExpired(100))
        QApplication::processEvents(QEventLoop::AllEvents, 10);
}

/// A pass over the calendars changes one task: from its commit, which is not measured, to the picture.
Times changesOfOne(TableViewExtended &list)
{
    ManagedObjectContext &context = AppDelegate::shared()->managedObjectContext();
    std::vector<double> times;
    for (int round = 0; round < rounds; ++round) {
        const TaskList open = DBWorker::allNotDoneTasks();
        const TaskPtr task = open.at(round * 31);
        waitForBadges();
        {
            Transaction pass(context, ChangeAuthor::Pass);
            task->setDueDate(open.at(open.size() / 2)->dueDate());
            if (pass.commit())
                std::abort();
        }
        times.push_back(measured([&] {
            QApplication::processEvents();
            list.viewport()->repaint();
        }));
    }
    std::sort(times.begin(), times.end());
    return {times[times.size() / 2], times.back()};
}

/// A page of the calendar shown anew, read and painted once.
Times pagesOf(CalendarViewController &calendar, CalendarViewController::CalendarType type)
{
    return timesOf([&](int) {
        calendar.showCalendar(type);
        QApplication::processEvents();
    });
}

void sendMouse(QWidget &to, QEvent::Type type, QPointF place)
{
    const Qt::MouseButton button = type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton;
    QMouseEvent event(type, place, to.mapToGlobal(place), button, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(&to, &event);
}

/// One of the items of a week follows the mouse, which is given up in the end.
Times dragStepsOf(CalendarGrid &grid, QWidget &window)
{
    const auto movable = std::ranges::find_if(grid.placed(), [&](const CalendarGrid::Placed &one) {
        return CalendarDrag::isMovable(*grid.events()[static_cast<size_t>(one.event)].event());
    });
    if (movable == grid.placed().end())
        return {};
    const QPointF from = movable->frame.center();
    sendMouse(grid, QEvent::MouseButtonPress, from);
    const Times steps = timesOf([&](int round) {
        sendMouse(grid, QEvent::MouseMove, from + QPointF(round * 3, 9 * round));
        paintWhole(window);
    });
    grid.cancelDrag();
    return steps;
}

/// A slide to the next week: the wait from the press to its first picture, and how long the window needs for
/// each of the others.
void measureSlides(CalendarViewController &calendar, QWidget &window)
{
    constexpr int slides = 5;
    Animations::setEnabled(true);
    std::vector<double> frames;
    std::vector<double> starts;
    for (int round = 0; round < slides; ++round) {
        starts.push_back(measured([&] {
            calendar.daysControllerSelectButton(round % 2 ? -1 : 1);
            paintWhole(window);
        }));
        QElapsedTimer slid;
        slid.start();
        while (!slid.hasExpired(Animations::duration(Animations::calendarSlide) + 50)) {
            QApplication::processEvents(QEventLoop::AllEvents);
            frames.push_back(measured([&] { paintWhole(window); }));
        }
    }
    Animations::setEnabled(false);
    std::sort(frames.begin(), frames.end());
    std::sort(starts.begin(), starts.end());
    print("A slide, press to first frame", {starts[starts.size() / 2], starts.back()});
    print("A frame of a slide", {frames[frames.size() / 2], frames.back()});
}

/// The same window, painted with nothing in its calendar.
Times bareWindow(CalendarViewController &calendar, QWidget &window)
{
    calendar.calendarGoToDate(Date::fromReferenceSeconds(-3e9));
    QApplication::processEvents();
    const Times times = timesOf([&](int) { paintWhole(window); });
    calendar.calendarToday();
    QApplication::processEvents();
    return times;
}

/// As many boxes with a title and a time each as a week shows, painted by the plain means of the toolkit.
class PlainBoxes : public QWidget
{
public:
    explicit PlainBoxes(size_t number)
        : count(number)
    {
        resize(1200, 800);
    }

protected:
    void paintEvent(QPaintEvent *) override
    {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.fillRect(rect(), Qt::white);
        for (size_t box = 0; box < count; ++box) {
            const QRect place(int(box % 20) * 60, int(box / 20) * 40, 58, 38);
            painter.setPen(Qt::NoPen);
            painter.setBrush(QColor(78, 107, 145));
            painter.drawRoundedRect(place, 3, 3);
            painter.setPen(Qt::white);
            const QString title = QStringLiteral("Task %1").arg(box);
            painter.drawText(place.adjusted(7, 0, 0, -19), Qt::AlignLeft, title);
            painter.drawText(place.adjusted(7, 19, 0, 0), Qt::AlignLeft,
                             QStringLiteral("9:00 – 10:%1").arg(box));
        }
    }

private:
    size_t count;
};

Times plainBoxes(size_t count)
{
    PlainBoxes boxes(count);
    boxes.show();
    QApplication::processEvents();
    return timesOf([&](int) { boxes.repaint(); });
}

/// What the week shows, read as one bare range of dates for each type of task.
Times bareWeekQuery()
{
    const Date monday = MVDate::startOfWeek(MVDate::date());
    const Date nextMonday = MVDate::addDay(7, monday);
    return timesOf([&](int) {
        qint64 sum = 0;
        for (const TaskType type : {TaskType::ToDo, TaskType::Appointment, TaskType::EmailCall}) {
            AppDelegate::shared()->managedObjectContext().visit(
                EntityTask::fetchRequest().where(Predicate::format(
                    "type = %d and dueDate >= %@ and dueDate < %@", type, monday, nextMonday)),
                {"id", "title", "startDate", "dueDate", "type", "status", "typeCalendarID"},
                [&sum](const RowReader &row) { sum += row.text(1).size() + row.integer(5); });
        }
        if (sum == 0)
            std::abort();
    });
}

/// The names of all contacts, read and sorted by the store itself.
double bareContacts()
{
    QElapsedTimer timer;
    timer.start();
    const auto sorted =
        EntityContacts::fetchRequest().sortedBy({ascending("firstName"), ascending("lastName")});
    qsizetype letters = 0;
    AppDelegate::shared()->managedObjectContext().visit(
        sorted, {"firstName", "lastName"},
        [&](const RowReader &row) { letters += qsizetype(row.utf8(0).size() + row.utf8(1).size()); });
    return letters > 0 ? double(timer.nsecsElapsed()) / 1e6 : 0;
}

/// People come up anew each time; a key press in their list brings up the pane of the next one.
void measurePeople(MainWindow &window, const std::function<void(const char *)> &run)
{
    run("actionShowProjects");
    // A user needs a moment, too, in which names are read ahead.
    constexpr int moment = 6'000;
    QElapsedTimer waited;
    waited.start();
    while (!waited.hasExpired(moment))
        QApplication::processEvents(QEventLoop::AllEvents, 50);
    std::vector<double> shown;
    std::vector<double> bare;
    for (int round = 0; round < rounds; ++round) {
        run("actionShowProjects");
        bare.push_back(bareContacts());
        shown.push_back(measured([&] {
            run("actionShowPeople");
            paintWhole(window);
        }));
    }
    std::ranges::sort(shown);
    std::ranges::sort(bare);
    print("People, to the first screen", {shown[rounds / 2], shown.back()}, {bare[4], bare.back()});
    auto &list = *window.findChild<TableViewExtended *>(QStringLiteral("tableViewContacts"));
    const auto frames = framesOf(list);
    print("A key press among people", frames.first);
    print("A jump among people", frames.second);
    print("A key press with the next pane", timesOf([&](int) {
              press(list, Qt::Key_Down);
              QApplication::processEvents();
              paintWhole(window);
          }));
    ManagedObjectContext &context = AppDelegate::shared()->managedObjectContext();
    const ContactPtr one = context.fetchFirst<EntityContacts>(EntityContacts::fetchRequest());
    print("One contact renamed", timesOf([&](int round) {
              one->setFirstName(QString(QChar(u'a' + round % 26)));
              if (DBWorker::saveContext())
                  std::abort();
              QApplication::processEvents();
              paintWhole(window);
          }));
}

/// The longest silence of the event loop while it exists.
class Silence
{
public:
    Silence()
    {
        QObject::connect(&pulse, &QTimer::timeout, [this] { beat(); });
        pulse.start(1);
        since.start();
    }
    double longest()
    {
        beat();
        return silence;
    }

private:
    void beat()
    {
        silence = std::max(silence, double(since.nsecsElapsed()) / 1e6);
        since.start();
    }

    QTimer pulse;
    QElapsedTimer since;
    double silence = 0;
};

/// How long the window keeps silent while it reads and imports a file of contacts, with people on the screen.
void measureImport(MainWindow &window, const std::function<void(const char *)> &run)
{
    run("actionShowPeople");
    QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("cards.vcf"));
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(BenchContacts::cards()) < 0)
        std::abort();
    file.close();
    const auto presses = [](const char *name) {
        for (QWidget *shown : QApplication::topLevelWidgets()) {
            auto *button = shown->findChild<QPushButton *>(QLatin1String(name));
            if (shown->isVisible() && button && button->isEnabled())
                return button->click(), true;
        }
        return false;
    };
    Silence reading;
    QElapsedTimer timer;
    timer.start();
    const QPointer<QWidget> import = ImportContactWindowController::openFiles(&window, {path});
    while (!presses("buttonSave"))
        QApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents);
    print("Contacts read to import, silence", {double(timer.elapsed()), reading.longest()});
    timer.start();
    Silence importing;
    double silence = 0;
    double duration = 0;
    QTimer ending;
    QObject::connect(&ending, &QTimer::timeout, [&] {
        // The account of the import asks for a press.
        auto *question = QApplication::activeModalWidget();
        auto *button = question ? question->findChild<QPushButton *>() : nullptr;
        if (!button || qobject_cast<ProgressSign *>(question))
            return;
        silence = importing.longest();
        duration = double(timer.elapsed());
        button->click();
    });
    ending.start(5);
    while (import)
        QApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents);
    Silence after;
    QApplication::processEvents();
    print("Contacts imported, silence", {duration, silence});
    print("Silence after the import", {0, after.longest()});
}

/// The pane of a project with very many tasks, from the press on its row to the painted picture.
void measureProject(MainWindow &window, const std::function<void(const char *)> &run)
{
    constexpr int tasksOfProject = 10'000;
    ManagedObjectContext &context = AppDelegate::shared()->managedObjectContext();
    const auto small = context.insert<EntityProject>();
    small->setTitle(QStringLiteral("!small"));
    const auto large = context.insert<EntityProject>();
    large->setTitle(QStringLiteral("!large"));
    const auto tasks = context.fetch<EntityTask>(EntityTask::fetchRequest());
    for (int number = 0; number < tasksOfProject; ++number)
        tasks.at(number)->setProject(large);
    if (DBWorker::saveContext())
        std::abort();
    run("actionShowProjects");
    TabsViewController *const screen = window.findChild<TabsViewController *>();
    std::vector<double> shown;
    for (int round = 0; round < rounds; ++round) {
        screen->selectItem(small);
        QApplication::processEvents();
        paintWhole(window);
        shown.push_back(measured([&] {
            screen->selectItem(large);
            QApplication::processEvents();
            paintWhole(window);
        }));
    }
    std::ranges::sort(shown);
    print("A project of 10,000 tasks, opened", {shown[rounds / 2], shown.back()});
}

void measureTasks(MainWindow &window, const std::function<void(const char *)> &run)
{
    const double shown = measured([&] {
        run("actionShowNotDone");
        paintWhole(window);
    });
    std::printf("%-34s        %7.2f ms\n", "Not Done shown", shown);

    auto &list = *window.findChild<TableViewExtended *>(QStringLiteral("tableViewTasks"));
    list.selectRow(0);
    const auto ours = framesOf(list);
    const auto bare = framesOfBareList();
    print("A key press in the list", ours.first, bare.first);
    print("A jump of the list", ours.second, bare.second);
    list.selectRow(0);
    print("One task changed by a pass", changesOfOne(list), movesOfBareList());
    print("A task opened over the list", timesOf([&](int round) {
              list.selectRow(round * 3 + 1);
              press(list, Qt::Key_Return);
              paintWhole(window);
          }));
}

void measureCalendar(CalendarViewController &calendar, QWidget &window)
{
    using Type = CalendarViewController::CalendarType;
    calendar.showCalendar(Type::Week);
    QApplication::processEvents();
    const CalendarGrid &hours = *calendar.calendarPage()->mainGrid();
    const Times bareWeek = bareWindow(calendar, window);
    std::printf("%-34s        %7zu\n", "Items among the hours of the week", hours.placed().size());
    print("Week, fetched to painted", pagesOf(calendar, Type::Week), bareWeek);
    const Times bareQuery = bareWeekQuery();
    print("Week, read again and painted", timesOf([&](int) {
              calendar.reloadData();
              paintWhole(window);
          }),
          {bareQuery.median + bareWeek.median, bareQuery.longest + bareWeek.longest});
    const Times boxes = plainBoxes(300);
    print("The same, with 300 plain boxes", timesOf([&](int) {
              calendar.reloadData();
              paintWhole(window);
          }),
          {bareQuery.median + bareWeek.median + boxes.median, 0});
    print("A drag step in the week", dragStepsOf(*calendar.calendarPage()->mainGrid(), window));
    measureSlides(calendar, window);
    calendar.showCalendar(Type::Month);
    QApplication::processEvents();
    const Times bareMonth = bareWindow(calendar, window);
    print("Month, fetched to painted", pagesOf(calendar, Type::Month), bareMonth);
    print("A drag step in the month", dragStepsOf(*calendar.calendarPage()->mainGrid(), window));
    print("Day, fetched to painted", pagesOf(calendar, Type::Day));
}

} // namespace

/// How long the window takes for what is done in it most, with 100,000 tasks: a key press and a jump in the
/// longest list, a change by a pass, the opening of a task, and the pages of the calendar, each up to the
/// painted picture. An argument picks one part: "tasks", "people", "project", "import" or "calendar".
int main(int argc, char *argv[])
{
    if (!qEnvironmentVariableIsSet("DISPLAY") && !qEnvironmentVariableIsSet("WAYLAND_DISPLAY"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    const QTemporaryDir home;
    qputenv("XDG_DATA_HOME", home.path().toUtf8() + "/data");
    qputenv("XDG_CONFIG_HOME", home.path().toUtf8() + "/config");
    QDir().mkpath(FileManager::appFolderURL());
    generateStore(FileManager::appFolderURL() + QStringLiteral("/Model0.sqlite"), taskCount, 1, contactCount);
    Shell::prepareApplication();
    Animations::setEnabled(false);
    AppDelegate delegate(std::make_unique<Shell>());
    delegate.applicationWillFinishLaunching();
    delegate.applicationDidFinishLaunching();
    MainWindow &window = mainWindow();
    QApplication::processEvents();
    const auto run = [&window](const char *action) {
        for (QAction *command : window.actions())
            if (command->objectName() == QLatin1String(action))
                command->trigger();
        QApplication::processEvents();
    };
    // A part of it by its name, or all.
    const QString wanted = QApplication::arguments().value(1);
    const auto isWanted = [&wanted](const char *part) {
        return wanted.isEmpty() || wanted == QLatin1String(part);
    };
    if (isWanted("tasks"))
        measureTasks(window, run);
    window.resize(1440, 900);
    if (isWanted("people"))
        measurePeople(window, run);
    if (isWanted("project"))
        measureProject(window, run);
    if (isWanted("import"))
        measureImport(window, run);
    run("actionShowCalendar");
    if (auto *calendar = window.findChild<CalendarViewController *>(); calendar && isWanted("calendar"))
        measureCalendar(*calendar, window);
    return 0;
}
