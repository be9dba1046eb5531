#include "shell/calendars/CalendarsAppleWindowController.h"

#include "foundation/Localization.h"
#include "shell/calendars/CalendarCell.h"
#include "shell/calendars/CalendarListModel.h"
#include "store/state/NotificationNames.h"
#include "widgets/Accessibility.h"
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
    : QWidget(parent, Qt::Dialog)
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
    setUpTable();
    setUpEmptyPane();
    card->layout()->addWidget(table);
    card->layout()->addWidget(emptyPane);
    column->addWidget(card, 1);
    hint = makeTextLabel(
        localized(u"To set default calendar right mouse button click the required calendar title"_s),
        Theme::FontRole::Small, Theme::secondaryText);
    column->addWidget(hint);
    auto *buttonSave = new QPushButton(localized(u"Done"_s));
    buttonSave->setObjectName(u"buttonSave"_s);
    buttonSave->setDefault(true);
    connect(buttonSave, &QPushButton::clicked, this, &CalendarsAppleWindowController::clickButtonSave);
    column->addWidget(buttonSave, 0, Qt::AlignRight);
    showContent();
}

void CalendarsAppleWindowController::setUpEmptyPane()
{
    emptyPane = new QWidget;
    labelEmpty = makeTextLabel({}, Theme::FontRole::Body, Theme::secondaryText);
    labelEmpty->setObjectName(u"labelNoAccess"_s);
    labelEmpty->setAlignment(Qt::AlignCenter);
    buttonEmpty = new QPushButton;
    buttonEmpty->setObjectName(u"buttonEmpty"_s);
    connect(buttonEmpty, &QPushButton::clicked, this, &CalendarsAppleWindowController::clickButtonEmpty);
    auto *column = new QVBoxLayout(emptyPane);
    column->setSpacing(2 * Theme::unit);
    column->addStretch(1);
    column->addWidget(labelEmpty);
    column->addWidget(buttonEmpty, 0, Qt::AlignHCenter);
    column->addStretch(1);
}

/// The calendars, or why there are none and what can be done about it.
void CalendarsAppleWindowController::showContent()
{
    using enum CalendarChooser::Emptiness;
    const CalendarChooser::Emptiness emptiness = model->emptiness();
    table->setVisible(emptiness == None);
    hint->setVisible(emptiness == None);
    emptyPane->setVisible(emptiness != None);
    buttonEmpty->setVisible(emptiness == NoAccess || emptiness == NoCalendars);
    buttonEmpty->setText(localized(emptiness == NoAccess ? u"Preferences"_s : u"New Calendar"_s));
    if (emptiness == NoAccess)
        labelEmpty->setText(localized(u"No access to Apple Calendar"_s));
    else
        labelEmpty->setText(localized(emptiness == NoCalendars
                                          ? u"There is no calendar yet."_s
                                          : u"Your calendars do not answer at the moment."_s));
    setFocusProxy(emptiness == None ? static_cast<QWidget *>(table) : buttonEmpty);
}

void CalendarsAppleWindowController::clickButtonEmpty()
{
    if (model->emptiness() == CalendarChooser::Emptiness::NoAccess) {
        close();
        Q_EMIT preferencesWanted();
        return;
    }
    const BusyCursor busy;
    if (!model->makeCalendar())
        labelEmpty->setText(localized(u"The calendar could not be made."_s));
    else
        showContent();
}

void CalendarsAppleWindowController::setUpTable()
{
    const auto moreActions = [this](int row) -> std::vector<AccessibleAction> {
        if (!model->canBeDefault(model->index(row)))
            return {};
        return {
            {localized(u"Set Default"_s), [this, row] { clickSubMenuItemSetDefault(model->index(row)); }}};
    };
    Accessibility::describeList(
        *table, [this](int row) { model->toggle(model->index(row)); }, moreActions);
    connect(model, &CalendarListModel::dataChanged, table, [this] { Accessibility::partsChanged(*table); });
    connect(model, &CalendarListModel::modelReset, table, [this] { Accessibility::placesRefilled(*table); });
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
    calendarsChanged = NotificationCenter::defaultCenter().addObserver(notifications::eventStoreChanged,
                                                                       [this] { reload(); });
}

/// Calendars can be renamed, removed and added elsewhere while the window is open.
void CalendarsAppleWindowController::reload()
{
    const QVariant current = table->currentIndex().data(CalendarListModel::IdentifierRole);
    model->reload();
    showContent();
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
    if (!model->canBeDefault(index))
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
    setFocus();
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
    else if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)
        clickButtonSave();
    else
        QWidget::keyPressEvent(event);
}
