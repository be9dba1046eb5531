#include "shell/contactimport/ImportContactWindowController.h"

#include "foundation/Alert.h"
#include "foundation/Localization.h"
#include "foundation/Log.h"
#include "records/MarkedRowsView.h"
#include "widgets/Accessibility.h"
#include "widgets/CheckList.h"
#include "widgets/LongWork.h"
#include "widgets/PngPicture.h"
#include "widgets/PopUpButton.h"
#include "widgets/TextLabel.h"
#include "widgets/WindowPlace.h"

#include <QCloseEvent>
#include <QDropEvent>
#include <QFileDialog>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMimeData>
#include <QPushButton>
#include <QVBoxLayout>

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

constexpr QSize firstSize(460, 560);
constexpr int windowMargin = 2 * Theme::unit;
/// Milliseconds of reading between two looks at what the user does.
constexpr int readingTime = 10;
constexpr int mostSentences = 3;

static bool isAllowed()
{
    return CNContactStore::authorizationStatusForEntityType(CNEntityType::Contacts) ==
           CNAuthorizationStatus::Authorized;
}

using JoinedGroup = std::shared_ptr<EntityContactGroup>;

ImportContactWindowController *ImportContactWindowController::shown(QWidget *parent, bool &isNew,
                                                                    const JoinedGroup &joined)
{
    static QPointer<ImportContactWindowController> present;
    isNew = !present || !present->isVisible();
    if (isNew) {
        present = new ImportContactWindowController(parent);
        placeOverParent(*present);
    }
    present->contacts.setJoinedGroup(joined);
    present->show();
    present->raise();
    present->activateWindow();
    return present;
}

ImportContactWindowController *ImportContactWindowController::open(QWidget *parent, const JoinedGroup &joined)
{
    bool isNew = false;
    auto *window = shown(parent, isNew, joined);
    if (isNew)
        window->getAccsesToContact();
    return window;
}

ImportContactWindowController *
ImportContactWindowController::openFiles(QWidget *parent, const QStringList &paths, const JoinedGroup &joined)
{
    bool isNew = false;
    auto *window = shown(parent, isNew, joined);
    window->addFiles(paths);
    // The drag ends first: the user may be asked for access.
    if (isNew)
        QTimer::singleShot(0, window, &ImportContactWindowController::getAccsesToContact);
    return window;
}

ImportContactWindowController::ImportContactWindowController(QWidget *parent)
    : QWidget(parent, Qt::Dialog)
{
    setObjectName(u"ImportContactWindow"_s);
    setWindowTitle(localized(u"Import contacts"_s));
    setAttribute(Qt::WA_DeleteOnClose);
    setAcceptDrops(true);
    reading.setInterval(0);
    connect(&reading, &QTimer::timeout, this, &ImportContactWindowController::readOn);
    setUp();
    resize(firstSize);
    showContent();
}

ImportContactWindowController::~ImportContactWindowController() = default;

void ImportContactWindowController::setUp()
{
    view = new MarkedRowsView(contacts.list(), {localized(u"Contacts"_s), {}});
    view->list().setObjectName(u"tableContacts"_s);
    // Files that are dropped there are for the window, too.
    view->searchField().setAcceptDrops(false);
    connect(view, &MarkedRowsView::changed, this, &ImportContactWindowController::showCounts);
    labelState = makeTextLabel({}, Theme::FontRole::Small, Theme::secondaryText);
    labelState->setObjectName(u"labelState"_s);
    labelState->setAccessibleName(localized(u"State of the import"_s));
    setAccessibleDescription(localized(u"Mark the contacts that are to be imported."_s));
    noAccess = makeNoAccess();
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(windowMargin, windowMargin, windowMargin, windowMargin);
    column->setSpacing(Theme::unit);
    column->addWidget(makeSources());
    column->addWidget(view, 1);
    column->addWidget(noAccess, 1);
    column->addWidget(labelState);
    column->addWidget(makeButtons());
}

