#include "foundation/AtomicFile.h"

#include <QFileInfo>
#include <QSaveFile>

#include <unistd.h>

OptionalError writeFileAtomically(const QString &path, const QByteArray &contents, const LastCheck &lastCheck)
{
    const bool isNew = !QFileInfo::exists(path);
    QSaveFile file(path);
    bool isWritten = file.open(QIODevice::WriteOnly | QIODevice::Unbuffered);
    // Some file systems know no modes.
    if (isWritten && isNew)
        file.setPermissions(QFile::ReadOwner | QFile::WriteOwner);
    // With a buffer a disk that fills up while it is flushed passes for a success.
    isWritten = isWritten && file.write(contents) == contents.size();
    if (isWritten && lastCheck) {
        // What takes long is done before the check: little time is left between it and the exchange.
        fdatasync(file.handle());
        if (auto error = lastCheck()) {
            file.cancelWriting();
            return error;
        }
    }
    isWritten = isWritten && file.commit();
    if (isWritten)
        return std::nullopt;
    const bool isCutShort = file.error() == QFileDevice::NoError;
    return Error{QStringLiteral("files"), file.error(),
                 isCutShort ? QStringLiteral("No space left on device") : file.errorString()};
}
