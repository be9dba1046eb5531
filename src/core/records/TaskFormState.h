#pragma once

#include "contacts/CNContactStore.h"
#include "records/FormModel.h"
#include "records/NewTaskRequest.h"
#include "records/TaskDraft.h"
#include "records/TaskFields.h"
#include "records/TaskInvitation.h"
#include "records/copies/MVTask.h"
#include "recurrence/CustomRepeat.h"
#include "recurrence/RepeatPicker.h"

#include <map>

/// A task while it is edited in a form: the working copy, and what the change of one field does to others and
/// to the rows that are shown. Main thread only.
class TaskFormState : public FormModel
{
public:
    /// A new task with what it begins with.
    explicit TaskFormState(const NewTaskRequest &request);
    /// A stored task.
    explicit TaskFormState(const TaskPtr &task);
    /// A new task with what an earlier form was left with, be it of a new task or of one that is gone.
    explicit TaskFormState(const TaskDraft &draft);

    const MVTask &currentTask() const { return task; }

    void setTitle(const QString &title);
    void setDetails(const QString &details);
    /// The calendar by the name that tasks have for it.
    void setCalendar(const QString &typeCalendarID);
    void setType(const QString &word);
    void setCategory(const CategoryPtr &category);
    void setStatus(TaskStatus status);
    void setDone(bool done);
    void setPriority(Priority priority);
    void setLocation(const std::shared_ptr<EntityLocation> &location);
    /// The company follows that of the contact.
    void setDelegate(const ContactPtr &contact);
    void setCompany(const CompanyPtr &company);
    /// False, with a message, for a project whose dates the task leaves; the old one stays then.
    bool setProject(const ProjectPtr &project);

    // The date pickers; what they do to the copy is the copy's own rule.
    /// What a bubble is to show; it stays closed unless `showPopover` is set. No date outside those of the
    /// project is offered.
    DatePickerState openPicker(DatePickerState::Type picker);
    void acceptDate(DatePickerState &picker, Date date);
    void toggleCheck(DatePickerState &picker, bool isChecked);
    /// Clears a date. A second alert takes the place of the first.
    void clearDate(DatePickerState::Type picker);
    OptionalDate dateOf(DatePickerState::Type picker) const;

    // Repetition.
    /// A preset of the pop-up.
    void setRepeatPreset(int index);
    /// A rule of the user's own.
    void setRepeat(const QString &rule);
    /// The controller of the pop-up with the rule of the task.
    RepeatPicker repeatPicker() const;
    /// The custom window's state, beginning with the rule of the task.
    CustomRepeat customRepeat() const;

    // What is shown, and put in, row by row.
    std::vector<FormRow> rows() const override;
    QString label(int row) const override { return label(TaskFormRow(row)); }
    QString text(int row) const override { return previewText(TaskFormRow(row)); }
    FormMark mark(int row) const override;
    bool hasValue(int row) const override { return hasValue(TaskFormRow(row)); }
    bool isShown(int row) const override { return isRowShown(TaskFormRow(row)); }
    bool isShownInPreview(int row) const override { return isRowShownInPreview(TaskFormRow(row)); }
    /// An invitation names the organiser, whom nobody can change here.
    bool isGiven(int row) const override;
    bool isEnabled(int row) const override;
    void setText(int row, const QString &text) override;
    std::vector<FormChoice> choices(int row) override;
    int chosen(int row) const override;
    void choose(int row, int place) override;
    ObjectPtr chosenRecord(int row) const override;
    std::string_view entityOfChoices(int row) const override;
    FormDate date(int row) const override;
    DatePickerState openPicker(int row) override;
    void acceptDate(int, DatePickerState &picker, Date date) override { acceptDate(picker, date); }
    void toggleCheck(int, DatePickerState &picker, bool isChecked) override
    {
        toggleCheck(picker, isChecked);
    }
    void clear(int row) override;
    bool hasCheckBox() const override { return true; }
    /// A task that cannot be changed cannot be ticked off.
    std::optional<bool> isTicked() const override;

