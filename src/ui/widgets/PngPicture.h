#pragma once

#include <QByteArray>

/// A picture of any format that is read here as a PNG, upright, and no larger than is of use for a person's
/// photo; a PNG that is small enough stays as it is. Empty for what is no picture, or one of more than can be
/// held.
QByteArray pngPictureOf(const QByteArray &image);
