#include "records/people/PhotoEdit.h"

#include "cloud/FileManager.h"
#include "cloud/IcloudManager.h"
#include "foundation/DateFormatter.h"
#include "foundation/Localization.h"
#include "records/dates/MVDate.h"
#include "records/people/LoosePictures.h"

PhotoEdit::PhotoEdit(const QString &photoName)
    : formerName(photoName)
    , name(photoName)
{}

/// The name of the moment, or one that it stands in if that is another picture's.
static QString freeName()
{
    const QString moment = DateFormatter::string(MVDate::date(), QStringLiteral("dd-MM-yyyy HH:mm:ss"));
    QString name = moment + QStringLiteral(".png");
    for (int number = 2; IcloudManager::existenceFile(IcloudManager::pathOfImage(name)); ++number)
        name = QStringLiteral("%1 %2.png").arg(moment).arg(number);
    return name;
}

static bool canBeNamed(const QString &name)
{
    const QString path = IcloudManager::pathOfImage(name);
    return !path.isEmpty() && !IcloudManager::existenceFile(path);
}

bool PhotoEdit::dropPicture(const QByteArray &png, const QString &formerlyCalled)
{
    if (!png.startsWith("\x89PNG\r\n\x1a\n"))
        return false;
    dropped = png;
    const std::optional<QString> held = FileManager::existPhotoData(png);
    isNewPicture = !held;
    replaceName(held ? *held : canBeNamed(formerlyCalled) ? formerlyCalled : freeName());
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
}

QByteArray PhotoEdit::pictureData() const
{
    return dropped.isEmpty() ? IcloudManager::imageData(name) : dropped;
}

OptionalError PhotoEdit::store() const
{
    if (!isNewPicture)
        return std::nullopt;
    LoosePictures::add({name});
    if (IcloudManager::saveImageWithData(dropped, name))
        return std::nullopt;
    return Error{
        QStringLiteral("files"), 0,
        localized(QStringLiteral("Morvane cannot write to the folder %1")).arg(IcloudManager::imageUrl())};
}

void PhotoEdit::finish()
{
    if (name != formerName)
        LoosePictures::add({formerName});
    *this = PhotoEdit(name);
}