    bool isRowShown(TaskFormRow row) const;
    /// Without the rows that have nothing to say.
    bool isRowShownInPreview(TaskFormRow row) const;
    bool hasValue(TaskFormRow row) const;
    QString label(TaskFormRow row) const;
    /// The value of a row in words; empty without one.
    QString previewText(TaskFormRow row) const;
    bool isSomeday() const { return task.dueSomeDay.value_or(false); }
    bool hasClock() const { return !task.isToDo(); }
    bool hasCalendarAccess() const { return calendarAccess; }
    /// The types that the task may have.
    std::vector<TaskType> types() const;
    const TaskInvitation &invitation() const { return invited; }
    /// Looks up who is invited. It asks the calendar, so a screen does it when it is in sight.
    void findInvitation();

    // Editing and saving.
    /// Whether its calendar lets the task be changed.
    bool allowsModifyEvent() const { return task.allowsContentModifications.value_or(true); }
    /// A task that is done or lies on a read-only calendar cannot be edited.
    bool canEdit() const override;
    bool allowsEditing() const override { return allowsModifyEvent(); }
    bool canSave() const override { return !task.title.isEmpty(); }
    bool isTouched() const override { return touched; }
    bool isChanged() override;
    bool isDifferent() override { return task.isChangedTask(); }
    QString title() const override { return task.title; }
    std::string_view entity() const override { return EntityTask::entityName; }
    ObjectPtr record() const override { return task.task(); }
    QString reasonNotToSave() const override;
    QString formerText(int row) const override;
    QString creationText() const override { return createdOn(task.creationDate); }
    /// Stores the task through the rules. False if they stopped it, with a message, if the user gave it up,
    /// or if the store cannot be written: of a new task there is no row then, and a stored one is saved by
    /// the next try. What was typed stays.
    bool save() override;
    EditEnd finishEdit() override;
    /// Ticks a stored task off, or opens it again, at once, with all that stands in the form. Nothing happens
    /// if the user gives it up.
    void changeStatusNow(bool done);
    bool isGone() const override;
    void rollback() override;
    void followRow() override;
    /// Whether the form says something else than at its beginning, or than its row.
    bool isEdited() const;
    /// What would be lost with the form.
    TaskDraft draft() const;
    QByteArray encodedDraft() const override;
    /// Lays what an earlier form of the stored task was left with over its row: what the user had changed
    /// there counts, anything else is as it is now.
    void resume(const TaskDraft &draft);

private:
    template <typename Edit>
    void editDates(Edit edit);
    void startEntityTaskValue(const NewTaskRequest &request);
    void startDateChanged();
    void dueDateChanged();
    void dropRepeatAndAlerts();
    void fitRepeat();
    std::optional<EKCalendar> calendarToSaveIn();
    void takeCalendar();
    void takeBackNewRow(const MVTask &before);
    void keepInsideProject(DatePickerState &picker) const;
    OptionalDate baseDate() const { return task.isEmailCall() ? task.dueDate : task.startDate; }
    QString dateText(OptionalDate date, bool withTime) const;
    QString repeatText() const;
    void note();
    void tell();
    void takeBase();

    /// What stands behind a choice: a word, a number, a record (null for none), or nothing.
    using Value = std::variant<std::monostate, QString, int, ObjectPtr, RowId>;
    void offer(TaskFormRow row, FormChoice choice, Value value, std::vector<FormChoice> &choices);
    template <typename Pointer>
    void offerRecords(TaskFormRow row, const std::vector<Pointer> &records,
                      QString (*titleOf)(const Pointer &), std::vector<FormChoice> &choices);
    void offerCalendars(std::vector<FormChoice> &choices);
    Value valueOf(TaskFormRow row) const;

    MVTask task;
    /// The row as it was when the copy was taken.
    MVTask base;
    void askAddressBooks();

    TaskInvitation invited;
    /// Asked about a stranger who invites, and what it said last.
    std::unique_ptr<CNContactStore> addressBooks;
    QString askedMail;
    std::optional<CNContact> knownOrganizer;
    bool calendarAccess;
    bool mayBeToDo = true;
    bool touched = false;
    bool savePause = false;
    /// The row has values that could not be committed.
    bool isUncommitted = false;
    /// What the choices of each row gave last.
    std::map<TaskFormRow, std::vector<Value>> offered;
};
