#pragma once

#include "foundation/NotificationCenter.h"
#include "objectstore/StoreChanges.h"
#include "records/DraftKeeper.h"
#include "records/TaskFormState.h"
#include "shell/details/DetailViewController.h"

#include <QTimer>

#include <optional>
#include <vector>

class DetailStack;
class QLabel;
class QPushButton;
class QToolButton;
class TaskFormView;

/// The pane about one stored task: first in words, then, on "Edit", as a form.
class TaskDetailViewController : public DetailViewController
{
    Q_OBJECT
public:
    explicit TaskDetailViewController(const TaskPtr &task, QWidget *parent = nullptr);

    /// Shows a task over a screen or another pane. One that is open already comes to the top.
    /// False if what is typed in another pane keeps the user there.
    static bool showTask(const TaskPtr &task, QWidget &controller, DetailStack &stack,
                         std::optional<ListType> typeTask);

    TaskFormState *taskForm() { return &form; }
    bool isEditing() const;
    /// The list that the task is seen from.
    void setTypeTask(std::optional<ListType> type) { listType = type; }
    std::optional<ListType> typeTask() const { return listType; }

    bool shows(const ObjectPtr &record) const override;
    bool canSave() const override { return isActive() && isEditing(); }
    bool hasChanges() override;
    bool saveEdit() override;
    void dropEdit() override;
    void clearController() override { keeper.finish(); }
    ObjectPtr record() const override { return form.currentTask().task(); }

    /// Goes on with an edit that an earlier run of the program was left with.
    void resume(const Drafts::Found &found);
    void setEditMode();
    void setPreviewMode();
    void clickButtonEdit();
    void clickButtonBack();
    void clickButtonSendEmail();

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    QWidget *makeHeader();
    QWidget *makeBody();
    void observe();
    bool isConcernedBy(const StoreChanges &changes) const;
    void taskChanged();
    void modeChanged(bool editing);
    void findInvitationSoon();
    void statusChanged();
    void changeCheckBoxDone(bool done);
    void editAttempted();
    TaskFormState::EditEnd finishEdit();
    void handOver();
    void giveUpEdit();

    TaskFormState form;
    DraftKeeper keeper{form};
    std::optional<ListType> listType;
    TaskFormView *view = nullptr;
    QPushButton *buttonEdit = nullptr;
    QToolButton *buttonBack = nullptr;
    QToolButton *buttonSendEmail = nullptr;
    QLabel *labelCreated = nullptr;
    QTimer refreshTimer;
    QTimer invitationTimer;
    std::vector<Observation> observations;
};
