#include "shell/details/TaskDetailViewController.h"

#include "foundation/DateFormatter.h"
#include "foundation/Localization.h"
#include "records/RepeatBan.h"
#include "shell/ShellAlerts.h"
#include "shell/Waiting.h"
#include "shell/details/DetailStack.h"
#include "shell/tasks/TaskFormView.h"
#include "store/state/NotificationNames.h"
#include "widgets/Animations.h"
#include "widgets/Direction.h"
#include "widgets/FormScroll.h"
#include "widgets/Icons.h"
#include "widgets/Theme.h"
#include "workspace/Workspace.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <QToolButton>

using namespace Qt::Literals::StringLiterals;

constexpr int paneMargin = 2 * Theme::unit;
/// The pane ends where the tool bar does.
constexpr int trailingMargin = Theme::contentMargin;
/// Below this width the mail button is its icon alone.
constexpr int roomForWords = 420;
/// In a very wide pane the form stays a column that the eye can follow.
constexpr int widestForm = 860;

TaskDetailViewController::TaskDetailViewController(const TaskPtr &task, QWidget *parent)
    : DetailViewController(parent)
    , form(task)
    , view(new TaskFormView(form))
{
    setObjectName(u"TaskDetailViewController"_s);
    setAccessibleName(form.currentTask().title);
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(1, 0, 0, 0);
    column->setSpacing(0);
    QWidget *header = makeHeader();
    header->setMaximumWidth(widestForm);
    column->addWidget(header);
    column->addWidget(makeBody(), 1);
    connect(view, &TaskFormView::accepted, this, &TaskDetailViewController::clickButtonEdit);
    connect(view, &TaskFormView::doneToggled, this, &TaskDetailViewController::changeCheckBoxDone);
    connect(view, &TaskFormView::editWanted, this, &TaskDetailViewController::editAttempted);
    connect(view, &TaskFormView::changed, this, [this] { keeper.formChanged(); });
    observe();
    invitationTimer.setSingleShot(true);
    connect(&invitationTimer, &QTimer::timeout, this, [this] { form.findInvitation(); });
    setPreviewMode();
}

bool TaskDetailViewController::showTask(const TaskPtr &task, QWidget &controller, DetailStack &stack,
                                        std::optional<ListType> typeTask)
{
    if (DetailViewController *open = stack.paneOf(task))
        return stack.showAgain(open);
    auto *pane = new TaskDetailViewController(task);
    pane->setTypeTask(typeTask);
    return stack.showDetail(pane, &controller);
}

// The parts

static QToolButton *makeHeaderButton(const QString &name, const QString &icon, const QString &text)
{
    auto *button = new QToolButton;
    button->setObjectName(name);
    button->setIcon(Icons::icon(icon, Theme::accent));
    button->setText(text);
    button->setAccessibleName(text);
    button->setToolTip(text);
    button->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    button->setAutoRaise(true);
    button->setFocusPolicy(Qt::StrongFocus);
    return button;
}

QWidget *TaskDetailViewController::makeHeader()
{
    auto *header = new QWidget;
    auto *line = new QHBoxLayout(header);
    line->setContentsMargins(Direction::margins(*this, paneMargin, Theme::unit, trailingMargin, Theme::unit));
    line->setSpacing(Theme::unit);
    const bool isMirrored = isRightToLeft();
    buttonBack = makeHeaderButton(u"buttonBack"_s, isMirrored ? u"chevron-right"_s : u"chevron-left"_s,
                                  localized(u"Back"_s));
    connect(buttonBack, &QToolButton::clicked, this, &TaskDetailViewController::clickButtonBack);
    buttonSendEmail = makeHeaderButton(u"buttonSendEmail"_s, u"mail"_s, localized(u"Send Email"_s));
    connect(buttonSendEmail, &QToolButton::clicked, this, &TaskDetailViewController::clickButtonSendEmail);
    buttonEdit = new QPushButton;
    buttonEdit->setObjectName(u"buttonEdit"_s);
    buttonEdit->setAutoDefault(false);
    connect(buttonEdit, &QPushButton::clicked, this, &TaskDetailViewController::clickButtonEdit);
    line->addWidget(buttonBack);
    line->addStretch(1);
    line->addWidget(buttonSendEmail);
    line->addWidget(buttonEdit);
    return header;
}

