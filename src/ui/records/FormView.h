#pragma once

#include "foundation/NotificationCenter.h"
#include "objectstore/StoreChanges.h"
#include "records/FormModel.h"
#include "widgets/FormCard.h"

#include <functional>
#include <map>
#include <vector>

class CheckButton;
class DatePickerControl;
class GrowingTextField;
class LinksField;
class PopUpButton;
class PortraitField;
class QLabel;
class QLineEdit;
class QVBoxLayout;
class RowItemView;

/// The rows of a form, for a new record and for a stored one. It shows what the model says and hands to it
/// what the user does.
class FormView : public FormCard
{
    Q_OBJECT
public:
    /// Makes the control of a row that the kind of record brings itself, and gives back what makes it show
    /// the value.
    using OwnControl =
        std::function<QWidget *(FormModel &model, const FormRow &row, std::function<void()> &sync)>;

    /// `model` has to outlive the view, which takes over its callbacks.
    explicit FormView(FormModel &model, OwnControl makeOwn = {}, QWidget *parent = nullptr);

    /// Between fields and words. A form begins as words.
    void setEditing(bool editing);
    bool isEditing() const { return editing; }
    /// Shows everything anew.
    void refresh();
    /// Puts the keys into the first row.
    void focusTitle();
    /// The keys go to the first text that is empty, or to the title.
    void focusEmptyText();

Q_SIGNALS:
    void changed();
    /// Return in the title, or Ctrl+Return anywhere in it.
    void accepted();
    /// The check box was pressed.
    void doneToggled(bool done);
    /// A double click on words: the user wants to edit.
    void editWanted();
    /// The user wants to see a record that a row links.
    void linkOpened(const ObjectPtr &record);

protected:
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    /// A picture that is pasted anywhere in the form is the one of the record.
    void keyPressEvent(QKeyEvent *event) override;

private:
    struct Row
    {
        FormRow about;
        RowItemView *view;
    };
    void addRow(const FormRow &row);
    QWidget *makeControl(const FormRow &row);
    QWidget *makeTitle(const FormRow &row);
    QWidget *makeLine(const FormRow &row);
    QWidget *makePicture(const FormRow &row);
    void addName(const FormRow &row);
    QLineEdit *makeLineField(const FormRow &row);
    QWidget *makeItems(const FormRow &row);
    QWidget *makeParagraphs(const FormRow &row);
    GrowingTextField *makeText(const FormRow &row, bool isTitle);
    QWidget *makeChoice(const FormRow &row);
    QWidget *makeDate(const FormRow &row);
    QWidget *makeLinks(const FormRow &row);
    QWidget *makeOwnControl(const FormRow &row);
    void makeDeletable(const Row &row);
    void openPicker(int row);
    void fill(PopUpButton &popUp, int row);
    void storeChanged(const StoreChanges &changes);
    void fillDue();
    void refreshRow(const Row &row);
    static QIcon iconOf(const FormMark &mark);

    FormModel &model;
    OwnControl makeOwn;
    bool editing = false;
    std::vector<Row> rows;
    /// Each makes one control show what the model holds.
    std::vector<std::function<void()>> syncs;
    std::vector<GrowingTextField *> texts;
    std::map<int, DatePickerControl *> pickers;
    /// A pop-up, and whether what it offers has to be asked for.
    struct Filling
    {
        PopUpButton *popUp;
        int row;
        bool isDue;
    };
    std::vector<Filling> fillings;
    Observation changesHeard;
    CheckButton *checkDone = nullptr;
    QWidget *firstField = nullptr;
    /// The picture, and beside it the name in words or in its fields.
    PortraitField *portrait = nullptr;
    QVBoxLayout *names = nullptr;
    QLabel *labelName = nullptr;
    std::vector<QLineEdit *> nameFields;
};
