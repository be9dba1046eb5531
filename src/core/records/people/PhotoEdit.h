#pragma once

#include "foundation/Error.h"

#include <QByteArray>
#include <QString>

/// The picture of a contact or a company while it is edited: what the user dropped or removed, and what
/// becomes of the files when the edit is saved.
///
/// A picture that is in the image store already, byte for byte, is shared by its name. The file of the
/// earlier picture stays for those who hold it too, and for undo (`LoosePictures`).
class PhotoEdit
{
public:
    /// `photoName` as it is when editing begins; empty without a picture.
    explicit PhotoEdit(const QString &photoName = {});

    /// The user dropped a picture; `png` is what its file will hold. False, and nothing happens, for anything
    /// that is not in that format: the names of pictures say ".png".
    /// \param formerlyCalled the name that it had in a draft; drafts of several moments are resumed in one.
    bool dropPicture(const QByteArray &png, const QString &formerlyCalled = {});
    void removePicture();
    /// Takes a picture of the image store by its name.
    void choosePicture(const QString &storedName);
    /// A picture that is in no file yet; empty if there is none.
    QByteArray newPicture() const { return isNewPicture ? dropped : QByteArray(); }

    /// The name that the record is to be saved with; empty without a picture.
    const QString &photoName() const { return name; }
    /// The picture that was dropped, or else the stored one; empty if there is none or its file cannot be
    /// read.
    QByteArray pictureData() const;

    /// Writes a picture that is new, before the record that names it is committed. Of one whose record is
    /// not, the file goes after a while. The error says why it could not be written.
    OptionalError store() const;
    /// The record was committed: lets go of the earlier picture.
    void finish();

private:
    void replaceName(const QString &newName);

    QString formerName;
    QString name;
    QByteArray dropped;
    bool isNewPicture = false;
};
