#include "records/PortraitField.h"

#include "foundation/Alert.h"
#include "foundation/Localization.h"
#include "records/FormPicture.h"
#include "records/Portraits.h"
#include "widgets/Icons.h"
#include "widgets/MorvaneStyle.h"
#include "widgets/Theme.h"

#include <QApplication>
#include <QBuffer>
#include <QClipboard>
#include <QDragEnterEvent>
#include <QFileDialog>
#include <QImageReader>
#include <QKeyEvent>
#include <QMenu>
#include <QMimeData>
#include <QPainter>

using namespace Qt::Literals::StringLiterals;

constexpr int fieldSize = 80;
/// Room for the ring of the focus.
constexpr int ringRoom = 4;
constexpr int badgeSize = 24;

PortraitField::PortraitField(FormPicture &shownPicture, QWidget *parent)
    : QAbstractButton(parent)
    , picture(shownPicture)
{
    setFixedSize(sizeHint());
    connect(this, &QAbstractButton::clicked, this, [this] { showMenu(mapToGlobal(QPoint(0, height()))); });
    connect(&Portraits::shared(), &Portraits::arrived, this, qOverload<>(&QWidget::update));
    showPicture(false);
}

QSize PortraitField::sizeHint() const
{
    return {fieldSize + 2 * ringRoom, fieldSize + 2 * ringRoom};
}

void PortraitField::showPicture(bool isNowEditing)
{
    isEditing = isNowEditing;
    setEnabled(isEditing);
    setAcceptDrops(isEditing);
    setFocusPolicy(isEditing ? Qt::StrongFocus : Qt::NoFocus);
    setCursor(isEditing ? Qt::PointingHandCursor : Qt::ArrowCursor);
    describe();
    update();
}

void PortraitField::describe()
{
    setAccessibleName(localized(picture.hasPicture() ? u"Picture"_s : u"No picture"_s));
    setToolTip(isEditing ? localized(isReading ? u"The picture is being read"_s
                                               : u"Drop a picture here, or press to choose one"_s)
                         : QString());
    setAccessibleDescription(toolTip());
}

// What is put in

bool PortraitField::canTake(const QMimeData &held)
{
    return !PictureReader::sourceOf(held).isEmpty();
}

void PortraitField::take(const QMimeData &held)
{
    take(PictureReader::sourceOf(held));
}

void PortraitField::take(const PictureReader::Source &source)
{
    if (!isEditing || isReading || source.isEmpty())
        return;
    isReading = true;
    picture.setPictureAwaited(true);
    describe();
    update();
    PictureReader::read(source, *this, [this](const auto &result) { wasRead(result); });
}

void PortraitField::wasRead(const PictureReader::Result &result)
{
    using Failure = PictureReader::Failure;
    isReading = false;
    picture.setPictureAwaited(false);
    // The user has given the edit up meanwhile.
    if (!isEditing)
        return;
    const bool isTaken = result.failure == Failure::None && picture.setPicture(result.png);
    describe();
    update();
    if (isTaken)
        return;
    const QString reason = result.failure == Failure::Unreadable
                               ? u"The file is not there, or may not be read."_s
                               : u"It is no picture of a kind that can be read, or it is damaged."_s;
    Alert::run({localized(u"Picture"_s),
                localized(u"This picture cannot be used"_s),
                localized(reason),
                {localized(u"OK"_s)}});
}

void PortraitField::choose()
{
    QStringList patterns;
    for (const QByteArray &ending : QImageReader::supportedImageFormats())
        patterns.append(u"*."_s + QString::fromLatin1(ending));
    auto *dialog = new QFileDialog(this, localized(u"Choose Picture"_s), {},
                                   localized(u"Pictures"_s) + u" ("_s + patterns.join(u' ') + u')');
    dialog->setFileMode(QFileDialog::ExistingFile);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    connect(dialog, &QFileDialog::fileSelected, this,
            [this](const QString &file) { take(PictureReader::Source{.file = file}); });
    dialog->open();
}

void PortraitField::paste()
{
    if (const QMimeData *held = QApplication::clipboard()->mimeData())
        take(*held);
}

void PortraitField::remove()
{
    if (picture.hasPicture())
        picture.removePicture();
}

// What the user does

void PortraitField::showMenu(const QPoint &globalPosition)
{
    if (!isEditing || isReading)
        return;
    const QMimeData *held = QApplication::clipboard()->mimeData();
    auto *menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->addAction(localized(u"Choose Picture"_s) + u"..."_s, this, &PortraitField::choose);
    menu->addAction(localized(u"Paste Picture"_s), this, &PortraitField::paste)
        ->setEnabled(held && canTake(*held));
    menu->addAction(localized(u"Remove Picture"_s), this, &PortraitField::remove)
        ->setEnabled(picture.hasPicture());
    menu->popup(globalPosition);
}

void PortraitField::contextMenuEvent(QContextMenuEvent *event)
{
    showMenu(event->globalPos());
}

void PortraitField::keyPressEvent(QKeyEvent *event)
{
    if (event->matches(QKeySequence::Paste))
        paste();
    else if (event->key() == Qt::Key_Delete || event->key() == Qt::Key_Backspace)
        remove();
    else if (event->key() == Qt::Key_Return && event->modifiers() == Qt::NoModifier)
        click();
    else
        QAbstractButton::keyPressEvent(event);
}

void PortraitField::dragEnterEvent(QDragEnterEvent *event)
{
    if (!canTake(*event->mimeData()))
        return;
    event->acceptProposedAction();
    isDropWanted = true;
    update();
}

void PortraitField::dragLeaveEvent(QDragLeaveEvent *)
{
    isDropWanted = false;
    update();
}

void PortraitField::dropEvent(QDropEvent *event)
{
    isDropWanted = false;
    event->acceptProposedAction();
    take(*event->mimeData());
}

// Painting

void PortraitField::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRect place = rect().adjusted(ringRoom, ringRoom, -ringRoom, -ringRoom);
    const Portrait portrait = picture.portrait();
    const QByteArray unsaved = picture.unsaved();
    if (unsaved.isEmpty()) {
        Portraits::shared().paint(painter, place, portrait);
    } else {
        if (circleData != unsaved) {
            circleData = unsaved;
            QBuffer buffer(&circleData);
            buffer.open(QIODevice::ReadOnly);
            circle =
                QPixmap::fromImage(PictureReader::round(buffer, qRound(place.width() * devicePixelRatioF())));
        }
        Portraits::paintPicture(painter, place, circle);
    }
    if (isReading || isDropWanted) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(isReading ? Theme::inactiveSelection : Theme::selection);
        painter.drawEllipse(place);
    }
    if (hasFocus() || isDropWanted)
        MorvaneStyle::drawFocusRing(painter, QRectF(place).adjusted(-3, -3, 3, 3), place.width() / 2 + 3,
                                    Theme::focusRing);
    if (!isEditing)
        return;
    QRect badge(0, 0, badgeSize, badgeSize);
    badge.moveBottomRight(place.bottomRight());
    badge = QStyle::visualRect(layoutDirection(), rect(), badge);
    painter.setPen(Theme::controlBorder);
    painter.setBrush(Theme::control);
    painter.drawEllipse(badge);
    Icons::paint(painter, badge, u"add"_s, Theme::secondaryText, 14);
}
