#include "shell/home/HomeTabViewController.h"

#include "calendarviews/CalendarGrid.h"
#include "calendarviews/DaysCalendarView.h"
#include "calendarviews/SelectedTaskController.h"
#include "foundation/Calendar.h"
#include "foundation/Clock.h"
#include "foundation/DateFormatter.h"
#include "foundation/Localization.h"
#include "records/DetailStack.h"
#include "records/ShellAlerts.h"
#include "records/TaskManager.h"
#include "records/Waiting.h"
#include "shell/calendars/CalendarItemCommands.h"
#include "shell/home/HomeColumns.h"
#include "shell/home/HomeHeading.h"
#include "shell/tasks/CaptureBar.h"
#include "shell/tasks/TaskDetailViewController.h"
#include "shell/tasks/TaskRowCommands.h"
#include "store/state/NotificationNames.h"
#include "widgets/Direction.h"
#include "widgets/LongWork.h"
#include "widgets/ScreenToolBar.h"

#include <QHBoxLayout>
#include <QPainter>
#include <QScopedValueRollback>
#include <QVBoxLayout>

using namespace Qt::Literals::StringLiterals;

/// What depends on the present moment is looked at as often, and at each midnight.
constexpr Seconds clockInterval{60};

HomeTabViewController::HomeTabViewController(MakeProjectPane makeProjectPane, QWidget *parent)
    : TabsViewController(localized(u"Home"_s), parent)
    , projectPane(std::move(makeProjectPane))
    , dayColumn(makeDayColumn())
    , overdue(addBlock(HomeListModel::List::Overdue, localized(u"OVERDUE"_s), u"overdueTableView"_s))
    , week(addBlock(HomeListModel::List::Week, localized(u"Week"_s), u"weekEventsTableView"_s))
    , lastActive(overdue)
    , eventCommands(new CalendarItemCommands(*this))
    , capture(new CaptureBar([] { return NewTaskRequest::ofList(ListType::Today, Clock::now()); }, u"home"_s))
{
    toolBarView()->setMiddle(capture);
    connect(capture, &CaptureBar::captured, this, [this](const TaskPtr &task) { showNew({task}); });
    connect(capture, &CaptureBar::left, this, &HomeTabViewController::takeKeysBack);
    addButton(ToolBarButton::NewTask);
    addButton(ToolBarButton::Calendars);
    setTabOrder(overdue->table(), week->table());
    clockTimer.setSingleShot(true);
    connect(&clockTimer, &QTimer::timeout, this, &HomeTabViewController::lookAtClock);
    observe();
}

HomeTabViewController::~HomeTabViewController() = default;

// The parts

HomeBlockView *HomeTabViewController::addBlock(HomeListModel::List list, const QString &title,
                                               const QString &tableName)
{
    auto *block = new HomeBlockView(list, title, tableName, this);
    connect(block, &HomeBlockView::selectionChanged, this, [this, block] { blockSelected(block); });
    connect(block, &HomeBlockView::opened, this,
            [this, block](const ObjectPtr &record) { open(*block, record); });
    connect(block, &HomeBlockView::removeRequested, this, &HomeTabViewController::removeSelection);
    connect(block, &HomeBlockView::whyRequested, this, &HomeTabViewController::whyRequested);
    connect(block, &HomeBlockView::reloaded, this, &HomeTabViewController::closePanesWithoutRow);
    return block;
}

