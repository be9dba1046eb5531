#pragma once

#include "records/DetailViewController.h"
#include "records/ExportRecords.h"
#include "records/NewTaskRequest.h"
#include "widgets/ScreenToolBar.h"
#include "widgets/ToolBarButton.h"

#include <QPointer>
#include <QWidget>

class DetailStack;
class FormModel;
class QPrinter;

/// A screen of the content area with its bar. Only one of them lives at a time.
class TabsViewController : public QWidget
{
    Q_OBJECT
public:
    explicit TabsViewController(const QString &title, QWidget *parent = nullptr);
    ~TabsViewController() override;

    /// The bar for the slot of the right toolbar.
    ScreenToolBar *toolBarView() const { return bar; }

    /// Fetches what is shown anew.
    virtual void reloadData() {}
    /// Shows at once what commits have changed so far, which otherwise waits until the program listens.
    virtual void updateRows() {}
    /// The screen is about to be left for good.
    virtual void clearController() {}

    /// The kinds of records whose window the menu of the add button can open.
    void setAvailableTypes(const QList<ToolBarButton::ActionType> &types);
    /// What the add button gives a new task of this screen.
    virtual NewTaskRequest newTaskRequest() const { return {}; }

    /// A new record is about to be edited that was asked for from this screen.
    virtual void prepareNew(FormModel &form) { Q_UNUSED(form) }
    /// Selects a record, scrolls to it and shows it; nothing if it is not on the screen.
    virtual void selectItem(const ObjectPtr &record) { Q_UNUSED(record) }
    /// Selects those of some records that are on the screen, and scrolls to the first of them.
    virtual void selectRecords(const std::vector<ObjectPtr> &records) { Q_UNUSED(records) }
    /// Where new tasks are typed, if they can be at this moment; else null.
    virtual QWidget *taskLine() const { return nullptr; }
    /// Makes a task of each line of text, where there is such a place.
    virtual void takeLines(const QStringList &lines) { Q_UNUSED(lines) }
    /// The task list that it is; absent for any other screen.
    virtual std::optional<ListType> listType() const { return std::nullopt; }
    /// The one task that is selected, or null.
    virtual TaskPtr selectedTask() const { return nullptr; }
    /// Whether `exportOffer` has anything.
    virtual bool canExport() const { return false; }
    /// What of the screen can be written to a file.
    virtual ExportRecords::Offer exportOffer() const { return {}; }
    /// Whether `selectedText` has anything: rows are selected, and the keys are in them.
    virtual bool hasSelectedText() const { return false; }
    /// The selected rows as lines of text.
    virtual QString selectedText() const { return {}; }
    /// The one record of any kind that is selected, or null.
    virtual ObjectPtr selectedRecord() const { return selectedTask(); }
    /// Why a task is on this screen, or why not, in a sentence.
    virtual QString explanationOf(const TaskPtr &task) const;
    /// Where on the screen the sentence about a task belongs.
    virtual QRect placeOf(const TaskPtr &task) const;

    // Details over the screen.
    /// Where a detail that the screen opens lies.
    virtual DetailPlace detailPlace() const { return {}; }
    /// A detail covers so many pixels at the trailing edge.
    virtual void setDetailSpace(int width) { Q_UNUSED(width) }
    /// The detail about that record has come to the top; null for one about none.
    virtual void detailOnTop(const ObjectPtr &record) { Q_UNUSED(record) }
    /// The user has come to work here: the keys go to the rows, where there are any.
    virtual void takeKeys()
    {
        if (focusProxy())
            setFocus(Qt::ShortcutFocusReason);
    }
    /// The last detail has gone: the keys go where it was opened.
    virtual void takeKeysBack() { setFocus(); }
    /// Where the screen shows its details; null while it is in no window.
    DetailStack *detailStack() const { return details; }
    void setDetailStack(DetailStack *stack) { details = stack; }

    // The filter of the screen, if it has one.
    virtual void openFilter() {}
    virtual void clearFilter() {}
    virtual bool canFilter() const { return false; }
    virtual bool canClearFilter() const { return false; }

    // Paper.
    virtual bool canPrint() const { return false; }
    /// Writes what is shown on pages of a printer.
    virtual void print(QPrinter &printer) { Q_UNUSED(printer) }

    // The commands of the Edit menu.
    virtual bool hasSelection() const { return false; }
    virtual bool hasRows() const { return false; }
    virtual void removeSelection() {}
    virtual void selectAll() {}

Q_SIGNALS:
    void buttonAdd(ToolBarButton::ActionType type);
    /// The user wants to know why the selected task is here.
    void whyRequested();
    /// A record of another kind is to be shown over the screen.
    void recordWanted(const ObjectPtr &record);
    /// A menu of the commands about the selected records is wanted there.
    void menuWanted(const QPoint &globalPosition);
    /// What the commands can do may have changed.
    void commandsChanged();

protected:
    ToolBarButton *addButton(ToolBarButton::ActionType type);

private:
    QPointer<ScreenToolBar> bar;
    DetailStack *details = nullptr;
};
