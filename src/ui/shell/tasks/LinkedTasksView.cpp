#include "shell/tasks/LinkedTasksView.h"

#include "foundation/Localization.h"
#include "records/DraggedRecords.h"
#include "records/SelectionMemory.h"
#include "records/TaskManager.h"
#include "records/TaskPlacement.h"
#include "records/people/WaitingFor.h"
#include "shell/tasks/TaskRowCommands.h"
#include "shell/tasks/TaskTableCell.h"
#include "store/entities/MainContext.h"
#include "store/entities/Model.h"
#include "store/state/NotificationNames.h"
#include "widgets/Icons.h"
#include "widgets/LongWork.h"
#include "widgets/TextBubble.h"
#include "widgets/TextLabel.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QMenu>
#include <QPainter>
#include <QPushButton>
#include <QScopedValueRollback>
#include <QScrollArea>
#include <QToolButton>
#include <QVBoxLayout>

using namespace Qt::Literals::StringLiterals;

/// Long enough for a tick to be seen before its row goes to another place.
constexpr auto tickStands = std::chrono::milliseconds(1000);

/// The rows of the tasks that a function gives.
class LinkedTasksModel : public TaskListModel
{
public:
    LinkedTasksModel(LinkedTasksView::Source taskSource, QObject *parent)
        : TaskListModel(ListType::ProjectDetail, parent)
        , source(std::move(taskSource))
    {}

    void fetch() override
    {
        std::vector<RowId> identifiers;
        for (const TaskPtr &task : source())
            identifiers.push_back(task->rowId());
        if (identifiers.empty())
            return setRows(TaskRows::empty({EntityNotValue::NoTasks}));
        setRows(TaskRows::flat(TaskList(mainContext(), organiserModel().requireEntity(EntityTask::entityName),
                                        std::move(identifiers))));
    }
    void setTellsWaiting(bool tells) { tellsWaiting = tells; }

protected:
    TaskRowContent contentOf(const EntityTask &task) const override
    {
        using Kind = TaskRowDetail::Kind;
        TaskRowContent content = TaskListModel::contentOf(task);
        if (!tellsWaiting)
            return content;
        // Who has it, the pane says.
        std::erase_if(content.details, [](const TaskRowDetail &one) { return one.kind == Kind::Person; });
        if (const QString project = std::exchange(content.project, {}); !project.isEmpty())
            content.details.insert(content.details.begin(), {Kind::Project, project, nullptr});
        if (!content.isChecked)
            content.details.insert(content.details.begin(),
                                   {Kind::Waiting, WaitingFor::timesInWords(task), nullptr});
        return content;
    }

private:
    LinkedTasksView::Source source;
    bool tellsWaiting = false;
};

/// How much of something is done, as a line.
class ProgressLine : public QWidget
{
public:
    explicit ProgressLine(QWidget *parent = nullptr)
        : QWidget(parent)
    {
        setFixedHeight(lineHeight);
    }
    void setShare(double newShare)
    {
        share = newShare;
        update();
    }

protected:
    void paintEvent(QPaintEvent *) override
    {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(Qt::NoPen);
        painter.setBrush(Theme::inactiveSelection);
        painter.drawRoundedRect(rect(), lineHeight / 2, lineHeight / 2);
        const QRect done(0, 0, qRound(width() * share), height());
        painter.setBrush(Theme::accent);
        painter.drawRoundedRect(QStyle::visualRect(layoutDirection(), rect(), done), lineHeight / 2,
                                lineHeight / 2);
    }

private:
    static constexpr int lineHeight = 6;
    double share = 0;
};

/// Ends where its button does, which stands at the edge of the window.
class MenuAtEnd : public QMenu
{
public:
    explicit MenuAtEnd(QWidget &button)
        : QMenu(&button)
    {}

protected:
    void showEvent(QShowEvent *event) override
    {
        QMenu::showEvent(event);
        const QRect button(parentWidget()->mapToGlobal(QPoint()), parentWidget()->size());
        move(isRightToLeft() ? button.left() : button.right() + 1 - width(), y());
    }
};