QWidget *HomeTabViewController::makeDayColumn()
{
    auto *column = new QWidget(this);
    column->setObjectName(u"dayColumn"_s);
    labelDay = new HomeHeading(Theme::FontRole::Title, Theme::accent);
    labelDay->setObjectName(u"labelDay"_s);
    labelWeekday = new HomeHeading(Theme::FontRole::BodyStrong, Theme::text);
    labelWeekday->setObjectName(u"labelWeekday"_s);
    labelMonth = new HomeHeading(Theme::FontRole::Small, Theme::secondaryText);
    labelMonth->setObjectName(u"labelMonth"_s);
    auto *words = new QVBoxLayout;
    words->setSpacing(0);
    words->addStretch();
    words->addWidget(labelWeekday);
    words->addWidget(labelMonth);
    words->addStretch();
    auto *header = new QWidget;
    header->setFixedHeight(HomeBlockView::headerHeight());
    auto *line = new QHBoxLayout(header);
    line->setContentsMargins(Direction::margins(*this, Theme::contentMargin, 0, Theme::unit, 0));
    line->setSpacing(Theme::unit + Theme::unit / 2);
    line->addWidget(labelDay);
    line->addLayout(words, 1);
    auto *layout = new QVBoxLayout(column);
    layout->setContentsMargins({});
    layout->setSpacing(0);
    layout->addWidget(header);
    return column;
}

void HomeTabViewController::showDayCalendar()
{
    if (dayCalendar)
        Waiting::remove(dayCalendar);
    dayCalendar = new DayCalendarViewController(dayColumn);
    static_cast<QVBoxLayout *>(dayColumn->layout())->addWidget(dayCalendar, 1);
    eventCommands->serve(*dayCalendar);
    connect(dayCalendar, &CalendarPage::eventViewSelectedItem, this,
            &HomeTabViewController::eventViewSelectedItem);
    // Its keys lead into the lists beside it, and its pages are hours.
    connect(dayCalendar, &CalendarPage::besideWanted, this, [this](int step) {
        if (step > 0)
            (overdue->hasItems() ? overdue : week)->setFocus(Qt::TabFocusReason);
    });
    connect(dayCalendar, &CalendarPage::pageWanted, dayCalendar, &DayCalendarViewController::scrollPage);
    connect(dayCalendar, &CalendarPage::wentTo, this,
            [this](Date, const TaskPtr &task) { detailOnTop(task); });
    connect(dayCalendar, &CalendarPage::selectionChanged, this, &TabsViewController::commandsChanged);
    dayCalendar->showDate(Clock::now());
    setTabOrder(dayCalendar->mainGrid(), overdue->table());
}

void HomeTabViewController::showDay()
{
    shownDay = Calendar::current().startOfDay(Clock::now());
    showToday();
    showDayCalendar();
}

void HomeTabViewController::showToday()
{
    const Date now = Clock::now();
    labelDay->setText(DateFormatter::string(now, u"d"_s));
    labelWeekday->setText(DateFormatter::string(now, u"EEEE"_s));
    labelMonth->setText(DateFormatter::string(now, u"LLLL yyyy"_s));
}

void HomeTabViewController::resizeEvent(QResizeEvent *event)
{
    TabsViewController::resizeEvent(event);
    const HomeColumns columns = HomeColumns::of(size());
    const auto place = [this](QWidget *part, const QRect &where) {
        part->setGeometry(QStyle::visualRect(layoutDirection(), rect(), where));
    };
    place(dayColumn, columns.calendar);
    place(overdue, columns.overdue);
    place(week, columns.week);
    update();
}

/// A quiet line between the parts.
void HomeTabViewController::paintEvent(QPaintEvent *)
{
    if (std::exchange(waitsForPaint, false))
        QTimer::singleShot(0, this, &HomeTabViewController::load);
    QPainter painter(this);
    const HomeColumns columns = HomeColumns::of(size());
    const auto fill = [&](const QRect &line) {
        painter.fillRect(QStyle::visualRect(layoutDirection(), rect(), line), QColor(Theme::cardBorder));
    };
    fill({columns.overdue.left(), 0, 1, height()});
    if (columns.areListsStacked)
        fill({columns.week.left(), columns.week.top(), columns.week.width(), 1});
    else
        fill({columns.week.left(), 0, 1, height()});
}

// What changed

void HomeTabViewController::observe()
{
    NotificationCenter &center = NotificationCenter::defaultCenter();
    observations.push_back(center.addObserver(
        notifications::contextDidSave, [this](const StoreChanges &changes) { storeChanged(changes); }));
    observations.push_back(
        center.addObserver(notifications::taskChange, [this](const TaskPtr &) { reloadSoon(); }));
    observations.push_back(center.addObserver(notifications::coreDataAddNewTask, [this] { reloadSoon(); }));
    observations.push_back(center.addObserver(notifications::iCloudChange, [this] { reloadSoon(); }));
}

