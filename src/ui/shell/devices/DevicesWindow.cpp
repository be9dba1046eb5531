#include "shell/devices/DevicesWindow.h"

#include "foundation/Alert.h"
#include "foundation/Localization.h"
#include "shell/devices/PassphraseDialog.h"
#include "store/AppDelegate.h"
#include "widgets/FormCard.h"
#include "widgets/TextLabel.h"
#include "widgets/WindowPlace.h"

#include <QFileDialog>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QPointer>
#include <QPushButton>
#include <QVBoxLayout>

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr int textWidth = 520;

QVBoxLayout *addCardTo(QVBoxLayout &column, const QString &title)
{
    auto *card = new FormCard;
    auto *rows = static_cast<QVBoxLayout *>(card->layout());
    rows->setContentsMargins(2 * Theme::unit, 2 * Theme::unit, 2 * Theme::unit, 2 * Theme::unit);
    rows->setSpacing(Theme::unit);
    rows->addWidget(makeTextLabel(title, Theme::FontRole::BodyStrong, Theme::text));
    column.addWidget(card);
    return rows;
}

QLabel *addText(QVBoxLayout &rows, const QString &text, Theme::FontRole role, Theme::Role color)
{
    QLabel *label = makeTextLabel(text, role, color);
    label->setWordWrap(true);
    label->setFixedWidth(textWidth);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    rows.addWidget(label);
    return label;
}

void clear(QVBoxLayout &rows)
{
    while (QLayoutItem *item = rows.takeAt(0)) {
        delete item->widget();
        delete item;
    }
}

} // namespace

DevicesWindow::DevicesWindow(QWidget *parent)
    : QWidget(parent, Qt::Window)
{
    setObjectName(u"DevicesWindow"_s);
    setWindowTitle(localized(u"Devices"_s));
    setAttribute(Qt::WA_DeleteOnClose);
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(2 * Theme::unit, 2 * Theme::unit, 2 * Theme::unit, 2 * Theme::unit);
    column->setSpacing(2 * Theme::unit);
    column->setSizeConstraint(QLayout::SetFixedSize);

    QVBoxLayout *shared = addCardTo(*column, localized(u"Shared Folder"_s));
    addText(
        *shared,
        localized(u"A folder that another program keeps the same on all your computers, such as Syncthing, "
                  "Nextcloud or a memory stick. Your records meet there."_s),
        Theme::FontRole::Small, Theme::secondaryText);
    folder = addText(*shared, {}, Theme::FontRole::Body, Theme::text);
    folder->setObjectName(u"labelFolder"_s);
    hint = addText(*shared, {}, Theme::FontRole::Small, Theme::secondaryText);
    auto *buttons = new QHBoxLayout;
    auto *choose = new QPushButton(localized(u"Choose Folder…"_s));
    choose->setObjectName(u"buttonChooseFolder"_s);
    leave = new QPushButton(localized(u"Stop Sharing"_s));
    leave->setObjectName(u"buttonStopSharing"_s);
    buttons->addWidget(choose);
    buttons->addWidget(leave);
    buttons->addStretch(1);
    shared->addLayout(buttons);

    QVBoxLayout *sealed = addCardTo(*column, localized(u"Sealing"_s));
    sealingCard = sealed->parentWidget();
    addText(*sealed,
            localized(u"In a sealed folder, only computers that know the passphrase can read your records. "
                      "Pictures are not sealed, and the number and the size of the files can be seen."_s),
            Theme::FontRole::Small, Theme::secondaryText);
    sealing = addText(*sealed, {}, Theme::FontRole::Body, Theme::text);
    sealing->setObjectName(u"labelSealing"_s);
    seal = new QPushButton(localized(u"Seal With a Passphrase…"_s));
    seal->setObjectName(u"buttonSeal"_s);
    enter = new QPushButton(localized(u"Enter Passphrase…"_s));
    enter->setObjectName(u"buttonEnterPassphrase"_s);
    sealed->addWidget(seal, 0, Qt::AlignLeft);
    sealed->addWidget(enter, 0, Qt::AlignLeft);

    QVBoxLayout *state = addCardTo(*column, localized(u"Devices"_s));
    summary = addText(*state, {}, Theme::FontRole::Body, Theme::text);
    summary->setObjectName(u"labelSummary"_s);
    devices = new QVBoxLayout;
    devices->setSpacing(Theme::unit);
    state->addLayout(devices);

    QVBoxLayout *wrong = addCardTo(*column, localized(u"Files That Cannot Be Read"_s));
    problemCard = wrong->parentWidget();
    problems = new QVBoxLayout;
    problems->setSpacing(Theme::unit);
    wrong->addLayout(problems);

    connect(choose, &QPushButton::clicked, this, &DevicesWindow::chooseFolder);
    connect(leave, &QPushButton::clicked, this, &DevicesWindow::leaveFolder);
    connect(seal, &QPushButton::clicked, this, &DevicesWindow::askForPassphrase);
    connect(enter, &QPushButton::clicked, this, &DevicesWindow::askForPassphrase);
    if (Replication *replication = AppDelegate::shared() ? AppDelegate::shared()->replication() : nullptr)
        replication->setListener([this] { refresh(); });
    refresh();
}

