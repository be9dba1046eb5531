#include "shell/devices/DevicesWindow.h"

#include "foundation/Alert.h"
#include "foundation/Localization.h"
#include "shell/devices/DeviceRow.h"
#include "store/AppDelegate.h"
#include "store/state/NotificationNames.h"
#include "widgets/Accessibility.h"
#include "widgets/FormCard.h"
#include "widgets/FormScroll.h"
#include "widgets/TextLabel.h"
#include "widgets/WindowPlace.h"

#include <QFileDialog>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QPointer>
#include <QPushButton>
#include <QScreen>
#include <QScrollBar>
#include <QVBoxLayout>

#include <algorithm>
#include <memory>

using namespace Qt::Literals::StringLiterals;

namespace {

/// Long enough for a sentence to be read in two lines, in any size of the letters.
int textWidth()
{
    constexpr int fewestPixels = 520;
    constexpr int letters = 72;
    return std::max(fewestPixels,
                    letters * QFontMetrics(Theme::font(Theme::FontRole::Small)).averageCharWidth());
}

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
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    rows.addWidget(label);
    return label;
}

QWidget *addList(QVBoxLayout &rows, const QString &name)
{
    auto *list = new QWidget;
    Accessibility::describe(*list, {.role = QAccessible::List, .name = [name] { return name; }});
    auto *column = new QVBoxLayout(list);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(Theme::unit);
    rows.addWidget(list);
    return list;
}

QPushButton *addButton(QHBoxLayout &row, const QString &words, const QString &name)
{
    auto *button = new QPushButton(words);
    button->setObjectName(name);
    row.addWidget(button);
    return button;
}

} // namespace

DevicesWindow::DevicesWindow(QWidget *parent)
    : QWidget(parent, Qt::Dialog)
{
    setObjectName(u"DevicesWindow"_s);
    setWindowTitle(localized(u"Devices"_s));
    setAttribute(Qt::WA_DeleteOnClose);
    auto *body = new QWidget;
    auto *column = new QVBoxLayout(body);
    column->setContentsMargins(2 * Theme::unit, 2 * Theme::unit, 2 * Theme::unit, 2 * Theme::unit);
    column->setSpacing(2 * Theme::unit);
    scroll = new FormScroll(body);
    auto *whole = new QVBoxLayout(this);
    whole->setContentsMargins(0, 0, 0, 0);
    whole->addWidget(scroll);

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
    QPushButton *choose = addButton(*buttons, localized(u"Choose Folder…"_s), u"buttonChooseFolder"_s);
    leave = addButton(*buttons, localized(u"Stop Sharing"_s), u"buttonStopSharing"_s);
    buttons->addStretch(1);
    shared->addLayout(buttons);

    QVBoxLayout *sealed = addCardTo(*column, localized(u"Sealing"_s));
    sealingCard = sealed->parentWidget();
    addText(
        *sealed,
        localized(u"In a sealed folder, only computers that know the passphrase can read your records and "
                  "pictures. The number, the names and the sizes of the files can be seen."_s),
        Theme::FontRole::Small, Theme::secondaryText);
    sealing = addText(*sealed, {}, Theme::FontRole::Body, Theme::text);
    sealing->setObjectName(u"labelSealing"_s);
    auto *sealButtons = new QHBoxLayout;
    seal = addButton(*sealButtons, localized(u"Seal With a Passphrase…"_s), u"buttonSeal"_s);
    enter = addButton(*sealButtons, localized(u"Enter Passphrase…"_s), u"buttonEnterPassphrase"_s);
    change = addButton(*sealButtons, localized(u"Change Passphrase…"_s), u"buttonChangePassphrase"_s);
    end = addButton(*sealButtons, localized(u"End Sealing…"_s), u"buttonEndSealing"_s);
    sealButtons->addStretch(1);
    sealed->addLayout(sealButtons);

    QVBoxLayout *state = addCardTo(*column, localized(u"Devices"_s));
    summary = addText(*state, {}, Theme::FontRole::Body, Theme::text);
    summary->setObjectName(u"labelSummary"_s);
    devices = addList(*state, localized(u"Devices"_s));

    QVBoxLayout *wrong = addCardTo(*column, localized(u"Files That Cannot Be Read"_s));
    problemCard = wrong->parentWidget();
    problems = addList(*wrong, localized(u"Files That Cannot Be Read"_s));
    column->addStretch(1);
    scroll->keepRoomForBar();

    using Purpose = PassphraseDialog::Purpose;
    connect(choose, &QPushButton::clicked, this, &DevicesWindow::chooseFolder);
    connect(leave, &QPushButton::clicked, this, &DevicesWindow::leaveFolder);
    connect(seal, &QPushButton::clicked, this, [this] { askForPassphrase(Purpose::Seal); });
    connect(enter, &QPushButton::clicked, this, [this] { askForPassphrase(Purpose::Enter); });
    connect(change, &QPushButton::clicked, this, [this] { askForPassphrase(Purpose::Change); });
    connect(end, &QPushButton::clicked, this, &DevicesWindow::endSealing);
    observation =
        NotificationCenter::defaultCenter().addObserver(notifications::sharingChanged, [this] { refresh(); });
    refresh();
    fitIntoScreen();
}

