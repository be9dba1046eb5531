#include "shell/calendars/MVSetiingsCalendarController.h"

#include "calendarsync/SyncSettings.h"
#include "foundation/Localization.h"
#include "shell/devices/DevicesWindow.h"
#include "store/state/NotificationNames.h"
#include "widgets/BusyCursor.h"
#include "widgets/FormCard.h"
#include "widgets/FormScroll.h"
#include "widgets/LookOfProgram.h"
#include "widgets/TextLabel.h"
#include "widgets/WindowPlace.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QCloseEvent>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QScreen>
#include <QStyle>
#include <QVBoxLayout>

using namespace Qt::Literals::StringLiterals;

constexpr int width = 480;

MVSetiingsCalendarController::MVSetiingsCalendarController(QWidget *parent)
    : QWidget(parent, Qt::Dialog)
    , column(new QVBoxLayout)
{
    setObjectName(u"PreferencesWindow"_s);
    setWindowTitle(localized(u"Preferences"_s));
    setAttribute(Qt::WA_DeleteOnClose);
    column->setContentsMargins(2 * Theme::unit, 2 * Theme::unit, 2 * Theme::unit, 2 * Theme::unit);
    column->setSpacing(2 * Theme::unit);
    auto *body = new QWidget;
    body->setLayout(column);
    setUpLook();
    setUpAccess();
    setUpSync();
    setUpContacts();
    setUpDevices();
    refresh();
    auto *around = new QVBoxLayout(this);
    around->setContentsMargins({});
    around->addWidget(new FormScroll(body));
    setFixedWidth(body->sizeHint().width());
    preferences =
        NotificationCenter::defaultCenter().addObserver(notifications::preferences, [this] { refresh(); });
}

static QLabel *makeLabel(const QString &text, Theme::FontRole role, Theme::Role color)
{
    QLabel *label = makeTextLabel(text, role, color);
    label->setMinimumWidth(width);
    return label;
}

QVBoxLayout *MVSetiingsCalendarController::addCard(const QString &title, const QString &description)
{
    auto *card = new FormCard;
    auto *rows = static_cast<QVBoxLayout *>(card->layout());
    rows->setContentsMargins(2 * Theme::unit, 2 * Theme::unit, 2 * Theme::unit, 2 * Theme::unit);
    rows->setSpacing(Theme::unit);
    rows->addWidget(makeLabel(title, Theme::FontRole::BodyStrong, Theme::text));
    if (!description.isEmpty())
        rows->addWidget(makeLabel(description, Theme::FontRole::Small, Theme::secondaryText));
    column->addWidget(card);
    return rows;
}

QButtonGroup *MVSetiingsCalendarController::addChoice(QVBoxLayout &card, const Choice &choice)
{
    QLabel *heading = makeLabel(choice.heading, Theme::FontRole::Body, Theme::text);
    card.addSpacing(Theme::unit);
    card.addWidget(heading);
    auto *group = new QButtonGroup(this);
    auto *line = new QHBoxLayout;
    line->setSpacing(3 * Theme::unit);
    for (int number = 0; number < choice.titles.size(); ++number) {
        auto *button = new QRadioButton(choice.titles.at(number));
        button->setObjectName(choice.objectNames.at(number));
        button->setAccessibleName(choice.heading + u": "_s + choice.titles.at(number));
        group->addButton(button, number);
        line->addWidget(button);
    }
    line->addStretch(1);
    card.addLayout(line);
    return group;
}

QLabel *MVSetiingsCalendarController::addDescription(QVBoxLayout &card, const QString &text)
{
    QLabel *label = makeLabel(text, Theme::FontRole::Small, Theme::secondaryText);
    card.addWidget(label);
    return label;
}

void MVSetiingsCalendarController::setUpLook()
{
    QVBoxLayout &card = *addCard(localized(u"Appearance"_s), {});
    scheme = addChoice(
        card, {localized(u"Colors"_s),
               {u"radioButtonSchemeDesktop"_s, u"radioButtonSchemeLight"_s, u"radioButtonSchemeDark"_s},
               LookOfProgram::schemeTitles()});
    contrast = addChoice(card, {localized(u"Contrast"_s),
                                {u"radioButtonContrastDesktop"_s, u"radioButtonContrastNormal"_s,
                                 u"radioButtonContrastHigh"_s},
                                LookOfProgram::contrastTitles()});
    density = addChoice(card, {localized(u"Lists"_s),
                               {u"radioButtonDensityComfortable"_s, u"radioButtonDensityCompact"_s},
                               LookOfProgram::densityTitles()});
    connect(density, &QButtonGroup::idClicked, this,
            [](int choice) { LookOfProgram::choose(static_cast<LookOfProgram::DensityChoice>(choice)); });
    connect(scheme, &QButtonGroup::idClicked, this,
            [](int choice) { LookOfProgram::choose(static_cast<LookOfProgram::SchemeChoice>(choice)); });
    connect(contrast, &QButtonGroup::idClicked, this,
            [](int choice) { LookOfProgram::choose(static_cast<LookOfProgram::ContrastChoice>(choice)); });
}

void MVSetiingsCalendarController::setUpAccess()
{
    using enum accesschoice::Kind;
    QVBoxLayout &card =
        *addCard(localized(u"Access"_s), localized(u"What Morvane may use on this computer."_s));
    addSwitch(card, Calendars, u"switchCalendars"_s, localized(u"Calendars"_s));
    addSwitch(card, Reminders, u"switchReminders"_s, localized(u"Reminders"_s));
    addSwitch(card, Contacts, u"switchContacts"_s, localized(u"Contacts"_s));
}

