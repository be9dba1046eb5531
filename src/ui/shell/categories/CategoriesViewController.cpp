#include "shell/categories/CategoriesViewController.h"

#include "foundation/Localization.h"
#include "records/RecordRemoval.h"
#include "shell/categories/CategoryTasksCell.h"
#include "shell/tasks/CaptureBar.h"
#include "widgets/BusyCursor.h"
#include "widgets/Direction.h"
#include "widgets/PopUpButton.h"
#include "widgets/TextLabel.h"

#include <QLabel>
#include <QMenu>
#include <QVBoxLayout>

using namespace Qt::Literals::StringLiterals;

constexpr int panelWidth = 264;
constexpr int leastListWidth = 280;
constexpr int titleHeight = 44;
constexpr int categoryRowHeight = 40;
constexpr int topInsetOfDetail = 20;

CategoriesViewController::CategoriesViewController(QWidget *parent)
    : TabTaskViewController({.type = ListType::Categories,
                             .title = localized(u"Categories"_s),
                             .icon = u"categories"_s,
                             .detailPlace = {.topInset = topInsetOfDetail},
                             .addType = ToolBarButton::NewCategory},
                            parent)
    , categories(new CategoryListModel(this))
    , panel(new QWidget(this))
    , table(new TableViewExtended)
    , cell(new CategoryTasksCell(table))
    , labelTitleCategory(makeTextLabel({}, Theme::FontRole::BodyStrong, Theme::text))
    , buttonAddCategory(toolBarView()->findChild<ToolBarButton *>(u"buttonAdd"_s))
{
    labelTitleCategory->setParent(this);
    labelTitleCategory->setObjectName(u"labelTitleCategory"_s);
    labelTitleCategory->setWordWrap(false);
    setUpTable();
    setUpPanel();
    setUpCapture();
    connect(this, &TabsViewController::buttonAdd, this, [this](ToolBarButton::ActionType type) {
        if (type == ToolBarButton::NewCategory)
            addCategory();
    });
    categoriesUpdate.setSingleShot(true);
    connect(&categoriesUpdate, &QTimer::timeout, this, &CategoriesViewController::updateCategories);
    categories->fetch();
    updateCategories();
    selectCategoryRow(0);
}

// Layout

void CategoriesViewController::setUpPanel()
{
    panel->setObjectName(u"categoryPanel"_s);
    auto *column = new QVBoxLayout(panel);
    column->setContentsMargins(
        Direction::margins(*this, Theme::contentMargin - Theme::unit, 0, 0, Theme::unit));
    column->setSpacing(Theme::unit);
    column->addWidget(makeTopView());
    column->addWidget(table, 1);
}

QWidget *CategoriesViewController::makeTopView()
{
    auto *popUp = new PopUpButton(u"popUpButtonSort"_s);
    popUp->setAccessibleName(localized(u"Show"_s));
    popUp->addItem(localized(u"Alphabetical"_s), static_cast<int>(Categories::Shown::All));
    popUp->addItem(localized(u"Active"_s), static_cast<int>(Categories::Shown::WithTasks));
    popUp->addItem(localized(u"Inactive"_s), static_cast<int>(Categories::Shown::WithoutTasks));
    popUp->setCurrentIndex(popUp->findData(static_cast<int>(Categories::shown())));
    connect(popUp, &QComboBox::activated, this, [this, popUp] {
        Categories::setShown(static_cast<Categories::Shown>(popUp->currentData().toInt()));
        reloadCategories();
    });
    auto *line = new QWidget;
    auto *row = new QHBoxLayout(line);
    // As wide as the rows, beside which a scroll bar has its place.
    row->setContentsMargins(
        Direction::margins(*this, Theme::unit, 0, Theme::unit + Theme::scrollBarWidth, 0));
    row->addWidget(popUp);
    line->setFixedHeight(titleHeight);
    return line;
}

