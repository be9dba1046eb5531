#include "records/RecordWindow.h"

#include "foundation/Localization.h"
#include "records/FormView.h"
#include "records/ShellAlerts.h"
#include "widgets/Animations.h"
#include "widgets/FormScroll.h"
#include "widgets/KeyTip.h"
#include "widgets/TextLabel.h"
#include "widgets/Theme.h"
#include "widgets/WindowPlace.h"

#include <QCloseEvent>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <QStyle>
#include <QVBoxLayout>

using namespace Qt::Literals::StringLiterals;

constexpr int firstWidth = 560;
constexpr int formMargin = 2 * Theme::unit;
/// The rows have come to rest by then.
constexpr auto afterRows = std::chrono::milliseconds(40);

RecordWindow::RecordWindow(const QString &name, const QString &title, std::unique_ptr<FormModel> form,
                           FormView *formView, QWidget *parent)
    : QWidget(parent, Qt::Dialog)
    , model(std::move(form))
    , keeper(*model)
    , view(formView)
{
    setObjectName(name);
    setWindowTitle(title);
    auto *body = new QWidget;
    auto *inside = new QVBoxLayout(body);
    inside->setContentsMargins(formMargin, formMargin, formMargin, 0);
    labelReason = makeTextLabel({}, Theme::FontRole::Body, Theme::secondaryText);
    labelReason->setObjectName(u"labelReason"_s);
    labelReason->setContentsMargins(Theme::unit, 0, Theme::unit, formMargin);
    labelReason->hide();
    inside->addWidget(labelReason);
    inside->addWidget(view);
    inside->addStretch(1);
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins({});
    column->setSpacing(0);
    auto *scroll = new FormScroll(body);
    scroll->keepRoomForBar();
    column->addWidget(scroll, 1);
    column->addWidget(makeButtons());
    connect(view, &FormView::changed, this, [this] {
        buttonSave->setEnabled(model->canSave());
        keeper.formChanged();
    });
    view->setEditing(true);
    growth.setSingleShot(true);
    growth.setInterval(Animations::duration(Animations::rowCollapse + afterRows));
    connect(view, &FormView::changed, &growth, qOverload<>(&QTimer::start));
    connect(&growth, &QTimer::timeout, this, &RecordWindow::growToForm);
    connect(view, &FormView::accepted, this, &RecordWindow::clickButtonSave);
    connect(view, &FormView::doneToggled, this, [this](bool done) { tick(done); });
    resize(firstWidth, 0);
    // The layouts have been asked before the rows were there, and remember their answer.
    view->updateGeometry();
    scroll->updateGeometry();
    growToForm();
    view->focusTitle();
}

/// The form is asked by its view until that has gone.
RecordWindow::~RecordWindow()
{
    delete view;
}

/// Rows that appear make the window higher while the screen has room; then the form scrolls.
void RecordWindow::growToForm()
{
    const QRect room = screen()->availableGeometry();
    const int titleBar = style()->pixelMetric(QStyle::PM_TitleBarHeight);
    const int most = isVisible() ? room.bottom() - y() - titleBar : room.height() - titleBar - formMargin;
    const int wanted = std::min(layout()->totalSizeHint().height(), most);
    if (wanted > height())
        resize(width(), wanted);
}

void RecordWindow::resume(const QString &file, const RecordDraft &draft)
{
    keeper.adopt(file);
    model->resume(draft);
}

void RecordWindow::beginInEmptyText()
{
    view->focusEmptyText();
}

void RecordWindow::tell(const QString &sentence)
{
    labelReason->setText(sentence);
    labelReason->show();
    setAccessibleDescription(sentence);
    growToForm();
}

void RecordWindow::showWindow()
{
    if (!isVisible())
        placeOverParent(*this);
    show();
    raise();
    activateWindow();
}

QWidget *RecordWindow::makeButtons()
{
    auto *line = new QWidget;
    auto *row = new QHBoxLayout(line);
    row->setContentsMargins(formMargin, formMargin, formMargin, formMargin);
    auto *buttonClose = new QPushButton(localized(u"Close"_s));
    buttonClose->setObjectName(u"buttonClose"_s);
    buttonClose->setToolTip(keytip::of(buttonClose->text(), Qt::Key_Escape));
    connect(buttonClose, &QPushButton::clicked, this, &RecordWindow::clickButtonClose);
    buttonSave = new QPushButton(localized(u"Save"_s));
    buttonSave->setObjectName(u"buttonSave"_s);
    buttonSave->setToolTip(keytip::of(buttonSave->text(), Qt::CTRL | Qt::Key_Return));
    buttonSave->setDefault(true);
    buttonSave->setEnabled(model->canSave());
    connect(buttonSave, &QPushButton::clicked, this, &RecordWindow::clickButtonSave);
    row->addStretch(1);
    row->addWidget(buttonClose);
    row->addWidget(buttonSave);
    return line;
}

// Saving and closing

void RecordWindow::clickButtonSave()
{
    if (!model->canSave())
        return view->focusTitle();
    if (!model->save())
        return;
    keeper.drop();
    isClosingAgreed = true;
    close();
    Q_EMIT saved(model->record());
}

void RecordWindow::clickButtonClose()
{
    close();
}

bool RecordWindow::saveEdit()
{
    if (!model->canSave())
        ShellAlerts::tellOfMissingTitle(model->reasonNotToSave());
    // A save that goes through closes the window itself.
    clickButtonSave();
    return isClosingAgreed;
}

void RecordWindow::dropEdit()
{
    keeper.drop();
    model->giveUp();
    isClosingAgreed = true;
}

void RecordWindow::closeEvent(QCloseEvent *event)
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

void RecordWindow::keyPressEvent(QKeyEvent *event)
{
    const bool isReturn = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (event->key() == Qt::Key_Escape)
        clickButtonClose();
    else if (isReturn && event->modifiers().testFlag(Qt::ControlModifier))
        clickButtonSave();
    else
        QWidget::keyPressEvent(event);
}