void HomeTabViewController::storeChanged(const StoreChanges &changes)
{
    if (changes.isUnknown || changes.concerns(EntityTask::entityName) ||
        changes.concerns(EntityProject::entityName))
        reloadSoon();
}

void HomeTabViewController::reloadSoon()
{
    notePanes();
    overdue->reloadSoon();
    week->reloadSoon();
}

/// The first screen of a start lets the window be painted before it asks the store.
void HomeTabViewController::reloadData()
{
    waitsForPaint = detailStack() && !detailStack()->isSeen() && !shownDay;
    if (waitsForPaint)
        return showToday();
    notePanes();
    showDay();
    loadOverdueTasks();
    loadWeekEvents();
    setFocusProxy(overdue->hasItems() || !week->hasItems() ? overdue : week);
    lookAtClock();
    Q_EMIT commandsChanged();
}

void HomeTabViewController::load()
{
    if (!shownDay)
        reloadData();
}

void HomeTabViewController::updateRows()
{
    overdue->updateRows();
    week->updateRows();
}

/// A new day changes everything; with each minute something else can be late.
void HomeTabViewController::lookAtClock()
{
    const Calendar calendar = Calendar::current();
    const Date now = Clock::now();
    if (shownDay && *shownDay != calendar.startOfDay(now)) {
        // What waits for an answer goes on with the day that it came from.
        if (Waiting::isForAnswer())
            return Waiting::afterwards(&Waiting::isForAnswer, this, [this] { lookAtClock(); });
        return reloadData();
    }
    overdue->showAnew();
    week->showAnew();
    const Seconds next = std::min(clockInterval, calendar.startOfNextDay(now) - now);
    clockTimer.start(std::chrono::ceil<std::chrono::milliseconds>(next));
}

/// While the window was away its day may have passed.
void HomeTabViewController::showEvent(QShowEvent *event)
{
    TabsViewController::showEvent(event);
    if (shownDay)
        lookAtClock();
}

void HomeTabViewController::clearController()
{
    clockTimer.stop();
    observations.clear();
    SelectedTaskController::sharedCenter().removeAllTasks();
}

// Selection

/// The list that commands are about: the one with the selection, or the one that had the keys last.
HomeBlockView *HomeTabViewController::activeBlock() const
{
    for (HomeBlockView *block : {overdue, week}) {
        if (block->table()->hasSelectedRows())
            return block;
    }
    for (HomeBlockView *block : {overdue, week}) {
        if (block->table()->hasFocus())
            return block;
    }
    return lastActive;
}

/// What is selected is selected in one of the lists only, and marked in every view.
void HomeTabViewController::blockSelected(HomeBlockView *block)
{
    if (block->table()->hasSelectedRows()) {
        lastActive = block;
        (block == overdue ? week : overdue)->table()->clearSelection();
    }
    Q_EMIT commandsChanged();
    if (isEventSelected)
        return;
    SelectedTaskController &selected = SelectedTaskController::sharedCenter();
    selected.removeAllTasks();
    // Of more than a calendar shows none would be told from another, and all would have to be loaded.
    constexpr int mostMarked = 200;
    if (activeBlock()->table()->selectedCount() <= mostMarked)
        selected.addTasks(activeBlock()->selectedTasks());
}

void HomeTabViewController::eventViewSelectedItem()
{
    const QScopedValueRollback selecting(isEventSelected, true);
    overdue->table()->clearSelection();
    week->table()->clearSelection();
    Q_EMIT commandsChanged();
}

/// Null while something is selected in the lists, or nothing at all.
TaskPtr HomeTabViewController::selectedEvent() const
{
    if (!dayCalendar || activeBlock()->table()->hasSelectedRows())
        return nullptr;
    return dayCalendar->currentTask();
}

