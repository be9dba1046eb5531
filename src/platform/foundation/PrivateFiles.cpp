#include "foundation/PrivateFiles.h"

#include <QDirIterator>
#include <QFile>
#include <QFileInfo>

#include <optional>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr mode_t folderMode = S_IRWXU;
constexpr mode_t fileMode = S_IRUSR | S_IWUSR;
constexpr mode_t ofOthers = S_IRWXG | S_IRWXO;

/// Absent for what is not there or is a link.
std::optional<mode_t> modeOf(const QByteArray &path)
{
    struct stat status = {};
    if (lstat(path.constData(), &status) != 0 || S_ISLNK(status.st_mode))
        return std::nullopt;
    return status.st_mode;
}

} // namespace

bool PrivateFiles::makeFolder(const QString &path)
{
    const QFileInfo info(path);
    if (info.isDir())
        return true;
    const QString parent = info.path();
    if (parent != path && !makeFolder(parent))
        return false;
    return mkdir(QFile::encodeName(path).constData(), folderMode) == 0 || QFileInfo(path).isDir();
}

void PrivateFiles::makeFile(const QString &path)
{
    const int file =
        open(QFile::encodeName(path).constData(), O_CREAT | O_EXCL | O_CLOEXEC | O_RDWR, fileMode);
    if (file >= 0)
        close(file);
}

bool PrivateFiles::narrow(const QString &path)
{
    const QByteArray name = QFile::encodeName(path);
    const auto mode = modeOf(name);
    if (!mode || (*mode & ofOthers) == 0)
        return true;
    return chmod(name.constData(), *mode & ~(S_IFMT | ofOthers)) == 0;
}

void PrivateFiles::narrowTree(const QString &folder)
{
    const auto mode = modeOf(QFile::encodeName(folder));
    if (!mode || (*mode & ofOthers) == 0)
        return;
    QDirIterator all(folder, QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                     QDirIterator::Subdirectories);
    while (all.hasNext())
        narrow(all.next());
    // Last, so that a walk that is cut short begins anew at the next start.
    narrow(folder);
}