QWidget *TaskDetailViewController::makeBody()
{
    labelCreated = new QLabel;
    labelCreated->setObjectName(u"labelCreated"_s);
    labelCreated->setFont(Theme::font(Theme::FontRole::Small));
    labelCreated->setAlignment(Qt::AlignCenter);
    QPalette palette = labelCreated->palette();
    palette.setColor(QPalette::WindowText, Theme::secondaryText);
    labelCreated->setPalette(palette);
    auto *body = new QWidget;
    auto *column = new QVBoxLayout(body);
    column->setContentsMargins(Direction::margins(*this, paneMargin, 0, trailingMargin, paneMargin));
    column->setSpacing(paneMargin);
    for (QWidget *part : {static_cast<QWidget *>(view), static_cast<QWidget *>(labelCreated)})
        part->setMaximumWidth(widestForm - paneMargin - trailingMargin);
    column->addWidget(view);
    column->addWidget(labelCreated);
    column->addStretch(1);
    auto *scroll = new FormScroll(body);
    scroll->keepRoomForBar();
    return scroll;
}

// What happens elsewhere

void TaskDetailViewController::observe()
{
    refreshTimer.setSingleShot(true);
    connect(&refreshTimer, &QTimer::timeout, this, &TaskDetailViewController::taskChanged);
    NotificationCenter &center = NotificationCenter::defaultCenter();
    observations.push_back(center.addObserver(notifications::taskChange, [this](const TaskPtr &task) {
        if (!task || shows(task))
            refreshTimer.start(0);
    }));
    observations.push_back(
        center.addObserver(notifications::contextDidSave, [this](const StoreChanges &changes) {
            if (isConcernedBy(changes))
                refreshTimer.start(0);
        }));
    observations.push_back(
        center.addObserver(notifications::iCloudChange, [this] { refreshTimer.start(0); }));
    observations.push_back(center.addObserver(notifications::keySave, [this] {
        if (canSave())
            finishEdit();
    }));
}

/// It shows its task, and of other records what they are called.
bool TaskDetailViewController::isConcernedBy(const StoreChanges &changes) const
{
    const auto isShown = [this](const ObjectPtr &object) {
        return shows(object) || object->entity().name() != EntityTask::entityName;
    };
    return changes.isUnknown || std::ranges::any_of(changes.inserted, isShown) ||
           std::ranges::any_of(changes.deleted, isShown) ||
           std::ranges::any_of(changes.updated, isShown, &StoreChanges::Update::object);
}

/// What the user has entered stays, unless its task is gone or cannot be changed any more; the rest follows.
void TaskDetailViewController::taskChanged()
{
    // What has just been seen is not looked at again.
    refreshTimer.stop();
    // The call that asks goes on with the form as it was.
    if (Waiting::isForAnswer())
        return refreshTimer.start(Waiting::lookInterval);
    if (form.isGone()) {
        handOver();
        Q_EMIT recordRemoved();
    } else if (isEditing()) {
        form.followRow();
        if (form.allowsModifyEvent())
            return statusChanged();
        handOver();
        dropEdit();
    } else if (form.currentTask().isChangedTask()) {
        form.rollback();
        form.findInvitation();
        statusChanged();
    }
}

bool TaskDetailViewController::shows(const ObjectPtr &record) const
{
    return record && form.currentTask().task() == record;
}

// Modes

bool TaskDetailViewController::isEditing() const
{
    return view->isEditing();
}

void TaskDetailViewController::setEditMode()
{
    if (!form.canEdit())
        return;
    if (RepeatBan::concerns(form.currentTask()))
        return RepeatBan::tell();
    modeChanged(true);
    view->focusTitle();
}

void TaskDetailViewController::setPreviewMode()
{
    modeChanged(false);
}

void TaskDetailViewController::modeChanged(bool editing)
{
    view->setEditing(editing);
    statusChanged();
    findInvitationSoon();
}

/// Who is invited can change while the pane is open. Once it stands still, nobody sees that the calendar
/// takes its time.
void TaskDetailViewController::findInvitationSoon()
{
    const auto pause = isVisible() ? 0 : Animations::duration(Animations::detailSlideIn);
    invitationTimer.start(pause);
}

