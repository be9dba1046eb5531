#pragma once

#include "foundation/NotificationCenter.h"
#include "objectstore/StoreChanges.h"
#include "records/TaskFormState.h"
#include "widgets/FormCard.h"

#include <functional>
#include <map>
#include <string_view>
#include <vector>

class CheckButton;
class DatePickerControl;
class GrowingTextField;
class PopUpButton;
class RowItemView;

/// The rows of a task's form, for a new task and for a stored one. It shows what the state says and hands to
/// it what the user does.
class TaskFormView : public FormCard
{
    Q_OBJECT
public:
    /// `state` has to outlive the view, which takes over its callbacks.
    explicit TaskFormView(TaskFormState &state, QWidget *parent = nullptr);

    /// Between fields and words. A form begins as fields.
    void setEditing(bool editing);
    bool isEditing() const { return editing; }
    /// Shows everything anew.
    void refresh();
    void focusTitle();

Q_SIGNALS:
    void changed(TaskField field);
    /// Return in the title, or Ctrl+Return anywhere in it.
    void accepted();
    /// The check box was pressed.
    void doneToggled(bool done);
    /// A double click on words: the user wants to edit.
    void editWanted();

protected:
    void mouseDoubleClickEvent(QMouseEvent *event) override;

private:
    RowItemView *addRow(TaskFormRow row, const QString &textTag, int height, QWidget *control);
    void setUpRows();
    void openDueDate();
    QWidget *makeTitle();
    QWidget *makeDetails();
    QWidget *makeDate(DatePickerState::Type type, const QString &name);
    QWidget *makeCalendar();
    QWidget *makeType();
    QWidget *makeCategory();
    QWidget *makeStatus();
    QWidget *makePriority();
    QWidget *makeDelegate();
    QWidget *makeCompany();
    QWidget *makeProject();
    QWidget *makeRepeat();
    QWidget *makeLocation();
    template <typename Pointer, typename Choose>
    PopUpButton *makeChoice(const QString &name, std::function<std::vector<Pointer>()> choicesNow,
                            Pointer (*current)(const MVTask &), QString (*titleOf)(const Pointer &),
                            Choose choose);
    void keepFilled(PopUpButton &popUp, std::string_view entity, std::function<void()> fill);
    void storeChanged(const StoreChanges &changes);
    void fillDue();
    void makeDeletable(TaskFormRow row, std::function<void()> clear);
    void refreshRow(TaskFormRow row, RowItemView &view);
    QIcon previewIcon(TaskFormRow row) const;

    TaskFormState &state;
    bool editing = true;
    std::map<TaskFormRow, RowItemView *> rows;
    /// Each makes one control show what the state holds.
    std::vector<std::function<void()>> syncs;
    /// A pop-up that offers the records of an entity.
    struct Filling
    {
        PopUpButton *popUp;
        std::string_view entity;
        std::function<void()> fill;
        bool isDue;
    };
    std::vector<Filling> fillings;
    Observation changesHeard;
    CheckButton *checkDone = nullptr;
    GrowingTextField *textFieldTitle = nullptr;
    GrowingTextField *textFieldDetails = nullptr;
    DatePickerControl *dueDateControl = nullptr;
};
