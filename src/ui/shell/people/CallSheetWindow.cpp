#include "shell/people/CallSheetWindow.h"

#include "foundation/Alert.h"
#include "foundation/DateFormatter.h"
#include "foundation/Localization.h"
#include "objectstore/StoreChanges.h"
#include "records/FormView.h"
#include "records/OpenLink.h"
#include "records/RecordWindow.h"
#include "records/ShellAlerts.h"
#include "records/Waiting.h"
#include "records/people/NoteForm.h"
#include "store/entities/MainContext.h"
#include "store/state/NotificationNames.h"
#include "widgets/Appearance.h"
#include "widgets/CheckButton.h"
#include "widgets/FormScroll.h"
#include "widgets/TextLabel.h"
#include "widgets/Theme.h"
#include "widgets/WindowPlace.h"

#include <QCloseEvent>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QVBoxLayout>

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

constexpr QSize firstSizeOfSheet(460, 600);
constexpr int sheetMargin = 2 * Theme::unit;

CallSheetWindow::CallSheetWindow(const ObjectPtr &called, QWidget *parent)
    : QWidget(parent, Qt::Dialog)
    , sheet(called)
    , column(new QVBoxLayout(this))
{
    setObjectName(u"CallSheetWindow"_s);
    setWindowTitle(localized(u"Call Sheet: %1"_s).arg(sheet.title()));
    setAttribute(Qt::WA_DeleteOnClose);
    // The user does nothing else to the record meanwhile.
    setWindowModality(Qt::WindowModal);
    column->setContentsMargins(sheetMargin, sheetMargin, sheetMargin, sheetMargin);
    column->setSpacing(Theme::unit);
    soon.setSingleShot(true);
    connect(&soon, &QTimer::timeout, this, &CallSheetWindow::load);
    observations.push_back(NotificationCenter::defaultCenter().addObserver(
        notifications::contextDidSave, [this](const StoreChanges &changes) {
            const auto shown = {EntityContacts::entityName, EntityCompany::entityName,
                                EntityPhone::entityName, EntityNote::entityName, EntityTask::entityName};
            if (std::ranges::any_of(shown, [&](auto entity) { return changes.concerns(entity); }))
                soon.start(0);
        }));
    resize(firstSizeOfSheet);
    load();
}

void CallSheetWindow::showWindow()
{
    placeOverParent(*this);
    show();
    raise();
    activateWindow();
}

QVBoxLayout *CallSheetWindow::addBlock(const QString &heading)
{
    auto *lines = static_cast<QVBoxLayout *>(content->layout());
    lines->addWidget(makeTextLabel(heading, Theme::FontRole::SmallStrong, Theme::secondaryText));
    auto *block = new QVBoxLayout;
    block->setContentsMargins(0, 0, 0, sheetMargin);
    block->setSpacing(Theme::unit);
    lines->addLayout(block);
    return block;
}

static void addSentence(QVBoxLayout &block, const QString &sentence)
{
    block.addWidget(makeTextLabel(sentence, Theme::FontRole::Body, Theme::secondaryText));
}

static void addMore(QVBoxLayout &block, std::size_t count)
{
    if (count > 0)
        addSentence(block, localized(u"%1 more"_s).arg(count));
}

static std::vector<QWidget *> stopsOf(const QWidget &page)
{
    std::vector<QWidget *> stops;
    for (auto *one : page.findChildren<QWidget *>()) {
        if (!one->isHidden() && (one->focusPolicy() & Qt::TabFocus) != 0)
            stops.push_back(one);
    }
    return stops;
}

/// The keys and the eyes stay where they are on the page: what was ticked off is followed by its neighbour.
static void takePlaceOf(const QScrollArea &former, QScrollArea &scroll)
{
    const std::vector<QWidget *> formerStops = stopsOf(former);
    const auto place = std::ranges::find(formerStops, former.window()->focusWidget());
    const std::vector<QWidget *> stops = stopsOf(scroll);
    if (place != formerStops.end() && !stops.empty()) {
        const auto number = static_cast<std::size_t>(place - formerStops.begin());
        stops[std::min(number, stops.size() - 1)]->setFocus();
    }
    // It is laid out first.
    QTimer::singleShot(0, &scroll, [&scroll, value = former.verticalScrollBar()->value()] {
        scroll.verticalScrollBar()->setValue(value);
    });
}

void CallSheetWindow::load()
{
    // A question may stand over it.
    if (Alert::isAsking())
        return soon.start(Waiting::lookInterval);
    if (sheet.isGone()) {
        // Who was called is no more, but what was said may be still being written down.
        if (!findChild<RecordWindow *>())
            close();
        return;
    }
    auto *const former =
        column->count() > 0 ? static_cast<QScrollArea *>(column->itemAt(0)->widget()) : nullptr;
    content = new QWidget;
    auto *lines = new QVBoxLayout(content);
    lines->setContentsMargins({});
    lines->setSpacing(Theme::unit);
    QVBoxLayout *numbers = addBlock(localized(u"Numbers"_s));
    for (const CallSheet::Number &number : sheet.numbers())
        addNumber(*numbers, number);
    addMore(*numbers, sheet.moreNumbers());
    if (numbers->isEmpty())
        addSentence(*numbers, localized(u"There is no number."_s));
    QVBoxLayout *calls = addBlock(localized(u"To talk about"_s));
    for (const TaskPtr &call : sheet.calls())
        addCall(*calls, call);
    if (calls->isEmpty())
        addSentence(*calls, localized(u"No open Email/Call."_s));
    QVBoxLayout *notes = addBlock(localized(u"Last notes"_s));
    for (const auto &note : sheet.lastNotes())
        addNote(*notes, *note);
    addMore(*notes, sheet.moreNotes());
    if (notes->isEmpty())
        addSentence(*notes, localized(u"Nothing was noted yet."_s));
    lines->addStretch(1);
    auto *scroll = new FormScroll(content);
    column->insertWidget(0, scroll, 1);
    if (former) {
        takePlaceOf(*former, *scroll);
        column->removeWidget(former);
        former->hide();
        former->deleteLater();
    }
}

