#include "shell/tasks/TaskFormView.h"

#include "foundation/Localization.h"
#include "shell/tasks/DatePickerControl.h"
#include "store/queries/DBWorker.h"
#include "store/state/NotificationNames.h"
#include "widgets/CategoryIcon.h"
#include "widgets/CheckButton.h"
#include "widgets/DatePicker.h"
#include "widgets/GrowingTextField.h"
#include "widgets/PopUpButton.h"
#include "widgets/RowItemView.h"
#include "widgets/Theme.h"

#include <QGuiApplication>
#include <QHBoxLayout>
#include <QPointer>
#include <QTimer>

using namespace Qt::Literals::StringLiterals;
using PickerType = DatePickerState::Type;

constexpr int titleHeight = 50;
constexpr int rowHeight = 40;
constexpr int priorityHeight = 55;
constexpr int detailsHeight = 64;
/// The circle stands above the labels, although its ring needs room around it.
constexpr int checkBoxInset = 11;

TaskFormView::TaskFormView(TaskFormState &usedState, QWidget *parent)
    : FormCard(parent)
    , state(usedState)
{
    setUpRows();
    state.fieldChanged = [this](TaskField field) {
        refresh();
        Q_EMIT changed(field);
    };
    changesHeard = NotificationCenter::defaultCenter().addObserver(
        notifications::contextDidSave, [this](const StoreChanges &changes) { storeChanged(changes); });
    state.dueDateWanted = [this] { QTimer::singleShot(0, this, &TaskFormView::openDueDate); };
    refresh();
}

/// The bubble of the start has just closed. What the window system still has to say about that would close
/// the next one too, so it is heard first.
void TaskFormView::openDueDate()
{
    const QPointer<DatePickerControl> control = dueDateControl;
    QGuiApplication::sync();
    if (control)
        control->open();
}

RowItemView *TaskFormView::addRow(TaskFormRow row, const QString &textTag, int height, QWidget *control)
{
    auto *view = new RowItemView(static_cast<int>(row), textTag, height, this);
    if (const QString label = state.label(row); !label.isEmpty())
        view->setLabel(label);
    view->setControl(control);
    layout()->addWidget(view);
    rows[row] = view;
    return view;
}

void TaskFormView::setUpRows()
{
    RowItemView *title = addRow(TaskFormRow::Title, u"Title"_s, titleHeight, makeTitle());
    title->setGrows();
    title->setInset(checkBoxInset);
    addRow(TaskFormRow::Calendar, u"Calendar"_s, rowHeight, makeCalendar());
    addRow(TaskFormRow::Type, u"Type"_s, rowHeight, makeType());
    addRow(TaskFormRow::Category, u"Category"_s, rowHeight, makeCategory());
    addRow(TaskFormRow::Status, u"Status"_s, rowHeight, makeStatus());
    addRow(TaskFormRow::Priority, u"Priority"_s, priorityHeight, makePriority());
    addRow(TaskFormRow::StartDate, u"StartDate"_s, rowHeight,
           makeDate(PickerType::StartDate, u"StartDate"_s));
    addRow(TaskFormRow::EndDate, u"EndDate"_s, rowHeight, makeDate(PickerType::DueDate, u"DueDate"_s));
    addRow(TaskFormRow::Repeat, u"Repeat"_s, rowHeight, makeRepeat());
    addRow(TaskFormRow::EndRepeat, u"EndRepeat"_s, rowHeight,
           makeDate(PickerType::EndRepeat, u"EndRepeat"_s));
    addRow(TaskFormRow::Alert, u"Alert"_s, rowHeight, makeDate(PickerType::Alert, u"Alert"_s));
    addRow(TaskFormRow::SecondAlert, u"SecondAlert"_s, rowHeight,
           makeDate(PickerType::SecondAlert, u"SecondAlert"_s));
    addRow(TaskFormRow::Location, u"Location"_s, rowHeight, makeLocation());
    addRow(TaskFormRow::Details, u"Details"_s, detailsHeight, makeDetails())->setGrows();
    addRow(TaskFormRow::Contacts, u"Contacts"_s, rowHeight, makeDelegate());
    addRow(TaskFormRow::Company, u"Company"_s, rowHeight, makeCompany());
    addRow(TaskFormRow::Project, u"Project"_s, rowHeight, makeProject());
    if (!DBWorker::isSample())
        makeDeletable(TaskFormRow::Category, [this] { state.setCategory(nullptr); });
    makeDeletable(TaskFormRow::Details, [this] { state.setDetails({}); });
    makeDeletable(TaskFormRow::Contacts, [this] { state.setDelegate(nullptr); });
    makeDeletable(TaskFormRow::Company, [this] { state.setCompany(nullptr); });
    makeDeletable(TaskFormRow::Project, [this] { state.setProject(nullptr); });
}

