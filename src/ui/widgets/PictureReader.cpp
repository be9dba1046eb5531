#include "widgets/PictureReader.h"

#include <QBuffer>
#include <QFile>
#include <QImageReader>
#include <QMimeData>
#include <QPainter>
#include <QPainterPath>
#include <QPointer>
#include <QThreadPool>
#include <QUrl>

using namespace Qt::Literals::StringLiterals;

/// The size at which a picture fits into a square, or covers it; never larger than it is.
static QSize reduced(const QSize &size, int side, Qt::AspectRatioMode mode)
{
    const QSize fitting = size.scaled(side, side, mode);
    return fitting.width() < size.width() ? fitting.expandedTo({1, 1}) : size;
}

/// A reader that knows the size decodes no more than is wanted.
static QImage decoded(QIODevice &device, int side, Qt::AspectRatioMode mode)
{
    QImageReader reader(&device);
    reader.setDecideFormatFromContent(true);
    reader.setAutoTransform(true);
    if (const QSize size = reader.size(); size.isValid())
        reader.setScaledSize(reduced(size, side, mode));
    return reader.read();
}

static PictureReader::Result kept(const QImage &picture)
{
    using Failure = PictureReader::Failure;
    if (picture.isNull())
        return {{}, Failure::NoPicture};
    const QSize size = reduced(picture.size(), PictureReader::longestSide, Qt::KeepAspectRatio);
    const QImage small = size == picture.size()
                             ? picture
                             : picture.scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    QByteArray png;
    QBuffer buffer(&png);
    buffer.open(QIODevice::WriteOnly);
    // What a camera or a program wrote beside the picture is nobody's business.
    QImage plain =
        small.convertToFormat(small.hasAlphaChannel() ? QImage::Format_ARGB32 : QImage::Format_RGB32);
    for (const QString &key : plain.textKeys())
        plain.setText(key, {});
    const bool isWritten = plain.save(&buffer, "PNG");
    return isWritten ? PictureReader::Result{png} : PictureReader::Result{{}, Failure::NoPicture};
}

static PictureReader::Result resultOf(const PictureReader::Source &source)
{
    if (!source.image.isNull())
        return kept(source.image);
    if (source.file.isEmpty()) {
        QBuffer buffer;
        buffer.setData(source.bytes);
        buffer.open(QIODevice::ReadOnly);
        return kept(decoded(buffer, PictureReader::longestSide, Qt::KeepAspectRatio));
    }
    QFile file(source.file);
    if (!QFileInfo(file).isFile() || !file.open(QIODevice::ReadOnly))
        return {{}, PictureReader::Failure::Unreadable};
    return kept(decoded(file, PictureReader::longestSide, Qt::KeepAspectRatio));
}

PictureReader::Source PictureReader::sourceOf(const QMimeData &data)
{
    for (const QUrl &url : data.urls()) {
        if (url.isLocalFile())
            return {.file = url.toLocalFile()};
    }
    for (const QString &format : data.formats()) {
        if (format.startsWith(u"image/"_s) && !data.data(format).isEmpty())
            return {.bytes = data.data(format)};
    }
    return {.image = data.hasImage() ? data.imageData().value<QImage>() : QImage()};
}

void PictureReader::read(const Source &source, QObject &receiver, Done done)
{
    QThreadPool::globalInstance()->start([source, guard = QPointer(&receiver), done = std::move(done)] {
        const Result result = resultOf(source);
        QMetaObject::invokeMethod(
            qApp,
            [guard, done, result] {
                if (guard)
                    done(result);
            },
            Qt::QueuedConnection);
    });
}

QImage PictureReader::round(QIODevice &device, int pixels)
{
    const QImage picture = decoded(device, pixels, Qt::KeepAspectRatioByExpanding);
    if (picture.isNull())
        return {};
    QImage circle(pixels, pixels, QImage::Format_ARGB32_Premultiplied);
    circle.fill(Qt::transparent);
    QPainter painter(&circle);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    QPainterPath path;
    path.addEllipse(circle.rect());
    painter.setClipPath(path);
    const int side = std::min(picture.width(), picture.height());
    const QRect middle((picture.width() - side) / 2, (picture.height() - side) / 2, side, side);
    painter.drawImage(circle.rect(), picture, middle);
    return circle;
}
