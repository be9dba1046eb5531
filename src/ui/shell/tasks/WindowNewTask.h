#pragma once

#include "shell/tasks/TaskForm.h"

#include <QWidget>

class CheckButton;
class DatePicker;
class DatePickerControl;
class GrowingTextField;
class QComboBox;
class QPushButton;
class RowItemView;

/// The window for a new task.
class WindowNewTask : public QWidget
{
    Q_OBJECT
public:
    explicit WindowNewTask(const NewTaskRequest &request, QWidget *parent = nullptr);

    /// Shows the window, or brings it to the front as it is.
    void showWindow();
    TaskForm *taskForm() { return &form; }

    void clickButtonSave();
    /// Asks what to do with what was typed, then closes or stays.
    void clickButtonClose();

protected:
    void closeEvent(QCloseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    void placeOverParent();
    void setUpRows();
    RowItemView *addRow(int tag, const QString &textTag, int height, const QString &label, QWidget *control);
    QWidget *makeTitle();
    QWidget *makeType();
    QWidget *makeCategory();
    QWidget *makeStatus();
    QWidget *makePriority();
    DatePicker *makeDate(DatePickerState::Type type, const QString &name);
    QWidget *makeDetails();
    QWidget *makeButtons();
    void formChanged(TaskForm::Field field);
    void showVisibleRows();
    bool mayClose();

    TaskForm form;
    QWidget *card;
    RowItemView *rowStartDate = nullptr;
    RowItemView *rowEndDate = nullptr;
    CheckButton *checkDone = nullptr;
    GrowingTextField *textFieldTitle = nullptr;
    GrowingTextField *textFieldDetails = nullptr;
    QComboBox *popUpButtonType = nullptr;
    QComboBox *popUpButtonStatus = nullptr;
    QPushButton *buttonSave = nullptr;
    DatePickerControl *dueDateControl = nullptr;
    bool isClosingAgreed = false;
};