void CallSheetWindow::addNumber(QVBoxLayout &block, const CallSheet::Number &number)
{
    auto *label = makeTextLabel({}, Theme::FontRole::Body, Theme::accent);
    label->setObjectName(u"labelNumber"_s);
    label->setTextFormat(Qt::RichText);
    Appearance::follow(*label, [label, words = firstPart(number.words).toHtmlEscaped(),
                                owner = firstPart(number.owner).toHtmlEscaped()] {
        label->setText(
            u"<a href=\"link\" style=\"color:%1\">%2</a>&nbsp; <span style=\"color:%3\">%4</span>"_s.arg(
                Theme::selectedText.name(), words, Theme::secondaryText.name(), owner));
    });
    label->setTextInteractionFlags(Qt::LinksAccessibleByMouse | Qt::LinksAccessibleByKeyboard);
    label->setFocusPolicy(Qt::StrongFocus);
    label->setAccessibleName(number.owner + u": "_s + number.words);
    connect(label, &QLabel::linkActivated, this,
            [number] { openLink(number.link, number.owner, number.words); });
    block.addWidget(label);
}

void CallSheetWindow::addCall(QVBoxLayout &block, const TaskPtr &call)
{
    using Style = DateFormatter::Style;
    auto *check = new CheckButton;
    check->setObjectName(u"checkCall"_s);
    check->setAccessibleName(firstPart(call->title()));
    connect(check, &QAbstractButton::clicked, this, [this, call] { tick(call); });
    QString words = readablePart(call->title());
    if (call->dueDate())
        words += u" · "_s + DateFormatter::string(*call->dueDate(), Style::Medium, Style::Short,
                                                  DateFormatter::Language::OfWords);
    auto *row = new QHBoxLayout;
    row->setSpacing(Theme::unit);
    row->addWidget(check, 0, Qt::AlignTop);
    // What its calendar does not let go stands there without a box, as in the lists.
    QSizePolicy policy = check->sizePolicy();
    policy.setRetainSizeWhenHidden(true);
    check->setSizePolicy(policy);
    if (!call->allowsContentModifications().value_or(true))
        check->hide();
    row->addWidget(makeTextLabel(words, Theme::FontRole::Body, Theme::text), 1);
    block.addLayout(row);
    if (!call->details().isEmpty())
        block.addWidget(
            makeTextLabel(readablePart(call->details()), Theme::FontRole::Small, Theme::secondaryText));
}

void CallSheetWindow::addNote(QVBoxLayout &block, const EntityNote &note)
{
    QString words = firstPart(note.title());
    if (note.creationDate())
        words +=
            u" · "_s + DateFormatter::string(*note.creationDate(), DateFormatter::Style::Medium,
                                             DateFormatter::Style::None, DateFormatter::Language::OfWords);
    block.addWidget(makeTextLabel(words, Theme::FontRole::Body, Theme::text));
    if (!note.detail().isEmpty())
        block.addWidget(
            makeTextLabel(readablePart(note.detail()), Theme::FontRole::Small, Theme::secondaryText));
}

void CallSheetWindow::tick(const TaskPtr &call)
{
    if (CallSheet::tick(call))
        offerNote(call);
    else
        soon.start(0);
}

/// It asks before typed words go, and keeps them over a crash, as any new record does.
void CallSheetWindow::offerNote(const TaskPtr &call)
{
    auto form = std::make_unique<NoteForm>();
    form->values.title = call->title();
    form->values.contact = sheet.noteContact(call);
    form->values.company = sheet.company();
    auto *view = new FormView(*form);
    auto *window =
        new RecordWindow(u"WindowAddNewNote"_s, localized(u"What Was Said"_s), std::move(form), view, this);
    window->setAttribute(Qt::WA_DeleteOnClose);
    connect(window, &QObject::destroyed, &soon, [this] { soon.start(0); });
    window->showWindow();
    window->beginInEmptyText();
}

/// The notes that are being written go with the sheet, so they ask as well.
void CallSheetWindow::closeEvent(QCloseEvent *event)
{
    LeaveGate gate;
    const auto notes = findChildren<RecordWindow *>();
    for (RecordWindow *note : notes)
        gate.add(*note, [note] { note->showWindow(); });
    event->setAccepted(gate.mayLeave());
}

void CallSheetWindow::keyPressEvent(QKeyEvent *event)
{
    // A call that was ticked by mistake is not on the sheet any more.
    if (event->matches(QKeySequence::Undo))
        ShellAlerts::presentError(mainContext().undo());
    else if (event->matches(QKeySequence::Redo))
        ShellAlerts::presentError(mainContext().redo());
    else if (event->key() == Qt::Key_Escape)
        close();
    else
        QWidget::keyPressEvent(event);
}
