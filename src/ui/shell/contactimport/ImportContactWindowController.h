#pragma once

#include "contacts/CNContactStore.h"
#include "records/people/ImportableContacts.h"

#include <QPointer>
#include <QTimer>
#include <QWidget>

class EntityContactGroup;
class MarkedRowsView;
class PopUpButton;
class QLabel;
class QMimeData;
class QPushButton;

/// The window in which contacts of the desktop's address books, and of vCard files that are opened or
/// dropped, are marked and imported. It closes after the import, with a word on what has become of each.
class ImportContactWindowController : public QWidget
{
    Q_OBJECT
public:
    /// Opens the window with the contacts of all address books; the user is asked for access if nobody has
    /// asked before. One that is open comes to the front. \param joined the private group to which those
    /// belong who are imported; null for none.
    static ImportContactWindowController *open(QWidget *parent,
                                               const std::shared_ptr<EntityContactGroup> &joined = nullptr);
    /// Opens the window with the contacts of files, all of them marked; for files that were dropped
    /// somewhere.
    static ImportContactWindowController *
    openFiles(QWidget *parent, const QStringList &paths,
              const std::shared_ptr<EntityContactGroup> &joined = nullptr);
    /// The files of a drag that the window reads; empty for a drag of anything else.
    static QStringList filesIn(const QMimeData &data);

    ~ImportContactWindowController() override;
    /// It writes what was marked, and cannot be closed meanwhile.
    bool isBusy() const { return isSaving; }

Q_SIGNALS:
    /// The user wants to change what the program may use.
    void preferencesWanted();

protected:
    void changeEvent(QEvent *event) override;
    void closeEvent(QCloseEvent *event) override;
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dropEvent(QDropEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    /// Where contacts come from: some address books, or some files.
    struct Source
    {
        QString title;
        std::vector<CNContainer> containers;
        QStringList files;
        /// What the user had marked when another source was chosen.
        std::optional<ImportableContacts::Marks> marks = {};
    };

    explicit ImportContactWindowController(QWidget *parent);
    static ImportContactWindowController *shown(QWidget *parent, bool &isNew,
                                                const std::shared_ptr<EntityContactGroup> &joined);

    void setUp();
    QWidget *makeSources();
    QWidget *makeNoAccess();
    QWidget *makeButtons();
    void getAccsesToContact();
    void getAllContainers();
    void takeContainers(const CNContactStore::Containers &containers);
    void addFiles(const QStringList &paths);
    void chooseFiles();
    void showSource(int number);
    void keepMarks(Source &source);
    void startReading();
    void readOn();
    void getAllData();
    void showContent();
    void showCounts();
    void say(const QString &sentence);
    QString emptyWords() const;
    void clickButtonMarkAll();
    void clickButtonSave();
    void saveMarked();

    CNContactStore contactStore;
    ImportableContacts contacts;
    std::vector<Source> sources;
    /// The number of the one that is shown; -1 for none.
    int shownSource = -1;
    /// Address books that have not answered yet.
    int waiting = 0;
    /// Answers to former questions are of no use.
    int question = 0;
    bool isReadingContainers = false;
    bool isSaving = false;
    QStringList failures;
    QTimer reading;
    PopUpButton *popUpSources = nullptr;
    QWidget *noAccess = nullptr;
    MarkedRowsView *view = nullptr;
    QLabel *labelState = nullptr;
    QPushButton *buttonMarkAll = nullptr;
    QPushButton *buttonOpen = nullptr;
    QPushButton *buttonSave = nullptr;
};
