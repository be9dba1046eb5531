#pragma once

#include "records/Portrait.h"

#include <QByteArray>

/// The picture of a record in its form. Main thread only.
class FormPicture
{
public:
    FormPicture() = default;
    virtual ~FormPicture() = default;
    Q_DISABLE_COPY_MOVE(FormPicture)

    /// What stands for the record; a picture that was just put in has no file yet.
    virtual Portrait portrait() const = 0;
    /// The picture as PNG; empty without one, or if its file cannot be read.
    virtual QByteArray data() const = 0;
    /// The same of one that is in no file yet.
    virtual QByteArray unsaved() const = 0;
    virtual bool hasPicture() const = 0;
    /// Puts in a picture. False, and nothing happens, if it is not PNG.
    virtual bool setPicture(const QByteArray &png) = 0;
    virtual void removePicture() = 0;
    /// A picture is on its way: until it is here, or was given up, the record is not saved.
    virtual void setPictureAwaited(bool isAwaited) = 0;
};