bool HomeTabViewController::hasSelection() const
{
    return activeBlock()->table()->hasSelectedRows() || selectedEvent();
}

/// In the list that had the keys last, or else in the other one, or in the day.
void HomeTabViewController::selectRecords(const std::vector<ObjectPtr> &records)
{
    HomeBlockView *const other = lastActive == overdue ? week : overdue;
    if (lastActive->selectRecords(records) || other->selectRecords(records) || !dayCalendar)
        return;
    for (const ObjectPtr &record : records) {
        const auto task = std::dynamic_pointer_cast<EntityTask>(record);
        if (task && dayCalendar->goToTask(task))
            return;
    }
}

bool HomeTabViewController::hasSelectedText() const
{
    const TableViewExtended &table = *activeBlock()->table();
    return selectedEvent() || (table.hasFocus() && table.hasSelectedRows());
}

QString HomeTabViewController::selectedText() const
{
    const TaskPtr event = selectedEvent();
    return event ? event->title() : activeBlock()->selectedText();
}

bool HomeTabViewController::canExport() const
{
    return activeBlock()->hasItems();
}

ExportRecords::Offer HomeTabViewController::exportOffer() const
{
    const HomeBlockView &block = *activeBlock();
    ExportRecords::Offer offer{
        EntityTask::entityName, {ExportFormat::ICalendar, ExportFormat::Csv}, block.title()};
    const auto rowsOf = [](const std::vector<TaskPtr> &tasks) {
        std::vector<RowId> rows;
        for (const TaskPtr &task : tasks)
            rows.push_back(task->rowId());
        return rows;
    };
    offer.selected = rowsOf(block.selectedTasks());
    offer.all = rowsOf(block.allTasks());
    return offer;
}

void HomeTabViewController::print(QPrinter &printer)
{
    PaperText::print(PaperText::ofLines(overdue->title(), overdue->linesOnPaper()) +
                         PaperText::ofLines(week->title(), week->linesOnPaper()),
                     printer);
}

bool HomeTabViewController::hasRows() const
{
    return activeBlock()->hasItems();
}

void HomeTabViewController::selectAll()
{
    activeBlock()->table()->selectAll();
}

/// Also one that is selected on several of its days.
TaskPtr HomeTabViewController::selectedTask() const
{
    constexpr int daysOfWeek = 7;
    if (const TaskPtr event = selectedEvent())
        return event;
    if (activeBlock()->table()->selectedCount() > daysOfWeek)
        return nullptr;
    const std::vector<ObjectPtr> selected = activeBlock()->selectedRecords();
    return selected.size() == 1 ? std::dynamic_pointer_cast<EntityTask>(selected.front()) : nullptr;
}

QRect HomeTabViewController::placeOf(const TaskPtr &task) const
{
    const HomeBlockView &block = *activeBlock();
    const std::vector<ObjectPtr> selected = block.selectedRecords();
    const bool isSelected = std::ranges::find(selected, task) != selected.end();
    const int row = isSelected ? block.table()->firstSelectedRow() : block.rows().rowOf(task);
    if (row < 0)
        return TabsViewController::placeOf(task);
    const QRect inView = block.table()->visualRect(block.rows().index(row));
    return {block.table()->viewport()->mapTo(this, inView.topLeft()), inView.size()};
}

void HomeTabViewController::takeKeysBack()
{
    lastActive->setFocus();
}

// Panes

DetailPlace HomeTabViewController::detailPlace() const
{
    return {.width = HomeColumns::paneWidth, .topInset = 0};
}

void HomeTabViewController::open(HomeBlockView &block, const ObjectPtr &record)
{
    const bool isProject = record->entity().name() == EntityProject::entityName;
    if (block.table()->selectedCount() > 1)
        return isProject ? ShellAlerts::alertSelectOneProject() : ShellAlerts::alertSelectOneTask();
    if (!showDetail(record))
        selectTop();
}

