#pragma once

#include "foundation/NotificationCenter.h"
#include "objectstore/StoreChanges.h"
#include "records/DetailViewController.h"
#include "records/DraftKeeper.h"
#include "records/FormModel.h"

#include <QTimer>

#include <memory>
#include <vector>

class FormView;
class QHBoxLayout;
class QLabel;
class QPushButton;
class QToolButton;
class QVBoxLayout;

/// The pane about one stored record: first in words, then, on "Edit", as a form. It follows the record, asks
/// before typed words go, and keeps them over a crash. What a kind of record adds, its own pane adds to the
/// header and below the form.
class RecordPane : public DetailViewController
{
    Q_OBJECT
public:
    /// \param name what the pane is called among the widgets.
    /// \param form the record; \param view shows it. Both go with the pane.
    RecordPane(const QString &name, std::unique_ptr<FormModel> form, FormView *view,
               QWidget *parent = nullptr);
    ~RecordPane() override;

    bool isEditing() const;

    bool shows(const ObjectPtr &record) const override;
    ObjectPtr record() const override { return model->record(); }
    bool print(QPrinter &printer) override;
    bool canSave() const override { return isActive() && isEditing(); }
    bool hasChanges() override;
    bool saveEdit() override;
    void dropEdit() override;
    bool staysWithoutRow() const override { return wasActedIn; }
    void clearController() override { keeper.finish(); }
    void setEmbedded() override;

    /// Goes on with the words that an earlier run of the program was left with.
    void resume(const QString &file, const RecordDraft &draft);
    void setEditMode();
    void setPreviewMode();
    void clickButtonEdit();
    void clickButtonBack();

protected:
    // What a kind of record does its own way.
    /// Whether an edit may begin; who is told why not, is told here.
    virtual bool mayEdit() { return true; }
    /// The user wants to edit what does not let itself be edited.
    virtual void editRefused() {}
    /// The check box was pressed; what is ticked is saved at once.
    virtual void tick(bool done) { Q_UNUSED(done) }
    /// The pane changed between words and fields.
    virtual void modeChanged() {}
    /// The form was read anew from the record.
    virtual void wasReadAnew() {}
    /// Whether a commit concerns what the pane shows: its record, and by default all of other kinds, whose
    /// names it may show.
    virtual bool isConcernedBy(const StoreChanges &changes) const;

    /// Between "Back" and "Edit".
    void addToHeader(QWidget *widget);
    /// Below the form.
    void addToBody(QWidget *widget);
    void observe(Observation observation) { observations.push_back(std::move(observation)); }
    /// Takes over what changed, once the program listens.
    void refreshSoon() { refreshTimer.start(0); }
    void statusChanged();
    /// Goes on with what an earlier run of the program was left with.
    void adoptDraft(const QString &file) { keeper.adopt(file); }
    void dropDraft() { keeper.drop(); }
    void beginEdit();
    /// A flat button of the header.
    static QToolButton *makeHeaderButton(const QString &name, const QString &icon, const QString &text);

    void keyPressEvent(QKeyEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    static void nameButton(QToolButton &button, const QString &icon, const QString &text);
    QWidget *makeHeader();
    void fitHeader();
    QWidget *makeBody();
    void observeStore();
    void recordChanged();
    FormModel::EditEnd finishEdit();
    void editAttempted();
    void handOver();
    void giveUpEdit();
    void ticked(bool done);

    std::unique_ptr<FormModel> model;
    DraftKeeper keeper;
    FormView *view;
    QHBoxLayout *headerLine = nullptr;
    QVBoxLayout *bodyColumn = nullptr;
    QPushButton *buttonEdit = nullptr;
    QToolButton *buttonBack = nullptr;
    QLabel *labelCreated = nullptr;
    /// The user has saved or ticked here.
    bool wasActedIn = false;
    QTimer refreshTimer;
    std::vector<Observation> observations;
};
