#include "shell/tasks/TabTaskViewController.h"

#include "filters/TaskGrouping.h"
#include "filters/TasksTabTopView.h"
#include "foundation/Clock.h"
#include "foundation/Localization.h"
#include "records/TaskPlacement.h"
#include "shell/tasks/CaptureBar.h"
#include "shell/tasks/TaskTableCell.h"
#include "widgets/MVSegmentView.h"

using namespace Qt::Literals::StringLiterals;

static RecordListDescription listDescriptionOf(const TaskListDescription &description)
{
    return {.title = description.title,
            .icon = description.icon,
            .entity = EntityTask::entityName,
            .tableName = u"tableViewTasks"_s,
            .addType = description.addType,
            .emptySentence = description.emptySentence,
            .offersFirst = description.type != ListType::Done && description.type != ListType::Categories,
            .filteredSentence = localized(u"No task passes the filter."_s),
            .deletingSentence = localized(u"Deleting the selected tasks"_s),
            .detailPlace = description.detailPlace,
            .rowHeights = TaskTableCell::heights,
            .exports = {ExportFormat::ICalendar, ExportFormat::Csv}};
}

TabTaskViewController::TabTaskViewController(const TaskListDescription &listDescription, QWidget *parent)
    : TabTaskViewController(listDescription, new TaskListModel(listDescription.type), parent)
{}

TabTaskViewController::TabTaskViewController(const TaskListDescription &listDescription,
                                             TaskListModel *taskModel, QWidget *parent)
    : TaskRowsScreen(listDescriptionOf(listDescription), taskModel, parent)
    , description(listDescription)
{
    taskModel->setQuery([this] { return query(grouping()); });
    if (TasksFilter::isFilterable(static_cast<int>(type()))) {
        setUpFilter(std::make_shared<TasksFilter>(static_cast<int>(type())));
        setUpGrouping();
    }
    addButton(ToolBarButton::Calendars);
    // What is done is not typed anew, and the tasks of a category are set up by their screen.
    if (type() != ListType::Done && type() != ListType::Categories)
        setUpCapture();
}

// Capturing

void TabTaskViewController::setUpCapture()
{
    capture = new CaptureBar([this] { return captureRequest(); }, QString::number(static_cast<int>(type())));
    if (filterStrip()) {
        filterStrip()->setMiddle(capture);
    } else {
        capture->setMaximumWidth(QWIDGETSIZE_MAX);
        capture->layout()->setContentsMargins(Theme::contentMargin, 0, Theme::contentMargin, Theme::unit);
        setHead(capture);
    }
    connect(capture, &CaptureBar::captured, this, &TabTaskViewController::showNewRecord);
    connect(capture, &CaptureBar::left, this, [this] { table()->setFocus(Qt::OtherFocusReason); });
}

/// Where tasks are typed, the first one is, too.
void TabTaskViewController::addFirst()
{
    if (capture)
        capture->setFocus(Qt::OtherFocusReason);
    else
        RecordListScreen::addFirst();
}

QWidget *TabTaskViewController::taskLine() const
{
    return capture && !capture->isHidden() ? capture : nullptr;
}

void TabTaskViewController::takeLines(const QStringList &lines)
{
    const std::vector<TaskPtr> made = capture->takeLines(lines);
    selectRecords({made.begin(), made.end()});
}

// Grouping

void TabTaskViewController::setUpGrouping()
{
    if (description.groupedType < 0)
        return;
    tasksGroupedView =
        new MVSegmentView({localized(u"Category"_s), localized(u"Project"_s), localized(u"Priority"_s)});
    tasksGroupedView->setObjectName(u"tasksGroupedView"_s);
    tasksGroupedView->setAccessibleName(localized(u"Group by"_s));
    tasksGroupedView->setHaveNotSelect(true);
    tasksGroupedView->setSelectedIndex(TaskGrouping(description.groupedType).selectedIndex());
    connect(tasksGroupedView, &MVSegmentView::selectedIndexChanged, this,
            &TabTaskViewController::saveGrouping);
    filterStrip()->setGrouping(tasksGroupedView);
}

void TabTaskViewController::saveGrouping(int index)
{
    TaskGrouping(description.groupedType).setSelectedIndex(index);
    reload(SelectionMemory::Otherwise::Nothing);
}

int TabTaskViewController::groupingIndex() const
{
    return tasksGroupedView ? tasksGroupedView->selectedIndex() : -1;
}

// What a task is to the window

NewTaskRequest TabTaskViewController::newTaskRequest() const
{
    return NewTaskRequest::ofList(type(), Clock::now());
}

QString TabTaskViewController::explanationOf(const TaskPtr &task) const
{
    return TaskPlacement(task).explanation(type(), filter());
}