/// False if what is typed in another pane keeps the user there.
bool HomeTabViewController::showDetail(const ObjectPtr &record)
{
    DetailStack *const stack = detailStack();
    if (!stack)
        return true;
    if (const auto task = std::dynamic_pointer_cast<EntityTask>(record))
        return TaskDetailViewController::showTask(task, *this, *stack);
    if (DetailViewController *const shown = stack->paneOf(record))
        return stack->showAgain(shown);
    DetailViewController *const pane = projectPane ? projectPane(record) : nullptr;
    return !pane || stack->showDetail(pane, this);
}

/// The user stays with the record that is edited, and so does the selection.
void HomeTabViewController::selectTop()
{
    if (DetailViewController *const edited = detailStack()->top())
        detailOnTop(edited->record());
}

void HomeTabViewController::detailOnTop(const ObjectPtr &record)
{
    const std::vector<ObjectPtr> selected = activeBlock()->selectedRecords();
    if (!record || (selected.size() == 1 && selected.front() == record))
        return;
    if (!lastActive->selectRecord(record))
        (lastActive == overdue ? week : overdue)->selectRecord(record);
}

void HomeTabViewController::selectItem(const ObjectPtr &record)
{
    if (!hasRow(record))
        return;
    detailOnTop(record);
    if (!showDetail(record))
        selectTop();
}

bool HomeTabViewController::hasRow(const ObjectPtr &record) const
{
    return overdue->rows().rowOf(record) >= 0 || week->rows().rowOf(record) >= 0;
}

void HomeTabViewController::notePanes()
{
    if (!detailStack())
        return;
    for (const ObjectPtr &record : detailStack()->shownRecords()) {
        if (hasRow(record) && std::ranges::find(recordsInPanes, record) == recordsInPanes.end())
            recordsInPanes.push_back(record);
    }
}

/// A pane goes with the last row of its record. What is being typed stays, and so does a pane by which the
/// user has sent the row away.
void HomeTabViewController::closePanesWithoutRow()
{
    Q_EMIT commandsChanged();
    // What has left one list may come to the other.
    if (overdue->isOld() || week->isOld())
        return;
    std::vector<ObjectPtr> gone;
    std::erase_if(recordsInPanes, [&](const ObjectPtr &record) {
        if (hasRow(record))
            return false;
        DetailViewController *const pane = detailStack() ? detailStack()->paneOf(record) : nullptr;
        if (pane && !pane->canSave() && !pane->hasChanges() && !pane->staysWithoutRow())
            gone.push_back(record);
        return true;
    });
    if (!gone.empty())
        detailStack()->removeAllDetailFrom(gone);
}

// Writing down

QWidget *HomeTabViewController::taskLine() const
{
    return capture->isHidden() ? nullptr : capture;
}

void HomeTabViewController::showNew(const std::vector<TaskPtr> &tasks)
{
    updateRows();
    selectRecords({tasks.begin(), tasks.end()});
}

void HomeTabViewController::takeLines(const QStringList &lines)
{
    showNew(capture->takeLines(lines));
}

// Deleting

/// Only tasks are deleted from here.
void HomeTabViewController::removeSelection()
{
    if (selectedEvent())
        return eventCommands->removeSelected(*dayCalendar);
    HomeBlockView &block = *activeBlock();
    const std::vector<TaskPtr> tasks = block.selectedTasks();
    if (tasks.empty())
        return;
    const int lastRow = *block.table()->selectedRows().rbegin();
    const std::vector<ObjectPtr> going = TaskRowCommands::removable({tasks.begin(), tasks.end()});
    if (going.empty())
        return;
    if (detailStack()) {
        if (!detailStack()->mayLeave(going))
            return;
        detailStack()->removeAllDetailFrom(going);
    }
    const auto removed = [this, &block, lastRow] {
        block.table()->clearSelection();
        loadOverdueTasks();
        loadWeekEvents();
        block.selectAt(lastRow);
    };
    LongWork work(going.size(), localized(u"Deleting the selected tasks"_s));
    TaskManager::deleteTasks(going, removed, [&work] { return work.step(); });
}
