#include "shell/tasks/WindowNewTask.h"

#include "foundation/Localization.h"
#include "records/ShellAlerts.h"
#include "shell/tasks/TaskFormView.h"
#include "widgets/Animations.h"
#include "widgets/FormScroll.h"
#include "widgets/Theme.h"
#include "widgets/WindowPlace.h"

#include <QCloseEvent>
#include <QKeyEvent>
#include <QPushButton>
#include <QStyle>
#include <QVBoxLayout>

using namespace Qt::Literals::StringLiterals;

constexpr int firstWidth = 520;
constexpr int formMargin = 2 * Theme::unit;
/// The rows have come to rest by then.
constexpr auto afterRows = std::chrono::milliseconds(40);

WindowNewTask::WindowNewTask(const NewTaskRequest &request, QWidget *parent)
    : QWidget(parent, Qt::Window)
    , form(request)
    , view(new TaskFormView(form))
{
    setUp();
}

WindowNewTask::WindowNewTask(const Drafts::Found &found, QWidget *parent)
    : QWidget(parent, Qt::Window)
    , form(found.draft)
    , view(new TaskFormView(form))
{
    keeper.adopt(found.file);
    setUp();
    buttonSave->setEnabled(form.canSave());
}

void WindowNewTask::setUp()
{
    setObjectName(u"WindowNewTask"_s);
    setWindowTitle(localized(u"New Task"_s));
    auto *body = new QWidget;
    auto *inside = new QVBoxLayout(body);
    inside->setContentsMargins(formMargin, formMargin, formMargin, 0);
    inside->addWidget(view);
    inside->addStretch(1);
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins({});
    column->setSpacing(0);
    auto *scroll = new FormScroll(body);
    scroll->keepRoomForBar();
    column->addWidget(scroll, 1);
    column->addWidget(makeButtons());
    connect(view, &TaskFormView::changed, this, [this] {
        buttonSave->setEnabled(form.canSave());
        keeper.formChanged();
    });
    growth.setSingleShot(true);
    growth.setInterval(Animations::duration(Animations::rowCollapse + afterRows));
    connect(view, &TaskFormView::changed, &growth, qOverload<>(&QTimer::start));
    connect(&growth, &QTimer::timeout, this, &WindowNewTask::growToForm);
    connect(view, &TaskFormView::accepted, this, &WindowNewTask::clickButtonSave);
    connect(view, &TaskFormView::doneToggled, this, [this](bool done) { form.setDone(done); });
    resize(firstWidth, 0);
    growToForm();
    view->focusTitle();
}

/// Rows that appear make the window higher while the screen has room; then the form scrolls.
void WindowNewTask::growToForm()
{
    const QRect room = screen()->availableGeometry();
    const int titleBar = style()->pixelMetric(QStyle::PM_TitleBarHeight);
    const int most = isVisible() ? room.bottom() - y() - titleBar : room.height() - titleBar - formMargin;
    const int wanted = std::min(layout()->totalSizeHint().height(), most);
    if (wanted > height())
        resize(width(), wanted);
}

void WindowNewTask::showWindow()
{
    if (!isVisible())
        placeOverParent(*this);
    show();
    raise();
    activateWindow();
}

QWidget *WindowNewTask::makeButtons()
{
    auto *line = new QWidget;
    auto *row = new QHBoxLayout(line);
    row->setContentsMargins(formMargin, formMargin, formMargin, formMargin);
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

// Saving and closing

void WindowNewTask::clickButtonSave()
{
    if (!form.canSave())
        return view->focusTitle();
    if (!form.save())
        return;
    keeper.drop();
    isClosingAgreed = true;
    close();
}

void WindowNewTask::clickButtonClose()
{
    close();
}

bool WindowNewTask::saveEdit()
{
    if (!form.canSave())
        ShellAlerts::tellOfMissingTitle();
    // A save that goes through closes the window itself.
    clickButtonSave();
    return isClosingAgreed;
}

void WindowNewTask::dropEdit()
{
    keeper.drop();
    isClosingAgreed = true;
}

void WindowNewTask::closeEvent(QCloseEvent *event)
{
    LeaveGate gate;
    gate.add(*this, [] {});
    if (gate.mayLeave()) {
        isClosingAgreed = true;
        event->accept();
    } else {
        event->ignore();
    }
}

void WindowNewTask::keyPressEvent(QKeyEvent *event)
{
    const bool isReturn = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (event->key() == Qt::Key_Escape)
        clickButtonClose();
    else if (isReturn && event->modifiers().testFlag(Qt::ControlModifier))
        clickButtonSave();
    else
        QWidget::keyPressEvent(event);
}