QWidget *ImportContactWindowController::makeSources()
{
    popUpSources = new PopUpButton(localized(u"Contacts from"_s));
    popUpSources->setObjectName(u"popUpSources"_s);
    connect(popUpSources, &QComboBox::activated, this, &ImportContactWindowController::showSource);
    buttonOpen = new QPushButton(localized(u"Open..."_s));
    buttonOpen->setObjectName(u"buttonOpen"_s);
    buttonOpen->setToolTip(
        localized(u"Read contacts from vCard or CSV files; they can also be dropped here."_s));
    connect(buttonOpen, &QPushButton::clicked, this, &ImportContactWindowController::chooseFiles);
    auto *row = new QWidget;
    auto *line = new QHBoxLayout(row);
    line->setContentsMargins(0, 0, 0, 0);
    line->addWidget(popUpSources, 1);
    line->addWidget(buttonOpen, 0, Qt::AlignTrailing);
    return row;
}

QWidget *ImportContactWindowController::makeNoAccess()
{
    auto *pane = new QWidget;
    pane->setObjectName(u"paneNoAccess"_s);
    auto *title =
        makeTextLabel(localized(u"No access to contacts"_s), Theme::FontRole::BodyStrong, Theme::text);
    title->setObjectName(u"labelNoAccess"_s);
    title->setAlignment(Qt::AlignCenter);
    auto *words = makeTextLabel(
        localized(u"Allow it in the Preferences to see your address books, or open a file of contacts."_s),
        Theme::FontRole::Body, Theme::secondaryText);
    words->setAlignment(Qt::AlignCenter);
    auto *button = new QPushButton(localized(u"Preferences"_s));
    button->setObjectName(u"buttonPreferences"_s);
    connect(button, &QPushButton::clicked, this, [this] {
        close();
        Q_EMIT preferencesWanted();
    });
    auto *column = new QVBoxLayout(pane);
    column->setSpacing(2 * Theme::unit);
    column->addStretch(1);
    column->addWidget(title);
    column->addWidget(words);
    column->addWidget(button, 0, Qt::AlignHCenter);
    column->addStretch(1);
    return pane;
}

QWidget *ImportContactWindowController::makeButtons()
{
    buttonMarkAll = new QPushButton;
    buttonMarkAll->setObjectName(u"buttonMarkAll"_s);
    buttonMarkAll->setAccessibleDescription(localized(u"Marks or unmarks all contacts of the list"_s));
    connect(buttonMarkAll, &QPushButton::clicked, this, &ImportContactWindowController::clickButtonMarkAll);
    auto *buttonCancel = new QPushButton(localized(u"Cancel"_s));
    buttonCancel->setObjectName(u"buttonCancel"_s);
    connect(buttonCancel, &QPushButton::clicked, this, &QWidget::close);
    buttonSave = new QPushButton(localized(u"Import"_s));
    buttonSave->setObjectName(u"buttonSave"_s);
    buttonSave->setDefault(true);
    connect(buttonSave, &QPushButton::clicked, this, &ImportContactWindowController::clickButtonSave);
    auto *row = new QWidget;
    auto *line = new QHBoxLayout(row);
    line->setContentsMargins(0, 0, 0, 0);
    line->addWidget(buttonMarkAll);
    line->addStretch(1);
    line->addWidget(buttonCancel);
    line->addWidget(buttonSave);
    return row;
}

// Where contacts come from

void ImportContactWindowController::getAccsesToContact()
{
    contactStore.requestAccess(CNEntityType::Contacts, [this](bool isGranted) {
        if (isGranted)
            getAllContainers();
        else
            showContent();
    });
}

void ImportContactWindowController::getAllContainers()
{
    isReadingContainers = true;
    showContent();
    contactStore.containers([this](const Result<CNContactStore::Containers> &found) {
        isReadingContainers = false;
        if (!found)
            failures.append(found.error().message);
        takeContainers(found ? found.value() : CNContactStore::Containers());
    });
}

/// In front of the files that were opened meanwhile.
void ImportContactWindowController::takeContainers(const CNContactStore::Containers &containers)
{
    std::vector<Source> all;
    if (containers.size() > 1)
        all.push_back({localized(u"All address books"_s), containers, {}});
    for (const CNContainer &container : containers)
        all.push_back({container.name, {container}, {}});
    const bool hadSources = !sources.empty();
    const int added = static_cast<int>(all.size());
    for (int place = 0; place < added; ++place)
        popUpSources->insertItem(place, all[static_cast<std::size_t>(place)].title);
    sources.insert(sources.begin(), all.begin(), all.end());
    if (shownSource >= 0)
        shownSource += added;
    if (added > 0 && !hadSources)
        showSource(0);
    else
        showContent();
}

