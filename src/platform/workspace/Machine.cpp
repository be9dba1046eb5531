#include "workspace/Machine.h"

#include <QFile>
#include <QStringList>
#include <QSysInfo>

namespace {

QString contentsOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.read(4096)) : QString();
}

/// The value of a line "KEY=value" of os-release(5), its quotes taken off.
QString valueOf(const QString &text, const QString &key)
{
    for (const QString &line : text.split(u'\n')) {
        if (!line.startsWith(key + u'='))
            continue;
        QString value = line.mid(key.size() + 1).trimmed();
        const bool isQuoted = value.size() > 1 && (value.startsWith(u'"') || value.startsWith(u'\'')) &&
                              value.endsWith(value.front());
        return isQuoted ? value.mid(1, value.size() - 2) : value;
    }
    return {};
}

} // namespace

QString Machine::model(const QString &root)
{
    for (const char *path : {"/sys/class/dmi/id/product_name", "/proc/device-tree/model"}) {
        // A device tree ends its texts with a zero.
        const QString name = contentsOf(root + QLatin1String(path)).remove(QChar(u'\0')).trimmed();
        if (!name.isEmpty())
            return name;
    }
    return {};
}

QString Machine::system(const QString &root)
{
    QString name =
        valueOf(contentsOf(root + QStringLiteral("/etc/os-release")), QStringLiteral("PRETTY_NAME"));
    if (name.isEmpty())
        name =
            valueOf(contentsOf(root + QStringLiteral("/usr/lib/os-release")), QStringLiteral("PRETTY_NAME"));
    const QString kernel = QStringLiteral("Linux %1").arg(QSysInfo::kernelVersion());
    return name.isEmpty() ? kernel : name + QStringLiteral(", ") + kernel;
}
