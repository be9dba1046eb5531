#include "shell/tasks/WindowNewTask.h"

#include "foundation/Localization.h"
#include "records/Functional.h"
#include "shell/ShellAlerts.h"
#include "shell/tasks/DatePickerControl.h"
#include "store/queries/DBWorker.h"
#include "widgets/CategoryIcon.h"
#include "widgets/CheckButton.h"
#include "widgets/DatePicker.h"
#include "widgets/FormCard.h"
#include "widgets/GrowingTextField.h"
#include "widgets/RowItemView.h"
#include "widgets/Theme.h"

#include <QCloseEvent>
#include <QComboBox>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QPushButton>
#include <QScreen>
#include <QStyle>
#include <QVBoxLayout>

using namespace Qt::Literals::StringLiterals;

constexpr int firstWidth = 520;
constexpr int titleHeight = 50;
constexpr int rowHeight = 44;
constexpr int detailsHeight = 84;
/// The circle stands above the labels, although its ring needs room around it.
constexpr int checkBoxInset = 11;

WindowNewTask::WindowNewTask(const NewTaskRequest &request, QWidget *parent)
    : QWidget(parent, Qt::Window)
    , form(request)
    , card(new FormCard(this))
{
    setObjectName(u"WindowNewTask"_s);
    setWindowTitle(localized(u"New Task"_s));
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(2 * Theme::unit, 2 * Theme::unit, 2 * Theme::unit, 2 * Theme::unit);
    column->setSpacing(2 * Theme::unit);
    column->addWidget(card);
    column->addStretch(1);
    column->addWidget(makeButtons());
    setUpRows();
    connect(&form, &TaskForm::changed, this, &WindowNewTask::formChanged);
    connect(&form, &TaskForm::dueDateWanted, this, [this] { dueDateControl->open(); });
    showVisibleRows();
    resize(firstWidth, sizeHint().height());
    textFieldTitle->setFocus();
}

/// Over the middle of the main window, with the title bar where it can be reached.
void WindowNewTask::placeOverParent()
{
    const QRect room = parentWidget()->screen()->availableGeometry();
    const int titleBar = style()->pixelMetric(QStyle::PM_TitleBarHeight);
    const QPoint wanted = parentWidget()->geometry().center() - rect().center();
    move(std::clamp(wanted.x(), room.left(), std::max(room.left(), room.right() - width())),
         std::clamp(wanted.y(), room.top() + titleBar,
                    std::max(room.top() + titleBar, room.bottom() - height())));
}

void WindowNewTask::showWindow()
{
    if (!isVisible() && parentWidget())
        placeOverParent();
    show();
    raise();
    activateWindow();
}

// Rows

RowItemView *WindowNewTask::addRow(int tag, const QString &textTag, int height, const QString &label,
                                   QWidget *control)
{
    auto *row = new RowItemView(tag, textTag, height, card);
    if (!label.isEmpty())
        row->setLabel(localized(label));
    row->setControl(control);
    card->layout()->addWidget(row);
    return row;
}

void WindowNewTask::setUpRows()
{
    RowItemView *title = addRow(1, u"Title"_s, titleHeight, {}, makeTitle());
    title->setGrows();
    title->setInset(checkBoxInset);
    addRow(3, u"Type"_s, rowHeight, u"Type"_s, makeType());
    addRow(4, u"Category"_s, rowHeight, u"Category"_s, makeCategory());
    addRow(5, u"Status"_s, rowHeight, u"Status"_s, makeStatus());
    addRow(6, u"Priority"_s, rowHeight, u"Priority"_s, makePriority());
    DatePicker *start = makeDate(DatePickerState::Type::StartDate, u"datePickerStartDate"_s);
    DatePicker *due = makeDate(DatePickerState::Type::DueDate, u"datePickerDueDate"_s);
    rowStartDate = addRow(7, u"StartDate"_s, rowHeight, u"Start Date"_s, start);
    rowEndDate = addRow(8, u"EndDate"_s, rowHeight, u"Due Date"_s, due);
    new DatePickerControl(form, *start);
    dueDateControl = new DatePickerControl(form, *due);
    addRow(14, u"Details"_s, detailsHeight, u"Details"_s, makeDetails())->setGrows();
}

QWidget *WindowNewTask::makeTitle()
{
    auto *line = new QWidget;
    auto *row = new QHBoxLayout(line);
    row->setContentsMargins({});
    checkDone = new CheckButton;
    checkDone->setAccessibleName(localized(u"Done"_s));
    connect(checkDone, &QAbstractButton::clicked, &form, &TaskForm::setDone);
    textFieldTitle = new GrowingTextField(GrowingTextField::Kind::Title);
    textFieldTitle->setObjectName(u"textFieldTitle"_s);
    textFieldTitle->setAccessibleName(localized(u"Title"_s));
    textFieldTitle->setPlaceholderText(localized(u"What is to be done?"_s));
    connect(textFieldTitle, &QTextEdit::textChanged, this, [this] { form.setTitle(textFieldTitle->text()); });
    connect(textFieldTitle, &GrowingTextField::accepted, this, &WindowNewTask::clickButtonSave);
    row->addWidget(checkDone, 0, Qt::AlignVCenter);
    row->addWidget(textFieldTitle, 1, Qt::AlignVCenter);
    return line;
}