void TaskFormView::makeDeletable(TaskFormRow row, std::function<void()> clear)
{
    rows[row]->setDeletable();
    connect(rows[row], &RowItemView::deleteClicked, this, clear);
    if (auto *popUp = rows[row]->findChild<PopUpButton *>())
        connect(popUp, &PopUpButton::deletePressed, this, clear);
}

// Texts and dates

QWidget *TaskFormView::makeTitle()
{
    auto *line = new QWidget;
    auto *row = new QHBoxLayout(line);
    row->setContentsMargins({});
    checkDone = new CheckButton;
    checkDone->setObjectName(u"checkDone"_s);
    checkDone->setAccessibleName(localized(u"Done"_s));
    QSizePolicy policy = checkDone->sizePolicy();
    policy.setRetainSizeWhenHidden(true);
    checkDone->setSizePolicy(policy);
    connect(checkDone, &QAbstractButton::clicked, this, &TaskFormView::doneToggled);
    textFieldTitle = new GrowingTextField(GrowingTextField::Kind::Title);
    textFieldTitle->setObjectName(u"textFieldTitle"_s);
    textFieldTitle->setAccessibleName(localized(u"Title"_s));
    textFieldTitle->setPlaceholderText(localized(u"What is to be done?"_s));
    connect(textFieldTitle, &QTextEdit::textChanged, this,
            [this] { state.setTitle(textFieldTitle->text()); });
    connect(textFieldTitle, &GrowingTextField::accepted, this, &TaskFormView::accepted);
    row->addWidget(checkDone, 0, Qt::AlignVCenter);
    row->addWidget(textFieldTitle, 1, Qt::AlignVCenter);
    return line;
}

QWidget *TaskFormView::makeDetails()
{
    textFieldDetails = new GrowingTextField(GrowingTextField::Kind::Details);
    textFieldDetails->setObjectName(u"textFieldDetails"_s);
    textFieldDetails->setFramed(true);
    textFieldDetails->setPlaceholderText(localized(u"Notes, links, whatever helps"_s));
    connect(textFieldDetails, &QTextEdit::textChanged, this,
            [this] { state.setDetails(textFieldDetails->text()); });
    connect(textFieldDetails, &GrowingTextField::accepted, this, &TaskFormView::accepted);
    return textFieldDetails;
}

QWidget *TaskFormView::makeDate(PickerType type, const QString &name)
{
    auto *picker = new DatePicker(type);
    picker->setObjectName(u"datePicker"_s + name);
    auto *control = new DatePickerControl(state, *picker);
    syncs.push_back([control] { control->showValue(); });
    if (type == PickerType::DueDate)
        dueDateControl = control;
    return picker;
}

void TaskFormView::focusTitle()
{
    textFieldTitle->setFocus();
}

// What is shown

void TaskFormView::setEditing(bool isNowEditing)
{
    editing = isNowEditing;
    for (GrowingTextField *field : {textFieldTitle, textFieldDetails}) {
        field->setReadOnly(!editing);
        field->setFocusPolicy(editing ? Qt::StrongFocus : Qt::ClickFocus);
    }
    textFieldDetails->setFramed(editing);
    refresh();
}

void TaskFormView::refresh()
{
    textFieldTitle->showText(state.currentTask().title);
    textFieldDetails->showText(state.currentTask().details);
    checkDone->setChecked(state.currentTask().status == TaskStatus::Done);
    // A task that cannot be changed cannot be ticked off.
    if (!state.allowsModifyEvent())
        checkDone->hide();
    for (const auto &sync : syncs)
        sync();
    for (const auto &[row, view] : rows)
        refreshRow(row, *view);
}

void TaskFormView::refreshRow(TaskFormRow row, RowItemView &view)
{
    if (row == TaskFormRow::Title)
        return;
    view.setLabel(state.label(row));
    view.setHasValue(state.hasValue(row) && editing);
    // An invitation names the organiser, whom nobody can change here.
    const bool isGiven = row == TaskFormRow::Contacts && state.invitation().hasAttendees;
    if (row != TaskFormRow::Details) {
        view.setPreview(state.previewText(row), previewIcon(row));
        view.setPreviewing(!editing || isGiven);
    }
    view.setRowHidden(editing && !isGiven ? !state.isRowShown(row) : !state.isRowShownInPreview(row));
}

QIcon TaskFormView::previewIcon(TaskFormRow row) const
{
    const MVTask &task = state.currentTask();
    if (row == TaskFormRow::Category && task.category)
        return CategoryIcon::of(*task.category);
    if (row == TaskFormRow::Priority && task.priority)
        return CategoryIcon::circle(Theme::priority(*task.priority));
    return {};
}

void TaskFormView::mouseDoubleClickEvent(QMouseEvent *event)
{
    if (!editing)
        Q_EMIT editWanted();
    FormCard::mouseDoubleClickEvent(event);
}
