#pragma once

#include "records/PaperText.h"
#include "shell/home/HomeListModel.h"
#include "widgets/TableViewExtended.h"

#include <QTimer>
#include <QWidget>

class TaskRowCommands;

/// One of the two lists of Home under its title. It is fetched anew whenever something was saved, and keeps
/// what is selected and in sight through that.
class HomeBlockView : public QWidget
{
    Q_OBJECT
public:
    /// What its title takes above the rows, and that of the day beside it.
    static int headerHeight();

    /// \param tableName what the table is called among the widgets.
    HomeBlockView(HomeListModel::List list, const QString &title, const QString &tableName,
                  QWidget *parent = nullptr);

    TableViewExtended *table() const { return view; }
    const HomeListModel &rows() const { return *model; }
    bool hasItems() const { return model->nearestItem(0, 1) >= 0; }

    /// Fetches the rows at once.
    void reload();
    /// Fetches them soon, but no sooner than the user has seen a tick; several wishes share one fetch.
    void reloadSoon();
    /// Whether they wait to be fetched.
    bool isOld() const { return soon.isActive() || seen.isActive(); }
    /// Fetches them at once if that is due soon.
    void updateRows();
    /// What rows show of the present moment can be different.
    void showAnew() { view->showRowsAnew(); }

    /// The selected records, each once, though it may stand on several days.
    std::vector<ObjectPtr> selectedRecords() const;
    /// Those of them that are tasks.
    std::vector<TaskPtr> selectedTasks() const;
    /// All tasks, each once.
    std::vector<TaskPtr> allTasks() const;
    /// What stands above the rows.
    QString title() const { return view->accessibleName(); }
    /// Selects a record in its first row; false if it has none.
    bool selectRecord(const ObjectPtr &record);
    /// The same for several, of which only some may have one.
    bool selectRecords(const std::vector<ObjectPtr> &records);
    /// The titles of the selected rows, a line each.
    QString selectedText() const;
    /// All rows as they stand on paper.
    std::vector<PaperText::Line> linesOnPaper() const;
    /// Selects the row at a place, or else the last one.
    void selectAt(int row);

Q_SIGNALS:
    /// Two presses on a record, or Return.
    void opened(const ObjectPtr &record);
    void selectionChanged();
    void removeRequested();
    void whyRequested();
    /// The rows were fetched anew.
    void reloaded();

private:
    std::vector<TaskPtr> tasksAt(const std::set<int> &numbers) const;
    void changeInRows(const std::function<void()> &change);
    void openRow(int row);

    HomeListModel *model;
    TableViewExtended *view;
    TaskRowCommands *commands;
    QTimer soon;
    /// Runs while the user is to see what was changed in a row.
    QTimer seen;
    bool isChanging = false;
};