/// As large as it needs to be, but for some room around it; what is on the screen only grows.
void DevicesWindow::fitIntoScreen()
{
    constexpr double mostOfWidth = 0.95;
    constexpr double mostOfHeight = 0.8;
    const QSize room = screen()->availableSize();
    const QWidget &body = *scroll->widget();
    // What was hidden before the window is shown counts until then.
    for (QLayout *one : body.findChildren<QLayout *>())
        one->invalidate();
    const int aroundTexts = 8 * Theme::unit + Theme::scrollBarWidth;
    const int width = std::min(std::max(body.minimumSizeHint().width(), textWidth() + aroundTexts),
                               int(room.width() * mostOfWidth));
    const QSize wanted(width, std::min(body.heightForWidth(width), int(room.height() * mostOfHeight)));
    fitted = isVisible() ? wanted.expandedTo(size()) : wanted;
    resize(fitted);
}

void DevicesWindow::open(QWidget *parent)
{
    static QPointer<DevicesWindow> window;
    if (!window) {
        window = new DevicesWindow(parent);
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
    hint->setText(localized(path.isEmpty() ? u"Sharing goes on until Morvane is started again."_s
                                           : u"Morvane uses it from its next start on."_s));
    hint->setVisible(sharedfolder::isWaitingForStart());
    leave->setEnabled(!path.isEmpty());
    sealingCard->setVisible(!health.sealing.isEmpty());
    sealing->setText(health.sealing);
    seal->setVisible(health.canSeal);
    enter->setVisible(health.needsPassphrase);
    change->setVisible(health.isSealed);
    end->setVisible(health.isSealed);
    const bool isNews = summary->text() != health.summary && !summary->text().isEmpty();
    summary->setText(health.summary);
    if (isNews)
        Accessibility::announce(*this, health.summary);
    setLines(*devices, health.devices);
    setLines(*problems, health.problems);
    problemCard->setVisible(!health.problems.empty());
    // What the user made of the size stays.
    if (isVisible() && size() == fitted)
        fitIntoScreen();
}

void DevicesWindow::setLines(QWidget &list, const std::vector<DeviceHealth::Line> &lines)
{
    QLayout &rows = *list.layout();
    while (rows.count() > int(lines.size())) {
        const std::unique_ptr<QLayoutItem> item(rows.takeAt(rows.count() - 1));
        // Its button may be what asks for this.
        item->widget()->hide();
        item->widget()->deleteLater();
    }
    while (rows.count() < int(lines.size())) {
        // This device comes first.
        const bool isOwn = lines[size_t(rows.count())].isOwn;
        auto *row = new DeviceRow(isOwn ? Theme::FontRole::BodyStrong : Theme::FontRole::Body);
        connect(row, &DeviceRow::removeWanted, this, &DevicesWindow::removeDevice);
        rows.addWidget(row);
        row->show();
    }
    for (int place = 0; place < rows.count(); ++place)
        static_cast<DeviceRow *>(rows.itemAt(place)->widget())->setLine(lines[size_t(place)]);
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

void DevicesWindow::askForPassphrase(PassphraseDialog::Purpose purpose)
{
    auto *dialog = new PassphraseDialog(
        purpose,
        [purpose](const QString &passphrase) -> OptionalError {
            Replication &replication = *AppDelegate::shared()->replication();
            switch (purpose) {
            case PassphraseDialog::Purpose::Seal:
                return replication.seal(passphrase);
            case PassphraseDialog::Purpose::Change:
                return replication.changePassphrase(passphrase);
            case PassphraseDialog::Purpose::Enter:
                break;
            }
            return replication.enterPassphrase(passphrase);
        },
        this);
    dialog->setModal(true);
    dialog->show();
}

void DevicesWindow::endSealing()
{
    const int answer = Alert::run(
        {{},
         localized(u"End the sealing of the shared folder?"_s),
         localized(u"All computers then write their files in the open: whoever reads the folder reads your "
                   "records and pictures."_s),
         {localized(u"End Sealing"_s), localized(u"Cancel"_s)},
         {0}});
    if (answer != Alert::firstButton)
        return;
    if (const auto error = AppDelegate::shared()->replication()->endSealing())
        Alert::run({{}, localized(error->message) + u'.', {}, {localized(u"OK"_s)}});
}

void DevicesWindow::removeDevice(const DeviceHealth::Line &line)
{
    QString consequences = localized(
        u"Do this when the device is lost or no longer used. Your other devices no longer wait for it, and "
        u"its "
        "files leave the shared folder once all have what it wrote. If it comes back, it loses nothing and "
        "takes part again."_s);
    if (end->isVisibleTo(this))
        consequences +=
            u' ' + localized(u"If it was stolen, please change the passphrase of the folder, too."_s);
    const DeviceHealth::Line gone = line;
    const int answer = Alert::run({{},
                                   localized(u"Remove %1 from your devices?"_s).arg(firstPart(gone.name)),
                                   consequences,
                                   {localized(u"Remove Device"_s), localized(u"Cancel"_s)},
                                   {0}});
    if (answer != Alert::firstButton)
        return;
    if (const auto error = AppDelegate::shared()->replication()->removeDevice(gone.device))
        Alert::run({{}, localized(error->message) + u'.', {}, {localized(u"OK"_s)}});
    refresh();
}

void DevicesWindow::keyPressEvent(QKeyEvent *event)
{
    QScrollBar &bar = *scroll->verticalScrollBar();
    switch (event->key()) {
    case Qt::Key_Escape:
        close();
        break;
    case Qt::Key_PageUp:
        bar.triggerAction(QAbstractSlider::SliderPageStepSub);
        break;
    case Qt::Key_PageDown:
        bar.triggerAction(QAbstractSlider::SliderPageStepAdd);
        break;
    default:
        QWidget::keyPressEvent(event);
    }
}