QWidget *WindowNewTask::makeType()
{
    popUpButtonType = new QComboBox;
    popUpButtonType->setObjectName(u"popUpButtonType"_s);
    for (const int type : {0, 1, 2})
        popUpButtonType->addItem(Functional::typeStringFromType(type));
    popUpButtonType->setCurrentIndex(form.currentTask().type.value_or(0));
    connect(popUpButtonType, &QComboBox::textActivated, &form, &TaskForm::setType);
    return popUpButtonType;
}

QWidget *WindowNewTask::makeCategory()
{
    auto *popUp = new QComboBox;
    popUp->setObjectName(u"popUpButtonCategory"_s);
    std::vector<CategoryPtr> categories = DBWorker::allCategories();
    // Every task of the sample has a category; everywhere else a task can do without.
    if (!DBWorker::isSample())
        categories.insert(categories.begin(), nullptr);
    for (const CategoryPtr &category : categories) {
        if (category)
            popUp->addItem(CategoryIcon::of(*category), localized(category->title()));
        else
            popUp->addItem(localized(u"None"_s));
    }
    const auto chosen = std::ranges::find(categories, form.currentTask().category);
    popUp->setCurrentIndex(chosen == categories.end() ? 0 : static_cast<int>(chosen - categories.begin()));
    connect(popUp, &QComboBox::activated, this,
            [this, categories](int index) { form.setCategory(categories[static_cast<std::size_t>(index)]); });
    return popUp;
}

QWidget *WindowNewTask::makeStatus()
{
    popUpButtonStatus = new QComboBox;
    popUpButtonStatus->setObjectName(u"popUpButtonStatus"_s);
    for (const int status : {0, 1, 2, 3})
        popUpButtonStatus->addItem(Functional::statusStringFromType(status));
    connect(popUpButtonStatus, &QComboBox::activated, &form, &TaskForm::setStatus);
    return popUpButtonStatus;
}

QWidget *WindowNewTask::makePriority()
{
    auto *popUp = new QComboBox;
    popUp->setObjectName(u"popUpButtonPriority"_s);
    for (const int priority : {3, 0, 1, 2})
        popUp->addItem(CategoryIcon::circle(Theme::priority(priority)),
                       Functional::priorityStringFromType(priority), priority);
    connect(popUp, &QComboBox::activated, this,
            [this, popUp] { form.setPriority(popUp->currentData().toInt()); });
    return popUp;
}

DatePicker *WindowNewTask::makeDate(DatePickerState::Type type, const QString &name)
{
    auto *picker = new DatePicker(type);
    picker->setObjectName(name);
    return picker;
}

QWidget *WindowNewTask::makeDetails()
{
    textFieldDetails = new GrowingTextField(GrowingTextField::Kind::Details);
    textFieldDetails->setObjectName(u"textFieldDetails"_s);
    textFieldDetails->setPlaceholderText(localized(u"Notes, links, whatever helps"_s));
    connect(textFieldDetails, &QTextEdit::textChanged, this,
            [this] { form.setDetails(textFieldDetails->text()); });
    connect(textFieldDetails, &GrowingTextField::accepted, this, &WindowNewTask::clickButtonSave);
    return textFieldDetails;
}

QWidget *WindowNewTask::makeButtons()
{
    auto *line = new QWidget;
    auto *row = new QHBoxLayout(line);
    row->setContentsMargins({});
    auto *buttonClose = new QPushButton(localized(u"Close"_s));
    buttonClose->setObjectName(u"buttonClose"_s);
    connect(buttonClose, &QPushButton::clicked, this, &WindowNewTask::clickButtonClose);
    buttonSave = new QPushButton(localized(u"Save"_s));
    buttonSave->setObjectName(u"buttonSave"_s);
    buttonSave->setDefault(true);
    buttonSave->setEnabled(false);
    connect(buttonSave, &QPushButton::clicked, this, &WindowNewTask::clickButtonSave);
    row->addStretch(1);
    row->addWidget(buttonClose);
    row->addWidget(buttonSave);
    return line;
}

// What follows a change

void WindowNewTask::formChanged(TaskForm::Field field)
{
    if (field == TaskForm::Field::Title)
        buttonSave->setEnabled(form.canSave());
    const int status = form.currentTask().status.value_or(0);
    popUpButtonStatus->setCurrentIndex(status);
    checkDone->setChecked(status == static_cast<int>(TaskStatus::Done));
    popUpButtonType->setCurrentIndex(form.currentTask().type.value_or(0));
    showVisibleRows();
}

void WindowNewTask::showVisibleRows()
{
    rowStartDate->setRowHidden(form.isStartDateHidden());
    rowEndDate->setLabel(form.dueDateLabel());
}

// Saving and closing

void WindowNewTask::clickButtonSave()
{
    if (!form.canSave())
        return textFieldTitle->setFocus();
    if (!form.save())
        return;
    isClosingAgreed = true;
    close();
}

void WindowNewTask::clickButtonClose()
{
    close();
}

bool WindowNewTask::mayClose()
{
    if (isClosingAgreed || !form.isTouched())
        return true;
    switch (ShellAlerts::alertDontSave()) {
    case ShellAlerts::DontSaveAnswer::DontSave:
        return true;
    case ShellAlerts::DontSaveAnswer::Save:
        // A save that goes through closes the window itself.
        clickButtonSave();
        return isClosingAgreed;
    case ShellAlerts::DontSaveAnswer::Cancel:
        return false;
    }
    return false;
}

void WindowNewTask::closeEvent(QCloseEvent *event)
{
    if (mayClose()) {
        isClosingAgreed = true;
        event->accept();
    } else {
        event->ignore();
    }
}

void WindowNewTask::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Escape)
        clickButtonClose();
    else
        QWidget::keyPressEvent(event);
}