void TaskDetailViewController::statusChanged()
{
    using Style = DateFormatter::Style;
    buttonEdit->setText(localized(isEditing() ? u"DoneButton"_s : u"Edit"_s));
    buttonEdit->setDefault(isEditing());
    buttonEdit->setVisible(form.allowsModifyEvent());
    buttonEdit->setEnabled(isEditing() || form.canEdit());
    setFocusProxy(buttonEdit->isVisibleTo(this) && buttonEdit->isEnabled()
                      ? static_cast<QWidget *>(buttonEdit)
                      : buttonBack);
    const OptionalDate created = form.currentTask().creationDate;
    labelCreated->setVisible(created.has_value());
    if (created)
        labelCreated->setText(localized(u"Created on"_s) + u" "_s +
                              DateFormatter::string(*created, Style::Medium, Style::Short));
}

// What the user does

void TaskDetailViewController::clickButtonEdit()
{
    if (isEditing())
        finishEdit();
    else
        setEditMode();
}

TaskFormState::EditEnd TaskDetailViewController::finishEdit()
{
    using EditEnd = TaskFormState::EditEnd;
    if (!form.canSave()) {
        view->focusTitle();
        return EditEnd::Refused;
    }
    const EditEnd end = form.finishEdit();
    switch (end) {
    case EditEnd::Refused:
        break;
    case EditEnd::Gone:
        taskChanged();
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

void TaskDetailViewController::clickButtonBack()
{
    Q_EMIT backRequested();
}

void TaskDetailViewController::clickButtonSendEmail()
{
    Workspace::openUrl(form.currentTask().htmlBody());
}

void TaskDetailViewController::changeCheckBoxDone(bool done)
{
    // The tick keeps all that stands in the form, which needs a title for it.
    if (isEditing() && !form.canSave()) {
        statusChanged();
        view->refresh();
        return view->focusTitle();
    }
    if (RepeatBan::concerns(form.currentTask())) {
        view->refresh();
        return RepeatBan::tell();
    }
    form.changeStatusNow(done);
    // A task that is done is only looked at.
    if (isEditing() && !form.canEdit())
        setPreviewMode();
    statusChanged();
}

void TaskDetailViewController::editAttempted()
{
    if (form.allowsModifyEvent())
        setEditMode();
    else
        ShellAlerts::alertEditingEvent(localized(form.currentTask().calendarTitle));
}

bool TaskDetailViewController::hasChanges()
{
    if (!isEditing() || form.isGone())
        return false;
    form.followRow();
    return form.currentTask().isChangedTask();
}

bool TaskDetailViewController::saveEdit()
{
    // The task may have gone while the user was asked: then its text is handed over, which is no way out.
    if (form.isGone())
        return false;
    if (!form.canSave())
        ShellAlerts::tellOfMissingTitle();
    const auto end = finishEdit();
    return end != TaskFormState::EditEnd::Refused && end != TaskFormState::EditEnd::Gone;
}

/// The keys leave the fields, but not for a pane that they were never in.
void TaskDetailViewController::dropEdit()
{
    const bool hasKeys = isAncestorOf(window()->focusWidget());
    keeper.drop();
    if (!form.isGone())
        form.rollback();
    setPreviewMode();
    if (hasKeys)
        setFocus();
}

/// What was typed for a task that cannot take it any more is offered as a new one.
void TaskDetailViewController::handOver()
{
    if (!isEditing() || !form.isEdited())
        return;
    keeper.write();
    if (keeper.file().isEmpty())
        return;
    Q_EMIT textLeft(keeper.file());
    keeper.adopt({});
}

void TaskDetailViewController::resume(const Drafts::Found &found)
{
    keeper.adopt(found.file);
    form.resume(found.draft);
    if (!form.isEdited())
        return keeper.drop();
    modeChanged(true);
    view->focusTitle();
}

/// An edit ends, and the pane stays.
void TaskDetailViewController::giveUpEdit()
{
    LeaveGate gate;
    gate.add(*this, [] {});
    if (gate.mayLeave() && isEditing() && !form.isGone())
        dropEdit();
}

void TaskDetailViewController::keyPressEvent(QKeyEvent *event)
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

void TaskDetailViewController::resizeEvent(QResizeEvent *event)
{
    DetailViewController::resizeEvent(event);
    buttonSendEmail->setToolButtonStyle(width() < roomForWords ? Qt::ToolButtonIconOnly
                                                               : Qt::ToolButtonTextBesideIcon);
}
