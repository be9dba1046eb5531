#include "cloud/Document.h"

#include "foundation/AtomicFile.h"
#include "store/state/NotificationNames.h"

Result<QByteArray> Document::dataOfType(const QString &) const
{
    constexpr int fileWriteUnknown = 512;
    if (data.isNull())
        return Error{QStringLiteral("NSCocoaErrorDomain"), fileWriteUnknown,
                     QStringLiteral("Cannot write the document: it has no contents")};
    return data;
}

bool Document::readFromData(const QByteArray &contents, const QString &)
{
    if (contents.isNull())
        return false;
    data = contents;
    return true;
}

OptionalError Document::writeToURL(const QString &path, const QString &ofType) const
{
    Result<QByteArray> contents = dataOfType(ofType);
    if (!contents)
        return contents.error();
    OptionalError error = writeFileAtomically(path, *contents);
    if (error)
        error->message = QStringLiteral("Cannot write %1: %2").arg(path, error->message);
    return error;
}