void CategoriesViewController::setUpTable()
{
    table->setObjectName(u"tableViewCategory"_s);
    table->setAccessibleName(localized(u"Categories"_s));
    table->setSelectionMode(QAbstractItemView::SingleSelection);
    table->setRowHeights({.item = categoryRowHeight, .lines = 1});
    table->setItemDelegate(cell);
    table->setModel(categories);
    connect(table, &TableViewExtended::rowSelectionChanged, this,
            &CategoriesViewController::categorySelectionChanged);
    connect(table, &TableViewExtended::doubleAction, this, &CategoriesViewController::editTitle);
    connect(table, &TableViewExtended::removeRequested, this, &CategoriesViewController::removeCategory);
    connect(table, &TableViewExtended::menuRequested, this, &CategoriesViewController::showCategoryMenu);
    // A window that goes takes the keys from a field while there may be no store any more.
    connect(cell, &CategoryTasksCell::closeEditor, this, &CategoriesViewController::editorClosed,
            Qt::QueuedConnection);
}

/// Beside a detail there may be no room for both lists; then the tasks stay.
void CategoriesViewController::placeChildren()
{
    const int room = width() - detailSpace;
    const bool hasPanel = detailSpace == 0 || room >= panelWidth + leastListWidth;
    const int leading = hasPanel ? panelWidth : 0;
    const bool isMirrored = isRightToLeft();
    panel->setVisible(hasPanel);
    panel->setGeometry(QStyle::visualRect(layoutDirection(), rect(), QRect(0, 0, panelWidth, height())));
    const int inset = Theme::contentMargin + Theme::unit / 2;
    labelTitleCategory->setGeometry(QStyle::visualRect(
        layoutDirection(), rect(), QRect(leading + inset, 0, room - leading - 2 * inset, titleHeight)));
    setContentsMargins(isMirrored ? detailSpace : leading, titleHeight, isMirrored ? leading : detailSpace,
                       0);
    showTitle();
}

/// As much of it as there is room for; the rest is in the tip.
void CategoriesViewController::showTitle()
{
    const QString title = firstPart(Categories::shownTitle(selectCategory));
    const QFontMetrics metrics = labelTitleCategory->fontMetrics();
    labelTitleCategory->setText(metrics.elidedText(title, Qt::ElideRight, labelTitleCategory->width()));
    labelTitleCategory->setToolTip(labelTitleCategory->text() == title ? QString() : title);
    labelTitleCategory->setAccessibleName(title);
}

void CategoriesViewController::setDetailSpace(int width)
{
    detailSpace = width;
    placeChildren();
}

void CategoriesViewController::resizeEvent(QResizeEvent *event)
{
    TabTaskViewController::resizeEvent(event);
    placeChildren();
}

// Rows

void CategoriesViewController::reloadCategories()
{
    categories->fetch();
    buttonAddCategory->setEnabled(Categories::canAdd());
    selectCategoryRow(std::max(categories->rowOf(selectCategory), 0));
}

void CategoriesViewController::selectCategoryRow(int row)
{
    if (categories->rowCount() > 0)
        table->selectRow(std::min(row, categories->rowCount() - 1));
}

void CategoriesViewController::categorySelectionChanged()
{
    const std::set<int> rows = table->selectedRows();
    if (rows.empty() || *rows.begin() == categories->newRow())
        return;
    const CategoryPtr former = std::exchange(selectCategory, categories->categoryAt(*rows.begin()));
    if (former != selectCategory) {
        // No task of this one was chosen yet.
        tableViewTasks()->clearSelection();
        tableViewTasks()->scrollToTop();
    }
    showTitle();
    // Without a category there is only the one that new tasks have anyway.
    captureBar()->setVisible(selectCategory || !EntityCategory::getCustom());
    TabTaskViewController::reloadData();
}

/// What was written elsewhere may have changed the categories, too.
void CategoriesViewController::reloadData()
{
    isEditing() ? TabTaskViewController::reloadData() : reloadCategories();
}

NewTaskRequest CategoriesViewController::captureRequest() const
{
    NewTaskRequest request = newTaskRequest();
    request.createWithCategory = selectCategory;
    return request;
}

TaskListQuery CategoriesViewController::query(Grouping) const
{
    return Categories::query(selectCategory);
}

