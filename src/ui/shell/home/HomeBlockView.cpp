#include "shell/home/HomeBlockView.h"

#include "records/DraggedRecords.h"
#include "shell/home/HomeCell.h"
#include "shell/home/HomeHeading.h"
#include "shell/tasks/TaskRowCommands.h"
#include "widgets/Direction.h"

#include <QScopedValueRollback>
#include <QVBoxLayout>

using namespace Qt::Literals::StringLiterals;

/// Long enough for a tick to be seen before its row leaves.
constexpr auto tickStands = std::chrono::milliseconds(1000);

static HomeHeading *makeHeader(const QString &title, const QWidget &list)
{
    auto *header = new HomeHeading(Theme::FontRole::Large, Theme::text);
    header->setText(title);
    header->setFixedHeight(HomeBlockView::headerHeight());
    header->setContentsMargins(
        Direction::margins(list, HomeRowLayout::margin + Theme::unit / 2, 0, HomeRowLayout::margin, 0));
    return header;
}

int HomeBlockView::headerHeight()
{
    constexpr int usual = 56;
    const int lines = QFontMetrics(Theme::font(Theme::FontRole::BodyStrong)).height() +
                      QFontMetrics(Theme::font(Theme::FontRole::Small)).height();
    return std::max(usual, lines + 2 * Theme::unit);
}

HomeBlockView::HomeBlockView(HomeListModel::List list, const QString &title, const QString &tableName,
                             QWidget *parent)
    : QWidget(parent)
    , model(new HomeListModel(list, this))
    , view(new TableViewExtended(this))
    , commands(new TaskRowCommands(
          *this, [this] { return selectedTasks(); },
          [this](const auto &, const std::function<void()> &change) { changeInRows(change); }))
{
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins({});
    column->setSpacing(0);
    column->addWidget(makeHeader(title, *this));
    column->addWidget(view, 1);
    view->setObjectName(tableName);
    view->setAccessibleName(title);
    view->setItemDelegate(new HomeCell(view));
    view->setModel(model);
    setFocusProxy(view);
    soon.setSingleShot(true);
    connect(&soon, &QTimer::timeout, this, &HomeBlockView::reload);
    seen.setSingleShot(true);
    seen.setInterval(tickStands);
    connect(&seen, &QTimer::timeout, this, &HomeBlockView::reload);
    view->setDragsOut([this](const std::set<int> &numbers) {
        const std::vector<TaskPtr> tasks = tasksAt(numbers);
        return DraggedRecords::of({tasks.begin(), tasks.end()});
    });
    connect(view, &TableViewExtended::doubleAction, this, &HomeBlockView::openRow);
    connect(view, &TableViewExtended::checkToggled, this,
            [this](const std::set<int> &numbers) { commands->toggleDone(tasksAt(numbers)); });
    connect(view, &TableViewExtended::menuRequested, this, [this](const QPoint &globalPosition) {
        if (!selectedTasks().empty())
            commands->showMenu(globalPosition);
    });
    connect(view, &TableViewExtended::rowSelectionChanged, this, &HomeBlockView::selectionChanged);
    connect(view, &TableViewExtended::removeRequested, this, &HomeBlockView::removeRequested);
    connect(commands, &TaskRowCommands::deleteChosen, this, &HomeBlockView::removeRequested);
    connect(commands, &TaskRowCommands::whyChosen, this, &HomeBlockView::whyRequested);
}

// Rows

/// What was selected is selected again, also where it stands elsewhere now. If all of it has gone, its
/// neighbour takes its place.
void HomeBlockView::reload()
{
    soon.stop();
    seen.stop();
    const std::set<int> selected = view->selectedRows();
    std::set<quint64> keys;
    for (const int row : selected)
        keys.insert(model->stableIdAt(row));
    const std::vector<TableViewExtended::Sight> sights = view->rowsInSight();
    model->fetch();
    if (!selected.empty() && !view->hasSelectedRows()) {
        const std::set<int> again = model->rowsOfKeys(keys);
        if (again.empty())
            selectAt(*selected.begin());
        else
            view->selectRows(again);
    }
    if (!sights.empty())
        view->keepInSight(sights);
    view->showRowsAnew();
    Q_EMIT reloaded();
}

