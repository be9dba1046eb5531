#include "records/RecordPane.h"

#include "foundation/Localization.h"
#include "records/FormView.h"
#include "records/PaperText.h"
#include "records/ShellAlerts.h"
#include "records/Waiting.h"
#include "store/state/NotificationNames.h"
#include "widgets/Appearance.h"
#include "widgets/Direction.h"
#include "widgets/FormScroll.h"
#include "widgets/Icons.h"
#include "widgets/KeyTip.h"
#include "widgets/Theme.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <QToolButton>

using namespace Qt::Literals::StringLiterals;

constexpr int paneMargin = 2 * Theme::unit;
/// The pane ends where the tool bar does.
constexpr int trailingMargin = Theme::contentMargin;
/// In a very wide pane the form stays a column that the eye can follow.
constexpr int widestForm = 860;

RecordPane::RecordPane(const QString &name, std::unique_ptr<FormModel> form, FormView *formView,
                       QWidget *parent)
    : DetailViewController(parent)
    , model(std::move(form))
    , keeper(*model)
    , view(formView)
{
    setObjectName(name);
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(1, 0, 0, 0);
    column->setSpacing(0);
    QWidget *header = makeHeader();
    header->setMaximumWidth(widestForm);
    column->addWidget(header);
    column->addWidget(makeBody(), 1);
    connect(view, &FormView::accepted, this, &RecordPane::clickButtonEdit);
    connect(view, &FormView::doneToggled, this, &RecordPane::ticked);
    connect(view, &FormView::editWanted, this, &RecordPane::editAttempted);
    connect(view, &FormView::linkOpened, this, &RecordPane::recordWanted);
    connect(view, &FormView::changed, this, [this] { keeper.formChanged(); });
    observeStore();
    view->setEditing(false);
    statusChanged();
}

/// The form is asked by its view until that has gone.
RecordPane::~RecordPane()
{
    delete view;
}

// The parts

QToolButton *RecordPane::makeHeaderButton(const QString &name, const QString &icon, const QString &text)
{
    auto *button = new QToolButton;
    button->setObjectName(name);
    button->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    button->setAutoRaise(true);
    button->setFocusPolicy(Qt::StrongFocus);
    nameButton(*button, icon, text);
    return button;
}

void RecordPane::nameButton(QToolButton &button, const QString &icon, const QString &text)
{
    button.setIcon(icon.isEmpty() ? QIcon() : Icons::icon(icon, Theme::accent));
    button.setText(text);
    button.setAccessibleName(text);
    button.setToolTip(text);
}

QWidget *RecordPane::makeHeader()
{
    auto *header = new QWidget;
    headerLine = new QHBoxLayout(header);
    headerLine->setContentsMargins(
        Direction::margins(*this, paneMargin, Theme::unit, trailingMargin, Theme::unit));
    headerLine->setSpacing(Theme::unit);
    buttonBack = makeHeaderButton(u"buttonBack"_s, isRightToLeft() ? u"chevron-right"_s : u"chevron-left"_s,
                                  localized(u"Back"_s));
    buttonBack->setToolTip(keytip::of(localized(u"Back"_s), Qt::Key_Escape));
    connect(buttonBack, &QToolButton::clicked, this, &RecordPane::clickButtonBack);
    buttonEdit = new QPushButton;
    buttonEdit->setObjectName(u"buttonEdit"_s);
    buttonEdit->setAutoDefault(false);
    connect(buttonEdit, &QPushButton::clicked, this, &RecordPane::clickButtonEdit);
    headerLine->addWidget(buttonBack);
    headerLine->addStretch(1);
    headerLine->addWidget(buttonEdit);
    return header;
}

void RecordPane::addToHeader(QWidget *widget)
{
    headerLine->insertWidget(headerLine->count() - 1, widget);
    setTabOrder(buttonBack, widget);
    setTabOrder(widget, buttonEdit);
}

/// Where the words have no room, the icons stand for them; their tips have the words.
void RecordPane::fitHeader()
{
    const auto buttons = headerLine->parentWidget()->findChildren<QToolButton *>();
    for (const Qt::ToolButtonStyle style : {Qt::ToolButtonTextBesideIcon, Qt::ToolButtonIconOnly}) {
        for (QToolButton *button : buttons) {
            if (!button->icon().isNull())
                button->setToolButtonStyle(style);
        }
        headerLine->invalidate();
        if (headerLine->sizeHint().width() <= width())
            return;
    }
}

