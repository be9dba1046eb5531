#include "records/people/PhotoEdit.h"

#include "cloud/FileManager.h"
#include "cloud/IcloudManager.h"
#include "foundation/DateFormatter.h"
#include "records/Functional.h"
#include "records/dates/MVDate.h"
#include "store/entities/EntityContacts.h"

PhotoEdit::PhotoEdit(const QString &photoName)
    : formerName(photoName)
    , name(photoName)
{}

bool PhotoEdit::dropPicture(const QByteArray &png)
{
    if (!png.startsWith("\x89PNG\r\n\x1a\n"))
        return false;
    dropped = png;
    const std::optional<QString> held = FileManager::existPhotoData(png);
    isNewPicture = !held;
    replaceName(held ? *held
                     : DateFormatter::string(MVDate::date(), QStringLiteral("dd-MM-yyyy HH:mm:ss")) +
                           QStringLiteral(".png"));
    return true;
}

void PhotoEdit::removePicture()
{
    choosePicture({});
}

void PhotoEdit::choosePicture(const QString &storedName)
{
    dropped.clear();
    isNewPicture = false;
    replaceName(storedName);
}

void PhotoEdit::replaceName(const QString &newName)
{
    name = newName.isNull() ? QString(QLatin1String("")) : newName;
    // The same picture dropped again replaces nothing.
    deletesOldPhoto = name != formerName && !Functional::testOrPhotosNameUsed(formerName);
}

QByteArray PhotoEdit::pictureData() const
{
    return dropped.isEmpty() ? IcloudManager::imageData(name) : dropped;
}

void PhotoEdit::finish()
{
    if (isNewPicture)
        IcloudManager::saveImageWithData(dropped, name);
    if (deletesOldPhoto && !formerName.isEmpty())
        IcloudManager::removeImage(formerName);
    *this = PhotoEdit(name);
}

bool PhotoEdit::removePictureWith(const EntityContacts &contact)
{
    const QString photoName = contact.photoName();
    return Functional::testOrPhotosNameUsed(photoName) && IcloudManager::removeImage(photoName);
}