void ImportContactWindowController::addFiles(const QStringList &paths)
{
    if (paths.isEmpty() || isSaving)
        return;
    const QString title =
        paths.size() == 1 ? QFileInfo(paths.first()).fileName() : localizedCount(u"%1 files"_s, paths.size());
    sources.push_back({title, {}, paths});
    popUpSources->addItem(title);
    showSource(popUpSources->count() - 1);
}

void ImportContactWindowController::chooseFiles()
{
    auto *dialog = new QFileDialog(this, localized(u"Open Contact Files"_s));
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setFileMode(QFileDialog::ExistingFiles);
    dialog->setNameFilters(
        {localized(u"vCards and tables"_s) + u" ("_s + ContactCards::patternsOfFiles() + u" *.csv *.CSV)"_s,
         localized(u"All files"_s) + u" (*)"_s});
    connect(dialog, &QFileDialog::filesSelected, this, &ImportContactWindowController::addFiles);
    dialog->open();
}

void ImportContactWindowController::showSource(int number)
{
    if (isSaving)
        return;
    popUpSources->setCurrentIndex(number);
    if (shownSource >= 0)
        keepMarks(sources.at(static_cast<std::size_t>(shownSource)));
    shownSource = number;
    const Source &source = sources.at(static_cast<std::size_t>(number));
    failures.clear();
    contacts.clear();
    reading.stop();
    const int asked = ++question;
    waiting = static_cast<int>(source.containers.size());
    for (const QString &path : source.files)
        contacts.add(ContactCards::ofFile(path));
    for (const CNContainer &container : source.containers) {
        contactStore.cards(container, [this, asked, container](const Result<QByteArray> &cards) {
            if (asked != question)
                return;
            --waiting;
            if (!cards)
                failures.append(cards.error().message);
            else if (!cards.value().isEmpty())
                contacts.add(ContactCards::ofText(container.name, cards.value()));
            startReading();
        });
    }
    startReading();
}

/// What was marked but has not been read again stays marked.
void ImportContactWindowController::keepMarks(Source &source)
{
    ImportableContacts::Marks marks = contacts.marks();
    if (source.marks)
        marks.insert(source.marks->begin(), source.marks->end());
    // What is not read yet can have no marks of the user.
    if (!contacts.isReading() || source.marks)
        source.marks = std::move(marks);
}

void ImportContactWindowController::startReading()
{
    if (contacts.isReading())
        reading.start();
    showContent();
}

void ImportContactWindowController::readOn()
{
    if (contacts.readSome(readingTime)) {
        say(localized(u"Reading: %1 %"_s).arg(contacts.percentRead()));
        return;
    }
    reading.stop();
    getAllData();
}

/// Who opens a file wants what is in it; of address books the user picks some.
void ImportContactWindowController::getAllData()
{
    Source &source = sources[static_cast<std::size_t>(shownSource)];
    if (source.marks)
        contacts.mark(*source.marks);
    else if (!source.files.isEmpty())
        contacts.list().markShown(true);
    if (waiting == 0)
        source.marks.reset();
    showContent();
    if (waiting == 0)
        Accessibility::announce(view->list(), labelState->text());
}

// What is shown

QString ImportContactWindowController::emptyWords() const
{
    if (isReadingContainers || waiting > 0)
        return localized(u"Reading your address books"_s);
    if (contacts.isReading())
        return localized(u"Reading the contacts"_s);
    return sources.empty()
               ? localized(u"There is no address book. Open a file of contacts, or drop it here."_s)
               : localized(u"There is no contact that could be imported."_s);
}

void ImportContactWindowController::showContent()
{
    const bool isBarred = sources.empty() && !isReadingContainers &&
                          CNContactStore::authorizationStatusForEntityType(CNEntityType::Contacts) ==
                              CNAuthorizationStatus::Denied;
    noAccess->setVisible(isBarred);
    view->setVisible(!isBarred);
    popUpSources->setVisible(!sources.empty());
    view->setEmptyWords(emptyWords());
    showCounts();
}

