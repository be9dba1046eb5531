#include "foundation/AtomicFile.h"

#include <QSaveFile>

OptionalError writeFileAtomically(const QString &path, const QByteArray &contents)
{
    QSaveFile file(path);
    // With a buffer a disk that fills up while it is flushed passes for a success.
    const bool isWritten = file.open(QIODevice::WriteOnly | QIODevice::Unbuffered) &&
                           file.write(contents) == contents.size() && file.commit();
    if (isWritten)
        return std::nullopt;
    const bool isCutShort = file.error() == QFileDevice::NoError;
    return Error{QStringLiteral("files"), file.error(),
                 isCutShort ? QStringLiteral("No space left on device") : file.errorString()};
}