void RecordPane::resizeEvent(QResizeEvent *event)
{
    DetailViewController::resizeEvent(event);
    fitHeader();
}

/// It has the width of the form above it.
void RecordPane::addToBody(QWidget *widget)
{
    widget->setMaximumWidth(view->maximumWidth());
    bodyColumn->insertWidget(bodyColumn->indexOf(labelCreated), widget);
}

QWidget *RecordPane::makeBody()
{
    labelCreated = new QLabel;
    labelCreated->setObjectName(u"labelCreated"_s);
    Appearance::setFont(*labelCreated, Theme::FontRole::Small);
    labelCreated->setAlignment(Qt::AlignCenter);
    Appearance::colourText(*labelCreated, Theme::secondaryText);
    auto *body = new QWidget;
    bodyColumn = new QVBoxLayout(body);
    bodyColumn->setContentsMargins(Direction::margins(*this, paneMargin, 0, trailingMargin, paneMargin));
    bodyColumn->setSpacing(paneMargin);
    for (QWidget *part : {static_cast<QWidget *>(view), static_cast<QWidget *>(labelCreated)}) {
        part->setMaximumWidth(widestForm - paneMargin - trailingMargin);
        bodyColumn->addWidget(part);
    }
    bodyColumn->addStretch(1);
    auto *scroll = new FormScroll(body);
    scroll->keepRoomForBar();
    return scroll;
}

// What happens elsewhere

void RecordPane::observeStore()
{
    refreshTimer.setSingleShot(true);
    connect(&refreshTimer, &QTimer::timeout, this, &RecordPane::recordChanged);
    NotificationCenter &center = NotificationCenter::defaultCenter();
    observe(center.addObserver(notifications::contextDidSave, [this](const StoreChanges &changes) {
        if (isConcernedBy(changes))
            refreshSoon();
    }));
    observe(center.addObserver(notifications::iCloudChange, [this] { refreshSoon(); }));
    observe(center.addObserver(notifications::keySave, [this] {
        if (canSave())
            finishEdit();
    }));
}

bool RecordPane::print(QPrinter &printer)
{
    PaperText::print(PaperText::ofRecord(*model), printer);
    return true;
}

bool RecordPane::isConcernedBy(const StoreChanges &changes) const
{
    const ObjectPtr own = record();
    const auto isShown = [&](const ObjectPtr &object) {
        return object == own || !own || object->entity().name() != own->entity().name();
    };
    return changes.isUnknown || std::ranges::any_of(changes.inserted, isShown) ||
           std::ranges::any_of(changes.deleted, isShown) ||
           std::ranges::any_of(changes.updated, isShown, &StoreChanges::Update::object);
}

/// What the user has entered stays, unless its record is gone or cannot be changed any more; the rest
/// follows.
void RecordPane::recordChanged()
{
    // What has just been seen is not looked at again.
    refreshTimer.stop();
    // The call that asks goes on with the form as it was.
    if (Waiting::isForAnswer())
        return refreshTimer.start(Waiting::lookInterval);
    if (model->isGone()) {
        handOver();
        Q_EMIT recordRemoved();
    } else if (isEditing()) {
        model->followRow();
        model->noteBelongings();
        if (model->allowsEditing())
            return statusChanged();
        handOver();
        dropEdit();
    } else {
        if (model->isDifferent()) {
            model->rollback();
            wasReadAnew();
        }
        // Names of linked records can be others.
        view->refresh();
        statusChanged();
    }
}

bool RecordPane::shows(const ObjectPtr &other) const
{
    return other && model->record() == other;
}

// Modes

bool RecordPane::isEditing() const
{
    return view->isEditing();
}

void RecordPane::setEditMode()
{
    if (model->canEdit() && mayEdit())
        beginEdit();
}

void RecordPane::beginEdit()
{
    model->noteBelongings();
    view->setEditing(true);
    statusChanged();
    modeChanged();
    view->focusTitle();
}

void RecordPane::setPreviewMode()
{
    view->setEditing(false);
    statusChanged();
    modeChanged();
}

/// The way back of one beside its list is out of the edit.
void RecordPane::setEmbedded()
{
    DetailViewController::setEmbedded();
    nameButton(*buttonBack, {}, localized(u"Cancel"_s));
    statusChanged();
}