void ImportContactWindowController::say(const QString &sentence)
{
    labelState->setText(sentence);
    labelState->setVisible(!sentence.isEmpty());
}

void ImportContactWindowController::showCounts()
{
    const std::size_t marked = contacts.list().marked().size();
    const bool areAllMarked = contacts.list().areAllShownMarked();
    buttonMarkAll->setText(localized(areAllMarked ? u"Unmark all"_s : u"Mark all"_s));
    buttonMarkAll->setEnabled(contacts.list().canMarkShown());
    buttonSave->setEnabled(marked > 0 && !contacts.isReading() && !isSaving);
    QStringList sentences;
    if (contacts.list().entryCount() > 0)
        sentences.append(
            localized(u"%1 of %2 contacts marked."_s).arg(marked).arg(contacts.list().entryCount()));
    const QStringList problems = failures + contacts.problems();
    sentences += problems.mid(0, mostSentences);
    if (problems.size() > mostSentences)
        sentences.append(localizedCount(u"And %1 more of that kind."_s, problems.size() - mostSentences));
    labelState->setToolTip(readablePart(problems.mid(0, 20).join(u'\n')));
    say(sentences.join(u'\n'));
}

// What the user does

void ImportContactWindowController::clickButtonMarkAll()
{
    contacts.list().markShown(!contacts.list().areAllShownMarked());
    view->showMarks();
    showCounts();
}

/// The button is drawn as pressed first.
void ImportContactWindowController::clickButtonSave()
{
    constexpr auto drawing = std::chrono::milliseconds(10);
    if (isSaving || !buttonSave->isEnabled())
        return;
    isSaving = true;
    showCounts();
    QTimer::singleShot(drawing, this, &ImportContactWindowController::saveMarked);
}

void ImportContactWindowController::saveMarked()
{
    ContactImportAccount account;
    Log::line(u"Start Import"_s);
    {
        LongWork work(contacts.list().marked().size(), localized(u"Importing the contacts"_s));
        account = contacts.import(pngPictureOf, [&work] { return work.step(); });
    }
    Log::line(u"End Import"_s);
    isSaving = false;
    if (!account.isSaved) {
        showCounts();
        return;
    }
    const QStringList sentences = account.sentences();
    Alert::run({localized(u"Import contacts"_s),
                sentences.first(),
                sentences.mid(1).join(u'\n'),
                {localized(u"OK"_s)}});
    close();
}

/// While the import runs the window is needed, and so is what it holds.
void ImportContactWindowController::closeEvent(QCloseEvent *event)
{
    event->setAccepted(!isSaving);
}

/// Access may have been allowed meanwhile.
void ImportContactWindowController::changeEvent(QEvent *event)
{
    const bool isBack = event->type() == QEvent::ActivationChange && isActiveWindow();
    if (isBack && noAccess && noAccess->isVisible() && isAllowed())
        getAllContainers();
    QWidget::changeEvent(event);
}

QStringList ImportContactWindowController::filesIn(const QMimeData &data)
{
    QStringList paths;
    for (const QUrl &url : data.urls()) {
        const QString path = url.toLocalFile();
        const bool isTable = path.endsWith(u".csv"_s, Qt::CaseInsensitive);
        if (url.isLocalFile() && (isTable || ContactCards::isFileOfCards(path)))
            paths.append(path);
    }
    return paths;
}

void ImportContactWindowController::dragEnterEvent(QDragEnterEvent *event)
{
    if (!filesIn(*event->mimeData()).isEmpty() && !isSaving)
        event->acceptProposedAction();
}

void ImportContactWindowController::dropEvent(QDropEvent *event)
{
    event->acceptProposedAction();
    addFiles(filesIn(*event->mimeData()));
}

void ImportContactWindowController::keyPressEvent(QKeyEvent *event)
{
    auto *button = qobject_cast<QPushButton *>(focusWidget());
    if (event->key() == Qt::Key_Escape)
        close();
    else if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)
        button ? button->click() : clickButtonSave();
    else
        QWidget::keyPressEvent(event);
}