/// Holds the list, as high as its rows, so that the pane alone scrolls. The cards in it begin and end with
/// the form above.
class ListPlace : public QWidget
{
public:
    explicit ListPlace(TableViewExtended &heldList)
        : list(heldList)
    {
        list.setParent(this);
        QObject::connect(&list, &TableViewExtended::scrolledTo, this,
                         [this](int row) { showInPane(list.visualRect(list.model()->index(row, 0))); });
    }

protected:
    void resizeEvent(QResizeEvent *) override
    {
        const int margin = Theme::contentMargin;
        list.setGeometry(
            QStyle::visualRect(layoutDirection(), rect(), rect().adjusted(-margin, 0, margin, 0)));
    }

private:
    void showInPane(const QRect &row)
    {
        QScrollArea *pane = nullptr;
        for (QWidget *above = parentWidget(); above && !pane; above = above->parentWidget())
            pane = qobject_cast<QScrollArea *>(above);
        if (!pane)
            return;
        const QPoint middle = list.viewport()->mapTo(pane->widget(), row.center());
        pane->ensureVisible(middle.x(), middle.y(), 0, row.height() / 2 + Theme::unit);
    }

    TableViewExtended &list;
};

LinkedTasksView::LinkedTasksView(Source source, QWidget *parent)
    : QWidget(parent)
    , model(new LinkedTasksModel(std::move(source), this))
    , view(new TableViewExtended)
    , listPlace(new ListPlace(*view))
    , commands(new TaskRowCommands(
          *this, [this] { return tasksAt(view->selectedRows()); },
          [this](const auto &, const std::function<void()> &change) { changeInRows(change); }))
{
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins({});
    column->setSpacing(Theme::unit);
    column->addWidget(makeHeader());
    progress = new ProgressLine;
    column->addWidget(progress);
    column->addWidget(listPlace);
    setUpView();
    observe();
    loadTasks();
}

LinkedTasksView::~LinkedTasksView() = default;

// The parts

QWidget *LinkedTasksView::makeHeader()
{
    auto *header = new QWidget;
    auto *line = new QHBoxLayout(header);
    line->setContentsMargins({});
    line->setSpacing(Theme::unit);
    auto *title = makeTextLabel(localized(u"Tasks"_s), Theme::FontRole::BodyStrong, Theme::text);
    title->setWordWrap(false);
    percent = makeTextLabel({}, Theme::FontRole::Small, Theme::secondaryText);
    percent->setObjectName(u"labelPercent"_s);
    percent->setWordWrap(false);
    auto *add = new QPushButton(localized(u"Add Task"_s));
    add->setObjectName(u"buttonAddTask"_s);
    add->setAutoDefault(false);
    connect(add, &QPushButton::clicked, this, &LinkedTasksView::newTaskWanted);
    auto *more = new QToolButton;
    more->setObjectName(u"buttonMoreTasks"_s);
    more->setIcon(Icons::icon(u"chevron-down"_s, Theme::secondaryText));
    more->setAccessibleName(localized(u"More ways to add a task"_s));
    more->setToolTip(more->accessibleName());
    more->setFocusPolicy(Qt::StrongFocus);
    more->setAutoRaise(true);
    more->setPopupMode(QToolButton::InstantPopup);
    // The button has an arrow of its own.
    more->setStyleSheet(u"QToolButton::menu-indicator { image: none; }"_s);
    auto *menu = new MenuAtEnd(*more);
    menu->addAction(localized(u"Add current Task"_s), this, &LinkedTasksView::currentTasksWanted);
    more->setMenu(menu);
    line->addWidget(title);
    line->addWidget(percent);
    line->addStretch(1);
    line->addWidget(add);
    line->addWidget(more);
    return header;
}

void LinkedTasksView::setUpView()
{
    view->setObjectName(u"tableViewLinkedTasks"_s);
    view->setAccessibleName(localized(u"Tasks"_s));
    view->setItemDelegate(new TaskTableCell(view));
    view->setModel(model);
    view->setDragsOut([this](const std::set<int> &rows) {
        const std::vector<TaskPtr> tasks = tasksAt(rows);
        return DraggedRecords::of({tasks.begin(), tasks.end()});
    });
    connect(view, &TableViewExtended::doubleAction, this, [this](int row) {
        if (const ObjectPtr task = model->recordAt(row))
            Q_EMIT opened(task);
    });
    connect(view, &TableViewExtended::checkToggled, this,
            [this](const std::set<int> &rows) { commands->toggleDone(tasksAt(rows)); });
    connect(view, &TableViewExtended::menuRequested, this, [this](const QPoint &globalPosition) {
        if (view->hasSelectedRows())
            commands->showMenu(globalPosition);
    });
    connect(view, &TableViewExtended::removeRequested, this, &LinkedTasksView::removeSelection);
    connect(commands, &TaskRowCommands::deleteChosen, this, &LinkedTasksView::removeSelection);
    connect(commands, &TaskRowCommands::whyChosen, this, &LinkedTasksView::explain);
}

