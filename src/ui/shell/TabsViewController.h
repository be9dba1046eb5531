#pragma once

#include "records/MVTask.h"
#include "records/TaskRowContent.h"
#include "widgets/ScreenToolBar.h"
#include "widgets/ToolBarButton.h"

#include <QPointer>
#include <QWidget>

#include <optional>

/// With what a new task begins.
struct NewTaskRequest
{
    /// The list it is made from.
    std::optional<ListType> typeTask;
    OptionalDate createWithStartDate;
    OptionalDate createWithDueDate;
    TaskType type = TaskType::ToDo;
    /// Whether it may be a ToDo.
    bool showTodo = true;
};

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
    /// The screen is about to be left for good.
    virtual void clearController() {}

    /// What the add button gives a new task of this screen.
    virtual NewTaskRequest newTaskRequest() const { return {}; }

    // The commands of the Edit menu.
    virtual bool hasSelection() const { return false; }
    virtual bool hasRows() const { return false; }
    virtual void removeSelection() {}
    virtual void selectAll() {}

Q_SIGNALS:
    void buttonAdd(ToolBarButton::ActionType type);
    /// What the commands can do may have changed.
    void commandsChanged();

protected:
    ToolBarButton *addButton(ToolBarButton::ActionType type);

private:
    QPointer<ScreenToolBar> bar;
};
