#include "widgets/PngPicture.h"

#include <QBuffer>
#include <QImageReader>

/// Points of the longer side.
constexpr int mostPoints = 2048;

QByteArray pngPictureOf(const QByteArray &image)
{
    QBuffer source;
    source.setData(image);
    QImageReader reader(&source);
    const QByteArray format = reader.format();
    // A drawing may name other files.
    if (format.isEmpty() || format.startsWith("svg") || format == "pdf")
        return {};
    const QSize size = reader.size();
    const bool isLarge = std::max(size.width(), size.height()) > mostPoints;
    if (isLarge)
        reader.setScaledSize(size.scaled(mostPoints, mostPoints, Qt::KeepAspectRatio));
    reader.setAutoTransform(true);
    const QImage picture = reader.read();
    if (picture.isNull())
        return {};
    if (format == "png" && !isLarge)
        return image;
    QByteArray png;
    QBuffer target(&png);
    target.open(QIODevice::WriteOnly);
    return picture.save(&target, "PNG") ? png : QByteArray();
}