void LinkedTasksView::observe()
{
    soon.setSingleShot(true);
    connect(&soon, &QTimer::timeout, this, &LinkedTasksView::loadTasks);
    seen.setSingleShot(true);
    seen.setInterval(tickStands);
    connect(&seen, &QTimer::timeout, this, &LinkedTasksView::loadTasks);
    NotificationCenter &center = NotificationCenter::defaultCenter();
    observations.push_back(
        center.addObserver(notifications::contextDidSave, [this](const StoreChanges &changes) {
            if (!changes.isUnknown && !changes.concerns(EntityTask::entityName))
                return;
            if (isChanging || seen.isActive()) {
                view->showRowsAnew();
                showProgress();
            } else {
                soon.start(0);
            }
        }));
    observations.push_back(center.addObserver(notifications::iCloudChange, [this] { soon.start(0); }));
}

void LinkedTasksView::setShowProject(bool shows)
{
    model->setShowsProject(shows);
    view->showRowsAnew();
}

void LinkedTasksView::setTellsWaiting(bool tells)
{
    model->setTellsWaiting(tells);
    view->showRowsAnew();
}

// Rows

void LinkedTasksView::loadTasks()
{
    soon.stop();
    seen.stop();
    const SelectionMemory memory = SelectionMemory::of(*view, *model);
    const bool wasSelected = view->hasSelectedRows();
    model->fetch();
    if (wasSelected)
        memory.restore(*view, *model, SelectionMemory::Otherwise::Neighbour);
    showProgress();
    fitHeight();
}

void LinkedTasksView::showProgress()
{
    const std::vector<TaskPtr> tasks = model->rows().tasks();
    allTasks = static_cast<int>(tasks.size());
    completedTasks = static_cast<int>(std::ranges::count_if(
        tasks, [](const TaskPtr &task) { return task && task->status() == TaskStatus::Done; }));
    const double share = allTasks == 0 ? 0 : static_cast<double>(completedTasks) / allTasks;
    // What is not all done is never said to be.
    const int hundredths = static_cast<int>(share * 100);
    percent->setText(allTasks == 0 ? QString() : localized(u"(%1 %)"_s).arg(hundredths));
    percent->setAccessibleName(
        allTasks == 0 ? QString()
                      : localized(u"%1 of %2 tasks are done"_s).arg(completedTasks).arg(allTasks));
    progress->setShare(share);
    progress->setVisible(allTasks > 0);
}

void LinkedTasksView::fitHeight()
{
    listPlace->setFixedHeight(view->wholeHeight());
}

std::vector<TaskPtr> LinkedTasksView::tasksAt(const std::set<int> &rows) const
{
    std::vector<TaskPtr> tasks;
    for (const int row : rows) {
        if (auto task = std::static_pointer_cast<EntityTask>(model->recordAt(row)))
            tasks.push_back(std::move(task));
    }
    return tasks;
}

// What is done with them

void LinkedTasksView::changeInRows(const std::function<void()> &change)
{
    {
        const QScopedValueRollback changing(isChanging, true);
        change();
    }
    view->showRowsAnew();
    showProgress();
    seen.start();
}

void LinkedTasksView::removeSelection()
{
    const std::vector<TaskPtr> selected = tasksAt(view->selectedRows());
    const std::vector<ObjectPtr> going = TaskRowCommands::removable({selected.begin(), selected.end()});
    if (going.empty())
        return;
    LongWork work(going.size(), localized(u"Deleting the selected tasks"_s));
    TaskManager::deleteTasks(
        going, [this] { loadTasks(); }, [&work] { return work.step(); });
}

/// In which list else a task is found.
void LinkedTasksView::explain()
{
    const std::vector<TaskPtr> selected = tasksAt(view->selectedRows());
    if (selected.size() != 1)
        return;
    const QRect row = view->visualRect(model->index(model->rowOf(selected.front())));
    TextBubble::show(TaskPlacement(selected.front()).explanation(std::nullopt), *view->viewport(), row);
}