void MVSetiingsCalendarController::addSwitch(QVBoxLayout &card, accesschoice::Kind kind,
                                             const QString &objectName, const QString &title)
{
    auto *button = new QCheckBox(title);
    button->setObjectName(objectName);
    switches.emplace_back(kind, button);
    card.addWidget(button);
    connect(button, &QCheckBox::clicked, this, [this, kind](bool isAllowed) {
        const BusyCursor busy;
        accesschoice::choose(kind, isAllowed);
        if (isAllowed && kind == accesschoice::Kind::Calendars)
            Q_EMIT calendarsAllowed();
    });
}

void MVSetiingsCalendarController::setUpSync()
{
    QVBoxLayout &card = *addCard(localized(u"Calendar Sync Options"_s),
                                 localized(u"To access Calendar"_s) + u' ' +
                                     localized(u"Sync Options enable Calendars for Morvane app"_s));
    period = addChoice(card, {localized(u"Choose sync period"_s),
                              {u"radioButtonThreeMonthPeriod"_s, u"radioButtonSixMonthPeriod"_s,
                               u"radioButtonTwelveMonthPeriod"_s},
                              SyncSettings::syncPeriodTitles()});
    periodDescription = addDescription(card, {});
    frequency = addChoice(
        card, {localized(u"Choose sync frequency for repeated tasks"_s),
               {u"radioButtonFrequencyDay"_s, u"radioButtonFrequencyWeek"_s, u"radioButtonFrequencyMonth"_s},
               SyncSettings::syncFrequencyTitles()});
    frequencyDescription = addDescription(card, {});
    connect(period, &QButtonGroup::idClicked, this,
            &MVSetiingsCalendarController::actionRadioButtonSyncPeriod);
    connect(frequency, &QButtonGroup::idClicked, this,
            &MVSetiingsCalendarController::actionRadioButtonSyncFrequency);
}

void MVSetiingsCalendarController::setUpContacts()
{
    QVBoxLayout &card = *addCard(localized(u"Contacts Display Order"_s), {});
    order = addChoice(card, {localized(u"Choose contacts display order"_s),
                             {u"radioButtonFirstLast"_s, u"radioButtonLastFirst"_s},
                             SyncSettings::displayOrderTitles()});
    addDescription(card, localized(u"Choose the display order for contacts lists. Names in some languages "
                                   "such as Chinese, Japanese and Korean follow a fixed order and will not "
                                   "be affected."_s));
    connect(order, &QButtonGroup::idClicked, this,
            &MVSetiingsCalendarController::actionRadioButtonDisplayOrder);
}

void MVSetiingsCalendarController::setUpDevices()
{
    QVBoxLayout &card =
        *addCard(localized(u"Devices"_s),
                 localized(u"Keep the same records on several computers, through a folder that "
                           "another program replicates."_s));
    auto *button = new QPushButton(localized(u"Devices…"_s));
    button->setObjectName(u"buttonDevices"_s);
    card.addWidget(button, 0, Qt::AlignLeft);
    connect(button, &QPushButton::clicked, this, [this] { DevicesWindow::open(this); });
}

/// The choices may have changed on another device.
void MVSetiingsCalendarController::refresh()
{
    for (const auto &[kind, button] : switches)
        button->setChecked(accesschoice::isAllowed(kind));
    scheme->button(static_cast<int>(LookOfProgram::schemeChoice()))->setChecked(true);
    density->button(static_cast<int>(LookOfProgram::densityChoice()))->setChecked(true);
    contrast->button(static_cast<int>(LookOfProgram::contrastChoice()))->setChecked(true);
    period->button(static_cast<int>(SyncSettings::syncPeriod()))->setChecked(true);
    frequency->button(static_cast<int>(SyncSettings::syncFrequency()))->setChecked(true);
    order->button(static_cast<int>(SyncSettings::displayOrder()))->setChecked(true);
    periodDescription->setText(SyncSettings::syncPeriodDescription(SyncSettings::syncPeriod()));
    frequencyDescription->setText(SyncSettings::syncFrequencyDescription(SyncSettings::syncFrequency()));
}

void MVSetiingsCalendarController::actionRadioButtonSyncPeriod(int choice)
{
    SyncSettings::setSyncPeriod(static_cast<CalendarSyncPeriod>(choice));
    refresh();
}

void MVSetiingsCalendarController::actionRadioButtonSyncFrequency(int choice)
{
    SyncSettings::setSyncFrequency(static_cast<CalendarFrequencyDay>(choice));
    refresh();
}

void MVSetiingsCalendarController::actionRadioButtonDisplayOrder(int choice)
{
    SyncSettings::setDisplayOrder(static_cast<ContactsDisplayOrder>(choice));
}

void MVSetiingsCalendarController::showWindow()
{
    if (!isVisible()) {
        // Where the screen is too low for all of it, the rest is scrolled to.
        const int titleBar = style()->pixelMetric(QStyle::PM_TitleBarHeight);
        const int room = screen()->availableGeometry().height() - titleBar - 2 * Theme::unit;
        resize(width(), std::min(sizeHint().height(), room));
        placeOverParent(*this);
        scheme->checkedButton()->setFocus(Qt::OtherFocusReason);
    }
    show();
    raise();
    activateWindow();
}

void MVSetiingsCalendarController::closeEvent(QCloseEvent *event)
{
    event->accept();
    if (!preferences)
        return;
    preferences.reset();
    hide();
    const BusyCursor busy;
    SyncSettings::finish();
}

void MVSetiingsCalendarController::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Escape)
        close();
    else
        QWidget::keyPressEvent(event);
}
