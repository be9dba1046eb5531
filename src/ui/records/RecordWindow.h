#pragma once

#include "records/DraftKeeper.h"
#include "records/FormModel.h"
#include "records/LeaveGate.h"

#include <QTimer>
#include <QWidget>

#include <memory>

class FormView;
class QLabel;
class QPushButton;

/// The window for a new record: its form, "Save" and "Close". It grows with its rows, asks before typed words
/// go, and keeps them over a crash.
class RecordWindow : public QWidget, public EditedPlace
{
    Q_OBJECT
Q_SIGNALS:
    /// The record was stored.
    void saved(const ObjectPtr &record);

public:
    /// \param name what the window is called among the widgets.
    /// \param form the new record; \param view shows it. Both go with the window.
    RecordWindow(const QString &name, const QString &title, std::unique_ptr<FormModel> form, FormView *view,
                 QWidget *parent = nullptr);
    ~RecordWindow() override;

    /// The record while it is edited.
    FormModel &form() { return *model; }
    /// Begins with the words that an earlier form was left with.
    void resume(const QString &file, const RecordDraft &draft);
    /// Begins in the first text that is empty, where the title is given already.
    void beginInEmptyText();
    /// Says above the form why the window is there, which nobody has asked for.
    void tell(const QString &sentence);
    /// Shows the window, or brings it to the front as it is.
    void showWindow();

    /// Of the record that it is about.
    std::string_view entity() const { return model->entity(); }
    void clickButtonSave();
    /// Asks what to do with what was typed, then closes or stays.
    void clickButtonClose();

    bool hasChanges() override { return !isClosingAgreed && model->isTouched(); }
    bool saveEdit() override;
    void dropEdit() override;

protected:
    /// The check box was pressed.
    virtual void tick(bool done) { Q_UNUSED(done) }
    /// Goes on with what an earlier form was left with.
    void adoptDraft(const QString &file) { keeper.adopt(file); }

    void closeEvent(QCloseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    void growToForm();
    QWidget *makeButtons();

    std::unique_ptr<FormModel> model;
    DraftKeeper keeper;
    FormView *view;
    QLabel *labelReason = nullptr;
    QPushButton *buttonSave = nullptr;
    QTimer growth;
    bool isClosingAgreed = false;
};
