#pragma once

#include "foundation/Error.h"

#include <QByteArray>
#include <QString>

/// The contents of one file on their way to or from the disk.
class Document
{
public:
    explicit Document(const QString &type)
        : fileType(type)
    {}

    const QString &type() const { return fileType; }
    /// Null while there are none.
    const QByteArray &contentsData() const { return data; }
    void setContentsData(const QByteArray &contents) { data = contents; }

    /// The contents; an error of "NSCocoaErrorDomain", code 512, without any.
    Result<QByteArray> dataOfType(const QString &type) const;
    /// Takes contents that are not null and tells by "dataModified" with the document. Whether there were
    /// any.
    bool readFromData(const QByteArray &contents, const QString &ofType);
    /// Writes the contents to a path, whole or not at all.
    OptionalError writeToURL(const QString &path, const QString &ofType) const;

private:
    QString fileType;
    QByteArray data;
};
