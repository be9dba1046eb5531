#pragma once

#include <QByteArray>
#include <QImage>
#include <QObject>

#include <functional>

class QIODevice;
class QMimeData;

/// Reads pictures of any size without keeping anybody waiting: they are made as small as they have to be on
/// another thread. Main thread only.
namespace PictureReader {

/// The longer side of a picture that is kept, in pixels.
inline constexpr int longestSide = 1024;

enum class Failure {
    None,
    /// The file is not there or cannot be read.
    Unreadable,
    /// It holds something else, or is damaged.
    NoPicture
};
struct Result
{
    /// The picture as PNG; empty after a failure.
    QByteArray png;
    Failure failure = Failure::None;
};
using Done = std::function<void(const Result &result)>;

/// Where a picture comes from: a file, the bytes of one, or a picture that is there already.
struct Source
{
    QString file = {};
    QByteArray bytes = {};
    QImage image = {};
    bool isEmpty() const { return file.isEmpty() && bytes.isEmpty() && image.isNull(); }
};
/// The picture that is dropped or pasted; an empty source if there is none.
Source sourceOf(const QMimeData &data);

/// Calls `done` from the main loop, unless the receiver goes before.
void read(const Source &source, QObject &receiver, Done done);

/// A picture that covers a square of so many pixels, cut to a circle; null if there is none. Any thread.
QImage round(QIODevice &device, int pixels);

} // namespace PictureReader