void RecordPane::statusChanged()
{
    setAccessibleName(model->title());
    buttonEdit->setText(localized(isEditing() ? u"DoneButton"_s : u"Edit"_s));
    buttonEdit->setToolTip(keytip::of(
        buttonEdit->text(), isEditing() ? QKeySequence(Qt::CTRL | Qt::Key_Return) : Qt::Key_Return));
    buttonEdit->setDefault(isEditing());
    buttonEdit->setVisible(model->allowsEditing());
    buttonEdit->setEnabled(isEditing() || model->canEdit());
    buttonBack->setVisible(!isEmbedded() || isEditing());
    setFocusProxy(buttonEdit->isVisibleTo(this) && buttonEdit->isEnabled()
                      ? static_cast<QWidget *>(buttonEdit)
                      : buttonBack);
    const QString created = model->creationText();
    labelCreated->setVisible(!created.isEmpty());
    labelCreated->setText(created);
}

// What the user does

void RecordPane::clickButtonEdit()
{
    if (isEditing())
        finishEdit();
    else
        setEditMode();
}

FormModel::EditEnd RecordPane::finishEdit()
{
    using EditEnd = FormModel::EditEnd;
    if (!model->canSave()) {
        view->focusTitle();
        return EditEnd::Refused;
    }
    wasActedIn = true;
    const EditEnd end = model->finishEdit();
    switch (end) {
    case EditEnd::Refused:
        break;
    case EditEnd::Gone:
        recordChanged();
        break;
    case EditEnd::Removed:
        keeper.drop();
        Q_EMIT recordRemoved();
        break;
    case EditEnd::Unchanged:
    case EditEnd::Saved:
        keeper.drop();
        setPreviewMode();
        setFocus();
    }
    return end;
}

void RecordPane::clickButtonBack()
{
    if (isEmbedded() && isEditing())
        giveUpEdit();
    else
        Q_EMIT backRequested();
}

/// The tick keeps all that stands in the form, which has to be whole for it.
void RecordPane::ticked(bool done)
{
    if (isEditing() && !model->canSave()) {
        view->refresh();
        return view->focusTitle();
    }
    // Until then nothing has happened.
    view->refresh();
    wasActedIn = true;
    tick(done);
    // What is done is only looked at.
    if (isEditing() && !model->canEdit())
        setPreviewMode();
    statusChanged();
    view->refresh();
}

void RecordPane::editAttempted()
{
    if (model->allowsEditing())
        setEditMode();
    else
        editRefused();
}

bool RecordPane::hasChanges()
{
    return isEditing() && !model->isGone() && model->isChanged();
}

bool RecordPane::saveEdit()
{
    // The record may have gone while the user was asked: then its text is handed over, which is no way out.
    if (model->isGone())
        return false;
    if (!model->canSave())
        ShellAlerts::tellOfMissingTitle(model->reasonNotToSave());
    const FormModel::EditEnd end = finishEdit();
    return end != FormModel::EditEnd::Refused && end != FormModel::EditEnd::Gone;
}

/// The keys leave the fields, but not for a pane that they were never in.
void RecordPane::dropEdit()
{
    const bool hasKeys = isAncestorOf(window()->focusWidget());
    keeper.drop();
    if (!model->isGone())
        model->rollback();
    setPreviewMode();
    if (hasKeys)
        setFocus();
}

/// What was typed for a record that cannot take it any more is offered as a new one.
void RecordPane::handOver()
{
    if (!isEditing())
        return;
    keeper.write();
    if (keeper.file().isEmpty())
        return;
    Q_EMIT textLeft(keeper.file());
    keeper.adopt({});
}

void RecordPane::resume(const QString &file, const RecordDraft &draft)
{
    keeper.adopt(file);
    model->resume(draft);
    if (model->isChanged())
        beginEdit();
    else
        keeper.drop();
}

/// An edit ends, and the pane stays.
void RecordPane::giveUpEdit()
{
    LeaveGate gate;
    gate.add(*this, [] {});
    if (gate.mayLeave() && isEditing() && !model->isGone())
        dropEdit();
}

void RecordPane::keyPressEvent(QKeyEvent *event)
{
    const bool isReturn = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (event->key() == Qt::Key_Escape)
        isEditing() ? giveUpEdit() : clickButtonBack();
    else if (isReturn && !isEditing())
        editAttempted();
    else if (isReturn && event->modifiers().testFlag(Qt::ControlModifier))
        clickButtonEdit();
    else
        DetailViewController::keyPressEvent(event);
}
