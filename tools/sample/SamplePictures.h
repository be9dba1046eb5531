#pragma once

#include <QImage>
#include <QString>

/// The pictures of the sample: portraits and signs, drawn with plain shapes.
namespace SamplePictures {

/// The picture of a person or a company by its name in the description of the sample, square, or a null image
/// for a name that has none.
QImage draw(const QString &name);

} // namespace SamplePictures