/// They are counted, and called, anew; a row whose title is being written stands until that ends.
void CategoriesViewController::othersChanged(const StoreChanges &changes)
{
    if (changes.concerns(EntityTask::entityName) || changes.concerns(EntityCategory::entityName))
        categoriesUpdate.start(0);
}

void CategoriesViewController::updateRows()
{
    if (categoriesUpdate.isActive())
        updateCategories();
    TabTaskViewController::updateRows();
}

void CategoriesViewController::clearController()
{
    endEditing();
    TabTaskViewController::clearController();
}

void CategoriesViewController::updateCategories()
{
    categoriesUpdate.stop();
    if (isEditing())
        return;
    categories->update({}, {});
    buttonAddCategory->setEnabled(Categories::canAdd());
    if (categories->rowOf(selectCategory) < 0)
        selectCategoryRow(0);
    showTitle();
}

NewTaskRequest CategoriesViewController::newTaskRequest() const
{
    NewTaskRequest request = TabTaskViewController::newTaskRequest();
    request.createWithCategory = selectCategory;
    return request;
}

void CategoriesViewController::selectItem(const ObjectPtr &record)
{
    if (const auto task = std::dynamic_pointer_cast<EntityTask>(record))
        selectCategoryRow(categories->rowOf(task->category()));
    TabTaskViewController::selectItem(record);
}

// Commands

bool CategoriesViewController::hasSelection() const
{
    if (!table->hasFocus())
        return TabTaskViewController::hasSelection();
    const CategoryPtr category = categories->categoryAt(table->currentRow());
    return category && !Categories::isBuiltIn(*category);
}

void CategoriesViewController::removeSelection()
{
    if (table->hasFocus())
        removeCategory();
    else
        TabTaskViewController::removeSelection();
}

void CategoriesViewController::addCategory()
{
    endEditing();
    const auto color = Categories::next();
    if (!color)
        return;
    categories->beginNew(*color);
    table->scrollToRow(categories->newRow());
    editTitle(categories->newRow());
}

void CategoriesViewController::showCategoryMenu(const QPoint &globalPosition)
{
    endEditing();
    if (table->currentRow() < 0)
        return;
    // While the menu stands the rows may change.
    const CategoryPtr category = categories->categoryAt(table->currentRow());
    auto *menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->addAction(localized(u"Set Default"_s), this, [category] { Categories::setDefault(category); });
    menu->addAction(localized(u"Edit Title"_s), this,
                    [this, category] { editTitle(categories->rowOf(category)); })
        ->setEnabled(category && !Categories::isBuiltIn(*category));
    menu->popup(globalPosition);
}

void CategoriesViewController::removeCategory()
{
    const int row = table->currentRow();
    const CategoryPtr category = categories->categoryAt(row);
    if (!category || Categories::isBuiltIn(*category) || !RecordRemoval::isWanted({category}))
        return;
    const BusyCursor busy;
    Categories::remove(category);
    updateCategories();
    selectCategoryRow(row);
}

// Titles

void CategoriesViewController::editTitle(int row)
{
    endEditing();
    const QModelIndex index = categories->index(row);
    if (!index.flags().testFlag(Qt::ItemIsEditable))
        return;
    selectCategoryRow(row);
    table->edit(index);
}

bool CategoriesViewController::isEditing() const
{
    return table->isPersistentEditorOpen(table->currentIndex());
}

/// What was written is kept, as by a press beside the field.
void CategoriesViewController::endEditing()
{
    if (!isEditing())
        return;
    QWidget *const field = table->indexWidget(table->currentIndex());
    Q_EMIT cell->commitData(field);
    Q_EMIT cell->closeEditor(field);
    editorClosed();
}

/// A new one without tasks may be none of those that are shown; then the former stays selected.
void CategoriesViewController::editorClosed()
{
    if (isEditing())
        return;
    selectCategoryRow(std::max(categories->rowOf(selectCategory), 0));
    const CategoryPtr made = categories->endNew();
    updateCategories();
    if (made && categories->rowOf(made) >= 0)
        selectCategoryRow(categories->rowOf(made));
}
