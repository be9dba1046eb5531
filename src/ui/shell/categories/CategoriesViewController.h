#pragma once

#include "shell/categories/CategoryListModel.h"
#include "shell/tasks/TabTaskViewController.h"

class CategoryTasksCell;
class QLabel;

/// The screen of categories: they stand on the leading side, beside the tasks of the selected one. Categories
/// are made, named, deleted and marked as the default here.
class CategoriesViewController : public TabTaskViewController
{
    Q_OBJECT
public:
    explicit CategoriesViewController(QWidget *parent = nullptr);

    TableViewExtended *tableViewCategory() const { return table; }
    /// Of the selected category.
    void reloadData() override;
    void updateRows() override;
    void clearController() override;
    NewTaskRequest newTaskRequest() const override;
    void setDetailSpace(int width) override;
    bool hasSelection() const override;
    void removeSelection() override;
    void takeKeys() override { table->setFocus(Qt::ShortcutFocusReason); }
    /// Selects the category of a task, then the task.
    void selectItem(const ObjectPtr &record) override;

protected:
    TaskListQuery query(Grouping grouping) const override;
    NewTaskRequest captureRequest() const override;
    void othersChanged(const StoreChanges &changes) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    void setUpPanel();
    void setUpTable();
    QWidget *makeTopView();
    void placeChildren();
    void showTitle();
    void updateCategories();
    void reloadCategories();
    void selectCategoryRow(int row);
    void categorySelectionChanged();
    void addCategory();
    void showCategoryMenu(const QPoint &globalPosition);
    void removeCategory();
    void editTitle(int row);
    bool isEditing() const;
    void endEditing();
    void editorClosed();

    CategoryListModel *categories;
    QTimer categoriesUpdate;
    QWidget *panel;
    TableViewExtended *table;
    CategoryTasksCell *cell;
    QLabel *labelTitleCategory;
    ToolBarButton *buttonAddCategory;
    CategoryPtr selectCategory;
    int detailSpace = 0;
};
