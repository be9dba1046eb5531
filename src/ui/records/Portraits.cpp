#include "records/Portraits.h"

#include "cloud/IcloudManager.h"
#include "objectstore/StoreChanges.h"
#include "store/state/NotificationNames.h"
#include "widgets/Icons.h"
#include "widgets/PictureReader.h"
#include "widgets/Theme.h"

#include <QApplication>
#include <QBuffer>
#include <QPainter>

using namespace Qt::Literals::StringLiterals;

/// Bytes of circles: some three hundred small ones.
constexpr int mostKept = 4 << 20;
/// Somebody who scrolls on has no use for more.
constexpr std::size_t mostWanted = 48;

Portraits &Portraits::shared()
{
    static QPointer<Portraits> portraits;
    if (!portraits)
        portraits = new Portraits(qApp);
    return *portraits;
}

Portraits::Portraits(QObject *parent)
    : QObject(parent)
    , pictures(mostKept)
{
    thread.setMaxThreadCount(1);
    NotificationCenter &center = NotificationCenter::defaultCenter();
    observations.push_back(
        center.addObserver(notifications::contextDidSave, [this](const StoreChanges &) { missing.clear(); }));
    observations.push_back(center.addObserver(notifications::iCloudChange, [this] { missing.clear(); }));
}

Portraits::~Portraits()
{
    thread.waitForDone();
}

// What is read

const QPixmap *Portraits::pictureOf(const Wanted &wanted)
{
    const QPixmap *const picture = pictures.object(wanted.key());
    if (!picture && !missing.contains(wanted.key()))
        want(wanted);
    return picture;
}

void Portraits::want(const Wanted &wanted)
{
    std::erase_if(queue, [&](const Wanted &one) { return one.key() == wanted.key(); });
    if (queue.size() >= mostWanted)
        queue.erase(queue.begin());
    queue.push_back(wanted);
    readNext();
}

void Portraits::readNext()
{
    if (isReading || queue.empty())
        return;
    isReading = true;
    const Wanted wanted = queue.back();
    queue.pop_back();
    thread.start([this, wanted, read = IcloudManager::imageReader(wanted.path)] {
        QByteArray bytes = read();
        QBuffer file(&bytes);
        const QImage circle =
            file.open(QIODevice::ReadOnly) ? PictureReader::round(file, wanted.pixels) : QImage();
        QMetaObject::invokeMethod(
            this, [this, wanted, circle] { take(wanted, circle); }, Qt::QueuedConnection);
    });
}

void Portraits::take(const Wanted &wanted, const QImage &circle)
{
    isReading = false;
    if (circle.isNull()) {
        missing.insert(wanted.key());
    } else {
        pictures.insert(wanted.key(), new QPixmap(QPixmap::fromImage(circle)), circle.sizeInBytes());
        Q_EMIT arrived();
    }
    readNext();
}

// Painting

void Portraits::paint(QPainter &painter, const QRect &place, const Portrait &portrait)
{
    const int pixels = qRound(place.width() * painter.device()->devicePixelRatioF());
    const QString path =
        portrait.photoName.isEmpty() ? QString() : IcloudManager::pathOfImage(portrait.photoName);
    const QPixmap *const picture = path.isEmpty() ? nullptr : pictureOf({path, pixels});
    if (picture)
        paintPicture(painter, place, *picture);
    else
        paintInitials(painter, place, portrait.initials);
}

void Portraits::paintPicture(QPainter &painter, const QRect &place, const QPixmap &circle)
{
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawPixmap(place, circle, circle.rect());
}

/// The colour goes with the letters, so that one knows somebody again.
void Portraits::paintInitials(QPainter &painter, const QRect &place, const QString &initials)
{
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    uint sum = 0;
    for (const QChar letter : initials)
        sum = sum * 31 + letter.unicode();
    painter.setBrush(Theme::portraits[sum % Theme::portraits.size()]);
    painter.drawEllipse(place);
    QFont font = Theme::font(Theme::FontRole::BodyStrong);
    font.setPixelSize(std::max(1, place.height() * 2 / 5));
    painter.setFont(font);
    painter.setPen(Theme::portraitText);
    if (initials.isEmpty())
        Icons::paint(painter, place, u"people"_s, Theme::portraitText, place.height() * 2 / 5);
    else
        painter.drawText(place, Qt::AlignCenter, initials);
    painter.restore();
}

PortraitView::PortraitView(const Portrait &shown, int size, QWidget *parent)
    : QWidget(parent)
    , portrait(shown)
{
    setFixedSize(size, size);
    connect(&Portraits::shared(), &Portraits::arrived, this, qOverload<>(&QWidget::update));
}

void PortraitView::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    Portraits::shared().paint(painter, rect(), portrait);
}
