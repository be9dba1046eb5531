#include "records/DocumentsFolder.h"

#include <QDir>
#include <QStandardPaths>

QString documentsFolder()
{
    const QString folder = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    return QDir(folder).exists() ? folder : QDir::homePath();
}
