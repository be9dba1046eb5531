#pragma once

#include "shell/categories/CategoryListModel.h"
#include "shell/tasks/TabTaskViewController.h"

class QComboBox;
class QLabel;
class QLineEdit;

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
    /// Selects the category of a task, then the task.
    void selectItem(const ObjectPtr &record) override;

protected:
    TaskListQuery query(Grouping grouping) const override;
    void othersChanged(const StoreChanges &changes) override;
    void resizeEvent(QResizeEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void setUpPanel();
    void setUpTable();
    QWidget *makeTopView();
    void placeChildren();
    void updateCategories();
    void reloadDataCategory(const std::optional<CategoryColor> &newCategory = {});
    void selectCategoryRow(int row);
    void categorySelectionChanged();
    void addCategory();
    void showCategoryMenu(const QPoint &globalPosition);
    void removeCategory();
    void editTitle(int row);
    void endEditing(bool isAccepted);

    CategoryListModel *categories;
    QTimer categoriesUpdate;
    QWidget *panel;
    TableViewExtended *table;
    QLabel *labelTitleCategory;
    ToolBarButton *buttonAddCategory;
    QLineEdit *editor = nullptr;
    int editedRow = -1;
    CategoryPtr selectCategory;
    int detailSpace = 0;
};
