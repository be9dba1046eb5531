#include "shell/calendars/CalendarsAppleWindowController.h"

#include "calendarsync/CalendarEvent.h"
#include "foundation/Localization.h"
#include "shell/calendars/CalendarCell.h"
#include "shell/calendars/CalendarListModel.h"
#include "store/state/NotificationNames.h"
#include "widgets/BusyCursor.h"
#include "widgets/FormCard.h"
#include "widgets/TextLabel.h"
#include "widgets/WindowPlace.h"

#include <QCloseEvent>
#include <QKeyEvent>
#include <QLabel>
#include <QListView>
#include <QMenu>
#include <QPushButton>
#include <QVBoxLayout>

using namespace Qt::Literals::StringLiterals;

constexpr QSize firstSize(400, 480);

CalendarsAppleWindowController::CalendarsAppleWindowController(QWidget *parent)
    : QWidget(parent, Qt::Window)
    , model(new CalendarListModel(this))
    , table(new QListView)
{
    setObjectName(u"CalendarsAppleWindow"_s);
    setWindowTitle(localized(u"Calendars"_s));
    setAttribute(Qt::WA_DeleteOnClose);
    windowDidLoad();
    resize(firstSize);
}

void CalendarsAppleWindowController::windowDidLoad()
{
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(2 * Theme::unit, 2 * Theme::unit, 2 * Theme::unit, 2 * Theme::unit);
    column->setSpacing(2 * Theme::unit);
    auto *card = new FormCard;
    if (CalendarEvent::hasAccesToCalendar()) {
        setUpTable();
        card->layout()->addWidget(table);
    } else {
        table->hide();
        table->setParent(this);
        QLabel *message = makeTextLabel(localized(u"No access to Apple Calendar"_s), Theme::FontRole::Body,
                                        Theme::secondaryText);
        message->setObjectName(u"labelNoAccess"_s);
        message->setAlignment(Qt::AlignCenter);
        card->layout()->addWidget(message);
    }
    column->addWidget(card, 1);
    column->addWidget(makeTextLabel(
        localized(u"To set default calendar right mouse button click the required calendar title"_s),
        Theme::FontRole::Small, Theme::secondaryText));
    auto *buttonSave = new QPushButton(localized(u"Done"_s));
    buttonSave->setObjectName(u"buttonSave"_s);
    buttonSave->setDefault(true);
    connect(buttonSave, &QPushButton::clicked, this, &CalendarsAppleWindowController::clickButtonSave);
    column->addWidget(buttonSave, 0, Qt::AlignRight);
}

void CalendarsAppleWindowController::setUpTable()
{
    table->setObjectName(u"tableCalendars"_s);
    table->setAccessibleName(localized(u"Calendars"_s));
    table->setFrameShape(QFrame::NoFrame);
    table->setMouseTracking(true);
    table->viewport()->setAutoFillBackground(false);
    table->setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    table->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    table->setResizeMode(QListView::Adjust);
    table->setItemDelegate(new CalendarCell(table));
    table->setModel(model);
    table->setContextMenuPolicy(Qt::CustomContextMenu);
    table->installEventFilter(this);
    table->setCurrentIndex(model->index(1));
    connect(table, &QListView::clicked, model, &CalendarListModel::toggle);
    connect(table, &QListView::customContextMenuRequested, this, &CalendarsAppleWindowController::showMenu);
    setFocusProxy(table);
    calendarsChanged = NotificationCenter::defaultCenter().addObserver(notifications::eventStoreChanged,
                                                                       [this] { reload(); });
}

/// Calendars can be renamed, removed and added elsewhere while the window is open.
void CalendarsAppleWindowController::reload()
{
    const QVariant current = table->currentIndex().data(CalendarListModel::IdentifierRole);
    model->reload();
    if (table->currentIndex().isValid())
        return;
    const QModelIndexList same =
        model->match(model->index(0), CalendarListModel::IdentifierRole, current, 1, Qt::MatchExactly);
    table->setCurrentIndex(same.isEmpty() ? model->index(1) : same.first());
}

/// By then the choice follows what was renamed while another program was in front.
void CalendarsAppleWindowController::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::ActivationChange && isActiveWindow() && table->model())
        reload();
    QWidget::changeEvent(event);
}

/// The space key toggles as a click does.
bool CalendarsAppleWindowController::eventFilter(QObject *watched, QEvent *event)
{
    const bool isSpace =
        event->type() == QEvent::KeyPress && static_cast<QKeyEvent *>(event)->key() == Qt::Key_Space;
    if (watched != table || !isSpace)
        return QWidget::eventFilter(watched, event);
    model->toggle(table->currentIndex());
    return true;
}

/// By mouse it is the calendar that was pressed, by key the present one.
void CalendarsAppleWindowController::showMenu(const QPoint &position)
{
    QModelIndex index = table->indexAt(position);
    if (!(model->flags(index) & Qt::ItemIsEnabled))
        return;
    QMenu menu(this);
    menu.addAction(localized(u"Set Default"_s), this, [&] { clickSubMenuItemSetDefault(index); });
    menu.exec(table->viewport()->mapToGlobal(position));
}

void CalendarsAppleWindowController::clickSubMenuItemSetDefault(const QModelIndex &index)
{
    model->setDefault(index);
}

void CalendarsAppleWindowController::showWindow()
{
    if (!isVisible()) {
        placeOverParent(*this);
    }
    show();
    raise();
    activateWindow();
    table->setFocus();
}

void CalendarsAppleWindowController::clickButtonSave()
{
    close();
}

/// However the window is closed: what was chosen is already kept, and the tasks are to agree with it.
void CalendarsAppleWindowController::closeEvent(QCloseEvent *event)
{
    event->accept();
    if (std::exchange(isDone, true))
        return;
    hide();
    const BusyCursor busy;
    CalendarChooser::finish();
}

void CalendarsAppleWindowController::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Escape)
        close();
    else
        QWidget::keyPressEvent(event);
}