void HomeBlockView::reloadSoon()
{
    if (isChanging || seen.isActive())
        return view->showRowsAnew();
    soon.start(0);
}

void HomeBlockView::updateRows()
{
    if (soon.isActive())
        reload();
}

void HomeBlockView::changeInRows(const std::function<void()> &change)
{
    {
        const QScopedValueRollback changing(isChanging, true);
        change();
    }
    view->showRowsAnew();
    seen.start();
}

// Selection

std::vector<ObjectPtr> HomeBlockView::selectedRecords() const
{
    std::vector<ObjectPtr> records;
    for (const int row : view->selectedRows()) {
        ObjectPtr record = model->recordAt(row);
        if (record && std::ranges::find(records, record) == records.end())
            records.push_back(std::move(record));
    }
    return records;
}

std::vector<TaskPtr> HomeBlockView::selectedTasks() const
{
    return tasksAt(view->selectedRows());
}

std::vector<TaskPtr> HomeBlockView::allTasks() const
{
    std::set<int> rows;
    for (int row = 0; row < model->rowCount(); ++row)
        rows.insert(rows.end(), row);
    return tasksAt(rows);
}

std::vector<TaskPtr> HomeBlockView::tasksAt(const std::set<int> &numbers) const
{
    std::vector<TaskPtr> tasks;
    std::set<RowId> known;
    for (const int row : numbers) {
        auto task = std::dynamic_pointer_cast<EntityTask>(model->recordAt(row));
        if (task && known.insert(task->rowId()).second)
            tasks.push_back(std::move(task));
    }
    return tasks;
}

bool HomeBlockView::selectRecord(const ObjectPtr &record)
{
    const int row = model->rowOf(record);
    if (row < 0)
        return false;
    view->selectRow(row);
    view->scrollToRow(row);
    return true;
}

bool HomeBlockView::selectRecords(const std::vector<ObjectPtr> &records)
{
    std::set<int> rows;
    for (const ObjectPtr &record : records) {
        if (const int row = model->rowOf(record); row >= 0)
            rows.insert(row);
    }
    if (rows.empty())
        return false;
    view->selectRows(rows);
    view->scrollToRow(*rows.begin());
    return true;
}

QString HomeBlockView::selectedText() const
{
    QStringList lines;
    for (const int row : view->selectedRows())
        lines << model->index(row).data().toString();
    return lines.join(u'\n');
}

std::vector<PaperText::Line> HomeBlockView::linesOnPaper() const
{
    std::vector<PaperText::Line> lines;
    for (int row = 0; row < model->rowCount(); ++row) {
        const QModelIndex index = model->index(row);
        if (!model->isItem(row)) {
            lines.push_back({.isHeading = !index.data(HomeListModel::IsNoticeRole).toBool(),
                             .text = index.data().toString()});
            continue;
        }
        const auto content = index.data(HomeListModel::ContentRole).value<HomeRowContent>();
        QStringList details = {content.dateLabel, content.project};
        for (const TaskRowDetail &detail : content.details)
            details << detail.text;
        details.removeAll(QString());
        lines.push_back({.isTicked = content.dateIcon == HomeRowContent::DateIcon::Project
                                         ? std::nullopt
                                         : std::optional(content.isDone),
                         .text = content.title,
                         .detail = details.join(u", "_s)});
    }
    return lines;
}

void HomeBlockView::selectAt(int row)
{
    const int inside = std::min(row, model->rowCount() - 1);
    const int below = model->nearestItem(inside, 1);
    const int near = below >= 0 ? below : model->nearestItem(inside, -1);
    if (near >= 0)
        view->selectRow(near);
}

void HomeBlockView::openRow(int row)
{
    if (const ObjectPtr record = model->recordAt(row))
        Q_EMIT opened(record);
}