DevicesWindow::~DevicesWindow()
{
    if (Replication *replication = AppDelegate::shared() ? AppDelegate::shared()->replication() : nullptr)
        replication->setListener({});
}

void DevicesWindow::open(QWidget *parent)
{
    static QPointer<DevicesWindow> window;
    if (!window) {
        window = new DevicesWindow(parent);
        window->adjustSize();
        placeOverParent(*window);
    }
    window->show();
    window->raise();
    window->activateWindow();
}

void DevicesWindow::refresh()
{
    AppDelegate *delegate = AppDelegate::shared();
    const DeviceHealth health = DeviceHealth::of(delegate ? delegate->replication() : nullptr);
    const QString path = sharedfolder::path();
    folder->setText(path.isEmpty() ? localized(u"No folder is chosen."_s) : path);
    hint->setText(localized(u"Morvane uses it from its next start on."_s));
    hint->setVisible(sharedfolder::isWaitingForStart());
    leave->setEnabled(!path.isEmpty());
    sealingCard->setVisible(!health.sealing.isEmpty());
    sealing->setText(health.sealing);
    seal->setVisible(health.canSeal);
    enter->setVisible(health.needsPassphrase);
    summary->setText(health.summary);
    clear(*devices);
    addLines(*devices, health.devices);
    clear(*problems);
    addLines(*problems, health.problems);
    problemCard->setVisible(!health.problems.empty());
}

void DevicesWindow::addLines(QVBoxLayout &rows, const std::vector<DeviceHealth::Line> &lines)
{
    for (const DeviceHealth::Line &line : lines) {
        addText(rows, line.title, line.isOwn ? Theme::FontRole::BodyStrong : Theme::FontRole::Body,
                Theme::text);
        addText(rows, line.detail, Theme::FontRole::Small, Theme::secondaryText);
    }
}

void DevicesWindow::chooseFolder()
{
    const QString chosen = QFileDialog::getExistingDirectory(this, localized(u"Choose Folder…"_s));
    if (chosen.isEmpty())
        return;
    if (const auto error = sharedfolder::choose(chosen))
        Alert::run({{}, error->message, {}, {localized(u"OK"_s)}});
    refresh();
}

void DevicesWindow::leaveFolder()
{
    const int answer = Alert::run(
        {{},
         localized(u"Stop sharing your records with other devices?"_s),
         localized(
             u"Your records stay on this computer. The folder and the other devices stay as they are."_s),
         {localized(u"Stop Sharing"_s), localized(u"Cancel"_s)}});
    if (answer != Alert::firstButton)
        return;
    if (const auto error = sharedfolder::choose({}))
        Alert::run({{}, error->message, {}, {localized(u"OK"_s)}});
    refresh();
}

void DevicesWindow::askForPassphrase()
{
    const auto isNew = DeviceHealth::of(AppDelegate::shared()->replication()).canSeal;
    auto *dialog = new PassphraseDialog(
        isNew ? PassphraseDialog::Purpose::Seal : PassphraseDialog::Purpose::Enter,
        [isNew](const QString &passphrase) -> OptionalError {
            Replication *replication = AppDelegate::shared()->replication();
            return isNew ? replication->seal(passphrase) : replication->enterPassphrase(passphrase);
        },
        this);
    dialog->setModal(true);
    dialog->show();
}

void DevicesWindow::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Escape)
        close();
    else
        QWidget::keyPressEvent(event);
}
